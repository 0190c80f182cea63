// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Schema.h"
#include "platform/records/engines/postgres/Command.h"

#include <QByteArray>
#include <QString>

/// What the tables of a station are called on the server. Only the schema bears a name that people gave; tables and
/// columns bear numbers, so that names of any length, in any characters, in any encoding of the server stay what they
/// are. Pure functions; any thread.
namespace dao::postgres
{

/// A name in double quotes.
QByteArray QuotedName(const QString& name);

/// The station's own tables.
inline constexpr char StationTable[] = "tolva_station";
inline constexpr char TablesTable[] = "tolva_tables";
inline constexpr char FieldsTable[] = "tolva_fields";
inline constexpr char IndexesTable[] = "tolva_indexes";
inline constexpr char IndexFieldsTable[] = "tolva_index_fields";

/// Of every table of rows: the automatic counter, or a number that nobody sees, and what changes with every update.
inline constexpr char IdColumn[] = "id";
inline constexpr char VersionColumn[] = "version";

/// The table of rows of that number, and the sequence of its ids, with the schema. quotedSchema: as QuotedName.
QByteArray RowsTable(const QByteArray& quotedSchema, qint64 table);
QByteArray IdSequence(const QByteArray& quotedSchema, qint64 table);

/// The column of a field; the id for the automatic counter.
QByteArray ColumnName(const engine::Table& table, int column);
/// The folded twin of a text, by which it is compared.
QByteArray FoldedName(int column);
/// The parts of a text between its bars, for what looks for one of them.
QByteArray EntriesOf(const QByteArray& octets);
/// The check of a memo.
QByteArray CheckName(int column);
/// What an index and a comparison go by: the twin of a text, else the column itself.
QByteArray KeyName(const engine::Table& table, int column);

inline bool IsTextType(DataTypeEnum type)
{
    return type == dbText || type == dbMemo;
}
/// Whether an index orders by that memo. It then has a twin too, and is read with its row always.
bool IsIndexedMemo(const engine::Table& table, int column);
/// Whether a column has a folded twin.
bool HasTwin(const engine::Table& table, int column);
/// The kind of value that a column holds on the server.
Kind KindOf(DataTypeEnum type);

/// A text such that texts that differ in case alone give the same octets, and octets compare as the texts do.
QByteArray Folded(std::string_view utf8);
/// What a value is compared as in that column.
StoredValue KeyValue(const engine::Column& column, const StoredValue& value);

} // namespace dao::postgres
