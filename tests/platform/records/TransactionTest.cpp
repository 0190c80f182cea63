// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"

#include <set>

using namespace dao;

namespace
{

class Transactions : public RecordsFixture
{
protected:
    Transactions() { MakeMessages(); }

    /// What another user sees, who sees nothing of an open transaction.
    QStringList Durable() const { return Subjects(*OpenAgain()); }
    QStringList Mine() { return Subjects(Db()); }

    static QStringList Subjects(Database& database)
    {
        QStringList subjects;
        const auto rows = database.OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
        for (; !rows->AtEOF(); rows->MoveNext())
            subjects += rows->Collect(QStringLiteral("Subject")).toString();
        return subjects;
    }
    int Add(const char* subject) { return AddMessage(QString::fromLatin1(subject)); }
};

TEST_P(Transactions, AnInnerCommitIsDurableOnlyWithTheOuterOne)
{
    DBEngine::BeginTrans();
    Add("outer");
    DBEngine::BeginTrans();
    Add("inner");
    DBEngine::CommitTrans();
    EXPECT_EQ(Mine(), QStringList({QStringLiteral("outer"), QStringLiteral("inner")}));
    EXPECT_EQ(Durable(), QStringList());
    DBEngine::CommitTrans();
    EXPECT_EQ(Durable(), QStringList({QStringLiteral("outer"), QStringLiteral("inner")}));
}

TEST_P(Transactions, AnInnerRollbackTakesBackItsOwnPartOnly)
{
    DBEngine::BeginTrans();
    Add("before");
    DBEngine::BeginTrans();
    Add("inner");
    Db().Execute(QStringLiteral("UPDATE [Messages] SET [Subject]='changed'"));
    DBEngine::Rollback();
    EXPECT_EQ(Mine(), QStringList({QStringLiteral("before")}));
    Add("after");
    DBEngine::CommitTrans();
    EXPECT_EQ(Durable(), QStringList({QStringLiteral("before"), QStringLiteral("after")}));
}

TEST_P(Transactions, AnInnerRollbackBeforeAnyChangeOfTheOuterOne)
{
    DBEngine::BeginTrans();
    DBEngine::BeginTrans();
    Add("inner");
    DBEngine::Rollback();
    EXPECT_EQ(Mine(), QStringList());
    Add("outer");
    DBEngine::CommitTrans();
    EXPECT_EQ(Durable(), QStringList({QStringLiteral("outer")}));
}

TEST_P(Transactions, AnOuterRollbackTakesBackACommittedInnerOne)
{
    DBEngine::BeginTrans();
    DBEngine::BeginTrans();
    Add("inner");
    DBEngine::CommitTrans();
    DBEngine::Rollback();
    EXPECT_EQ(Mine(), QStringList());
    EXPECT_EQ(Durable(), QStringList());
}

TEST_P(Transactions, FiveStandInEachOtherAndNoSixth)
{
    for (int depth = 1; depth <= 5; ++depth) {
        DBEngine::BeginTrans();
        AddMessage(QString::number(depth));
    }
    EXPECT_EQ(ErrorNumberOf([] { DBEngine::BeginTrans(); }), errNotSupported);
    DBEngine::Rollback();
    DBEngine::CommitTrans();
    DBEngine::Rollback();
    DBEngine::CommitTrans();
    DBEngine::CommitTrans();
    EXPECT_EQ(Durable(), QStringList({QStringLiteral("1"), QStringLiteral("2")}));
    EXPECT_EQ(ErrorNumberOf([] { DBEngine::CommitTrans(); }), errNotSupported);
    EXPECT_EQ(ErrorNumberOf([] { DBEngine::Rollback(); }), errNotSupported);
}

TEST_P(Transactions, AFailedStatementInsideLeavesTheRestAlone)
{
    AddIndex(Db(), QStringLiteral("Messages"), QStringLiteral("Subjects"), {QStringLiteral("Subject")}, true);
    DBEngine::BeginTrans();
    Add("a");
    DBEngine::BeginTrans();
    Add("b");
    EXPECT_EQ(ErrorNumberOf([&] { Add("A"); }), errDuplicateValue);
    DBEngine::CommitTrans();
    DBEngine::CommitTrans();
    EXPECT_EQ(Durable(), QStringList({QStringLiteral("a"), QStringLiteral("b")}));
}

TEST_P(Transactions, NumbersOfAnInnerRollbackStayDrawn)
{
    std::set<int> drawn;
    DBEngine::BeginTrans();
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(drawn.insert(Add("outer")).second);
    for (int round = 0; round < 3; ++round) {
        DBEngine::BeginTrans();
        for (int i = 0; i < 20; ++i)
            EXPECT_TRUE(drawn.insert(Add("inner")).second);
        DBEngine::Rollback();
        EXPECT_TRUE(drawn.insert(Add("outer")).second);
    }
    DBEngine::CommitTrans();
    const auto other = OpenAgain();
    const auto rows = other->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    for (int i = 0; i < 100; ++i) {
        rows->AddNew();
        EXPECT_TRUE(drawn.insert(rows->Collect(QStringLiteral("Reference")).toInt()).second);
        EXPECT_TRUE(drawn.insert(Add("mine")).second);
    }
}

TEST_P(Transactions, NumbersOfADatabaseClosedInATransactionStayDrawn)
{
    Add("a");
    DBEngine::BeginTrans();
    int last = 0;
    for (int i = 0; i < 5; ++i)
        last = Add("b");
    Reopen();
    DBEngine::CommitTrans();
    EXPECT_GT(Add("c"), last);
    EXPECT_EQ(Durable(), QStringList({QStringLiteral("a"), QStringLiteral("c")}));
}

TEST_P(Transactions, AStructureAddedInsideIsGoneWithTheInnerRollback)
{
    DBEngine::BeginTrans();
    std::vector<std::unique_ptr<Field>> kept;
    kept.push_back(MakeField(QStringLiteral("Name"), dbText));
    AddTable(Db(), QStringLiteral("Stays"), std::move(kept));
    DBEngine::BeginTrans();
    Db().TableDefs().Item(QStringLiteral("Stays")).Fields().Append(MakeField(QStringLiteral("Goes"), dbLong));
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Name"), dbText));
    AddTable(Db(), QStringLiteral("Goes"), std::move(fields));
    DBEngine::Rollback();
    EXPECT_EQ(ErrorNumberOf([&] { OpenTable(QStringLiteral("Goes")); }), errTableNotFound);
    EXPECT_EQ(Db().TableDefs().Item(QStringLiteral("Stays")).Fields().Count(), 1);
    DBEngine::CommitTrans();
    EXPECT_EQ(OpenAgain()->TableDefs().Count(), 2);
}

TEST_P(Transactions, ADatabaseOpenedInsideJoinsTheNextOne)
{
    DBEngine::BeginTrans();
    const auto created = DBEngine::CreateDatabase(Path(QStringLiteral("Second.mdb")), QString());
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Subject"), dbText));
    AddTable(*created, QStringLiteral("Messages"), std::move(fields));
    const auto add = [&] {
        const auto rows = created->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Subject"), QStringLiteral("second"));
        rows->Update();
    };
    Add("first");
    add();
    DBEngine::BeginTrans();
    add();
    DBEngine::Rollback();
    DBEngine::Rollback();
    EXPECT_EQ(Mine(), QStringList());
    EXPECT_EQ(Subjects(*created), QStringList({QStringLiteral("second")}));
}

INSTANTIATE_FOR_ENGINES(Transactions);

} // namespace
