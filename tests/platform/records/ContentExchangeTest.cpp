// SPDX-License-Identifier: Apache-2.0
#include "platform/records/ContentExchange.h"

#include "platform/records/FaultVfs.h"
#include "platform/records/RecordsFixture.h"
#include "support/FaultyFileSystem.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <filesystem>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace dao;

namespace
{

/// Another program that has the database open, and adds a row when it is told to.
class OtherProgram
{
public:
    explicit OtherProgram(const QString& file)
    {
        Process_.start(QStringLiteral(TOLVA_STORE_WRITER), {QStringLiteral("step"), file});
        EXPECT_EQ(Line(), "ready");
    }
    ~OtherProgram()
    {
        Process_.closeWriteChannel();
        EXPECT_TRUE(Process_.waitForFinished());
    }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    /// Its reference, or "error" and a number.
    QByteArray Add(const char* name)
    {
        Process_.write(QByteArray(name) + '\n');
        return Line();
    }

private:
    QByteArray Line()
    {
        while (!Process_.canReadLine() && Process_.waitForReadyRead()) {
        }
        return Process_.readLine().trimmed();
    }

    QProcess Process_;
};

class ContentExchanging : public RecordsFixture
{
protected:
    ContentExchanging()
    {
        std::vector<std::unique_ptr<Field>> fields;
        fields.push_back(MakeField(QStringLiteral("Reference"), dbLong, 0, dbAutoIncrField));
        fields.push_back(MakeField(QStringLiteral("Name"), dbText));
        fields.push_back(MakeField(QStringLiteral("Memo"), dbMemo));
        AddTable(Db(), QStringLiteral("T"), std::move(fields));
        AddIndex(Db(), QStringLiteral("T"), QStringLiteral("Main"), {QStringLiteral("Reference")}, true, true);
        for (int i = 1; i <= 40; ++i)
            Add(QStringLiteral("row %1").arg(i));
        Reopen(); // the numbers that were taken out ahead go back
    }

    int Add(const QString& name)
    {
        const auto rows = OpenTable(QStringLiteral("T"));
        rows->AddNew();
        const int reference = rows->Collect(QStringLiteral("Reference")).toInt();
        rows->SetCollect(QStringLiteral("Name"), name);
        rows->SetCollect(QStringLiteral("Memo"), QString(10000, QLatin1Char('m')) + name);
        rows->Update();
        return reference;
    }
    /// The name in the row, as a new connection reads it; empty for no row.
    QString NameOf(int reference) const
    {
        const auto database = OpenAgain();
        const auto rows = database->OpenRecordset(
            QStringLiteral("SELECT [Name] FROM [T] WHERE [Reference]=%1").arg(reference), dbOpenSnapshot);
        return rows->AtEOF() ? QString() : rows->Collect(QStringLiteral("Name")).toString();
    }
    int Count() const { return OpenAgain()->OpenRecordset(QStringLiteral("T"), dbOpenTable)->RecordCount(); }

    QString Fresh() const { return Path(QStringLiteral("Fresh.mdb")); }
    QString Kept() const { return Path(QStringLiteral("Kept.BAK")); }

    bool Compact()
    {
        ContentExchange exchange(FileName());
        exchange.Note(true);
        DBEngine::CompactDatabase(FileName(), Fresh());
        exchange.RequireSameRows(Fresh());
        exchange.KeepAs(Kept());
        return exchange.Put(Fresh());
    }
    void MakeBackup() { DBEngine::CopyDatabase(FileName(), Path(QStringLiteral("Backup.mdb")), {}); }
    bool Restore()
    {
        DBEngine::CopyDatabase(Path(QStringLiteral("Backup.mdb")), Fresh(), {});
        ContentExchange exchange(FileName());
        exchange.Note(true);
        ContentExchange::MarkAsRestored(Fresh(), FileName());
        exchange.KeepAs(Kept());
        return exchange.Put(Fresh());
    }

