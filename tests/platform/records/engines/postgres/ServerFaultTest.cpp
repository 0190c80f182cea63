// SPDX-License-Identifier: Apache-2.0
#include "platform/records/DBEngine.h"
#include "platform/records/RecordsFixture.h"
#include "platform/records/StoreReuse.h"
#include "platform/records/Transaction.h"
#include "support/CuttingProxy.h"
#include "support/TestServer.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <libpq-fe.h>

using namespace dao;

namespace
{

/// The number and the words of what a statement raises.
struct Raised
{
    int Number = 0;
    QString Words;
};

Raised ErrorOf(const std::function<void()>& statement)
{
    try {
        statement();
    } catch (const Error& error) {
        return {error.Number(), error.Description()};
    }
    return {};
}

void MakeTable(Database& database)
{
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Reference"), dbLong, 0, dbAutoIncrField));
    fields.push_back(MakeField(QStringLiteral("Name"), dbText));
    fields.push_back(MakeField(QStringLiteral("Memo"), dbMemo));
    AddTable(database, QStringLiteral("T"), std::move(fields));
    AddIndex(database, QStringLiteral("T"), QStringLiteral("Main"), {QStringLiteral("Reference")}, true, true);
}

void AddRow(Database& database, const QString& name)
{
    const auto table = database.OpenRecordset(QStringLiteral("T"), dbOpenTable);
    table->AddNew();
    table->SetCollect(QStringLiteral("Name"), name);
    table->SetCollect(QStringLiteral("Memo"), QString(5000, u'm'));
    table->Update();
}

QStringList NamesIn(Database& database)
{
    QStringList names;
    const auto rows = database.OpenRecordset(QStringLiteral("SELECT * FROM [T] ORDER BY [Reference]"), dbOpenSnapshot);
    for (; !rows->AtEOF(); rows->MoveNext())
        names.append(rows->Collect(QStringLiteral("Name")).toString());
    return names;
}

std::unique_ptr<Database> OpenAt(const QString& connect)
{
    return DBEngine::OpenDatabase(QString(), 0, false, connect);
}

/// A connection that stays, of somebody else.
class Stranger
{
public:
    explicit Stranger(const TestServer& server, const QString& user = QStringLiteral("tolva"))
        : Connection_(PQconnectdb(
              QStringLiteral("host=%1 user=%2 dbname=postgres").arg(server.Folder(), user).toUtf8().constData()))
    {
    }
    ~Stranger() { PQfinish(Connection_); }
    Stranger(const Stranger&) = delete;
    Stranger& operator=(const Stranger&) = delete;
    bool Execute(const QString& statements)
    {
        PGresult* result = PQexec(Connection_, statements.toUtf8().constData());
        const ExecStatusType status = PQresultStatus(result);
        PQclear(result);
        return status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK;
    }

private:
    PGconn* Connection_;
};

/// A schema of the shared server, behind a proxy.
class ServerFault : public testing::Test
{
protected:
    ServerFault()
        : Schema_(TestServer::Shared().NewSchema()),
          Proxy_(TestServer::Shared().Folder()),
          Direct_(OpenAt(TestServer::Shared().Connect(Schema_.Name))),
          Through_(
              OpenAt(QStringLiteral("host=%1 user=tolva dbname=postgres schema=%2").arg(Proxy_.Folder(), Schema_.Name)))
    {
        MakeTable(*Direct_);
    }

