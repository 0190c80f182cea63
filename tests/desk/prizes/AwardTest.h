// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PrizeDeskTest.h"
#include "StationPlace.h"
#include "database/StationDialogs.h"
#include "platform/records/DBEngine.h"
#include "prizes/PrizeAwards.h"

#include <QAction>
#include <QCheckBox>
#include <QListWidget>

#include <sqlite3.h>

/// The user interface in force, with something that happens when the pointer becomes busy: after the store has read
/// how many are left, and before it writes the winner.
class BusyHook final : public UserInterface, public StationDialogs
{
public:
    explicit BusyHook(std::function<void()> action) : Before_(UserInterface::Current()), Action_(std::move(action))
    {
        SetCurrent(this);
    }
    ~BusyHook() override { SetCurrent(&Before_); }
    MessageBoxAnswer MessageBox(const MessageBoxRequest& request) override { return Before_.MessageBox(request); }
    int InputBox(const InputBoxRequest& request, QString& result) override { return Before_.InputBox(request, result); }
    void PageSetupLabels(cPageSetup& pageSetup) override { Before_.PageSetupLabels(pageSetup); }
    bool DatabaseSettings(cTolvaDatabase& database) override
    {
        return StationDialogs::Of(Before_).DatabaseSettings(database);
    }
    QString GetHotlist(qint32 type, dao::Recordset& settings, bool saveMode, QObject* parent) override
    {
        return StationDialogs::Of(Before_).GetHotlist(type, settings, saveMode, parent);
    }
    void SetBackupNotice(bool shown) override { StationDialogs::Of(Before_).SetBackupNotice(shown); }
    void SetBusyPointer(bool busy) override
    {
        Before_.SetBusyPointer(busy);
        if (busy && Action_)
            std::exchange(Action_, nullptr)();
    }
    std::unique_ptr<ProgressDisplay> Progress(const QString& caption) override { return Before_.Progress(caption); }
    void Yield() override { Before_.Yield(); }
    void RunTimeError(const dao::Error& error) override { Before_.RunTimeError(error); }

private:
    UserInterface& Before_;
    std::function<void()> Action_;
};

class AwardTest : public PrizeDeskTest
{
protected:
    /// Two contacts with a prize of which there is one.
    void SetUp() override
    {
        PrizeDeskTest::SetUp();
        Ann = AddContact(QStringLiteral("Ann Angove"), QStringLiteral("07700 900111"));
        Ben = AddContact(QStringLiteral("Ben Bosanko"), QStringLiteral("07700 900222"));
        Prize = AddPrize(QStringLiteral("Two tickets"));
    }
    /// This desk awards the prize to Ann; elsewhere happens when nothing but the lock is between it and the award.
    void AwardAfter(std::function<void()> elsewhere)
    {
        OpenPrizes();
        Select(Prize);
        DialogVisitor chooser("contactChooser", Choosing(QStringLiteral("Ann")));
        BusyHook hook(std::move(elsewhere));
        ClickAward();
    }
    /// Other software, which asks for no unit, stores Ben as a winner when this desk has awarded the prize to Ann; the
    /// press of a button answers the box.
    QString AwardInTheSameMoment(const QString& button)
    {
        OpenPrizes();
        Select(Prize);
        DialogVisitor chooser("contactChooser", Choosing(QStringLiteral("Ann")));
        BoxAnswer box(button);
        bool isStored = false;
        const auto connection = QObject::connect(&Window->Station().Database(), &cTolvaDatabase::PrizeSaved, [&] {
            if (!std::exchange(isStored, true))
                StoreRow(Ben);
        });
        ClickAward();
        QObject::disconnect(connection);
        return box.Text();
    }
    void StoreRow(qint32 contact)
    {
        const auto database = dao::DBEngine::OpenDatabase(StationPlace::FileIn(Folder()));
        const auto rows = database->OpenRecordset(QStringLiteral("PrizeWinners"), dao::dbOpenTable);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("PrizeReference"), Prize);
        rows->SetCollect(QStringLiteral("WinnerReference"), contact);
        rows->SetCollect(QStringLiteral("WonDate"), ClockHelper::NowUTC().DayNumber());
        rows->Update();
    }
    /// What the prize says of its winners, written past the programs.
    void OverwriteCount(int count)
    {
        const auto database = dao::DBEngine::OpenDatabase(StationPlace::FileIn(Folder()));
        const auto rows = database->OpenRecordset(QStringLiteral("Prizes"), dao::dbOpenTable);
        rows->SetIndex(QStringLiteral("Main"));
        rows->Seek(dao::SeekComparison::Equal, {Prize});
        ASSERT_FALSE(rows->NoMatch());
        rows->Edit();
        rows->SetCollect(QStringLiteral("NumberWinners"), count);
        rows->Update();
    }

    qint32 Ann = 0;
    qint32 Ben = 0;
    qint32 Prize = 0;
};
