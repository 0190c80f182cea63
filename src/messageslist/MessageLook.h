// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "common/Enumerations.h"

#include <QByteArray>

#include <optional>

namespace dao
{
class Field;
class Recordset;
} // namespace dao

class cMessage;
class cTolvaDatabase;

/// What a row of the messages list shows of a message. A plain value.
struct MessageLook
{
    qint32 Reference = 0;
    enMsgType MessageType = emtEmail;
    qint32 Flags = 0;
    qint32 Priority = 0;
    qint32 PersonalToContact = 0;
    bool HasHighlightWords = false;
    bool HasAttachments = false; ///< As its type has it, where that was asked for.
    Date Sent;
    Date Received;
    QByteArray Subject; ///< The header fields as they stand in the mail.
    QByteArray From;
    QByteArray To; ///< Of what the station wrote; empty for all else.

    bool IsUrgent() const { return Priority == 1; }
};

/// Characters of a header that are decoded and measured; more than any row is wide.
inline constexpr qsizetype LongestCell = 1000;

/// What of a mail's header is read besides.
enum class LookDepth
{
    Names,
    NamesAndType ///< And what kind of mail it is.
};

MessageLook LookOf(const cMessage& message, LookDepth depth = LookDepth::Names);
/// The same without the header fields.
MessageLook StateOf(const cMessage& message);

/// Reads what the rows of a recordset of messages show. Of a mail it reads the beginning, where that tells.
class MessageLooks
{
public:
    /// rows: all columns of the table; it outlives this.
    MessageLooks(cTolvaDatabase& database, dao::Recordset& rows, LookDepth depth = LookDepth::Names);

    /// Of the current row; nothing for one that is gone meanwhile. Errors as of cTolvaDatabase::GetMessage.
    std::optional<MessageLook> Read();

private:
    bool ReadHeader(MessageLook& look);

    cTolvaDatabase& Database_;
    dao::Recordset& Rows_;
    const dao::Field& Reference_;
    const dao::Field& MessageType_;
    const dao::Field& Flags_;
    const dao::Field& Priority_;
    const dao::Field& PersonalToContact_;
    const dao::Field& HasHighlightWords_;
    const dao::Field& Sent_;
    const dao::Field& Received_;
    const dao::Field& Category_;
    const dao::Field& Message_;
    LookDepth Depth_;
    qsizetype BeginningOctets_;
};
