// SPDX-License-Identifier: Apache-2.0

// When automatic backups are made.

#include "database/BackupTimer.h"

#include "common/RandomSource.h"
#include "core/support/StationTest.h"
#include "database/BackupFolders.h"

#include <QDir>

namespace
{
/// Gives the number that the test wants.
class FixedRandom final : public RandomSource
{
public:
    FixedRandom() { SetCurrent(this); }
    ~FixedRandom() override { SetCurrent(nullptr); }
    FixedRandom(const FixedRandom&) = delete;
    FixedRandom& operator=(const FixedRandom&) = delete;

    double NextBelowOne() const override { return Number; }
    double Number = 0;
};
} // namespace

class BackupTimerTest : public StationTest
{
protected:
    void SetUp() override
    {
        OpenStation();
        Timer = std::make_shared<BackupTimer>(*Station, [this] { Station->BackupDatabase(false); });
    }
    qsizetype Backups() const { return BackupFolders::List(BackupFolders::RootOf(FileName())).size(); }
    /// As a program does that is started.
    void OpenAsAProgram()
    {
        Timer.reset();
        Station = std::make_unique<cTolvaDatabase>();
        Station->SetDirectoryDatabase(&Directory);
        OpenStation();
    }

    FixedRandom Random;
    std::shared_ptr<BackupTimer> Timer;
};

TEST_F(BackupTimerTest, ATimerAsItIsMade)
{
    EXPECT_EQ(Timer->CheckInterval(), 1800);
    EXPECT_TRUE(Timer->LastCheck().IsNone());
    EXPECT_EQ(Timer->tmrBackup().interval(), 10000);
    EXPECT_FALSE(Timer->tmrBackup().isActive());
}

TEST_F(BackupTimerTest, HourlyBackupsAreCheckedEvery20To40Minutes)
{
    Timer->Start(60);
    EXPECT_EQ(Timer->CheckInterval(), 20 * 60);
    Random.Number = 0.9999999;
    Timer->Start(60);
    EXPECT_EQ(Timer->CheckInterval(), 40 * 60);
    Random.Number = 0.5;
    Timer->Start(60);
    EXPECT_EQ(Timer->CheckInterval(), 30 * 60);
}

TEST_F(BackupTimerTest, DailyBackupsAreCheckedEvery2To4Hours)
{
    Timer->Start(1440);
    EXPECT_EQ(Timer->CheckInterval(), 120 * 60);
    Random.Number = 0.9999999;
    Timer->Start(1440);
    EXPECT_EQ(Timer->CheckInterval(), 240 * 60);
}

TEST_F(BackupTimerTest, AnotherIntervalLeavesTheChecksAsTheyAre)
{
    Timer->Start(30);
    EXPECT_EQ(Timer->CheckInterval(), 1800);
}

TEST_F(BackupTimerTest, TheStartChecksAtOnceAndThenEveryMinuteIsATick)
{
    Timer->Start(1440);
    EXPECT_EQ(Backups(), 1);
    EXPECT_EQ(Timer->LastCheck(), ClockHelper::CurrentTime());
    EXPECT_EQ(Timer->tmrBackup().interval(), 60000);
    EXPECT_TRUE(Timer->tmrBackup().isActive());
}

TEST_F(BackupTimerTest, ATickChecksOnlyBehindTheCheckInterval)
{
    Timer->Start(1440);
    const Date first = Timer->LastCheck();
    Now.Advance(120 * 60);
    Timer->Tick();
    EXPECT_EQ(Timer->LastCheck(), first);
    Now.Advance(1);
    Timer->Tick();
    EXPECT_EQ(Timer->LastCheck(), ClockHelper::CurrentTime());
}

TEST_F(BackupTimerTest, AStoppedTimerMakesNoBackup)
{
    Timer->Stop();
    Timer->Tick();
    EXPECT_EQ(Backups(), 0);
    EXPECT_FALSE(Timer->tmrBackup().isActive());
}

TEST_F(BackupTimerTest, TheFirstOpenWithAutomaticBackupsMakesOneAtOnce)
{
    OpenAsAProgram();
    EXPECT_EQ(Backups(), 1);
    EXPECT_EQ(Ui.BackupNotices(), (QList<bool>{true, false}));
    OpenAsAProgram();
    EXPECT_EQ(Backups(), 1);
}

TEST_F(BackupTimerTest, ABackupBeforeMidnightDoesNotKeepTheNextDayFromItsOwn)
{
    Now.SetUtc(QDateTime(QDate(2026, 11, 21), QTime(23, 58), Qt::UTC));
    OpenAsAProgram();
    Now.Advance(4 * 60);
    OpenAsAProgram();
    EXPECT_EQ(Backups(), 2);
}

TEST_F(BackupTimerTest, WithAutomaticBackupsOffNothingHappens)
{
    Station->SetEnableAutoBackup(false);
    OpenAsAProgram();
    EXPECT_EQ(Backups(), 0);
    EXPECT_TRUE(Ui.BackupNotices().isEmpty());
}

TEST_F(BackupTimerTest, TheSettingCountsFromTheNextReadingOfTheSettings)
{
    Station->SetMakesAutomaticBackups(true);
    Station->SetEnableAutoBackup(false);
    Station->ReadDatabaseSettings();
    Station->SetEnableAutoBackup(true);
    EXPECT_EQ(Backups(), 0);
    Station->ReadDatabaseSettings();
    EXPECT_EQ(Backups(), 1);
}

TEST_F(BackupTimerTest, AFailedBackupStopsNoOpen)
{
    QFile inTheWay(Folder.filePath(QStringLiteral("Backups")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    OpenAsAProgram();
    EXPECT_TRUE(Station->IsOpen());
}
