// Past moments in the words that a presenter would say.

#include "prizes/RelativeTime.h"

#include "support/FixedClock.h"

#include <gtest/gtest.h>

using TolvaControlsFN::RelativeTimeText;

namespace
{
class RelativeTimeTest : public testing::Test
{
protected:
    /// November: London's clock shows universal time.
    static QDateTime Moment(int day, int hour, int minute, int second = 0, int month = 11)
    {
        return QDateTime(QDate(2026, month, day), QTime(hour, minute, second), Qt::UTC);
    }
    QString At(const QDateTime& now, Date value)
    {
        Now.SetUtc(now);
        return RelativeTimeText(value);
    }
    FixedClock Now;
};
} // namespace

TEST_F(RelativeTimeTest, WithinTheHourMinutesCount)
{
    const Date won(2026, 11, 18, 14, 0, 0); // a Wednesday
    EXPECT_EQ(At(Moment(18, 14, 0, 0), won), QStringLiteral("(Won just now)"));
    EXPECT_EQ(At(Moment(18, 14, 1, 30), won), QStringLiteral("(Won just now)"));
    EXPECT_EQ(At(Moment(18, 14, 1, 59), won), QStringLiteral("(Won just now)"));
    EXPECT_EQ(At(Moment(18, 14, 2, 0), won), QStringLiteral("2 minutes ago"));
    EXPECT_EQ(At(Moment(18, 14, 12, 59), won), QStringLiteral("12 minutes ago"));
    EXPECT_EQ(At(Moment(18, 15, 0, 0), won), QStringLiteral("60 minutes ago"));
    EXPECT_EQ(At(Moment(18, 15, 0, 1), won), QStringLiteral("This afternoon (14:00)"));
}

TEST_F(RelativeTimeTest, ThePartOfTheDayIsSaidFromNoonOn)
{
    EXPECT_EQ(At(Moment(18, 11, 0), Date(2026, 11, 18, 8, 0, 0)), QStringLiteral("Today 08:00"));
    EXPECT_EQ(At(Moment(18, 11, 59, 59), Date(2026, 11, 18, 8, 0, 0)), QStringLiteral("Today 08:00"));
    EXPECT_EQ(At(Moment(18, 12, 0), Date(2026, 11, 18, 8, 0, 0)), QStringLiteral("This morning (08:00)"));
    EXPECT_EQ(At(Moment(18, 18, 0), Date(2026, 11, 18, 11, 59, 0)), QStringLiteral("This morning (11:59)"));
    EXPECT_EQ(At(Moment(18, 18, 0), Date(2026, 11, 18, 12, 0, 0)), QStringLiteral("This afternoon (12:00)"));
    EXPECT_EQ(At(Moment(18, 18, 0), Date(2026, 11, 18, 13, 0, 0)), QStringLiteral("This afternoon (13:00)"));
}

TEST_F(RelativeTimeTest, TheDayGoesBeforeTheMinutes)
{
    EXPECT_EQ(At(Moment(19, 0, 5), Date(2026, 11, 18, 23, 59, 0)), QStringLiteral("Yesterday (23:59)"));
    EXPECT_EQ(At(Moment(19, 9, 0), Date(2026, 11, 18, 17, 2, 0)), QStringLiteral("Yesterday (17:02)"));
    // Monday: Sunday was last week.
    EXPECT_EQ(At(Moment(16, 0, 5), Date(2026, 11, 15, 23, 59, 0)), QStringLiteral("Last Sunday 23:59"));
    EXPECT_EQ(At(Moment(16, 9, 0), Date(2026, 11, 15, 22, 10, 0)), QStringLiteral("Last Sunday 22:10"));
}

TEST_F(RelativeTimeTest, EarlierDaysAreNamed)
{
    EXPECT_EQ(At(Moment(20, 9, 0), Date(2026, 11, 18, 8, 5, 0)), QStringLiteral("Wednesday 08:05"));
    EXPECT_EQ(At(Moment(20, 9, 0), Date(2026, 11, 16, 0, 0, 0)), QStringLiteral("Monday 00:00"));
    EXPECT_EQ(At(Moment(20, 9, 0), Date(2026, 11, 15, 23, 59, 0)), QStringLiteral("Last Sunday 23:59"));
    // Seven days count by the day, not by the hour.
    EXPECT_EQ(At(Moment(20, 9, 0), Date(2026, 11, 13, 0, 0, 0)), QStringLiteral("Last Friday 00:00"));
    EXPECT_EQ(At(Moment(20, 9, 0), Date(2026, 11, 12, 23, 59, 0)), QStringLiteral("12/11/2026 23:59"));
}

TEST_F(RelativeTimeTest, TheFutureAndNoDateAreWrittenWhole)
{
    EXPECT_EQ(At(Moment(18, 14, 0, 0), Date(2026, 11, 18, 14, 0, 1)), QStringLiteral("18/11/2026 14:00"));
    EXPECT_EQ(At(Moment(18, 14, 0, 0), Date(2026, 12, 1, 9, 30, 0)), QStringLiteral("01/12/2026 09:30"));
    EXPECT_EQ(At(Moment(18, 14, 0, 0), Date()), QStringLiteral("30/12/1899 00:00"));
}

TEST_F(RelativeTimeTest, NowIsLocalTime)
{
    // July: London is an hour ahead of universal time.
    EXPECT_EQ(At(Moment(15, 13, 5, 0, 7), Date(2026, 7, 15, 14, 0, 0)), QStringLiteral("5 minutes ago"));
    EXPECT_EQ(At(Moment(14, 23, 30, 0, 7), Date(2026, 7, 14, 23, 45, 0)), QStringLiteral("Yesterday (23:45)"));
}
