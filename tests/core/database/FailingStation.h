// SPDX-License-Identifier: Apache-2.0
#pragma once

// A database that fails at any single access, and from any access on: operations that are told to answer do so and keep
// the reason, and those that are told to raise raise an error of the store and nothing else.

#include "common/ListViewObject.h"
#include "common/PendingError.h"
#include "core/support/FaultyEngine.h"
#include "core/support/PatientUser.h"
#include "core/support/StationTest.h"
#include "database/DAO_DatabaseFunctions.h"
#include "platform/records/DBEngine.h"
#include "platform/records/FaultVfs.h"
#include "prizes/cPrize.h"
#include "prizes/cPrizeWinner.h"

#include <functional>
#include <new>
#include <stdexcept>

constexpr int MostAccesses = 2000;
const QString Words = QStringLiteral("The cable was pulled.");

class FailingStation : public StationTest
{
public:
    cTolvaDatabase& Database() { return *Station; }
    QString Location() const { return Folder.path(); }
    QString File() const { return FileName(); }
    /// An object makes one backup in its life.
    void TakeAnotherObject()
    {
        Station = std::make_unique<cTolvaDatabase>();
        Station->SetDirectoryDatabase(&Directory);
        Station->SetMakesAutomaticBackups(false);
        ASSERT_EQ(Station->OpenTolvaDatabase(Location()), 0);
    }
    qint32 NewMessage() { return SaveNew(QStringLiteral("Hello")); }
    qint32 NewWaitingMessage()
    {
        const cMessagePtr message = Unsaved();
        message->SetCategory(tmcOutbox);
        message->SetFlags(mfSendPending);
        EXPECT_TRUE(Station->SaveMessage(message));
        return message->Reference();
    }
    static cMessagePtr Unsaved(enMsgType type = emtEmail)
    {
        const cMessagePtr message = MakeMessage(QStringLiteral("Hello"));
        message->SetMessageType(type);
        return message;
    }
    cPrizePtr NewPrize()
    {
        auto prize = std::make_shared<cPrize>();
        prize->SetTitle(QStringLiteral("Tickets"));
        prize->SetNumberSupplied(3);
        EXPECT_TRUE(Station->SavePrize(prize));
        return prize;
    }
    cPrizeWinnerPtr NewWinner(const cPrizePtr& prize)
    {
        const cPrizeWinnerPtr winner = Unstored(prize);
        EXPECT_TRUE(Station->SavePrizeWinner(winner));
        return winner;
    }
    cPrizeWinnerPtr Unstored(const cPrizePtr& prize)
    {
        const cPrizeWinnerPtr winner = Station->GetNewPrizeWinner(Station->GetPrize(prize->Reference(), false));
        winner->SetWinnerReference(11);
        return winner;
    }
    /// As other software leaves it that counts a winner whom it does not store.
    void CountTooMany(qint32 prize)
    {
        const auto other = dao::DBEngine::OpenDatabase(File());
        const auto rows = other->OpenRecordset(QStringLiteral("Prizes"), dao::dbOpenTable);
        rows->SetIndex(QStringLiteral("Main"));
        rows->Seek(dao::SeekComparison::Equal, {prize});
        rows->Edit();
        rows->SetCollect(QStringLiteral("NumberWinners"), 2);
        rows->Update();
    }
    qint32 NewFolder()
    {
        clsCategory folder;
        folder.SetDescription(QStringLiteral("Requests"));
        Station->SaveMessageCategory(folder, false);
        Station->UpdateCategoryTree();
        return folder.Reference();
    }

protected:
    FailingStation() : Disk(std::make_unique<FaultyEngine>()) { Files->SkipSyncs(); }
    void SetUp() override
    {
        OpenStation();
        UserInterface::SetCurrent(&Patient);
    }
    void TearDown() override
    {
        Disk->Heal();
        Station.reset();
        UserInterface::SetCurrent(&Ui);
        Disk.reset();
        Files.reset();
    }
    std::unique_ptr<FaultVfs> Files = std::make_unique<FaultVfs>();
    std::unique_ptr<FaultyEngine> Disk;
    PatientUser Patient;
};
