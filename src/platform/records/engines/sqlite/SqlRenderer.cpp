// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/SqlRenderer.h"

#include "platform/records/Error.h"
#include "platform/records/engines/sqlite/ExpressionRenderer.h"

#include <QSet>

#include <algorithm>

namespace dao::sqlite
{

using jetsql::Expression;
using jetsql::SelectItem;
using jetsql::SelectStatement;
using jetsql::TableReference;

namespace
{
[[noreturn]] void RaiseSyntaxError(const QString& reason, qsizetype position)
{
    throw Error(errSyntax,
                QStringLiteral("Syntax error in the query: %1, at character %2.").arg(reason).arg(position + 1));
}

const TableInfo& TableOf(const Schema& schema, const TableReference& reference)
{
    const TableInfo* table = schema.FindTable(reference.Table);
    if (table == nullptr)
        throw Error(errTableNotFound,
                    QStringLiteral("The input table or query '%1' cannot be found.").arg(reference.Table));
    return *table;
}

QByteArray TableText(const ScopeTable& table)
{
    return QuoteName(table.Table->Name) + " AS " + QuoteName(table.Qualifier);
}

class SelectRenderer
{
public:
    SelectRenderer(const SelectStatement& statement, const Schema& schema, const SelectOptions& options)
        : Statement_(statement), Schema_(schema), Options_(options), Expressions_(Result_)
    {
    }

    RenderedSelect Render()
    {
        // The sources come first, for everything else is named after them.
        const QByteArray source = RenderSource();
        RenderLeadingColumns();
        for (const SelectItem& item : Statement_.Items)
            RenderItem(item);
        CheckAggregates();
        NameColumns();
        Result_.Updatable =
            Statement_.Joins.empty() && std::all_of(Result_.Columns.begin(), Result_.Columns.end(),
                                                    [](const OutputColumn& column) { return column.TableIndex >= 0; });
        if (Selected_.isEmpty())
            Selected_.append("NULL");
        Result_.Text = "SELECT " + Selected_.join(", ") + source;
        if (Statement_.Where)
            Result_.Text += " WHERE " + Expressions_.Condition(*Statement_.Where);
        RenderOrder();
        if (Statement_.Top)
            Result_.Text += " LIMIT " + QByteArray::number(*Statement_.Top);
        return std::move(Result_);
    }

private:
    QByteArray RenderSource()
    {
        QByteArray text = " FROM " + AddTable(Statement_.From);
        for (const jetsql::Join& join : Statement_.Joins) {
            text += join.Kind == jetsql::JoinKind::Left ? " LEFT JOIN " : " INNER JOIN ";
            text += AddTable(join.Table);
            text += " ON " + Expressions_.Condition(join.Condition);
        }
        return text;
    }

    QByteArray AddTable(const TableReference& reference)
    {
        const TableInfo& table = TableOf(Schema_, reference);
        Expressions_.AddTable(table, reference);
        Result_.Tables.append(table.Name);
        return TableText(Expressions_.Tables().back());
    }

    void RenderLeadingColumns()
    {
        for (const ScopeTable& table : Expressions_.Tables()) {
            for (const QString& column : Options_.LeadingColumns)
                Selected_.append(QuoteName(table.Qualifier) + '.' + QuoteName(column));
        }
    }

    void RenderItem(const SelectItem& item)
    {
        switch (item.ItemKind) {
        case SelectItem::Kind::AllColumns:
            for (std::size_t i = 0; i < Expressions_.Tables().size(); ++i)
                AddTableColumns(static_cast<int>(i));
            return;
        case SelectItem::Kind::TableColumns: {
            const int table = Expressions_.FindTable(item.Table);
            if (table < 0)
                throw Error(errTableNotFound,
                            QStringLiteral("The input table or query '%1' cannot be found.").arg(item.Table));
            AddTableColumns(table);
            return;
        }
        case SelectItem::Kind::Value:
            AddValue(item);
            return;
        }
    }

