// SPDX-License-Identifier: Apache-2.0

// Copies of a database that others use.

#include "platform/records/RecordsFixture.h"
#include "platform/records/engines/EngineRegistry.h"
#include "support/FaultyFileSystem.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QThread>

#include <sqlite3.h>

using namespace dao;

namespace
{
class Copies : public RecordsFixture
{
protected:
    Copies()
    {
        std::vector<std::unique_ptr<Field>> fields;
        fields.push_back(MakeField(QStringLiteral("Reference"), dbLong, 0, dbAutoIncrField));
        fields.push_back(MakeField(QStringLiteral("Name"), dbText));
        fields.push_back(MakeField(QStringLiteral("Memo"), dbMemo));
        AddTable(Db(), QStringLiteral("T"), std::move(fields));
        AddIndex(Db(), QStringLiteral("T"), QStringLiteral("Main"), {QStringLiteral("Reference")}, true, true);
        AddIndex(Db(), QStringLiteral("T"), QStringLiteral("Names"), {QStringLiteral("Name")});
    }
    /// More than is copied under one lock.
    void Grow()
    {
        DBEngine::BeginTrans();
        const auto rows = Db().OpenRecordset(QStringLiteral("T"), dbOpenTable);
        for (int i = 0; i < 40; ++i) {
            rows->AddNew();
            rows->SetCollect(QStringLiteral("Name"), QStringLiteral("large %1").arg(i));
            rows->SetCollect(QStringLiteral("Memo"), QString(1000000, u'm'));
            rows->Update();
        }
        DBEngine::CommitTrans();
    }
    QString Target() const { return Path(QStringLiteral("Copy.mdb")); }
    static int Rows(Database& database)
    {
        return database.OpenRecordset(QStringLiteral("T"), dbOpenTable)->RecordCount();
    }
    static int RowsIn(const QString& file) { return Rows(*DBEngine::OpenDatabase(file, 0, true)); }
    void ExpectNothingLeft() const
    {
        EXPECT_TRUE(QDir(QFileInfo(FileName()).path())
                        .entryList({QStringLiteral("*-copying"), QStringLiteral("Copy*")})
                        .isEmpty());
    }
    /// A whole copy is one that compacting reads to its last page, indexes included.
    void ExpectWhole(const QString& file) const
    {
        const QString target = Path(QStringLiteral("Checked.mdb"));
        EXPECT_EQ(ErrorNumberOf([&] { DBEngine::CompactDatabase(file, target); }), 0);
        EXPECT_EQ(RowsIn(target), RowsIn(file));
        QFile::remove(target);
    }
};
} // namespace

TEST_P(Copies, ACopyHoldsWhatTheDatabaseHolds)
{
    Grow();
    qint64 last = -1;
    bool isWholeSaid = false;
    DBEngine::CopyDatabase(FileName(), Target(), [&](qint64 done, qint64 total) {
        EXPECT_LE(done, total);
        isWholeSaid = done == total;
        last = std::max(last, done);
        return true;
    });
    EXPECT_TRUE(isWholeSaid);
    EXPECT_GT(last, 16 * 1024 * 1024);
    EXPECT_EQ(RowsIn(Target()), 40);
    ExpectWhole(Target());
    EXPECT_FALSE(QFile::exists(FileName() + QStringLiteral("-copying")));
}

TEST_P(Copies, ACopyOfALargeFileTakesInWhatIsWrittenMeanwhile)
{
    Grow();
    const auto other = OpenAgain();
    int added = 0;
    DBEngine::CopyDatabase(FileName(), Target(), [&](qint64, qint64) {
        // As another computer does, at every slice; this one's index pages lie all over the file.
        const auto rows = other->OpenRecordset(QStringLiteral("T"), dbOpenTable);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Name"), QStringLiteral("added %1").arg(added));
        rows->SetCollect(QStringLiteral("Memo"), QString(9000, u'a'));
        rows->Update();
        rows->MoveFirst();
        rows->Edit();
        rows->SetCollect(QStringLiteral("Name"), QStringLiteral("changed %1").arg(added++));
        rows->Update();
        return true;
    });
    EXPECT_GT(added, 5);
    // Not what was added behind the last look, while the copy was checked.
    EXPECT_GT(RowsIn(Target()), 40);
    EXPECT_LE(RowsIn(Target()), 40 + added);
    ExpectWhole(Target());
    EXPECT_EQ(Rows(Db()), 40 + added);
}

