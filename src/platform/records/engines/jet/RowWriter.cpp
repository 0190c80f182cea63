// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/RowWriter.h"

#include "platform/records/Error.h"
#include "platform/records/engines/jet/IndexTree.h"
#include "platform/records/engines/jet/KeyForm.h"
#include "platform/records/engines/jet/LongValue.h"
#include "platform/records/engines/jet/PageLayout.h"
#include "platform/records/engines/jet/PageWriter.h"
#include "platform/records/engines/jet/TableScan.h"
#include "platform/records/query/StoredValues.h"

#include <algorithm>

namespace dao::jet
{

namespace
{

constexpr qsizetype DistinctKeysAt = 4; // Of a tree.

quint32 NumberIn(PageFile& file, quint32 definition, qsizetype at)
{
    return OctetView(file.Page(definition, PageType::Definition)).U32(at);
}

void SetNumberIn(PageFile& file, quint32 definition, qsizetype at, quint32 number)
{
    QByteArray page = file.Page(definition, PageType::Definition);
    Put(page, at, number);
    file.Change(definition, page);
}

/// What stands in a row for a cell that is no long value.
std::optional<QByteArray> OctetsOf(const ColumnDefinition& column, const NewCell& cell)
{
    if (!column.Is(ColumnType::Boolean))
        return cell.Octets;
    const qint64* truth = std::get_if<qint64>(&cell.Value);
    return truth != nullptr && *truth != 0 ? std::optional(QByteArray()) : std::nullopt;
}

StoredValue KeyValueOf(const ColumnDefinition& column, const NewCell& cell)
{
    return column.Is(ColumnType::Boolean) && query::IsNull(cell.Value) ? StoredValue(qint64(0)) : cell.Value;
}

} // namespace

quint32 RowCountIn(PageFile& file, quint32 definition)
{
    return NumberIn(file, definition, DefinitionLayout::RowCountAt);
}

quint32 CounterIn(PageFile& file, quint32 definition)
{
    return NumberIn(file, definition, DefinitionLayout::CounterAt);
}

void SetCounterIn(PageFile& file, quint32 definition, quint32 counter)
{
    SetNumberIn(file, definition, DefinitionLayout::CounterAt, counter);
}

bool RowWriter::IsIndexed(quint16 column) const
{
    return std::any_of(Table_.Indexes.begin(), Table_.Indexes.end(), [&](const IndexDefinition& index) {
        return std::any_of(index.Columns.begin(), index.Columns.end(),
                           [&](const IndexDefinition::KeyColumn& key) { return key.Number == column; });
    });
}

/// Long values that no index needs stay unread.
std::vector<StoredValue> RowWriter::ValuesIn(const RowCells& row) const
{
    std::vector<StoredValue> values;
    for (const ColumnDefinition& column : Table_.Columns) {
        values.push_back(row.Value(column));
        const auto stored = column.IsLong() && IsIndexed(column.Number) ? row.Octets(column) : std::nullopt;
        if (stored)
            values.back() = ShownLongValue(column, ReadLongValue(File_, *stored));
    }
    return values;
}

RowWriter::Key RowWriter::KeyOf(std::size_t index, std::span<const StoredValue> values) const
{
    const IndexDefinition& definition = Table_.Indexes[index];
    std::vector<StoredValue> parts;
    bool isNull = true;
    for (const IndexDefinition::KeyColumn& part : definition.Columns) {
        const ColumnDefinition* column = Table_.ColumnOf(part.Number);
        if (column == nullptr)
            throw Fault(QStringLiteral("an index is over a column that is not there"));
        parts.push_back(values[static_cast<std::size_t>(column - Table_.Columns.data())]);
        const bool isNullHere = query::IsNull(parts.back());
        isNull = isNull && isNullHere;
    }
    Key key;
    key.MayRepeat = isNull;
    key.IsLeftOut = isNull && (definition.Flags & IgnoresNulls) != 0;
    std::optional<QByteArray> octets = MakeKey(Table_, definition, parts);
    key.IsKnown = octets.has_value();
    if (!octets)
        octets = MakeKey(Table_, definition, parts, TextOrder::Extended);
    if (!octets)
        throw Error(errNotSupported,
                    QStringLiteral("The table '%1' has an index whose order is not known here. Convert the database to "
                                   "change it.")
                        .arg(Name_));
    key.Octets = *octets;
    return key;
}

bool RowWriter::HasEqualRow(const IndexDefinition& index, std::span<const StoredValue> values, RowPlace own)
{
    IndexTree tree(File_, index.Root);
    for (auto entry = tree.First(); entry; entry = tree.Next(*entry)) {
        const std::optional<FoundRow> row = FindRow(File_, Table_, entry->Row);
        if (!row || entry->Row == own)
            continue;
        const std::vector<StoredValue> others = ValuesIn(RowCells(row->Octets(), Table_));
        const bool isEqual = std::all_of(index.Columns.begin(), index.Columns.end(), [&](const auto& part) {
            const auto place = static_cast<std::size_t>(Table_.ColumnOf(part.Number) - Table_.Columns.data());
            return query::CompareStored(others[place], values[place]) == 0;
        });
        if (isEqual)
            return true;
    }
    return false;
}

void RowWriter::RequireUnique(std::size_t index, const Key& key, std::span<const StoredValue> values, RowPlace own)
{
    const IndexDefinition& definition = Table_.Indexes[index];
    if ((definition.Flags & UniqueIndex) == 0 || key.MayRepeat)
        return;
    IndexTree tree(File_, definition.Root);
    const auto entry = tree.FirstFrom(key.Octets, false);
    // An entry of a text without a known order may have another key, if another program made it.
    const bool isThere = (entry && IndexPage(File_, entry->Leaf).At(entry->Entry).Key == key.Octets) ||
                         (!key.IsKnown && HasEqualRow(definition, values, own));
    if (isThere)
        throw Error(
            errDuplicateValue,
            QStringLiteral("The changes would create duplicate values in an index of the table '%1'.").arg(Name_));
}

void RowWriter::AddEntry(std::size_t index, const Key& key, std::span<const StoredValue> values, RowPlace place)
{
    const IndexDefinition& definition = Table_.Indexes[index];
    if (key.IsLeftOut)
        return;
    for (const IndexDefinition::KeyColumn& part : definition.Columns) {
        const ColumnDefinition* column = Table_.ColumnOf(part.Number);
        if ((definition.Flags & RequiredIndex) != 0 &&
            query::IsNull(values[static_cast<std::size_t>(column - Table_.Columns.data())]))
            throw Error(errInvalidUseOfNull,
                        QStringLiteral("The field '%1' of the table '%2' cannot be Null.").arg(column->Name, Name_));
    }
    RequireUnique(index, key, values, place);
    IndexTree tree(File_, definition.Root);
    const auto equal = tree.FirstFrom(key.Octets, false);
    const bool isNew = !equal || !tree.BeginsWith(*equal, key.Octets);
    IndexEdit(File_, Pages_, definition).Add(key.Octets, place);
    if (isNew) {
        const qsizetype at = DefinitionLayout::FixedPart +
                             DefinitionLayout::StatisticsOfTree * static_cast<qsizetype>(index) + DistinctKeysAt;
        SetNumberIn(File_, Table_.Page(), at, NumberIn(File_, Table_.Page(), at) + 1);
    }
}

void RowWriter::DeleteEntry(std::size_t index, const Key& key, RowPlace place)
{
    const IndexDefinition& definition = Table_.Indexes[index];
    IndexTree tree(File_, definition.Root);
    const auto keyAt = [&](const IndexPlace& entry) { return IndexPage(File_, entry.Leaf).At(entry.Entry).Key; };
    if (key.IsLeftOut)
        return;
    std::optional<IndexPlace> entry = tree.FirstFrom(key.Octets, false, place);
    if (!entry || entry->Row != place || keyAt(*entry) != key.Octets)
        entry = tree.EntryOf(place);
    // A row that an index lacks is no hindrance to change it.
    if (entry)
        IndexEdit(File_, Pages_, definition).Delete(keyAt(*entry), place);
}

QByteArray RowWriter::StoredLong(const ColumnDefinition& column, const QByteArray& value)
{
    return LongHeap(File_, Pages_, column).Add(value);
}

void RowWriter::DeleteLong(const ColumnDefinition& column, const QByteArray& reference)
{
    LongHeap(File_, Pages_, column).Delete(reference);
}

void RowWriter::CountRows(int more)
{
    const quint32 count = RowCountIn(File_, Table_.Page());
    if (more > 0 || count > 0)
        SetNumberIn(File_, Table_.Page(), DefinitionLayout::RowCountAt, static_cast<quint32>(qint64(count) + more));
}

void RowWriter::RaiseCounter(const NewCell& cell)
{
    const qint64* number = std::get_if<qint64>(&cell.Value);
    if (number != nullptr && *number > qint64(CounterIn(File_, Table_.Page())))
        SetCounterIn(File_, Table_.Page(), static_cast<quint32>(*number));
}

RowPlace RowWriter::Insert(std::span<const NewCell> cells)
{
    std::vector<std::optional<QByteArray>> octets;
    std::vector<StoredValue> values;
    std::vector<quint32> longSums;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const ColumnDefinition& column = Table_.Columns[i];
        octets.push_back(OctetsOf(column, cells[i]));
        if (column.IsLong())
            longSums.push_back(octets.back() ? SumOfLong(*octets.back()) : RowSeal::UnknownSum);
        if (column.IsLong() && octets.back())
            octets.back() = StoredLong(column, *octets.back());
        if (column.Is(ColumnType::Long) && (column.Flags & CounterColumn) != 0)
            RaiseCounter(cells[i]);
        values.push_back(KeyValueOf(column, cells[i]));
    }
    const RowPlace place = Heap_.Add(MakeRow(Table_, octets, std::move(longSums)));
    for (std::size_t i = 0; i < Table_.Indexes.size(); ++i)
        AddEntry(i, KeyOf(i, values), values, place);
    CountRows(1);
    return place;
}

