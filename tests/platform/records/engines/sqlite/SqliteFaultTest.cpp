// SPDX-License-Identifier: Apache-2.0
#include "platform/records/FaultVfs.h"
#include "platform/records/RecordsFixture.h"
#include "platform/records/engines/sqlite/SqlFunctions.h"

#include <QDir>
#include <QFile>

#include <map>

using namespace dao;

namespace
{

/// Makes every writing call of the file system fail in turn. What was acknowledged must be there afterwards; what
/// failed is there whole or not at all (a disk that fails in the very last sync leaves that open), and the file is
/// sound.
class SqliteFaults : public testing::TestWithParam<FaultVfs::Operation>
{
protected:
    using Model = std::map<int, QString>;

    SqliteFaults() { Prepare(); }

    void Prepare()
    {
        const auto database = DBEngine::CreateDatabase(Template(), QString());
        std::vector<std::unique_ptr<Field>> fields;
        fields.push_back(MakeField(QStringLiteral("Reference"), dbLong, 0, dbAutoIncrField));
        fields.push_back(MakeField(QStringLiteral("Name"), dbText));
        fields.push_back(MakeField(QStringLiteral("Memo"), dbMemo));
        AddTable(*database, QStringLiteral("T"), std::move(fields));
        AddIndex(*database, QStringLiteral("T"), QStringLiteral("Main"), {QStringLiteral("Reference")}, true, true);
        AddIndex(*database, QStringLiteral("T"), QStringLiteral("Names"), {QStringLiteral("Name")}, true);
        for (int i = 1; i <= 3; ++i)
            Add(*database, QStringLiteral("row %1").arg(i));
    }

    QString Template() const { return Folder_.filePath(QStringLiteral("Template.mdb")); }
    QString File() const { return Folder_.filePath(QStringLiteral("Test.mdb")); }

    static int Add(Database& database, const QString& name)
    {
        const auto rows = database.OpenRecordset(QStringLiteral("T"), dbOpenTable);
        rows->AddNew();
        const int reference = rows->Collect(QStringLiteral("Reference")).toInt();
        rows->SetCollect(QStringLiteral("Name"), name);
        rows->SetCollect(QStringLiteral("Memo"), QString(20000, QLatin1Char('m')) + name);
        rows->Update();
        return reference;
    }

    static Model Rows(Database& database)
    {
        Model model;
        const auto rows = database.OpenRecordset(QStringLiteral("SELECT * FROM [T]"), dbOpenSnapshot);
        for (; !rows->AtEOF(); rows->MoveNext()) {
            const QString name = rows->Collect(QStringLiteral("Name")).toString();
            const QString memo = rows->Collect(QStringLiteral("Memo")).toString();
            EXPECT_TRUE(memo.contains(name.left(3)) && memo.size() >= 20000) << qPrintable(name);
            model[rows->Collect(QStringLiteral("Reference")).toInt()] = name;
        }
        return model;
    }

    static std::string Integrity(const QString& file)
    {
        sqlite3* connection = nullptr;
        sqlite3_open_v2(file.toUtf8().constData(), &connection, SQLITE_OPEN_READWRITE, nullptr);
        sqlite::RegisterSqlFunctions(connection);
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(connection, "PRAGMA integrity_check", -1, &statement, nullptr);
        std::string result = "no answer";
        if (sqlite3_step(statement) == SQLITE_ROW)
            result = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
        sqlite3_finalize(statement);
        sqlite3_close(connection);
        return result;
    }

    /// change: what is done to the open database. before and after: the rows without it and with it.
    void FailEverywhere(int code, bool isLasting, const std::function<void(Database&)>& change, const Model& after)
    {
        bool hasFailed = true;
        int failures = 0;
        for (int number = 1; hasFailed && number < 500; ++number) {
            SCOPED_TRACE(testing::Message() << "call " << number);
            QFile::remove(File());
            QFile::remove(File() + QStringLiteral("-journal"));
            ASSERT_TRUE(QFile::copy(Template(), File()));
            int error = 0;
            {
                const FaultVfs fault;
                FaultVfs& disk = const_cast<FaultVfs&>(fault);
                const auto database = DBEngine::OpenDatabase(File());
                disk.FailAt(GetParam(), number, code, isLasting);
                error = ErrorNumberOf([&] { change(*database); });
                hasFailed = disk.HasFailed();
                if (error != 0) {
                    ++failures;
                    EXPECT_TRUE(error == errDiskError || error == errDiskFull || error == errCannotOpen) << error;
                    if (code == SQLITE_FULL) {
                        EXPECT_EQ(error, errDiskFull);
                    }
                }
            }
            const auto database = DBEngine::OpenDatabase(File());
            const Model found = Rows(*database);
            if (error == 0) {
                EXPECT_EQ(found, after);
            } else {
                EXPECT_TRUE(found == Before_ || found == after);
            }
            EXPECT_EQ(Integrity(File()), "ok");
            const int next = Add(*database, QStringLiteral("next"));
            EXPECT_FALSE(found.contains(next));
        }
        EXPECT_FALSE(hasFailed);
        // Nothing is deleted on the way, so nothing can fail there.
        if (GetParam() != FaultVfs::Operation::Delete) {
            EXPECT_GT(failures, 0);
        }
    }

