// SPDX-License-Identifier: Apache-2.0
#include "common/Date.h"

#include <QLocale>
#include <QTimeZone>

#include <gtest/gtest.h>

namespace
{
/// The locale of the process for the life of a scope.
class LocaleScope
{
public:
    explicit LocaleScope(const QLocale& locale) { QLocale::setDefault(locale); }
    ~LocaleScope() { QLocale::setDefault(Before_); }
    LocaleScope(const LocaleScope&) = delete;
    LocaleScope& operator=(const LocaleScope&) = delete;

private:
    QLocale Before_;
};

const Date Afternoon(2026, 11, 21, 14, 5, 9);

void ExpectParsed(const char16_t* text, const Date& expected)
{
    const std::optional<Date> date = Date::Parse(QString::fromUtf16(text));
    ASSERT_TRUE(date) << qPrintable(QString::fromUtf16(text));
    EXPECT_NEAR(date->DayNumber(), expected.DayNumber(), 1e-9) << qPrintable(QString::fromUtf16(text));
}

void ExpectNoDate(const char16_t* text)
{
    EXPECT_FALSE(Date::Parse(QString::fromUtf16(text))) << qPrintable(QString::fromUtf16(text));
}
} // namespace

TEST(DateTest, DayNumbersCountFromTheLastDaysOf1899)
{
    EXPECT_EQ(Date(1899, 12, 31).DayNumber(), 1);
    EXPECT_EQ(Date(1900, 1, 1).DayNumber(), 2);
    EXPECT_EQ(Date(2000, 1, 1, 12).DayNumber(), 36526.5);
    EXPECT_EQ(Date(2026, 11, 21, 6).DayNumber(), 46347.25);
}

TEST(DateTest, BeforeDayZeroTheTimeStillCountsForwardsWithinTheDay)
{
    EXPECT_EQ(Date(1899, 12, 29, 6).DayNumber(), -1.25);
    EXPECT_EQ(Date(1850, 1, 1).DayNumber(), -18260);
    EXPECT_TRUE(Date(1899, 12, 29, 6).IsNone());
}

TEST(DateTest, ZeroNegativeAndImpossibleDatesAreNone)
{
    EXPECT_TRUE(Date().IsNone());
    EXPECT_TRUE(Date(-3).IsNone());
    EXPECT_TRUE(Date(std::nan("")).IsNone());
    EXPECT_TRUE(Date(2026, 2, 31).IsNone());
    EXPECT_TRUE(Date(2026, 2, 3, 25).IsNone());
    EXPECT_TRUE(Date::FromDateTime(QDateTime()).IsNone());
    EXPECT_FALSE(Date().ToDateTime().isValid());
    EXPECT_EQ(Date().GeneralDate(), QString());
    EXPECT_EQ(Date().Format(QStringLiteral("yyyy")), QString());
}

TEST(DateTest, EveryMillisecondGoesThereAndBack)
{
    const QDate days[] = {QDate(1899, 12, 30), QDate(1899, 12, 31), QDate(2000, 2, 29), QDate(2026, 11, 21),
                          QDate(9999, 12, 31)};
    for (const QDate day : days) {
        for (int milliseconds = 1; milliseconds < 86400000; milliseconds += 7919) {
            const QDateTime moment(day, QTime::fromMSecsSinceStartOfDay(milliseconds), Qt::UTC);
            ASSERT_EQ(Date::FromDateTime(moment).ToDateTime(Qt::UTC), moment) << qPrintable(moment.toString());
        }
    }
}

TEST(DateTest, TheDateAndTimeAreTakenAsTheyStandInAnyZone)
{
    const QDateTime newYork(QDate(2026, 11, 21), QTime(14, 5, 9), QTimeZone("America/New_York"));
    EXPECT_EQ(Date::FromDateTime(newYork), Afternoon);
    EXPECT_EQ(Afternoon.ToDateTime().time(), QTime(14, 5, 9));
    EXPECT_EQ(Afternoon.ToDateTime().timeSpec(), Qt::LocalTime);
}