    TestServer::Schema Schema_;
    CuttingProxy Proxy_;
    std::unique_ptr<Database> Direct_;
    std::unique_ptr<Database> Through_;
};

TEST_F(ServerFault, ASaveThatIsCutBeforeItsCommitIsMadeOnceMoreAndStoredOnce)
{
    Proxy_.CutAt(CuttingProxy::Cut::BeforeCommit);
    AddRow(*Through_, QStringLiteral("one"));
    EXPECT_EQ(Proxy_.Cuts(), 1);
    EXPECT_EQ(NamesIn(*Direct_), QStringList{QStringLiteral("one")});
}

TEST_F(ServerFault, ASaveWhoseAnswerIsLostIsFoundAndNotStoredTwice)
{
    Proxy_.CutAt(CuttingProxy::Cut::BehindCommit);
    AddRow(*Through_, QStringLiteral("one"));
    EXPECT_EQ(Proxy_.Cuts(), 1);
    EXPECT_EQ(NamesIn(*Direct_), QStringList{QStringLiteral("one")});
}

TEST_F(ServerFault, ASaveOfWhichTheServerDoesNotTellWhatBecameIsCalledThatAndNotRepeated)
{
    const QString user = Schema_.Name + QStringLiteral("_desk");
    TestServer::Shared().Execute(
        QStringLiteral("CREATE ROLE %2 LOGIN; GRANT USAGE ON SCHEMA %1 TO %2; GRANT ALL ON ALL "
                       "TABLES IN SCHEMA %1 TO %2; GRANT ALL ON ALL SEQUENCES IN SCHEMA %1 TO %2")
            .arg(Schema_.Name, user));
    {
        const auto desk = OpenAt(
            QStringLiteral("host=%1 user=%2 dbname=postgres schema=%3").arg(Proxy_.Folder(), user, Schema_.Name));
        NamesIn(*desk);
        TestServer::Shared().Execute(QStringLiteral("ALTER ROLE %1 NOLOGIN").arg(user));
        Proxy_.CutAt(CuttingProxy::Cut::BehindCommit);
        const Raised raised = ErrorOf([&] { AddRow(*desk, QStringLiteral("one")); });
        EXPECT_EQ(Proxy_.Cuts(), 1);
        EXPECT_EQ(raised.Number, errServer);
        EXPECT_TRUE(raised.Words.contains(QStringLiteral("look whether the change is there")))
            << qPrintable(raised.Words);
        TestServer::Shared().Execute(QStringLiteral("ALTER ROLE %1 LOGIN").arg(user));
        EXPECT_EQ(NamesIn(*desk), QStringList{QStringLiteral("one")});
    }
    TestServer::Shared().Execute(QStringLiteral("DROP OWNED BY %1; DROP ROLE %1").arg(user));
}

TEST_F(ServerFault, AnEditWhoseAnswerIsLostIsStoredAndNoStrangersChange)
{
    AddRow(*Direct_, QStringLiteral("one"));
    const auto table = Through_->OpenRecordset(QStringLiteral("T"), dbOpenTable);
    table->Edit();
    table->SetCollect(QStringLiteral("Name"), QStringLiteral("two"));
    Proxy_.CutAt(CuttingProxy::Cut::BehindCommit);
    table->Update();
    EXPECT_EQ(Proxy_.Cuts(), 1);
    EXPECT_EQ(NamesIn(*Direct_), QStringList{QStringLiteral("two")});
}

TEST_F(ServerFault, ATransactionThatIsCutBeforeItsCommitStoresNothingAndSaysSo)
{
    DBEngine::BeginTrans();
    AddRow(*Through_, QStringLiteral("one"));
    Proxy_.CutAt(CuttingProxy::Cut::BeforeCommit);
    const Raised raised = ErrorOf([] { DBEngine::CommitTrans(); });
    EXPECT_EQ(raised.Number, errServer);
    EXPECT_TRUE(raised.Words.contains(QStringLiteral("lost"))) << qPrintable(raised.Words);
    EXPECT_EQ(NamesIn(*Direct_), QStringList());
    AddRow(*Through_, QStringLiteral("two"));
    EXPECT_EQ(NamesIn(*Direct_), QStringList{QStringLiteral("two")});
}

TEST_F(ServerFault, ATransactionWhoseAnswerIsLostIsStored)
{
    DBEngine::BeginTrans();
    AddRow(*Through_, QStringLiteral("one"));
    AddRow(*Through_, QStringLiteral("two"));
    Proxy_.CutAt(CuttingProxy::Cut::BehindCommit);
    DBEngine::CommitTrans();
    EXPECT_EQ(Proxy_.Cuts(), 1);
    EXPECT_EQ(NamesIn(*Direct_), (QStringList{QStringLiteral("one"), QStringLiteral("two")}));
}

TEST_F(ServerFault, AConnectionThatTheServerEndsInATransactionTakesAllOfItBack)
{
    DBEngine::BeginTrans();
    AddRow(*Through_, QStringLiteral("one"));
    TestServer::Shared().Execute(
        QStringLiteral("SELECT pg_terminate_backend(l.pid) FROM pg_locks l JOIN pg_class c ON c.oid = l.relation JOIN "
                       "pg_namespace n ON n.oid = c.relnamespace WHERE n.nspname = '%1' AND l.mode = 'ExclusiveLock'")
            .arg(Schema_.Name));
    EXPECT_EQ(ErrorOf([&] { AddRow(*Through_, QStringLiteral("two")); }).Number, errServer);
    EXPECT_EQ(ErrorOf([&] { AddRow(*Through_, QStringLiteral("three")); }).Number, errServer);
    EXPECT_EQ(ErrorOf([] { DBEngine::CommitTrans(); }).Number, errServer);
    EXPECT_EQ(NamesIn(*Direct_), QStringList());
    AddRow(*Through_, QStringLiteral("four"));
    EXPECT_EQ(NamesIn(*Direct_), QStringList{QStringLiteral("four")});
}

TEST_F(ServerFault, ALockOfSomebodyElseIsWaitedForFiveSecondsAndToldThen)
{
    AddRow(*Direct_, QStringLiteral("one"));
    Stranger stranger(TestServer::Shared());
    ASSERT_TRUE(
        stranger.Execute(QStringLiteral("BEGIN; LOCK TABLE %1.tolva_station IN EXCLUSIVE MODE").arg(Schema_.Name)));
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(ErrorOf([&] { AddRow(*Direct_, QStringLiteral("two")); }).Number, errLocked);
    EXPECT_GE(timer.elapsed(), 4500);
    // Reading waits for nobody.
    EXPECT_EQ(NamesIn(*Direct_), QStringList{QStringLiteral("one")});
    ASSERT_TRUE(stranger.Execute(QStringLiteral("ROLLBACK")));
    AddRow(*Direct_, QStringLiteral("three"));
    EXPECT_EQ(NamesIn(*Direct_).size(), 2);
}

TEST_F(ServerFault, ALongTransactionElsewhereHindersNobody)
{
    Stranger stranger(TestServer::Shared());
    ASSERT_TRUE(stranger.Execute(
        QStringLiteral("BEGIN ISOLATION LEVEL REPEATABLE READ; SELECT * FROM %1.rows_1").arg(Schema_.Name)));
    AddRow(*Direct_, QStringLiteral("one"));
    Direct_->Execute(QStringLiteral("UPDATE [T] SET [Name]='two'"));
    EXPECT_EQ(NamesIn(*Direct_), QStringList{QStringLiteral("two")});
}

TEST_F(ServerFault, AFullDiskOfTheServerIsToldAsOneAndStoresNothing)
{
    // The server raises it as it does when it cannot make a file longer.
    TestServer::Shared().Execute(
        QStringLiteral(
            "CREATE FUNCTION %1.full() RETURNS trigger LANGUAGE plpgsql AS $$BEGIN RAISE EXCEPTION 'could "
            "not extend file: No space left on device' USING ERRCODE = '53100'; END$$; CREATE TRIGGER full_disk "
            "BEFORE INSERT ON %1.rows_1 EXECUTE FUNCTION %1.full()")
            .arg(Schema_.Name));
    EXPECT_EQ(ErrorOf([&] { AddRow(*Direct_, QStringLiteral("one")); }).Number, errDiskFull);
    TestServer::Shared().Execute(QStringLiteral("DROP TRIGGER full_disk ON %1.rows_1").arg(Schema_.Name));
    EXPECT_EQ(NamesIn(*Direct_), QStringList());
    AddRow(*Direct_, QStringLiteral("two"));
    EXPECT_EQ(NamesIn(*Direct_), QStringList{QStringLiteral("two")});
}

TEST_F(ServerFault, ARightThatIsMissingIsNamed)
{
    AddRow(*Direct_, QStringLiteral("one"));
    const QString user = Schema_.Name + QStringLiteral("_reader");
    TestServer::Shared().Execute(
        QStringLiteral("CREATE ROLE %2 LOGIN; GRANT USAGE ON SCHEMA %1 TO %2; GRANT SELECT ON "
                       "ALL TABLES IN SCHEMA %1 TO %2; GRANT UPDATE ON %1.tolva_station TO %2; "
                       "GRANT USAGE ON ALL SEQUENCES IN SCHEMA %1 TO %2")
            .arg(Schema_.Name, user));
    {
        const auto reader = OpenAt(TestServer::Shared().Connect(Schema_.Name, user));
        EXPECT_EQ(NamesIn(*reader), QStringList{QStringLiteral("one")});
        const Raised raised = ErrorOf([&] { AddRow(*reader, QStringLiteral("two")); });
        EXPECT_EQ(raised.Number, errServer);
        EXPECT_TRUE(raised.Words.contains(QStringLiteral("right is missing")) &&
                    raised.Words.contains(QStringLiteral("rows_1")))
            << qPrintable(raised.Words);
    }
    TestServer::Shared().Execute(QStringLiteral("DROP OWNED BY %1; DROP ROLE %1").arg(user));
}

TEST_F(ServerFault, NoListAsksTheServerOnceARow)
{
    constexpr int Rows = 300;
    DBEngine::BeginTrans();
    for (int i = 0; i < Rows; ++i)
        AddRow(*Direct_, QString::number(i));
    DBEngine::CommitTrans();
    for (const RecordsetTypeEnum type : {dbOpenSnapshot, dbOpenDynaset}) {
        Proxy_.TakeRequests();
        const auto rows = Through_->OpenRecordset(QStringLiteral("SELECT * FROM [T] ORDER BY [Name]"), type);
        int count = 0;
        for (; !rows->AtEOF(); rows->MoveNext()) {
            count += rows->Collect(QStringLiteral("Name")).toString().isEmpty() ? 0 : 1;
            EXPECT_EQ(rows->Fields().Item(QStringLiteral("Memo")).Beginning(100).Utf8.size(), 100);
        }
        EXPECT_EQ(count, Rows);
        EXPECT_LT(Proxy_.TakeRequests(), 40);
    }
    // What the server cannot say is worked out here, over many rows at a time.
    const auto found = Through_->OpenRecordset(
        QStringLiteral("SELECT [Reference] FROM [T] WHERE [Memo] LIKE '*m?m*' AND [Name] & 'x' LIKE '*9x'"),
        dbOpenSnapshot);
    EXPECT_EQ(found->RecordCount(), Rows / 10);
    EXPECT_LT(Proxy_.TakeRequests(), 20);
}

TEST_F(ServerFault, ATableThatIsMadeFieldByFieldHasTheServersOwnIndexesOfOneThatIsMadeAtOnce)
{
    const auto field = [](int number) {
        const QString name = QStringLiteral("Field%1").arg(number);
        if (number == 0)
            return MakeField(name, dbLong, 0, dbAutoIncrField);
        return number == 1 ? MakeField(name, dbText, 255) : MakeField(name, number == 2 ? dbInteger : dbMemo);
    };
    std::vector<std::unique_ptr<Field>> all;
    std::vector<std::unique_ptr<Field>> first;
    for (int number = 0; number < 4; ++number)
        all.push_back(field(number));
    first.push_back(field(0));
    AddTable(*Direct_, QStringLiteral("AtOnce"), std::move(all));
    AddTable(*Direct_, QStringLiteral("ByField"), std::move(first));
    for (int number = 1; number < 4; ++number)
        Direct_->TableDefs().Item(QStringLiteral("ByField")).Fields().Append(field(number));
    const auto indexes = [&](const QString& table) {
        const QString number = TestServer::Shared().Execute(
            QStringLiteral("SELECT id FROM %1.tolva_tables WHERE name = '%2'").arg(Schema_.Name, table));
        return TestServer::Shared()
            .Execute(QStringLiteral("SELECT string_agg(indexdef, ' ' ORDER BY indexname) FROM pg_indexes WHERE "
                                    "schemaname = '%1' AND tablename = 'rows_%2'")
                         .arg(Schema_.Name, number))
            .replace(QStringLiteral("rows_") + number, QStringLiteral("rows"));
    };
    const QString atOnce = indexes(QStringLiteral("AtOnce"));
    EXPECT_TRUE(atOnce.contains(QStringLiteral("gin"))) << qPrintable(atOnce);
    EXPECT_EQ(indexes(QStringLiteral("ByField")), atOnce);
}

TEST_F(ServerFault, OthersAreToldOfWhatIsCommittedAndWhoDoesItIsNot)
{
    ASSERT_TRUE(Through_->BeginBeingTold());
    ASSERT_TRUE(Direct_->BeginBeingTold());
    EXPECT_FALSE(Through_->TakeChanges());
    const auto isTold = [&](Database& database) {
        QElapsedTimer timer;
        timer.start();
        while (!database.TakeChanges()) {
            if (timer.elapsed() > 1000)
                return false;
        }
        return true;
    };
    AddRow(*Direct_, QStringLiteral("one"));
    EXPECT_TRUE(isTold(*Through_));
    EXPECT_FALSE(Direct_->TakeChanges());
    // A transaction that is taken back is none.
    DBEngine::BeginTrans();
    AddRow(*Direct_, QStringLiteral("two"));
    DBEngine::Rollback();
    NamesIn(*Through_);
    EXPECT_FALSE(Through_->TakeChanges());
    // Over a connection that was made anew it is begun anew.
    TestServer::Shared().Execute(
        QStringLiteral("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE query LIKE '%%1%' AND pid <> "
                       "pg_backend_pid()")
            .arg(Schema_.Name));
    EXPECT_TRUE(isTold(*Through_)) << "the end of the connection is a reason to look";
    NamesIn(*Through_);
    ASSERT_TRUE(Through_->BeginBeingTold());
    AddRow(*Direct_, QStringLiteral("three"));
    EXPECT_TRUE(isTold(*Through_));
}

TEST_F(ServerFault, WhoIsToldOfChangesAsksForTheStructureOnlyBehindOne)
{
    ASSERT_TRUE(Through_->BeginBeingTold());
    NamesIn(*Through_);
    Proxy_.TakeRequests();
    EXPECT_EQ(Through_->OpenRecordset(QStringLiteral("T"), dbOpenTable)->Fields().Count(), 3);
    EXPECT_EQ(Proxy_.TakeRequests(), 0);
    auto field = Direct_->CreateTableDef(QStringLiteral("Unused"))->CreateField(QStringLiteral("Late"), dbText);
    Direct_->TableDefs().Item(QStringLiteral("T")).Fields().Append(std::move(field));
    QElapsedTimer timer;
    timer.start();
    const auto fields = [&] { return Through_->OpenRecordset(QStringLiteral("T"), dbOpenTable)->Fields().Count(); };
    while (fields() == 3 && timer.elapsed() < 5000)
        continue;
    EXPECT_EQ(fields(), 4);
    // What the structure took in is still news for who asks for changes.
    EXPECT_TRUE(Through_->TakeChanges());
    EXPECT_FALSE(Through_->TakeChanges());
}

TEST_F(ServerFault, ManyRowsInATransactionTakeAFewRoundTripsTogether)
{
    AddRow(*Through_, QStringLiteral("prepared"));
    DBEngine::BeginTrans();
    const auto table = Through_->OpenRecordset(QStringLiteral("T"), dbOpenTable);
    const auto add = [&] {
        DBEngine::BeginTrans();
        table->AddNew();
        table->SetCollect(QStringLiteral("Name"), QStringLiteral("one of many"));
        table->Update();
        DBEngine::CommitTrans();
    };
    add();
    add();
    Proxy_.TakeRequests();
    for (int i = 0; i < 20; ++i)
        add();
    // Numbers for ever more rows, the rows themselves with the next of these.
    EXPECT_LE(Proxy_.TakeRequests(), 5);
    // One of them alone is taken back.
    DBEngine::BeginTrans();
    AddRow(*Through_, QStringLiteral("taken back"));
    DBEngine::Rollback();
    DBEngine::CommitTrans();
    EXPECT_EQ(NamesIn(*Direct_).count(QStringLiteral("one of many")), 22);
    EXPECT_FALSE(NamesIn(*Direct_).contains(QStringLiteral("taken back")));
}

TEST_F(ServerFault, WhatWasLeftToTheCommitAndIsRefusedThereIsToldAndNothingOfItStored)
{
    AddRow(*Direct_, QStringLiteral("one"));
    TestServer::Shared().Execute(
        QStringLiteral("CREATE FUNCTION %1.full() RETURNS trigger LANGUAGE plpgsql AS $$BEGIN RAISE EXCEPTION 'could "
                       "not extend file: No space left on device' USING ERRCODE = '53100'; END$$; CREATE TRIGGER "
                       "full_disk BEFORE INSERT ON %1.rows_1 EXECUTE FUNCTION %1.full()")
            .arg(Schema_.Name));
    const auto raised = [&](const std::function<void()>& work) {
        return ErrorOf([&] {
            Transaction transaction(*Direct_);
            Direct_->Execute(QStringLiteral("UPDATE [T] SET [Name]='two'"));
            AddRow(*Direct_, QStringLiteral("three"));
            work();
            transaction.Commit();
        });
    };
    EXPECT_EQ(raised([] {}).Number, errDiskFull);
    EXPECT_EQ(NamesIn(*Direct_), QStringList{QStringLiteral("one")});
    // Whoever reads in between hears of it there.
    EXPECT_EQ(raised([&] { NamesIn(*Direct_); }).Number, errDiskFull);
    EXPECT_EQ(NamesIn(*Direct_), QStringList{QStringLiteral("one")});
    // And whoever does not listen to it hears of it at the end.
    EXPECT_EQ(raised([&] { ErrorOf([&] { NamesIn(*Direct_); }); }).Number, errServer);
    EXPECT_EQ(NamesIn(*Direct_), QStringList{QStringLiteral("one")}) << "the server is not left in a transaction";
    TestServer::Shared().Execute(QStringLiteral("DROP TRIGGER full_disk ON %1.rows_1").arg(Schema_.Name));
    AddRow(*Direct_, QStringLiteral("four"));
    EXPECT_EQ(NamesIn(*Direct_).size(), 2);
}

TEST_F(ServerFault, ATransactionThatIsTakenBackSendsNothingThatWasLeft)
{
    DBEngine::BeginTrans();
    AddRow(*Through_, QStringLiteral("one"));
    DBEngine::Rollback();
    EXPECT_EQ(NamesIn(*Through_), QStringList());
    AddRow(*Through_, QStringLiteral("two"));
    EXPECT_EQ(NamesIn(*Direct_), QStringList{QStringLiteral("two")});
}

TEST_F(ServerFault, AValueThatMayBeRefusedIsRefusedWhereItIsStored)
{
    AddIndex(*Direct_, QStringLiteral("T"), QStringLiteral("Names"), {QStringLiteral("Name")}, true);
    const Transaction transaction(*Through_);
    AddRow(*Through_, QStringLiteral("one"));
    EXPECT_EQ(ErrorOf([&] { AddRow(*Through_, QStringLiteral("ONE")); }).Number, errDuplicateValue);
    AddRow(*Through_, QStringLiteral("two"));
    const auto table = Through_->OpenRecordset(QStringLiteral("T"), dbOpenTable);
    table->SetIndex(QStringLiteral("Names"));
    table->Seek(SeekComparison::Equal, {QStringLiteral("two")});
    table->Edit();
    table->SetCollect(QStringLiteral("Name"), QStringLiteral("one"));
    EXPECT_EQ(ErrorOf([&] { table->Update(); }).Number, errDuplicateValue);
    EXPECT_EQ(NamesIn(*Through_), (QStringList{QStringLiteral("one"), QStringLiteral("two")}));
}

TEST_F(ServerFault, WithinAScopeTheNextOpeningGoesOnWithTheConnectionOfTheLastOne)
{
    AddRow(*Direct_, QStringLiteral("one"));
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("Linked.mdb"));
    DBEngine::LinkDatabase(
        file, QStringLiteral("host=%1 user=tolva dbname=postgres schema=%2").arg(Proxy_.Folder(), Schema_.Name));
    const StoreReuse scope;
    DBEngine::OpenDatabase(file)->Close();
    Proxy_.TakeRequests();
    {
        const auto again = DBEngine::OpenDatabase(file);
        EXPECT_LE(Proxy_.TakeRequests(), 1);
        EXPECT_EQ(NamesIn(*again), QStringList{QStringLiteral("one")});
    }
    // Another station in its place, as behind a restore, is opened anew.
    TestServer::Shared().Execute(QStringLiteral("UPDATE %1.tolva_station SET identity = identity + 2, structure = "
                                                "structure + 1")
                                     .arg(Schema_.Name));
    EXPECT_EQ(NamesIn(*DBEngine::OpenDatabase(file)), QStringList{QStringLiteral("one")});
    // As is the one that the file names by then.
    const TestServer::Schema other = TestServer::Shared().NewSchema();
    ASSERT_TRUE(QFile::remove(file));
    DBEngine::CreateLinkedDatabase(file, TestServer::Shared().Connect(other.Name), QString());
    EXPECT_EQ(DBEngine::OpenDatabase(file)->TableDefs().Count(), 0);
}

