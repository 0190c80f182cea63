// SPDX-License-Identifier: Apache-2.0

// Backing up an open station.

#include "core/support/StationTest.h"
#include "database/BackupFolders.h"
#include "database/DAO_DatabaseFunctions.h"
#include "platform/records/DBEngine.h"

#include <QDir>
#include <QFile>

namespace
{
const QString CopyCaption = QStringLiteral("Backing up the Database");
const QString RunningKey = QStringLiteral("Backups.BackupRunning");
const QString LastKey = QStringLiteral("Backups.LastBackup");
const QString FailureText = QStringLiteral("A backup of the Directory database could not be be made");

QByteArray Read(const QString& name)
{
    QFile file(name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
}
} // namespace

class BackupStoreTest : public StationTest
{
protected:
    void SetUp() override
    {
        OpenStation();
        SaveNew(QStringLiteral("kept"));
    }

    QString Root() const { return BackupFolders::RootOf(FileName()); }
    QString In(const QString& name, const char16_t* file) const
    {
        return Root() + u'/' + name + u'/' + QString::fromUtf16(file);
    }
    QStringList Names() const { return QDir(Root()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name); }
    QString Setting(const QString& key) const { return Station->DatabaseSetting(key, QString()).toString(); }
    void Announce(const QString& started, const QString& by)
    {
        Station->SetDatabaseSetting(RunningKey, QStringLiteral("Started=\"%1\" By=\"%2\"").arg(started, by), QString());
    }
    /// A new object makes its own backup, as the next run of a program does.
    void Reopen()
    {
        Station = std::make_unique<cTolvaDatabase>();
        Station->SetDirectoryDatabase(&Directory);
        Station->SetMakesAutomaticBackups(false);
        OpenStation();
    }
    void MakeSound() { ASSERT_TRUE(Station->BackupDatabase(true)); }
    void MakeOld(const QString& name, const QByteArray& details, const char16_t* file = u"Backup.inf") const
    {
        ASSERT_TRUE(QDir().mkpath(Root() + u'/' + name));
        QFile details_(In(name, file));
        ASSERT_TRUE(details_.open(QIODevice::WriteOnly));
        details_.write(details);
    }
    static QByteArray CreatedOn(const char* date) { return QByteArray("[Details]\r\nCreated=") + date + "\r\n"; }
};

TEST_F(BackupStoreTest, ABackupIsADatedFolderWithTheDatabaseAndItsDetails)
{
    EXPECT_TRUE(Station->BackupDatabase(true));
    const QString name = QStringLiteral("2026-11-21 14.05");
    EXPECT_EQ(Names(), QStringList{name});
    EXPECT_EQ(QDir(Root() + u'/' + name).entryList(QDir::Files | QDir::Hidden, QDir::Name),
              (QStringList{QStringLiteral("Backup.inf"), QStringLiteral("Tolva.mdb")}));
    const QByteArray computer = QSysInfo::machineHostName().toLatin1();
    EXPECT_EQ(Read(In(name, u"Backup.inf")), "[Details]\nCreated=21/11/2026 14:05:09\nBy=" + computer +
                                                 "\nSoftware=Kelvarin Directory\nDirectoryEngineVersion=v0.2.0\n");
    cTolvaDatabase copy;
    copy.SetMakesAutomaticBackups(false);
    ASSERT_EQ(copy.OpenTolvaDatabase(Root() + u'/' + name), 0);
    EXPECT_EQ(copy.GetMessages(QString())->Count(), 1);
}

TEST_F(BackupStoreTest, TheBackupIsRecordedInTheStation)
{
    EXPECT_TRUE(Station->BackupDatabase(true));
    const QString text =
        QStringLiteral("Run=\"21/11/2026 14:05:09\" By=%1 Name=\"2026-11-21 14.05\"").arg(QSysInfo::machineHostName());
    EXPECT_EQ(Setting(LastKey), text);
    EXPECT_EQ(Setting(RunningKey), QString());
    EXPECT_EQ(OpenTable(QStringLiteral("Description"))->Collect(QStringLiteral("LastBackup")).toString(), text);
}

TEST_F(BackupStoreTest, TheBackupIsAnnouncedWhileItIsCopied)
{
    EXPECT_TRUE(Station->BackupDatabase(true));
    const auto copy = dao::DBEngine::OpenDatabase(In(QStringLiteral("2026-11-21 14.05"), u"Tolva.mdb"));
    const auto settings = copy->OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable);
    EXPECT_EQ(DAO_DatabaseFunctions::ReadSettingValue(settings.get(), RunningKey, QString()).toString(),
              QStringLiteral("Started=\"21/11/2026 14:05:09\" By=%1").arg(QSysInfo::machineHostName()));
}

