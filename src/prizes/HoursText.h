// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>

#include <array>

class cPrize;

/// The hours of a week in which a prize may go out, Monday first, each day in the form of cPrize::AvailableHours.
using WeekOfHours = std::array<QString, 7>;

/// A prize's hours in the words that a presenter would use.
namespace HoursText
{

inline const QString AtAnyTime = QStringLiteral("at any time");
inline const QString Never = QStringLiteral("never");

TOLVA_EXPORT WeekOfHours HoursOf(const cPrize& prize);

/// AtAnyTime, Never, or days with equal hours together: "Monday to Friday 09:00 to 17:00; Saturday 06:00 to 09:00
/// and 18:00 to midnight". Days without hours are left out; a whole day is "all day", seven equal ones are "every day".
TOLVA_EXPORT QString InWords(const WeekOfHours& hours);

/// weekDay: 1 Monday to 7 Sunday; empty outside.
TOLVA_EXPORT QString DayName(int weekDay);
/// "09:00" for 9.
TOLVA_EXPORT QString HourName(int hour);

} // namespace HoursText