/// Of a row that nobody sealed, or that is not as it was sealed, nobody knows them.
std::vector<quint32> RowWriter::LongSumsIn(const OctetView& row) const
{
    const FoundSeal found = SealOf(row, Table_);
    std::vector<quint32> sums;
    if (found.What == FoundSeal::State::Holds)
        sums = found.Seal.LongSums;
    sums.resize(static_cast<std::size_t>(std::count_if(Table_.Columns.begin(), Table_.Columns.end(),
                                                       [](const auto& column) { return column.IsLong(); })),
                RowSeal::UnknownSum);
    return sums;
}

void RowWriter::Update(RowPlace place, std::span<const std::optional<NewCell>> cells)
{
    const std::optional<FoundRow> found = FindRow(File_, Table_, place);
    if (!found)
        throw Fault(QStringLiteral("row %1 of page %2 is named and is not there").arg(place.Row).arg(place.Page));
    const RowCells row(found->Octets(), Table_);
    const std::vector<StoredValue> before = ValuesIn(row);
    std::vector<StoredValue> behind = before;
    std::vector<std::optional<QByteArray>> octets;
    std::vector<quint32> longSums = LongSumsIn(found->Octets());
    std::size_t longPlace = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const ColumnDefinition& column = Table_.Columns[i];
        const std::size_t ownLong = column.IsLong() ? longPlace++ : 0;
        const auto stored = column.Is(ColumnType::Boolean) ? std::nullopt : row.Octets(column);
        octets.push_back(stored ? std::optional(stored->Copy()) : std::nullopt);
        if (column.Is(ColumnType::Boolean) && row.Truth(column))
            octets.back() = QByteArray();
        if (!cells[i])
            continue;
        const std::optional<QByteArray> old = octets.back();
        octets.back() = OctetsOf(column, *cells[i]);
        behind[i] = KeyValueOf(column, *cells[i]);
        if (!column.IsLong())
            continue;
        longSums[ownLong] = octets.back() ? SumOfLong(*octets.back()) : RowSeal::UnknownSum;
        // The new value first: a disk that is full is met before the old one is given up.
        if (octets.back())
            octets.back() = StoredLong(column, *octets.back());
        if (old)
            DeleteLong(column, *old);
    }
    Heap_.Replace(place, MakeRow(Table_, octets, std::move(longSums)));
    for (std::size_t i = 0; i < Table_.Indexes.size(); ++i) {
        const Key old = KeyOf(i, before);
        const Key now = KeyOf(i, behind);
        if (old.Octets == now.Octets && old.IsLeftOut == now.IsLeftOut)
            continue;
        DeleteEntry(i, old, place);
        AddEntry(i, now, behind, place);
    }
}

void RowWriter::Delete(RowPlace place)
{
    const std::optional<FoundRow> found = FindRow(File_, Table_, place);
    if (!found)
        throw Fault(QStringLiteral("row %1 of page %2 is named and is not there").arg(place.Row).arg(place.Page));
    const RowCells row(found->Octets(), Table_);
    const std::vector<StoredValue> values = ValuesIn(row);
    for (std::size_t i = 0; i < Table_.Indexes.size(); ++i)
        DeleteEntry(i, KeyOf(i, values), place);
    for (const ColumnDefinition& column : Table_.Columns) {
        const auto stored = column.IsLong() ? row.Octets(column) : std::nullopt;
        if (stored)
            DeleteLong(column, stored->Copy());
    }
    Heap_.Delete(place);
    CountRows(-1);
}

void RowWriter::FillIndex(std::size_t index)
{
    TableScan scan(File_, Table_);
    for (auto place = scan.Next({}); place; place = scan.Next(place)) {
        const std::optional<FoundRow> row = FindRow(File_, Table_, *place);
        if (!row)
            continue;
        const std::vector<StoredValue> values = ValuesIn(RowCells(row->Octets(), Table_));
        AddEntry(index, KeyOf(index, values), values, *place);
    }
}

} // namespace dao::jet
