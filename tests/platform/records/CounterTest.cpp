// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"

#include <set>

using namespace dao;

namespace
{

class Counter : public RecordsFixture
{
protected:
    Counter() { MakeMessages(); }

    static int Draw(Recordset& messages)
    {
        messages.AddNew();
        return messages.Collect(QStringLiteral("Reference")).toInt();
    }
};

TEST_P(Counter, CountsFromOneWithoutGapsAcrossReopenings)
{
    int expected = 0;
    for (int session = 0; session < 4; ++session) {
        for (int i = 0; i <= session * 3; ++i)
            EXPECT_EQ(AddMessage(QStringLiteral("a")), ++expected);
        Reopen();
    }
}

TEST_P(Counter, NeverGivesADeletedNumberAgain)
{
    for (int i = 1; i <= 5; ++i)
        AddMessage(QStringLiteral("a"));
    Db().Execute(QStringLiteral("DELETE FROM [Messages]"));
    EXPECT_EQ(AddMessage(QStringLiteral("a")), 6);
    Db().Execute(QStringLiteral("DELETE FROM [Messages]"));
    Reopen();
    EXPECT_EQ(AddMessage(QStringLiteral("a")), 7);
}

TEST_P(Counter, ACancelledNumberIsNotGivenAgain)
{
    const auto messages = OpenMessages();
    EXPECT_EQ(Draw(*messages), 1);
    messages->CancelUpdate();
    EXPECT_EQ(Draw(*messages), 2);
    Reopen();
    EXPECT_EQ(AddMessage(QStringLiteral("a")), 3);
}

TEST_P(Counter, TwoConnectionsNeverShareANumber)
{
    const auto other = OpenAgain();
    std::set<int> seen;
    for (int round = 0; round < 200; ++round) {
        for (Database* database : {&Db(), other.get()}) {
            const auto messages = database->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
            const int reference = Draw(*messages);
            EXPECT_TRUE(seen.insert(reference).second) << reference;
            if (round % 50 == 0)
                messages->Update();
        }
    }
}

TEST_P(Counter, NumbersOfARolledBackTransactionStayDrawn)
{
    AddMessage(QStringLiteral("a"));
    DBEngine::BeginTrans();
    EXPECT_EQ(AddMessage(QStringLiteral("b")), 2);
    EXPECT_EQ(AddMessage(QStringLiteral("c")), 3);
    DBEngine::Rollback();
    EXPECT_EQ(AddMessage(QStringLiteral("d")), 4);
    EXPECT_EQ(OpenMessages()->RecordCount(), 2);
    const auto other = OpenAgain();
    const auto messages = other->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
    EXPECT_GT(Draw(*messages), 4);
}

TEST_P(Counter, CountsEachTableForItself)
{
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Number"), dbLong, 0, dbAutoIncrField));
    AddTable(Db(), QStringLiteral("Other"), std::move(fields));
    AddMessage(QStringLiteral("a"));
    AddMessage(QStringLiteral("a"));
    const auto other = OpenTable(QStringLiteral("Other"));
    other->AddNew();
    EXPECT_EQ(other->Collect(QStringLiteral("Number")).toInt(), 1);
}

TEST_P(Counter, ACounterAddedLaterNumbersTheRowsThatAreThere)
{
    std::vector<std::unique_ptr<Field>> fields;
    fields.push_back(MakeField(QStringLiteral("Name"), dbText));
    AddTable(Db(), QStringLiteral("Late"), std::move(fields));
    AddIndex(Db(), QStringLiteral("Late"), QStringLiteral("Names"), {QStringLiteral("Name")}, true);
    auto rows = OpenTable(QStringLiteral("Late"));
    for (const char* name : {"b", "a"}) {
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Name"), QString::fromLatin1(name));
        rows->Update();
    }
    Db().TableDefs()
        .Item(QStringLiteral("Late"))
        .Fields()
        .Append(MakeField(QStringLiteral("Number"), dbLong, 0, dbAutoIncrField));
    rows = OpenTable(QStringLiteral("Late"), QStringLiteral("Names"));
    rows->Seek(SeekComparison::Equal, {QStringLiteral("A")});
    EXPECT_EQ(rows->Collect(QStringLiteral("Number")).toInt(), 2);
    rows->AddNew();
    EXPECT_EQ(rows->Collect(QStringLiteral("Number")).toInt(), 3);
}

INSTANTIATE_FOR_ENGINES(Counter);

} // namespace
