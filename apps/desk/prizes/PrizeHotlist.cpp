// SPDX-License-Identifier: Apache-2.0
#include "PrizeHotlist.h"

#include "common/Date.h"

#include <QStringList>

namespace
{
constexpr QChar Divider = u'|';

bool IsDay(const QString& day)
{
    if (day.size() != Date::HoursADay)
        return false;
    for (int hour = 0; hour < Date::HoursADay; ++hour) {
        if (day.at(hour) != u' ' && day.at(hour) != QChar(u'A' + hour))
            return false;
    }
    return true;
}
} // namespace

QString PrizeHotlist::TextOf(const std::array<QString, 7>& hours)
{
    return QStringList(hours.begin(), hours.end()).join(Divider);
}

std::optional<std::array<QString, 7>> PrizeHotlist::Read(const QString& text)
{
    const QStringList days = text.split(Divider);
    std::array<QString, 7> hours;
    if (days.size() != static_cast<qsizetype>(hours.size()))
        return std::nullopt;
    for (size_t i = 0; i < hours.size(); ++i) {
        // The last hours of a Sunday are blanks that a store may cut off.
        QString day = days.at(static_cast<qsizetype>(i));
        if (i + 1 == hours.size())
            day = day.leftJustified(Date::HoursADay);
        if (!IsDay(day))
            return std::nullopt;
        hours.at(i) = day;
    }
    return hours;
}
