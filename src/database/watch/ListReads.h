// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Error.h"

#include <QtGlobal>

class cTolvaDatabase;

/// What a list set out to read: a folder or kind of lists of one opening of a station, as the host attached it. When it
/// is another one after something ran events, the rows that are being read are nobody's. A plain value.
struct ReadTarget
{
    const cTolvaDatabase* Station = nullptr;
    int Opening = 0;    ///< cTolvaDatabase::Openings; 0 while it is closed.
    int Attachment = 0; ///< How often the host has set the list's station.
    qint32 Category = 0;

    friend bool operator==(const ReadTarget&, const ReadTarget&) = default;
};

/// The rows of a query that could not be read. They are there, so that a list says how many it lacks and tries again.
/// A plain value.
class ReadFailures
{
public:
    /// One row could not be read. True: the next one may do better. False: the file does not answer at present, and
    /// each further row would wait as long for nothing.
    bool Take(const dao::Error& error);
    /// Rows that were not tried after that.
    void TakeRest(int rows) { Rows_ += rows; }
    int Rows() const { return Rows_; }
    /// The file did not answer; Error says why. The host is to hear of it.
    bool IsUnanswered() const { return IsUnanswered_; }
    const dao::Error& Error() const { return Error_; }

private:
    int Rows_ = 0;
    bool IsUnanswered_ = false;
    dao::Error Error_{0, QString()};
};
