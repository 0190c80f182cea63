// SPDX-License-Identifier: Apache-2.0

// What the look at the Outbox, which each desk takes every few seconds, costs in a station that has sent much.

#include "common/ClockHelper.h"
#include "core/support/FaultyEngine.h"
#include "core/support/StationTest.h"
#include "platform/directory/EmbeddedDirectory.h"
#include "platform/records/Error.h"
#include "platform/records/Recordset.h"
#include "platform/records/Transaction.h"
#include "sending/Outbox.h"

namespace
{
class OutboxLookTest : public StationTest
{
protected:
    void SetUp() override
    {
        OpenStation();
        Users_.Open(Folder.filePath(QStringLiteral("Directory")));
    }
    /// Messages of one folder, and what the ledger knows of each.
    void Fill(int count, enTolvaMessageCategories category, SendingStage stage)
    {
        dao::Transaction inStation(Station->File());
        dao::Transaction inLedger(Users_.File());
        const auto messages = Station->File().OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable);
        const auto records = Users_.File().OpenRecordset(QStringLiteral("Sending"), dao::dbOpenTable);
        for (int i = 0; i < count; ++i) {
            messages->AddNew();
            messages->SetCollect(QStringLiteral("Category"), static_cast<int>(category));
            messages->SetCollect(QStringLiteral("Flags"), category == tmcOutbox ? mfSendPending : mfRead);
            const int reference = messages->Collect(QStringLiteral("Reference")).toInt();
            messages->Update();
            records->AddNew();
            records->SetCollect(QStringLiteral("Message"), reference);
            records->SetCollect(QStringLiteral("State"), static_cast<int>(stage));
            records->SetCollect(QStringLiteral("When"), ClockHelper::NowUTC().DayNumber());
            records->Update();
        }
        inLedger.Commit();
        inStation.Commit();
    }
    int Look()
    {
        const auto records = SendingLedger(Users_.File()).Open();
        const auto rows = Station->OpenMessageRows(Outbox::Columns(), Outbox::Condition(), QString());
        return Outbox(*rows, records, {}).Count().All;
    }
    /// Accesses to the files that a look takes.
    int AccessesOfALook()
    {
        for (int allowed = 0;; ++allowed) {
            Engine_.FailAt(
                allowed + 1, [] { throw dao::Error(dao::errDiskError, QStringLiteral("The cable was pulled.")); },
                true);
            try {
                Look();
            } catch (const dao::Error&) {
            }
            const bool isEnough = !Engine_.HasFailed();
            Engine_.Heal();
            if (isEnough)
                return allowed;
        }
    }

private:
    FaultyEngine Engine_;
    EmbeddedDirectory Users_;
};
} // namespace

TEST_F(OutboxLookTest, WhatWasSentCostsNoAccess)
{
    constexpr int Waiting = 5;
    constexpr int Sent = 1000;
    Fill(Waiting, tmcOutbox, SendingStage::Refused);
    EXPECT_EQ(Look(), Waiting);
    const int before = AccessesOfALook();
    Fill(Sent, tmcSent, SendingStage::Sent);
    EXPECT_EQ(Look(), Waiting);
    EXPECT_EQ(AccessesOfALook(), before);
}
