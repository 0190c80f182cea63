// SPDX-License-Identifier: Apache-2.0

// The rules of giving prizes away.

#include "prizes/Awarding.h"

#include "core/prizes/PrizeTest.h"

namespace
{
using Obstacle = Awarding::Obstacle;

class AwardingTest : public PrizeTest
{
protected:
    Obstacle Why(qint32 prize) { return Rules().WhyNotAwardable(prize); }
    Awarding Rules() { return Awarding(*Station); }
    qint32 Counted(qint32 prize) const { return StoredPrize(prize, QStringLiteral("NumberWinners")).toInt(); }
};
} // namespace

TEST_F(AwardingTest, AnAwardStoresAndCountsAWinner)
{
    const qint32 prize = SaveNewPrize();
    const Awarding::Result result = Rules().Award(prize, 11, QStringLiteral("By telephone"));
    ASSERT_NE(result.Winner, nullptr);
    EXPECT_EQ(result.Why, Obstacle::None);
    const cPrizeWinnerPtr stored = Station->GetPrizeWinner(result.Winner->Reference());
    EXPECT_EQ(stored->WinnerReference(), 11);
    EXPECT_EQ(stored->Notes(), QStringLiteral("By telephone"));
    EXPECT_EQ(Counted(prize), 1);
}

TEST_F(AwardingTest, WhatKeepsAPrizeFromBeingAwardedIsNamed)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 1);
    EXPECT_EQ(Why(prize), Obstacle::None);
    EXPECT_EQ(Why(99), Obstacle::PrizeGone);
    EXPECT_EQ(Why(SaveNewPrize(QStringLiteral("Mug"), 0)), Obstacle::NoneSupplied);
    Rules().SetNeedsRight(true);
    Directory.User.Rights = 0;
    EXPECT_EQ(Why(prize), Obstacle::NoRight);
    Directory.SignedIn = nullptr;
    EXPECT_EQ(Why(prize), Obstacle::NobodySignedIn);
    Directory.SignedIn = &Directory.User;
    Rules().SetNeedsRight(false);
    EXPECT_EQ(Rules().Award(prize, 40000).Why, Obstacle::WinnerNumberTooHigh);
    EXPECT_NE(Rules().Award(prize, 11).Winner, nullptr);
    EXPECT_EQ(Rules().Award(prize, 11).Why, Obstacle::UsedUp);
    Station->CloseTolvaDatabase();
    EXPECT_EQ(Why(prize), Obstacle::Closed);
}

TEST_F(AwardingTest, AWinnerWhoWasNotCountedHasHisUnit)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 1);
    Award(prize);
    OverwritePrize(prize, QStringLiteral("NumberWinners"), 0);
    EXPECT_EQ(Rules().Award(prize, 11).Why, Obstacle::UsedUp);
    EXPECT_EQ(Counted(prize), 1);
    EXPECT_EQ(Station->StoredWinners(prize), 1);
}

TEST_F(AwardingTest, AWinnerWhoWasNotCountedTakesNothingOffThePrizeWhenTakenBack)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 1);
    const qint32 first = Award(prize);
    OverwritePrize(prize, QStringLiteral("NumberWinners"), 0);
    Award(prize);
    ASSERT_EQ(Station->StoredWinners(prize), 2);
    Forget();
    EXPECT_TRUE(Rules().TakeBack(first));
    EXPECT_EQ(Counted(prize), 1);
    EXPECT_EQ(Station->StoredWinners(prize), 1);
    // Lists hear of it once, when it is stored.
    EXPECT_EQ(Events, QStringList{QStringLiteral("saved 1 Tickets 1")});
    EXPECT_TRUE(Rules().TakeBack(first)) << "gone already";
}

TEST_F(AwardingTest, TakingBackWhatOthersAwardedNeedsTheRight)
{
    const qint32 prize = SaveNewPrize();
    const cPrizeWinnerPtr winner = Station->GetPrizeWinner(Award(prize));
    Directory.User.Rights = 0;
    EXPECT_TRUE(Rules().MayTakeBack(*winner)) << "it is the user's own";
    winner->SetAwardedByReference(8);
    EXPECT_FALSE(Rules().MayTakeBack(*winner));
    Directory.User.Rights = static_cast<int>(DirectoryRight::ManagePrizes);
    EXPECT_TRUE(Rules().MayTakeBack(*winner));
}

TEST_F(AwardingTest, APrizeMayGoOutWithinItsDatesAndHours)
{
    cPrize prize;
    EXPECT_EQ(Awarding::WhyNotNow(prize), Awarding::NotNow::None);
    prize.SetStartDate(Date(2026, 11, 22));
    EXPECT_EQ(Awarding::WhyNotNow(prize), Awarding::NotNow::NotYet);
    prize.SetStartDate(Date());
    prize.SetEndDate(Date(2026, 11, 21));
    EXPECT_EQ(Awarding::WhyNotNow(prize), Awarding::NotNow::Over);
    prize.SetEndDate(Date());
    prize.SetAvailableForHour(6, 14, false);
    EXPECT_EQ(Awarding::WhyNotNow(prize), Awarding::NotNow::WrongHour);
}

TEST_F(AwardingTest, AClockThatIsAnHourOffAwardsNoUnitTwice)
{
    cTolvaDatabase ahead;
    ahead.SetMakesAutomaticBackups(false);
    ahead.SetDirectoryDatabase(&Directory);
    ASSERT_EQ(ahead.OpenTolvaDatabase(Folder.path()), 0);
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 2);
    Now.Advance(3600);
    EXPECT_NE(Awarding(ahead).Award(prize, 11).Winner, nullptr);
    Now.Advance(-3600);
    // Who won in an hour from now has won.
    EXPECT_TRUE(Rules().RecentWin(11));
    EXPECT_NE(Rules().Award(prize, 12).Winner, nullptr);
    EXPECT_EQ(Rules().Award(prize, 13).Why, Obstacle::UsedUp);
    Now.Advance(3600);
    EXPECT_EQ(Awarding(ahead).Award(prize, 14).Why, Obstacle::UsedUp);
    EXPECT_EQ(Counted(prize), 2);
}
