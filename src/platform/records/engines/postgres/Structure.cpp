// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/Structure.h"

#include "platform/records/engines/postgres/Naming.h"

#include <QRandomGenerator>

#include <algorithm>
#include <functional>
#include <limits>

namespace dao::postgres
{

using engine::Column;
using engine::IndexKey;
using engine::Table;

namespace
{

constexpr qint64 HighestNumber = std::numeric_limits<qint32>::max();
/// Octets of a key that the server's index takes, with some to spare.
constexpr int WidestKey = 2600;
/// Octets that a character of UTF-16 takes at most, folded or not.
constexpr int OctetsOfCharacter = 3;
constexpr int UsualTextSize = 255;
constexpr qint64 RowsAtOnce = 500;

qint64 NewIdentity()
{
    // Positive, and never zero.
    return static_cast<qint64>(QRandomGenerator::system()->generate64() >> 1U) | 1;
}

QByteArray Utf8(const QString& text)
{
    return text.toUtf8();
}

std::string_view View(const QByteArray& octets)
{
    return {octets.constData(), static_cast<std::size_t>(octets.size())};
}

QString NameIn(const Result& result, int row, int column)
{
    const std::string_view octets = result.Octets(row, column);
    return QString::fromUtf8(octets.data(), static_cast<qsizetype>(octets.size()));
}

QByteArray TypeWords(DataTypeEnum type)
{
    switch (KindOf(type)) {
    case Kind::Octets:
        return "bytea";
    case Kind::Real:
        return "double precision";
    default:
        return "bigint";
    }
}

/// The server's columns for a field; none for a counter, which is the id.
QList<QByteArray> Definitions(const Table& table, int column)
{
    const Column& definition = table.Columns[static_cast<std::size_t>(column)];
    if (definition.IsCounter())
        return {};
    QList<QByteArray> definitions{ColumnName(table, column) + ' ' + TypeWords(definition.Type)};
    if (HasTwin(table, column))
        definitions += FoldedName(column) + " bytea";
    if (definition.IsMemo())
        definitions += CheckName(column) + " bigint";
    return definitions;
}

/// Mails are kept as they are, so that the beginning of one can be read without the rest.
QByteArray StorageOf(const QByteArray& rows, const Table& table, int column)
{
    if (!table.Columns[static_cast<std::size_t>(column)].IsMemo())
        return {};
    return "ALTER TABLE " + rows + " ALTER COLUMN " + ColumnName(table, column) + " SET STORAGE EXTERNAL;";
}

int WidthOf(const Column& column)
{
    if (column.IsMemo())
        return WidestKey + 1;
    if (column.Type == dbText)
        return OctetsOfCharacter * (column.Size > 0 ? column.Size : UsualTextSize);
    return static_cast<int>(sizeof(qint64));
}

/// What the server is given of an index: as many of its columns as fit one of its own, and the id behind them, so that
/// rows of one key stand in order of entry.
void CreateServerIndex(ServerConnection& connection, const QByteArray& quotedSchema, const Table& table,
                       const IndexKey& index)
{
    const QByteArray rows = RowsTable(quotedSchema, table.Id);
    int width = 0;
    bool isWhole = true;
    QList<QByteArray> ordered;
    QList<QByteArray> unique;
    for (const int column : index.Columns) {
        const int own = WidthOf(table.Columns[static_cast<std::size_t>(column)]);
        const QByteArray key = KeyName(table, column);
        isWhole = isWhole && width + own <= WidestKey;
        if (isWhole) {
            width += own;
            ordered += key + " NULLS FIRST";
            unique += key + " NULLS FIRST";
        } else {
            unique += "(pg_catalog.sha256(" + key + "))";
        }
    }
    if (index.Unique)
        connection.Execute("CREATE UNIQUE INDEX ON " + rows + " (" + unique.join(", ") + ')');
    if (!index.Unique || !isWhole) {
        ordered += QByteArray(IdColumn);
        connection.Execute("CREATE INDEX ON " + rows + " (" + ordered.join(", ") + ')');
    }
}

bool HasMemo(const Table& table)
{
    return std::any_of(table.Columns.begin(), table.Columns.end(), std::mem_fn(&Column::IsMemo));
}

/// Indexes of the server's own, which no program sees: without them each list would be a walk through all mails. A
/// number of 16 bits tells a class, such as a message's folder; a long text may hold several entries, such as its
/// addresses.
QByteArray OwnIndex(const QByteArray& rows, const Table& table, int column)
{
    const Column& definition = table.Columns[static_cast<std::size_t>(column)];
    if (!HasMemo(table) || table.CounterColumn() < 0)
        return {};
    if (definition.Type == dbInteger)
        return "CREATE INDEX ON " + rows + " (" + ColumnName(table, column) + ", " + IdColumn + ");";
    if (definition.Type == dbText && (definition.Size == 0 || definition.Size >= UsualTextSize))
        return "CREATE INDEX ON " + rows + " USING gin (" + EntriesOf(FoldedName(column)) + ");";
    return {};
}

void RecordColumn(ServerConnection& connection, const QByteArray& quotedSchema, qint64 table, qint64 ordinal,
                  const Column& column)
{
    Command command{"INSERT INTO " + quotedSchema + '.' + FieldsTable +
                    " (table_id, ordinal, name, type, size, attributes, allow_zero_length) "
                    "VALUES ($1, $2, $3, $4, $5, $6, $7)"};
    const QByteArray name = Utf8(column.Name);
    command.Values.AddInteger(table);
    command.Values.AddInteger(ordinal);
    command.Values.AddOctets(View(name));
    command.Values.AddInteger(column.Type);
    command.Values.AddInteger(column.Size);
    command.Values.AddInteger(column.Attributes);
    command.Values.AddInteger(column.AllowZeroLength ? 1 : 0);
    connection.Run(command);
}

void RecordIndex(ServerConnection& connection, const QByteArray& quotedSchema, const Table& table,
                 const IndexKey& index)
{
    const auto ordinal = static_cast<qint64>(table.Indexes.size());
    const QByteArray name = Utf8(index.Name);
    std::vector<Command> commands;
    Command& head = commands.emplace_back(Command{"INSERT INTO " + quotedSchema + '.' + IndexesTable +
                                                  " (table_id, ordinal, name, is_primary, is_unique) "
                                                  "VALUES ($1, $2, $3, $4, $5)"});
    head.Values.AddInteger(table.Id);
    head.Values.AddInteger(ordinal);
    head.Values.AddOctets(View(name));
    head.Values.AddInteger(index.Primary ? 1 : 0);
    head.Values.AddInteger(index.Unique ? 1 : 0);
    for (std::size_t i = 0; i < index.Columns.size(); ++i) {
        Command& part = commands.emplace_back(Command{"INSERT INTO " + quotedSchema + '.' + IndexFieldsTable +
                                                      " (table_id, index_ordinal, place, field) "
                                                      "VALUES ($1, $2, $3, $4)"});
        part.Values.AddInteger(table.Id);
        part.Values.AddInteger(ordinal);
        part.Values.AddInteger(static_cast<qint64>(i));
        part.Values.AddInteger(index.Columns[i]);
    }
    connection.RunTogether(commands);
}

/// The twins of a memo that gets its first index.
void FillTwin(ServerConnection& connection, const QByteArray& quotedSchema, const Table& table, int column)
{
    const QByteArray rows = RowsTable(quotedSchema, table.Id);
    const QByteArray name = ColumnName(table, column);
    connection.Execute("ALTER TABLE " + rows + " ADD COLUMN " + FoldedName(column) + " bytea");
    qint64 last = std::numeric_limits<qint64>::min();
    while (true) {
        Command read{"SELECT id, " + name + " FROM " + rows + " WHERE id > $1 AND " + name +
                     " IS NOT NULL ORDER BY id LIMIT " + QByteArray::number(RowsAtOnce)};
        read.Values.AddInteger(last);
        const Result found = connection.Run(read);
        if (found.Rows() == 0)
            return;
        std::vector<Command> writes;
        for (int row = 0; row < found.Rows(); ++row) {
            last = found.Integer(row, 0);
            const QByteArray twin = Folded(found.Octets(row, 1));
            Command& write =
                writes.emplace_back(Command{"UPDATE " + rows + " SET " + FoldedName(column) + " = $2 WHERE id = $1"});
            write.Values.AddInteger(last);
            write.Values.AddOctets(View(twin));
        }
        connection.RunTogether(writes);
    }
}

[[noreturn]] void RaiseDamaged(const ServerConnection& connection)
{
    throw Error(errFileDamaged,
                QStringLiteral("The station on the server (%1) is damaged: its lists of tables do not agree.")
                    .arg(connection.Connect().InWords()));
}

void TakeColumns(const Result& fields, Table& table)
{
    for (int row = 0; row < fields.Rows(); ++row) {
        if (fields.Integer(row, 0) != table.Id)
            continue;
        Column column;
        column.Name = NameIn(fields, row, 1);
        column.Type = static_cast<DataTypeEnum>(fields.Integer(row, 2));
        column.Size = static_cast<int>(fields.Integer(row, 3));
        column.Attributes = static_cast<int>(fields.Integer(row, 4));
        column.AllowZeroLength = fields.Integer(row, 5) != 0;
        table.Columns.push_back(std::move(column));
    }
}

void TakeIndexes(const ServerConnection& connection, const Result& indexes, const Result& parts, Table& table)
{
    for (int row = 0; row < indexes.Rows(); ++row) {
        if (indexes.Integer(row, 0) != table.Id)
            continue;
        IndexKey index;
        const qint64 ordinal = indexes.Integer(row, 1);
        index.Name = NameIn(indexes, row, 2);
        index.Primary = indexes.Integer(row, 3) != 0;
        index.Unique = indexes.Integer(row, 4) != 0;
        for (int part = 0; part < parts.Rows(); ++part) {
            if (parts.Integer(part, 0) != table.Id || parts.Integer(part, 1) != ordinal)
                continue;
            const qint64 field = parts.Integer(part, 2);
            if (field < 0 || field >= static_cast<qint64>(table.Columns.size()))
                RaiseDamaged(connection);
            index.Columns.push_back(static_cast<int>(field));
        }
        if (index.Columns.empty())
            RaiseDamaged(connection);
        table.Indexes.push_back(std::move(index));
    }
}

Command Plain(const QByteArray& text)
{
    return Command{text, {}, true};
}

} // namespace

Command HasStationCommand(const ServerConnection& connection)
{
    const QByteArray schema = Utf8(connection.Connect().Schema);
    Command command{"SELECT 1 FROM pg_catalog.pg_class c JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace "
                    "WHERE n.nspname = pg_catalog.convert_from($1, 'UTF8') AND c.relname = 'tolva_station'"};
    command.Values.AddOctets(View(schema));
    return command;
}

void CreateStation(ServerConnection& connection)
{
    const QByteArray schema = QuotedName(connection.Connect().Schema);
    const QByteArray own = schema + '.';
    // The number is the same for all that make a station in this database, so that they wait for each other.
    connection.Execute("BEGIN; SELECT pg_catalog.pg_advisory_xact_lock(1414288945)");
    try {
        if (connection.Run(HasStationCommand(connection)).Rows() == 0) {
            connection.Execute("CREATE SCHEMA IF NOT EXISTS " + schema);
            connection.Execute(
                "CREATE TABLE " + own + StationTable +
                " (format bigint NOT NULL, identity bigint NOT NULL, structure "
                "bigint NOT NULL);CREATE TABLE " +
                own + TablesTable +
                " (id bigint GENERATED ALWAYS AS IDENTITY "
                "PRIMARY KEY, name bytea NOT NULL);CREATE TABLE " +
                own + FieldsTable +
                " (table_id bigint, ordinal "
                "bigint, name bytea NOT NULL, type bigint NOT NULL, size bigint NOT NULL, attributes bigint NOT NULL, "
                "allow_zero_length bigint NOT NULL, PRIMARY KEY (table_id, ordinal));CREATE TABLE " +
                own + IndexesTable +
                " (table_id bigint, ordinal bigint, name bytea NOT NULL, is_primary bigint NOT NULL, "
                "is_unique bigint NOT NULL, PRIMARY KEY (table_id, ordinal));CREATE TABLE " +
                own + IndexFieldsTable +
                " (table_id bigint, index_ordinal bigint, place bigint, field bigint NOT NULL, PRIMARY KEY (table_id, "
                "index_ordinal, place));INSERT INTO " +
                own + StationTable + " VALUES (" + QByteArray::number(FormatVersion) + ", " +
                QByteArray::number(NewIdentity()) + ", 1)");
        }
        connection.Execute("COMMIT");
    } catch (...) {
        connection.TryRollback();
        throw;
    }
}

Command StateCommand(const QByteArray& quotedSchema)
{
    return Plain("SELECT format, identity, structure FROM " + quotedSchema + '.' + StationTable);
}

StationState StateIn(const Result& result, const ServerConnection& connection)
{
    if (result.Rows() != 1)
        RaiseDamaged(connection);
    const StationState state{result.Integer(0, 0), result.Integer(0, 1), result.Integer(0, 2)};
    const StationStanding standing = StandingOf(state);
    if (standing != StationStanding::Open && standing != StationStanding::MovedAway &&
        standing != StationStanding::Arriving) {
        throw Error(errUnrecognisedFormat,
                    QStringLiteral("The station on the server (%1) has format version %2, which this program does not "
                                   "know.")
                        .arg(connection.Connect().InWords())
                        .arg(state.Format));
    }
    return state;
}

engine::SchemaPtr ReadStructure(ServerConnection& connection, const QByteArray& quotedSchema, bool isInTransaction,
                                const engine::SchemaPtr& previous, StationState& state)
{
    const QByteArray own = quotedSchema + '.';
    std::vector<Command> commands;
    if (!isInTransaction)
        commands.push_back(Plain("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY"));
    commands.push_back(StateCommand(quotedSchema));
    commands.push_back(Plain("SELECT id, name FROM " + own + TablesTable + " ORDER BY id"));
    commands.push_back(Plain("SELECT table_id, name, type, size, attributes, allow_zero_length FROM " + own +
                             FieldsTable + " ORDER BY table_id, ordinal"));
    commands.push_back(Plain("SELECT table_id, ordinal, name, is_primary, is_unique FROM " + own + IndexesTable +
                             " ORDER BY table_id, ordinal"));
    commands.push_back(Plain("SELECT table_id, index_ordinal, field FROM " + own + IndexFieldsTable +
                             " ORDER BY table_id, index_ordinal, place"));
    if (!isInTransaction)
        commands.push_back(Plain("COMMIT"));
    std::vector<Result> results;
    try {
        results = connection.RunTogether(commands);
    } catch (...) {
        if (!isInTransaction)
            connection.TryRollback();
        throw;
    }
    const auto at = [&](std::size_t place) -> const Result& { return results[place + (isInTransaction ? 0 : 1)]; };
    state = StateIn(at(0), connection);
    auto schema = std::make_shared<engine::Schema>();
    for (int row = 0; row < at(1).Rows(); ++row) {
        auto table = std::make_shared<Table>();
        table->Id = at(1).Integer(row, 0);
        table->Name = NameIn(at(1), row, 1);
        TakeColumns(at(2), *table);
        if (table->Columns.empty())
            RaiseDamaged(connection);
        TakeIndexes(connection, at(3), at(4), *table);
        table->Complete();
        const engine::TablePtr known = previous ? previous->Find(table->Name) : nullptr;
        schema->Tables.push_back(known && *known == *table ? known : std::move(table));
    }
    return schema;
}

void RequireName(const QString& name)
{
    // What the embedded engine takes, so that a station can move either way.
    const bool isReserved = name.startsWith(u'~') || name.startsWith(QLatin1String("sqlite_"), Qt::CaseInsensitive) ||
                            name.compare(QLatin1String("_rowid_"), Qt::CaseInsensitive) == 0;
    if (name.isEmpty() || isReserved || name.contains(QChar(u'\0')) || !name.isValidUtf16())
        throw Error(errNotSupported, QStringLiteral("'%1' is not a valid name.").arg(name));
}

void WriteTable(ServerConnection& connection, const QByteArray& quotedSchema, const Table& given)
{
    Table table = given;
    Command record{"INSERT INTO " + quotedSchema + '.' + TablesTable + " (name) VALUES ($1) RETURNING id"};
    const QByteArray name = Utf8(table.Name);
    record.Values.AddOctets(View(name));
    table.Id = connection.Run(record).Integer(0, 0);
    const std::vector<IndexKey> indexes = std::exchange(table.Indexes, {});
    const QByteArray rows = RowsTable(quotedSchema, table.Id);
    const QByteArray sequence = IdSequence(quotedSchema, table.Id);
    QByteArray sql = "CREATE TABLE " + rows + " (id bigint PRIMARY KEY, version bigint NOT NULL";
    QByteArray storage;
    for (int column = 0; column < static_cast<int>(table.Columns.size()); ++column) {
        for (const QByteArray& definition : Definitions(table, column))
            sql += ", " + definition;
        storage += StorageOf(rows, table, column) + OwnIndex(rows, table, column);
    }
    sql += ");CREATE SEQUENCE " + sequence;
    if (table.CounterColumn() >= 0)
        sql += " MAXVALUE " + QByteArray::number(HighestNumber);
    connection.Execute(sql + " OWNED BY " + rows + ".id;" + storage);
    for (std::size_t i = 0; i < table.Columns.size(); ++i)
        RecordColumn(connection, quotedSchema, table.Id, static_cast<qint64>(i), table.Columns[i]);
    for (const IndexKey& index : indexes) {
        WriteIndex(connection, quotedSchema, table, index);
        table.Indexes.push_back(index);
    }
}

void WriteColumn(ServerConnection& connection, const QByteArray& quotedSchema, const Table& table, const Column& column)
{
    Table after = table;
    after.Columns.push_back(column);
    after.Complete();
    const int place = static_cast<int>(table.Columns.size());
    const QByteArray rows = RowsTable(quotedSchema, table.Id);
    if (column.IsCounter()) {
        connection.Execute("ALTER SEQUENCE " + IdSequence(quotedSchema, table.Id) + " MAXVALUE " +
                           QByteArray::number(HighestNumber));
    } else {
        // The first memo makes indexes of the columns in front of it worth their while as well.
        QByteArray indexes;
        for (int own = column.IsMemo() && !HasMemo(table) ? 0 : place; own <= place; ++own)
            indexes += OwnIndex(rows, after, own);
        connection.Execute("ALTER TABLE " + rows + " ADD COLUMN " + Definitions(after, place).join(", ADD COLUMN ") +
                           ';' + StorageOf(rows, after, place) + indexes);
    }
    RecordColumn(connection, quotedSchema, table.Id, place, column);
}

void WriteIndex(ServerConnection& connection, const QByteArray& quotedSchema, const Table& table, const IndexKey& index)
{
    for (const int column : index.Columns) {
        if (table.Columns[static_cast<std::size_t>(column)].IsMemo() && !IsIndexedMemo(table, column))
            FillTwin(connection, quotedSchema, table, column);
    }
    const bool isIdOrder = index.Columns.size() == 1 && index.Columns.front() == table.CounterColumn();
    if (!isIdOrder)
        CreateServerIndex(connection, quotedSchema, table, index);
    RecordIndex(connection, quotedSchema, table, index);
}

void CountChange(ServerConnection& connection, const QByteArray& quotedSchema)
{
    connection.Run(Plain("UPDATE " + quotedSchema + '.' + StationTable + " SET structure = structure + 1"));
}

void ClearStation(ServerConnection& connection, const QByteArray& quotedSchema, const engine::Schema& schema)
{
    const QByteArray own = quotedSchema + '.';
    QByteArray sql;
    for (const engine::TablePtr& table : schema.Tables)
        sql += "DROP TABLE " + RowsTable(quotedSchema, table->Id) + ';';
    for (const char* const list : {IndexFieldsTable, IndexesTable, FieldsTable, TablesTable})
        sql += "DELETE FROM " + own + list + ';';
    connection.Execute(sql + "UPDATE " + own + StationTable +
                       " SET structure = structure + 1, identity = " + QByteArray::number(NewIdentity()));
}

void WriteStanding(ServerConnection& connection, const QByteArray& quotedSchema, StationStanding standing)
{
    connection.Execute("UPDATE " + quotedSchema + '.' + StationTable +
                       " SET format = " + QByteArray::number(static_cast<qint64>(standing)));
}

} // namespace dao::postgres
