// SPDX-License-Identifier: Apache-2.0

// Past moments in the words that a presenter would say.

#include "prizes/RelativeTime.h"

#include "common/ClockHelper.h"
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

TEST_F(RelativeTimeTest, AFractionOfASecondAheadIsNotTheFuture)
{
    Now.SetUtc(QDateTime(QDate(2026, 11, 18), QTime(14, 0, 0, 200), Qt::UTC));
    const double second = 1 / 86400.0;
    const double now = ClockHelper::CurrentTime().DayNumber();
    EXPECT_EQ(RelativeTimeText(Date(now + 0.5 * second)), QStringLiteral("(Won just now)"));
    EXPECT_EQ(RelativeTimeText(Date(now + 1.5 * second)), QStringLiteral("18/11/2026 14:00"));
}

TEST_F(RelativeTimeTest, TheHourEndsAtItsLastSecondBeforeNoonToo)
{
    const Date won(2026, 11, 18, 9, 0, 0);
    EXPECT_EQ(At(Moment(18, 9, 59, 59), won), QStringLiteral("59 minutes ago"));
    EXPECT_EQ(At(Moment(18, 10, 0, 0), won), QStringLiteral("60 minutes ago"));
    EXPECT_EQ(At(Moment(18, 10, 0, 1), won), QStringLiteral("Today 09:00"));
    // Within the hour minutes count across noon.
    EXPECT_EQ(At(Moment(18, 12, 20), Date(2026, 11, 18, 11, 50, 0)), QStringLiteral("30 minutes ago"));
}

TEST_F(RelativeTimeTest, MidnightIsTheFirstMomentOfItsDay)
{
    EXPECT_EQ(At(Moment(18, 0, 0, 0), Date(2026, 11, 18, 0, 0, 0)), QStringLiteral("(Won just now)"));
    EXPECT_EQ(At(Moment(18, 0, 0, 0), Date(2026, 11, 17, 23, 59, 59)), QStringLiteral("Yesterday (23:59)"));
    EXPECT_EQ(At(Moment(18, 23, 59, 59), Date(2026, 11, 18, 0, 0, 0)), QStringLiteral("This morning (00:00)"));
    EXPECT_EQ(At(Moment(18, 23, 59, 59), Date(2026, 11, 17, 0, 0, 0)), QStringLiteral("Yesterday (00:00)"));
}

TEST_F(RelativeTimeTest, EveryDayOfTheWeekLooksBackAtItsSevenDays)
{
    // What each of the eight days up to today is called, from Monday 16 to Sunday 22 November 2026.
    const QStringList names = {QStringLiteral("Monday"),   QStringLiteral("Tuesday"), QStringLiteral("Wednesday"),
                               QStringLiteral("Thursday"), QStringLiteral("Friday"),  QStringLiteral("Saturday"),
                               QStringLiteral("Sunday")};
    for (int today = 0; today < 7; ++today) {
        for (int age = 1; age <= 8; ++age) {
            const int day = today - age;
            QString expected;
            if (age > 7)
                expected = Date(2026, 11, 16 + day, 8, 30, 0).Format(QStringLiteral("ddddd hh:nn"));
            else if (day < 0)
                expected = QStringLiteral("Last %1 08:30").arg(names.at(day + 7 < 0 ? day + 14 : day + 7));
            else
                expected =
                    age == 1 ? QStringLiteral("Yesterday (08:30)") : QStringLiteral("%1 08:30").arg(names.at(day));
            EXPECT_EQ(At(Moment(16 + today, 20, 0), Date(2026, 11, 16 + day, 8, 30, 0)), expected)
                << today << ' ' << age;
        }
    }
}

TEST_F(RelativeTimeTest, WeeksRunOnOverTheYearAndALeapDay)
{
    // Friday, 1 January 2027: the Monday before is in the same week, the Sunday before that is not.
    const QDateTime newYear(QDate(2027, 1, 1), QTime(9, 0), Qt::UTC);
    EXPECT_EQ(At(newYear, Date(2026, 12, 31, 23, 0, 0)), QStringLiteral("Yesterday (23:00)"));
    EXPECT_EQ(At(newYear, Date(2026, 12, 28, 10, 0, 0)), QStringLiteral("Monday 10:00"));
    EXPECT_EQ(At(newYear, Date(2026, 12, 27, 10, 0, 0)), QStringLiteral("Last Sunday 10:00"));
    EXPECT_EQ(At(newYear, Date(2026, 12, 24, 10, 0, 0)), QStringLiteral("24/12/2026 10:00"));
    // Tuesday, 29 February 2028.
    const QDateTime march(QDate(2028, 3, 1), QTime(9, 0), Qt::UTC);
    EXPECT_EQ(At(march, Date(2028, 2, 29, 10, 0, 0)), QStringLiteral("Yesterday (10:00)"));
    EXPECT_EQ(At(march, Date(2028, 2, 28, 10, 0, 0)), QStringLiteral("Monday 10:00"));
    EXPECT_EQ(At(QDateTime(QDate(2028, 2, 29), QTime(9, 0), Qt::UTC), Date(2028, 2, 29, 8, 58, 0)),
              QStringLiteral("2 minutes ago"));
}

TEST_F(RelativeTimeTest, TheClockFaceCountsWhenTheClockChanges)
{
    // London goes forward on Sunday, 29 March 2026 at 01:00: half an hour on the air is an hour and a half on the face.
    const QDateTime spring(QDate(2026, 3, 29), QTime(1, 15), Qt::UTC);
    EXPECT_EQ(At(spring, Date(2026, 3, 29, 0, 45, 0)), QStringLiteral("Today 00:45"));
    EXPECT_EQ(At(spring, Date(2026, 3, 29, 2, 10, 0)), QStringLiteral("5 minutes ago"));
    EXPECT_EQ(At(spring, Date(2026, 3, 28, 23, 0, 0)), QStringLiteral("Yesterday (23:00)"));
    // Back on Sunday, 25 October at 02:00: what was at ten to two lies ahead at ten past one.
    const QDateTime autumn(QDate(2026, 10, 25), QTime(1, 10), Qt::UTC);
    EXPECT_EQ(At(autumn, Date(2026, 10, 25, 1, 50, 0)), QStringLiteral("25/10/2026 01:50"));
    EXPECT_EQ(At(autumn, Date(2026, 10, 25, 1, 5, 0)), QStringLiteral("5 minutes ago"));
    // The Monday after: the day of 25 hours is last week's.
    EXPECT_EQ(At(QDateTime(QDate(2026, 10, 26), QTime(9, 0), Qt::UTC), Date(2026, 10, 25, 1, 50, 0)),
              QStringLiteral("Last Sunday 01:50"));
}
