// SPDX-License-Identifier: Apache-2.0

// The search for a backup when a database is found corrupted.

#include "database/RestoreBackup.h"

#include "common/PendingError.h"
#include "core/support/StationTest.h"
#include "database/BackupFolders.h"
#include "database/DAO_DatabaseFunctions.h"
#include "platform/records/DBEngine.h"
#include "platform/records/engines/EngineRegistry.h"

#include <QDir>
#include <QFile>

using namespace dao;

namespace
{
const QByteArray HalfDeadMark = "HALF DEAD\n";

const QString SearchQuestion = QStringLiteral("Your Tolva database is corrupted and cannot be repaired.\n\n"
                                              "Do you want this program to search for recent automatic backups?");

QString ReplaceQuestion(const QString& date)
{
    return QStringLiteral("A valid backup has been found that was created: %1\n\n"
                          "Do you want replace the corrupted database with this backup?\n\n"
                          "WARNING! You must quit from all copies of Tolva and Tolva Server before restoring from a "
                          "Backup")
        .arg(date);
}

/// Serves files that pass the validation of an open and fail when they are read the next time, as a failing disk does.
/// Behind the first open stands a real database.
class HalfDeadEngine final : public engine::Engine
{
public:
    explicit HalfDeadEngine(const QString& real) : Real_(real) {}

    QString Name() const override { return QStringLiteral("half dead"); }
    Capability Capabilities() const override { return {}; }
    bool IsAvailable(QString&) const override { return true; }
    bool RecognisesFile(const QByteArray& octets) const override { return octets.startsWith(HalfDeadMark); }
    bool RecognisesConnect(const QString&) const override { return false; }
    std::unique_ptr<engine::Store> Open(const QString&, const QString&, bool) override
    {
        if (Opens_++ % 2 == 1)
            throw Error(errFileDamaged, QStringLiteral("It fell apart."));
        return engine::EngineRegistry::Instance().ForNewFiles(QString()).Open(Real_, QString(), false);
    }
    void Create(const QString&) override {}
    void Compact(const QString&, const QString&) override {}
    void Copy(const QString&, const QString&, const engine::CopyProgress&) override {}
    dao::FileReport Examine(const QString&, const engine::CopyProgress&) override { return {}; }
    QStringList CompanionsOf(const QString&) const override { return {}; }
    std::unique_ptr<Connection> OpenConnection(const QString&, int, bool, const QString&) override { return nullptr; }

private:
    QString Real_;
    int Opens_ = 0;
};
} // namespace

class RestoreBackupTest : public StationTest
{
protected:
    void SetUp() override
    {
        OpenStation();
        SaveNew(QStringLiteral("first"));
        BackUp(); // 14.05
        SaveNew(QStringLiteral("second"));
        BackUp(); // 15.05
        Station->CloseTolvaDatabase();
        ASSERT_TRUE(QFile::copy(FileName(), Folder.filePath(QStringLiteral("Real.mdb"))));
        engine::EngineRegistry::Instance().Register(
            std::make_unique<HalfDeadEngine>(Folder.filePath(QStringLiteral("Real.mdb"))));
        Write(FileName(), HalfDeadMark);
    }
    void TearDown() override { engine::EngineRegistry::Instance().Unregister(QStringLiteral("half dead")); }

    void BackUp()
    {
        Station = std::make_unique<cTolvaDatabase>();
        Station->SetDirectoryDatabase(&Directory);
        Station->SetMakesAutomaticBackups(false);
        OpenStation();
        ASSERT_TRUE(Station->BackupDatabase(true));
        Now.Advance(3600);
    }
    static void Write(const QString& name, const QByteArray& octets)
    {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(octets);
    }
    static QByteArray Read(const QString& name)
    {
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        return file.readAll();
    }
    QString Copy(const char16_t* name) const
    {
        return BackupFolders::RootOf(FileName()) + u'/' + QString::fromUtf16(name) + QStringLiteral("/Tolva.mdb");
    }
    QString KeepName() const { return Folder.filePath(QStringLiteral("Tolva.BAK")); }
    /// The user says yes twice, and reading the corrupted file is reported in between.
    void ExpectOffer(const QString& date, MessageBoxAnswer answer = MessageBoxAnswer::Yes)
    {
        ExpectReport();
        Ui.ExpectConfirmation(SearchQuestion, MessageBoxAnswer::Yes);
        Ui.ExpectConfirmation(ReplaceQuestion(date), answer);
    }
    void ExpectReport()
    {
        Ui.ExpectWarning(QStringLiteral("There was a problem opening the database to read it's information\n\n%1 and "
                                        "the error's description was reported as : \n\n\"It fell apart. (3049)\"")
                             .arg(FileName()));
    }
    qint32 Open() const { return Station->OpenTolvaDatabase(Folder.path()); }
    int Messages() const { return static_cast<int>(Station->GetMessages(QString())->Count()); }
};

