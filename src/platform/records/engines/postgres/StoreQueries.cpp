// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/PrimaryKey.h"
#include "platform/records/engines/postgres/ConditionRenderer.h"
#include "platform/records/engines/postgres/Naming.h"
#include "platform/records/engines/postgres/QueryRows.h"
#include "platform/records/engines/postgres/StoreScopes.h"
#include "platform/records/query/Binder.h"
#include "platform/records/query/QueryRun.h"
#include "platform/records/query/StoredValues.h"

#include <algorithm>

/// Queries: what the server can say is asked of it, the rest is worked out here.
namespace dao::postgres
{

using engine::ParameterValues;
using engine::ResultPart;
using engine::RowSink;
using query::BoundColumn;
using query::BoundSelect;

namespace
{

constexpr std::size_t CommandsAtOnce = 200;

/// A query that the server answers as a whole: one table, all conditions and the order said in its SQL, and nothing
/// to be worked out in the columns.
struct WholeQuery
{
    Command Asked;
    std::vector<int> Columns; ///< Of the table, one for each column of the result; none where only ids are asked for.
};

std::optional<QByteArray> OrderOf(const BoundSelect& select, const engine::Table& table)
{
    QByteArray order = " ORDER BY ";
    for (const query::BoundSortTerm& term : select.OrderBy) {
        const auto* column = std::get_if<BoundColumn>(&term.Value.Node);
        if (column == nullptr)
            return std::nullopt;
        if (IsTextType(table.Columns[static_cast<std::size_t>(column->Column)].Type) && !HasTwin(table, column->Column))
            return std::nullopt;
        order += KeyName(table, column->Column) +
                 (term.Direction == jetsql::SortDirection::Ascending ? " NULLS FIRST, " : " DESC NULLS LAST, ");
    }
    return order + IdColumn;
}

std::optional<WholeQuery> AsWhole(const BoundSelect& select, const query::ParameterTable& parameters,
                                  const QByteArray& schema, ResultPart part)
{
    if (select.Sources.size() != 1 || !select.Shape.HasKeys)
        return std::nullopt;
    const engine::Table& table = *select.Sources.front().Table;
    WholeQuery whole;
    whole.Asked.IsPrepared = false;
    QByteArray columns = IdColumn;
    for (const query::BoundExpression& output : select.Outputs) {
        if (part == ResultPart::Keys)
            break;
        const auto* column = std::get_if<BoundColumn>(&output.Node);
        if (column == nullptr)
            return std::nullopt;
        whole.Columns.push_back(column->Column);
        if (!table.Columns[static_cast<std::size_t>(column->Column)].IsMemo())
            columns += ", " + ColumnName(table, column->Column);
    }
    const std::optional<QByteArray> order = OrderOf(select, table);
    if (!order)
        return std::nullopt;
    whole.Asked.Text = "SELECT " + columns + " FROM " + RowsTable(schema, table.Id);
    if (select.Where) {
        bool isWhole = true;
        ConditionRenderer renderer(table, parameters, whole.Asked.Values);
        const QByteArray condition = renderer.Conjuncts(*select.Where, isWhole);
        if (!isWhole)
            return std::nullopt;
        whole.Asked.Text += " WHERE " + condition;
    }
    whole.Asked.Text += *order;
    if (select.Top)
        whole.Asked.Text += " LIMIT " + QByteArray::number(*select.Top);
    return whole;
}

void Send(const WholeQuery& whole, const engine::Table& table, const Result& result, const RowSink& sink)
{
    const qint64 id = result.Integer(0, 0);
    std::string cells;
    RowPacker packer(cells);
    int place = 1;
    for (const int number : whole.Columns) {
        const engine::Column& column = table.Columns[static_cast<std::size_t>(number)];
        if (column.IsMemo()) {
            packer.AddDeferred();
            continue;
        }
        if (result.IsNull(0, place))
            packer.AddNull();
        else if (KindOf(column.Type) == Kind::Octets)
            packer.AddText(result.Octets(0, place));
        else if (KindOf(column.Type) == Kind::Real)
            packer.AddReal(result.Real(0, place));
        else
            packer.AddInteger(result.Integer(0, place));
        ++place;
    }
    sink(std::span(&id, 1), cells);
}

/// How many rows meet a condition that the server understands as a whole: the one sum that is asked for often.
std::optional<Command> AsCount(const BoundSelect& select, const query::ParameterTable& parameters,
                               const QByteArray& schema)
{
    if (select.Sources.size() != 1 || select.Outputs.size() != 1)
        return std::nullopt;
    const auto* aggregate = std::get_if<query::BoundAggregate>(&select.Outputs.front().Node);
    if (aggregate == nullptr || aggregate->Function != jetsql::AggregateFunction::Count ||
        !aggregate->Operand.empty() || select.Top)
        return std::nullopt;
    const engine::Table& table = *select.Sources.front().Table;
    Command command;
    command.IsPrepared = false;
    command.Text = "SELECT pg_catalog.count(*) FROM " + RowsTable(schema, table.Id);
    if (select.Where) {
        bool isWhole = true;
        ConditionRenderer renderer(table, parameters, command.Values);
        const QByteArray condition = renderer.Conjuncts(*select.Where, isWhole);
        if (!isWhole)
            return std::nullopt;
        command.Text += " WHERE " + condition;
    }
    return command;
}

} // namespace

engine::ResultShape ServerStore::Describe(const jetsql::SelectStatement& select)
{
    return query::BindSelect(select, *CurrentSchema()).Shape;
}

void ServerStore::Select(const jetsql::SelectStatement& select, const ParameterValues& parameters, ResultPart part,
                         const RowSink& sink)
{
    RequireUsable();
    // Whoever runs it has had it described a moment ago.
    BoundSelect bound;
    std::optional<query::ParameterTable> bindings;
    const auto bind = [&](const engine::Schema& schema) {
        bound = query::BindSelect(select, schema);
        bindings.emplace(bound.Parameters, parameters);
    };
    try {
        bind(*Schema_);
    } catch (const Error&) {
        bind(*CurrentSchema());
    }
    const query::ParameterTable& values = *bindings;
    bool isBegun = false;
    const RowSink noting = [&](std::span<const qint64> keys, std::string_view cells) {
        isBegun = true;
        sink(keys, cells);
    };
    const auto run = [&] {
        if (const std::optional<WholeQuery> whole = AsWhole(bound, values, SchemaName_, part)) {
            Connection_.Stream(whole->Asked, [&](const Result& result) {
                Send(*whole, *bound.Sources.front().Table, result, noting);
                return true;
            });
            return;
        }
        if (const std::optional<Command> count = AsCount(bound, values, SchemaName_)) {
            std::string cells;
            RowPacker(cells).AddInteger(Connection_.Run(*count).Integer(0, 0));
            noting({}, part == ResultPart::Values ? cells : std::string_view());
            return;
        }
        const ReadScope scope(*this);
        QueryRows rows(Connection_, SchemaName_);
        rows.Narrow(bound.Sources, bound.Where, values);
        rows.KeepMemosFor(bound);
        query::RunSelect(bound, parameters, part, rows, noting);
    };
    Retried([&] {
        try {
            run();
        } catch (const ServerFailure& failure) {
            // Rows that were handed over cannot be handed over once more.
            if (isBegun && failure.IsConnectionLost())
                throw Error(failure.Number(), failure.Description());
            throw;
        }
    });
}

int ServerStore::Execute(const jetsql::Statement& statement, const ParameterValues& parameters)
{
    return Retried([&] {
        // Bound before the lock is taken, so that a refused statement begins no transaction.
        const engine::SchemaPtr schema = CurrentSchema();
        query::BoundChange change = query::BindChangeToRun(statement, *schema);
        WriteScope scope(*this);
        scope.MarkBeginning();
        if (Schema_ != schema)
            change = query::BindChangeToRun(statement, *Schema_);
        const query::ParameterTable values(change.Parameters, parameters);
        QueryRows rows(Connection_, SchemaName_);
        rows.Narrow({change.Source}, change.Where, values);
        rows.KeepMemosFor(change);
        const std::vector<query::ChangedRow> plan = query::PlanChange(change, parameters, rows);
        ApplyPlan(change, plan);
        scope.Commit();
        return static_cast<int>(plan.size());
    });
}

void ServerStore::ApplyPlan(const query::BoundChange& change, const std::vector<query::ChangedRow>& plan)
{
    RowAccess rows = Rows(change.Source.Table);
    if (change.Assignments.empty()) {
        std::vector<qint64> ids;
        ids.reserve(plan.size());
        for (const query::ChangedRow& row : plan)
            ids.push_back(row.Id);
        Command command{"DELETE FROM " + rows.Rows() + " WHERE id = ANY($1)"};
        command.Values.AddIntegers(ids);
        Connection_.Run(command);
        return;
    }
    std::vector<engine::Assignment> assignments(change.Assignments.size());
    std::vector<Command> commands;
    for (const query::ChangedRow& row : plan) {
        for (std::size_t i = 0; i < assignments.size(); ++i)
            assignments[i] = {change.Assignments[i].Column, &row.Values[i]};
        engine::CheckPrimaryKey(*change.Source.Table, assignments, engine::RowIs::There);
        commands.push_back(rows.UpdateCommand(row.Id, row.Version, assignments));
        if (commands.size() == CommandsAtOnce) {
            Connection_.RunTogether(commands);
            commands.clear();
        }
    }
    if (!commands.empty())
        Connection_.RunTogether(commands);
}

QStringList ServerStore::ParametersOf(const jetsql::Statement& statement)
{
    return query::ParametersOf(statement, *CurrentSchema());
}

} // namespace dao::postgres
