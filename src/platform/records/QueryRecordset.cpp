// SPDX-License-Identifier: Apache-2.0
#include "platform/records/QueryRecordset.h"

#include "platform/records/jetsql/Parser.h"

#include <algorithm>
#include <set>

namespace dao
{

QueryRecordset::QueryRecordset(SessionPtr session, BoundQuery query, engine::ResultShape shape, RecordsetTypeEnum type)
    : StoreRecordset(std::move(session), query.Text), Query_(std::move(query)), Shape_(std::move(shape)), Type_(type)
{
    for (const engine::ResultColumn& column : Shape_.Columns) {
        AddField(column.Definition);
        Columns_.Columns.push_back(column.Definition);
    }
    Columns_.Complete();
}

RecordsetTypeEnum QueryRecordset::Type() const
{
    Open();
    return Type_;
}

Field& QueryRecordset::FieldNamed(const QString& name) const
{
    const int place = Columns_.FindColumn(name);
    return place >= 0 ? Fields_.Item(place) : Fields_.Item(name);
}

const engine::Column& QueryRecordset::ColumnAt(int ordinal) const
{
    return ResultColumnAt(ordinal).Definition;
}

const engine::ResultColumn& QueryRecordset::ResultColumnAt(int ordinal) const
{
    return Shape_.Columns[static_cast<std::size_t>(ordinal)];
}

int QueryRecordset::RecordCount() const
{
    Open();
    return Rows() - GoneRows();
}

void QueryRecordset::Settle() const
{
    Open();
    if (HasLeft_)
        return;
    const int step = Heading_ == Heading::Forward ? 1 : -1;
    while (Row_ >= 0 && Row_ < Rows() && IsGone(Row_))
        Row_ += step;
}

bool QueryRecordset::AtEOF() const
{
    Settle();
    return RecordCount() == 0 ? !HasLeft_ : Row_ >= Rows();
}

bool QueryRecordset::AtBOF() const
{
    Settle();
    return RecordCount() == 0 ? !HasLeft_ : Row_ < 0;
}

void QueryRecordset::MoveTo(int row, Heading heading)
{
    Row_ = row;
    Heading_ = heading;
    HasLeft_ = false;
    Settle();
}

void QueryRecordset::MoveFirst()
{
    Open();
    DropBuffer();
    ForgetValues();
    MoveTo(0, Heading::Forward);
    if (Row_ >= Rows())
        RaiseNoCurrentRecord();
}

void QueryRecordset::MoveLast()
{
    Open();
    DropBuffer();
    ForgetValues();
    MoveTo(Rows() - 1, Heading::Backward);
    if (Row_ < 0)
        RaiseNoCurrentRecord();
}

void QueryRecordset::MoveNext()
{
    Open();
    DropBuffer();
    Settle();
    if (Row_ >= Rows() || AtEOF())
        RaiseNoCurrentRecord();
    MoveTo(Row_ + 1, Heading::Forward);
}

void QueryRecordset::MovePrevious()
{
    Open();
    DropBuffer();
    Settle();
    if (Row_ < 0 || AtBOF())
        RaiseNoCurrentRecord();
    MoveTo(Row_ - 1, Heading::Backward);
}

void QueryRecordset::RowWasListed()
{
    if (!HasLeft_ && Row_ == Rows() - 1)
        Row_ = Rows();
}

int QueryRecordset::CurrentRow() const
{
    Settle();
    if (HasLeft_ || Row_ < 0 || Row_ >= Rows())
        RaiseNoCurrentRecord();
    return Row_;
}

void QueryRecordset::FindFirst(const QString& criteria)
{
    engine::Store& store = Open();
    jetsql::Expression condition = jetsql::ParseCondition(criteria);
    if (!Shape_.HasKeys)
        RaiseNotSupported();
    DropBuffer();
    jetsql::SelectStatement search = Query_.Select;
    search.Where = jetsql::Both(std::move(search.Where), std::move(condition));
    search.OrderBy.clear();
    search.Top.reset();
    std::set<std::vector<qint64>> matches;
    store.Select(search, Query_.Parameters, engine::ResultPart::Keys,
                 [&](std::span<const qint64> keys, std::string_view) { matches.emplace(keys.begin(), keys.end()); });
    NoMatch_ = true;
    for (int row = 0; row < Rows() && NoMatch_; ++row) {
        const std::span<const qint64> keys = KeysAt(row);
        if (matches.contains({keys.begin(), keys.end()}) && !IsGone(row)) {
            ForgetValues();
            MoveTo(row, Heading::Forward);
            NoMatch_ = false;
        }
    }
}

template <typename Memo>
const Memo& ReadAhead<Memo>::At(int row, int rows, int largestBatch, const KeyAt& keyAt, const Fetch& fetch)
{
    const int behind = First_ + static_cast<int>(Memos_.size());
    if (row < First_ || row >= behind) {
        // Whoever walks gets more and more at a time; whoever jumps gets what he asks for.
        Batch_ = !Memos_.empty() && row == behind ? std::min(Batch_ * 2, largestBatch) : 1;
        std::vector<qint64> ids;
        for (int next = row; next < std::min(row + Batch_, rows); ++next)
            ids.push_back(keyAt(next));
        Memos_.clear();
        try {
            Memos_ = fetch(ids);
        } catch (const Error& error) {
            // One of those behind it cannot be read, which is no reason to withhold this one.
            if (error.Number() != errFileDamaged || ids.size() == 1)
                throw;
            Batch_ = 1;
            Memos_ = fetch(std::span(ids).first(1));
        }
        First_ = row;
    }
    return Memos_[static_cast<std::size_t>(row - First_)];
}

const engine::StoredMemo& MemoWindow::Read(engine::Store& store, const engine::TablePtr& table, int column, int row,
                                           int rows, const KeyAt& keyAt)
{
    return Memos_.At(row, rows, LargestBatch, keyAt,
                     [&](std::span<const qint64> ids) { return store.ReadMemos(table, column, ids, BatchOctets); });
}

const std::optional<MemoBeginning>& MemoWindow::ReadBeginning(engine::Store& store, const engine::TablePtr& table,
                                                              int column, qsizetype mostOctets, int row, int rows,
                                                              const KeyAt& keyAt)
{
    if (mostOctets != MostOctets_)
        Beginnings_.Clear();
    MostOctets_ = mostOctets;
    return Beginnings_.At(row, rows, LargestBatchOfBeginnings, keyAt, [&](std::span<const qint64> ids) {
        return store.ReadMemoBeginnings(table, column, ids, mostOctets);
    });
}

} // namespace dao
