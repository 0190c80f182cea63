// SPDX-License-Identifier: Apache-2.0
#include "sending/OutgoingState.h"

#include "common/ClockHelper.h"
#include "common/Enumerations.h"
#include "messages/cMessage.h"
#include "sending/OutgoingIdentity.h"
#include "support/FixedClock.h"

#include <gtest/gtest.h>

namespace
{
using Kind = OutgoingState::Kind;

class OutgoingStateTest : public testing::Test
{
protected:
    OutgoingRow Waiting() const
    {
        return {tmcOutbox, mfSendPending, ClockHelper::CurrentTime(), Date(), QStringLiteral("<a@b>")};
    }
    SendingRecord Record(SendingStage stage) const
    {
        SendingRecord record;
        record.Identity = QStringLiteral("<a@b>");
        record.Stage = stage;
        record.When = ClockHelper::NowUTC();
        record.Until = record.When;
        record.Words = QStringLiteral("no such user");
        return record;
    }
    FixedClock Now;
};
} // namespace

TEST_F(OutgoingStateTest, EveryStageHasItsWords)
{
    const struct
    {
        SendingStage Stage;
        Kind What;
        QString Words;
    } cases[] = {
        {SendingStage::HandingOver, Kind::BeingSent, QStringLiteral("Being sent")},
        {SendingStage::Accepted, Kind::Sent, QStringLiteral("Sent on 21 Nov 2026 at 14:05")},
        {SendingStage::PutOff, Kind::NotYet,
         QStringLiteral("Waiting; to be sent on 21 Nov 2026 at 14:05: no such user")},
        {SendingStage::Refused, Kind::Refused, QStringLiteral("Refused on 21 Nov 2026 at 14:05: no such user")},
        {SendingStage::Unclear, Kind::Unclear,
         QStringLiteral("May have gone out on 21 Nov 2026 at 14:05: no such user")},
        {SendingStage::Sent, Kind::Unclear,
         QStringLiteral("May have gone out on 21 Nov 2026 at 14:05: it went out then, and waits in the Outbox "
                        "again")},
        {SendingStage::Released, Kind::Waiting, QStringLiteral("Waiting to be sent since 21 Nov 2026 at 14:05")},
    };
    for (const auto& [stage, what, words] : cases) {
        const OutgoingState state = StateOf(Waiting(), Record(stage));
        EXPECT_EQ(state.What, what) << words.toStdString();
        EXPECT_EQ(InWords(state), words);
    }
    EXPECT_EQ(StateOf(Waiting(), std::nullopt).What, Kind::Waiting);
}

TEST_F(OutgoingStateTest, WhatIsNotToGoOutHasNoState)
{
    OutgoingRow row = Waiting();
    row.Category = tmcInbox;
    EXPECT_EQ(StateOf(row, std::nullopt).What, Kind::None);
    EXPECT_EQ(InWords(StateOf(row, std::nullopt)), QString());
    row = Waiting();
    row.Flags = mfRead;
    EXPECT_EQ(StateOf(row, Record(SendingStage::Refused)).What, Kind::None);
    row.Category = tmcSent;
    EXPECT_EQ(StateOf(row, Record(SendingStage::Sent)).What, Kind::Sent);
}

TEST_F(OutgoingStateTest, AnotherContentUnderTheNumberJustWaits)
{
    OutgoingRow row = Waiting();
    row.Identity = QStringLiteral("<written-anew@b>");
    EXPECT_EQ(StateOf(row, Record(SendingStage::Refused)).What, Kind::Waiting);
}

TEST_F(OutgoingStateTest, AWriterWhoWantsItLaterIsHeard)
{
    OutgoingRow row = Waiting();
    row.SendAfter = Date(2026, 12, 1, 13, 0, 0);
    EXPECT_EQ(InWords(StateOf(row, std::nullopt)), QStringLiteral("Waiting; to be sent on 1 Dec 2026 at 13:00"));
    row.SendAfter = Date(2026, 1, 1);
    EXPECT_EQ(StateOf(row, std::nullopt).What, Kind::Waiting);
}

TEST_F(OutgoingStateTest, AMessageIsKnownByItsIDOrByWhatItSays)
{
    cMessage message;
    cdo::Message& mail = *message.CDOMessage();
    mail.SetTo(QStringLiteral("ann@listeners.example"));
    mail.SetTextBody(QStringLiteral("Hello."));
    const QString byContent = OutgoingIdentity(message);
    mail.SetHTMLBody(QStringLiteral("<b>Hello.</b>"));
    EXPECT_EQ(OutgoingIdentity(message), byContent) << "where highlight words are marked";
    mail.SetTo(QStringLiteral("bob@listeners.example"));
    EXPECT_NE(OutgoingIdentity(message), byContent);
    mail.SetHeader("Message-ID", QStringLiteral("<1@harbour.example>"));
    EXPECT_EQ(OutgoingIdentity(message), QStringLiteral("<1@harbour.example>"));
}
