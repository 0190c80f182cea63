// SPDX-License-Identifier: Apache-2.0
#include "prizes/HoursText.h"

#include "prizes/PrizeHour.h"
#include "prizes/cPrize.h"

#include <QStringList>

#include <bitset>

namespace
{
constexpr int DaysAWeek = PrizeHour::DaysAWeek;
constexpr int HoursADay = PrizeHour::HoursADay;
using DayHours = std::bitset<HoursADay>;

/// As the prize reads them, whatever stands in the texts.
std::array<DayHours, DaysAWeek> Read(const WeekOfHours& hours)
{
    cPrize prize;
    std::array<DayHours, DaysAWeek> week;
    for (qint16 day = 1; day <= DaysAWeek; ++day) {
        const auto index = static_cast<std::size_t>(day - 1);
        prize.SetAvailableHours(day, hours.at(index));
        for (qint16 hour = 0; hour < HoursADay; ++hour)
            week.at(index).set(static_cast<std::size_t>(hour), prize.AvailableForHour(day, hour));
    }
    return week;
}

/// "a, b and c".
QString Listed(const QStringList& parts)
{
    if (parts.size() < 2)
        return parts.join(QString());
    return parts.mid(0, parts.size() - 1).join(QStringLiteral(", ")) + QStringLiteral(" and ") + parts.last();
}

QString Ranges(const DayHours& hours)
{
    if (hours.all())
        return QStringLiteral("all day");
    QStringList ranges;
    for (std::size_t hour = 0; hour < HoursADay; ++hour) {
        if (!hours.test(hour))
            continue;
        const std::size_t from = hour;
        while (hour < HoursADay && hours.test(hour))
            ++hour;
        const QString until =
            hour == HoursADay ? QStringLiteral("midnight") : HoursText::HourName(static_cast<int>(hour));
        ranges.append(HoursText::HourName(static_cast<int>(from)) + QStringLiteral(" to ") + until);
    }
    return Listed(ranges);
}

/// Three days in a row, or more, are a span.
QString Days(const std::bitset<DaysAWeek>& days)
{
    if (days.all())
        return QStringLiteral("every day");
    QStringList names;
    for (int day = 1; day <= DaysAWeek; ++day) {
        if (!days.test(static_cast<std::size_t>(day - 1)))
            continue;
        int last = day;
        while (last < DaysAWeek && days.test(static_cast<std::size_t>(last)))
            ++last;
        if (last - day >= 2) {
            names.append(HoursText::DayName(day) + QStringLiteral(" to ") + HoursText::DayName(last));
            day = last;
        } else {
            names.append(HoursText::DayName(day));
        }
    }
    return Listed(names);
}
} // namespace

WeekOfHours HoursText::HoursOf(const cPrize& prize)
{
    WeekOfHours hours;
    for (qint16 day = 1; day <= DaysAWeek; ++day)
        hours.at(static_cast<std::size_t>(day - 1)) = prize.AvailableHours(day);
    return hours;
}

QString HoursText::DayName(int weekDay)
{
    static const std::array<QString, DaysAWeek> names{
        QStringLiteral("Monday"), QStringLiteral("Tuesday"),  QStringLiteral("Wednesday"), QStringLiteral("Thursday"),
        QStringLiteral("Friday"), QStringLiteral("Saturday"), QStringLiteral("Sunday")};
    return weekDay >= 1 && weekDay <= DaysAWeek ? names.at(static_cast<std::size_t>(weekDay - 1)) : QString();
}

QString HoursText::HourName(int hour)
{
    return QStringLiteral("%1:00").arg(hour, 2, 10, QLatin1Char('0'));
}

QString HoursText::InWords(const WeekOfHours& hours)
{
    const auto week = Read(hours);
    QStringList parts;
    std::bitset<DaysAWeek> told;
    for (std::size_t day = 0; day < DaysAWeek; ++day) {
        if (told.test(day) || week.at(day).none())
            continue;
        std::bitset<DaysAWeek> equal;
        for (std::size_t other = day; other < DaysAWeek; ++other)
            equal.set(other, week.at(other) == week.at(day));
        told |= equal;
        if (equal.all() && week.at(day).all())
            return AtAnyTime;
        parts.append(Days(equal) + QLatin1Char(' ') + Ranges(week.at(day)));
    }
    return parts.isEmpty() ? Never : parts.join(QStringLiteral("; "));
}
