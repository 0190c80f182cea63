// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"
#include "platform/records/engines/EngineRegistry.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

using namespace dao;

namespace
{

class DatabaseFile : public RecordsFixture
{
protected:
    DatabaseFile()
    {
        MakeMessages();
        AddMessage(QStringLiteral("a"), QStringLiteral("body"));
    }
};

TEST_P(DatabaseFile, CreatingOverAFileIsRefused)
{
    EXPECT_EQ(ErrorNumberOf([&] { DBEngine::CreateDatabase(FileName(), QString()); }), errCannotOpen);
    EXPECT_EQ(ErrorNumberOf([&] { DBEngine::CreateDatabase(Path(QStringLiteral("No/x.mdb")), QString()); }),
              errNotAValidPath);
    const auto created =
        DBEngine::CreateDatabase(Path(QStringLiteral("New.mdb")), QStringLiteral(";LANGID=0x0409;CP=1252;COUNTRY=0"));
    EXPECT_EQ(created->TableDefs().Count(), 0);
}

TEST_P(DatabaseFile, ReadOnlyAnswersButDoesNotChange)
{
    Database_.reset();
    const auto database = DBEngine::OpenDatabase(FileName(), 0, true);
    EXPECT_FALSE(database->Updatable());
    const auto messages = database->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    EXPECT_FALSE(messages->Updatable());
    EXPECT_EQ(messages->Collect(QStringLiteral("Subject")).toString(), QStringLiteral("a"));
    EXPECT_EQ(ErrorNumberOf([&] { messages->AddNew(); }), errReadOnly);
    EXPECT_EQ(ErrorNumberOf([&] { messages->Edit(); }), errReadOnly);
    EXPECT_EQ(ErrorNumberOf([&] { messages->Delete(); }), errReadOnly);
    EXPECT_EQ(ErrorNumberOf([&] { database->Execute(QStringLiteral("DELETE FROM [Messages]")); }), errCannotOpen);
}

TEST_P(DatabaseFile, AClosedDatabaseIsOfNoUse)
{
    const auto query = Db().CreateQueryDef(QString(), QStringLiteral("DELETE FROM [Messages]"));
    Db().Close();
    EXPECT_EQ(ErrorNumberOf([&] { Db().Close(); }), errObjectInvalid);
    EXPECT_EQ(ErrorNumberOf([&] { Db().Name(); }), errObjectInvalid);
    EXPECT_EQ(ErrorNumberOf([&] { Db().TableDefs(); }), errObjectInvalid);
    EXPECT_EQ(ErrorNumberOf([&] { Db().Execute(QStringLiteral("DELETE FROM [Messages]")); }), errObjectInvalid);
    EXPECT_EQ(ErrorNumberOf([&] { OpenMessages(); }), errObjectInvalid);
    EXPECT_EQ(ErrorNumberOf([&] { query->Execute(); }), errObjectInvalid);
}

TEST_P(DatabaseFile, ChangesOfOthersAreDetectedAtUpdate)
{
    const auto other = OpenAgain();
    const auto mine = OpenMessages();
    const auto theirs = other->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    mine->Edit();
    mine->SetCollect(QStringLiteral("Category"), 1);
    theirs->Edit();
    theirs->SetCollect(QStringLiteral("Message"), QStringLiteral("theirs"));
    theirs->Update();
    EXPECT_EQ(ErrorNumberOf([&] { mine->Update(); }), errChangedByAnother);
    mine->CancelUpdate();
    mine->Edit();
    EXPECT_EQ(mine->Collect(QStringLiteral("Message")).toString(), QStringLiteral("theirs"));
    theirs->Delete();
    mine->SetCollect(QStringLiteral("Category"), 1);
    EXPECT_EQ(ErrorNumberOf([&] { mine->Update(); }), errRecordDeleted);
    EXPECT_EQ(ErrorNumberOf([&] { mine->Delete(); }), errRecordDeleted);
    EXPECT_EQ(ErrorNumberOf([&] { mine->Edit(); }), errRecordDeleted);
}

TEST_P(DatabaseFile, ARowThatTakesADeletedOnesPlaceIsNotMistakenForIt)
{
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Name"), dbText));
    AddTable(Db(), QStringLiteral("Plain"), std::move(fields));
    const auto rows = OpenTable(QStringLiteral("Plain"));
    rows->AddNew();
    rows->SetCollect(QStringLiteral("Name"), QStringLiteral("first"));
    rows->Update();
    rows->MoveFirst();
    rows->Edit();
    rows->SetCollect(QStringLiteral("Name"), QStringLiteral("edited"));
    const auto others = OpenTable(QStringLiteral("Plain"));
    others->Delete();
    others->AddNew();
    others->SetCollect(QStringLiteral("Name"), QStringLiteral("second"));
    others->Update();
    EXPECT_NE(ErrorNumberOf([&] { rows->Update(); }), 0);
    others->MoveFirst();
    EXPECT_EQ(others->Collect(QStringLiteral("Name")).toString(), QStringLiteral("second"));
}

TEST_P(DatabaseFile, WaitingForAnotherWriterIsBounded)
{
    const auto other = OpenAgain();
    DBEngine::BeginTrans();
    AddMessage(QStringLiteral("b"));
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(ErrorNumberOf([&] { other->Execute(QStringLiteral("DELETE FROM [Messages]")); }), errLocked);
    EXPECT_GE(timer.elapsed(), 4500);
    EXPECT_LT(timer.elapsed(), 8000);
    // Readers do not wait for a transaction that is only being gathered.
    EXPECT_EQ(other->OpenRecordset(QStringLiteral("Messages"), dbOpenTable)->RecordCount(), 1);
    DBEngine::CommitTrans(dbForceOSFlush);
    EXPECT_EQ(other->OpenRecordset(QStringLiteral("Messages"), dbOpenTable)->RecordCount(), 2);
}

TEST_P(DatabaseFile, CommittingOrRollingBackNothingIsRefused)
{
    EXPECT_EQ(ErrorNumberOf([] { DBEngine::CommitTrans(); }), errNotSupported);
    EXPECT_EQ(ErrorNumberOf([] { DBEngine::Rollback(); }), errNotSupported);
}

TEST_P(DatabaseFile, ClosingInATransactionTakesItsChangesBack)
{
    DBEngine::BeginTrans();
    AddMessage(QStringLiteral("b"));
    Database_.reset();
    DBEngine::CommitTrans();
    Reopen();
    EXPECT_EQ(OpenMessages()->RecordCount(), 1);
}

TEST_P(DatabaseFile, CompactingCopiesEverything)
{
    AddMessage(QStringLiteral("b"), QString(100000, QLatin1Char('b')));
    Db().Execute(QStringLiteral("DELETE FROM [Messages] WHERE [Reference]=1"));
    const QString target = Path(QStringLiteral("Compact.mdb"));
    QFile empty(target);
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    DBEngine::CompactDatabase(FileName(), target);
    const auto copy = DBEngine::OpenDatabase(target);
    const auto messages = copy->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    messages->SetIndex(QStringLiteral("Main"));
    EXPECT_EQ(messages->Collect(QStringLiteral("Reference")).toInt(), 2);
    EXPECT_EQ(messages->Collect(QStringLiteral("Message")).toString().size(), 100000);
    messages->AddNew();
    EXPECT_GE(messages->Collect(QStringLiteral("Reference")).toInt(), 3);
    EXPECT_EQ(ErrorNumberOf([&] { DBEngine::CompactDatabase(FileName(), target); }), errCannotOpen);
    EXPECT_EQ(ErrorNumberOf([&] { DBEngine::CompactDatabase(Path(QStringLiteral("No.mdb")), target); }),
              errFileNotFound);
}

TEST_P(DatabaseFile, TheFirstOpenerFixesTheLockingMode)
{
    const QString mode = QStringLiteral("Jet OLEDB:Database Locking Mode");
    const auto modeOf = [&](int asked) {
        ado::Connection connection;
        connection.SetProvider(QStringLiteral("Microsoft.JET.OLEDB.4.0"));
        connection.SetProperty(QStringLiteral("Data Source"), FileName());
        connection.SetProperty(mode, asked);
        connection.SetCursorLocation(2);
        connection.Open();
        return connection.Property(mode).toInt();
    };
    EXPECT_EQ(modeOf(1), 0); // The database is open already, page level.
    Database_.reset();
    EXPECT_EQ(modeOf(1), 1);
    EXPECT_EQ(modeOf(0), 0);
    ado::Connection first;
    first.SetProperty(QStringLiteral("Data Source"), FileName());
    first.SetProperty(mode, 1);
    first.Open();
    Reopen();
    first.Close();
    EXPECT_EQ(ErrorNumberOf([&] { first.Close(); }), errObjectInvalid);
    EXPECT_EQ(modeOf(0), 1); // Held by the database that was opened after it.
}

TEST_P(DatabaseFile, ConnectionErrors)
{
    ado::Connection connection;
    EXPECT_EQ(ErrorNumberOf([&] { connection.Property(QStringLiteral("Colour")); }), errItemNotFound);
    connection.SetProperty(QStringLiteral("Data Source"), Path(QStringLiteral("No.mdb")));
    EXPECT_EQ(ErrorNumberOf([&] { connection.Open(); }), errFileNotFound);
    connection.SetProvider(QStringLiteral("Another.Provider"));
    EXPECT_EQ(ErrorNumberOf([&] { connection.Open(); }), errNotSupported);
}

TEST_P(DatabaseFile, NoEngineServesAConnectString)
{
    EXPECT_EQ(ErrorNumberOf([&] { DBEngine::OpenDatabase(FileName(), 1, false, QStringLiteral("ODBC;DSN=x")); }),
              errNotSupported);
    const auto workspace = DBEngine::CreateWorkspace(QString(), QString(), QString(), dbUseODBC);
    EXPECT_EQ(ErrorNumberOf([&] { workspace->OpenConnection(QString(), 1, false, QStringLiteral("ODBC;DSN=x")); }),
              errNotSupported);
    workspace->Close();
    EXPECT_EQ(ErrorNumberOf([&] { workspace->OpenConnection(QString(), 1, false, QStringLiteral("ODBC;DSN=x")); }),
              errObjectInvalid);
}

INSTANTIATE_FOR_FILE_ENGINES(DatabaseFile);

} // namespace
