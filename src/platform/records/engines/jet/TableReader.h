// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/engines/jet/IndexTree.h"
#include "platform/records/engines/jet/KeyForm.h"
#include "platform/records/engines/jet/RowCells.h"
#include "platform/records/engines/jet/TableScan.h"

namespace dao::jet
{

/// The ids of rows in the record store are the pointers to where they are known to stand.
inline bool IsPlace(qint64 id)
{
    return id >= 0 && id <= 0xFFFFFFFF;
}
inline RowPlace PlaceOf(qint64 id)
{
    return RowPlace::FromPointer(static_cast<quint32>(id));
}

/// Reads the rows of one table for the record store, as long as its definition is not changed. A row's id is the
/// pointer to where it is known to stand. Throws Fault for what is damaged, and what engine::Store says otherwise.
class TableReader
{
public:
    /// table: as the store handed it out; 3078 when the file's table has no longer these columns and indexes.
    TableReader(PageFile& file, engine::TablePtr table);

    const engine::TablePtr& Table() const { return Table_; }
    const TableDefinition& Definition() const { return Definition_; }
    /// The place in the definition of a column of the table.
    std::size_t PlaceOfColumn(int column) const
    {
        return static_cast<std::size_t>(Columns_[static_cast<std::size_t>(column)] - Definition_.Columns.data());
    }
    /// Rows were changed.
    void ForgetRows();

    bool ReadEnd(int index, engine::Direction direction, engine::MemoFetch memos, Row& row);
    bool ReadNext(int index, engine::Direction direction, engine::MemoFetch memos, Row& row);
    bool Seek(int index, SeekComparison comparison, std::span<const StoredValue> keys, engine::MemoFetch memos,
              Row& row);
    /// False when it is gone.
    bool ReadRow(qint64 id, engine::MemoFetch memos, Row& row);
    engine::StoredMemo ReadMemo(int column, qint64 id);
    /// Nothing for a row that is gone.
    std::optional<MemoBeginning> ReadMemoBeginning(int column, qint64 id, qsizetype mostOctets);
    /// Each row in order of entry, its memos deferred, until visit answers false.
    void ForEachRow(const std::function<bool(const Row&)>& visit);
    int CountRows();
    qint64 LastCounter();
    /// Whether an index finds the rows of a key, and those rows, one after the other, in order of entry.
    bool ForEachRowWith(int column, const StoredValue& value, const std::function<bool(const Row&)>& visit);

private:
    /// An index of the table beside its tree in the file.
    struct Tree
    {
        const IndexDefinition* Definition;
        IndexTree Pages;
    };

    Tree& TreeOf(int index) { return Trees_[static_cast<std::size_t>(index)]; }
    TableScan& Scan();
    qint64 LongOctetsOf(const RowCells& cells) const;
    void Take(const FoundRow& found, qint64 id, engine::MemoFetch memos, Row& row) const;
    void PackMemo(const ColumnDefinition& column, const OctetView& stored, RowPacker& packer) const;
    bool TakeRowAt(const std::optional<RowPlace>& place, engine::MemoFetch memos, Row& row);
    bool TakeEntry(int index, const std::optional<IndexPlace>& place, engine::MemoFetch memos, Row& row);
    std::optional<IndexPlace> BesideRow(int index, engine::Direction direction, const Row& row);
    std::optional<IndexPlace> BesideKey(Tree& tree, const QByteArray& key, bool isBehind, engine::Direction direction,
                                        std::optional<RowPlace> row = {});
    bool SeekByLooking(int index, SeekComparison comparison, std::span<const StoredValue> keys, Row& row);
    /// Nothing when the index is in an order that is not known, or the value is not of its type.
    std::optional<QByteArray> KeyFor(int index, std::span<const StoredValue> values, TextOrder order) const;
    std::optional<IndexPlace> EntryOf(Tree& tree, const QByteArray& key, RowPlace row);
    std::optional<qint64> HighestByIndex(int column);
    std::vector<StoredValue> ValuesOf(int index, const Row& row) const;
    bool HoldsText(int index) const;

    PageFile& File_;
    engine::TablePtr Table_;
    TableDefinition Definition_;
    std::vector<const ColumnDefinition*> Columns_; ///< Of Definition_, in the order of Table_.
    std::vector<Tree> Trees_;                      ///< In the order of Table_.
    std::optional<TableScan> Scan_;
    std::optional<int> RowCount_;
    int LastIndex_ = -1; ///< Of LastPlace_.
    std::optional<IndexPlace> LastPlace_;
};

} // namespace dao::jet
