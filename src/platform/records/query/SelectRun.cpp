// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/CurrentRows.h"
#include "platform/records/query/JoinedSource.h"
#include "platform/records/query/QueryRun.h"
#include "platform/records/query/StoredValues.h"

#include <algorithm>
#include <limits>

namespace dao::query
{

namespace
{

void Pack(RowPacker& packer, const StoredValue& value)
{
    if (const auto* whole = std::get_if<qint64>(&value))
        packer.AddInteger(*whole);
    else if (const auto* real = std::get_if<double>(&value))
        packer.AddReal(*real);
    else if (IsNull(value))
        packer.AddNull();
    else
        packer.AddText(TextIn(value));
}

class SelectRun
{
public:
    SelectRun(const BoundSelect& select, const engine::ParameterValues& parameters, engine::ResultPart part,
              TableRows& rows, const engine::RowSink& sink)
        : Select_(select),
          Part_(part),
          Rows_(rows),
          Sink_(sink),
          Parameters_(select.Parameters, parameters),
          Current_(select.Shape.Sources, rows),
          Evaluator_(Current_, Parameters_),
          Left_(select.Top.value_or(std::numeric_limits<qint64>::max()))
    {
        for (std::size_t i = 1; i < select.Sources.size(); ++i)
            Joined_.emplace_back(select.Sources[i], static_cast<int>(i), rows);
        for (const BoundExpression& output : select.Outputs) {
            if (const auto* aggregate = std::get_if<BoundAggregate>(&output.Node))
                Accumulators_.emplace_back(aggregate->Function);
        }
    }

    void Run()
    {
        if (Left_ == 0)
            return;
        ForEachCandidate(Select_.Sources.front(), Select_.Where, Evaluator_, Rows_, [this](const Row& row) {
            Current_.Set(0, &row);
            Walk(1);
            return Left_ > 0;
        });
        if (!Select_.Shape.HasKeys)
            SendAggregates();
        else
            SendSorted();
    }

private:
    struct SortedRow
    {
        std::vector<StoredValue> SortValues;
        std::vector<qint64> Keys;
        std::string Cells;
    };

    /// Goes through the rows of the sources from this one on that belong to those before.
    void Walk(std::size_t source)
    {
        if (source == Select_.Sources.size()) {
            if (!Select_.Where || Evaluator_.Holds(*Select_.Where))
                Take();
            return;
        }
        bool hasPartner = false;
        for (const Row* row : Joined_[source - 1].Candidates(Evaluator_)) {
            if (Left_ == 0)
                break;
            Current_.Set(source, row);
            if (!Evaluator_.Holds(*Select_.Sources[source].Condition))
                continue;
            hasPartner = true;
            Walk(source + 1);
        }
        Current_.Set(source, nullptr);
        if (!hasPartner && Left_ > 0 && Select_.Sources[source].Kind == jetsql::JoinKind::Left)
            Walk(source + 1);
    }

    /// The row that all sources together stand at is one of the result.
    void Take()
    {
        if (!Select_.Shape.HasKeys) {
            Accumulate();
            return;
        }
        std::vector<qint64> keys(Select_.Sources.size());
        for (std::size_t i = 0; i < keys.size(); ++i)
            keys[i] = Current_.IdAt(i);
        std::string cells = Part_ == engine::ResultPart::Values ? PackedRow() : std::string();
        if (Select_.OrderBy.empty()) {
            --Left_;
            Sink_(keys, cells);
            return;
        }
        SortedRow& row = Sorted_.emplace_back();
        for (const BoundSortTerm& term : Select_.OrderBy)
            row.SortValues.push_back(Kept(Evaluator_.Value(term.Value)));
        row.Keys = std::move(keys);
        row.Cells = std::move(cells);
    }

    std::string PackedRow()
    {
        std::string cells;
        RowPacker packer(cells);
        for (std::size_t i = 0; i < Select_.Outputs.size(); ++i) {
            const engine::ResultColumn& column = Select_.Shape.Columns[i];
            if (column.Source >= 0 && column.Definition.IsMemo())
                packer.AddDeferred();
            else
                Pack(packer, Evaluator_.Value(Select_.Outputs[i]));
        }
        return cells;
    }

    void Accumulate()
    {
        for (std::size_t i = 0; i < Accumulators_.size(); ++i) {
            const auto& aggregate = std::get<BoundAggregate>(Select_.Outputs[i].Node);
            Accumulators_[i].Add(aggregate.Operand.empty() ? qint64{1} : Evaluator_.Value(aggregate.Operand.front()));
        }
    }

    void SendAggregates()
    {
        std::string cells;
        RowPacker packer(cells);
        for (const Accumulator& accumulator : Accumulators_)
            Pack(packer, accumulator.Result());
        Sink_({}, Part_ == engine::ResultPart::Values ? cells : std::string_view());
    }

    void SendSorted()
    {
        std::stable_sort(Sorted_.begin(), Sorted_.end(),
                         [this](const SortedRow& left, const SortedRow& right) { return IsBefore(left, right); });
        for (const SortedRow& row : Sorted_) {
            if (Left_-- == 0)
                return;
            Sink_(row.Keys, row.Cells);
        }
    }

    bool IsBefore(const SortedRow& left, const SortedRow& right) const
    {
        for (std::size_t i = 0; i < Select_.OrderBy.size(); ++i) {
            const int order = CompareStored(left.SortValues[i], right.SortValues[i]);
            if (order != 0)
                return (order < 0) == (Select_.OrderBy[i].Direction == jetsql::SortDirection::Ascending);
        }
        return false;
    }

    const BoundSelect& Select_;
    engine::ResultPart Part_;
    TableRows& Rows_;
    const engine::RowSink& Sink_;
    ParameterTable Parameters_;
    CurrentRows Current_;
    Evaluator Evaluator_;
    std::vector<JoinedSource> Joined_;
    std::vector<Accumulator> Accumulators_;
    std::vector<SortedRow> Sorted_;
    qint64 Left_; ///< Rows that may still be sent.
};

} // namespace

void RunSelect(const BoundSelect& select, const engine::ParameterValues& parameters, engine::ResultPart part,
               TableRows& rows, const engine::RowSink& sink)
{
    SelectRun(select, parameters, part, rows, sink).Run();
}

} // namespace dao::query
