// SPDX-License-Identifier: Apache-2.0

// A prize in memory: what its setters do, its hours and its dates.

#include "core/prizes/PrizeTest.h"

namespace
{
const QString EveryHour = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWX");

class cPrizeTest : public testing::Test
{
protected:
    cPrizeTest()
    {
        QObject::connect(&Prize, &cPrize::PrizeEdited, [this](bool edited) { Heard.append(edited); });
    }
    FixedClock Now;
    cPrize Prize;
    QList<bool> Heard;
};
} // namespace

TEST_F(cPrizeTest, ANewPrizeIsEditedAndHasTheDefaults)
{
    EXPECT_TRUE(Prize.Edited());
    EXPECT_TRUE(Prize.RaiseEvents());
    EXPECT_FALSE(Prize.WinnersRead());
    EXPECT_EQ(Prize.Reference(), 0);
    EXPECT_EQ(Prize.NumberSupplied(), 0);
    EXPECT_EQ(Prize.NumberWinners(), 0);
    EXPECT_EQ(Prize.SupplierReference(), 0);
    EXPECT_EQ(Prize.AddedByReference(), 0);
    EXPECT_TRUE(Prize.Title().isEmpty() && Prize.Script().isEmpty() && Prize.Notes().isEmpty());
    EXPECT_TRUE(Prize.NotesToSupplier().isEmpty());
    for (const Date date : {Prize.StartDate(), Prize.EndDate(), Prize.AddedDate(), Prize.LastWonDate()})
        EXPECT_TRUE(date.IsNone());
    EXPECT_EQ(Prize.StartDateString(), QString());
    for (qint16 day = 1; day <= 7; ++day)
        EXPECT_EQ(Prize.AvailableHours(day), EveryHour);
    EXPECT_EQ(Prize.AvailableHours(0), QString());
    EXPECT_EQ(Prize.AvailableHours(8), QString());
}

TEST_F(cPrizeTest, EverySetterMarksThePrize)
{
    const QList<std::function<void(cPrize&)>> setters = {
        [](cPrize& prize) { prize.SetTitle(QString()); },
        [](cPrize& prize) { prize.SetNotes(QString()); },
        [](cPrize& prize) { prize.SetNotesToSupplier(QString()); },
        [](cPrize& prize) { prize.SetScript(QString()); },
        [](cPrize& prize) { prize.SetStartDate(Date()); },
        [](cPrize& prize) { prize.SetEndDate(Date()); },
        [](cPrize& prize) { prize.SetAddedDate(Date()); },
        [](cPrize& prize) { prize.SetLastWonDate(Date()); },
        [](cPrize& prize) { prize.SetStartDateString(QString()); },
        [](cPrize& prize) { prize.SetEndDateString(QString()); },
        [](cPrize& prize) { prize.SetAddedDateString(QString()); },
        [](cPrize& prize) { prize.SetLastWonDateString(QString()); },
        [](cPrize& prize) { prize.SetAvailableHours(7, QString()); },
        [](cPrize& prize) { prize.SetAvailableForHour(7, 23, true); },
        [](cPrize& prize) { prize.SetNumberSupplied(0); },
        [](cPrize& prize) { prize.SetSupplierReference(0); },
        [](cPrize& prize) { prize.SetAddedByReference(0); },
    };
    for (qsizetype i = 0; i < setters.size(); ++i) {
        Prize.SetEdited(false);
        Heard.clear();
        setters.at(i)(Prize);
        EXPECT_TRUE(Prize.Edited()) << i;
        EXPECT_EQ(Heard, QList<bool>{true}) << i;
    }
}

TEST_F(cPrizeTest, EveryAssignmentOfEditedIsToldWhileEventsAreRaised)
{
    Prize.SetEdited(true);
    Prize.SetEdited(true);
    Prize.SetEdited(false);
    EXPECT_EQ(Heard, (QList<bool>{true, true, false}));
    Prize.SetEdited(false);
    Prize.SetRaiseEvents(false);
    EXPECT_FALSE(Prize.Edited());
    Prize.SetTitle(QStringLiteral("x"));
    EXPECT_TRUE(Prize.Edited());
    EXPECT_EQ(Heard.size(), 4);
}

