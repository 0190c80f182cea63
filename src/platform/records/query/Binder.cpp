// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/Binder.h"

#include "platform/records/Error.h"
#include "platform/records/query/ExpressionBinder.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace dao::query
{

using jetsql::Expression;
using jetsql::SelectItem;
using jetsql::SelectStatement;

namespace
{

[[noreturn]] void RaiseSyntaxError(const QString& reason, qsizetype position)
{
    throw Error(errSyntax,
                QStringLiteral("Syntax error in the query: %1, at character %2.").arg(reason).arg(position + 1));
}

const jetsql::Aggregate* AsAggregate(const Expression& expression)
{
    return std::get_if<jetsql::Aggregate>(&expression.Node);
}

/// A computed text may be of any length, so it counts as a memo.
DataTypeEnum OutputType(const BoundExpression& value)
{
    const auto* aggregate = std::get_if<BoundAggregate>(&value.Node);
    if (aggregate != nullptr && aggregate->Function == jetsql::AggregateFunction::Count)
        return dbLong;
    switch (value.Type) {
    case ValueType::Date:
        return dbDate;
    case ValueType::Number:
        return dbDouble;
    default:
        return dbMemo;
    }
}

class SelectBinder
{
public:
    SelectBinder(const SelectStatement& statement, const engine::Schema& schema)
        : Statement_(statement), Expressions_(schema)
    {
    }

    BoundSelect Bind()
    {
        // The sources come first, for everything else is named after them.
        BindSources();
        for (const SelectItem& item : Statement_.Items)
            BindItem(item);
        CheckAggregates();
        NameColumns();
        Result_.Shape.Updatable = Statement_.Joins.empty() &&
                                  std::all_of(Shape().Columns.begin(), Shape().Columns.end(),
                                              [](const engine::ResultColumn& column) { return column.Source >= 0; });
        if (Statement_.Where)
            Result_.Where = Expressions_.Condition(*Statement_.Where);
        for (const jetsql::SortTerm& term : Statement_.OrderBy)
            Result_.OrderBy.push_back({Expressions_.Value(SortedBy(term.Value)), term.Direction});
        Result_.Top = Statement_.Top;
        Result_.Sources = Expressions_.TakeSources();
        Result_.Parameters = Expressions_.TakeParameters();
        for (const BoundSource& source : Result_.Sources)
            Result_.Shape.Sources.push_back(source.Table);
        Result_.Shape.Parameters = Result_.Parameters.Names;
        return std::move(Result_);
    }

private:
    engine::ResultShape& Shape() { return Result_.Shape; }

    void BindSources()
    {
        Expressions_.AddSource(Statement_.From);
        for (const jetsql::Join& join : Statement_.Joins) {
            Expressions_.AddSource(join.Table);
            Expressions_.JoinLast(join.Kind, Expressions_.Condition(join.Condition));
        }
    }

    void BindItem(const SelectItem& item)
    {
        switch (item.ItemKind) {
        case SelectItem::Kind::AllColumns:
            for (std::size_t i = 0; i < Expressions_.Sources().size(); ++i)
                AddColumnsOf(static_cast<int>(i));
            return;
        case SelectItem::Kind::TableColumns: {
            const int source = Expressions_.FindSource(item.Table);
            if (source < 0)
                throw Error(errTableNotFound,
                            QStringLiteral("The input table or query '%1' cannot be found.").arg(item.Table));
            AddColumnsOf(source);
            return;
        }
        case SelectItem::Kind::Value:
            AddValue(item);
            return;
        }
    }

    void AddColumnsOf(int source)
    {
        const std::size_t count = Expressions_.Sources()[static_cast<std::size_t>(source)].Table->Columns.size();
        for (std::size_t i = 0; i < count; ++i)
            AddColumn({source, static_cast<int>(i)}, QString());
    }

    void AddColumn(const BoundColumn& column, const QString& alias)
    {
        engine::ResultColumn& output = Shape().Columns.emplace_back();
        output.Definition = Expressions_.ColumnAt(column);
        output.Source = column.Source;
        output.SourceColumn = column.Column;
        Aliases_.append(alias);
        Result_.Outputs.push_back(Expressions_.Column(column));
    }

    void AddValue(const SelectItem& item)
    {
        if (const auto* name = std::get_if<jetsql::Name>(&item.Value->Node)) {
            if (const auto column = Expressions_.Resolve(*name, item.Position)) {
                AddColumn(*column, item.Alias);
                return;
            }
        }
        if (AsAggregate(*item.Value) != nullptr)
            Shape().HasKeys = false;
        BoundExpression value = Expressions_.Value(*item.Value);
        const QString name =
            item.Alias.isEmpty() ? QStringLiteral("Expr%1").arg(1000 + Shape().Columns.size()) : item.Alias;
        Shape().Columns.emplace_back().Definition = {name, OutputType(value), 0, 0, false};
        Aliases_.append(name);
        Result_.Outputs.push_back(std::move(value));
    }

    void CheckAggregates() const
    {
        if (Result_.Shape.HasKeys)
            return;
        for (const SelectItem& item : Statement_.Items) {
            if (!item.Value || AsAggregate(*item.Value) == nullptr)
                RaiseSyntaxError(QStringLiteral("a column cannot stand beside COUNT, MAX, MIN or SUM"), item.Position);
        }
    }

    /// Fields of the same name bear their table's as well.
    void NameColumns()
    {
        QHash<QString, int> count;
        for (qsizetype i = 0; i < Aliases_.size(); ++i) {
            if (Aliases_[i].isEmpty())
                ++count[Definition(i).Name.toCaseFolded()];
        }
        for (qsizetype i = 0; i < Aliases_.size(); ++i) {
            engine::Column& column = Definition(i);
            if (!Aliases_[i].isEmpty()) {
                column.Name = Aliases_[i];
            } else if (count.value(column.Name.toCaseFolded()) > 1) {
                const int source = Shape().Columns[static_cast<std::size_t>(i)].Source;
                column.Name = Expressions_.Sources()[static_cast<std::size_t>(source)].Qualifier + u'.' + column.Name;
            }
        }
    }

    engine::Column& Definition(qsizetype place) { return Shape().Columns[static_cast<std::size_t>(place)].Definition; }

    /// A name that is no column may be that of a value in the list.
    const Expression& SortedBy(const Expression& value) const
    {
        const auto* name = std::get_if<jetsql::Name>(&value.Node);
        if (name == nullptr || !name->Table.isEmpty() || Expressions_.Resolve(*name, value.Position))
            return value;
        for (const SelectItem& item : Statement_.Items) {
            if (item.Value && item.Alias.compare(name->Field, Qt::CaseInsensitive) == 0)
                return *item.Value;
        }
        return value;
    }

    const SelectStatement& Statement_;
    ExpressionBinder Expressions_;
    BoundSelect Result_;
    QStringList Aliases_; ///< Of each column; empty for one that has its field's name.
};

const Expression* WhereOf(const jetsql::Statement& statement)
{
    const auto* update = std::get_if<jetsql::UpdateStatement>(&statement);
    const std::optional<Expression>& where =
        update != nullptr ? update->Where : std::get<jetsql::DeleteStatement>(statement).Where;
    return where ? &*where : nullptr;
}

void BindAssignments(ExpressionBinder& expressions, const jetsql::UpdateStatement& update, BoundChange& change)
{
    QSet<int> assigned;
    for (const jetsql::Assignment& assignment : update.Assignments) {
        const auto column = expressions.Resolve(assignment.Column, assignment.Position);
        if (!column)
            throw Error(errTooFewParameters, QStringLiteral("The name '%1' at character %2 of the query is no column.")
                                                 .arg(assignment.Column.Field)
                                                 .arg(assignment.Position + 1));
        if (assigned.contains(column->Column))
            RaiseSyntaxError(QStringLiteral("the same column is set twice"), assignment.Position);
        assigned.insert(column->Column);
        BoundExpression value = expressions.Value(assignment.Value);
        if (value.Type == ValueType::Date && TypeOf(expressions.ColumnAt(*column).Type) == ValueType::Text)
            RaiseTypeMismatch(assignment.Value.Position);
        change.Assignments.push_back({column->Column, std::move(value)});
    }
}

bool IsInPrimaryKey(const engine::Table& table, int column)
{
    return std::any_of(table.Indexes.begin(), table.Indexes.end(), [column](const engine::IndexKey& index) {
        return index.Primary && std::find(index.Columns.begin(), index.Columns.end(), column) != index.Columns.end();
    });
}

} // namespace

BoundSelect BindSelect(const SelectStatement& statement, const engine::Schema& schema)
{
    return SelectBinder(statement, schema).Bind();
}

BoundChange BindChange(const jetsql::Statement& statement, const engine::Schema& schema)
{
    const auto* update = std::get_if<jetsql::UpdateStatement>(&statement);
    const auto* erase = std::get_if<jetsql::DeleteStatement>(&statement);
    if (update == nullptr && erase == nullptr)
        throw Error(errNotSupported, QStringLiteral("Cannot execute a select query."));
    BoundChange change;
    ExpressionBinder expressions(schema);
    expressions.AddSource(update != nullptr ? update->Table : erase->Table);
    if (update != nullptr)
        BindAssignments(expressions, *update, change);
    if (const Expression* where = WhereOf(statement))
        change.Where = expressions.Condition(*where);
    change.Source = std::move(expressions.TakeSources().front());
    change.Parameters = expressions.TakeParameters();
    return change;
}

BoundChange BindChangeToRun(const jetsql::Statement& statement, const engine::Schema& schema)
{
    BoundChange change = BindChange(statement, schema);
    for (const BoundAssignment& assignment : change.Assignments) {
        const engine::Column& column = change.Source.Table->Columns[static_cast<std::size_t>(assignment.Column)];
        if (column.IsCounter())
            throw Error(errNotSupported,
                        QStringLiteral("The automatic counter '%1' cannot be changed.").arg(column.Name));
    }
    return change;
}

QStringList ParametersOf(const jetsql::Statement& statement, const engine::Schema& schema)
{
    if (const auto* select = std::get_if<SelectStatement>(&statement))
        return BindSelect(*select, schema).Parameters.Names;
    return BindChange(statement, schema).Parameters.Names;
}

bool ChangesPrimaryKey(const BoundChange& change)
{
    return std::any_of(change.Assignments.begin(), change.Assignments.end(), [&](const BoundAssignment& assignment) {
        return IsInPrimaryKey(*change.Source.Table, assignment.Column);
    });
}

} // namespace dao::query
