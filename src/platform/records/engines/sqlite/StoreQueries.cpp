// SPDX-License-Identifier: Apache-2.0
#include "platform/records/TextCodec.h"
#include "platform/records/Values.h"
#include "platform/records/engines/sqlite/FileFormat.h"
#include "platform/records/engines/sqlite/SchemaTables.h"
#include "platform/records/engines/sqlite/SqlFunctions.h"
#include "platform/records/engines/sqlite/SqlRenderer.h"
#include "platform/records/engines/sqlite/StoreScopes.h"

#include <algorithm>

/// Queries: the syntax tree is rendered as SQL and run.
namespace dao::sqlite
{

using engine::ParameterValues;
using engine::ResultColumn;
using engine::ResultPart;
using engine::ResultShape;

namespace
{

/// The schema as the renderer asks for it.
class RendererSchema final : public Schema
{
public:
    RendererSchema(const engine::Schema& schema, bool hasChecks) : Schema_(schema), HasChecks_(hasChecks) {}

    const TableInfo* FindTable(const QString& name) const override
    {
        const engine::TablePtr table = Schema_.Find(name);
        if (!table)
            return nullptr;
        for (const auto& known : Known_) {
            if (known->Name == table->Name)
                return known.get();
        }
        auto info = std::make_unique<TableInfo>();
        info->Name = table->Name;
        for (const engine::Column& column : table->Columns) {
            ColumnInfo& described = info->Columns.emplace_back();
            described.Name = column.Name;
            described.Type = column.Type;
            described.Size = column.Size;
            described.AllowZeroLength = column.AllowZeroLength;
            described.Attributes = column.Attributes;
            if (HasChecks_ && column.IsMemo())
                described.CheckColumn = CheckColumn(column);
        }
        return Known_.emplace_back(std::move(info)).get();
    }

private:
    const engine::Schema& Schema_;
    bool HasChecks_;
    mutable std::vector<std::unique_ptr<TableInfo>> Known_;
};

/// A constant or a parameter's value, bound as what it is.
StoredValue ToStored(const QVariant& value)
{
    engine::Column column;
    column.Name = QStringLiteral("of the query");
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return {};
    case QMetaType::Bool:
        return value.toBool() ? qint64{-1} : qint64{0};
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        return static_cast<qint64>(value.toLongLong());
    case QMetaType::QString:
        return TextToUtf8(value.toString());
    case QMetaType::QDateTime:
    case QMetaType::QDate:
    case QMetaType::QTime:
        column.Type = dbDate;
        return ToStoredValue(value, column);
    default:
        column.Type = dbDouble;
        return ToStoredValue(value, column);
    }
}

/// The values of a run, which must live until it ends.
class Bound
{
public:
    Bound(StatementUse& use, const RenderedSql& sql, const ParameterValues& parameters, sqlite3* connection)
    {
        Values_.reserve(sql.Bindings.size());
        int place = 0;
        for (const Binding& binding : sql.Bindings) {
            ++place;
            if (const auto* pattern = std::get_if<std::shared_ptr<const jetsql::LikePattern>>(&binding)) {
                const int code = BindLikePattern(use.Handle(), place, *pattern);
                if (code != SQLITE_OK)
                    throw ErrorOf(code, QString::fromUtf8(sqlite3_errmsg(connection)), QString());
                continue;
            }
            const auto* named = std::get_if<NamedParameter>(&binding);
            Values_.push_back(
                ToStored(named != nullptr ? ValueOf(sql, *named, parameters) : std::get<QVariant>(binding)));
            use.Bind(place, Values_.back());
        }
    }

private:
    static QVariant ValueOf(const RenderedSql& sql, const NamedParameter& named, const ParameterValues& parameters)
    {
        const QString& name = sql.Parameters.at(named.Index);
        for (const engine::ParameterValue& parameter : parameters) {
            if (parameter.Name.compare(name, Qt::CaseInsensitive) == 0)
                return parameter.Value;
        }
        throw Error(errTooFewParameters,
                    QStringLiteral("Too few parameters. There is no field or value '%1'.").arg(name));
    }

    std::vector<StoredValue> Values_;
};

bool HasAggregate(const jetsql::SelectStatement& select)
{
    return std::any_of(select.Items.begin(), select.Items.end(), [](const jetsql::SelectItem& item) {
        return item.Value && std::holds_alternative<jetsql::Aggregate>(item.Value->Node);
    });
}

RenderedSelect Render(const jetsql::SelectStatement& select, const engine::Schema& schema, ResultPart part)
{
    SelectOptions options;
    options.Columns = part == ResultPart::Keys ? SelectOptions::Output::None : SelectOptions::Output::WithoutMemos;
    if (HasAggregate(select))
        options.Columns = SelectOptions::Output::AllColumns;
    else
        options.LeadingColumns = QStringList{QString::fromLatin1(RowIdName)};
    return RenderSelect(select, RendererSchema(schema, false), options);
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
        const auto unfit = StoredValueError(sqlite3_errmsg(connection));
        if (unfit)
            throw Error(*unfit);
        throw;
    }
}

/// An UPDATE or DELETE, ready to run.
struct Change
{
    RenderedSql Sql;
    engine::TablePtr Table; ///< Of an UPDATE.
    bool ChangesPrimaryKey = false;
};