TEST_F(cPrizeTest, HoursOutsideTheWeekAreNeverAvailableAndCannotBeSet)
{
    EXPECT_TRUE(Prize.AvailableForHour(1, 0));
    EXPECT_TRUE(Prize.AvailableForHour(7, 23));
    EXPECT_FALSE(Prize.AvailableForHour(1, 24));
    EXPECT_FALSE(Prize.AvailableForHour(1, -1));
    EXPECT_FALSE(Prize.AvailableForHour(0, 5));
    EXPECT_FALSE(Prize.AvailableForHour(8, 5));
    Prize.SetEdited(false);
    Prize.SetAvailableForHour(0, 5, false);
    Prize.SetAvailableForHour(8, 5, false);
    Prize.SetAvailableForHour(1, 24, false);
    Prize.SetAvailableForHour(1, -1, false);
    Prize.SetAvailableHours(0, QString());
    Prize.SetAvailableHours(8, QString());
    EXPECT_FALSE(Prize.Edited());
    for (qint16 day = 1; day <= 7; ++day)
        EXPECT_EQ(Prize.AvailableHours(day), EveryHour);
}

TEST_F(cPrizeTest, AnHourIsABlankOrItsLetterAtItsPlace)
{
    Prize.SetEdited(false);
    Prize.SetAvailableForHour(3, 10, false);
    EXPECT_EQ(Prize.AvailableHours(3), QStringLiteral("ABCDEFGHIJ LMNOPQRSTUVWX"));
    EXPECT_FALSE(Prize.AvailableForHour(3, 10));
    EXPECT_TRUE(Prize.Edited());
    Prize.SetAvailableForHour(3, 10, true);
    EXPECT_EQ(Prize.AvailableHours(3), EveryHour);
}

TEST_F(cPrizeTest, HoursThatOtherSoftwareWroteAreTakenAsTheyStand)
{
    Prize.SetAvailableHours(2, QStringLiteral("abc"));
    EXPECT_EQ(Prize.AvailableHours(2), QStringLiteral("abc"));
    EXPECT_TRUE(Prize.AvailableForHour(2, 1)); // any character but a blank
    EXPECT_FALSE(Prize.AvailableForHour(2, 3));
    Prize.SetAvailableHours(2, QStringLiteral("?? zz"));
    EXPECT_TRUE(Prize.AvailableForHour(2, 4));
    EXPECT_FALSE(Prize.AvailableForHour(2, 2));
    Prize.SetAvailableHours(2, EveryHour + QStringLiteral("YZ"));
    EXPECT_TRUE(Prize.AvailableForHour(2, 23));
    EXPECT_FALSE(Prize.AvailableForHour(2, 24));
    Prize.SetAvailableHours(2, QString());
    EXPECT_FALSE(Prize.AvailableForHour(2, 0));
}

TEST_F(cPrizeTest, AShortTextGrowsToTheHourThatIsAllowed)
{
    Prize.SetAvailableHours(1, QStringLiteral("AB"));
    Prize.SetAvailableForHour(1, 5, false);
    EXPECT_EQ(Prize.AvailableHours(1), QStringLiteral("AB"));
    Prize.SetAvailableForHour(1, 4, true);
    EXPECT_EQ(Prize.AvailableHours(1), QStringLiteral("AB  E"));
    EXPECT_TRUE(Prize.AvailableForHour(1, 4));
}

TEST_F(cPrizeTest, BothDatesAreIncludedToTheSecond)
{
    const Date start(2026, 11, 20, 9, 0, 0);
    const Date end(2026, 11, 21, 18, 0, 0);
    Prize.SetStartDate(start);
    Prize.SetEndDate(end);
    EXPECT_FALSE(Prize.AvailableForDate(Date(2026, 11, 20, 8, 59, 59)));
    EXPECT_TRUE(Prize.AvailableForDate(start));
    EXPECT_TRUE(Prize.AvailableForDate(end));
    EXPECT_FALSE(Prize.AvailableForDate(Date(2026, 11, 21, 18, 0, 1)));
}

TEST_F(cPrizeTest, WithoutDatesTheHourAloneDecides)
{
    for (qint16 day = 1; day <= 7; ++day)
        Prize.SetAvailableHours(day, QString(24, u' '));
    Prize.SetAvailableForHour(6, 14, true); // Saturday
    EXPECT_TRUE(Prize.AvailableForDate(Date(2026, 11, 21, 14, 0, 0)));
    EXPECT_TRUE(Prize.AvailableForDate(Date(2026, 11, 21, 14, 59, 59)));
    EXPECT_FALSE(Prize.AvailableForDate(Date(2026, 11, 21, 13, 59, 59)));
    EXPECT_FALSE(Prize.AvailableForDate(Date(2026, 11, 21, 15, 0, 0)));
    EXPECT_FALSE(Prize.AvailableForDate(Date(2026, 11, 20, 14, 0, 0)));
    EXPECT_TRUE(Prize.AvailableForDate(Date(1999, 1, 2, 14, 30, 0)));
}