    const Model Before_ = {{1, QStringLiteral("row 1")}, {2, QStringLiteral("row 2")}, {3, QStringLiteral("row 3")}};
    QTemporaryDir Folder_;
};

TEST_P(SqliteFaults, AddingARow)
{
    Model after = Before_;
    after[4] = QStringLiteral("new");
    for (const int code : {SQLITE_IOERR, SQLITE_FULL}) {
        for (const bool isLasting : {false, true})
            FailEverywhere(
                code, isLasting, [](Database& database) { Add(database, QStringLiteral("new")); }, after);
    }
}

TEST_P(SqliteFaults, UpdatingARow)
{
    Model after = Before_;
    after[2] = QStringLiteral("row 2 changed");
    FailEverywhere(
        SQLITE_IOERR, true,
        [](Database& database) {
            const auto rows = database.OpenRecordset(QStringLiteral("T"), dbOpenTable);
            rows->SetIndex(QStringLiteral("Main"));
            rows->Seek(SeekComparison::Equal, {2});
            rows->Edit();
            rows->SetCollect(QStringLiteral("Name"), QStringLiteral("row 2 changed"));
            rows->SetCollect(QStringLiteral("Memo"), QString(50000, QLatin1Char('n')) + QStringLiteral("row"));
            rows->Update();
        },
        after);
}

TEST_P(SqliteFaults, DeletingByAQuery)
{
    Model after = Before_;
    after.erase(1);
    after.erase(3);
    FailEverywhere(
        SQLITE_IOERR, false,
        [](Database& database) { database.Execute(QStringLiteral("DELETE FROM [T] WHERE [Reference] <> 2")); }, after);
}

TEST_P(SqliteFaults, ATransactionOfSeveralChanges)
{
    Model after = Before_;
    after.erase(1);
    after[4] = QStringLiteral("one");
    after[5] = QStringLiteral("two");
    FailEverywhere(
        SQLITE_IOERR, false,
        [](Database& database) {
            DBEngine::BeginTrans();
            try {
                Add(database, QStringLiteral("one"));
                database.Execute(QStringLiteral("DELETE FROM [T] WHERE [Reference] = 1"));
                Add(database, QStringLiteral("two"));
            } catch (...) {
                // Taking back can fail too; the first error is the one that counts.
                ErrorNumberOf([] { DBEngine::Rollback(); });
                throw;
            }
            DBEngine::CommitTrans();
        },
        after);
}

TEST_P(SqliteFaults, AddingAFieldAndAnIndex)
{
    FailEverywhere(
        SQLITE_IOERR, false,
        [](Database& database) {
            TableDef& table = database.TableDefs().Item(QStringLiteral("T"));
            table.Fields().Append(MakeField(QStringLiteral("Extra"), dbInteger));
            auto index = table.CreateIndex(QStringLiteral("Extras"));
            index->Fields().Append(index->CreateField(QStringLiteral("Extra")));
            table.Indexes().Append(std::move(index));
        },
        Before_);
}

TEST_P(SqliteFaults, CompactingLeavesNoTargetBehind)
{
    const QString target = Folder_.filePath(QStringLiteral("Target.mdb"));
    bool hasFailed = true;
    for (int number = 1; hasFailed && number < 500; ++number) {
        SCOPED_TRACE(testing::Message() << "call " << number);
        QFile::remove(target);
        int error = 0;
        {
            FaultVfs disk;
            disk.FailAt(GetParam(), number, SQLITE_IOERR);
            error = ErrorNumberOf([&] { DBEngine::CompactDatabase(Template(), target); });
            hasFailed = disk.HasFailed();
        }
        EXPECT_EQ(QFile::exists(target), error == 0);
        EXPECT_EQ(QDir(Folder_.path()).entryList({QStringLiteral("*.tmp*")}, QDir::Files).size(), 0);
        EXPECT_EQ(Rows(*DBEngine::OpenDatabase(error == 0 ? target : Template())), Before_);
    }
    EXPECT_FALSE(hasFailed);
}

std::string OperationName(const testing::TestParamInfo<FaultVfs::Operation>& info)
{
    const char* const names[] = {"Write", "Sync", "Truncate", "Delete"};
    return names[static_cast<int>(info.param)];
}

INSTANTIATE_TEST_SUITE_P(, SqliteFaults,
                         testing::Values(FaultVfs::Operation::Write, FaultVfs::Operation::Sync,
                                         FaultVfs::Operation::Truncate, FaultVfs::Operation::Delete),
                         OperationName);

TEST(SqliteDurability, AFullDiskIsNamedAndNothingIsStored)
{
    QTemporaryDir folder;
    FaultVfs disk;
    const auto database = DBEngine::CreateDatabase(folder.filePath(QStringLiteral("Test.mdb")), QString());
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Name"), dbText));
    AddTable(*database, QStringLiteral("T"), std::move(fields));
    const auto rows = database->OpenRecordset(QStringLiteral("T"), dbOpenTable);
    rows->AddNew();
    rows->SetCollect(QStringLiteral("Name"), QStringLiteral("x"));
    disk.FailAt(FaultVfs::Operation::Write, 1, SQLITE_FULL, true);
    try {
        rows->Update();
        ADD_FAILURE() << "the row was stored";
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), errDiskFull);
        EXPECT_TRUE(error.Description().contains(QStringLiteral("the disk is full")))
            << qPrintable(error.Description());
    }
    EXPECT_EQ(rows->RecordCount(), 0);
    // With room again the same row goes in.
    disk.Heal();
    rows->Update();
    EXPECT_EQ(rows->RecordCount(), 1);
}

