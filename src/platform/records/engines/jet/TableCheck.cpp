// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/TableCheck.h"

#include "platform/records/engines/jet/KeyForm.h"
#include "platform/records/engines/jet/LongValue.h"
#include "platform/records/engines/jet/PageLayout.h"
#include "platform/records/engines/jet/TableScan.h"

#include <algorithm>

namespace dao::jet
{

void TableCheck::Run()
{
    Findings& found = Checked_.Found;
    Table_ = ReadTableDefinition(Checked_.File, Object_.Definition());
    Owner_ = Checked_.Owners.Name(QStringLiteral("the table ") + Object_.Name);
    bool isOwn = true;
    for (const quint32 page : Table_.Pages)
        isOwn = Checked_.Owners.Claim(page, Owner_) && isOwn;
    if (!isOwn)
        return;
    Pages_ = ClaimMap(Table_.OwnedMap, Owner_, Named(QStringLiteral("the pages")));
    RequirePartOf(Table_.FreeMap, Pages_, Named(QStringLiteral("the pages")));
    CheckColumns();
    ClaimIndexes();
    found.Run(Named(QStringLiteral("The properties")) + QStringLiteral(" cannot be read: "),
              [&] { PropertiesOf(Checked_.File, Object_); });
    for (const quint32 page : Pages_) {
        found.Run(Named(QStringLiteral("Page %1").arg(page)) + QStringLiteral(" cannot be read: "),
                  [&] { CheckPage(page); });
    }
    CheckMoves();
    CheckCounts();
    for (std::size_t i = 0; i < Table_.Indexes.size(); ++i) {
        QString name;
        for (const IndexName& each : Table_.IndexNames)
            name = each.Tree == i && name.isEmpty() ? each.Name : name;
        IndexCheck(Checked_.File, Table_, Table_.Indexes[i], Named(QStringLiteral("The index ") + name),
                   Checked_.Owners, IndexOwners_[i], found)
            .Run(Expected_[i]);
    }
}

void TableCheck::ClaimMapPage(quint32 pointer)
{
    const quint32 page = RowPlace::FromPointer(pointer).Page;
    Checked_.Owners.ClaimShared(page, Checked_.Maps);
    // The first page of maps names itself as its owner.
    const quint32 owner = DataPage(Checked_.File, page).Owner();
    if (owner != 0 && owner != page)
        throw Fault(QStringLiteral("page %1 holds no maps").arg(page));
}

std::vector<quint32> TableCheck::ClaimMap(quint32 pointer, int owner, const QString& whose)
{
    std::vector<quint32> own;
    Checked_.Found.Run(QStringLiteral("The map of ") + whose + QStringLiteral(" cannot be read: "), [&] {
        ClaimMapPage(pointer);
        const UsageMap map = ReadUsageMap(Checked_.File, pointer);
        for (const quint32 page : map.BitmapPages)
            Checked_.Owners.Claim(page, owner);
        std::copy_if(map.Pages.begin(), map.Pages.end(), std::back_inserter(own),
                     [&](quint32 page) { return Checked_.Owners.Claim(page, owner); });
    });
    return own;
}

void TableCheck::RequirePartOf(quint32 freeMap, const std::vector<quint32>& owned, const QString& whose)
{
    Checked_.Found.Run(QStringLiteral("The map of free room on ") + whose + QStringLiteral(" cannot be read: "), [&] {
        ClaimMapPage(freeMap);
        const UsageMap map = ReadUsageMap(Checked_.File, freeMap);
        for (const quint32 page : map.BitmapPages)
            Checked_.Owners.Claim(page, Owner_);
        if (!std::includes(owned.begin(), owned.end(), map.Pages.begin(), map.Pages.end()))
            Checked_.Found.AddDamage(
                QStringLiteral("The map of free room on %1 names pages that are not theirs").arg(whose));
    });
}

void TableCheck::CheckColumns()
{
    for (const ColumnDefinition& column : Table_.Columns) {
        if (!column.IsLong() || column.OwnedMap == 0)
            continue;
        const QString name = Named(QStringLiteral("the field ") + column.Name);
        const int owner = Checked_.Owners.Name(name);
        LongOwners_[column.Number] = owner;
        const std::vector<quint32> pages = ClaimMap(column.OwnedMap, owner, name);
        if (column.FreeMap != 0)
            RequirePartOf(column.FreeMap, pages, name);
        for (const quint32 number : pages) {
            Checked_.Found.Run(QStringLiteral("Page %1 of %2 cannot be read: ").arg(number).arg(name), [&] {
                const DataPage page(Checked_.File, number);
                if (page.Owner() != LongOwner)
                    throw Fault(QStringLiteral("it does not hold long values"));
                CheckPageHeader(page);
            });
        }
    }
}

void TableCheck::ClaimIndexes()
{
    Expected_.resize(Table_.Indexes.size());
    for (const IndexDefinition& index : Table_.Indexes) {
        const QString name = Named(QStringLiteral("an index"));
        IndexOwners_.push_back(Checked_.Owners.Name(name));
        ClaimMap(index.Map, IndexOwners_.back(), name);
    }
}

void TableCheck::CheckPageHeader(const DataPage& page)
{
    int lowest = PageSize;
    for (int row = 0; row < page.RowCount(); ++row)
        lowest = page.SlotAt(row).Start;
    if (page.FreeOctets() != lowest - RowPageLayout::SlotsAt - RowPageLayout::SlotSize * page.RowCount())
        Checked_.Found.AddDamage(Named(QStringLiteral("Page %1").arg(page.Number())) +
                                 QStringLiteral(" has a wrong count of free octets"));
}

void TableCheck::CheckPage(quint32 number)
{
    const DataPage page(Checked_.File, number);
    if (page.Owner() != Table_.Page())
        throw Fault(QStringLiteral("it says that it is another table's"));
    CheckPageHeader(page);
    if (page.RowCount() > MostRowsOfPage + 1)
        throw Fault(QStringLiteral("it has more rows than a page can"));
    for (int row = 0; row < page.RowCount(); ++row) {
        const RowPlace place{number, static_cast<quint8>(row)};
        const DataPage::Slot slot = page.SlotAt(row);
        if (slot.IsDeleted())
            continue;
        if (!slot.IsShown()) {
            Hidden_.insert(place);
            continue;
        }
        ++Rows_;
        Checked_.Found.Run(Named(QStringLiteral("Row %1 of page %2").arg(row).arg(number)) +
                               QStringLiteral(" cannot be read: "),
                           [&] { CheckRow(place, page, slot); });
    }
}

void TableCheck::CheckRow(RowPlace place, const DataPage& page, const DataPage::Slot& slot)
{
    if (!slot.IsPointer()) {
        const RowCells cells(page.RowAt(slot), Table_);
        CheckValues(cells, place);
        ExpectEntries(cells, place);
        return;
    }
    const std::optional<FoundRow> row = FindRow(Checked_.File, Table_, place);
    Moves_.emplace_back(row->Stands, place);
    const RowCells cells(row->Octets(), Table_);
    CheckValues(cells, place);
    ExpectEntries(cells, place);
}

void TableCheck::CheckMoves()
{
    for (const auto& [to, from] : Moves_) {
        if (Hidden_.erase(to) == 0)
            Checked_.Found.AddDamage(Named(QStringLiteral("Row %1 of page %2").arg(from.Row).arg(from.Page)) +
                                     QStringLiteral(" leads to a row that is another's"));
    }
    for (const RowPlace& place : Hidden_)
        Checked_.Found.AddDamage(Named(QStringLiteral("Row %1 of page %2").arg(place.Row).arg(place.Page)) +
                                 QStringLiteral(" is hidden, and nothing leads to it"));
}

void TableCheck::CheckValues(const RowCells& cells, RowPlace place)
{
    for (const ColumnDefinition& column : Table_.Columns) {
        const StoredValue value = cells.Value(column);
        const auto stored = column.IsLong() ? cells.Octets(column) : std::nullopt;
        if (stored)
            CheckLongValue(column, *stored, place);
        const qint64* number = std::get_if<qint64>(&value);
        if (number != nullptr && column.Is(ColumnType::Long) && (column.Flags & CounterColumn) != 0)
            HighestCounter_ = std::max(HighestCounter_, *number);
    }
}

void TableCheck::CheckLongValue(const ColumnDefinition& column, const OctetView& stored, RowPlace place)
{
    try {
        const LongReference reference = ReadLongReference(stored);
        Checked_.LongOctetsLeft -= reference.Where == LongReference::Place::Inline ? 0 : reference.Size;
        if (Checked_.LongOctetsLeft < 0)
            throw Fault(QStringLiteral("the long values are longer than the file together"));
        std::vector<RowPlace> pieces;
        ShownLongValue(column, ReadLongValue(Checked_.File, stored, &pieces));
        const auto owner = LongOwners_.find(column.Number);
        for (const RowPlace& piece : pieces) {
            if (!Pieces_.insert(piece.Pointer()).second)
                throw Fault(QStringLiteral("two values share row %1 of page %2").arg(piece.Row).arg(piece.Page));
            if (owner != LongOwners_.end() && !Checked_.Owners.Owns(owner->second, piece.Page))
                throw Fault(QStringLiteral("it stands on page %1, which is not the field's").arg(piece.Page));
        }
    } catch (const Fault& fault) {
        Checked_.Found.AddMemo({Object_.Name, column.Name, Rows_, false});
        Checked_.Found.AddDamage(
            Named(QStringLiteral("The field %1 in row %2 of page %3").arg(column.Name).arg(place.Row).arg(place.Page)) +
            QStringLiteral(" cannot be read: ") + fault.Words());
    }
}

void TableCheck::ExpectEntries(const RowCells& cells, RowPlace place)
{
    for (std::size_t i = 0; i < Table_.Indexes.size(); ++i) {
        const IndexDefinition& index = Table_.Indexes[i];
        ExpectedEntry entry{.Pointer = place.Pointer(), .IsNull = true};
        std::vector<StoredValue> values;
        for (const IndexDefinition::KeyColumn& key : index.Columns) {
            const ColumnDefinition* column = Table_.ColumnOf(key.Number);
            if (column == nullptr)
                throw Fault(QStringLiteral("an index is over a column that is not there"));
            const auto stored = column->IsLong() ? cells.Octets(*column) : std::nullopt;
            values.push_back(stored ? StoredValue(ShownLongValue(*column, ReadLongValue(Checked_.File, *stored)))
                                    : cells.Value(*column));
            entry.IsNull = entry.IsNull && std::holds_alternative<std::monostate>(values.back());
        }
        if (const std::optional<QByteArray> made = MakeKey(Table_, index, values)) {
            entry.IsKeyKnown = true;
            entry.KeyHash = qHash(*made, 0);
        }
        Expected_[i].push_back(entry);
    }
}

void TableCheck::CheckCounts()
{
    // The makers of such files let the counts of their own tables go wrong.
    if (!Table_.IsSystem && !Object_.IsSystem() && qint64(Table_.RowCount) != Rows_)
        Checked_.Found.AddRepairable(QStringLiteral("The table %1 is said to have %2 rows and has %3")
                                         .arg(Object_.Name)
                                         .arg(Table_.RowCount)
                                         .arg(Rows_));
    if (HighestCounter_ > qint64(Table_.Counter))
        Checked_.Found.AddRepairable(
            QStringLiteral("The table %1 would give automatic numbers that it has").arg(Object_.Name));
}

} // namespace dao::jet
