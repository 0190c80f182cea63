// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "prizes/PrizeListCategory.h"

#include <QString>

/// Which prizes a list shows. Shared by everything that lists prizes, so that all agree.
namespace PrizeQuery
{

/// What goes behind "SELECT * FROM [Prizes] ": " WHERE (...) ", or nothing when all prizes are asked for. A value that
/// is no kind asks for all. findText: goes into a LIKE pattern between double quotes as it stands (so *, ?, # and [ are
/// wildcards, and a double quote must stand twice); empty for all prizes. nowUtc: universal time; its day and hour
/// decide what is available.
QString Condition(enPrizeListCategory category, const QString& findText, Date nowUtc);

} // namespace PrizeQuery