TEST_F(BackupStoreTest, AnObjectMakesOneBackupInItsLife)
{
    EXPECT_TRUE(Station->BackupDatabase(true));
    Now.Advance(3600);
    EXPECT_FALSE(Station->BackupDatabase(true));
    EXPECT_FALSE(Station->BackupDatabase(false));
    EXPECT_EQ(Names().size(), 1);
    Reopen();
    EXPECT_TRUE(Station->BackupDatabase(true));
    EXPECT_EQ(Names().size(), 2);
}

TEST_F(BackupStoreTest, AClosedObjectMakesNoneAndTouchesNothing)
{
    Station->CloseTolvaDatabase();
    EXPECT_FALSE(Station->BackupDatabase(true));
    EXPECT_FALSE(QDir(Root()).exists());
}

TEST_F(BackupStoreTest, OnlyAnAutomaticBackupShowsTheNotice)
{
    EXPECT_TRUE(Station->BackupDatabase(true));
    EXPECT_TRUE(Ui.BackupNotices().isEmpty());
    Reopen();
    Now.Advance(24 * 3600);
    EXPECT_TRUE(Station->BackupDatabase(false));
    EXPECT_EQ(Ui.BackupNotices(), (QList<bool>{true, false}));
    EXPECT_EQ(Ui.ProgressCaptions().count(CopyCaption), 2);
}

TEST_F(BackupStoreTest, AnotherComputersFreshAnnouncementIsRespected)
{
    Announce(QStringLiteral("21/11/2026 14:00:10"), QStringLiteral("STUDIO 2"));
    EXPECT_FALSE(Station->BackupDatabase(false)); // 4 minutes and 59 seconds
    EXPECT_TRUE(Ui.BackupNotices().isEmpty());
    EXPECT_FALSE(Setting(RunningKey).isEmpty());
    Now.Advance(1);
    EXPECT_TRUE(Station->BackupDatabase(false)); // 5 minutes: stale
}

TEST_F(BackupStoreTest, AnAnnouncementOfThisComputerOrWithoutADateIsIgnored)
{
    Announce(QStringLiteral("21/11/2026 14:05:00"), QSysInfo::machineHostName() + u' ');
    EXPECT_TRUE(Station->BackupDatabase(false));
    Reopen();
    Now.Advance(24 * 3600);
    Announce(QStringLiteral("a while ago"), QStringLiteral("STUDIO 2"));
    EXPECT_TRUE(Station->BackupDatabase(false));
}

TEST_F(BackupStoreTest, AForcedBackupMindsNoAnnouncementAndNoEarlierBackup)
{
    Announce(QStringLiteral("21/11/2026 14:05:00"), QStringLiteral("STUDIO 2"));
    Station->SetDatabaseSetting(LastKey, QStringLiteral("Run=\"21/11/2026 14:00:00\""), QString());
    EXPECT_TRUE(Station->BackupDatabase(true));
}

TEST_F(BackupStoreTest, TheDayHasOneDailyBackup)
{
    Station->SetDatabaseSetting(LastKey, QStringLiteral("Run=\"21/11/2026 00:00:01\""), QString());
    EXPECT_FALSE(Station->BackupDatabase(false));
    Station->SetDatabaseSetting(LastKey, QStringLiteral("Run=\"20/11/2026 23:59:59\""), QString());
    EXPECT_TRUE(Station->BackupDatabase(false));
}

