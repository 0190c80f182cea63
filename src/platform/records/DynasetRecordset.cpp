// SPDX-License-Identifier: Apache-2.0
#include "platform/records/DynasetRecordset.h"

#include "platform/records/TextCodec.h"
#include "platform/records/Values.h"

#include <algorithm>

namespace dao
{

DynasetRecordset::DynasetRecordset(SessionPtr session, BoundQuery query, engine::ResultShape shape)
    : QueryRecordset(std::move(session), std::move(query), std::move(shape), dbOpenDynaset)
{
    Open().Select(Query().Select, Query().Parameters, engine::ResultPart::Keys,
                  [this](std::span<const qint64> keys, std::string_view) { Keys_.push_back(keys.front()); });
}

bool DynasetRecordset::Updatable() const
{
    return Open().Updatable();
}

void DynasetRecordset::RowWasAdded(qint64 id)
{
    Keys_.push_back(id);
    RowWasListed();
}

std::span<const qint64> DynasetRecordset::KeysAt(int row) const
{
    return std::span(Keys_).subspan(static_cast<std::size_t>(row), 1);
}

void DynasetRecordset::ForgetValues() const
{
    Window_.clear();
    Memos_.assign(Shape().Columns.size(), {});
}

const Row& DynasetRecordset::Fetched(int row) const
{
    const int behind = WindowFirst_ + static_cast<int>(Window_.size());
    if (row < WindowFirst_ || row >= behind) {
        Batch_ = !Window_.empty() && row == behind ? std::min(Batch_ * 2, LargestBatch) : 1;
        const int count = std::min(Batch_, Rows() - row);
        const auto ids = std::span(Keys_).subspan(static_cast<std::size_t>(row), static_cast<std::size_t>(count));
        const auto memos = AsksForMemos_ ? engine::MemoFetch::SmallOnes : engine::MemoFetch::Deferred;
        Window_.clear();
        Window_ = Open().ReadRows(EditedTable(), ids, memos, BatchOctets);
        WindowFirst_ = row;
    }
    return Window_[static_cast<std::size_t>(row - WindowFirst_)];
}

bool DynasetRecordset::IsGone(int row) const
{
    qint64& key = Keys_[static_cast<std::size_t>(row)];
    if (key == engine::NoRow)
        return true;
    if (Fetched(row).Id != engine::NoRow)
        return false;
    key = engine::NoRow;
    ++GoneRows_;
    return true;
}

const Row& DynasetRecordset::CurrentValues() const
{
    const Row& row = Fetched(CurrentRow());
    if (row.Id == engine::NoRow)
        RaiseDeleted();
    return row;
}

const Row& DynasetRecordset::RowForEdit()
{
    const int row = CurrentRow();
    ForgetValues();
    const Row& values = Fetched(row);
    if (values.Id == engine::NoRow)
        RaiseDeleted();
    return values;
}

void DynasetRecordset::Delete()
{
    engine::Store& store = Open();
    if (!store.Updatable())
        throw Error(errReadOnly, QStringLiteral("Cannot update: the database is read only."));
    DropBuffer();
    const int row = CurrentRow();
    qint64& key = Keys_[static_cast<std::size_t>(row)];
    store.Delete(EditedTable(), key);
    key = engine::NoRow;
    ++GoneRows_;
    LeaveRow();
}

QVariant DynasetRecordset::StoredValueAt(int ordinal) const
{
    const CellView cell = RowReader::At(CurrentValues().Cells.data(), EditedColumn(ordinal));
    if (cell.CellKind != CellView::Kind::Deferred)
        return FromCell(cell, ColumnAt(ordinal).Type);
    return TextOf(StoredMemoAt(ordinal, MemoTrust::Verified));
}

engine::StoredMemo DynasetRecordset::StoredMemoAt(int ordinal, MemoTrust trust) const
{
    const CellView cell = RowReader::At(CurrentValues().Cells.data(), EditedColumn(ordinal));
    AsksForMemos_ = true;
    if (cell.CellKind == CellView::Kind::Null)
        return {};
    if (cell.CellKind == CellView::Kind::Text)
        return MemoOf(cell.Text);
    if (Memos_.empty())
        Memos_.resize(Shape().Columns.size());
    const engine::StoredMemo& memo = Memos_[static_cast<std::size_t>(ordinal)].Read(
        Open(), EditedTable(), EditedColumn(ordinal), CurrentRow(), Rows(),
        [&](int row) { return Keys_[static_cast<std::size_t>(row)]; });
    return Accepted(memo, ordinal, trust);
}

void DynasetRecordset::Release()
{
    Window_.clear();
    Memos_.clear();
    Keys_.clear();
}

} // namespace dao