TEST_F(ServerFault, ARowThatWasReadUnderTheLockIsNotReadAgainToBeEdited)
{
    AddRow(*Direct_, QStringLiteral("one"));
    const auto table = Through_->OpenRecordset(QStringLiteral("T"), dbOpenTable);
    table->SetIndex(QStringLiteral("Main"));
    const Transaction transaction(*Through_);
    table->Seek(SeekComparison::Equal, {1});
    Proxy_.TakeRequests();
    table->Edit();
    table->SetCollect(QStringLiteral("Name"), QStringLiteral("two"));
    EXPECT_EQ(Proxy_.TakeRequests(), 0);
    table->Update();
    // What was changed since is read again.
    table->Edit();
    EXPECT_EQ(table->Collect(QStringLiteral("Name")).toString(), QStringLiteral("two"));
    table->SetCollect(QStringLiteral("Name"), QStringLiteral("three"));
    table->Update();
    EXPECT_EQ(table->Collect(QStringLiteral("Name")).toString(), QStringLiteral("three"));
}

TEST_F(ServerFault, CommonActionsTakeFewRoundTrips)
{
    AddRow(*Through_, QStringLiteral("one"));
    AddRow(*Through_, QStringLiteral("two"));
    const auto table = Through_->OpenRecordset(QStringLiteral("T"), dbOpenTable);
    table->SetIndex(QStringLiteral("Main"));
    const auto costs = [&](const std::function<void()>& action) {
        Proxy_.TakeRequests();
        action();
        return Proxy_.TakeRequests();
    };
    EXPECT_EQ(costs([&] { table->Seek(SeekComparison::Equal, {2}); }), 1);
    EXPECT_LE(costs([&] {
                  table->Edit();
                  table->SetCollect(QStringLiteral("Name"), QStringLiteral("three"));
                  table->Update();
              }),
              4);
    EXPECT_LE(costs([&] {
                  table->AddNew();
                  table->SetCollect(QStringLiteral("Name"), QStringLiteral("four"));
                  table->Update();
              }),
              4);
    EXPECT_LE(costs([&] {
                  Through_->OpenRecordset(QStringLiteral("SELECT [Name] FROM [T] WHERE [Reference]=1"), dbOpenSnapshot);
              }),
              4);
}

