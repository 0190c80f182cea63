// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/QueryRun.h"

#include "RandomQueries.h"
#include "platform/records/RecordsFixture.h"
#include "platform/records/engines/EngineRegistry.h"
#include "platform/records/jetsql/Parser.h"
#include "platform/records/query/Binder.h"

using namespace dao;

namespace
{

/// Counts the rows that a run looks at.
class CountedRows final : public query::TableRows
{
public:
    explicit CountedRows(engine::Store& store) : Rows_(store) {}

    void ForEachRow(const engine::TablePtr& table, const Visitor& visit) override
    {
        Rows_.ForEachRow(table, Counting(visit));
    }
    bool ForEachRowWith(const engine::TablePtr& table, int column, const StoredValue& value,
                        const Visitor& visit) override
    {
        return Rows_.ForEachRowWith(table, column, value, Counting(visit));
    }
    StoredValue Memo(const engine::TablePtr& table, int column, qint64 id) override
    {
        ++Memos;
        return Rows_.Memo(table, column, id);
    }

    int Visited = 0;
    int Memos = 0;

private:
    Visitor Counting(const Visitor& visit)
    {
        return [this, &visit](const Row& row) {
            ++Visited;
            return visit(row);
        };
    }

    query::StoreRows Rows_;
};

/// T with 40 rows: N is 0 to 4 in turn, M a memo; U with a row for each of T's.
class QueryRun : public testing::Test
{
protected:
    QueryRun() : Place_(MakeDatabase(FileEngines().front(), Folder_.path()))
    {
        Store_ = engine::EngineRegistry::Instance().Named(FileEngines().front()).Open(Place_.Name, QString(), false);
        Store_->AddTable(RandomQueries::FirstTable());
        Store_->AddTable(RandomQueries::SecondTable());
        Schema_ = Store_->CurrentSchema();
        Store_->BeginTrans();
        for (int i = 0; i < 40; ++i) {
            Insert("T", {{1, qint64{i % 5}}, {7, QByteArray("memo ") + QByteArray::number(i)}});
            Insert("U", {{1, qint64{40 - i}}, {2, i % 2 == 0 ? QByteArray("Even") : QByteArray("odd")}});
        }
        Store_->CommitTrans();
    }

    void Insert(const char* name, const std::vector<std::pair<int, StoredValue>>& cells)
    {
        const engine::TablePtr table = Schema_->Find(QString::fromLatin1(name));
        const StoredValue counter = Store_->DrawCounter(table);
        std::vector<engine::Assignment> values{{0, &counter}};
        for (const auto& [column, value] : cells)
            values.push_back({column, &value});
        Store_->Insert(table, values);
    }

    /// The row ids of the first source, and how many rows and memos were looked at.
    std::string Run(const char* text, int limit = 8)
    {
        CountedRows rows(*Store_);
        std::string ids;
        query::RunSelect(query::BindSelect(jetsql::ParseSelect(QString::fromLatin1(text)), *Schema_), {},
                         engine::ResultPart::Keys, rows, [&](std::span<const qint64> keys, std::string_view) {
                             if (limit-- > 0)
                                 ids += std::to_string(keys.front()) + ' ';
                         });
        return ids + '(' + std::to_string(rows.Visited) + " rows, " + std::to_string(rows.Memos) + " memos)";
    }

    QTemporaryDir Folder_;
    DatabasePlace Place_;
    std::unique_ptr<engine::Store> Store_;
    engine::SchemaPtr Schema_;
};

TEST_F(QueryRun, AnIndexFindsTheRowsOfOneValue)
{
    EXPECT_EQ(Run("SELECT * FROM T WHERE Id = 7"), "7 (1 rows, 0 memos)");
    EXPECT_EQ(Run("SELECT * FROM T WHERE Id = 7 AND N = 0"), "(1 rows, 0 memos)");
    EXPECT_EQ(Run("SELECT * FROM T WHERE '7' = Id"), "7 (1 rows, 0 memos)");
    EXPECT_EQ(Run("SELECT * FROM T WHERE Id = 7.5"), "(0 rows, 0 memos)");
    EXPECT_EQ(Run("SELECT * FROM T WHERE Id = 1e300"), "(0 rows, 0 memos)");
    EXPECT_EQ(Run("SELECT * FROM T WHERE Id = NULL"), "(0 rows, 0 memos)");
    EXPECT_EQ(Run("SELECT * FROM U WHERE S = 'EVEN' AND Ref > 20"), "1 3 5 7 9 11 13 15 (20 rows, 0 memos)");
    EXPECT_EQ(Run("SELECT * FROM T WHERE Id = 7 OR N = 9"), "7 (40 rows, 0 memos)");
}

TEST_F(QueryRun, ARunStopsWhenItHasItsRows)
{
    EXPECT_EQ(Run("SELECT TOP 2 * FROM T WHERE N = 1"), "2 7 (7 rows, 0 memos)");
    EXPECT_EQ(Run("SELECT TOP 0 * FROM T"), "(0 rows, 0 memos)");
    EXPECT_EQ(Run("SELECT TOP 2 * FROM T WHERE N = 1 ORDER BY Id DESC"), "37 32 (40 rows, 0 memos)");
}

TEST_F(QueryRun, MemosAreReadOnlyWhereAConditionNeedsThem)
{
    EXPECT_EQ(Run("SELECT * FROM T WHERE N = 1 AND M LIKE '*6' AND M LIKE 'memo*'"), "7 17 27 37 (40 rows, 8 memos)");
}

TEST_F(QueryRun, AJoinReadsEachTableOnce)
{
    EXPECT_EQ(Run("SELECT * FROM T INNER JOIN U ON T.Id = U.Ref WHERE U.S = 'odd'"),
              "1 3 5 7 9 11 13 15 (80 rows, 0 memos)");
    EXPECT_EQ(Run("SELECT * FROM T LEFT JOIN U ON T.Id + 39 = U.Ref WHERE T.N = 1 ORDER BY T.Id DESC", 2),
              "37 32 (80 rows, 0 memos)");
}

} // namespace
