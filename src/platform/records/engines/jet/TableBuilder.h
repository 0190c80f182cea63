// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/IndexBuilder.h"
#include "platform/records/engines/jet/RowForm.h"
#include "platform/records/engines/jet/RowPages.h"

#include <functional>
#include <map>

namespace dao::jet
{

/// Writes one table of a new file: rows, then its indexes, then its definition.
class TableBuilder
{
public:
    /// page: where the definition will stand. shape: its columns and indexes; all else is found out here.
    TableBuilder(PageWriter& pages, quint32 page, const QString& name, TableDefinition shape);

    /// Columns in order of their numbers, and whatever a definition says that is no place in the file.
    TableDefinition& Definition() { return Table_; }
    const QString& Name() const { return Name_; }

    /// cells: in the order of the definition's columns. Errors: 3163 a row is too long, 94 Null in an index that may
    /// have none, 3251 a text that cannot be put in order.
    /// knownKeys: for each index the key that a text of unknown order has in it, as far as it is known.
    void AddRow(std::span<const NewCell> cells, std::span<const std::optional<QByteArray>> knownKeys = {});
    /// Raises the number behind which the counter goes on.
    void RaiseCounter(quint32 counter);
    /// No row is added afterwards. Error 3022 when an index that may not repeats a value.
    void FinishRows();
    void WriteDefinition();

private:
    void AddEntries(std::span<const NewCell> cells, std::span<const std::optional<QByteArray>> knownKeys,
                    RowPlace place);

    PageWriter& Pages_;
    QString Name_;
    TableDefinition Table_;
    RowPages Rows_;
    std::map<quint16, LongValueWriter> Longs_; ///< By the column's number.
    std::vector<IndexBuilder> Indexes_;
};

/// The pages of a definition. numberOf: says which page each is, one after the other from 0 on.
std::vector<QByteArray> MakeDefinitionPages(const TableDefinition& table,
                                            const std::function<quint32(std::size_t place)>& numberOf);

} // namespace dao::jet
