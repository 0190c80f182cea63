// SPDX-License-Identifier: Apache-2.0

// tolva prize hours: when a prize may be given away.

#include "Terminal.h"
#include "commands/PrizeForms.h"
#include "commands/PrizeText.h"
#include "prizes/PrizeHour.h"

#include <QJsonArray>

namespace
{
using namespace PrizeOptions;

constexpr qint16 AllDays = 0;

/// 1 to 7 for "mon" or "Monday", AllDays for "all". Failure (usage) for anything else.
qint16 DayOf(const Arguments& arguments)
{
    const QString typed = arguments.Value(Day, QStringLiteral("all")).trimmed().toLower();
    if (typed == u"all")
        return AllDays;
    for (qint16 day = 1; day <= PrizeHour::DaysAWeek; ++day) {
        const QString name = HoursText::DayName(day).toLower();
        if (typed == name || typed == name.left(3))
            return day;
    }
    throw Failure(exitUsage,
                  QStringLiteral("\"%1\" is no day. Days are mon, tue, wed, thu, fri, sat, sun and all.").arg(typed));
}

void Print(const cPrize& prize, qint16 asked)
{
    for (qint16 day = 1; day <= PrizeHour::DaysAWeek; ++day) {
        if (asked != AllDays && asked != day)
            continue;
        // A week with this day alone, so that it is said for it alone.
        WeekOfHours week;
        week.fill(QString(PrizeHour::HoursADay, u' '));
        week.at(static_cast<std::size_t>(day - 1)) = prize.AvailableHours(day);
        const QString words = HoursText::InWords(week);
        const QString name = HoursText::DayName(day);
        Terminal::PrintLine(words.startsWith(name) ? words : name + u' ' + words);
    }
}

void PrintJson(const cPrize& prize, qint16 asked)
{
    for (qint16 day = 1; day <= PrizeHour::DaysAWeek; ++day) {
        if (asked != AllDays && asked != day)
            continue;
        QJsonArray hours;
        for (qint16 hour = 0; hour < PrizeHour::HoursADay; ++hour) {
            if (prize.AvailableForHour(day, hour))
                hours.append(hour);
        }
        const QJsonObject object{{QStringLiteral("day"), HoursText::DayName(day).left(3).toLower()},
                                 {QStringLiteral("hours"), hours}};
        Terminal::PrintJson(object);
    }
}
} // namespace

void PrizeForms::CheckHours(const Arguments& arguments)
{
    DayOf(arguments);
    if (arguments.Has(Set))
        ParseHours(arguments.Value(Set));
}

int PrizeForms::Hours(Station& station, const Arguments& arguments)
{
    const qint16 asked = DayOf(arguments);
    if (arguments.Has(Set))
        station.Require(DirectoryRight::ManagePrizes, QStringLiteral("manage prizes"));
    const QString& words = arguments.Words().at(2);
    const auto setHours = [&](cPrize& prize) {
        for (qint16 day = 1; day <= PrizeHour::DaysAWeek; ++day) {
            if (asked == AllDays || asked == day)
                prize.SetAvailableHours(day, ParseHours(arguments.Value(Set)));
        }
    };
    const cPrizePtr prize = arguments.Has(Set) ? ChangePrize(station, words, setHours) : PrizeOf(station, words);
    if (arguments.Has(Json))
        PrintJson(*prize, asked);
    else
        Print(*prize, asked);
    return exitOK;
}