TEST_F(cPrizeTest, EachHourOfTheWeekIsFoundByItsDate)
{
    for (int hour = 0; hour < 168; ++hour) {
        cPrize prize;
        for (qint16 day = 1; day <= 7; ++day)
            prize.SetAvailableHours(day, QString(24, u' '));
        prize.SetAvailableForHour(static_cast<qint16>(hour / 24 + 1), static_cast<qint16>(hour % 24), true);
        // Monday, 16 November 2026.
        for (int other = 0; other < 168; other += 23)
            EXPECT_EQ(prize.AvailableForDate(Date(2026, 11, 16 + other / 24, other % 24)), other == hour) << hour;
        EXPECT_TRUE(prize.AvailableForDate(Date(2026, 11, 16 + hour / 24, hour % 24))) << hour;
    }
}

TEST_F(cPrizeTest, TheStockIsNotPartOfAvailability)
{
    EXPECT_EQ(Prize.NumberSupplied(), 0);
    EXPECT_TRUE(Prize.AvailableForDate(Date(2026, 11, 21)));
}

TEST_F(cPrizeTest, NoDateIsTheMidnightOfASaturday)
{
    EXPECT_TRUE(Prize.AvailableForDate(Date()));
    Prize.SetAvailableForHour(6, 0, false);
    EXPECT_FALSE(Prize.AvailableForDate(Date()));
    Prize.SetAvailableForHour(6, 0, true);
    Prize.SetStartDate(Date(2026, 1, 1));
    EXPECT_FALSE(Prize.AvailableForDate(Date()));
}

TEST_F(cPrizeTest, ANegativeSupplyIsNone)
{
    Prize.SetNumberSupplied(-3);
    EXPECT_EQ(Prize.NumberSupplied(), 0);
    Prize.SetNumberSupplied(5);
    EXPECT_EQ(Prize.NumberSupplied(), 5);
}

TEST_F(cPrizeTest, DatesReadAndWriteAsText)
{
    Prize.SetStartDateString(QStringLiteral("21/11/2026 14:05:09"));
    EXPECT_EQ(Prize.StartDate(), Date(2026, 11, 21, 14, 5, 9));
    EXPECT_EQ(Prize.StartDateString(), QStringLiteral("21/11/2026 14:05:09"));
    Prize.SetEndDateString(QStringLiteral("22/11/2026"));
    EXPECT_EQ(Prize.EndDateString(), QStringLiteral("22/11/2026"));
    Prize.SetAddedDateString(QStringLiteral("1/2/2026"));
    EXPECT_EQ(Prize.AddedDate(), Date(2026, 2, 1));
    EXPECT_EQ(Prize.AddedDateString(), QStringLiteral("01/02/2026"));
    Prize.SetLastWonDateString(QStringLiteral("2026-02-03 04:05:06"));
    EXPECT_EQ(Prize.LastWonDateString(), QStringLiteral("03/02/2026 04:05:06"));
}

TEST_F(cPrizeTest, TextThatIsNoDateMakesNone)
{
    for (const QString& text : {QString(), QStringLiteral("soon"), QStringLiteral("32/13/2026")}) {
        Prize.SetStartDate(Date(2026, 11, 21));
        Prize.SetEdited(false);
        Prize.SetStartDateString(text);
        EXPECT_EQ(Prize.StartDate(), Date());
        EXPECT_EQ(Prize.StartDateString(), QString());
        EXPECT_TRUE(Prize.Edited());
    }
}

TEST_F(cPrizeTest, SlotsOutsideTheCountHoldNothing)
{
    EXPECT_EQ(Prize.PrizeWinner(0), nullptr);
    EXPECT_EQ(Prize.PrizeWinner(1), nullptr);
    EXPECT_EQ(Prize.PrizeWinner(-1), nullptr);
    Prize.SetEdited(false);
    Prize.SetPrizeWinner(1, nullptr);
    EXPECT_FALSE(Prize.Edited());
}

