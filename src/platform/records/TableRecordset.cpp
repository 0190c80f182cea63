// SPDX-License-Identifier: Apache-2.0
#include "platform/records/TableRecordset.h"

#include "platform/records/TextCodec.h"
#include "platform/records/Values.h"

namespace dao
{

using engine::Direction;
using engine::MemoFetch;

TableRecordset::TableRecordset(SessionPtr session, engine::TablePtr table)
    : StoreRecordset(std::move(session), table->Name), Table_(std::move(table))
{
    for (const engine::Column& column : Table_->Columns)
        AddField(column);
}

RecordsetTypeEnum TableRecordset::Type() const
{
    Open();
    return dbOpenTable;
}

bool TableRecordset::Updatable() const
{
    return Open().Updatable();
}

int TableRecordset::RecordCount() const
{
    return Open().CountRows(Table_);
}

Field& TableRecordset::FieldNamed(const QString& name) const
{
    const int place = Table_->FindColumn(name);
    return place >= 0 ? Fields_.Item(place) : Fields_.Item(name);
}

const engine::Column& TableRecordset::ColumnAt(int ordinal) const
{
    return Table_->Columns[static_cast<std::size_t>(ordinal)];
}

MemoFetch TableRecordset::MemosOnMoves() const
{
    return AsksForMemos_ ? MemoFetch::SmallOnes : MemoFetch::Deferred;
}

void TableRecordset::Settle() const
{
    engine::Store& store = Open();
    if (Place_ != Place::Unread)
        return;
    ForgetMemo();
    bool isThere = store.ReadEnd(Table_, Index_, Direction::Forward, MemosOnMoves(), Row_);
    // The current row stays the one that was the first before rows were added here.
    while (isThere && Added_.contains(Row_.Id))
        isThere = store.ReadNext(Table_, Index_, Direction::Forward, MemosOnMoves(), Row_);
    Place_ = isThere ? Place::OnRow : Place::Empty;
    Added_.clear();
}

bool TableRecordset::AtEOF() const
{
    Settle();
    if (Place_ == Place::NoRow) {
        Row row;
        return !Open().ReadEnd(Table_, Index_, Direction::Forward, MemoFetch::Deferred, row);
    }
    return Place_ == Place::End || Place_ == Place::Empty;
}

bool TableRecordset::AtBOF() const
{
    Settle();
    if (Place_ == Place::NoRow)
        return AtEOF();
    return Place_ == Place::Beginning || Place_ == Place::Empty;
}

void TableRecordset::MoveToEnd(Direction direction)
{
    engine::Store& store = Open();
    DropBuffer();
    ForgetMemo();
    const bool isFound = store.ReadEnd(Table_, Index_, direction, MemosOnMoves(), Row_);
    Place_ = isFound ? Place::OnRow : Place::Empty;
    if (!isFound)
        RaiseNoCurrentRecord();
}

void TableRecordset::MoveFirst()
{
    MoveToEnd(Direction::Forward);
}

void TableRecordset::MoveLast()
{
    MoveToEnd(Direction::Backward);
}

void TableRecordset::MoveOn(Direction direction)
{
    engine::Store& store = Open();
    DropBuffer();
    Settle();
    const Place behind = direction == Direction::Forward ? Place::End : Place::Beginning;
    const Place before = direction == Direction::Forward ? Place::Beginning : Place::End;
    if (Place_ == behind || Place_ == Place::Empty || Place_ == Place::NoRow)
        RaiseNoCurrentRecord();
    if (Place_ == before) {
        MoveToEnd(direction);
        return;
    }
    if (Place_ == Place::Changed) {
        // An update may have moved the row within its index. If it is gone, its old place is where to go on from.
        std::vector<Row> rows = store.ReadRows(Table_, std::span(&Row_.Id, 1), MemoFetch::Deferred, 0);
        if (rows.front().Id != engine::NoRow)
            Row_ = std::move(rows.front());
    }
    ForgetMemo();
    Place_ = store.ReadNext(Table_, Index_, direction, MemosOnMoves(), Row_) ? Place::OnRow : behind;
}

void TableRecordset::MoveNext()
{
    MoveOn(Direction::Forward);
}

void TableRecordset::MovePrevious()
{
    MoveOn(Direction::Backward);
}

QString TableRecordset::Index() const
{
    Open();
    return Index_ < 0 ? QString() : Table_->Indexes[static_cast<std::size_t>(Index_)].Name;
}

void TableRecordset::SetIndex(const QString& name)
{
    Open();
    int index = -1;
    if (!name.isEmpty()) {
        index = Table_->FindIndex(name);
        if (index < 0)
            throw Error(errNotAnIndex, QStringLiteral("'%1' is not an index in this table.").arg(name));
    }
    DropBuffer();
    Index_ = index;
    Place_ = Place::Unread;
    Added_.clear();
}

void TableRecordset::Seek(SeekComparison comparison, std::initializer_list<QVariant> keys)
{
    engine::Store& store = Open();
    DropBuffer();
    if (Index_ < 0)
        throw Error(errNotAnIndex, QStringLiteral("Seek needs an index of this table to be set."));
    const engine::IndexKey& index = Table_->Indexes[static_cast<std::size_t>(Index_)];
    if (keys.size() == 0 || keys.size() > index.Columns.size()) {
        throw Error(errDataTypeConversion,
                    QStringLiteral("Index '%1' takes 1 to %2 keys.").arg(index.Name).arg(index.Columns.size()));
    }
    std::vector<StoredValue> stored;
    stored.reserve(keys.size());
    for (const QVariant& key : keys)
        stored.push_back(ToStoredKey(key, ColumnAt(index.Columns[stored.size()])));
    ForgetMemo();
    const bool isFound = store.Seek(Table_, Index_, comparison, stored, MemoFetch::SmallOnes, Row_);
    Place_ = isFound ? Place::OnRow : Place::NoRow;
    NoMatch_ = !isFound;
}

const Row& TableRecordset::CurrentRow() const
{
    Settle();
    if (Place_ == Place::Changed) {
        std::vector<Row> rows = Open().ReadRows(Table_, std::span(&Row_.Id, 1), MemosOnMoves(), 0);
        if (rows.front().Id == engine::NoRow)
            RaiseDeleted();
        ForgetMemo();
        Row_ = std::move(rows.front());
        Place_ = Place::OnRow;
    }
    if (Place_ != Place::OnRow)
        RaiseNoCurrentRecord();
    return Row_;
}

const Row& TableRecordset::RowForEdit()
{
    Settle();
    if (Place_ == Place::OnRow)
        Place_ = Place::Changed;
    return CurrentRow();
}

void TableRecordset::RowWasAdded(qint64 id)
{
    if (Place_ == Place::Unread)
        Added_.insert(id);
}

void TableRecordset::Delete()
{
    engine::Store& store = Open();
    if (!store.Updatable())
        throw Error(errReadOnly, QStringLiteral("Cannot update: the database is read only."));
    DropBuffer();
    const Row& row = CurrentRow();
    store.Delete(Table_, row.Id);
    Place_ = Place::Deleted;
}

QVariant TableRecordset::StoredValueAt(int ordinal) const
{
    const Row& row = CurrentRow();
    const CellView cell = RowReader::At(row.Cells.data(), ordinal);
    if (cell.CellKind != CellView::Kind::Deferred)
        return FromCell(cell, ColumnAt(ordinal).Type);
    return TextOf(StoredMemoAt(ordinal, MemoTrust::Verified));
}

engine::StoredMemo TableRecordset::StoredMemoAt(int ordinal, MemoTrust trust) const
{
    const Row& row = CurrentRow();
    AsksForMemos_ = true;
    const CellView cell = RowReader::At(row.Cells.data(), ordinal);
    if (cell.CellKind == CellView::Kind::Null)
        return {};
    if (cell.CellKind == CellView::Kind::Text)
        return MemoOf(cell.Text);
    if (MemoOrdinal_ != ordinal) {
        ForgetMemo();
        Memo_ = Open().ReadMemos(Table_, ordinal, std::span(&row.Id, 1), 0).front();
        MemoOrdinal_ = ordinal;
    }
    return Accepted(Memo_, ordinal, trust);
}

void TableRecordset::Release()
{
    Row_ = {};
    ForgetMemo();
}

void TableRecordset::ForgetMemo() const
{
    Memo_ = {};
    MemoOrdinal_ = -1;
}

} // namespace dao
