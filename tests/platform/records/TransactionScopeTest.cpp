// SPDX-License-Identifier: Apache-2.0
#include "platform/records/FaultVfs.h"
#include "platform/records/RecordsFixture.h"
#include "platform/records/Transaction.h"

#include <stdexcept>

using namespace dao;

namespace
{

class TransactionScope : public RecordsFixture
{
protected:
    TransactionScope() { MakeMessages(); }

    /// What another user sees, who sees nothing of an open transaction.
    QStringList Durable() const
    {
        QStringList subjects;
        const auto other = OpenAgain();
        const auto rows = other->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
        for (; !rows->AtEOF(); rows->MoveNext())
            subjects += rows->Collect(QStringLiteral("Subject")).toString();
        return subjects;
    }
    int Add(const char* subject) { return AddMessage(QString::fromLatin1(subject)); }
};

QStringList Words(std::initializer_list<const char*> words)
{
    QStringList list;
    for (const char* word : words)
        list += QString::fromLatin1(word);
    return list;
}

bool IsTransactionOpen()
{
    const int error = ErrorNumberOf([] { DBEngine::Rollback(); });
    EXPECT_TRUE(error == 0 || error == errNotSupported) << error;
    return error == 0;
}

TEST_P(TransactionScope, StoresAtItsCommitAndNotBefore)
{
    Transaction transaction;
    Add("a");
    EXPECT_EQ(Durable(), QStringList());
    transaction.Commit();
    EXPECT_EQ(Durable(), Words({"a"}));
}

TEST_P(TransactionScope, StoresNothingWhenItGoesUncommitted)
{
    {
        const Transaction transaction;
        Add("a");
    }
    EXPECT_EQ(Durable(), QStringList());
    EXPECT_FALSE(IsTransactionOpen());
}

TEST_P(TransactionScope, StoresNothingWhenAnExceptionPasses)
{
    EXPECT_THROW(
        {
            Transaction transaction;
            Add("a");
            if (OpenMessages()->RecordCount() == 1)
                throw std::runtime_error("no dao::Error");
            transaction.Commit();
        },
        std::runtime_error);
    EXPECT_EQ(Durable(), QStringList());
    EXPECT_FALSE(IsTransactionOpen());
}

TEST_P(TransactionScope, AnInnerOneTakesBackItsOwnPartOnly)
{
    Transaction outer;
    Add("before");
    {
        const Transaction inner;
        Add("inner");
    }
    {
        Transaction inner;
        Add("kept");
        inner.Commit();
    }
    outer.Commit();
    EXPECT_EQ(Durable(), Words({"before", "kept"}));
}

TEST_P(TransactionScope, TheOuterOneDecidesOverACommittedInnerOne)
{
    {
        const Transaction outer;
        Transaction inner;
        Add("inner");
        inner.Commit();
    }
    EXPECT_EQ(Durable(), QStringList());
}

TEST_P(TransactionScope, OneTooManyLeavesTheOthersAlone)
{
    Transaction first;
    Add("a");
    const Transaction second;
    const Transaction third;
    {
        const Transaction fourth;
        const Transaction fifth;
        EXPECT_EQ(ErrorNumberOf([] { const Transaction sixth; }), errNotSupported);
    }
    EXPECT_EQ(ErrorNumberOf([] { const Transaction fourth; }), 0);
}

TEST_P(TransactionScope, NumbersDrawnInItStayDrawnWhenItIsTakenBack)
{
    int drawn = 0;
    {
        const Transaction transaction;
        drawn = Add("a");
    }
    const auto other = OpenAgain();
    const auto rows = other->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    rows->AddNew();
    EXPECT_GT(rows->Collect(QStringLiteral("Reference")).toInt(), drawn);
    EXPECT_GT(Add("b"), drawn);
}

TEST_P(TransactionScope, ALockNeedsATransaction)
{
    EXPECT_EQ(ErrorNumberOf([&] { Db().LockForChange(); }), errNotSupported);
}

TEST_P(TransactionScope, WhatFollowsComesBehindTheOutermostCommit)
{
    QStringList told;
    const auto tell = [&](const char* what) {
        Transaction::AfterCommit([&, what] { told += QString::fromLatin1(what) + Durable().join(u','); });
    };
    tell("at once:");
    EXPECT_EQ(told, Words({"at once:"}));
    told.clear();
    {
        Transaction outer;
        tell("first:");
        {
            Transaction inner;
            Add("a");
            tell("second:");
            inner.Commit();
        }
        {
            const Transaction inner;
            tell("never:");
        }
        EXPECT_EQ(told, QStringList());
        outer.Commit();
    }
    EXPECT_EQ(told, Words({"first:a", "second:a"}));
}

TEST_P(TransactionScope, NothingFollowsAChangeThatIsTakenBack)
{
    bool isTold = false;
    {
        const Transaction outer;
        Transaction inner;
        Add("a");
        Transaction::AfterCommit([&] { isTold = true; });
        inner.Commit();
    }
    EXPECT_FALSE(isTold);
}

TEST_P(TransactionScope, WhatFollowsIsStoredInOnePiece)
{
    Transaction transaction;
    for (const char* subject : {"a", "b"}) {
        Transaction::AfterCommit([this, subject] {
            Add(subject);
            EXPECT_EQ(Durable(), QStringList());
        });
    }
    transaction.Commit();
    EXPECT_EQ(Durable(), Words({"a", "b"}));
}

INSTANTIATE_FOR_ENGINES(TransactionScope);

/// On a disk that fails.
class TransactionOnABadDisk : public testing::Test
{
protected:
    std::unique_ptr<Database> Create(const char* name)
    {
        auto database = DBEngine::CreateDatabase(Folder_.filePath(QString::fromLatin1(name)), QString());
        std::vector<std::unique_ptr<Field>> fields;
        fields.push_back(MakeField(QStringLiteral("Name"), dbText));
        AddTable(*database, QStringLiteral("T"), std::move(fields));
        return database;
    }
    static void Add(Database& database)
    {
        const auto rows = database.OpenRecordset(QStringLiteral("T"), dbOpenTable);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Name"), QStringLiteral("x"));
        rows->Update();
    }
    static int Count(Database& database)
    {
        return database.OpenRecordset(QStringLiteral("T"), dbOpenTable)->RecordCount();
    }

