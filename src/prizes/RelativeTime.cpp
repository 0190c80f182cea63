// SPDX-License-Identifier: Apache-2.0
#include "prizes/RelativeTime.h"

#include "common/ClockHelper.h"

#include <cmath>

namespace
{
constexpr qint64 MillisecondsADay = 86400000;
constexpr qint64 MillisecondsAnHour = 3600000;
constexpr qint64 SecondsAnHour = 3600;
constexpr int Noon = 12;
/// Monday, 1 January 1900.
constexpr qint64 FirstMonday = 2;

/// Milliseconds since day zero.
qint64 MillisecondsOf(Date date)
{
    return date.IsNone() ? 0 : std::llround(date.DayNumber() * static_cast<double>(MillisecondsADay));
}

/// Counts the weeks, each from Monday to Sunday.
qint64 WeekNumber(qint64 day)
{
    const qint64 sinceMonday = day - FirstMonday;
    return sinceMonday >= 0 ? sinceMonday / 7 : (sinceMonday - 6) / 7;
}

/// "No date" is written as the day zero that it stands for.
QString Written(Date date, const QString& pattern)
{
    constexpr double justAfterMidnight = 1e-9;
    return (date.IsNone() ? Date(justAfterMidnight) : date).Format(pattern);
}

QString TodayText(qint64 value, qint64 now, const QString& time)
{
    const qint64 seconds = (now - value) / 1000;
    if (seconds <= SecondsAnHour) {
        const qint64 minutes = seconds / 60;
        return minutes > 1 ? QStringLiteral("%1 minutes ago").arg(minutes) : QStringLiteral("(Won just now)");
    }
    const auto hourOf = [](qint64 milliseconds) { return milliseconds % MillisecondsADay / MillisecondsAnHour; };
    if (hourOf(now) < Noon)
        return QStringLiteral("Today ") + time;
    return (hourOf(value) < Noon ? QStringLiteral("This morning (%1)") : QStringLiteral("This afternoon (%1)"))
        .arg(time);
}
} // namespace

QString TolvaControlsFN::RelativeTimeText(Date value)
{
    const QString whole = Written(value, QStringLiteral("ddddd hh:nn"));
    const qint64 moment = MillisecondsOf(value);
    const qint64 now = MillisecondsOf(ClockHelper::CurrentTime());
    const qint64 day = moment / MillisecondsADay;
    const qint64 today = now / MillisecondsADay;
    if ((now - moment) / 1000 < 0 || day < today - 7)
        return whole;
    const QString time = Written(value, QStringLiteral("hh:nn"));
    const QString dayAndTime = Written(value, QStringLiteral("dddd hh:nn"));
    // Before yesterday: on a Monday the day before belongs to last week.
    if (WeekNumber(day) == WeekNumber(today) - 1)
        return QStringLiteral("Last ") + dayAndTime;
    if (day < today - 1)
        return dayAndTime;
    if (day == today - 1)
        return QStringLiteral("Yesterday (%1)").arg(time);
    return day == today ? TodayText(moment, now, time) : whole;
}
