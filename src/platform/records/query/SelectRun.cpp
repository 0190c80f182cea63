// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/CurrentRows.h"
#include "platform/records/query/JoinedSource.h"
#include "platform/records/query/QueryRun.h"
#include "platform/records/query/StoredValues.h"

#include <algorithm>
#include <limits>
#include <numeric>

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

/// Whether the result's rows are those of one table as they come, memos left out as in those.
bool IsWholeRow(const BoundSelect& select)
{
    if (select.Sources.size() != 1 || select.Outputs.size() != select.Shape.Sources.front()->Columns.size())
        return false;
    for (std::size_t i = 0; i < select.Outputs.size(); ++i) {
        const auto* column = std::get_if<BoundColumn>(&select.Outputs[i].Node);
        if (column == nullptr || static_cast<std::size_t>(column->Column) != i)
            return false;
    }
    return true;
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
          IsWholeRow_(IsWholeRow(select)),
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
        const bool isSorted = !Select_.OrderBy.empty();
        if (!isSorted) {
            Keys_.clear();
            Cells_.clear();
        }
        for (std::size_t i = 0; i < Select_.Sources.size(); ++i)
            Keys_.push_back(Current_.IdAt(i));
        const std::size_t begin = Cells_.size();
        if (Part_ == engine::ResultPart::Values)
            PackRow();
        if (!isSorted) {
            --Left_;
            Sink_(Keys_, Cells_);
            return;
        }
        CellsBegin_.push_back(begin);
        for (const BoundSortTerm& term : Select_.OrderBy)
            SortValues_.push_back(Kept(Evaluator_.Value(term.Value)));
    }

    void PackRow()
    {
        if (IsWholeRow_) {
            Cells_ += Current_.RowAt(0)->Cells;
            return;
        }
        RowPacker packer(Cells_);
        for (std::size_t i = 0; i < Select_.Outputs.size(); ++i) {
            const engine::ResultColumn& column = Select_.Shape.Columns[i];
            if (column.Source >= 0 && column.Definition.IsMemo())
                packer.AddDeferred();
            else
                Pack(packer, Evaluator_.Value(Select_.Outputs[i]));
        }
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
        std::vector<std::size_t> rows(CellsBegin_.size());
        std::iota(rows.begin(), rows.end(), std::size_t{0});
        std::stable_sort(rows.begin(), rows.end(),
                         [this](std::size_t left, std::size_t right) { return IsBefore(left, right); });
        CellsBegin_.push_back(Cells_.size());
        const std::size_t keys = Select_.Sources.size();
        for (const std::size_t row : rows) {
            if (Left_-- == 0)
                return;
            const std::string_view cells = Cells_;
            Sink_(std::span(Keys_).subspan(row * keys, keys),
                  cells.substr(CellsBegin_[row], CellsBegin_[row + 1] - CellsBegin_[row]));
        }
    }

    bool IsBefore(std::size_t left, std::size_t right) const
    {
        const std::size_t terms = Select_.OrderBy.size();
        for (std::size_t i = 0; i < terms; ++i) {
            const int order = CompareStored(SortValues_[left * terms + i], SortValues_[right * terms + i]);
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
    /// Of the row that is sent; of all rows where they are to be sorted, one behind the other.
    std::vector<qint64> Keys_;
    std::string Cells_;
    /// Of rows that are to be sorted: where the cells of each begin, and the values of the terms of each.
    std::vector<std::size_t> CellsBegin_;
    std::vector<StoredValue> SortValues_;
    bool IsWholeRow_;
    qint64 Left_; ///< Rows that may still be sent.
};

} // namespace

void RunSelect(const BoundSelect& select, const engine::ParameterValues& parameters, engine::ResultPart part,
               TableRows& rows, const engine::RowSink& sink)
{
    SelectRun(select, parameters, part, rows, sink).Run();
}

} // namespace dao::query
