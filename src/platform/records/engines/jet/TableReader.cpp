// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/TableReader.h"

#include "platform/Ascii.h"
#include "platform/records/TextCodec.h"
#include "platform/records/engines/jet/LongValue.h"
#include "platform/records/engines/jet/RowWriter.h"
#include "platform/records/engines/jet/TextForm.h"
#include "platform/records/query/StoredValues.h"

#include <algorithm>

namespace dao::jet
{

using engine::Direction;
using engine::MemoFetch;

namespace
{

constexpr qint64 SmallMemos = 65536; ///< Octets of a row's long values that are read with it.
constexpr qsizetype LargeMemo = qsizetype{1024} * 1024;

void Pack(const StoredValue& value, RowPacker& packer)
{
    if (const qint64* whole = std::get_if<qint64>(&value))
        packer.AddInteger(*whole);
    else if (const double* real = std::get_if<double>(&value))
        packer.AddReal(*real);
    else if (const QByteArray* text = std::get_if<QByteArray>(&value))
        packer.AddText({text->constData(), static_cast<std::size_t>(text->size())});
    else
        packer.AddNull();
}

bool IsForward(SeekComparison comparison)
{
    return comparison != SeekComparison::LessOrEqual && comparison != SeekComparison::Less;
}

[[noreturn]] void RaiseOtherShape(const engine::Table& table)
{
    throw Error(
        errTableNotFound,
        QStringLiteral("The table '%1' was changed by another program. Open the database anew.").arg(table.Name));
}

} // namespace

TableReader::TableReader(PageFile& file, engine::TablePtr table)
    : File_(file), Table_(std::move(table)), Definition_(ReadTableDefinition(file, static_cast<quint32>(Table_->Id)))
{
    for (const engine::Column& column : Table_->Columns) {
        Columns_.push_back(Definition_.ColumnNamed(column.Name));
        if (Columns_.back() == nullptr)
            RaiseOtherShape(*Table_);
    }
    for (const engine::IndexKey& index : Table_->Indexes) {
        const auto name = std::find_if(Definition_.IndexNames.begin(), Definition_.IndexNames.end(),
                                       [&](const IndexName& each) { return each.Name == index.Name; });
        if (name == Definition_.IndexNames.end())
            RaiseOtherShape(*Table_);
        const IndexDefinition& definition = Definition_.Indexes[name->Tree];
        Trees_.push_back({&definition, IndexTree(File_, definition.Root)});
    }
}

void TableReader::ForgetRows()
{
    Scan_.reset();
    RowCount_.reset();
    LastPlace_.reset();
}

TableScan& TableReader::Scan()
{
    if (!Scan_)
        Scan_.emplace(File_, Definition_);
    return *Scan_;
}

qint64 TableReader::LongOctetsOf(const RowCells& cells) const
{
    qint64 octets = 0;
    for (const ColumnDefinition* column : Columns_) {
        const auto stored = column->IsLong() ? cells.Octets(*column) : std::nullopt;
        octets += stored ? qint64(ReadLongReference(*stored).Size) : 0;
    }
    return octets;
}

void TableReader::Take(const FoundRow& found, qint64 id, MemoFetch memos, Row& row) const
{
    const OctetView octets = found.Octets();
    const RowCells cells(octets, Definition_);
    row.Id = id;
    row.Version = VersionOf(octets);
    row.Cells.clear();
    const bool isDeferred = memos == MemoFetch::Deferred || LongOctetsOf(cells) > SmallMemos;
    RowPacker packer(row.Cells);
    for (const ColumnDefinition* column : Columns_) {
        const auto stored = column->IsLong() ? cells.Octets(*column) : std::nullopt;
        if (!stored)
            Pack(cells.Value(*column), packer);
        else if (isDeferred)
            packer.AddDeferred();
        else
            PackMemo(*column, *stored, packer);
    }
}

void TableReader::PackMemo(const ColumnDefinition& column, const OctetView& stored, RowPacker& packer) const
{
    QByteArray text;
    try {
        text = ShownLongValue(column, ReadLongValue(File_, stored));
    } catch (const Fault&) {
        // Left to whoever asks for it: the rest of its row is to be had.
        packer.AddDeferred();
        return;
    }
    Pack(text, packer);
}

bool TableReader::ReadRow(qint64 id, MemoFetch memos, Row& row)
{
    if (!IsPlace(id))
        return false;
    const std::optional<FoundRow> found = FindRow(File_, Definition_, PlaceOf(id));
    if (found)
        Take(*found, id, memos, row);
    return found.has_value();
}

engine::StoredMemo TableReader::ReadMemo(int column, qint64 id)
{
    engine::StoredMemo memo;
    const std::optional<FoundRow> found =
        IsPlace(id) ? FindRow(File_, Definition_, PlaceOf(id)) : std::optional<FoundRow>();
    if (!found)
        return memo;
    memo.HasRow = true;
    const ColumnDefinition& definition = *Columns_[static_cast<std::size_t>(column)];
    const auto stored = RowCells(found->Octets(), Definition_).Octets(definition);
    if (!stored)
        return memo;
    try {
        memo.Utf8 = ShownLongValue(definition, ReadLongValue(File_, *stored));
    } catch (const Fault&) {
        // The rest of its row, and all other rows, are to be had.
        memo.IsDamaged = true;
    }
    if (memo.Utf8.size() > LargeMemo && !IsAscii(memo.Utf8)) {
        memo.Octets = OctetsIfAll({memo.Utf8.constData(), static_cast<std::size_t>(memo.Utf8.size())});
        if (!memo.Octets.isNull())
            memo.Utf8.clear();
    }
    if (memo.Utf8.isNull() && memo.Octets.isNull())
        memo.Utf8 = QByteArrayLiteral("");
    return memo;
}

std::optional<MemoBeginning> TableReader::ReadMemoBeginning(int column, qint64 id, qsizetype mostOctets)
{
    const std::optional<FoundRow> found =
        IsPlace(id) ? FindRow(File_, Definition_, PlaceOf(id)) : std::optional<FoundRow>();
    if (!found)
        return std::nullopt;
    const ColumnDefinition& definition = *Columns_[static_cast<std::size_t>(column)];
    const auto stored = RowCells(found->Octets(), Definition_).Octets(definition);
    if (!stored)
        return MemoBeginning{{}, true};
    const LongBeginning beginning = ReadLongBeginning(File_, *stored, StoredOctetsFor(mostOctets));
    if (!beginning.IsWhole && !ReadsFromItsBeginning(OctetView(beginning.Octets)))
        return engine::BeginningOf(ReadMemo(column, id), mostOctets);
    QByteArray shown = ShownLongValue(definition, beginning.Octets);
    if (shown.isEmpty())
        return MemoBeginning{QByteArrayLiteral(""), beginning.IsWhole};
    const bool isWhole = beginning.IsWhole && shown.size() <= mostOctets;
    shown.truncate(mostOctets);
    return MemoBeginning{std::move(shown), isWhole};
}

void TableReader::ForEachRow(const std::function<bool(const Row&)>& visit)
{
    Row row;
    Scan().ForEach([&](RowPlace known, const FoundRow& found) {
        Take(found, known.Pointer(), MemoFetch::Deferred, row);
        return visit(row);
    });
}

int TableReader::CountRows()
{
    if (!RowCount_)
        RowCount_ = static_cast<int>(Scan().Count());
    return *RowCount_;
}

/// What the last entry says of an index that is over the column alone, and lets no Null stand behind the numbers.
std::optional<qint64> TableReader::HighestByIndex(int column)
{
    for (std::size_t i = 0; i < Table_->Indexes.size(); ++i) {
        if (Table_->Indexes[i].Columns != std::vector<int>{column} || !Trees_[i].Definition->Columns[0].IsAscending)
            continue;
        const auto last = Trees_[i].Pages.Last();
        const auto row = last ? FindRow(File_, Definition_, last->Row) : std::nullopt;
        const StoredValue value =
            row ? RowCells(row->Octets(), Definition_).Value(*Columns_[static_cast<std::size_t>(column)])
                : StoredValue();
        const qint64* number = std::get_if<qint64>(&value);
        return number == nullptr ? 0 : *number;
    }
    return std::nullopt;
}

qint64 TableReader::LastCounter()
{
    const int counter = Table_->CounterColumn();
    if (counter < 0)
        return 0;
    // Real files have counters behind the numbers of their rows.
    const qint64 given = CounterIn(File_, Definition_.Page());
    if (const auto highest = HighestByIndex(counter))
        return std::max(given, *highest);
    qint64 highest = given;
    const ColumnDefinition& column = *Columns_[static_cast<std::size_t>(counter)];
    for (auto place = Scan().Next({}); place; place = Scan().Next(place)) {
        const std::optional<FoundRow> row = FindRow(File_, Definition_, *place);
        const StoredValue value = row ? RowCells(row->Octets(), Definition_).Value(column) : StoredValue();
        const qint64* number = std::get_if<qint64>(&value);
        highest = number == nullptr ? highest : std::max(highest, *number);
    }
    return highest;
}

bool TableReader::TakeRowAt(const std::optional<RowPlace>& place, MemoFetch memos, Row& row)
{
    if (!place)
        return false;
    const std::optional<FoundRow> found = FindRow(File_, Definition_, *place);
    if (!found)
        throw Fault(QStringLiteral("row %1 of page %2 is named and is not there").arg(place->Row).arg(place->Page));
    Take(*found, place->Pointer(), memos, row);
    return true;
}

bool TableReader::TakeEntry(int index, const std::optional<IndexPlace>& place, MemoFetch memos, Row& row)
{
    LastIndex_ = index;
    LastPlace_ = place;
    return place && TakeRowAt(place->Row, memos, row);
}

bool TableReader::ReadEnd(int index, Direction direction, MemoFetch memos, Row& row)
{
    const bool isForward = direction == Direction::Forward;
    if (index < 0)
        return TakeRowAt(isForward ? Scan().Next({}) : Scan().Previous({}), memos, row);
    Tree& tree = TreeOf(index);
    return TakeEntry(index, isForward ? tree.Pages.First() : tree.Pages.Last(), memos, row);
}

bool TableReader::ReadNext(int index, Direction direction, MemoFetch memos, Row& row)
{
    if (index >= 0)
        return TakeEntry(index, BesideRow(index, direction, row), memos, row);
    const RowPlace place = PlaceOf(row.Id);
    return TakeRowAt(direction == Direction::Forward ? Scan().Next(place) : Scan().Previous(place), memos, row);
}

std::optional<IndexPlace> TableReader::BesideRow(int index, Direction direction, const Row& row)
{
    Tree& tree = TreeOf(index);
    const bool isForward = direction == Direction::Forward;
    std::optional<IndexPlace> place;
    if (LastIndex_ == index && LastPlace_ && LastPlace_->Row == PlaceOf(row.Id)) {
        place = LastPlace_;
    } else {
        const std::vector<StoredValue> values = ValuesOf(index, row);
        if (const auto key = KeyFor(index, values, TextOrder::Known))
            return BesideKey(tree, *key, isForward, direction, PlaceOf(row.Id));
        const auto key = KeyFor(index, values, TextOrder::Extended);
        place = EntryOf(tree, key.value_or(QByteArray()), PlaceOf(row.Id));
        if (!place && key)
            return BesideKey(tree, *key, isForward, direction, PlaceOf(row.Id));
    }
    if (!place)
        throw Error(errRecordDeleted, QStringLiteral("Record is deleted."));
    return isForward ? tree.Pages.Next(*place) : tree.Pages.Previous(*place);
}

std::optional<IndexPlace> TableReader::BesideKey(Tree& tree, const QByteArray& key, bool isBehind, Direction direction,
                                                 std::optional<RowPlace> row)
{
    const std::optional<IndexPlace> behind = tree.Pages.FirstFrom(key, isBehind, row);
    if (direction == Direction::Forward)
        return behind;
    return behind ? tree.Pages.Previous(*behind) : tree.Pages.Last();
}

/// The entry of a row whose key may be this one, or another that another program made.
std::optional<IndexPlace> TableReader::EntryOf(Tree& tree, const QByteArray& key, RowPlace row)
{
    const auto place = tree.Pages.FirstFrom(key, false, row);
    return place && place->Row == row ? place : tree.Pages.EntryOf(row);
}

bool TableReader::Seek(int index, SeekComparison comparison, std::span<const StoredValue> keys, MemoFetch memos,
                       Row& row)
{
    Tree& tree = TreeOf(index);
    const std::optional<QByteArray> known = KeyFor(index, keys, TextOrder::Known);
    const std::optional<QByteArray> key = known ? known : KeyFor(index, keys, TextOrder::Extended);
    if (!key)
        return SeekByLooking(index, comparison, keys, row);
    const bool isBehind = comparison == SeekComparison::Greater || comparison == SeekComparison::LessOrEqual;
    const std::optional<IndexPlace> place =
        BesideKey(tree, *key, isBehind, IsForward(comparison) ? Direction::Forward : Direction::Backward);
    // Another program may have given the text another place.
    if (comparison == SeekComparison::Equal && place && !tree.Pages.BeginsWith(*place, *key))
        return !known && SeekByLooking(index, comparison, keys, row);
    if (comparison == SeekComparison::Equal && !place && !known)
        return SeekByLooking(index, comparison, keys, row);
    return TakeEntry(index, place, memos, row);
}

bool TableReader::SeekByLooking(int index, SeekComparison comparison, std::span<const StoredValue> keys, Row& row)
{
    if (comparison != SeekComparison::Equal && HoldsText(index)) {
        throw Error(errNotSupported, QStringLiteral("The text that is sought has characters whose place in the order "
                                                    "of a Jet file is not known. Look for an equal one."));
    }
    const Direction direction = IsForward(comparison) ? Direction::Forward : Direction::Backward;
    bool isThere = ReadEnd(index, direction, MemoFetch::SmallOnes, row);
    for (; isThere; isThere = ReadNext(index, direction, MemoFetch::SmallOnes, row)) {
        const std::vector<StoredValue> values = ValuesOf(index, row);
        int order = 0;
        for (std::size_t i = 0; i < keys.size() && order == 0; ++i) {
            order = query::CompareStored(values[i], keys[i]);
            order = TreeOf(index).Definition->Columns[i].IsAscending ? order : -order;
        }
        const bool mayBeEqual = comparison != SeekComparison::Greater && comparison != SeekComparison::Less;
        if (order == 0 ? mayBeEqual : comparison != SeekComparison::Equal && (order > 0) == IsForward(comparison))
            return true;
    }
    return false;
}

bool TableReader::ForEachRowWith(int column, const StoredValue& value, const std::function<bool(const Row&)>& visit)
{
    const std::vector<int> wanted{column};
    const auto found = std::find_if(Table_->Indexes.begin(), Table_->Indexes.end(),
                                    [&](const engine::IndexKey& index) { return index.Columns == wanted; });
    if (found == Table_->Indexes.end())
        return false;
    const int index = static_cast<int>(found - Table_->Indexes.begin());
    const std::optional<QByteArray> key = KeyFor(index, std::span(&value, 1), TextOrder::Known);
    if (!key)
        return false;
    IndexTree& tree = TreeOf(index).Pages;
    Row row;
    for (auto place = tree.FirstFrom(*key, false); place && tree.BeginsWith(*place, *key); place = tree.Next(*place)) {
        TakeRowAt(place->Row, MemoFetch::Deferred, row);
        if (!visit(row))
            break;
    }
    return true;
}

std::optional<QByteArray> TableReader::KeyFor(int index, std::span<const StoredValue> values, TextOrder order) const
{
    return MakeKey(Definition_, *Trees_[static_cast<std::size_t>(index)].Definition, values, order);
}

std::vector<StoredValue> TableReader::ValuesOf(int index, const Row& row) const
{
    std::vector<StoredValue> values;
    for (const int column : Table_->Indexes[static_cast<std::size_t>(index)].Columns)
        values.push_back(query::Kept(query::ViewOf(RowReader::At(row.Cells.data(), column))));
    return values;
}

bool TableReader::HoldsText(int index) const
{
    const std::vector<int>& columns = Table_->Indexes[static_cast<std::size_t>(index)].Columns;
    return std::any_of(columns.begin(), columns.end(), [&](int column) {
        const DataTypeEnum type = Table_->Columns[static_cast<std::size_t>(column)].Type;
        return type == dbText || type == dbMemo;
    });
}

} // namespace dao::jet