TEST_F(BackupStoreTest, TheHourHasOneHourlyBackup)
{
    Station->SetBackupInterval(60);
    Station->SetDatabaseSetting(LastKey, QStringLiteral("Run=\"21/11/2026 14:00:00\""), QString());
    EXPECT_FALSE(Station->BackupDatabase(false));
    Station->SetDatabaseSetting(LastKey, QStringLiteral("Run=\"20/11/2026 14:04:00\""), QString());
    EXPECT_TRUE(Station->BackupDatabase(false));
    Reopen();
    Station->SetDatabaseSetting(LastKey, QStringLiteral("Run=\"21/11/2026 13:59:59\""), QString());
    Now.Advance(60);
    EXPECT_TRUE(Station->BackupDatabase(false));
}

TEST_F(BackupStoreTest, AnyOtherIntervalKnowsNoLastBackup)
{
    Station->SetBackupInterval(30);
    Station->SetDatabaseSetting(LastKey, QStringLiteral("Run=\"21/11/2026 14:05:00\""), QString());
    EXPECT_TRUE(Station->BackupDatabase(false));
}

TEST_F(BackupStoreTest, ABackupOfExactlyTheExpiryDaysStaysAndAnOlderOneGoes)
{
    MakeOld(QStringLiteral("a"), CreatedOn("14/11/2026 14:05:09"));
    MakeOld(QStringLiteral("b"), CreatedOn("13/11/2026 14:05:09"));
    MakeOld(QStringLiteral("c"), CreatedOn("13/11/2026 14:05:10"));
    EXPECT_TRUE(Station->BackupDatabase(true));
    EXPECT_EQ(Names(), (QStringList{QStringLiteral("2026-11-21 14.05"), QStringLiteral("a"), QStringLiteral("c")}));
}

TEST_F(BackupStoreTest, EveryDeletionTellsTheDateThatWasReadLast)
{
    MakeOld(QStringLiteral("a"), CreatedOn("01/11/2026 10:00:00"));
    MakeOld(QStringLiteral("b"), CreatedOn("02/11/2026 10:00:00"));
    MakeOld(QStringLiteral("c"), CreatedOn("20/11/2026 10:00:00"));
    EXPECT_TRUE(Station->BackupDatabase(true));
    const QString caption = QStringLiteral("Deleting Backup from 20/11/2026 10:00:00");
    // Nothing goes before the new backup stands.
    EXPECT_EQ(Ui.ProgressCaptions(), (QStringList{CopyCaption, caption, caption}));
}

TEST_F(BackupStoreTest, WhatHasNoReadableDetailsNeverExpires)
{
    MakeOld(QStringLiteral("a"), QByteArray());
    MakeOld(QStringLiteral("b"), CreatedOn("long ago"));
    MakeOld(QStringLiteral("c"), CreatedOn("01/01/2020 10:00:00"), u"other.inf");
    MakeOld(QStringLiteral("d"), CreatedOn("01/01/2020 10:00:00"), u"BACKUP.INF");
    QFile loose(Root() + QStringLiteral("/loose.txt"));
    ASSERT_TRUE(loose.open(QIODevice::WriteOnly));
    EXPECT_TRUE(Station->BackupDatabase(true));
    EXPECT_EQ(Names(), (QStringList{QStringLiteral("2026-11-21 14.05"), QStringLiteral("a"), QStringLiteral("b"),
                                    QStringLiteral("c")}));
    EXPECT_TRUE(loose.exists());
}

TEST_F(BackupStoreTest, ExpiryDays0DeletesNothing)
{
    MakeOld(QStringLiteral("a"), CreatedOn("01/01/2020 10:00:00"));
    Station->SetBackupExpiryDays(0);
    EXPECT_TRUE(Station->BackupDatabase(true));
    EXPECT_EQ(Names().size(), 2);
}

TEST_F(BackupStoreTest, AClockThatJumpsYearsAheadLeavesTheNewestThreeSoundBackups)
{
    for (int day = 0; day < 5; ++day, Now.Advance(24 * 3600)) {
        Reopen();
        MakeSound();
    }
    const QStringList before = Names();
    EXPECT_EQ(before.size(), 5);
    // The newest of them is damaged within, and does not count.
    const QString newest = In(before.last(), u"Tolva.mdb");
    {
        QFile file(newest);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.seek(file.size() - 3 * 4096));
        file.write(QByteArray(2 * 4096, '\x5A'));
    }
    EXPECT_FALSE(BackupFolders::IsSound(newest));
    Now.SetUtc(QDateTime(QDate(2040, 1, 1), QTime(12, 0), Qt::UTC));
    Reopen();
    EXPECT_TRUE(Station->BackupDatabase(false));
    EXPECT_EQ(Names(), (QStringList{before.at(1), before.at(2), before.at(3), QStringLiteral("2040-01-01 12.00")}));
}

