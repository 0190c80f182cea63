// SPDX-License-Identifier: Apache-2.0
#include "sending/SendingLedger.h"

#include "platform/directory/EmbeddedDirectory.h"
#include "support/FixedClock.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>

namespace
{
using Answer = SendingLedger::Answer;

class SendingLedgerTest : public testing::Test
{
protected:
    void SetUp() override { Directory.Open(Folder.path()); }

    static SendingLedger::Wish WishFor(qint32 message, const QString& identity = QStringLiteral("<a@b>"))
    {
        SendingLedger::Wish wish;
        wish.Message = message;
        wish.Identity = identity;
        wish.Seconds = 60;
        return wish;
    }
    SendingRecord Claimed(qint32 message)
    {
        SendingRecord record;
        EXPECT_EQ(Ledger().Claim(WishFor(message), record), Answer::Claimed);
        return record;
    }
    SendingRecord Settled(qint32 message, SendingStage stage)
    {
        SendingRecord record = Claimed(message);
        record.Stage = stage;
        record.Words = QStringLiteral("words");
        EXPECT_TRUE(Ledger().Settle(record));
        return record;
    }
    Answer Ask(qint32 message, const QString& identity = QStringLiteral("<a@b>"))
    {
        SendingRecord record;
        return Ledger().Claim(WishFor(message, identity), record);
    }
    SendingLedger Ledger() const { return SendingLedger(Directory.File()); }

    FixedClock Now;
    QTemporaryDir Folder;
    EmbeddedDirectory Directory;
};
} // namespace

TEST_F(SendingLedgerTest, OneOfAllWhoAskHasTheMessage)
{
    Claimed(5);
    EmbeddedDirectory other;
    other.Open(Folder.path());
    SendingRecord record;
    EXPECT_EQ(SendingLedger(other.File()).Claim(WishFor(5), record), Answer::Busy);
    EXPECT_EQ(record.Stage, SendingStage::HandingOver) << "what is under way there";
    EXPECT_EQ(SendingLedger(other.File()).Claim(WishFor(6), record), Answer::Claimed);
}

TEST_F(SendingLedgerTest, WhoeverHasItIsKnownAlsoWhenTheHandOverBreaksOff)
{
    SendingRecord record = Claimed(5);
    record.Taken = {QStringLiteral("020 1")};
    EXPECT_TRUE(Ledger().NoteTaken(record));
    Now.Advance(61);
    EXPECT_TRUE(Ledger().SendAgain(5));
    EXPECT_FALSE(Ledger().NoteTaken(record)) << "the claim is over";
    EXPECT_EQ(Claimed(5).Taken, QStringList{QStringLiteral("020 1")});
}

TEST_F(SendingLedgerTest, AClaimThatIsOverdueIsUnclearAndNobodysByItself)
{
    Claimed(5);
    Now.Advance(59);
    EXPECT_EQ(Ask(5), Answer::Busy);
    Now.Advance(2);
    EXPECT_EQ(Ask(5), Answer::Held);
    ASSERT_TRUE(Ledger().Find(5));
    EXPECT_TRUE(Ledger().Find(5)->IsUnclear(ClockHelper::NowUTC()));
    EXPECT_TRUE(Ledger().SendAgain(5));
    EXPECT_EQ(Ask(5), Answer::Claimed);
}

TEST_F(SendingLedgerTest, WhatWasDecidedMeanwhileIsNotWrittenOver)
{
    SendingRecord late = Claimed(5);
    Now.Advance(61);
    EXPECT_TRUE(Ledger().SendAgain(5));
    late.Stage = SendingStage::Accepted;
    EXPECT_FALSE(Ledger().Settle(late));
    EXPECT_EQ(Ledger().Find(5)->Stage, SendingStage::Released);
}

TEST_F(SendingLedgerTest, NobodyDecidesWhileAMessageIsBeingHandedOver)
{
    Claimed(5);
    EXPECT_FALSE(Ledger().SendAgain(5));
    EXPECT_FALSE(Ledger().SendAgain(6)) << "of which nothing is known";
}