    QTemporaryDir Folder_;
    FaultVfs Disk_;
};

TEST_F(TransactionOnABadDisk, AFailedCommitTellsItsOwnErrorAndIsOver)
{
    const auto database = Create("Test.mdb");
    for (const int code : {SQLITE_FULL, SQLITE_IOERR}) {
        bool isTold = false;
        const int error = ErrorNumberOf([&] {
            Transaction transaction;
            Transaction::AfterCommit([&] { isTold = true; });
            Add(*database);
            Disk_.FailAt(FaultVfs::Operation::Write, 1, code, true);
            transaction.Commit();
        });
        Disk_.Heal();
        EXPECT_EQ(error, code == SQLITE_FULL ? errDiskFull : errDiskError);
        EXPECT_FALSE(isTold);
        EXPECT_FALSE(IsTransactionOpen());
        EXPECT_EQ(Count(*database), 0);
    }
    Transaction transaction;
    Add(*database);
    transaction.Commit();
    EXPECT_EQ(Count(*database), 1);
}

TEST_F(TransactionOnABadDisk, AFailedCommitInsideLeavesTheOuterTransactionOpen)
{
    const auto outerFile = Create("Outer.mdb");
    Transaction outer;
    Add(*outerFile);
    // Opened later, this one takes part in the inner transaction alone, which is its outermost.
    const auto innerFile = Create("Inner.mdb");
    const int error = ErrorNumberOf([&] {
        Transaction inner;
        Add(*innerFile);
        Disk_.FailAt(FaultVfs::Operation::Write, 1, SQLITE_FULL, true);
        inner.Commit();
    });
    Disk_.Heal();
    EXPECT_EQ(error, errDiskFull);
    EXPECT_EQ(Count(*innerFile), 0);
    Add(*outerFile);
    outer.Commit();
    EXPECT_EQ(Count(*outerFile), 2);
}

TEST_F(TransactionOnABadDisk, ADestructorThatCannotTakeBackThrowsNothing)
{
    const auto database = Create("Test.mdb");
    Add(*database);
    EXPECT_THROW(
        {
            const Transaction transaction;
            database->Execute(QStringLiteral("DELETE FROM [T]"));
            Disk_.FailAt(FaultVfs::Operation::Truncate, 1, SQLITE_IOERR, true);
            throw std::runtime_error("the true one");
        },
        std::runtime_error);
    Disk_.Heal();
    EXPECT_FALSE(IsTransactionOpen());
    EXPECT_EQ(Count(*database), 1);
}

/// Whether somebody else could write now.
bool IsFree(const QString& file)
{
    sqlite3* connection = nullptr;
    sqlite3_open_v2(file.toUtf8().constData(), &connection, SQLITE_OPEN_READWRITE, nullptr);
    const int code = sqlite3_exec(connection, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    sqlite3_close(connection);
    EXPECT_TRUE(code == SQLITE_OK || code == SQLITE_BUSY) << code;
    return code == SQLITE_OK;
}

TEST_F(TransactionOnABadDisk, ALockFromTheBeginningIsHeldToTheEnd)
{
    const auto database = Create("Test.mdb");
    const QString file = database->Name();
    {
        const Transaction transaction;
        EXPECT_EQ(Count(*database), 0);
        EXPECT_TRUE(IsFree(file));
    }
    {
        const Transaction transaction(*database);
        EXPECT_FALSE(IsFree(file));
        {
            const Transaction inner(*database);
        }
        EXPECT_FALSE(IsFree(file));
    }
    EXPECT_TRUE(IsFree(file));
    Disk_.Heal();
    Transaction transaction(*database);
    transaction.Commit();
    EXPECT_TRUE(IsFree(file));
    EXPECT_EQ(Disk_.Calls(FaultVfs::Operation::Sync), 0);
}

} // namespace
