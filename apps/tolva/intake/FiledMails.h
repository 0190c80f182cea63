// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QMultiHash>

class cTolvaDatabase;

/// Which messages are in the station already. The first question looks for messages of its date; at the second one the
/// light columns of all messages are read once. Mails are read only where date and subject are those of the message in
/// question. What other programs file after that is not known.
class FiledMails
{
public:
    enum class Sameness
    {
        Octets,     ///< What the same sender hands over once more.
        ButForTrace ///< What came by another route as well, too.
    };
    /// The database outlives this object.
    FiledMails(cTolvaDatabase& database, Sameness sameness) : Database_(database), Sameness_(sameness) {}

    /// Whether the station holds the same mail, or the same text message: sender, time and text. dao::Error when it
    /// cannot be read.
    bool Hold(const cMessage& message);
    /// The message is in the station from now on.
    void Add(const cMessage& message);

private:
    bool HoldAmongThoseOfItsDate(const cMessage& message);
    void ReadAll();
    bool IsSame(const cMessage& message, qint32 reference);
    bool AreSame(const QByteArray& one, const QByteArray& other) const;

    cTolvaDatabase& Database_;
    Sameness Sameness_;
    bool IsAsked_ = false;
    bool IsRead_ = false;
    QMultiHash<size_t, qint32> References_; ///< By what the light columns say.
};