TEST_F(BackupStoreTest, ABackupFromTheFutureIsNotTheNewestAndSuppressesNone)
{
    Reopen();
    MakeSound();
    Now.SetUtc(QDateTime(QDate(2040, 1, 1), QTime(12, 0), Qt::UTC));
    Reopen();
    MakeSound();
    Announce(QStringLiteral("01/01/2040 12:00:00"), QStringLiteral("STUDIO 2"));
    // The clock is right again.
    Now.SetUtc(QDateTime(QDate(2026, 11, 22), QTime(9, 0), Qt::UTC));
    EXPECT_EQ(BackupFolders::NewestSound(Root(), QStringLiteral("Tolva.mdb")).Name, QStringLiteral("2026-11-21 14.05"));
    Reopen();
    EXPECT_TRUE(Station->BackupDatabase(false));
    EXPECT_EQ(Names(), (QStringList{QStringLiteral("2026-11-21 14.05"), QStringLiteral("2026-11-22 09.00"),
                                    QStringLiteral("2040-01-01 12.00")}));
    EXPECT_EQ(BackupFolders::NewestSound(Root(), QStringLiteral("Tolva.mdb")).Name, QStringLiteral("2026-11-22 09.00"));
}

TEST_F(BackupStoreTest, ABackupFromAZoneFartherEastIsNotFromTheFuture)
{
    Reopen();
    MakeSound();
    Now.Advance(-24 * 3600);
    EXPECT_EQ(BackupFolders::NewestSound(Root(), QStringLiteral("Tolva.mdb")).Name, QStringLiteral("2026-11-21 14.05"));
    Now.Advance(-1);
    EXPECT_EQ(BackupFolders::NewestSound(Root(), QStringLiteral("Tolva.mdb")).Name, QString());
}

