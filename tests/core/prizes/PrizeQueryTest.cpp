// SPDX-License-Identifier: Apache-2.0

// Which prizes the kinds of lists show.

#include "prizes/PrizeQuery.h"

#include "core/prizes/PrizeTest.h"

#include <cmath>

namespace
{
/// Wednesday, 18 November 2026, day number 46344.
const Date Wednesday(2026, 11, 18, 10, 25, 0);

class PrizeQueryTest : public PrizeTest
{
protected:
    QString Titles(enPrizeListCategory category, const QString& find = QString(), Date now = Wednesday) const
    {
        const auto rows = Station->OpenSnapshot(QStringLiteral("SELECT * FROM [Prizes] ") +
                                                PrizeQuery::Condition(category, find, now));
        QStringList titles;
        for (; !rows->AtEOF(); rows->MoveNext())
            titles.append(rows->Collect(QStringLiteral("Title")).toString());
        titles.sort();
        return titles.join(u' ');
    }
    void Add(const QString& title, const std::function<void(cPrize&)>& change = {})
    {
        const cPrizePtr prize = MakePrize(title, 1);
        if (change)
            change(*prize);
        ASSERT_TRUE(Station->SavePrize(prize));
    }
};
} // namespace

TEST_F(PrizeQueryTest, TheTextsStandAsTheyAreShared)
{
    const QString available = QStringLiteral(" [NumberWinners]<[NumberSupplied]"
                                             " AND ( ([StartDate] is null or [StartDate]=0) OR ([StartDate]<=46344) )"
                                             " AND ( ([EndDate] is null or [EndDate]=0) OR ([EndDate]>=46344) )");
    const QString find = QStringLiteral("([Title] LIKE \"*tea*\" OR [Notes] LIKE \"*tea*\" )");
    EXPECT_EQ(PrizeQuery::Condition(plcAllPrizes, QString(), Wednesday), QString());
    EXPECT_EQ(PrizeQuery::Condition(static_cast<enPrizeListCategory>(9), QString(), Wednesday), QString());
    EXPECT_EQ(PrizeQuery::Condition(plcAllPrizes, QStringLiteral("tea"), Wednesday),
              QStringLiteral(" WHERE (") + find + QStringLiteral(") "));
    EXPECT_EQ(PrizeQuery::Condition(plcAllAvailable, QString(), Wednesday),
              QStringLiteral(" WHERE (") + available + QStringLiteral(") "));
    EXPECT_EQ(PrizeQuery::Condition(plcAvailable, QStringLiteral("tea"), Wednesday),
              QStringLiteral(" WHERE (") + find + QStringLiteral(" AND ") + available +
                  QStringLiteral("AND [HourRestrictions3] LIKE '*K*') "));
    EXPECT_EQ(PrizeQuery::Condition(plcWonPrizes, QString(), Wednesday),
              QStringLiteral(" WHERE (([NumberWinners]>0) ) "));
    EXPECT_EQ(PrizeQuery::Condition(plcRecentlyWonPrizes, QStringLiteral("tea"), Wednesday),
              QStringLiteral(" WHERE (") + find + QStringLiteral(" AND ([LastWonDate]>=#2026-11-11 10:25:00#) ) "));
}

TEST_F(PrizeQueryTest, AvailableMeansStockDatesAndHour)
{
    Add(QStringLiteral("any"));
    Add(QStringLiteral("spent"), [](cPrize& prize) { prize.SetNumberSupplied(0); });
    Add(QStringLiteral("later"), [](cPrize& prize) { prize.SetStartDate(Date(2026, 11, 19)); });
    Add(QStringLiteral("midday"), [](cPrize& prize) { prize.SetStartDate(Date(2026, 11, 18, 9, 0, 0)); });
    Add(QStringLiteral("today"), [](cPrize& prize) { prize.SetStartDate(Date(2026, 11, 18)); });
    Add(QStringLiteral("over"), [](cPrize& prize) { prize.SetEndDate(Date(2026, 11, 17, 23, 0, 0)); });
    Add(QStringLiteral("ending"), [](cPrize& prize) { prize.SetEndDate(Date(2026, 11, 18, 8, 0, 0)); });
    Add(QStringLiteral("evening"), [](cPrize& prize) { prize.SetAvailableForHour(3, 10, false); });
    EXPECT_EQ(Titles(plcAvailable), QStringLiteral("any ending today"));
    EXPECT_EQ(Titles(plcAllAvailable), QStringLiteral("any ending evening today"));
    EXPECT_EQ(Titles(plcAllPrizes), QStringLiteral("any ending evening later midday over spent today"));
}

