// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/SchemaTables.h"

#include "platform/records/engines/sqlite/FileFormat.h"
#include "platform/records/engines/sqlite/SqlFunctions.h"
#include "platform/records/engines/sqlite/SqlRenderer.h"

#include <algorithm>

namespace dao::sqlite
{

namespace
{

using engine::Column;
using engine::IndexKey;
using engine::Table;

const char* SqlTypeOf(DataTypeEnum type)
{
    switch (type) {
    case dbSingle:
    case dbDouble:
    case dbDate:
        return "REAL";
    case dbText:
    case dbMemo:
        return "TEXT";
    default:
        return "INTEGER";
    }
}

QByteArray ColumnDefinition(const Column& column)
{
    QByteArray sql = QuoteName(column.Name) + ' ' + SqlTypeOf(column.Type);
    // The counter is the row id itself: no index of its own has to be kept for it.
    if (column.IsCounter())
        sql += " PRIMARY KEY";
    else if (column.Type == dbText || column.Type == dbMemo)
        sql += QByteArrayLiteral(" COLLATE ") + CollationName;
    return sql;
}

bool HasChecks(Connection& connection)
{
    return FormatOf(connection) != FormatVersionWithoutChecks;
}

/// Memos come last, so that reading the other columns never walks through megabytes.
QByteArray TableDefinition(const Table& table, const QByteArray& quotedName, bool hasChecks)
{
    QByteArray sql =
        "CREATE TABLE " + quotedName + " (" + VersionColumn + " INTEGER NOT NULL, " + OctetsColumn + " INTEGER";
    for (const Column& column : table.Columns) {
        if (hasChecks && column.IsMemo())
            sql += ", " + CheckColumn(column) + " INTEGER";
    }
    for (const Column& column : table.Columns) {
        if (!column.IsMemo())
            sql += ", " + ColumnDefinition(column);
    }
    for (const Column& column : table.Columns) {
        if (column.IsMemo())
            sql += ", " + ColumnDefinition(column);
    }
    // Without a counter the row id needs a column too, or a compaction would number the rows anew.
    if (table.CounterColumn() < 0)
        sql += ", \"~row\" INTEGER PRIMARY KEY";
    return sql + ')';
}

void CreateIndex(Connection& connection, const Table& table, const IndexKey& index)
{
    if (IsRowIdOrder(table, index)) {
        // Nothing to create, but other connections have to see that the structure changed: SQLite counts that itself,
        // for every table that comes or goes.
        connection.Execute("CREATE TABLE \"~Passing\" (Mark)");
        connection.Execute("DROP TABLE \"~Passing\"");
        return;
    }
    QByteArray sql = index.Unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ";
    sql += IndexName(table, index) + " ON " + QuoteName(table.Name) + " (";
    for (std::size_t i = 0; i < index.Columns.size(); ++i) {
        if (i > 0)
            sql += ", ";
        sql += QuoteName(table.Columns[static_cast<std::size_t>(index.Columns[i])].Name);
    }
    connection.Execute(sql + ')');
}

QByteArray RowIdColumn(const Table& table)
{
    return table.CounterColumn() < 0 ? QByteArrayLiteral("\"~row\"")
                                     : QuoteName(table.Columns[static_cast<std::size_t>(table.CounterColumn())].Name);
}

/// All columns but the memos once more, in order of the row ids, where a table has memos. A list of messages is then
/// read from a few pages, instead of from all those that the bodies fill; SQLite finds that by itself.
void CreateListIndex(Connection& connection, const Table& table)
{
    const QByteArray name = QuoteName(QStringLiteral("~%1").arg(table.Id));
    connection.Execute("DROP INDEX IF EXISTS " + name);
    if (!table.HasMemos())
        return;
    QByteArray sql = "CREATE INDEX " + name + " ON " + QuoteName(table.Name) + " (" + RowIdColumn(table);
    for (const Column& column : table.Columns) {
        if (!column.IsMemo() && !column.IsCounter())
            sql += ", " + QuoteName(column.Name);
    }
    connection.Execute(sql + ')');
}

void RecordColumn(Connection& connection, qint64 table, qint64 ordinal, const Column& column)
{
    const Statement statement(connection, "INSERT INTO \"~Fields\" VALUES (?, ?, ?, ?, ?, ?, ?)");
    const QByteArray name = column.Name.toUtf8();
    StatementUse use(statement);
    use.Bind(1, table);
    use.Bind(2, ordinal);
    use.Bind(3, std::string_view(name.constData(), static_cast<std::size_t>(name.size())));
    use.Bind(4, qint64{column.Type});
    use.Bind(5, qint64{column.Size});
    use.Bind(6, qint64{column.Attributes});
    use.Bind(7, qint64{column.AllowZeroLength ? 1 : 0});
    use.Run();
}

/// A table whose structure cannot be reached by adding a column at its end is built anew. Rows keep their ids and
/// versions; with a new counter, their ids become their numbers.
void Rebuild(Connection& connection, const Table& before, const Table& after)
{
    const QByteArray quoted = QuoteName(before.Name);
    const QByteArray temporary = QByteArrayLiteral("\"~Rebuilt\"");
    const bool hasChecks = HasChecks(connection);
    connection.Execute(TableDefinition(after, temporary, hasChecks));
    QByteArray columns = QByteArray(VersionColumn) + ", " + OctetsColumn;
    for (const Column& column : before.Columns) {
        columns += ", " + QuoteName(column.Name);
        if (hasChecks && column.IsMemo())
            columns += ", " + CheckColumn(column);
    }
    QByteArray target = columns;
    if (before.CounterColumn() < 0) {
        columns += QByteArrayLiteral(", ") + RowIdName;
        target += ", " + RowIdColumn(after);
    }
    connection.Execute("INSERT INTO " + temporary + " (" + target + ") SELECT " + columns + " FROM " + quoted +
                       " ORDER BY " + RowIdName);
    connection.Execute("DROP TABLE " + quoted);
    connection.Execute("ALTER TABLE " + temporary + " RENAME TO " + quoted);
    for (const IndexKey& index : after.Indexes)
        CreateIndex(connection, after, index);
}

bool IsEmpty(Connection& connection, const Table& table)
{
    return connection.Number(("SELECT EXISTS (SELECT 1 FROM " + QuoteName(table.Name) + ")").constData()) == 0;
}

QString TextOf(const StatementUse& use, int column)
{
    const std::string_view text = use.Text(column);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

[[noreturn]] void RaiseDamaged(const Connection& connection)
{
    throw Error(errFileDamaged, QStringLiteral("The database '%1' is damaged.").arg(connection.FileName()));
}

bool IsKnownType(qint64 type)
{
    switch (type) {
    case dbBoolean:
    case dbByte:
    case dbInteger:
    case dbLong:
    case dbSingle:
    case dbDouble:
    case dbDate:
    case dbText:
    case dbMemo:
        return true;
    default:
        return false;
    }
}

void ReadColumns(Connection& connection, const Statement& statement, Table& table)
{
    StatementUse use(statement);
    use.Bind(1, table.Id);
    while (use.Step()) {
        if (!IsKnownType(use.Integer(1)))
            RaiseDamaged(connection);
        Column column;
        column.Name = TextOf(use, 0);
        column.Type = static_cast<DataTypeEnum>(use.Integer(1));
        column.Size = static_cast<int>(use.Integer(2));
        column.Attributes = static_cast<int>(use.Integer(3));
        column.AllowZeroLength = use.Integer(4) != 0;
        table.Columns.push_back(std::move(column));
    }
}

void ReadIndexes(Connection& connection, const Statement& indexes, const Statement& fields, Table& table)
{
    StatementUse use(indexes);
    use.Bind(1, table.Id);
    while (use.Step()) {
        IndexKey index;
        const qint64 ordinal = use.Integer(0);
        index.Name = TextOf(use, 1);
        index.Primary = use.Integer(2) != 0;
        index.Unique = use.Integer(3) != 0;
        StatementUse parts(fields);
        parts.Bind(1, table.Id);
        parts.Bind(2, ordinal);
        while (parts.Step()) {
            const qint64 place = parts.Integer(0);
            if (place < 0 || place >= static_cast<qint64>(table.Columns.size()))
                RaiseDamaged(connection);
            index.Columns.push_back(static_cast<int>(place));
        }
        if (index.Columns.empty())
            RaiseDamaged(connection);
        table.Indexes.push_back(std::move(index));
    }
}

} // namespace

void CreateStructure(Connection& connection)
{
    connection.Execute(
        "CREATE TABLE \"~Tables\" (Id INTEGER PRIMARY KEY, Name TEXT NOT NULL, Counter INTEGER NOT NULL)");
    connection.Execute("CREATE TABLE \"~Fields\" (TableId INTEGER, Ordinal INTEGER, Name TEXT NOT NULL, Type INTEGER "
                       "NOT NULL, Size INTEGER NOT NULL, Attributes INTEGER NOT NULL, AllowZeroLength INTEGER NOT "
                       "NULL, PRIMARY KEY (TableId, Ordinal)) WITHOUT ROWID");
    connection.Execute("CREATE TABLE \"~Indexes\" (TableId INTEGER, Ordinal INTEGER, Name TEXT NOT NULL, IsPrimary "
                       "INTEGER NOT NULL, IsUnique INTEGER NOT NULL, PRIMARY KEY (TableId, Ordinal)) WITHOUT ROWID");
    connection.Execute("CREATE TABLE \"~IndexFields\" (TableId INTEGER, IndexOrdinal INTEGER, Place INTEGER, Field "
                       "INTEGER NOT NULL, PRIMARY KEY (TableId, IndexOrdinal, Place)) WITHOUT ROWID");
    connection.Execute(QByteArrayLiteral("PRAGMA application_id=") + QByteArray::number(ApplicationId));
    connection.Execute(QByteArrayLiteral("PRAGMA user_version=") + QByteArray::number(FormatVersion));
}

qint64 FormatOf(Connection& connection)
{
    const qint64 format = connection.Number("PRAGMA user_version");
    if (format != FormatVersion && format != FormatVersionWithoutChecks) {
        throw Error(errUnrecognisedFormat, QStringLiteral("The database '%1' has format version %2, which this "
                                                          "program does not know.")
                                               .arg(connection.FileName())
                                               .arg(format));
    }
    return format;
}

engine::SchemaPtr ReadSchema(Connection& connection, const engine::SchemaPtr& previous)
{
    FormatOf(connection);
    const Statement tables(connection, "SELECT Id, Name FROM \"~Tables\" ORDER BY Id");
    const Statement columns(connection, "SELECT Name, Type, Size, Attributes, AllowZeroLength FROM \"~Fields\" WHERE "
                                        "TableId = ? ORDER BY Ordinal");
    const Statement indexes(connection, "SELECT Ordinal, Name, IsPrimary, IsUnique FROM \"~Indexes\" WHERE TableId = ? "
                                        "ORDER BY Ordinal");
    const Statement parts(connection, "SELECT Field FROM \"~IndexFields\" WHERE TableId = ? AND IndexOrdinal = ? "
                                      "ORDER BY Place");
    auto schema = std::make_shared<engine::Schema>();
    StatementUse use(tables);
    while (use.Step()) {
        auto table = std::make_shared<Table>();
        table->Id = use.Integer(0);
        table->Name = TextOf(use, 1);
        ReadColumns(connection, columns, *table);
        if (table->Columns.empty())
            RaiseDamaged(connection);
        ReadIndexes(connection, indexes, parts, *table);
        table->Complete();
        const engine::TablePtr known = previous ? previous->Find(table->Name) : nullptr;
        schema->Tables.push_back(known && *known == *table ? known : std::move(table));
    }
    return schema;
}

void CheckName(const QString& name)
{
    const bool isReserved = name.startsWith(QChar(ReservedMark)) ||
                            name.startsWith(QLatin1String("sqlite_"), Qt::CaseInsensitive) ||
                            name.compare(QLatin1String(RowIdName), Qt::CaseInsensitive) == 0;
    if (name.isEmpty() || isReserved || name.contains(QChar(u'\0')) || !name.isValidUtf16())
        throw Error(errNotSupported, QStringLiteral("'%1' is not a valid name.").arg(name));
}

void WriteTable(Connection& connection, Table table)
{
    const QByteArray name = table.Name.toUtf8();
    {
        const Statement statement(connection, "INSERT INTO \"~Tables\" (Name, Counter) VALUES (?, 0)");
        StatementUse use(statement);
        use.Bind(1, std::string_view(name.constData(), static_cast<std::size_t>(name.size())));
        use.Run();
    }
    table.Id = sqlite3_last_insert_rowid(connection.Handle());
    connection.Execute(TableDefinition(table, QuoteName(table.Name), HasChecks(connection)));
    CreateListIndex(connection, table);
    for (std::size_t i = 0; i < table.Columns.size(); ++i)
        RecordColumn(connection, table.Id, static_cast<qint64>(i), table.Columns[i]);
    const std::vector<IndexKey> indexes = std::move(table.Indexes);
    table.Indexes.clear();
    for (const IndexKey& index : indexes) {
        WriteIndex(connection, table, index);
        table.Indexes.push_back(index);
    }
}

void WriteColumn(Connection& connection, const Table& table, const Column& column)
{
    Table after = table;
    after.Columns.push_back(column);
    after.Complete();
    // Built anew while that costs nothing, so that memos end up last whatever the order of the additions was.
    if (column.IsCounter() || IsEmpty(connection, table)) {
        Rebuild(connection, table, after);
    } else {
        const QByteArray addColumn = "ALTER TABLE " + QuoteName(table.Name) + " ADD COLUMN ";
        if (column.IsMemo() && HasChecks(connection))
            connection.Execute(addColumn + CheckColumn(column) + " INTEGER");
        connection.Execute(addColumn + ColumnDefinition(column));
    }
    CreateListIndex(connection, after);
    RecordColumn(connection, table.Id, static_cast<qint64>(table.Columns.size()), column);
    if (column.IsCounter()) {
        connection.Execute("UPDATE \"~Tables\" SET Counter = (SELECT coalesce(max(" + QByteArray(RowIdName) +
                           "), 0) FROM " + QuoteName(table.Name) + ") WHERE Id = " + QByteArray::number(table.Id));
    }
}

void WriteIndex(Connection& connection, const Table& table, const IndexKey& index)
{
    CreateIndex(connection, table, index);
    const QByteArray name = index.Name.toUtf8();
    const auto ordinal = static_cast<qint64>(table.Indexes.size());
    {
        const Statement statement(connection, "INSERT INTO \"~Indexes\" VALUES (?, ?, ?, ?, ?)");
        StatementUse use(statement);
        use.Bind(1, table.Id);
        use.Bind(2, ordinal);
        use.Bind(3, std::string_view(name.constData(), static_cast<std::size_t>(name.size())));
        use.Bind(4, qint64{index.Primary ? 1 : 0});
        use.Bind(5, qint64{index.Unique ? 1 : 0});
        use.Run();
    }
    const Statement statement(connection, "INSERT INTO \"~IndexFields\" VALUES (?, ?, ?, ?)");
    for (std::size_t i = 0; i < index.Columns.size(); ++i) {
        StatementUse use(statement);
        use.Bind(1, table.Id);
        use.Bind(2, ordinal);
        use.Bind(3, static_cast<qint64>(i));
        use.Bind(4, qint64{index.Columns[i]});
        use.Run();
    }
}

QByteArray CheckColumn(const Column& memo)
{
    return QuoteName(QString::fromLatin1(CheckColumnMark) + memo.Name);
}

bool IsRowIdOrder(const Table& table, const IndexKey& index)
{
    return index.Columns.size() == 1 && index.Columns.front() == table.CounterColumn();
}

QByteArray IndexName(const Table& table, const IndexKey& index)
{
    return QuoteName(QStringLiteral("~%1.%2").arg(table.Id).arg(index.Name));
}

} // namespace dao::sqlite
