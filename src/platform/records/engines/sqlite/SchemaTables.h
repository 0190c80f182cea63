// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Schema.h"
#include "platform/records/engines/sqlite/SqliteConnection.h"

/// The structure of a database inside its file: the user's tables and, in tables of our own, what SQLite has no place
/// for. Writing functions run inside the caller's transaction.
namespace dao::sqlite
{

/// Puts our own tables into a new file.
void CreateStructure(Connection& connection);

/// The format by which the file's rows are laid out. Error 3343 for one that is newer than this code.
qint64 FormatOf(Connection& connection);
/// Reads the structure. A table that is the same as in previous stays the same object. Error 3343 as FormatOf, 3049
/// when it is not what it should be.
engine::SchemaPtr ReadSchema(Connection& connection, const engine::SchemaPtr& previous);

/// Error 3251 for a name that a file cannot hold.
void CheckName(const QString& name);

void WriteTable(Connection& connection, engine::Table table);
void WriteColumn(Connection& connection, const engine::Table& table, const engine::Column& column);
void WriteIndex(Connection& connection, const engine::Table& table, const engine::IndexKey& index);

/// The name of the column that holds the check of a memo, quoted.
QByteArray CheckColumn(const engine::Column& memo);
/// Whether the index is the order of the row ids themselves and has no tree of its own.
bool IsRowIdOrder(const engine::Table& table, const engine::IndexKey& index);
/// The name of an index in the file, quoted.
QByteArray IndexName(const engine::Table& table, const engine::IndexKey& index);

} // namespace dao::sqlite