TEST(ServerOfAnotherEncoding, KeepsEveryTextAndName)
{
    for (const QString& encoding : {QStringLiteral("LATIN1"), QStringLiteral("SQL_ASCII")}) {
        const QString name = QStringLiteral("encoded_%1_%2").arg(encoding.toLower()).arg(getpid());
        TestServer::Shared().Execute(
            QStringLiteral("CREATE DATABASE %1 ENCODING '%2' TEMPLATE template0 LC_COLLATE 'C' "
                           "LC_CTYPE 'C'")
                .arg(name, encoding));
        {
            const auto database =
                OpenAt(TestServer::Shared().Connect(QStringLiteral("s"), QStringLiteral("tolva"), name));
            const QString table = QStringLiteral("Ω \" mégas 😀");
            std::vector<std::unique_ptr<Field>> fields;
            fields.push_back(MakeField(QStringLiteral("Ωmega"), dbText));
            AddTable(*database, table, std::move(fields));
            const auto rows = database->OpenRecordset(table, dbOpenTable);
            rows->AddNew();
            rows->SetCollect(QStringLiteral("Ωmega"), QStringLiteral("Ὀδυσσεύς 😀"));
            rows->Update();
            const auto found = database->OpenRecordset(
                QStringLiteral("SELECT * FROM [%1] WHERE [Ωmega] LIKE '*ΥΣΣ*'").arg(table), dbOpenSnapshot);
            ASSERT_EQ(found->RecordCount(), 1) << qPrintable(encoding);
            EXPECT_EQ(found->Collect(QStringLiteral("Ωmega")).toString(), QStringLiteral("Ὀδυσσεύς 😀"));
        }
        TestServer::Shared().Execute(QStringLiteral("DROP DATABASE %1").arg(name));
    }
}