    static QByteArray Octets(const QString& name)
    {
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        return file.readAll();
    }
};

TEST_P(ContentExchanging, WhoHasTheFileOpenGoesOnByHimselfAfterACompaction)
{
    if (GetParam() == u"jet")
        GTEST_SKIP() << "a row of its files is known by its place, and compacting moves rows: see the next case";
    OtherProgram other(FileName());
    EXPECT_EQ(other.Add("before"), "41");
    Db().Execute(QStringLiteral("DELETE FROM [T] WHERE [Reference] < 30"));
    const qint64 size = QFileInfo(FileName()).size();
    const auto table = OpenTable(QStringLiteral("T"), QStringLiteral("Main"));
    table->Seek(SeekComparison::Equal, {30});
    const auto snapshot = Db().OpenRecordset(QStringLiteral("SELECT * FROM [T] WHERE [Reference]=35"), dbOpenSnapshot);
    ASSERT_TRUE(Compact());
    EXPECT_LT(QFileInfo(FileName()).size(), size / 2);
    EXPECT_TRUE(snapshot->Collect(QStringLiteral("Memo")).toString().endsWith(QStringLiteral("row 35")));
    table->MoveNext();
    EXPECT_EQ(table->Collect(QStringLiteral("Reference")).toInt(), 31);
    table->Seek(SeekComparison::Equal, {41});
    EXPECT_EQ(table->Collect(QStringLiteral("Name")).toString(), QStringLiteral("before"));
    EXPECT_EQ(other.Add("after"), "42");
    const int here = Add(QStringLiteral("here"));
    EXPECT_GT(here, 42);
    EXPECT_EQ(NameOf(42), QStringLiteral("after"));
    EXPECT_EQ(NameOf(here), QStringLiteral("here"));
    DBEngine::CheckDatabase(FileName());
    DBEngine::CheckDatabase(Kept());
}

TEST_P(ContentExchanging, WhoHasTheFileOpenIsToldOfACompactionThatMovedItsRows)
{
    if (GetParam() != u"jet")
        GTEST_SKIP() << "only its files are compacted into others: see the case before";
    OtherProgram other(FileName());
    EXPECT_EQ(other.Add("before"), "41");
    Db().Execute(QStringLiteral("DELETE FROM [T] WHERE [Reference] < 30"));
    const qint64 size = QFileInfo(FileName()).size();
    const auto snapshot = Db().OpenRecordset(QStringLiteral("SELECT * FROM [T] WHERE [Reference]=35"), dbOpenSnapshot);
    ASSERT_TRUE(Compact());
    EXPECT_LT(QFileInfo(FileName()).size(), size);
    EXPECT_EQ(ErrorNumberOf([&] { snapshot->Collect(QStringLiteral("Memo")); }), errFileReplaced);
    EXPECT_EQ(ErrorNumberOf([&] { Add(QStringLiteral("never")); }), errFileReplaced);
    EXPECT_EQ(other.Add("never"), "error 3734");
    Reopen();
    EXPECT_GT(Add(QStringLiteral("here")), 41);
    EXPECT_EQ(NameOf(41), QStringLiteral("before"));
    EXPECT_EQ(Count(), 13);
    DBEngine::CheckDatabase(FileName());
    DBEngine::CheckDatabase(Kept());
}

TEST_P(ContentExchanging, ACommitBetweenBuildAndExchangeIsNotLost)
{
    OtherProgram other(FileName());
    {
        ContentExchange exchange(FileName());
        exchange.Note(false);
        DBEngine::CompactDatabase(FileName(), Fresh());
        exchange.KeepAs(Kept());
        EXPECT_TRUE(exchange.IsAsNoted());
        EXPECT_EQ(other.Add("in between"), "41");
        EXPECT_FALSE(exchange.IsAsNoted());
        EXPECT_FALSE(exchange.Put(Fresh()));
        EXPECT_EQ(NameOf(41), QStringLiteral("in between"));
        QFile::remove(Fresh());
        exchange.Note(false);
        DBEngine::CompactDatabase(FileName(), Fresh());
        EXPECT_TRUE(exchange.Put(Fresh()));
    }
    EXPECT_EQ(NameOf(41), QStringLiteral("in between"));
    EXPECT_EQ(Count(), 41);
}

TEST_P(ContentExchanging, WritersAreKeptOutWhileItIsHeldAndReadersAreNot)
{
    OtherProgram other(FileName());
    ContentExchange exchange(FileName());
    exchange.Note(true);
    EXPECT_EQ(other.Add("kept out"), "error 3260");
    EXPECT_EQ(Count(), 40);
    DBEngine::CompactDatabase(FileName(), Fresh());
    EXPECT_TRUE(exchange.Put(Fresh()));
    EXPECT_EQ(Count(), 40);
    if (GetParam() == u"jet") {
        EXPECT_EQ(other.Add("opens it anew"), "error 3734");
    } else {
        EXPECT_EQ(NameOf(other.Add("let in").toInt()), QStringLiteral("let in"));
    }
}

TEST_P(ContentExchanging, WhoHasTheFileOpenIsRefusedAfterARestoreUntilHeOpensItAnew)
{
    MakeBackup();
    OtherProgram other(FileName());
    EXPECT_EQ(other.Add("lost"), "41");
    EXPECT_EQ(Add(QStringLiteral("lost too")), 42);
    const auto table = OpenTable(QStringLiteral("T"), QStringLiteral("Main"));
    const auto snapshot = Db().OpenRecordset(QStringLiteral("SELECT * FROM [T] WHERE [Reference]=35"), dbOpenSnapshot);
    ASSERT_TRUE(Restore());
    EXPECT_EQ(ErrorNumberOf([&] { table->Seek(SeekComparison::Equal, {30}); }), errFileReplaced);
    EXPECT_EQ(ErrorNumberOf([&] { table->MoveNext(); }), errFileReplaced);
    EXPECT_EQ(ErrorNumberOf([&] { snapshot->Collect(QStringLiteral("Memo")); }), errFileReplaced);
    EXPECT_EQ(ErrorNumberOf([&] { Add(QStringLiteral("never")); }), errFileReplaced);
    EXPECT_EQ(ErrorNumberOf([&] { Db().Execute(QStringLiteral("DELETE FROM [T]")); }), errFileReplaced);
    EXPECT_EQ(ErrorNumberOf([&] { Db().OpenRecordset(QStringLiteral("T"), dbOpenTable); }), errFileReplaced);
    EXPECT_EQ(other.Add("never"), "error 3734");
    EXPECT_EQ(Count(), 40);
    // Numbers go on behind those that the replaced state gave.
    Reopen();
    EXPECT_GT(Add(QStringLiteral("new")), 42);
    EXPECT_EQ(NameOf(41), QString());
    DBEngine::CheckDatabase(Kept());
}

TEST_P(ContentExchanging, AFileOfAnEarlierVersionServesAndIsRestoredLikeAnyOther)
{
    if (GetParam() != u"sqlite")
        GTEST_SKIP() << "earlier versions had that engine alone";
    Database_.reset();
    sqlite3* raw = nullptr;
    ASSERT_EQ(sqlite3_open(FileName().toUtf8().constData(), &raw), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(raw, "DROP TABLE \"~Identity\"", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(raw);
    Reopen();
    MakeBackup();
    EXPECT_EQ(Add(QStringLiteral("lost")), 41);
    EXPECT_TRUE(Compact());
    QFile::remove(Fresh());
    QFile::remove(Kept());
    EXPECT_EQ(Add(QStringLiteral("lost too")), 42);
    EXPECT_TRUE(Restore());
    EXPECT_EQ(ErrorNumberOf([&] { Add(QStringLiteral("never")); }), errFileReplaced);
    Reopen();
    EXPECT_GT(Add(QStringLiteral("new")), 42);
}

TEST_P(ContentExchanging, AFullDiskAtAnyCallLeavesTheOldFileInItsPlace)
{
    if (GetParam() != u"jet")
        GTEST_SKIP() << "it writes past these files: see the next case";
    Database_.reset();
    DBEngine::CompactDatabase(FileName(), Fresh());
    const QByteArray before = Octets(FileName());
    for (int number = 1;; ++number) {
        FaultyFileSystem disk;
        disk.FailAt(number, FileError::Full, FaultyFileSystem::Fault::Tears);
        int error = 0;
        {
            ContentExchange exchange(FileName());
            exchange.Note(false);
            error = ErrorNumberOf([&] { exchange.Put(Fresh()); });
        }
        if (disk.Calls() < number)
            break;
        SCOPED_TRACE(disk.NameOfCall(number).constData());
        // What comes behind the rename is late: the new content is there then.
        const QByteArray after = Octets(FileName());
        if (error == 0 || disk.NameOfCall(number) == "sync folder") {
            EXPECT_EQ(after, Octets(Fresh()));
            QFile::remove(FileName());
            std::filesystem::copy(Fresh().toStdString(), FileName().toStdString());
        } else {
            EXPECT_EQ(error, errDiskFull);
            EXPECT_EQ(after == before || after == Octets(Fresh()), true);
        }
        EXPECT_GT(number, 0);
        DBEngine::CheckDatabase(FileName());
    }
}

TEST_P(ContentExchanging, AFullDiskAtAnyWriteLeavesTheOldContentWhole)
{
    if (GetParam() != u"sqlite")
        GTEST_SKIP() << "the failing writes are that engine's: see the case before";
    Database_.reset();
    DBEngine::CompactDatabase(FileName(), Fresh());
    const QByteArray before = Octets(FileName());
    FaultVfs disk;
    int failures = 0;
    for (int number = 1;; ++number) {
        disk.FailAt(FaultVfs::Operation::Write, number, SQLITE_FULL);
        int error = 0;
        {
            ContentExchange exchange(FileName());
            exchange.Note(false);
            error = ErrorNumberOf([&] { exchange.Put(Fresh()); });
        }
        if (!disk.HasFailed())
            break;
        ASSERT_EQ(error, errDiskFull) << number;
        disk.Heal();
        DBEngine::CheckDatabase(FileName());
        ASSERT_EQ(Octets(FileName()), before) << number;
        ++failures;
        number += number / 8;
    }
    EXPECT_GT(failures, 5);
}

#ifdef Q_OS_UNIX
TEST_P(ContentExchanging, ModeNamesAndLinksOfTheFileStay)
{
    const mode_t mask = umask(022);
    ASSERT_EQ(chmod(FileName().toUtf8().constData(), 0660), 0);
    const QString second = Path(QStringLiteral("Second.mdb"));
    ASSERT_EQ(link(FileName().toUtf8().constData(), second.toUtf8().constData()), 0);
    struct stat before = {};
    ASSERT_EQ(stat(FileName().toUtf8().constData(), &before), 0);
    EXPECT_TRUE(Compact());
    umask(mask);
    struct stat after = {};
    ASSERT_EQ(stat(FileName().toUtf8().constData(), &after), 0);
    EXPECT_EQ(after.st_mode, before.st_mode);
    // A Jet file is replaced by another one, which takes its name and no other.
    if (GetParam() != u"jet") {
        EXPECT_EQ(after.st_ino, before.st_ino);
        EXPECT_EQ(after.st_nlink, 2U);
    }
    struct stat kept = {};
    ASSERT_EQ(stat(Kept().toUtf8().constData(), &kept), 0);
    EXPECT_EQ(kept.st_mode, before.st_mode);
    EXPECT_EQ(kept.st_nlink, 1U);
}

TEST_P(ContentExchanging, NobodyGoesOnWithAFileThatLostItsNameNorTouchesTheNewOnesJournal)
{
    MakeBackup();
    OtherProgram other(FileName());
    EXPECT_EQ(other.Add("warm"), "41");
    {
        QFile damaged(FileName());
        ASSERT_TRUE(damaged.open(QIODevice::ReadWrite));
        damaged.write("no database here");
    }
    const QByteArray before = Octets(FileName());
    {
        const FileLockout lockout(FileName());
        std::filesystem::rename(FileName().toStdString(), Kept().toStdString());
        std::filesystem::rename(Path(QStringLiteral("Backup.mdb")).toStdString(), FileName().toStdString());
    }
    const QString journal = FileName() + QStringLiteral("-journal");
    {
        QFile file(journal);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("somebody's");
    }
    EXPECT_EQ(other.Add("never"), "error 3734");
    EXPECT_EQ(ErrorNumberOf([&] { Add(QStringLiteral("never")); }), errFileReplaced);
    EXPECT_EQ(Octets(Kept()), before);
    EXPECT_EQ(Octets(journal), QByteArray("somebody's"));
    QFile::remove(journal);
    EXPECT_EQ(Count(), 40);
}

TEST_P(ContentExchanging, AFileThatIsNotThereAnyMoreIsNotCalledPutBack)
{
    ASSERT_TRUE(QFile::remove(FileName()));
    EXPECT_EQ(ErrorNumberOf([&] { Add(QStringLiteral("never")); }), errDiskError);
}
#endif

INSTANTIATE_FOR_FILE_ENGINES(ContentExchanging);

} // namespace
