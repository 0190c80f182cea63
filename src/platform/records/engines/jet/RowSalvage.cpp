// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/RowSalvage.h"

#include "platform/records/Error.h"
#include "platform/records/engines/jet/KeyForm.h"
#include "platform/records/engines/jet/LongValue.h"
#include "platform/records/engines/jet/TableScan.h"
#include "platform/records/query/StoredValues.h"

#include <algorithm>

namespace dao::jet
{

namespace
{

constexpr qsizetype NumbersKept = 20;
/// Of the gap that rows had before they were sealed.
constexpr qsizetype FormerMark = 4;

/// Whether the places of the values of variable length are such as a row can have.
bool HasFittingTable(const OctetView& row, const TableDefinition& table, int columns, qsizetype fixedEnd)
{
    const qsizetype countAt = row.Size() - (columns + 7) / 8 - 2;
    const int count = row.U16(countAt);
    const qsizetype tableAt = countAt - 2 * (qsizetype(count) + 1);
    if (count > table.VariableColumns || tableAt < fixedEnd || row.U16(tableAt) != tableAt)
        return false;
    qsizetype end = tableAt;
    for (int value = count - 1; value >= 0; --value) {
        const qsizetype start = row.U16(countAt - 2 - 2 * qsizetype(value));
        if (start > end || start < fixedEnd)
            return false;
        end = start;
    }
    const qsizetype gap = end - fixedEnd;
    return gap == 0 || gap == FormerMark || table.ColumnsEver != table.Columns.size();
}

bool FitsItsColumn(const RowCells& cells, const ColumnDefinition& column)
{
    const std::optional<OctetView> octets = cells.Octets(column);
    if (!octets || column.IsFixed())
        return true;
    return column.IsLong() || octets->Size() <= std::max<qsizetype>(column.Length, 2);
}

} // namespace

bool RowSalvage::IsWellFormed(const OctetView& octets) const
{
    const int columns = octets.U16(0);
    if (columns == 0 || columns > Table_.ColumnsEver)
        return false;
    const qsizetype fixedEnd = FixedEnd(Table_, columns);
    if (Table_.VariableColumns > 0 && !HasFittingTable(octets, Table_, columns, fixedEnd))
        return false;
    const RowCells cells(octets, Table_);
    return std::all_of(Table_.Columns.begin(), Table_.Columns.end(), [&](const ColumnDefinition& column) {
        static_cast<void>(cells.Value(column));
        return FitsItsColumn(cells, column);
    });
}

void RowSalvage::TakePage(quint32 number, bool isStray, const TakeRow& take)
{
    try {
        const DataPage page(Salvaged_.File, number);
        for (int row = 0; row < std::min(page.RowCount(), MostRowsOfPage + 1); ++row)
            TakeSlot(page, row, isStray, take);
    } catch (const Fault&) {
        BrokenPages_ += isStray ? 0 : 1;
    }
}

void RowSalvage::TakeSlot(const DataPage& page, int row, bool isStray, const TakeRow& take)
{
    try {
        const RowPlace place{page.Number(), static_cast<quint8>(row)};
        const DataPage::Slot slot = page.SlotAt(row);
        if (slot.IsDeleted())
            return;
        if (!slot.IsShown()) {
            Hidden_.insert(place);
        } else if (!slot.IsPointer()) {
            TakeOctets(page.RowAt(slot), isStray, take);
        } else if (const std::optional<FoundRow> found = FindRow(Salvaged_.File, Table_, place)) {
            Led_.insert(found->Stands);
            TakeOctets(found->Octets(), isStray, take);
        }
    } catch (const Fault&) {
        Result_.Lost += isStray ? 0 : 1;
    }
}

void RowSalvage::TakeHidden(const TakeRow& take)
{
    // Other programs leave such rows behind when they delete one: only what has a seal is taken.
    for (const RowPlace& place : Hidden_) {
        if (Led_.count(place) != 0)
            continue;
        try {
            const DataPage page(Salvaged_.File, place.Page);
            TakeOctets(page.RowAt(place.Row), true, take);
        } catch (const Fault&) {
            continue; // Counted by what is missing.
        }
    }
}

bool RowSalvage::OwnsRowOf(quint32 number) const
{
    const auto isOwn = [&](const DataPage& page, int row) {
        try {
            const DataPage::Slot slot = page.SlotAt(row);
            return slot.Flags == 0 && SealOf(page.RowAt(slot), Table_).What == FoundSeal::State::Holds;
        } catch (const Fault&) {
            return false;
        }
    };
    try {
        const DataPage page(Salvaged_.File, number);
        for (int row = 0; row < std::min(page.RowCount(), MostRowsOfPage + 1); ++row) {
            if (isOwn(page, row))
                return true;
        }
    } catch (const Fault&) {
        return false;
    }
    return false;
}

void RowSalvage::CountLost(const OctetView& octets)
{
    ++Result_.Lost;
    try {
        const RowCells cells(octets, Table_);
        for (const ColumnDefinition& column : Table_.Columns) {
            if (!column.Is(ColumnType::Long) || (column.Flags & CounterColumn) == 0)
                continue;
            const StoredValue value = cells.Value(column);
            const qint64* number = std::get_if<qint64>(&value);
            if (number != nullptr && Result_.LostNumbers.size() < NumbersKept)
                Result_.LostNumbers += *number;
        }
    } catch (const Fault&) {
        return; // It tells no number.
    }
}

void RowSalvage::TakeOctets(const OctetView& octets, bool isStray, const TakeRow& take)
{
    const bool needsSeal = NeedsSeals_ || isStray;
    FoundSeal seal;
    bool isTaken = false;
    try {
        seal = SealOf(octets, Table_);
        isTaken = seal.What == FoundSeal::State::Holds ||
                  (seal.What == FoundSeal::State::None && !needsSeal && IsWellFormed(octets));
    } catch (const Fault&) {
        isTaken = false;
    }
    const bool isSealed = seal.What == FoundSeal::State::Holds;
    // A page that stands in the place of another brings its rows a second time.
    if (isTaken && isSealed && Seals_.count({seal.Seal.Number, seal.Sum}) != 0)
        return;
    std::optional<std::vector<NewCell>> cells;
    std::optional<std::vector<std::optional<QByteArray>>> keys;
    try {
        if (isTaken)
            cells = CellsOf(RowCells(octets, Table_), seal);
        if (cells)
            keys = KeysOf(*cells);
    } catch (const Fault&) {
        keys.reset();
    }
    if (!keys) {
        if (!isStray || isSealed)
            CountLost(octets);
        return;
    }
    if (isSealed)
        Seals_.insert({seal.Seal.Number, seal.Sum});
    try {
        take(*cells, *keys);
    } catch (const Error& error) {
        // Other programs have rows that are a little longer than those that are made here.
        if (error.Number() != errFieldTooSmall)
            throw;
        CountLost(octets);
        return;
    }
    ++Result_.Saved;
    Result_.Unsealed += isSealed ? 0 : 1;
}

bool RowSalvage::IsIndexed(quint16 number) const
{
    return std::any_of(Table_.Indexes.begin(), Table_.Indexes.end(), [&](const IndexDefinition& index) {
        return std::any_of(index.Columns.begin(), index.Columns.end(),
                           [&](const auto& key) { return key.Number == number; });
    });
}

QByteArray RowSalvage::LongOf(const OctetView& stored, quint32 sum)
{
    const LongReference reference = ReadLongReference(stored);
    const qint64 size = reference.Where == LongReference::Place::Inline ? 0 : qint64(reference.Size);
    if (sum != RowSeal::UnknownSum) {
        QByteArray value = ReadLongValue(Salvaged_.File, stored);
        if (SumOfLong(value) != sum)
            throw Fault(QStringLiteral("a long value is not as it was stored"));
        return value;
    }
    if (size > Salvaged_.OctetsLeft)
        throw Fault(QStringLiteral("the long values are longer than the file together"));
    Salvaged_.OctetsLeft -= size;
    std::vector<RowPlace> pieces;
    QByteArray value = ReadLongValue(Salvaged_.File, stored, &pieces);
    for (const RowPlace& piece : pieces) {
        if (!Salvaged_.Pieces.insert(piece.Pointer()).second)
            throw Fault(QStringLiteral("two values share row %1 of page %2").arg(piece.Row).arg(piece.Page));
    }
    return value;
}

std::optional<std::vector<NewCell>> RowSalvage::CellsOf(const RowCells& row, const FoundSeal& seal)
{
    std::vector<NewCell> cells;
    std::size_t longPlace = 0;
    for (const ColumnDefinition& column : Table_.Columns) {
        NewCell& cell = cells.emplace_back();
        cell.Value = row.Value(column);
        const std::size_t ownLong = column.IsLong() ? longPlace++ : 0;
        if (column.Is(ColumnType::Boolean))
            continue;
        const std::optional<OctetView> stored = row.Octets(column);
        if (!stored)
            continue;
        const std::vector<quint32>& sums = seal.Seal.LongSums;
        const bool isKnown = seal.What == FoundSeal::State::Holds && column.IsLong() && ownLong < sums.size();
        cell.Octets = column.IsLong() ? LongOf(*stored, isKnown ? sums[ownLong] : RowSeal::UnknownSum) : stored->Copy();
        // Read as a text it has to be one.
        if (column.IsLong()) {
            const QByteArray shown = ShownLongValue(column, *cell.Octets);
            if (IsIndexed(column.Number))
                cell.Value = shown;
        }
    }
    return cells;
}

std::optional<std::vector<std::optional<QByteArray>>> RowSalvage::KeysOf(const std::vector<NewCell>& cells)
{
    std::vector<std::optional<QByteArray>> keys;
    std::vector<bool> mayRepeat;
    for (const IndexDefinition& index : Table_.Indexes) {
        std::vector<StoredValue> values;
        bool isNull = true;
        for (const IndexDefinition::KeyColumn& part : index.Columns) {
            const ColumnDefinition* column = Table_.ColumnOf(part.Number);
            values.push_back(cells[static_cast<std::size_t>(column - Table_.Columns.data())].Value);
            const bool isNullHere = query::IsNull(values.back());
            isNull = isNull && isNullHere;
            if (isNullHere && (index.Flags & RequiredIndex) != 0)
                return std::nullopt;
        }
        keys.push_back(MakeKey(Table_, index, values));
        if (!keys.back())
            keys.back() = MakeKey(Table_, index, values, TextOrder::Extended);
        mayRepeat.push_back(isNull || (index.Flags & UniqueIndex) == 0);
        if (!keys.back() || (!mayRepeat.back() && Keys_[keys.size() - 1].count(*keys.back()) != 0))
            return std::nullopt;
    }
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (!mayRepeat[i])
            Keys_[i].insert(*keys[i]);
    }
    return keys;
}

} // namespace dao::jet
