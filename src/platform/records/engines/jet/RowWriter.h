// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/IndexEdit.h"
#include "platform/records/engines/jet/RowCells.h"
#include "platform/records/engines/jet/RowForm.h"
#include "platform/records/engines/jet/RowHeap.h"
#include "platform/records/engines/jet/RowSeal.h"

namespace dao::jet
{

/// Stores rows of one table in the file's transaction: rows, long values, the entries of all indexes, the counts in the
/// definition. What it throws leaves a part of the change behind: the caller takes the step back.
///
/// Errors: 3022 a value that an index may not have twice, 94 Null where an index takes none, 3163 a row that is too
/// long, 3251 an index over texts in an order that is not known.
class RowWriter
{
public:
    /// name: of the table, for errors. The definition must live as long as this.
    RowWriter(PageFile& file, PageAllocation& pages, const TableDefinition& table, const QString& name)
        : File_(file), Pages_(pages), Table_(table), Name_(name), Heap_(file, pages, table)
    {
    }

    /// cells: in the order of the definition's columns.
    RowPlace Insert(std::span<const NewCell> cells);
    /// cells: nothing for what stays.
    void Update(RowPlace place, std::span<const std::optional<NewCell>> cells);
    void Delete(RowPlace place);

    /// Puts the entries of all rows that are there into an index that has none.
    void FillIndex(std::size_t index);

private:
    /// The entry that a row has, or is to have, in an index.
    struct Key
    {
        QByteArray Octets;
        bool IsKnown = false;   ///< Whoever made the entry, it is this.
        bool IsLeftOut = false; ///< All of it is Null, and the index takes no Nulls.
        bool MayRepeat = false;
    };

    std::vector<StoredValue> ValuesIn(const RowCells& row) const;
    /// Of all long columns of the table.
    std::vector<quint32> LongSumsIn(const OctetView& row) const;
    bool IsIndexed(quint16 column) const;
    Key KeyOf(std::size_t index, std::span<const StoredValue> values) const;
    void RequireUnique(std::size_t index, const Key& key, std::span<const StoredValue> values, RowPlace own);
    bool HasEqualRow(const IndexDefinition& index, std::span<const StoredValue> values, RowPlace own);
    void AddEntry(std::size_t index, const Key& key, std::span<const StoredValue> values, RowPlace place);
    void DeleteEntry(std::size_t index, const Key& key, RowPlace place);
    QByteArray StoredLong(const ColumnDefinition& column, const QByteArray& value);
    void DeleteLong(const ColumnDefinition& column, const QByteArray& reference);
    void CountRows(int more);
    void RaiseCounter(const NewCell& cell);

    PageFile& File_;
    PageAllocation& Pages_;
    const TableDefinition& Table_;
    QString Name_;
    RowHeap Heap_;
};

/// The counters of a table in its definition.
quint32 RowCountIn(PageFile& file, quint32 definition);
quint32 CounterIn(PageFile& file, quint32 definition);
void SetCounterIn(PageFile& file, quint32 definition, quint32 counter);

} // namespace dao::jet