TEST_F(BackupStoreTest, AFailedForcedBackupIsToldAndLeavesOldOnesAlone)
{
    MakeOld(QStringLiteral("a"), CreatedOn("01/01/2020 10:00:00"));
    Ui.CancelProgressAt(1);
    Ui.ExpectWarning(FailureText);
    EXPECT_FALSE(Station->BackupDatabase(true));
    EXPECT_EQ(Station->LastErrorNumber(), dao::errCancelled);
    // The new folder stays, without details and without a file.
    EXPECT_EQ(Names(), (QStringList{QStringLiteral("2026-11-21 14.05"), QStringLiteral("a")}));
    EXPECT_TRUE(QDir(Root() + QStringLiteral("/2026-11-21 14.05"))
                    .isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    EXPECT_EQ(Setting(RunningKey), QString());
    EXPECT_EQ(Setting(LastKey), QString());
}

TEST_F(BackupStoreTest, AFailedAutomaticBackupIsSilent)
{
    Ui.CancelProgressAt(1);
    EXPECT_FALSE(Station->BackupDatabase(false));
    EXPECT_EQ(Ui.BackupNotices(), (QList<bool>{true, false}));
    EXPECT_EQ(Setting(RunningKey), QString());
}

TEST_F(BackupStoreTest, AFileInTheWayOfTheFoldersFailsTheBackup)
{
    QFile inTheWay(Folder.filePath(QStringLiteral("Backups")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    Ui.ExpectWarning(FailureText);
    EXPECT_FALSE(Station->BackupDatabase(true));
}

TEST_F(BackupStoreTest, ADamagedStationDrivesOutNoOlderBackup)
{
    for (int i = 0; i < 50; ++i)
        SaveNew(QStringLiteral("message %1").arg(i));
    MakeOld(QStringLiteral("a"), CreatedOn("01/01/2020 10:00:00"));
    QFile file(FileName());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.seek(file.size() - 3 * 4096));
    file.write(QByteArray(2 * 4096, '\x5A'));
    file.close();
    Ui.ExpectWarning(FailureText);
    EXPECT_FALSE(Station->BackupDatabase(true));
    EXPECT_EQ(Station->LastErrorNumber(), dao::errFileDamaged);
    EXPECT_TRUE(Names().contains(QStringLiteral("a")));
    EXPECT_FALSE(QFile::exists(In(QStringLiteral("2026-11-21 14.05"), u"Tolva.mdb")));
}

TEST_F(BackupStoreTest, ASecondBackupInTheSameMinuteTakesThePlaceOfTheFirst)
{
    EXPECT_TRUE(Station->BackupDatabase(true));
    Reopen();
    SaveNew(QStringLiteral("later"));
    Now.Advance(10);
    EXPECT_TRUE(Station->BackupDatabase(true));
    EXPECT_EQ(Names().size(), 1);
    EXPECT_TRUE(Read(In(Names().first(), u"Backup.inf")).contains("Created=21/11/2026 14:05:19\n"));
    const auto copy = dao::DBEngine::OpenDatabase(In(Names().first(), u"Tolva.mdb"));
    EXPECT_EQ(copy->OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable)->RecordCount(), 2);
}

TEST_F(BackupStoreTest, RecordingOnNoDatabaseGivesNothing)
{
    EXPECT_EQ(DAO_DatabaseFunctions::RecordLastBackup(nullptr, Date(2026, 11, 21), QStringLiteral("x")), QString());
}

TEST_F(BackupStoreTest, ARecordThatCannotBeStoredIsEmpty)
{
    const auto database = dao::DBEngine::OpenDatabase(FileName());
    EXPECT_EQ(DAO_DatabaseFunctions::RecordLastBackup(database.get(), Date(2026, 11, 21), QString(300, u'n')),
              QString());
    EXPECT_EQ(DAO_DatabaseFunctions::RecordLastBackup(database.get(), Date(2026, 11, 21, 9, 5, 1), QStringLiteral("n")),
              QStringLiteral("Run=\"21/11/2026 09:05:01\" By=%1 Name=n").arg(QSysInfo::machineHostName()));
}

TEST_F(BackupStoreTest, ThroughAYearEachDayHasItsBackupAndThoseOfTheLastWeekStay)
{
    // In memory where the system has a place for that: the syncs of a year take minutes on a disk.
    const QTemporaryDir memory(QFileInfo(QStringLiteral("/dev/shm")).isWritable()
                                   ? QStringLiteral("/dev/shm/tolva-year-XXXXXX")
                                   : QDir::tempPath() + QStringLiteral("/tolva-year-XXXXXX"));
    Station->CloseTolvaDatabase();
    const QString file = memory.filePath(QStringLiteral("Tolva.mdb"));
    ASSERT_TRUE(QFile::copy(FileName(), file));
    const QDir root(BackupFolders::RootOf(file));
    Now.SetUtc(QDateTime(QDate(2026, 1, 1), QTime(9, 0), Qt::UTC));
    QList<QDateTime> expected; // by the clock on the wall
    for (int day = 0; day < 365; ++day, Now.Advance(24 * 3600)) {
        // The program runs twice a day; only its first run makes a backup.
        for (int run = 0; run < 2; ++run) {
            cTolvaDatabase program;
            ASSERT_EQ(program.OpenTolvaDatabase(memory.path()), 0);
        }
        const QDateTime wall = ClockHelper::CurrentTime().ToDateTime(Qt::UTC);
        expected.removeIf([&](const QDateTime& made) { return made.addDays(8) <= wall; });
        expected.append(wall);
        QStringList names;
        for (const QDateTime& made : expected)
            names.append(made.toString(QStringLiteral("yyyy-MM-dd hh.mm")));
        ASSERT_EQ(root.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name), names) << day;
    }
    for (const BackupFolders::Backup& backup : BackupFolders::List(root.path()))
        EXPECT_TRUE(BackupFolders::IsSound(backup.Folder + QStringLiteral("/Tolva.mdb"))) << backup.Name.toStdString();
}