TEST_P(Copies, CopiesUnderConstantWritesOfSeveralProcessesAreWhole)
{
    Grow();
    QProcess writers[2];
    for (QProcess& writer : writers) {
        writer.setStandardOutputFile(QProcess::nullDevice());
        writer.start(QStringLiteral(TOLVA_STORE_WRITER),
                     {QStringLiteral("add"), FileName(), QStringLiteral("writer"), QStringLiteral("0")});
        ASSERT_TRUE(writer.waitForStarted());
    }
    QElapsedTimer patience;
    for (patience.start(); Rows(Db()) < 50 && patience.elapsed() < 30000;)
        QThread::msleep(1);
    int last = 0;
    for (int i = 0; i < 3; ++i) {
        const int before = Rows(Db());
        EXPECT_GT(before, last) << "nobody wrote meanwhile";
        DBEngine::CopyDatabase(FileName(), Target(), {});
        last = Rows(Db());
        EXPECT_GE(RowsIn(Target()), before);
        EXPECT_LE(RowsIn(Target()), last);
        ExpectWhole(Target());
        ASSERT_TRUE(QFile::remove(Target()));
    }
    for (QProcess& writer : writers) {
        writer.kill();
        writer.waitForFinished();
    }
    ExpectNothingLeft();
}

TEST_P(Copies, AWriterThatKeepsNoLogIsNotOverlooked)
{
    if (GetParam() != u"sqlite")
        GTEST_SKIP() << "the other program is one for that engine's files";
    Grow();
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open_v2(FileName().toUtf8().constData(), &other, SQLITE_OPEN_READWRITE, nullptr), SQLITE_OK);
    sqlite3_busy_timeout(other, 5000);
    int calls = 0;
    int refused = 0;
    DBEngine::CopyDatabase(FileName(), Target(), [&](qint64, qint64) {
        const char* sql = "PRAGMA user_version=2"; // as it is; a commit all the same
        ++calls;
        // The last run keeps everybody off, which is seen at once here as both are one process.
        sqlite3_busy_timeout(other, 1);
        refused += sqlite3_exec(other, sql, nullptr, nullptr, nullptr) == SQLITE_OK ? 0 : 1;
        return true;
    });
    sqlite3_close(other);
    EXPECT_GT(refused, 0);
    EXPECT_LT(refused, calls);
    ExpectWhole(Target());
}

TEST_P(Copies, ACancelledCopyLeavesNothing)
{
    Grow();
    int calls = 0;
    EXPECT_EQ(ErrorNumberOf(
                  [&] { DBEngine::CopyDatabase(FileName(), Target(), [&](qint64, qint64) { return ++calls < 5; }); }),
              errCancelled);
    ExpectNothingLeft();
}

TEST_P(Copies, ADiskThatIsFullAtAnyCallLeavesNothingAndIsSaid)
{
    for (int number = 1;; ++number) {
        FaultyFileSystem files;
        files.FailAt(number, FileError::Full, FaultyFileSystem::Fault::Tears);
        const int error = ErrorNumberOf([&] { DBEngine::CopyDatabase(FileName(), Target(), {}); });
        if (files.Calls() < number) {
            EXPECT_EQ(error, 0);
            EXPECT_GT(number, 5);
            break;
        }
        SCOPED_TRACE(files.NameOfCall(number).constData());
        if (files.NameOfCall(number) == "remove" && error == 0) {
            // What could not be taken away is told from a copy by its name.
            ExpectWhole(Target());
            ASSERT_TRUE(QFile::remove(Target()));
            continue;
        }
        EXPECT_EQ(error, errDiskFull);
        ExpectNothingLeft();
    }
    ExpectWhole(Target());
}

TEST_P(Copies, AFileInTheWayIsNotTouched)
{
    QFile file(Target());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("mine");
    file.close();
    EXPECT_EQ(ErrorNumberOf([&] { DBEngine::CopyDatabase(FileName(), Target(), {}); }), errCannotOpen);
    EXPECT_EQ(QFileInfo(Target()).size(), 4);
}

TEST_P(Copies, ADamagedDatabaseIsNotCopied)
{
    Grow();
    Database_.reset();
    QFile file(FileName());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.seek(file.size() / 2));
    file.write(QByteArray(8192, '\0'));
    file.close();
    EXPECT_EQ(ErrorNumberOf([&] { DBEngine::CheckDatabase(FileName()); }), errFileDamaged);
    EXPECT_EQ(ErrorNumberOf([&] { DBEngine::CopyDatabase(FileName(), Target(), {}); }), errFileDamaged);
    ExpectNothingLeft();
}

TEST_P(Copies, ALogThatADeadCopyLeftIsTakenOver)
{
    if (GetParam() == u"jet")
        GTEST_SKIP() << "its copies keep no log: they compare what they copied, under a lock";
    Grow();
    QFile log(FileName() + QStringLiteral("-copying"));
    ASSERT_TRUE(log.open(QIODevice::WriteOnly));
    log.close();
    const auto rows = Db().OpenRecordset(QStringLiteral("T"), dbOpenTable);
    rows->MoveFirst();
    rows->Edit();
    rows->SetCollect(QStringLiteral("Name"), QStringLiteral("noted"));
    rows->Update();
    EXPECT_GT(log.size(), 0);
    DBEngine::CopyDatabase(FileName(), Target(), {});
    ExpectWhole(Target());
    EXPECT_FALSE(log.exists());
}

INSTANTIATE_FOR_FILE_ENGINES(Copies);