bool IsInPrimaryKey(const engine::Table& table, int place)
{
    return std::any_of(table.Indexes.begin(), table.Indexes.end(), [place](const engine::IndexKey& index) {
        return index.Primary && std::find(index.Columns.begin(), index.Columns.end(), place) != index.Columns.end();
    });
}

Change RenderChange(const jetsql::Statement& statement, const engine::Schema& schema, bool hasChecks)
{
    const RendererSchema rendererSchema(schema, hasChecks);
    Change change;
    if (const auto* erase = std::get_if<jetsql::DeleteStatement>(&statement)) {
        change.Sql = RenderDelete(*erase, rendererSchema);
        return change;
    }
    const auto* update = std::get_if<jetsql::UpdateStatement>(&statement);
    if (update == nullptr)
        throw Error(errNotSupported, QStringLiteral("Cannot execute a select query."));
    change.Table = schema.Find(update->Table.Table);
    QByteArray hidden = QByteArray(VersionColumn) + " = " + VersionColumn + " + 1";
    for (const jetsql::Assignment& assignment : update->Assignments) {
        const int place = change.Table ? change.Table->FindColumn(assignment.Column.Field) : -1;
        if (place < 0)
            continue;
        const engine::Column& column = change.Table->Columns[static_cast<std::size_t>(place)];
        if (column.IsCounter()) {
            throw Error(errNotSupported,
                        QStringLiteral("The automatic counter '%1' cannot be changed.").arg(column.Name));
        }
        if (column.IsMemo() && !hidden.contains(OctetsColumn))
            hidden += QByteArrayLiteral(", ") + OctetsColumn + " = NULL";
        change.ChangesPrimaryKey = change.ChangesPrimaryKey || IsInPrimaryKey(*change.Table, place);
    }
    change.Sql = RenderUpdate(*update, rendererSchema, hidden);
    return change;
}

} // namespace

ResultShape SqliteStore::Describe(const jetsql::SelectStatement& select)
{
    const engine::SchemaPtr schema = CurrentSchema();
    const RenderedSelect rendered = Render(select, *schema, ResultPart::Values);
    ResultShape shape;
    for (const QString& name : rendered.Tables)
        shape.Sources.push_back(schema->Find(name));
    for (const OutputColumn& output : rendered.Columns) {
        ResultColumn& column = shape.Columns.emplace_back();
        column.Definition = {output.Name, output.Type, output.Size, output.Attributes, output.AllowZeroLength};
        if (output.TableIndex >= 0) {
            column.Source = output.TableIndex;
            column.SourceColumn = shape.Sources[static_cast<std::size_t>(output.TableIndex)]->FindColumn(output.Field);
        }
    }
    shape.Updatable = rendered.Updatable;
    shape.Parameters = rendered.Parameters;
    shape.HasKeys = !HasAggregate(select);
    return shape;
}

void SqliteStore::Select(const jetsql::SelectStatement& select, const ParameterValues& parameters, ResultPart part,
                         const engine::RowSink& sink)
{
    const RenderedSelect rendered = Render(select, *CurrentSchema(), part);
    Connection_.StartWaiting();
    const Statement statement = PrepareQuery(Connection_, rendered.Text);
    StatementUse use(statement);
    const Bound bound(use, rendered, parameters, Connection_.Handle());
    const bool hasKeys = !HasAggregate(select);
    const std::size_t keyCount = hasKeys ? rendered.Tables.size() : 0;
    std::vector<qint64> keys(keyCount);
    std::string cells;
    while (StepQuery(use, Connection_.Handle())) {
        for (std::size_t i = 0; i < keyCount; ++i)
            keys[i] = use.IsNull(static_cast<int>(i)) ? engine::NoRow : use.Integer(static_cast<int>(i));
        cells.clear();
        if (part == ResultPart::Values) {
            RowPacker packer(cells);
            for (const OutputColumn& column : rendered.Columns) {
                if (column.SqlColumn < 0)
                    packer.AddDeferred();
                else
                    use.PackCell(column.SqlColumn, packer);
            }
        }
        sink(keys, cells);
    }
}

int SqliteStore::Execute(const jetsql::Statement& statement, const ParameterValues& parameters)
{
    const engine::SchemaPtr schema = CurrentSchema();
    const bool hadChecks = HasChecks_;
    Change change = RenderChange(statement, *schema, hadChecks);
    WriteScope scope(*this);
    // Somebody may have given the file another layout before the lock was had.
    if (SchemaUnderLock() != schema || HasChecks_ != hadChecks)
        change = RenderChange(statement, *Schema_, HasChecks_);
    int count = 0;
    {
        const Statement prepared = PrepareQuery(Connection_, change.Sql.Text);
        StatementUse use(prepared);
        const Bound bound(use, change.Sql, parameters, Connection_.Handle());
        while (StepQuery(use, Connection_.Handle())) {
        }
        count = Connection_.Changes();
    }
    if (change.ChangesPrimaryKey)
        CheckNoNullInPrimaryKey(*change.Table);
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
    const engine::SchemaPtr schema = CurrentSchema();
    const RendererSchema rendererSchema(*schema, false);
    if (const auto* select = std::get_if<jetsql::SelectStatement>(&statement))
        return RenderSelect(*select, rendererSchema).Parameters;
    if (const auto* update = std::get_if<jetsql::UpdateStatement>(&statement))
        return RenderUpdate(*update, rendererSchema).Parameters;
    return RenderDelete(std::get<jetsql::DeleteStatement>(statement), rendererSchema).Parameters;
}

} // namespace dao::sqlite
