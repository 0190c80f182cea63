// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"

#include <QChar>

/// One hour of the week, as prizes are restricted to some. A plain value.
struct PrizeHour
{
    static constexpr qint16 DaysAWeek = 7;
    static constexpr qint16 HoursADay = 24;

    qint16 WeekDay = 1; ///< 1 Monday to 7 Sunday.
    qint16 Hour = 0;    ///< 0 to 23.

    /// The hour in which that moment lies. No date is the midnight of day zero, a Saturday.
    static PrizeHour At(Date moment);
    bool IsValid() const { return WeekDay >= 1 && WeekDay <= DaysAWeek && Hour >= 0 && Hour < HoursADay; }
    /// "A" for midnight to "X" for 23:00. Each hour has its own, so that a search for the letter finds the hour.
    QChar Letter() const { return QChar(u'A' + Hour); }
};
