// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/sqlite/SqlRenderer.h"

#include <QMap>

#include <sqlite3.h>

#include <memory>
#include <vector>

using ResultRow = std::vector<QVariant>;

/// An SQLite database in memory with the functions of the renderer, tables to render against, and a way to run what was
/// rendered.
class MemoryDatabase : public dao::sqlite::Schema
{
public:
    MemoryDatabase();

    /// Text columns are declared without the collation, for rendered queries must not rest on it. A column "hidden",
    /// which is not in the table info, stands at the end.
    void AddTable(const dao::sqlite::TableInfo& table);
    /// Values in order of the columns. A QByteArray is stored as a BLOB.
    void Insert(const QString& table, const ResultRow& values);
    const dao::sqlite::TableInfo* FindTable(const QString& name) const override;

    /// Renders, prepares and steps a SELECT.
    std::vector<ResultRow> Select(const QString& text, const QMap<QString, QVariant>& parameters = {},
                                  const dao::sqlite::SelectOptions& options = {});
    /// The first column of each row, as text with blanks between.
    std::string List(const QString& text, const QMap<QString, QVariant>& parameters = {});
    /// Renders and runs an UPDATE or DELETE; the number of rows changed. Throws what a function refused.
    int Change(const QString& text, const QMap<QString, QVariant>& parameters = {});
    std::vector<ResultRow> Run(const dao::sqlite::RenderedSql& sql, const QMap<QString, QVariant>& parameters = {});
    sqlite3* Connection() const { return Connection_.get(); }

private:
    struct Closer
    {
        void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    };
    std::unique_ptr<sqlite3, Closer> Connection_;
    std::vector<std::unique_ptr<dao::sqlite::TableInfo>> Tables_;
};
