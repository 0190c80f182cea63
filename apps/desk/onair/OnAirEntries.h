// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"
#include "messages/onair/OnAirEntry.h"

#include <QSet>

class DeskStation;
class cPrize;

/// Entries of the running order, made of what the station holds, and in words.
namespace OnAirEntries
{
/// Raises dao::Error as the station and its directory do.
OnAirEntry OfMessage(const cMessage& message, DeskStation& station);
OnAirEntry OfPrize(const cPrize& prize, DeskStation& station);

/// The messages and prizes of these entries that are not stored any more, by the entries' references. Two statements,
/// however many they are. Raises dao::Error.
QSet<qint32> Gone(const QList<OnAirEntry>& entries, DeskStation& station);

/// "Used at 14:05 by Petra"; empty for one that waits.
QString StateInWords(const OnAirEntry& entry);
/// One line for a list: what became of it, who wrote and how it begins.
QString LineOf(const OnAirEntry& entry, int number);
/// Who wrote and when, as it stands above the text.
QString HeadOf(const OnAirEntry& entry);
} // namespace OnAirEntries
