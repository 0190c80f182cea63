// SPDX-License-Identifier: Apache-2.0
#include "sending/Outbox.h"

#include "common/ClockHelper.h"
#include "core/support/StationTest.h"
#include "platform/records/Recordset.h"

namespace
{
using Kind = OutgoingState::Kind;
constexpr double Hour = 1.0 / 24;

class OutboxTest : public StationTest
{
protected:
    void SetUp() override { OpenStation(); }

    qint32 PutIntoOutbox(Date sent)
    {
        const cMessagePtr message = MakeMessage(QStringLiteral("An answer"));
        message->SetCategory(tmcOutbox);
        message->SetFlags(mfSendPending | mfRead);
        message->SetSent(ClockHelper::UTCToLocal(sent));
        EXPECT_TRUE(Station->SaveMessage(message));
        return message->Reference();
    }
    static SendingRecord Record(qint32 message, SendingStage stage, Date when)
    {
        SendingRecord record;
        record.Message = message;
        record.Identity = QStringLiteral("<a@b>");
        record.Stage = stage;
        record.When = when;
        record.Until = when;
        record.Words = QStringLiteral("no such user");
        return record;
    }
    Outbox Look(const QHash<qint32, SendingRecord>& records, const Outbox::IdentityOf& identityOf = {})
    {
        const auto rows = Station->OpenMessageRows(Outbox::Columns(), Outbox::Condition(), QString());
        return Outbox(*rows, records, identityOf);
    }
    static Date Moment(double hoursAhead = 0) { return Date(ClockHelper::NowUTC().DayNumber() + hoursAhead * Hour); }
};
} // namespace

TEST_F(OutboxTest, EachMessageHasTheStateThatTheLedgerKnows)
{
    const qint32 waiting = PutIntoOutbox(Moment());
    const qint32 refused = PutIntoOutbox(Moment());
    SaveNew(QStringLiteral("elsewhere"), tmcSent);
    const Outbox outbox = Look({{refused, Record(refused, SendingStage::Refused, Moment())}});
    EXPECT_EQ(outbox.StateOf(waiting).What, Kind::Waiting);
    EXPECT_EQ(InShort(outbox.StateOf(refused)), QStringLiteral("refused: no such user"));
    EXPECT_EQ(outbox.StateOf(refused + 1).What, Kind::None);
    EXPECT_EQ(outbox.Count().All, 2);
    EXPECT_EQ(outbox.Count().Decisions, 1);
    EXPECT_EQ(outbox.Count().Late, 0);
}

TEST_F(OutboxTest, WhatWasPutThereSinceIsAnotherMessage)
{
    const qint32 message = PutIntoOutbox(Moment());
    const auto refusedBefore = [&](double hours) {
        return QHash<qint32, SendingRecord>{{message, Record(message, SendingStage::Refused, Moment(-hours))}};
    };
    EXPECT_EQ(Look(refusedBefore(1)).StateOf(message).What, Kind::Waiting);
    int asked = 0;
    const auto same = [&](qint32) {
        ++asked;
        return QStringLiteral("<a@b>");
    };
    const auto other = [](qint32) { return QStringLiteral("<written-anew@b>"); };
    EXPECT_EQ(Look(refusedBefore(1), same).StateOf(message).What, Kind::Refused) << "the other clock is behind";
    EXPECT_EQ(Look(refusedBefore(1), other).StateOf(message).What, Kind::Waiting);
    EXPECT_EQ(asked, 1);
    Look(refusedBefore(0), same);
    Look(refusedBefore(48), same);
    EXPECT_EQ(asked, 1) << "asked where the dates tell";
}

TEST_F(OutboxTest, ItKnowsWhatChangedSince)
{
    const qint32 first = PutIntoOutbox(Moment());
    const qint32 second = PutIntoOutbox(Moment());
    const auto recordOf = [&](SendingStage stage) {
        return QHash<qint32, SendingRecord>{{second, Record(second, stage, Moment())}};
    };
    const Outbox before = Look({});
    EXPECT_EQ(Look({}).ChangesSince(before), QList<qint32>());
    const Outbox putOff = Look(recordOf(SendingStage::PutOff));
    EXPECT_EQ(putOff.ChangesSince(before), QList<qint32>{second});
    EXPECT_EQ(Look(recordOf(SendingStage::Refused)).ChangesSince(putOff), QList<qint32>{second});
    ASSERT_TRUE(Station->MarkMessageSent(first, ClockHelper::CurrentTime()));
    EXPECT_EQ(Look(recordOf(SendingStage::PutOff)).ChangesSince(putOff), QList<qint32>{first});
}

TEST_F(OutboxTest, AClaimThatWasNotHeardOfInTimeIsTold)
{
    const qint32 message = PutIntoOutbox(Moment());
    SendingRecord record = Record(message, SendingStage::HandingOver, Moment());
    record.Until = Moment(Hour);
    const Outbox before = Look({{message, record}});
    EXPECT_EQ(before.StateOf(message).What, Kind::BeingSent);
    record.Until = Moment(-1);
    const Outbox after = Look({{message, record}});
    EXPECT_EQ(InShort(after.StateOf(message)), QStringLiteral("may have gone out: no such user"));
    EXPECT_EQ(after.ChangesSince(before), QList<qint32>{message});
    EXPECT_EQ(after.Count().Decisions, 1);
}
