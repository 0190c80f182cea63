// SPDX-License-Identifier: Apache-2.0
#include "prizes/PrizeHour.h"

#include <cmath>

PrizeHour PrizeHour::At(Date moment)
{
    constexpr qint64 millisecondsADay = 86400000;
    constexpr qint64 millisecondsAnHour = 3600000;
    constexpr qint64 weekDayOfDayZero = 5; // Saturday, counted from 0
    const qint64 milliseconds =
        moment.IsNone() ? 0 : std::llround(moment.DayNumber() * static_cast<double>(millisecondsADay));
    const qint64 weekDay = (milliseconds / millisecondsADay + weekDayOfDayZero) % DaysAWeek;
    return {static_cast<qint16>(weekDay + 1),
            static_cast<qint16>(milliseconds % millisecondsADay / millisecondsAnHour)};
}
