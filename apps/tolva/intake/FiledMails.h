// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QMultiHash>

class cTolvaDatabase;

/// Which messages are in the station already. The light columns of all messages are read once, at the first question;
/// mails are read only where date and subject are those of the message in question. What other programs file after that
/// is not known.
class FiledMails
{
public:
    /// The database outlives this object.
    explicit FiledMails(cTolvaDatabase& database) : Database_(database) {}

    /// Whether the station holds a mail of the same octets, or the same text message: sender, time and text. dao::Error
    /// when it cannot be read.
    bool Hold(const cMessage& message);
    /// The message is in the station from now on.
    void Add(const cMessage& message);

private:
    void ReadAll();
    bool IsSame(const cMessage& message, qint32 reference);

    cTolvaDatabase& Database_;
    bool IsRead_ = false;
    QMultiHash<size_t, qint32> References_; ///< By what the light columns say.
};
