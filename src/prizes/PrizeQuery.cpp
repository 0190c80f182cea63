// SPDX-License-Identifier: Apache-2.0
#include "prizes/PrizeQuery.h"

#include "common/ClockHelper.h"
#include "prizes/HoursText.h"
#include "prizes/PrizeHour.h"
#include "prizes/cPrize.h"

#include <cmath>

namespace
{
constexpr double RecentDays = 7;

void Join(QString& condition, const QString& further)
{
    if (!condition.isEmpty())
        condition += QStringLiteral(" AND ");
    condition += further;
}

QString FindCondition(const QString& findText)
{
    return QStringLiteral("([Title] LIKE \"*") + findText + QStringLiteral("*\" OR [Notes] LIKE \"*") + findText +
           QStringLiteral("*\" )");
}

/// The dates are compared with the day alone: a start in the middle of today counts from tomorrow, and an end in the
/// middle of today until midnight.
QString AvailableCondition(Date nowUtc)
{
    const QString day = QString::number(static_cast<qint64>(std::floor(nowUtc.DayNumber())));
    return QStringLiteral(" [NumberWinners]<[NumberSupplied]"
                          " AND ( ([StartDate] is null or [StartDate]=0) OR ([StartDate]<=%1) )"
                          " AND ( ([EndDate] is null or [EndDate]=0) OR ([EndDate]>=%1) )")
        .arg(day);
}

QString HourCondition(Date nowUtc)
{
    const PrizeHour hour = PrizeHour::At(nowUtc);
    return QStringLiteral("AND [HourRestrictions%1] LIKE '*%2*'").arg(hour.WeekDay).arg(hour.Letter());
}

/// The year first: read alike whatever the locale of this machine.
QString DateLiteral(Date date)
{
    return u'#' + date.Format(QStringLiteral("yyyy-mm-dd hh:nn:ss")) + u'#';
}
} // namespace

QString PrizeQuery::Condition(enPrizeListCategory category, const QString& findText, Date nowUtc)
{
    QString condition;
    if (!findText.isEmpty())
        Join(condition, FindCondition(findText));
    if (category == plcAvailable || category == plcAllAvailable)
        Join(condition, AvailableCondition(nowUtc));
    if (category == plcAvailable)
        condition += HourCondition(nowUtc);
    if (category == plcWonPrizes)
        Join(condition, QStringLiteral("([NumberWinners]>0) "));
    if (category == plcRecentlyWonPrizes) {
        const Date since(nowUtc.DayNumber() - RecentDays);
        Join(condition, QStringLiteral("([LastWonDate]>=") + DateLiteral(since) + QStringLiteral(") "));
    }
    return condition.isEmpty() ? QString() : QStringLiteral(" WHERE (") + condition + QStringLiteral(") ");
}

Date PrizeQuery::FirstListedDay(const cPrize& prize)
{
    return prize.StartDate().IsNone() ? Date()
                                      : Date(std::ceil(ClockHelper::LocalToUTC(prize.StartDate()).DayNumber()));
}

PrizeQuery::Unlisted PrizeQuery::WhyUnlisted(const cPrize& prize, Date nowUtc)
{
    if (prize.NumberSupplied() <= 0)
        return Unlisted::NoneSupplied;
    if (prize.NumberWinners() >= prize.NumberSupplied())
        return Unlisted::AllWon;
    const Date day(std::floor(nowUtc.DayNumber()));
    if (day < FirstListedDay(prize))
        return Unlisted::NotYet;
    if (!prize.EndDate().IsNone() && ClockHelper::LocalToUTC(prize.EndDate()) < day)
        return Unlisted::Over;
    return HoursText::InWords(HoursText::HoursOf(prize)) == HoursText::Never ? Unlisted::NoHours : Unlisted::No;
}
