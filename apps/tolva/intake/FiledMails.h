// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SameMails.h"

#include <QMultiHash>

class cTolvaDatabase;

/// Which messages are in the station already. The first question looks for messages of its date; at the second one the
/// light columns of all messages are read once. Mails are read only where date and subject are those of the message in
/// question. What other programs file after that is not known.
class FiledMails
{
public:
    /// The database outlives this object.
    FiledMails(cTolvaDatabase& database, SameMails::Sameness sameness) : Database_(database), Sameness_(sameness) {}

    /// Whether the station holds the same mail, or the same text message: sender, time and text. dao::Error when it
    /// cannot be read.
    bool Hold(const cMessage& message);
    /// The message is in the station from now on.
    void Add(const cMessage& message);

private:
    void ReadAll();
    bool IsSame(const cMessage& message, qint32 reference) const;

    cTolvaDatabase& Database_;
    SameMails::Sameness Sameness_;
    bool IsAsked_ = false;
    bool IsRead_ = false;
    QMultiHash<size_t, qint32> References_; ///< By what the light columns say.
};