TEST_F(SendingLedgerTest, OnlyWhatMayGoOutIsGivenToAnybody)
{
    for (const SendingStage stage :
         {SendingStage::Accepted, SendingStage::Sent, SendingStage::Refused, SendingStage::Unclear}) {
        const auto message = static_cast<qint32>(stage);
        Settled(message, stage);
        EXPECT_EQ(Ask(message), Answer::Held) << message;
        EXPECT_EQ(Ask(message, QStringLiteral("<written-anew@b>")), Answer::Claimed) << message;
    }
}

TEST_F(SendingLedgerTest, WhatWasPutOffComesWhenItsTimeHasCome)
{
    SendingRecord record = Claimed(5);
    record.Stage = SendingStage::PutOff;
    record.Until = Date(ClockHelper::NowUTC().DayNumber() + 300.0 / 86400);
    ASSERT_TRUE(Ledger().Settle(record));
    EXPECT_EQ(Ask(5), Answer::TooEarly);
    SendingLedger::Wish atOnce = WishFor(5);
    atOnce.AtOnce = true;
    SendingRecord claimed;
    EXPECT_EQ(Ledger().Claim(atOnce, claimed), Answer::Claimed);
    EXPECT_EQ(claimed.Attempts, 2);
    claimed.Stage = SendingStage::PutOff;
    ASSERT_TRUE(Ledger().Settle(claimed));
    Now.Advance(301);
    EXPECT_EQ(Ask(5), Answer::Claimed);
    EXPECT_EQ(Ledger().Find(5)->Attempts, 3);
    EXPECT_EQ(Ledger().Find(5)->FirstTry.DayNumber(), record.FirstTry.DayNumber());
}

TEST_F(SendingLedgerTest, AClaimThatIsTakenBackLeavesWhatWasKnownBefore)
{
    Ledger().TakeBack(Claimed(5), std::nullopt);
    EXPECT_FALSE(Ledger().Find(5));
    SendingRecord before = Settled(5, SendingStage::Refused);
    ASSERT_TRUE(Ledger().SendAgain(5));
    const std::optional<SendingRecord> released = Ledger().Find(5);
    Ledger().TakeBack(Claimed(5), released);
    EXPECT_EQ(Ledger().Find(5)->Stage, SendingStage::Released);
    EXPECT_EQ(Ledger().Find(5)->Words, QStringLiteral("words"));
    Ledger().TakeBack(before, std::nullopt);
    EXPECT_TRUE(Ledger().Find(5)) << "a claim that is not in force takes nothing back";
}

TEST_F(SendingLedgerTest, TheLimitOfAMinuteCountsAllMessages)
{
    Claimed(1);
    Claimed(2);
    SendingLedger::Wish wish = WishFor(3);
    wish.MostAMinute = 2;
    SendingRecord record;
    EXPECT_EQ(Ledger().Claim(wish, record), Answer::TooMany);
    EXPECT_FALSE(Ledger().Find(3));
    Now.Advance(61);
    EXPECT_EQ(Ledger().Claim(wish, record), Answer::Claimed);
}

TEST_F(SendingLedgerTest, EverythingKnownComesBackAndTheSentOnesAreOutOfTheWay)
{
    SendingRecord record = Claimed(5);
    record.Stage = SendingStage::Accepted;
    record.Taken = QStringList{QStringLiteral("+447700900123"), QStringLiteral("07700")};
    record.Words = QString(5000, u'w');
    ASSERT_TRUE(Ledger().Settle(record));
    const QHash<qint32, SendingRecord> open = Ledger().Open();
    ASSERT_EQ(open.size(), 1);
    EXPECT_EQ(open.value(5).Taken, record.Taken);
    EXPECT_EQ(open.value(5).Words, record.Words);
    EXPECT_EQ(open.value(5).Identity, QStringLiteral("<a@b>"));
    EXPECT_NE(open.value(5).Process, 0);
    Ledger().NoteMarked(5);
    EXPECT_TRUE(Ledger().Open().isEmpty());
    EXPECT_EQ(Ledger().Find(5)->Stage, SendingStage::Sent);
    Ledger().NoteWent(9, QStringLiteral("<c@d>"));
    EXPECT_EQ(Ledger().Find(9)->Stage, SendingStage::Sent);
}
