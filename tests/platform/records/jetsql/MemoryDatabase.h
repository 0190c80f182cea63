// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/sqlite/SqlRenderer.h"
#include "platform/records/query/Binder.h"

#include <QMap>

#include <sqlite3.h>

#include <memory>
#include <vector>

using ResultRow = std::vector<QVariant>;

/// A table of a schema, ready for use.
dao::engine::TablePtr MakeTable(const QString& name, std::vector<dao::engine::Column> columns);

/// An SQLite database in memory with the functions of the renderer, tables to render against, and a way to run what was
/// rendered.
class MemoryDatabase
{
public:
    MemoryDatabase();

    /// Text columns are declared without the collation, for rendered queries must not rest on it. A column "hidden",
    /// which is not in the schema, stands at the end.
    void AddTable(const dao::engine::TablePtr& table);
    /// Values in order of the columns. A QByteArray is stored as a BLOB.
    void Insert(const QString& table, const ResultRow& values);
    const dao::engine::Schema& Schema() const { return Schema_; }

    dao::query::BoundSelect Bind(QStringView select) const;

    /// Renders, prepares and steps a SELECT.
    std::vector<ResultRow> Select(const QString& text, const QMap<QString, QVariant>& parameters = {},
                                  const dao::sqlite::SelectOptions& options = {});
    /// The first column of each row, as text with blanks between.
    std::string List(const QString& text, const QMap<QString, QVariant>& parameters = {});
    /// Renders and runs an UPDATE or DELETE; the number of rows changed. Throws what a function refused.
    int Change(const QString& text, const QMap<QString, QVariant>& parameters = {});
    std::vector<ResultRow> Run(const dao::sqlite::RenderedSql& sql, const dao::query::BoundParameters& names = {},
                               const QMap<QString, QVariant>& parameters = {});
    sqlite3* Connection() const { return Connection_.get(); }

private:
    struct Closer
    {
        void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    };
    std::unique_ptr<sqlite3, Closer> Connection_;
    dao::engine::Schema Schema_;
};
