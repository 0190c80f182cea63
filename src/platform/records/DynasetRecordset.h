// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/QueryRecordset.h"

namespace dao
{

/// A query over one table whose rows can be edited. Which rows there are is fixed at the opening; their values are read
/// anew, one row when somebody jumps to it, a few dozen ahead when rows are walked one after the other. Moves
/// pass over rows that somebody deleted meanwhile.
class DynasetRecordset final : public QueryRecordset
{
public:
    DynasetRecordset(SessionPtr session, BoundQuery query, engine::ResultShape shape);

    bool Updatable() const override;
    void Delete() override;

protected:
    engine::TablePtr EditedTable() const override { return Shape().Sources.front(); }
    int EditedColumn(int ordinal) const override { return ResultColumnAt(ordinal).SourceColumn; }
    const Row& RowForEdit() override;
    void RowWasChanged() override { ForgetValues(); }
    void RowWasAdded(qint64 id) override;
    QVariant StoredValueAt(int ordinal) const override;
    engine::StoredMemo StoredMemoAt(int ordinal, MemoTrust trust) const override;
    void Release() override;
    int Rows() const override { return static_cast<int>(Keys_.size()); }
    int GoneRows() const override { return GoneRows_; }
    bool IsGone(int row) const override;
    std::span<const qint64> KeysAt(int row) const override;
    void ForgetValues() const override;

private:
    /// The row's values, fetched with those behind it if need be; the id NoRow when it is gone.
    const Row& Fetched(int row) const;
    const Row& CurrentValues() const;

    mutable std::vector<qint64> Keys_; ///< NoRow for one that is gone.
    mutable int GoneRows_ = 0;
    mutable std::vector<Row> Window_;
    mutable int WindowFirst_ = 0;
    mutable int Batch_ = 1;
    mutable bool AsksForMemos_ = false;
    mutable std::vector<MemoWindow> Memos_; ///< Large ones, by ordinal.
};

} // namespace dao