TEST(SqliteDurability, AFailureOfTheDiskInAnInnerTransactionIsToldByTheOuterOne)
{
    QTemporaryDir folder;
    FaultVfs disk;
    const QString name = folder.filePath(QStringLiteral("Test.mdb"));
    auto database = DBEngine::CreateDatabase(name, QString());
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Name"), dbMemo));
    AddTable(*database, QStringLiteral("T"), std::move(fields));
    const auto add = [&](qsizetype size) {
        const auto rows = database->OpenRecordset(QStringLiteral("T"), dbOpenTable);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Name"), QString(size, QLatin1Char('x')));
        rows->Update();
    };
    DBEngine::BeginTrans();
    add(1);
    DBEngine::BeginTrans();
    disk.FailAt(FaultVfs::Operation::Write, 1, SQLITE_IOERR, true);
    // More than the cache holds, so that the disk is met before the commit.
    EXPECT_EQ(ErrorNumberOf([&] { add(30000000); }), errDiskError);
    ErrorNumberOf([] { DBEngine::Rollback(); });
    EXPECT_EQ(ErrorNumberOf([] { DBEngine::CommitTrans(); }), errDiskError);
    disk.Heal();
    add(2);
    database.reset();
    database = DBEngine::OpenDatabase(name);
    EXPECT_EQ(database->OpenRecordset(QStringLiteral("T"), dbOpenTable)->RecordCount(), 1);
}

TEST(SqliteDurability, TheJournalIsSyncedAfterItIsCut)
{
    // Cutting the journal is what commits; without a sync behind it a power failure could bring it back.
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("Test.mdb"));
    FaultVfs disk;
    const auto database = DBEngine::CreateDatabase(file, QString());
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Name"), dbText));
    AddTable(*database, QStringLiteral("T"), std::move(fields));
    const auto rows = database->OpenRecordset(QStringLiteral("T"), dbOpenTable);
    rows->AddNew();
    rows->SetCollect(QStringLiteral("Name"), QStringLiteral("x"));
    disk.Heal();
    rows->Update();
    EXPECT_EQ(disk.Calls(FaultVfs::Operation::Truncate), 1);
    // The journal's pages, its count of pages, the database, and the cut.
    EXPECT_EQ(disk.Calls(FaultVfs::Operation::Sync), 4);
}

} // namespace