TEST_F(RestoreBackupTest, TheNewestBackupTakesThePlaceOfTheCorruptedFile)
{
    ExpectOffer(QStringLiteral("Saturday, 21 November 2026 15:05"));
    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(Messages(), 2);
    EXPECT_EQ(Read(KeepName()), HalfDeadMark);
    EXPECT_EQ(Ui.ProgressCaptions().last(), QStringLiteral("Restoring Backup"));
    EXPECT_EQ(QDir(Folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name),
              (QStringList{QStringLiteral("Real.mdb"), QStringLiteral("Tolva.BAK"), QStringLiteral("Tolva.mdb")}));
}

TEST_F(RestoreBackupTest, WhoWantsNoSearchGetsTheErrorOfTheFile)
{
    ExpectReport();
    Ui.ExpectConfirmation(SearchQuestion, MessageBoxAnswer::No);
    EXPECT_EQ(Open(), errFileDamaged);
    EXPECT_EQ(Read(FileName()), HalfDeadMark);
}

TEST_F(RestoreBackupTest, WhoDeclinesTheBackupGetsMinus1AndNothingIsTouched)
{
    ExpectOffer(QStringLiteral("Saturday, 21 November 2026 15:05"), MessageBoxAnswer::No);
    EXPECT_EQ(Open(), -1);
    EXPECT_EQ(Read(FileName()), HalfDeadMark);
    EXPECT_FALSE(QFile::exists(KeepName()));
}

TEST_F(RestoreBackupTest, WithoutBackupsTheErrorOfTheFileIsTheResult)
{
    ASSERT_TRUE(QDir(Folder.filePath(QStringLiteral("Backups"))).removeRecursively());
    ExpectReport();
    Ui.ExpectConfirmation(SearchQuestion, MessageBoxAnswer::Yes);
    EXPECT_EQ(Open(), errFileDamaged);
}

TEST_F(RestoreBackupTest, ADamagedBackupIsPassedOverForAnOlderOne)
{
    const QByteArray whole = Read(Copy(u"2026-11-21 15.05"));
    QByteArray zeroed = whole;
    zeroed.replace(whole.size() - 4 * 4096, 3 * 4096, QByteArray(3 * 4096, '\0'));
    QByteArray flipped = whole;
    for (qsizetype i = whole.size() - 4096; i < whole.size(); i += 2)
        flipped[i] = static_cast<char>(flipped.at(i) ^ 0x40);
    for (const QByteArray& damaged : {QByteArray(), QByteArray("just some text"), whole.left(whole.size() / 2),
                                      whole.chopped(1), zeroed, flipped}) {
        Write(Copy(u"2026-11-21 15.05"), damaged);
        ExpectOffer(QStringLiteral("Saturday, 21 November 2026 14:05"), MessageBoxAnswer::No);
        EXPECT_EQ(Open(), -1);
    }
}

