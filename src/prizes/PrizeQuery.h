// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "platform/Export.h"
#include "prizes/PrizeListCategory.h"

#include <QString>

class cPrize;

/// Which prizes a list shows. Shared by everything that lists prizes, so that all agree.
namespace PrizeQuery
{

/// What goes behind "SELECT * FROM [Prizes] ": " WHERE (...) ", or nothing when all prizes are asked for. A value that
/// is no kind asks for all. findText: goes into a LIKE pattern between double quotes as it stands (so *, ?, # and [ are
/// wildcards, and a double quote must stand twice); empty for all prizes. nowUtc: universal time; its day and hour
/// decide what is available.
QString Condition(enPrizeListCategory category, const QString& findText, Date nowUtc);

/// What keeps a prize off the lists of what is available.
enum class Unlisted
{
    No, ///< All available prizes list it, and some hours do.
    NoneSupplied,
    AllWon,
    NotYet,
    Over,
    NoHours ///< Only the lists of each hour leave it out.
};
/// The first of these that holds of a prize as the record has it, by what Condition compares.
TOLVA_EXPORT Unlisted WhyUnlisted(const cPrize& prize, Date nowUtc);
/// Universal time: the day from whose beginning on a prize with a start is listed.
TOLVA_EXPORT Date FirstListedDay(const cPrize& prize);

} // namespace PrizeQuery
