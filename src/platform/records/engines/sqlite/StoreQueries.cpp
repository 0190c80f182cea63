// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RowMark.h"
#include "platform/records/engines/sqlite/FileFormat.h"
#include "platform/records/engines/sqlite/SchemaTables.h"
#include "platform/records/engines/sqlite/SqlFunctions.h"
#include "platform/records/engines/sqlite/SqlRenderer.h"
#include "platform/records/engines/sqlite/StoreScopes.h"
#include "platform/records/query/Binder.h"
#include "platform/records/query/Evaluator.h"
#include "platform/records/query/ParameterTable.h"

#include <algorithm>
#include <cstring>

/// Queries: the bound tree is rendered as SQL and run.
namespace dao::sqlite
{

using engine::ParameterValues;
using engine::ResultPart;

namespace
{

/// The values of a run, which must live until it ends.
class Bound
{
public:
    Bound(StatementUse& use, const RenderedSql& sql, const query::BoundParameters& names,
          const ParameterValues& parameters, sqlite3* connection)
        : Parameters_(names, parameters)
    {
        int place = 0;
        for (const Binding& binding : sql.Bindings) {
            ++place;
            if (const auto* pattern = std::get_if<std::shared_ptr<const jetsql::LikePattern>>(&binding)) {
                const int code = BindLikePattern(use.Handle(), place, *pattern);
                if (code != SQLITE_OK)
                    throw ErrorOf(code, QString::fromUtf8(sqlite3_errmsg(connection)), QString());
            } else if (const auto* parameter = std::get_if<query::BoundParameter>(&binding)) {
                use.Bind(place, Parameters_.At(*parameter));
            } else {
                use.Bind(place, std::get<StoredValue>(binding));
            }
        }
    }

private:
    query::ParameterTable Parameters_;
};

RenderedSelect Render(const query::BoundSelect& select, ResultPart part)
{
    SelectOptions options;
    options.Columns = part == ResultPart::Keys ? SelectOptions::Output::None : SelectOptions::Output::WithoutMemos;
    if (select.Shape.HasKeys)
        options.LeadingColumns = QStringList{QString::fromLatin1(RowIdName)};
    else
        options.Columns = SelectOptions::Output::AllColumns;
    return RenderSelect(select, options);
}

/// Queries come from people: what SQLite refuses in one is a query too complex, not a damaged file.
Statement PrepareQuery(Connection& connection, const QByteArray& text)
{
    sqlite3_stmt* probe = nullptr;
    const int code =
        sqlite3_prepare_v2(connection.Handle(), text.constData(), static_cast<int>(text.size()) + 1, &probe, nullptr);
    sqlite3_finalize(probe);
    if (code == SQLITE_ERROR || code == SQLITE_TOOBIG) {
        throw Error(errSyntax, QStringLiteral("Syntax error in query expression: %1.")
                                   .arg(QString::fromUtf8(sqlite3_errmsg(connection.Handle()))));
    }
    return {connection, text};
}

/// Steps a query; a value that did not fit its column says so through SQLite's error message.
bool StepQuery(StatementUse& use, sqlite3* connection)
{
    try {
        return use.Step();
    } catch (const Error&) {
        const char* const message = sqlite3_errmsg(connection);
        if (const auto unfit = StoredValueError(message))
            throw Error(*unfit);
        // What SQLite says of a sum of whole numbers beyond 64 bits.
        if (std::strcmp(message, "integer overflow") == 0)
            throw query::SumOverflow();
        throw;
    }
}

/// An UPDATE or DELETE, ready to run.
struct Change
{
    query::BoundChange Bound;
    RenderedSql Sql;
};

Change PrepareChange(const jetsql::Statement& statement, const engine::Schema& schema, bool hasChecks)
{
    Change change{query::BindChangeToRun(statement, schema), {}};
    QByteArray hidden = QByteArray(VersionColumn) + " = " + VersionColumn + " + 1";
    const std::vector<engine::Column>& columns = change.Bound.Source.Table->Columns;
    const auto isMemo = [&](const query::BoundAssignment& assignment) {
        return columns[static_cast<std::size_t>(assignment.Column)].IsMemo();
    };
    if (std::any_of(change.Bound.Assignments.begin(), change.Bound.Assignments.end(), isMemo))
        hidden += QByteArrayLiteral(", ") + OctetsColumn + " = NULL";
    change.Sql = RenderChange(change.Bound, hidden, hasChecks);
    return change;
}

} // namespace

engine::ResultShape SqliteStore::Describe(const jetsql::SelectStatement& select)
{
    return query::BindSelect(select, *CurrentSchema()).Shape;
}

void SqliteStore::Select(const jetsql::SelectStatement& select, const ParameterValues& parameters, ResultPart part,
                         const engine::RowSink& sink)
{
    const query::BoundSelect bound = query::BindSelect(select, *CurrentSchema());
    const RenderedSelect rendered = Render(bound, part);
    Connection_.StartWaiting();
    const Statement statement = PrepareQuery(Connection_, rendered.Text);
    StatementUse use(statement);
    const Bound values(use, rendered, bound.Parameters, parameters, Connection_.Handle());
    const std::size_t keyCount = bound.Shape.HasKeys ? bound.Sources.size() : 0;
    std::vector<qint64> keys(keyCount);
    std::string cells;
    while (StepQuery(use, Connection_.Handle())) {
        for (std::size_t i = 0; i < keyCount; ++i)
            keys[i] = use.IsNull(static_cast<int>(i)) ? engine::NoRow : use.Integer(static_cast<int>(i));
        cells.clear();
        if (part == ResultPart::Values) {
            RowPacker packer(cells);
            for (const int column : rendered.SqlColumns) {
                if (column < 0)
                    packer.AddDeferred();
                else
                    use.PackCell(column, packer);
            }
        }
        sink(keys, cells);
    }
}

quint64 SqliteStore::MarkOf(const jetsql::SelectStatement& select)
{
    const query::BoundSelect bound = query::BindSelect(select, *CurrentSchema());
    if (!bound.Shape.HasKeys)
        return Store::MarkOf(select);
    // A function within SQLite meets the cells where they lie.
    SelectOptions options;
    options.Columns = SelectOptions::Output::Mark;
    const RenderedSelect rendered = RenderSelect(bound, options);
    Connection_.StartWaiting();
    const Statement statement = PrepareQuery(Connection_, rendered.Text);
    StatementUse use(statement);
    const Bound values(use, rendered, bound.Parameters, {}, Connection_.Handle());
    RowMark mark;
    while (StepQuery(use, Connection_.Handle()))
        mark.Add(static_cast<quint64>(use.Integer(0)));
    return mark.Number();
}

int SqliteStore::Execute(const jetsql::Statement& statement, const ParameterValues& parameters)
{
    const engine::SchemaPtr schema = CurrentSchema();
    const bool hadChecks = HasChecks_;
    Change change = PrepareChange(statement, *schema, hadChecks);
    WriteScope scope(*this);
    // Somebody may have given the file another layout before the lock was had.
    if (SchemaUnderLock() != schema || HasChecks_ != hadChecks)
        change = PrepareChange(statement, *Schema_, HasChecks_);
    int count = 0;
    {
        const Statement prepared = PrepareQuery(Connection_, change.Sql.Text);
        StatementUse use(prepared);
        const Bound values(use, change.Sql, change.Bound.Parameters, parameters, Connection_.Handle());
        while (StepQuery(use, Connection_.Handle())) {
        }
        count = Connection_.Changes();
    }
    if (query::ChangesPrimaryKey(change.Bound))
        CheckNoNullInPrimaryKey(*change.Bound.Source.Table);
    scope.Commit();
    return count;
}

void SqliteStore::CheckNoNullInPrimaryKey(const engine::Table& table)
{
    for (const engine::IndexKey& index : table.Indexes) {
        if (!index.Primary)
            continue;
        for (const int place : index.Columns) {
            const QByteArray column = QuoteName(table.Columns[static_cast<std::size_t>(place)].Name);
            const QByteArray probe =
                "SELECT EXISTS (SELECT 1 FROM " + QuoteName(table.Name) + " WHERE " + column + " IS NULL)";
            if (Connection_.Number(probe.constData()) != 0) {
                throw Error(errInvalidUseOfNull,
                            QStringLiteral("Invalid use of Null: index or primary key cannot contain a Null value."));
            }
        }
    }
}

QStringList SqliteStore::ParametersOf(const jetsql::Statement& statement)
{
    return query::ParametersOf(statement, *CurrentSchema());
}

} // namespace dao::sqlite