TEST_F(PrizeQueryTest, WhatKeepsAPrizeOffTheListsAgreesWithTheLists)
{
    // In winter, and in summer, when the clock is an hour ahead of what is stored.
    for (const Date now : {Date(2026, 11, 18, 10, 25, 0), Date(2026, 7, 1, 10, 25, 0)}) {
        const double day = std::floor(now.DayNumber());
        QList<Date> dates = {Date()};
        for (const double hours : {-25.0, -24.0, -1.0, -0.5, 0.0, 0.5, 1.0, 10.0, 23.5, 24.0, 24.5, 25.0, 49.0})
            dates.append(Date(day + hours / 24));
        for (const Date start : dates) {
            for (const Date end : dates) {
                for (const qint32 supplied : {0, 1}) {
                    const cPrizePtr prize = MakePrize(QStringLiteral("A"), supplied);
                    prize->SetStartDate(start);
                    prize->SetEndDate(end);
                    ASSERT_TRUE(Station->SavePrize(prize));
                    const bool isListed = !Titles(plcAllAvailable, {}, now).isEmpty();
                    const PrizeQuery::Unlisted why = PrizeQuery::WhyUnlisted(*prize, now);
                    EXPECT_EQ(why == PrizeQuery::Unlisted::No, isListed)
                        << start.GeneralDate().toStdString() << " to " << end.GeneralDate().toStdString();
                    EXPECT_EQ(why == PrizeQuery::Unlisted::NoneSupplied, supplied == 0);
                    if (why == PrizeQuery::Unlisted::NotYet && end.IsNone()) {
                        const Date first = PrizeQuery::FirstListedDay(*prize);
                        EXPECT_EQ(Titles(plcAllAvailable, {}, first), QStringLiteral("A"));
                        EXPECT_EQ(Titles(plcAllAvailable, {}, Date(first.DayNumber() - 0.01)), QString());
                    }
                    ASSERT_TRUE(Station->DeletePrize(prize->Reference()));
                }
            }
        }
    }
}

TEST_F(PrizeQueryTest, APrizeWithoutHoursOrUnitsIsKeptOffTheListsForThatReason)
{
    const cPrizePtr prize = MakePrize(QStringLiteral("A"), 1);
    EXPECT_EQ(PrizeQuery::WhyUnlisted(*prize, Wednesday), PrizeQuery::Unlisted::No);
    for (qint16 day = 1; day <= 7; ++day) {
        for (qint16 hour = 0; hour < 24; ++hour)
            prize->SetAvailableForHour(day, hour, false);
    }
    EXPECT_EQ(PrizeQuery::WhyUnlisted(*prize, Wednesday), PrizeQuery::Unlisted::NoHours);
    prize->SetAvailableForHour(7, 23, true);
    EXPECT_EQ(PrizeQuery::WhyUnlisted(*prize, Wednesday), PrizeQuery::Unlisted::No) << "it has its hour";
    const qint32 won = SaveNewPrize(QStringLiteral("won"), 1);
    ASSERT_NE(Award(won), 0);
    EXPECT_EQ(PrizeQuery::WhyUnlisted(*Station->GetPrize(won, false), Wednesday), PrizeQuery::Unlisted::AllWon);
}

TEST_F(PrizeQueryTest, AnEmptyHourFieldIsListedInNoHour)
{
    const qint32 reference = SaveNewPrize(QStringLiteral("empty"));
    OverwritePrize(reference, QStringLiteral("HourRestrictions3"), QVariant());
    EXPECT_EQ(Titles(plcAvailable), QString());
    EXPECT_EQ(Titles(plcAllAvailable), QStringLiteral("empty"));
    EXPECT_TRUE(Station->GetPrize(reference, false)->AvailableForHour(3, 10));
}

TEST_F(PrizeQueryTest, WonPrizesAreThoseWithAWinnerAndRecentOnesOfSevenDays)
{
    const qint32 reference = SaveNewPrize(QStringLiteral("won"));
    SaveNewPrize(QStringLiteral("still"));
    ASSERT_NE(Award(reference), 0); // 21 November 2026, 14:05:09
    EXPECT_EQ(Titles(plcWonPrizes), QStringLiteral("won"));
    EXPECT_EQ(Titles(plcRecentlyWonPrizes, QString(), Date(2026, 11, 28, 14, 5, 9)), QStringLiteral("won"));
    EXPECT_EQ(Titles(plcRecentlyWonPrizes, QString(), Date(2026, 11, 28, 14, 5, 10)), QString());
    // Day and month cannot be mistaken for each other.
    EXPECT_EQ(Titles(plcRecentlyWonPrizes, QString(), Date(2026, 12, 11)), QString());
}

TEST_F(PrizeQueryTest, TheFindTextIsLookedForInTitleAndNotes)
{
    Add(QStringLiteral("TEAPOT"));
    Add(QStringLiteral("mug"), [](cPrize& prize) { prize.SetNotes(QStringLiteral("for tea, too")); });
    Add(QStringLiteral("hat"), [](cPrize& prize) { prize.SetScript(QStringLiteral("tea")); });
    EXPECT_EQ(Titles(plcAllPrizes, QStringLiteral("tea")), QStringLiteral("TEAPOT mug"));
    EXPECT_EQ(Titles(plcWonPrizes, QStringLiteral("tea")), QString());
    EXPECT_EQ(Titles(plcAllPrizes, QStringLiteral("t?a")), QStringLiteral("TEAPOT mug"));
    EXPECT_EQ(Titles(plcAllPrizes, QStringLiteral("t[?]a")), QString());
    EXPECT_EQ(Titles(plcAllPrizes, QStringLiteral("%1")), QString());
}