    void AddTableColumns(int table)
    {
        for (const ColumnInfo& column : Expressions_.Tables()[static_cast<std::size_t>(table)].Table->Columns)
            AddColumn({table, &column}, QString());
    }

    void AddColumn(const ColumnReference& reference, const QString& alias)
    {
        const ColumnInfo& column = *reference.Column;
        const bool isLeftOut = Options_.Columns == SelectOptions::Output::None ||
                               (Options_.Columns == SelectOptions::Output::WithoutMemos && column.Type == dbMemo);
        OutputColumn output{alias,
                            Expressions_.Tables()[static_cast<std::size_t>(reference.TableIndex)].Table->Name,
                            column.Name,
                            reference.TableIndex,
                            column.Type,
                            column.Size,
                            column.AllowZeroLength,
                            column.Attributes,
                            -1};
        if (!isLeftOut) {
            output.SqlColumn = static_cast<int>(Selected_.size());
            Selected_.append(Expressions_.Column(reference));
        }
        Result_.Columns.push_back(std::move(output));
    }

    void AddValue(const SelectItem& item)
    {
        if (const jetsql::Name* name = std::get_if<jetsql::Name>(&item.Value->Node)) {
            if (const auto reference = Expressions_.Resolve(*name, item.Position)) {
                AddColumn(*reference, item.Alias);
                return;
            }
        }
        HasAggregate_ = HasAggregate_ || std::holds_alternative<jetsql::Aggregate>(item.Value->Node);
        OutputColumn output{item.Alias, QString(), QString(), -1, dbDouble, 0, false, 0, -1};
        if (Options_.Columns != SelectOptions::Output::None) {
            const Piece value = Expressions_.Value(*item.Value);
            output.Type = OutputType(*item.Value, value.Type);
            output.SqlColumn = static_cast<int>(Selected_.size());
            Selected_.append(value.Text);
        }
        if (output.Name.isEmpty())
            output.Name = QStringLiteral("Expr%1").arg(1000 + Result_.Columns.size());
        Result_.Columns.push_back(std::move(output));
    }

    /// A computed text may be of any length, so it counts as a memo.
    static DataTypeEnum OutputType(const Expression& value, ValueType type)
    {
        const jetsql::Aggregate* aggregate = std::get_if<jetsql::Aggregate>(&value.Node);
        if (aggregate != nullptr && aggregate->Function == jetsql::AggregateFunction::Count)
            return dbLong;
        switch (type) {
        case ValueType::Date:
            return dbDate;
        case ValueType::Number:
            return dbDouble;
        default:
            return dbMemo;
        }
    }

    void CheckAggregates() const
    {
        if (!HasAggregate_)
            return;
        if (!Options_.LeadingColumns.isEmpty())
            throw Error(errNotSupported, QStringLiteral("The rows of a query with COUNT, MAX, MIN or SUM are no rows "
                                                        "of a table."));
        for (const SelectItem& item : Statement_.Items) {
            if (!item.Value || !std::holds_alternative<jetsql::Aggregate>(item.Value->Node))
                RaiseSyntaxError(QStringLiteral("a column cannot stand beside COUNT, MAX, MIN or SUM"), item.Position);
        }
    }

    /// Fields of the same name bear their table's as well.
    void NameColumns()
    {
        QHash<QString, int> count;
        for (const OutputColumn& column : Result_.Columns) {
            if (column.Name.isEmpty())
                ++count[column.Field.toCaseFolded()];
        }
        for (OutputColumn& column : Result_.Columns) {
            if (!column.Name.isEmpty())
                continue;
            const QString& table = Expressions_.Tables()[static_cast<std::size_t>(column.TableIndex)].Qualifier;
            column.Name = count.value(column.Field.toCaseFolded()) > 1 ? table + u'.' + column.Field : column.Field;
        }
    }