TEST(DateTest, GeneralDateIsShortDateAndLongTimeWithoutMidnight)
{
    EXPECT_EQ(Afternoon.GeneralDate(), u"21/11/2026 14:05:09");
    EXPECT_EQ(Date(2026, 11, 21).GeneralDate(), u"21/11/2026");
    EXPECT_EQ(Date(2026, 11, 21, 0, 0, 1).GeneralDate(), u"21/11/2026 00:00:01");
}

TEST(DateTest, GeneralDateHasFourDigitsOfTheYearInEveryLocale)
{
    const LocaleScope scope(QLocale(QStringLiteral("de_DE")));
    EXPECT_EQ(Afternoon.GeneralDate(), u"21.11.2026 14:05:09");
}

TEST(DateTest, FormatKnowsEveryLetter)
{
    const Date date(2026, 3, 7, 4, 5, 6);
    EXPECT_EQ(date.Format(QStringLiteral("yyyy-mm-dd hh.nn")), u"2026-03-07 04.05");
    EXPECT_EQ(date.Format(QStringLiteral("ddd dd mmm hh:nn")), u"Sat 07 Mar 04:05");
    EXPECT_EQ(date.Format(QStringLiteral("dddddd hh:nn")), u"Saturday, 7 March 2026 04:05");
    EXPECT_EQ(date.Format(QStringLiteral("ddd ddddd hh:nn")), u"Sat 07/03/2026 04:05");
    EXPECT_EQ(date.Format(QStringLiteral("yy m d h n s")), u"26 3 7 4 5 6");
    EXPECT_EQ(date.Format(QStringLiteral("dddd mmmm")), u"Saturday March");
    EXPECT_EQ(date.Format(QStringLiteral("hhnnss")), u"040506");
}

TEST(DateTest, MonthLettersBehindHoursAreMinutes)
{
    const Date date(2026, 3, 7, 4, 5, 6);
    EXPECT_EQ(date.Format(QStringLiteral("hh:mm")), u"04:05");
    EXPECT_EQ(date.Format(QStringLiteral("h.m")), u"4.5");
    EXPECT_EQ(date.Format(QStringLiteral("hh dd mm")), u"04 07 03");
    EXPECT_EQ(date.Format(QStringLiteral("hh mmm")), u"04 Mar");
    EXPECT_EQ(date.Format(QStringLiteral("hh:nn mm")), u"04:05 03");
}

TEST(DateTest, AllOtherCharactersStandForThemselves)
{
    EXPECT_EQ(Afternoon.Format(QStringLiteral("TZ [yyyy] 'ü'")), QStringLiteral("TZ [2026] 'ü'"));
    EXPECT_EQ(Afternoon.Format(QStringLiteral("y")), u"y");
    EXPECT_EQ(Afternoon.Format(QString()), QString());
}

TEST(DateTest, GeneralDateIsReadBackInEveryLocale)
{
    QStringList failures;
    const Date dates[] = {Afternoon,
                          Date(2026, 11, 21),
                          Date(2005, 6, 7, 0, 0, 1),
                          Date(2005, 6, 7, 12, 0, 0),
                          Date(2005, 6, 7, 11, 59, 59),
                          Date(1931, 1, 2, 23, 59, 59),
                          Date(2044, 12, 11, 0, 30, 0)};
    const QList<QLocale> locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
    ASSERT_GT(locales.size(), 300);
    for (const QLocale& locale : locales) {
        const LocaleScope scope(locale);
        for (const Date& date : dates) {
            const std::optional<Date> read = Date::Parse(date.GeneralDate());
            if (!read || qAbs(read->DayNumber() - date.DayNumber()) > 1e-7)
                failures.append(locale.name() + QStringLiteral(": ") + date.GeneralDate());
        }
    }
    EXPECT_TRUE(failures.isEmpty()) << qPrintable(failures.join(u'\n'));
}