TEST(ServerOfItsOwn, ThatIsStoppedIsToldAndGoneOnWithWhenItIsBack)
{
    TestServer server;
    const auto database = OpenAt(server.Connect(QStringLiteral("s")));
    MakeTable(*database);
    AddRow(*database, QStringLiteral("one"));
    const auto edited = database->OpenRecordset(QStringLiteral("T"), dbOpenTable);
    edited->Edit();
    edited->SetCollect(QStringLiteral("Name"), QStringLiteral("typed"));
    server.Stop();
    const Raised raised = ErrorOf([&] { edited->Update(); });
    EXPECT_EQ(raised.Number, errServer);
    EXPECT_TRUE(raised.Words.contains(QStringLiteral("cannot be reached"))) << qPrintable(raised.Words);
    EXPECT_EQ(ErrorOf([&] { NamesIn(*database); }).Number, errServer);
    server.Start();
    // What was typed is still there, and is stored by the next attempt.
    edited->Update();
    EXPECT_EQ(NamesIn(*database), QStringList{QStringLiteral("typed")});
}

TEST(ServerOfItsOwn, ThatBecomesAStandbyIsReadAndNotChanged)
{
    TestServer server;
    {
        const auto database = OpenAt(server.Connect(QStringLiteral("s")));
        MakeTable(*database);
        AddRow(*database, QStringLiteral("one"));
    }
    server.Execute(QStringLiteral("CHECKPOINT"));
    server.Stop();
    QFile signal(server.Folder() + QStringLiteral("/data/standby.signal"));
    ASSERT_TRUE(signal.open(QIODevice::WriteOnly));
    signal.close();
    server.Start();
    const auto standby = OpenAt(server.Connect(QStringLiteral("s")));
    EXPECT_FALSE(standby->Updatable());
    EXPECT_EQ(NamesIn(*standby), QStringList{QStringLiteral("one")});
    const Raised raised = ErrorOf([&] { standby->Execute(QStringLiteral("DELETE FROM [T]")); });
    EXPECT_EQ(raised.Number, errReadOnly);
    EXPECT_TRUE(raised.Words.contains(QStringLiteral("can only be read"))) << qPrintable(raised.Words);
}

