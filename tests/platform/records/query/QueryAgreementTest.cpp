// SPDX-License-Identifier: Apache-2.0
#include "RandomQueries.h"
#include "platform/records/RecordsFixture.h"
#include "platform/records/engines/EngineRegistry.h"
#include "platform/records/jetsql/Parser.h"
#include "platform/records/query/Binder.h"
#include "platform/records/query/QueryRun.h"
#include "platform/records/query/StoredValues.h"

#include <algorithm>
#include <iostream>

using namespace dao;

namespace
{

/// Rows in memory, so that thousands of queries take no time.
class MemoryRows final : public query::TableRows
{
public:
    MemoryRows(engine::Store& store, const engine::Schema& schema) : Stored_(store)
    {
        for (const engine::TablePtr& table : schema.Tables) {
            Stored_.ForEachRow(table, [&](const Row& row) {
                Rows_[table->Name].push_back(row);
                return true;
            });
        }
    }

    void ForEachRow(const engine::TablePtr& table, const Visitor& visit) override
    {
        for (const Row& row : Rows_[table->Name]) {
            if (!visit(row))
                return;
        }
    }
    StoredValue Memo(const engine::TablePtr& table, int column, qint64 id) override
    {
        const auto known = Memos_.find({table->Name, id});
        if (known != Memos_.end())
            return known->second;
        return Memos_.emplace(std::pair(table->Name, id), Stored_.Memo(table, column, id)).first->second;
    }

private:
    query::StoreRows Stored_;
    std::map<QString, std::vector<Row>> Rows_;
    std::map<std::pair<QString, qint64>, StoredValue> Memos_; ///< Each table has one memo.
};

/// What a query gave.
struct Outcome
{
    int Error = 0;
    QString Words; ///< Of the error.
    int Count = 0;
    std::vector<std::pair<std::vector<qint64>, std::string>> Rows;
};

Outcome OutcomeOf(const std::function<void(Outcome&)>& run)
{
    Outcome outcome;
    try {
        run(outcome);
    } catch (const Error& error) {
        outcome = {};
        outcome.Error = error.Number();
        outcome.Words = error.Description();
    }
    return outcome;
}

std::string Shown(const std::string& cells, std::size_t count)
{
    std::string shown;
    RowReader reader(cells.data());
    for (std::size_t i = 0; i < count && !cells.empty(); ++i) {
        const CellView cell = reader.Next();
        if (cell.CellKind == CellView::Kind::Real)
            shown += "real ";
        shown += '[' + std::string(query::TextIn(query::AsText(query::ViewOf(cell)))) + "] ";
    }
    return shown;
}

std::string Shown(const Outcome& outcome, std::size_t columns)
{
    std::string shown = "error " + std::to_string(outcome.Error) + ' ' + outcome.Words.toStdString() + '\n';
    for (const auto& [keys, cells] : outcome.Rows) {
        for (const qint64 key : keys)
            shown += (key == engine::NoRow ? std::string("none") : std::to_string(key)) + ' ';
        shown += Shown(cells, columns) + '\n';
    }
    return shown;
}

/// Equal but for which of several spellings a MAX of texts names.
bool AreAlike(const CellView& left, const CellView& right)
{
    return left.CellKind == right.CellKind && query::CompareStored(query::ViewOf(left), query::ViewOf(right)) == 0;
}

/// A store with two tables of random rows, and the same rows for the evaluator.
class QueryAgreement : public testing::TestWithParam<QString>
{
protected:
    static constexpr int SelectRounds = 3000;
    static constexpr int ChangeRounds = 400;

    QueryAgreement() : Seed_(RandomSeed()), Random_(Seed_)
    {
        std::cout << "seed (TOLVA_TEST_SEED): " << Seed_ << '\n';
        Place_ = MakeDatabase(GetParam(), Folder_.path());
        Store_ = engine::EngineRegistry::Instance().Named(GetParam()).Open(Place_.Name, Place_.Connect, false);
        Store_->AddTable(RandomQueries::FirstTable());
        Store_->AddTable(RandomQueries::SecondTable());
        Schema_ = Store_->CurrentSchema();
        Store_->BeginTrans();
        Fill(Table("T"), 30);
        Fill(Table("U"), 20);
        Store_->CommitTrans();
        Rows_ = std::make_unique<MemoryRows>(*Store_, *Schema_);
    }

    static unsigned RandomSeed()
    {
        const QByteArray given = qgetenv("TOLVA_TEST_SEED");
        return given.isEmpty() ? std::random_device()() : given.toUInt();
    }

    engine::TablePtr Table(const char* name) const { return Schema_->Find(QString::fromLatin1(name)); }

    void Fill(const engine::TablePtr& table, int count)
    {
        for (int i = 0; i < count; ++i) {
            std::vector<StoredValue> values;
            for (const engine::Column& column : table->Columns)
                values.push_back(column.IsCounter() ? StoredValue(Store_->DrawCounter(table))
                                                    : Random_.ValueFor(column));
            std::vector<engine::Assignment> assignments;
            for (std::size_t column = 0; column < values.size(); ++column)
                assignments.push_back({static_cast<int>(column), &values[column]});
            Store_->Insert(table, assignments);
        }
    }

    /// Everything that the tables hold.
    void Dump(Outcome& outcome)
    {
        query::StoreRows rows(*Store_);
        for (const engine::TablePtr& table : Schema_->Tables) {
            const int memo = static_cast<int>(table->Columns.size()) - 1;
            rows.ForEachRow(table, [&](const Row& row) {
                const StoredValue text = rows.Memo(table, memo, row.Id);
                outcome.Rows.push_back(
                    {{row.Id}, row.Cells + std::string(query::TextIn(text)) + (query::IsNull(text) ? "Null" : "text")});
                return true;
            });
        }
    }

