// SPDX-License-Identifier: Apache-2.0
#include "prizes/HoursText.h"

#include "support/Print.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace
{
const QString All = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWX");
const QString None = QString(24, u' ');

QString Hours(int from, int until)
{
    QString hours = None;
    hours.replace(from, until - from, All.mid(from, until - from));
    return hours;
}

/// Days that are not given have no hours.
QString WordsOfHours(const QList<QString>& days)
{
    WeekOfHours week;
    for (qsizetype i = 0; i < days.size(); ++i)
        week.at(static_cast<std::size_t>(i)) = days.at(i);
    return HoursText::InWords(week);
}
} // namespace

TEST(HoursTextTest, TheWholeWeekIsAtAnyTimeAndNoHoursAreNever)
{
    EXPECT_EQ(WordsOfHours(QList<QString>(7, All)), QStringLiteral("at any time"));
    EXPECT_EQ(WordsOfHours(QList<QString>(7, None)), QStringLiteral("never"));
    EXPECT_EQ(WordsOfHours({}), QStringLiteral("never"));
}

TEST(HoursTextTest, EqualDaysStandTogether)
{
    const QString office = Hours(9, 17);
    const QString morning = Hours(6, 12);
    EXPECT_EQ(WordsOfHours({office, office, office, office, office, morning, None}),
              QStringLiteral("Monday to Friday 09:00 to 17:00; Saturday 06:00 to 12:00"));
    EXPECT_EQ(WordsOfHours(QList<QString>(7, office)), QStringLiteral("every day 09:00 to 17:00"));
    EXPECT_EQ(WordsOfHours({None, None, None, None, None, All, All}), QStringLiteral("Saturday and Sunday all day"));
    EXPECT_EQ(WordsOfHours({office, morning, office, morning, office, office, office}),
              QStringLiteral("Monday, Wednesday and Friday to Sunday 09:00 to 17:00; Tuesday and Thursday 06:00 to "
                             "12:00"));
    EXPECT_EQ(WordsOfHours({office, office, None, office}),
              QStringLiteral("Monday, Tuesday and Thursday 09:00 to 17:00"));
}

TEST(HoursTextTest, SeveralRangesOfADayAreListed)
{
    QString hours = Hours(0, 1);
    hours.replace(6, 3, All.mid(6, 3));
    hours.replace(23, 1, All.mid(23));
    EXPECT_EQ(WordsOfHours({None, None, hours}),
              QStringLiteral("Wednesday 00:00 to 01:00, 06:00 to 09:00 and 23:00 to midnight"));
    EXPECT_EQ(WordsOfHours({Hours(18, 24)}), QStringLiteral("Monday 18:00 to midnight"));
    EXPECT_EQ(WordsOfHours({Hours(0, 23)}), QStringLiteral("Monday 00:00 to 23:00"));
}

TEST(HoursTextTest, OddTextsAreReadAsThePrizeReadsThem)
{
    EXPECT_EQ(WordsOfHours({QStringLiteral("AB")}), QStringLiteral("Monday 00:00 to 02:00"));
    EXPECT_EQ(WordsOfHours({QString(40, u'z')}), QStringLiteral("Monday all day"));
    EXPECT_EQ(WordsOfHours({QStringLiteral("  x?")}), QStringLiteral("Monday 02:00 to 04:00"));
    EXPECT_EQ(WordsOfHours({QStringLiteral("AB"), QStringLiteral("ab")}),
              QStringLiteral("Monday and Tuesday 00:00 to 02:00"));
    EXPECT_EQ(WordsOfHours({None + QStringLiteral("A")}), QStringLiteral("never"));
}

TEST(HoursTextTest, DaysAndHoursHaveNames)
{
    EXPECT_EQ(HoursText::DayName(1), QStringLiteral("Monday"));
    EXPECT_EQ(HoursText::DayName(7), QStringLiteral("Sunday"));
    EXPECT_EQ(HoursText::DayName(0), QString());
    EXPECT_EQ(HoursText::DayName(8), QString());
    EXPECT_EQ(HoursText::HourName(9), QStringLiteral("09:00"));
    EXPECT_EQ(HoursText::HourName(23), QStringLiteral("23:00"));
}