TEST(ServerOfItsOwn, ThatHasTooManyConnectionsSaysSo)
{
    TestServer server({QStringLiteral("max_connections=5")});
    server.Execute(QStringLiteral("CREATE ROLE desk LOGIN; GRANT CREATE ON DATABASE postgres TO desk"));
    const Stranger first(server, QStringLiteral("desk"));
    const Stranger second(server, QStringLiteral("desk"));
    const Raised raised = ErrorOf([&] { OpenAt(server.Connect(QStringLiteral("s"), QStringLiteral("desk"))); });
    EXPECT_EQ(raised.Number, errServer);
    EXPECT_TRUE(raised.Words.contains(QStringLiteral("too many connections"))) << qPrintable(raised.Words);
}

TEST(ServerOfItsOwn, ThatAsksForAPasswordTakesItFromAPasswordFileAndNeverRepeatsIt)
{
    TestServer server;
    server.Execute(QStringLiteral("CREATE ROLE desk LOGIN PASSWORD 'right one'; GRANT CREATE ON DATABASE postgres TO "
                                  "desk"));
    QFile rules(server.Folder() + QStringLiteral("/data/pg_hba.conf"));
    ASSERT_TRUE(rules.open(QIODevice::WriteOnly | QIODevice::Truncate));
    rules.write("local all desk scram-sha-256\nlocal all all trust\n");
    rules.close();
    server.Execute(QStringLiteral("SELECT pg_reload_conf()"));
    const QTemporaryDir folder;
    const auto connectWith = [&](const QByteArray& password) {
        QFile file(folder.filePath(QStringLiteral("pass")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("*:*:*:*:" + password + "\n");
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
        return server.Connect(QStringLiteral("s"), QStringLiteral("desk")) + QStringLiteral(" passfile=") +
               file.fileName();
    };
    // The rules are read anew in a moment.
    Raised raised;
    while (raised.Number == 0)
        raised = ErrorOf([&] { OpenAt(connectWith("wrong-one")); });
    EXPECT_EQ(raised.Number, errServer);
    EXPECT_TRUE(raised.Words.contains(QStringLiteral("password is wrong"))) << qPrintable(raised.Words);
    EXPECT_FALSE(raised.Words.contains(QStringLiteral("wrong-one"))) << qPrintable(raised.Words);
    const auto database = OpenAt(connectWith("right one"));
    EXPECT_TRUE(database->Updatable());
}

TEST(ServerOfItsOwn, IsFoundBehindAHostThatDoesNotAnswer)
{
    const TestServer::Schema schema = TestServer::Shared().NewSchema();
    const QString connect =
        TestServer::Shared()
            .Connect(schema.Name)
            .replace(QStringLiteral("host="), QStringLiteral("target_session_attrs=read-write host=/nowhere,"));
    const auto database = OpenAt(connect);
    MakeTable(*database);
    AddRow(*database, QStringLiteral("one"));
    EXPECT_EQ(NamesIn(*database), QStringList{QStringLiteral("one")});
}

} // namespace