TEST_F(RestoreBackupTest, ABackupWithoutItsDetailsOrDateIsNotOffered)
{
    const QString details = QFileInfo(Copy(u"2026-11-21 15.05")).path() + QStringLiteral("/Backup.inf");
    ASSERT_TRUE(QFile::rename(details, QFileInfo(details).path() + QStringLiteral("/BACKUP.inf")));
    ExpectOffer(QStringLiteral("Saturday, 21 November 2026 15:05"), MessageBoxAnswer::No); // whatever its case
    EXPECT_EQ(Open(), -1);
    Write(QFileInfo(details).path() + QStringLiteral("/BACKUP.inf"), "[Details]\nCreated=once\n");
    ExpectOffer(QStringLiteral("Saturday, 21 November 2026 14:05"), MessageBoxAnswer::No);
    EXPECT_EQ(Open(), -1);
    ASSERT_TRUE(QFile::remove(QFileInfo(details).path() + QStringLiteral("/BACKUP.inf")));
    ExpectOffer(QStringLiteral("Saturday, 21 November 2026 14:05"), MessageBoxAnswer::No);
    EXPECT_EQ(Open(), -1);
}

TEST_F(RestoreBackupTest, AnEarlierKeptFileMakesWay)
{
    Write(KeepName(), "from last year");
    ExpectOffer(QStringLiteral("Saturday, 21 November 2026 15:05"));
    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(Read(KeepName()), HalfDeadMark);
    EXPECT_TRUE(Ui.ProgressCaptions().contains(QStringLiteral("Removing old files...")));
}

TEST_F(RestoreBackupTest, AnEarlierKeptFileThatStaysStopsTheRestore)
{
    Write(KeepName(), "from last year");
    ExpectOffer(QStringLiteral("Saturday, 21 November 2026 15:05"));
    Ui.ExpectWarning(
        QStringLiteral("An old corrupted file cannot be deleted to make way for a duplicate of the current "
                       "corrupted database. \n\n%1")
            .arg(KeepName()));
    Ui.CancelProgressAt(1);
    EXPECT_EQ(Open(), -1);
    EXPECT_EQ(Read(FileName()), HalfDeadMark);
    EXPECT_EQ(Read(KeepName()), "from last year");
}

TEST_F(RestoreBackupTest, ACopyThatIsStoppedLeavesTheOldFileInItsPlace)
{
    ExpectOffer(QStringLiteral("Saturday, 21 November 2026 15:05"));
    Ui.CancelProgressAt(1);
    EXPECT_EQ(Open(), -1);
    EXPECT_EQ(Read(FileName()), HalfDeadMark);
    EXPECT_FALSE(QFile::exists(KeepName()));
    EXPECT_EQ(QDir(Folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name),
              (QStringList{QStringLiteral("Real.mdb"), QStringLiteral("Tolva.mdb")}));
}

TEST_F(RestoreBackupTest, TheOldFilesJournalDoesNotReachTheRestoredOne)
{
    Write(FileName() + QStringLiteral("-journal"), QByteArray(600, 'j'));
    ExpectOffer(QStringLiteral("Saturday, 21 November 2026 15:05"));
    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(Messages(), 2);
    EXPECT_EQ(Read(KeepName() + QStringLiteral("-journal")), QByteArray(600, 'j'));
}

TEST_F(RestoreBackupTest, WhateverHappenedToTheFileABackupBringsItBack)
{
    const QByteArray whole = Read(Copy(u"2026-11-21 15.05"));
    QByteArray flipped = whole;
    flipped[20] = '\x7F';
    for (const QByteArray& damaged : {QByteArray(), QByteArray("a shopping list"), whole.left(5000), flipped}) {
        Write(FileName(), damaged);
        QFile::remove(KeepName());
        PendingError failure;
        ASSERT_EQ(RestoreBackup::Replace(
                      FileName(), Copy(u"2026-11-21 15.05"), [this] { return KeepName(); }, failure),
                  RestoreBackup::Outcome::Done);
        EXPECT_EQ(Read(KeepName()), damaged);
        EXPECT_EQ(Open(), 0);
        EXPECT_EQ(Messages(), 2);
        Station->CloseTolvaDatabase();
    }
    // And when it is gone altogether.
    QFile::remove(FileName());
    PendingError failure;
    EXPECT_EQ(RestoreBackup::Replace(
                  FileName(), Copy(u"2026-11-21 14.05"), [this] { return KeepName(); }, failure),
              RestoreBackup::Outcome::Done);
    EXPECT_EQ(Open(), 0);
    EXPECT_EQ(Messages(), 1);
}
