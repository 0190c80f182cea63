// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/QueryRows.h"

#include "platform/records/engines/postgres/ConditionRenderer.h"
#include "platform/records/engines/postgres/Naming.h"
#include "platform/records/engines/postgres/RowAccess.h"

#include <algorithm>
#include <limits>

namespace dao::postgres
{

using engine::MemoFetch;

namespace
{

constexpr int RowsAtOnce = 256;
constexpr qint64 MemoOctetsAtOnce = qint64{8} * 1024 * 1024;

} // namespace

QueryRows::QueryRows(ServerConnection& connection, const QByteArray& quotedSchema)
    : Connection_(connection), Schema_(quotedSchema)
{
}

void QueryRows::Narrow(const std::vector<query::BoundSource>& sources,
                       const std::optional<query::BoundExpression>& where, const query::ParameterTable& parameters)
{
    const engine::TablePtr& first = sources.front().Table;
    const bool isOnce = std::count_if(sources.begin(), sources.end(),
                                      [&](const query::BoundSource& source) { return source.Table == first; }) == 1;
    if (!where || !isOnce)
        return;
    bool isWhole = true;
    Condition_ = ConditionRenderer(*first, parameters, Values_).Conjuncts(*where, isWhole);
    Narrowed_ = first;
}

bool QueryRows::ReadsMemo(const std::vector<query::BoundSource>& sources,
                          const query::BoundExpression& expression) const
{
    const auto reads = [&](const query::BoundExpression& operand) { return ReadsMemo(sources, operand); };
    if (const auto* operation = std::get_if<query::BoundOperation>(&expression.Node))
        return std::any_of(operation->Operands.begin(), operation->Operands.end(), reads);
    if (const auto* aggregate = std::get_if<query::BoundAggregate>(&expression.Node))
        return std::any_of(aggregate->Operand.begin(), aggregate->Operand.end(), reads);
    const auto* column = std::get_if<query::BoundColumn>(&expression.Node);
    return column != nullptr && sources[static_cast<std::size_t>(column->Source)]
                                    .Table->Columns[static_cast<std::size_t>(column->Column)]
                                    .IsMemo();
}

void QueryRows::KeepMemosFor(const query::BoundSelect& select)
{
    const auto reads = [&](const query::BoundExpression& value) { return ReadsMemo(select.Sources, value); };
    HasMemos_ = select.Where && reads(*select.Where);
    for (std::size_t i = 0; i < select.Outputs.size(); ++i) {
        // A memo that is a column of the result stays where it is.
        HasMemos_ = HasMemos_ || (select.Shape.Columns[i].Source < 0 && reads(select.Outputs[i]));
    }
    for (const query::BoundSortTerm& term : select.OrderBy)
        HasMemos_ = HasMemos_ || reads(term.Value);
    for (const query::BoundSource& source : select.Sources)
        HasMemos_ = HasMemos_ || (source.Condition && reads(*source.Condition));
}

void QueryRows::KeepMemosFor(const query::BoundChange& change)
{
    const std::vector<query::BoundSource> sources{change.Source};
    HasMemos_ = change.Where && ReadsMemo(sources, *change.Where);
    for (const query::BoundAssignment& assignment : change.Assignments)
        HasMemos_ = HasMemos_ || ReadsMemo(sources, assignment.Value);
}

Command QueryRows::RowsCommand(const engine::TablePtr& table) const
{
    const RowAccess access(Connection_, Schema_, *table);
    Command command;
    command.IsPrepared = false;
    command.Text = "SELECT " + access.ReadColumns(MemoFetch::Deferred) + " FROM " + access.Rows() + " WHERE TRUE";
    if (table == Narrowed_ && !Condition_.isEmpty()) {
        command.Text += " AND " + Condition_;
        command.Values = Values_;
    }
    return command;
}

void QueryRows::ForEachRow(const engine::TablePtr& table, const Visitor& visit)
{
    if (HasMemos_) {
        ForEachChunk(table, visit);
        return;
    }
    const RowAccess access(Connection_, Schema_, *table);
    Command command = RowsCommand(table);
    command.Text += " ORDER BY id";
    Row row;
    Connection_.Stream(command, [&](const Result& result) {
        access.Take(result, 0, MemoFetch::Deferred, row);
        return visit(row);
    });
}

void QueryRows::ForEachChunk(const engine::TablePtr& table, const Visitor& visit)
{
    const RowAccess access(Connection_, Schema_, *table);
    qint64 last = std::numeric_limits<qint64>::min();
    Row row;
    while (true) {
        Command command = RowsCommand(table);
        command.Values.AddInteger(last);
        command.Text += " AND id > $" + QByteArray::number(command.Values.Count()) + " ORDER BY id LIMIT " +
                        QByteArray::number(RowsAtOnce);
        const Result result = Connection_.Run(command);
        ChunkTable_ = table;
        Chunk_.clear();
        Memos_.clear();
        for (int place = 0; place < result.Rows(); ++place)
            Chunk_.push_back(result.Integer(place, 0));
        for (int place = 0; place < result.Rows(); ++place) {
            access.Take(result, place, MemoFetch::Deferred, row);
            if (!visit(row))
                return;
        }
        if (result.Rows() < RowsAtOnce)
            return;
        last = Chunk_.back();
    }
}

StoredValue QueryRows::Memo(const engine::TablePtr& table, int column, qint64 id)
{
    RowAccess access(Connection_, Schema_, *table);
    const auto place = std::lower_bound(Chunk_.begin(), Chunk_.end(), id);
    if (table != ChunkTable_ || place == Chunk_.end() || *place != id)
        return query::TextOf(access.ReadMemos(column, std::span(&id, 1), std::numeric_limits<qint64>::max()).front());
    const auto known = Memos_.find({column, id});
    if (known != Memos_.end())
        return known->second;
    std::erase_if(Memos_, [column](const auto& entry) { return entry.first.first == column; });
    const std::span<const qint64> ahead(&*place, static_cast<std::size_t>(Chunk_.end() - place));
    const std::vector<engine::StoredMemo> memos = access.ReadMemos(column, ahead, MemoOctetsAtOnce);
    for (std::size_t i = 0; i < memos.size(); ++i)
        Memos_[{column, ahead[i]}] = query::TextOf(memos[i]);
    return Memos_[{column, id}];
}

} // namespace dao::postgres
