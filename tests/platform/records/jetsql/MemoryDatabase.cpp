// SPDX-License-Identifier: Apache-2.0
#include "MemoryDatabase.h"

#include "platform/records/Error.h"
#include "platform/records/engines/sqlite/SqlFunctions.h"
#include "platform/records/jetsql/Parser.h"
#include "platform/records/query/ParameterTable.h"
#include "platform/records/query/StoredValues.h"

#include <stdexcept>

using namespace dao;

namespace
{
struct Finaliser
{
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using StatementPointer = std::unique_ptr<sqlite3_stmt, Finaliser>;

[[noreturn]] void Fail(sqlite3* connection, const QByteArray& text)
{
    const char* message = sqlite3_errmsg(connection);
    if (const auto error = sqlite::StoredValueError(message))
        throw *error;
    throw std::runtime_error(std::string(message) + " in " + text.toStdString());
}

StatementPointer Prepare(sqlite3* connection, const QByteArray& text)
{
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(connection, text.constData(), static_cast<int>(text.size()), &statement, nullptr) !=
        SQLITE_OK)
        Fail(connection, text);
    return StatementPointer(statement);
}

void Bind(sqlite3_stmt* statement, int index, const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        sqlite3_bind_null(statement, index);
        return;
    case QMetaType::QString: {
        const QByteArray text = value.toString().toUtf8();
        sqlite3_bind_text(statement, index, text.constData(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
        return;
    }
    case QMetaType::QByteArray: {
        const QByteArray octets = value.toByteArray();
        sqlite3_bind_blob(statement, index, octets.constData(), static_cast<int>(octets.size()), SQLITE_TRANSIENT);
        return;
    }
    case QMetaType::Double:
        sqlite3_bind_double(statement, index, value.toDouble());
        return;
    default:
        sqlite3_bind_int64(statement, index, value.toLongLong());
        return;
    }
}

void Bind(sqlite3_stmt* statement, int index, const StoredValue& value)
{
    if (const auto* text = std::get_if<QByteArray>(&value))
        sqlite3_bind_text(statement, index, text->constData(), static_cast<int>(text->size()), SQLITE_TRANSIENT);
    else if (const auto* whole = std::get_if<qint64>(&value))
        sqlite3_bind_int64(statement, index, *whole);
    else if (const auto* real = std::get_if<double>(&value))
        sqlite3_bind_double(statement, index, *real);
    else
        sqlite3_bind_null(statement, index);
}

QVariant ColumnValue(sqlite3_stmt* statement, int column)
{
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_NULL:
        return {};
    case SQLITE_INTEGER:
        return static_cast<qint64>(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, column);
    default: {
        const char* octets = static_cast<const char*>(sqlite3_column_blob(statement, column));
        return QString::fromUtf8(octets, sqlite3_column_bytes(statement, column));
    }
    }
}

const char* StorageType(DataTypeEnum type)
{
    switch (type) {
    case dbText:
    case dbMemo:
        return "TEXT";
    case dbDate:
    case dbDouble:
    case dbSingle:
        return "REAL";
    default:
        return "INTEGER";
    }
}
} // namespace

engine::TablePtr MakeTable(const QString& name, std::vector<engine::Column> columns)
{
    auto table = std::make_shared<engine::Table>();
    table->Name = name;
    table->Columns = std::move(columns);
    table->Complete();
    return table;
}

MemoryDatabase::MemoryDatabase()
{
    sqlite3* connection = nullptr;
    if (sqlite3_open(":memory:", &connection) != SQLITE_OK)
        throw std::runtime_error("no database in memory");
    Connection_.reset(connection);
    sqlite::RegisterSqlFunctions(connection);
}

void MemoryDatabase::AddTable(const engine::TablePtr& table)
{
    QByteArrayList columns;
    for (const engine::Column& column : table->Columns)
        columns.append(sqlite::QuoteName(column.Name) + ' ' + StorageType(column.Type));
    columns.append("\"hidden\" INTEGER NOT NULL DEFAULT 1");
    const QByteArray text = "CREATE TABLE " + sqlite::QuoteName(table->Name) + " (" + columns.join(", ") + ')';
    if (sqlite3_step(Prepare(Connection_.get(), text).get()) != SQLITE_DONE)
        Fail(Connection_.get(), text);
    Schema_.Tables.push_back(table);
}

void MemoryDatabase::Insert(const QString& table, const ResultRow& values)
{
    QByteArray text = "INSERT INTO " + sqlite::QuoteName(table) + " VALUES (";
    for (std::size_t i = 0; i < values.size(); ++i)
        text += "?, ";
    text += "1)";
    const StatementPointer statement = Prepare(Connection_.get(), text);
    for (std::size_t i = 0; i < values.size(); ++i)
        ::Bind(statement.get(), static_cast<int>(i) + 1, values[i]);
    if (sqlite3_step(statement.get()) != SQLITE_DONE)
        Fail(Connection_.get(), text);
}

query::BoundSelect MemoryDatabase::Bind(QStringView select) const
{
    return query::BindSelect(jetsql::ParseSelect(select), Schema_);
}

std::vector<ResultRow> MemoryDatabase::Run(const sqlite::RenderedSql& sql, const query::BoundParameters& names,
                                           const QMap<QString, QVariant>& parameters)
{
    engine::ParameterValues values;
    for (auto parameter = parameters.begin(); parameter != parameters.end(); ++parameter)
        values.push_back({parameter.key(), parameter.value()});
    const query::ParameterTable table(names, values);
    const StatementPointer statement = Prepare(Connection_.get(), sql.Text);
    for (std::size_t i = 0; i < sql.Bindings.size(); ++i) {
        const int index = static_cast<int>(i) + 1;
        const sqlite::Binding& binding = sql.Bindings[i];
        if (const auto* pattern = std::get_if<std::shared_ptr<const jetsql::LikePattern>>(&binding))
            sqlite::BindLikePattern(statement.get(), index, *pattern);
        else if (const auto* parameter = std::get_if<query::BoundParameter>(&binding))
            ::Bind(statement.get(), index, table.At(*parameter));
        else
            ::Bind(statement.get(), index, std::get<StoredValue>(binding));
    }
    std::vector<ResultRow> rows;
    int result = sqlite3_step(statement.get());
    for (; result == SQLITE_ROW; result = sqlite3_step(statement.get())) {
        ResultRow row;
        for (int column = 0; column < sqlite3_column_count(statement.get()); ++column)
            row.push_back(ColumnValue(statement.get(), column));
        rows.push_back(std::move(row));
    }
    if (result != SQLITE_DONE)
        Fail(Connection_.get(), sql.Text);
    return rows;
}

std::vector<ResultRow> MemoryDatabase::Select(const QString& text, const QMap<QString, QVariant>& parameters,
                                              const sqlite::SelectOptions& options)
{
    const query::BoundSelect select = Bind(text);
    return Run(sqlite::RenderSelect(select, options), select.Parameters, parameters);
}

std::string MemoryDatabase::List(const QString& text, const QMap<QString, QVariant>& parameters)
{
    QStringList values;
    for (const ResultRow& row : Select(text, parameters))
        values.append(row.front().isValid() ? row.front().toString() : QStringLiteral("Null"));
    return values.join(u' ').toStdString();
}

int MemoryDatabase::Change(const QString& text, const QMap<QString, QVariant>& parameters)
{
    const query::BoundChange change = query::BindChange(jetsql::ParseStatement(text), Schema_);
    Run(sqlite::RenderChange(change, "\"hidden\" = \"hidden\" + 1"), change.Parameters, parameters);
    return sqlite3_changes(Connection_.get());
}
