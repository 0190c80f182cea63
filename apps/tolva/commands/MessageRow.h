// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace dao
{
class Recordset;
}

/// What a list shows of a message, from the columns of its row. Of a mail nothing more is read; a text message, which
/// is short, is: its keys hold numbers in the form that searches use, not as they were sent.
struct MessageRow
{
    qint32 Reference = 0;
    qint32 Category = 0;
    QString From; ///< Addresses, divided by ", "; of a text message as "show" has it.
    QString To;
    QString Subject;
    Date Sent; ///< Universal time.
    Date Received;
    qint32 Flags = 0;
    qint32 Priority = 0;
    bool IsSMS = false;
    bool IsHighlighted = false;
    bool IsPersonal = false;
};

/// The column of a mail's octets.
inline const QString MailColumn = QStringLiteral("Message");

/// The columns that ReadMessageRow needs.
QStringList MessageRowColumns();
/// The current row.
MessageRow ReadMessageRow(const dao::Recordset& rows);

/// Five letters or dashes: N unread, P personal, H highlighted, ! urgent, S text message.
QString FlagLetters(const MessageRow& row);

/// One line of "list --json". category: the folder's path.
QJsonObject ToJson(const MessageRow& row, const QString& category);

/// The names of the flags that are set.
QJsonArray JsonFlags(qint32 flags);
QString TypeName(bool isSMS);
