// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/SqlRenderer.h"

#include "platform/records/Error.h"
#include "platform/records/engines/sqlite/ExpressionRenderer.h"
#include "platform/records/engines/sqlite/SchemaTables.h"

namespace dao::sqlite
{

using query::BoundSource;

namespace
{
QByteArray TableText(const BoundSource& source)
{
    return QuoteName(source.Table->Name) + " AS " + QuoteName(source.Qualifier);
}

class SelectRenderer
{
public:
    SelectRenderer(const query::BoundSelect& select, const SelectOptions& options)
        : Select_(select), Options_(options), Expressions_(select.Sources, Result_)
    {
    }

    RenderedSelect Render()
    {
        if (!Select_.Shape.HasKeys && !Options_.LeadingColumns.isEmpty())
            throw Error(errNotSupported, QStringLiteral("The rows of a query with COUNT, MAX, MIN or SUM are no rows "
                                                        "of a table."));
        const QByteArray source = RenderSource();
        const QByteArrayList selected = RenderOutputs();
        Result_.Text = "SELECT " + selected.join(", ") + source;
        if (Select_.Where)
            Result_.Text += " WHERE " + Expressions_.Condition(*Select_.Where);
        RenderOrder();
        if (Select_.Top)
            Result_.Text += " LIMIT " + QByteArray::number(*Select_.Top);
        return std::move(Result_);
    }

private:
    QByteArray RenderSource()
    {
        QByteArray text = " FROM " + TableText(Select_.Sources.front());
        for (std::size_t i = 1; i < Select_.Sources.size(); ++i) {
            const BoundSource& source = Select_.Sources[i];
            text += source.Kind == jetsql::JoinKind::Left ? " LEFT JOIN " : " INNER JOIN ";
            text += TableText(source) + " ON " + Expressions_.Condition(*source.Condition);
        }
        return text;
    }

    QByteArrayList RenderOutputs()
    {
        QByteArrayList selected;
        for (const BoundSource& source : Select_.Sources) {
            for (const QString& column : Options_.LeadingColumns)
                selected.append(QuoteName(source.Qualifier) + '.' + QuoteName(column));
        }
        for (std::size_t i = 0; i < Select_.Outputs.size(); ++i) {
            if (IsLeftOut(Select_.Shape.Columns[i])) {
                Result_.SqlColumns.push_back(-1);
                if (Options_.Columns == SelectOptions::Output::Mark)
                    selected.append("NULL");
                continue;
            }
            Result_.SqlColumns.push_back(static_cast<int>(selected.size()));
            selected.append(Expressions_.Value(Select_.Outputs[i]).Text);
        }
        if (Options_.Columns == SelectOptions::Output::Mark)
            return {"jet_mark(" + selected.join(", ") + ')'};
        if (selected.isEmpty())
            selected.append("NULL");
        return selected;
    }

    bool IsLeftOut(const engine::ResultColumn& column) const
    {
        return Options_.Columns == SelectOptions::Output::None ||
               (Options_.Columns != SelectOptions::Output::AllColumns && column.Source >= 0 &&
                column.Definition.IsMemo());
    }

    void RenderOrder()
    {
        QByteArrayList terms;
        for (const query::BoundSortTerm& term : Select_.OrderBy) {
            QByteArray text = Expressions_.Comparable(term.Value);
            if (term.Direction == jetsql::SortDirection::Descending)
                text += " DESC";
            terms.append(text);
        }
        if (!terms.isEmpty())
            Result_.Text += " ORDER BY " + terms.join(", ");
    }

    const query::BoundSelect& Select_;
    const SelectOptions& Options_;
    RenderedSelect Result_;
    ExpressionRenderer Expressions_;
};

QByteArray AssignedValue(ExpressionRenderer& expressions, const query::BoundExpression& value,
                         const engine::Column& column)
{
    return "jet_store(" + expressions.Value(value).Text + ", " + QByteArray::number(column.Type) + ", " +
           QByteArray::number(column.Size) + ", " + (column.AllowZeroLength ? "1)" : "0)");
}
} // namespace

RenderedSelect RenderSelect(const query::BoundSelect& select, const SelectOptions& options)
{
    return SelectRenderer(select, options).Render();
}

RenderedSql RenderChange(const query::BoundChange& change, const QByteArray& hiddenAssignments, bool hasChecks)
{
    RenderedSql result;
    const std::vector<BoundSource> sources{change.Source};
    ExpressionRenderer expressions(sources, result);
    QByteArrayList assignments;
    for (const query::BoundAssignment& assignment : change.Assignments) {
        const engine::Column& column = change.Source.Table->Columns[static_cast<std::size_t>(assignment.Column)];
        const QByteArray value = AssignedValue(expressions, assignment.Value, column);
        assignments.append(QuoteName(column.Name) + " = " + value);
        if (hasChecks && column.IsMemo())
            assignments.append(CheckColumn(column) + " = jet_check(" + value + ", _rowid_)");
    }
    if (assignments.isEmpty()) {
        result.Text = "DELETE FROM " + TableText(change.Source);
    } else {
        if (!hiddenAssignments.isEmpty())
            assignments.append(hiddenAssignments);
        result.Text = "UPDATE " + TableText(change.Source) + " SET " + assignments.join(", ");
    }
    if (change.Where)
        result.Text += " WHERE " + expressions.Condition(*change.Where);
    return result;
}

QByteArray QuoteName(const QString& name)
{
    return '"' + name.toUtf8().replace('"', "\"\"") + '"';
}

} // namespace dao::sqlite