TEST_F(cPrizeTest, ACopyIsANewPrizeWithTheSameProperties)
{
    Prize.SetTitle(QStringLiteral("Tickets"));
    Prize.SetScript(QStringLiteral("s"));
    Prize.SetNotes(QStringLiteral("n"));
    Prize.SetNotesToSupplier(QStringLiteral("t"));
    Prize.SetStartDate(Date(2026, 1, 1));
    Prize.SetEndDate(Date(2026, 1, 2));
    Prize.SetAddedDate(Date(2026, 1, 3));
    Prize.SetLastWonDate(Date(2026, 1, 4));
    Prize.SetNumberSupplied(3);
    Prize.SetSupplierReference(4);
    Prize.SetAddedByReference(5);
    Prize.SetAvailableForHour(1, 1, false);
    Prize.SetEdited(false);
    const cPrizePtr copy = Prize.CopyAsNew();
    EXPECT_EQ(copy->Reference(), 0);
    EXPECT_TRUE(copy->Edited());
    EXPECT_EQ(copy->Title(), QStringLiteral("Tickets"));
    EXPECT_EQ(copy->Script(), QStringLiteral("s"));
    EXPECT_EQ(copy->Notes(), QStringLiteral("n"));
    EXPECT_EQ(copy->NotesToSupplier(), QStringLiteral("t"));
    EXPECT_EQ(copy->StartDate(), Date(2026, 1, 1));
    EXPECT_EQ(copy->EndDate(), Date(2026, 1, 2));
    EXPECT_EQ(copy->AddedDate(), Date(2026, 1, 3));
    EXPECT_EQ(copy->LastWonDate(), Date(2026, 1, 4));
    EXPECT_EQ(copy->NumberSupplied(), 3);
    EXPECT_EQ(copy->SupplierReference(), 4);
    EXPECT_EQ(copy->AddedByReference(), 5);
    EXPECT_FALSE(copy->AvailableForHour(1, 1));
    EXPECT_FALSE(Prize.Edited());
}

TEST_F(cPrizeTest, LeapDaysAreDaysLikeOthers)
{
    Prize.SetStartDateString(QStringLiteral("29/02/2028"));
    EXPECT_EQ(Prize.StartDate(), Date(2028, 2, 29));
    EXPECT_EQ(Prize.StartDateString(), QStringLiteral("29/02/2028"));
    EXPECT_FALSE(Prize.AvailableForDate(Date(2028, 2, 28, 23, 59, 59)));
    EXPECT_TRUE(Prize.AvailableForDate(Date(2028, 2, 29)));
    // A Tuesday, and the Wednesday after it.
    Prize.SetAvailableHours(2, QString(24, u' '));
    EXPECT_FALSE(Prize.AvailableForDate(Date(2028, 2, 29, 12, 0, 0)));
    EXPECT_TRUE(Prize.AvailableForDate(Date(2028, 3, 1, 12, 0, 0)));
    // A year without one.
    Prize.SetStartDateString(QStringLiteral("29/02/2027"));
    EXPECT_EQ(Prize.StartDate(), Date());
}

TEST_F(cPrizeTest, EverySecondOfADayIsWithinDatesThatEndThere)
{
    int refused = 0;
    for (int second = 0; second < 86400; ++second) {
        const Date moment(2026, 11, 21, second / 3600, second / 60 % 60, second % 60);
        Prize.SetStartDate(moment);
        Prize.SetEndDate(moment);
        refused += Prize.AvailableForDate(moment) ? 0 : 1;
    }
    EXPECT_EQ(refused, 0);
}

TEST_F(cPrizeTest, ATimeOfDayAloneIsAMomentOfDayZero)
{
    Prize.SetStartDateString(QStringLiteral("14:05"));
    EXPECT_GT(Prize.StartDate().DayNumber(), 0);
    EXPECT_LT(Prize.StartDate().DayNumber(), 1);
}

TEST_F(cPrizeTest, AStringOfADateThatIsNegativeIsEmpty)
{
    Prize.SetEndDate(Date(-3.5));
    EXPECT_EQ(Prize.EndDateString(), QString());
    EXPECT_TRUE(Prize.AvailableForDate(Date(2026, 11, 21))); // 0 or less is no limit
    Prize.SetStartDate(Date(-3.5));
    EXPECT_TRUE(Prize.AvailableForDate(Date(2026, 11, 21)));
}

TEST_F(cPrizeTest, AnHourThatIsAllowedBecomesItsCapitalLetterAgain)
{
    Prize.SetAvailableHours(2, QStringLiteral("abcdefghijklmnopqrstuvwx"));
    Prize.SetAvailableForHour(2, 23, true);
    EXPECT_EQ(Prize.AvailableHours(2), QStringLiteral("abcdefghijklmnopqrstuvwX"));
    Prize.SetAvailableForHour(2, 0, false);
    EXPECT_EQ(Prize.AvailableHours(2), QStringLiteral(" bcdefghijklmnopqrstuvwX"));
    Prize.SetAvailableHours(2, EveryHour + QStringLiteral("YZ"));
    Prize.SetAvailableForHour(2, 23, false);
    EXPECT_EQ(Prize.AvailableHours(2), QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVW YZ")); // the length stays
}
