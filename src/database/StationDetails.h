// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Enumerations.h"

#include <QString>

class SettingsStore;
class StationContext;

/// Where a station is, beside what its settings say word by word: the address on one line, the country in whose form
/// its numbers are read, and what it plays, which stands in a file beside the database. Short-lived, or kept by whoever
/// outlives neither of what it is made of.
class StationDetails
{
public:
    StationDetails(const StationContext& station, SettingsStore& settings) : Station_(station), Settings_(settings) {}

    /// As cTolvaDatabase::StationCountry.
    QString Country() const;
    void SetCountry(const QString& country);
    /// The country for the keys of a message of that type; empty for mails, which need none. The first text message
    /// stores it, so that computers with other defaults write the same keys.
    QString KeyCountry(enMsgType type);

    /// The lines of an address joined by the separator and a blank.
    static QString OnOneLine(const QString& address, const QString& separator);

    /// As cTolvaDatabase::CurrentSongFullName.
    QString CurrentSong() const;
    void SetCurrentSong(const QString& song);

private:
    const StationContext& Station_;
    SettingsStore& Settings_;
};
