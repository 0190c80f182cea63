// SPDX-License-Identifier: Apache-2.0
#include "platform/records/SnapshotRecordset.h"

#include "platform/records/RowMark.h"
#include "platform/records/TextCodec.h"
#include "platform/records/Values.h"

#include <algorithm>

namespace dao
{

namespace
{
constexpr std::size_t ChunkSize = std::size_t{256} * 1024;
} // namespace

SnapshotRecordset::SnapshotRecordset(SessionPtr session, BoundQuery query, engine::ResultShape shape,
                                     RecordsetTypeEnum type)
    : QueryRecordset(std::move(session), std::move(query), std::move(shape), type)
{
    Open().Select(Query().Select, Query().Parameters, engine::ResultPart::Values,
                  [this](std::span<const qint64> keys, std::string_view cells) { Append(keys, cells); });
    Rows_.shrink_to_fit();
    Keys_.shrink_to_fit();
    Memos_.resize(Shape().Columns.size());
}

void SnapshotRecordset::Append(std::span<const qint64> keys, std::string_view cells)
{
    if (cells.size() > ChunkLeft_) {
        // A row larger than a chunk, which only a computed text can be, gets one of its own.
        ChunkLeft_ = std::max(ChunkSize, cells.size());
        Chunks_.emplace_back(new char[ChunkLeft_]);
        ChunkEnd_ = Chunks_.back().get();
    }
    std::copy(cells.begin(), cells.end(), ChunkEnd_);
    Rows_.push_back(ChunkEnd_);
    ChunkEnd_ += cells.size();
    ChunkLeft_ -= cells.size();
    Keys_.insert(Keys_.end(), keys.begin(), keys.end());
}

bool SnapshotRecordset::Updatable() const
{
    Open();
    return false;
}

void SnapshotRecordset::Delete()
{
    Open();
    RaiseNotSupported();
}

const Row& SnapshotRecordset::RowForEdit()
{
    RaiseNotSupported();
}

std::span<const qint64> SnapshotRecordset::KeysAt(int row) const
{
    const std::size_t count = Shape().HasKeys ? Shape().Sources.size() : 0;
    return std::span(Keys_).subspan(static_cast<std::size_t>(row) * count, count);
}

CellView SnapshotRecordset::CellAt(int ordinal) const
{
    return RowReader::At(Rows_[static_cast<std::size_t>(CurrentRow())], ordinal);
}

/// False for the memo of a row that an outer join did not find.
bool SnapshotRecordset::HasSource(int ordinal) const
{
    const int source = ResultColumnAt(ordinal).Source;
    return source < 0 || KeysAt(CurrentRow())[static_cast<std::size_t>(source)] != engine::NoRow;
}

QVariant SnapshotRecordset::StoredValueAt(int ordinal) const
{
    const CellView cell = CellAt(ordinal);
    if (cell.CellKind != CellView::Kind::Deferred)
        return FromCell(cell, ColumnAt(ordinal).Type);
    return TextOf(StoredMemoAt(ordinal, MemoTrust::Verified));
}

engine::StoredMemo SnapshotRecordset::StoredMemoAt(int ordinal, MemoTrust trust) const
{
    const CellView cell = CellAt(ordinal);
    if (cell.CellKind == CellView::Kind::Null)
        return {};
    if (cell.CellKind == CellView::Kind::Text)
        return MemoOf(cell.Text);
    if (!HasSource(ordinal))
        return {};
    const engine::ResultColumn& column = ResultColumnAt(ordinal);
    const auto source = static_cast<std::size_t>(column.Source);
    const engine::StoredMemo& memo = Memos_[static_cast<std::size_t>(ordinal)].Read(
        Open(), Shape().Sources[source], column.SourceColumn, CurrentRow(), Rows(),
        [&](int other) { return KeysAt(other)[source]; });
    return Accepted(memo, ordinal, trust);
}

MemoBeginning SnapshotRecordset::StoredBeginningAt(int ordinal, qsizetype mostOctets) const
{
    if (CellAt(ordinal).CellKind != CellView::Kind::Deferred || !HasSource(ordinal))
        return StoreRecordset::StoredBeginningAt(ordinal, mostOctets);
    const engine::ResultColumn& column = ResultColumnAt(ordinal);
    const auto source = static_cast<std::size_t>(column.Source);
    const std::optional<MemoBeginning>& beginning = Memos_[static_cast<std::size_t>(ordinal)].ReadBeginning(
        Open(), Shape().Sources[source], column.SourceColumn, mostOctets, CurrentRow(), Rows(),
        [&](int other) { return KeysAt(other)[source]; });
    if (!beginning)
        RaiseDeleted();
    return *beginning;
}

quint64 SnapshotRecordset::HashOf(int ordinal) const
{
    Open();
    const CellView cell = CellAt(ordinal);
    return cell.CellKind == CellView::Kind::Deferred ? StoreRecordset::HashOf(ordinal) : dao::HashOf(cell);
}

void SnapshotRecordset::Release()
{
    Rows_.clear();
    Chunks_.clear();
    Keys_.clear();
    Memos_.clear();
}

} // namespace dao
