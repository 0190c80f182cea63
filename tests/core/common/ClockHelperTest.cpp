// SPDX-License-Identifier: Apache-2.0
#include "common/ClockHelper.h"

#include "support/FixedClock.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
void ExpectSame(Date actual, Date expected)
{
    EXPECT_EQ(actual.ToDateTime(Qt::UTC), expected.ToDateTime(Qt::UTC));
}
} // namespace

TEST(ClockHelperTest, TheClockInForceSaysTheTime)
{
    FixedClock clock;
    ExpectSame(ClockHelper::NowUTC(), Date(2026, 11, 21, 14, 5, 9));
    ExpectSame(ClockHelper::CurrentTime(), Date(2026, 11, 21, 14, 5, 9));
    clock.SetUtc(QDateTime(QDate(2026, 7, 1), QTime(12, 0), Qt::UTC));
    ExpectSame(ClockHelper::NowUTC(), Date(2026, 7, 1, 12));
    ExpectSame(ClockHelper::CurrentTime(), Date(2026, 7, 1, 13));
}

TEST(ClockHelperTest, WithoutOneItIsTheMachines)
{
    const qint64 difference = ClockHelper::NowUTC().ToDateTime(Qt::UTC).msecsTo(QDateTime::currentDateTimeUtc());
    EXPECT_GE(difference, 0);
    EXPECT_LT(difference, 60000);
}

TEST(ClockHelperTest, SecondsSinceAreCountedFromLocalTime)
{
    FixedClock clock(QDateTime(QDate(2026, 7, 1), QTime(12, 0), Qt::UTC));
    EXPECT_DOUBLE_EQ(ClockHelper::SecondsSince(Date(2026, 7, 1, 12, 59, 30)), 30);
    EXPECT_DOUBLE_EQ(ClockHelper::SecondsSince(Date(2026, 7, 1, 13, 1)), -60);
    clock.Advance(86400);
    EXPECT_DOUBLE_EQ(ClockHelper::SecondsSince(Date(2026, 7, 1, 12, 59, 30)), 86430);
    EXPECT_GE(ClockHelper::SecondsSince(Date()), std::numeric_limits<double>::max());
}

TEST(ClockHelperTest, NoneStaysNone)
{
    EXPECT_EQ(ClockHelper::UTCToLocal(Date()), Date());
    EXPECT_EQ(ClockHelper::LocalToUTC(Date(-1.5)), Date(-1.5));
}

TEST(ClockHelperTest, TheOffsetIsThatOfTheDateNotOfToday)
{
    ExpectSame(ClockHelper::UTCToLocal(Date(2026, 1, 15, 12)), Date(2026, 1, 15, 12));
    ExpectSame(ClockHelper::UTCToLocal(Date(2026, 7, 15, 12)), Date(2026, 7, 15, 13));
    ExpectSame(ClockHelper::UTCToLocal(Date(2026, 6, 30, 23, 30)), Date(2026, 7, 1, 0, 30));
    ExpectSame(ClockHelper::LocalToUTC(Date(2026, 7, 1, 0, 30)), Date(2026, 6, 30, 23, 30));
    ExpectSame(ClockHelper::LocalToUTC(Date(2026, 1, 15, 12)), Date(2026, 1, 15, 12));
}

TEST(ClockHelperTest, ATimeThatTheClockSkippedIsReadAsIfItHadNotMovedOn)
{
    ExpectSame(ClockHelper::LocalToUTC(Date(2026, 3, 29, 1, 30)), Date(2026, 3, 29, 1, 30));
    ExpectSame(ClockHelper::LocalToUTC(Date(2026, 3, 29, 0, 59, 59)), Date(2026, 3, 29, 0, 59, 59));
    ExpectSame(ClockHelper::LocalToUTC(Date(2026, 3, 29, 2, 0)), Date(2026, 3, 29, 1, 0));
}

TEST(ClockHelperTest, ATimeThatTheClockShowedTwiceIsTheFirst)
{
    ExpectSame(ClockHelper::LocalToUTC(Date(2026, 10, 25, 1, 30)), Date(2026, 10, 25, 0, 30));
    ExpectSame(ClockHelper::LocalToUTC(Date(2026, 10, 25, 0, 59, 59)), Date(2026, 10, 24, 23, 59, 59));
    ExpectSame(ClockHelper::LocalToUTC(Date(2026, 10, 25, 2, 0)), Date(2026, 10, 25, 2, 0));
    ExpectSame(ClockHelper::UTCToLocal(Date(2026, 10, 25, 0, 30)), Date(2026, 10, 25, 1, 30));
    ExpectSame(ClockHelper::UTCToLocal(Date(2026, 10, 25, 1, 30)), Date(2026, 10, 25, 1, 30));
}

TEST(ClockHelperTest, EveryHourOfAYearButTheRepeatedOneGoesThereAndBack)
{
    for (Date utc(2026, 1, 1, 0, 15); utc < Date(2027, 1, 1); utc = Date(utc.DayNumber() + 1.0 / 24)) {
        if (utc > Date(2026, 10, 25, 1) && utc < Date(2026, 10, 25, 2))
            continue;
        ExpectSame(ClockHelper::LocalToUTC(ClockHelper::UTCToLocal(utc)), utc);
    }
}