TEST(DateTest, ReadsDatesOfPeopleAndOtherComputers)
{
    ExpectParsed(u"21/11/2026 14:05:09", Afternoon);
    ExpectParsed(u"  21/11/2026   14:05:09 ", Afternoon);
    ExpectParsed(u"21/11/2026", Date(2026, 11, 21));
    ExpectParsed(u"21.11.2026 14:05", Date(2026, 11, 21, 14, 5));
    ExpectParsed(u"21-11-26", Date(2026, 11, 21));
    ExpectParsed(u"2026-11-21T14:05:09", Afternoon);
    ExpectParsed(u"2026-11-21T14:05:09Z", Afternoon);
    ExpectParsed(u"2026-11-21 14:05:09+01:00", Afternoon);
    ExpectParsed(u"2026/11/21", Date(2026, 11, 21));
    ExpectParsed(u"21 Nov 2026", Date(2026, 11, 21));
    ExpectParsed(u"21st november 2026 2:05:09 pm", Afternoon);
    ExpectParsed(u"21-Nov-26", Date(2026, 11, 21));
    ExpectParsed(u"Sat, 21 Nov 2026 14:05:09", Afternoon);
    ExpectParsed(u"Nov 21, 2026 3:04 PM", Date(2026, 11, 21, 15, 4));
    ExpectParsed(u"November 21 2026", Date(2026, 11, 21));
    ExpectParsed(u"21/11/2026 12:30 am", Date(2026, 11, 21, 0, 30));
    ExpectParsed(u"21/11/2026 12:30 PM", Date(2026, 11, 21, 12, 30));
    ExpectParsed(u"Saturday, 21 November 2026", Date(2026, 11, 21));
}

TEST(DateTest, WhatStationsHoldAsTextIsReadInEveryLocale)
{
    QStringList failures;
    for (const QLocale& locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory)) {
        const LocaleScope scope(locale);
        const QString own = Afternoon.Format(QStringLiteral("dd mmm yyyy hh:nn:ss"));
        for (const QString& text : {QStringLiteral("21 Nov 2026 14:05:09"), own}) {
            const std::optional<Date> read = Date::Parse(text);
            if (!read || qAbs(read->DayNumber() - Afternoon.DayNumber()) > 1e-7)
                failures.append(locale.name() + QStringLiteral(": ") + text);
        }
    }
    EXPECT_TRUE(failures.isEmpty()) << qPrintable(failures.join(u'\n'));
    for (const char16_t* text : {u"31 Feb 2026 10:00:00", u"+1 Nov 2026 10:00:00", u"21 Nov +026 10:00:00",
                                 u"21 Nox 2026 10:00:00", u"21 Nov 2026 24:00:00", u"21 Nov 2026 10:00:60"})
        EXPECT_FALSE(Date::Parse(QString::fromUtf16(text))) << qPrintable(QString::fromUtf16(text));
}

TEST(DateTest, ATimeAloneIsAFractionOfADay)
{
    ExpectParsed(u"14:30", Date(14.5 / 24));
    ExpectParsed(u"2:30 PM", Date(14.5 / 24));
    ExpectParsed(u"3 pm", Date(15.0 / 24));
    ExpectParsed(u"00:00", Date());
}

TEST(DateTest, TwoDigitYearsAre1930To2029)
{
    ExpectParsed(u"01/02/29", Date(2029, 2, 1));
    ExpectParsed(u"01/02/30", Date(1930, 2, 1));
}

TEST(DateTest, DayAndMonthStandInTheLocalesOrderUnlessOnlyTheOtherMakesADate)
{
    ExpectParsed(u"05/06/2026", Date(2026, 6, 5));
    ExpectParsed(u"11/21/2026", Date(2026, 11, 21));
    const LocaleScope scope(QLocale(QStringLiteral("en_US")));
    ExpectParsed(u"05/06/2026", Date(2026, 5, 6));
    ExpectParsed(u"21/11/2026", Date(2026, 11, 21));
}

TEST(DateTest, OtherTextIsNoDate)
{
    for (const char16_t* text : {u"",
                                 u" ",
                                 u"5",
                                 u"hello",
                                 u"31/02/2026",
                                 u"29/02/2025",
                                 u"21/11",
                                 u"Nov",
                                 u"21/11/2026x",
                                 u"21/11/20265",
                                 u"21/11/2026 25:00",
                                 u"21/11/2026 14:60",
                                 u"21/11/2026 14:05:09 hello",
                                 u"13:05 pm",
                                 u"0:30 am",
                                 u"2026",
                                 u"21 Foo 2026",
                                 u"1234567890",
                                 u"T14:05",
                                 u"-5",
                                 u"21//2026",
                                 u"46347.25",
                                 u"14",
                                 u"\u0000"})
        ExpectNoDate(text);
}