    /// Runs something that changes the store, looks at the store, and takes all back.
    Outcome Tried(const std::function<int()>& change)
    {
        Store_->BeginTrans();
        const Outcome outcome = OutcomeOf([&](Outcome& result) {
            result.Count = change();
            Dump(result);
        });
        Store_->Rollback();
        return outcome;
    }

    unsigned Seed_;
    RandomQueries Random_;
    QTemporaryDir Folder_;
    DatabasePlace Place_;
    std::unique_ptr<engine::Store> Store_;
    engine::SchemaPtr Schema_;
    std::unique_ptr<MemoryRows> Rows_;
};

TEST_P(QueryAgreement, TheEngineSelectsTheRowsAndRaisesTheErrorsOfTheEvaluator)
{
    int failed = 0;
    int withRows = 0;
    int tooComplex = 0;
    for (int round = 0; round < SelectRounds && !HasFailure(); ++round) {
        const RandomQueries::Select made = Random_.MakeSelect();
        const engine::ParameterValues parameters = Random_.MakeParameters();
        const auto part = Random_.Below(4) == 0 ? engine::ResultPart::Keys : engine::ResultPart::Values;
        const jetsql::SelectStatement statement = jetsql::ParseSelect(made.Text);
        const auto sinkOf = [](Outcome& outcome) {
            return [&outcome](std::span<const qint64> keys, std::string_view cells) {
                outcome.Rows.emplace_back(std::vector<qint64>(keys.begin(), keys.end()), std::string(cells));
            };
        };
        std::size_t columns = 0;
        bool hasKeys = true;
        Outcome evaluated = OutcomeOf([&](Outcome& outcome) {
            const query::BoundSelect bound = query::BindSelect(statement, *Schema_);
            columns = bound.Outputs.size();
            hasKeys = bound.Shape.HasKeys;
            query::RunSelect(bound, parameters, part, *Rows_, sinkOf(outcome));
        });
        Outcome selected =
            OutcomeOf([&](Outcome& outcome) { Store_->Select(statement, parameters, part, sinkOf(outcome)); });
        if (!made.IsOrdered) {
            std::sort(evaluated.Rows.begin(), evaluated.Rows.end());
            std::sort(selected.Rows.begin(), selected.Rows.end());
        }
        // An expression may be too much for an engine that hands it on to a database.
        if (selected.Error == errSyntax && evaluated.Error == 0) {
            ++tooComplex;
            continue;
        }
        SCOPED_TRACE(testing::Message() << "seed " << Seed_ << " round " << round << '\n'
                                        << made.Text.toStdString() << "\nevaluated: " << Shown(evaluated, columns)
                                        << "selected: " << Shown(selected, columns));
        ASSERT_EQ(selected.Error, evaluated.Error);
        ASSERT_EQ(selected.Words, evaluated.Words);
        ASSERT_EQ(selected.Rows.size(), evaluated.Rows.size());
        failed += evaluated.Error != 0 ? 1 : 0;
        withRows += evaluated.Rows.empty() ? 0 : 1;
        if (hasKeys) {
            ASSERT_EQ(selected.Rows, evaluated.Rows);
            continue;
        }
        for (std::size_t row = 0; row < evaluated.Rows.size() && part == engine::ResultPart::Values; ++row) {
            RowReader left(selected.Rows[row].second.data());
            RowReader right(evaluated.Rows[row].second.data());
            for (std::size_t column = 0; column < columns; ++column)
                ASSERT_TRUE(AreAlike(left.Next(), right.Next()));
        }
    }
    if (HasFailure())
        return;
    // A generator that makes nothing but errors, or none, would prove nothing.
    EXPECT_GT(withRows, SelectRounds / 4);
    EXPECT_GT(failed, SelectRounds / 50);
    EXPECT_LT(tooComplex, SelectRounds / 50);
}

TEST_P(QueryAgreement, TheEngineChangesTheRowsThatTheEvaluatorPlans)
{
    int failed = 0;
    int changing = 0;
    for (int round = 0; round < ChangeRounds && !HasFailure(); ++round) {
        const RandomQueries::Change made = Random_.MakeChange();
        const engine::ParameterValues parameters = Random_.MakeParameters();
        const jetsql::Statement statement = jetsql::ParseStatement(made.Text);
        const Outcome planned = Tried([&] {
            const query::BoundChange bound = query::BindChangeToRun(statement, *Schema_);
            return query::ApplyChange(bound, query::PlanChange(bound, parameters, *Rows_), *Store_);
        });
        const Outcome executed = Tried([&] { return Store_->Execute(statement, parameters); });
        SCOPED_TRACE(testing::Message() << "seed " << Seed_ << " round " << round << '\n'
                                        << made.Text.toStdString() << "\nplanned: " << Shown(planned, 0)
                                        << "executed: " << Shown(executed, 0));
        // Where several values do not fit, either may be told of.
        if (made.Assignments > 1)
            ASSERT_EQ(executed.Error == 0, planned.Error == 0);
        else
            ASSERT_EQ(executed.Error, planned.Error);
        ASSERT_EQ(executed.Count, planned.Count);
        ASSERT_EQ(executed.Rows, planned.Rows);
        failed += planned.Error != 0 ? 1 : 0;
        changing += planned.Count != 0 ? 1 : 0;
    }
    if (HasFailure())
        return;
    EXPECT_GT(changing, ChangeRounds / 4);
    EXPECT_GT(failed, ChangeRounds / 50);
}

INSTANTIATE_FOR_ENGINES(QueryAgreement);

} // namespace