    void RenderOrder()
    {
        QByteArrayList terms;
        for (const jetsql::SortTerm& term : Statement_.OrderBy) {
            QByteArray text = Expressions_.Comparable(SortedBy(term.Value));
            if (term.Direction == jetsql::SortDirection::Descending)
                text += " DESC";
            terms.append(text);
        }
        if (!terms.isEmpty())
            Result_.Text += " ORDER BY " + terms.join(", ");
    }

    /// A name that is no column may be that of a value in the list.
    const Expression& SortedBy(const Expression& value) const
    {
        const jetsql::Name* name = std::get_if<jetsql::Name>(&value.Node);
        if (name == nullptr || !name->Table.isEmpty() || Expressions_.Resolve(*name, value.Position))
            return value;
        for (const SelectItem& item : Statement_.Items) {
            if (item.Value && item.Alias.compare(name->Field, Qt::CaseInsensitive) == 0)
                return *item.Value;
        }
        return value;
    }

    const SelectStatement& Statement_;
    const Schema& Schema_;
    const SelectOptions& Options_;
    RenderedSelect Result_;
    ExpressionRenderer Expressions_;
    QByteArrayList Selected_;
    bool HasAggregate_ = false;
};

QByteArray AssignedValue(ExpressionRenderer& expressions, const jetsql::Assignment& assignment,
                         const ColumnInfo& column)
{
    const Piece value = expressions.Value(assignment.Value);
    if (value.Type == ValueType::Date && ExpressionRenderer::TypeOf(column.Type) == ValueType::Text)
        RaiseTypeMismatch(assignment.Value.Position);
    return "jet_store(" + value.Text + ", " + QByteArray::number(column.Type) + ", " + QByteArray::number(column.Size) +
           ", " + (column.AllowZeroLength ? "1)" : "0)");
}
} // namespace

RenderedSelect RenderSelect(const SelectStatement& statement, const Schema& schema, const SelectOptions& options)
{
    return SelectRenderer(statement, schema, options).Render();
}

RenderedSql RenderUpdate(const jetsql::UpdateStatement& statement, const Schema& schema,
                         const QByteArray& hiddenAssignments)
{
    RenderedSql result;
    ExpressionRenderer expressions(result);
    expressions.AddTable(TableOf(schema, statement.Table), statement.Table);
    QByteArrayList assignments;
    QSet<const ColumnInfo*> assigned;
    for (const jetsql::Assignment& assignment : statement.Assignments) {
        const auto reference = expressions.Resolve(assignment.Column, assignment.Position);
        if (!reference)
            throw Error(errTooFewParameters, QStringLiteral("The name '%1' at character %2 of the query is no column.")
                                                 .arg(assignment.Column.Field)
                                                 .arg(assignment.Position + 1));
        if (assigned.contains(reference->Column))
            RaiseSyntaxError(QStringLiteral("the same column is set twice"), assignment.Position);
        assigned.insert(reference->Column);
        const QByteArray value = AssignedValue(expressions, assignment, *reference->Column);
        assignments.append(QuoteName(reference->Column->Name) + " = " + value);
        if (!reference->Column->CheckColumn.isEmpty())
            assignments.append(reference->Column->CheckColumn + " = jet_check(" + value + ", _rowid_)");
    }
    if (!hiddenAssignments.isEmpty())
        assignments.append(hiddenAssignments);
    result.Text = "UPDATE " + TableText(expressions.Tables().front()) + " SET " + assignments.join(", ");
    if (statement.Where)
        result.Text += " WHERE " + expressions.Condition(*statement.Where);
    return result;
}

RenderedSql RenderDelete(const jetsql::DeleteStatement& statement, const Schema& schema)
{
    RenderedSql result;
    ExpressionRenderer expressions(result);
    expressions.AddTable(TableOf(schema, statement.Table), statement.Table);
    result.Text = "DELETE FROM " + TableText(expressions.Tables().front());
    if (statement.Where)
        result.Text += " WHERE " + expressions.Condition(*statement.Where);
    return result;
}

QByteArray QuoteName(const QString& name)
{
    return '"' + name.toUtf8().replace('"', "\"\"") + '"';
}

} // namespace dao::sqlite
