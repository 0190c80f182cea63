// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Station.h"
#include "prizes/HoursText.h"

#include <QJsonObject>

#include <functional>

/// Prizes, their hours and the people around them in words, for the commands that work on prizes.

/// The prize; Failure (data) when there is none. words: its number as the user typed it.
cPrizePtr PrizeOf(Station& station, const QString& words);
/// Changes the prize of that number as it is stored at this moment, with nobody else writing between the reading and
/// the saving: what change does not touch, the count of its winners above all, stays as it is. The prize as it is
/// stored then. Failure when there is none, when it cannot be stored, and those of change.
cPrizePtr ChangePrize(Station& station, const QString& words, const std::function<void(cPrize&)>& change);
/// Failure for an operation that answered false though nothing is known against it: the store's last error, or that
/// somebody else was quicker.
Failure WhyNotStored(const Station& station, const cTolvaDatabase& database);

/// A contact of the directory, and a user, by name; "contact 12", and "user 12", for one that is gone. Empty for 0.
QString ContactName(Station& station, qint32 reference);
QString UserNameOf(Station& station, qint32 reference);

/// "9-17", "6-9,18-24", "9", "all" or "none" as the hours of one day. Failure (usage) for anything else.
QString ParseHours(const QString& typed);

/// A date as the user types it, empty for none. Failure (usage) for what is no date.
Date ParseStart(const QString& typed);
/// The same; a day alone counts to its end.
Date ParseEnd(const QString& typed);

/// "2 of 5 left".
QString StockWords(const cPrize& prize);
QJsonObject ToJson(const cPrize& prize);
