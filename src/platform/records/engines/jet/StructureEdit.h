// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Schema.h"
#include "platform/records/engines/jet/PageAllocation.h"
#include "platform/records/engines/jet/TableDefinition.h"

namespace dao::jet
{

/// Adds tables, columns and indexes to a file, in its transaction. What it throws leaves a part of the change behind:
/// the caller takes the step back. Errors: 3251 for what such a file cannot have; an index: 3022, 94.
class StructureEdit
{
public:
    StructureEdit(PageFile& file, PageAllocation& pages) : File_(file), Pages_(pages) {}

    void AddTable(const engine::Table& table);
    /// table: as the store knows it.
    void AddColumn(const engine::Table& table, const engine::Column& column);
    void AddIndex(const engine::Table& table, const engine::IndexKey& index);

private:
    void PlaceTrees(TableDefinition& table, std::size_t first, quint32 beside);
    void PlaceLongs(ColumnDefinition& column, quint32 beside);
    void WriteDefinition(TableDefinition& table);
    void AddObject(quint32 definition, const QString& name, const QByteArray& properties);
    void AddRights(qint32 object);
    void AddProperties(const engine::Table& table, const engine::Column& column);
    void RewriteRows(const TableDefinition& before, const TableDefinition& behind);
    void NumberRows(const TableDefinition& table, const engine::Column& counter, const QString& name);

    PageFile& File_;
    PageAllocation& Pages_;
};

} // namespace dao::jet
