// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/QueryRecordset.h"

namespace dao
{

/// Rows and values as they were at the opening, packed in memory; memos alone are read from the file when they are
/// asked for, as they are then. Serves dynasets over several tables too, which nobody can edit.
class SnapshotRecordset final : public QueryRecordset
{
public:
    SnapshotRecordset(SessionPtr session, BoundQuery query, engine::ResultShape shape, RecordsetTypeEnum type);

    bool Updatable() const override;
    void Delete() override;

protected:
    engine::TablePtr EditedTable() const override { return nullptr; }
    int EditedColumn(int) const override { return -1; }
    const Row& RowForEdit() override;
    void RowWasChanged() override {}
    void RowWasAdded(qint64) override {}
    QVariant StoredValueAt(int ordinal) const override;
    engine::StoredMemo StoredMemoAt(int ordinal, MemoTrust trust) const override;
    MemoBeginning StoredBeginningAt(int ordinal, qsizetype mostOctets) const override;
    quint64 HashOf(int ordinal) const override;
    void Release() override;
    int Rows() const override { return static_cast<int>(Rows_.size()); }
    bool IsGone(int) const override { return false; }
    std::span<const qint64> KeysAt(int row) const override;
    void ForgetValues() const override {}

private:
    CellView CellAt(int ordinal) const;
    bool HasSource(int ordinal) const;
    void Append(std::span<const qint64> keys, std::string_view cells);

    std::vector<std::unique_ptr<char[]>> Chunks_; ///< Where the rows' cells lie.
    std::size_t ChunkLeft_ = 0;
    char* ChunkEnd_ = nullptr;
    std::vector<const char*> Rows_;
    std::vector<qint64> Keys_;              ///< Of all rows, one for each table of the query.
    mutable std::vector<MemoWindow> Memos_; ///< By ordinal.
};

} // namespace dao
