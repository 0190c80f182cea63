// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/RowHeap.h"

#include "platform/records/engines/jet/LongValue.h"
#include "platform/records/engines/jet/PageWriter.h"
#include "platform/records/engines/jet/RowPageEdit.h"
#include "platform/records/engines/jet/RowPages.h"
#include "platform/records/engines/jet/TableScan.h"
#include "platform/records/engines/jet/UsageMap.h"

#include <algorithm>

namespace dao::jet
{

namespace
{

constexpr int RoomWorthNoting = 200;
/// Pages with room that are tried before a new one is taken: rows must not cost more the more there are.
constexpr std::size_t MostTried = 8;

/// A page of the map that has room for so many octets; 0 for none.
quint32 PageWithRoom(PageFile& file, quint32 map, qsizetype size, quint32 butNot)
{
    for (const quint32 page : LastPagesOf(file, map, MostTried)) {
        if (page != butNot && RowPageEdit(file, page).HasRoomFor(size))
            return page;
    }
    return 0;
}

QByteArray PointerTo(RowPlace place)
{
    QByteArray pointer;
    Append(pointer, place.Pointer());
    return pointer;
}

} // namespace

void RowHeap::NoteRoom(quint32 page)
{
    const RowPageEdit edit(File_, page);
    const bool hasRoom = edit.FreeOctets() >= RoomWorthNoting && edit.RowCount() < MostRowsOfPage;
    if (hasRoom)
        Pages_.AddTo(Table_.FreeMap, page);
    else
        Pages_.TakeFrom(Table_.FreeMap, page);
}

RowPlace RowHeap::AddOnLastPage(const QByteArray& row, quint16 flags)
{
    const quint32 last = Pages_.LastOf(Table_.OwnedMap);
    quint32 page = last;
    if (last == 0 || !RowPageEdit(File_, last).HasRoomFor(row.size())) {
        page = Pages_.Allocate(last);
        File_.Change(page, MakeDataPage(Table_.Page(), {}));
        Pages_.AddTo(Table_.OwnedMap, page);
        if (last != 0 && !RowPageEdit(File_, last).HasRows())
            FreePage(last);
    }
    const int slot = RowPageEdit(File_, page).Add(row, flags);
    NoteRoom(page);
    return {page, static_cast<quint8>(slot)};
}

RowPlace RowHeap::Add(const QByteArray& row)
{
    return AddOnLastPage(row, 0);
}

RowPlace RowHeap::AddMoved(const QByteArray& row, quint32 home)
{
    const quint32 page = PageWithRoom(File_, Table_.FreeMap, row.size(), home);
    if (page == 0)
        return AddOnLastPage(row, RowHidden);
    const int slot = RowPageEdit(File_, page).Add(row, RowHidden);
    NoteRoom(page);
    return {page, static_cast<quint8>(slot)};
}

/// Where the row is known to stand, and each place that leads on from there.
std::vector<RowPlace> RowHeap::WayTo(RowPlace place)
{
    std::vector<RowPlace> way{place};
    for (;;) {
        const DataPage page(File_, way.back().Page);
        const DataPage::Slot slot = page.SlotAt(way.back().Row);
        if (!slot.IsPointer())
            return way;
        way.push_back(RowPlace::FromPointer(page.RowAt(slot).U32(0)));
        if (way.size() > LongestPath)
            throw Fault(QStringLiteral("the way to row %1 of page %2 does not end").arg(place.Row).arg(place.Page));
    }
}

void RowHeap::Replace(RowPlace place, const QByteArray& row)
{
    const std::vector<RowPlace> way = WayTo(place);
    const RowPlace stands = way.back();
    const bool isHome = way.size() == 1;
    RowPageEdit edit(File_, stands.Page);
    if (edit.HasRoomInstead(stands.Row, row.size())) {
        edit.Replace(stands.Row, row, isHome ? 0 : RowHidden);
        NoteRoom(stands.Page);
        return;
    }
    // Out of the way first: the room of the old row may be what the new one needs on its page.
    for (std::size_t i = 1; i < way.size(); ++i)
        DeleteSlot(way[i]);
    RowPageEdit home(File_, place.Page);
    if (!isHome && home.HasRoomInstead(place.Row, row.size())) {
        home.Replace(place.Row, row, 0);
    } else {
        // The pointer takes its room before others can.
        home.Replace(place.Row, PointerTo({}), RowPointer);
        const RowPlace moved = AddMoved(row, place.Page);
        RowPageEdit(File_, place.Page).Replace(place.Row, PointerTo(moved), RowPointer);
    }
    NoteRoom(place.Page);
}

void RowHeap::Delete(RowPlace place)
{
    for (const RowPlace& step : WayTo(place))
        DeleteSlot(step);
}

void RowHeap::DeleteSlot(RowPlace place)
{
    RowPageEdit edit(File_, place.Page);
    edit.Delete(place.Row);
    // The last page stays, so that no new row ever gets the place of one that is gone.
    if (edit.HasRows() || place.Page == Pages_.LastOf(Table_.OwnedMap))
        NoteRoom(place.Page);
    else
        FreePage(place.Page);
}

void RowHeap::FreePage(quint32 page)
{
    Pages_.TakeFrom(Table_.FreeMap, page);
    Pages_.TakeFrom(Table_.OwnedMap, page);
    Pages_.Free(page);
}

quint32 LongHeap::AllocatePage()
{
    const quint32 page = Pages_.Allocate();
    // Some of the format's own columns have no maps: their pages are known by their rows alone.
    if (Column_.OwnedMap != 0)
        Pages_.AddTo(Column_.OwnedMap, page);
    return page;
}

RowPlace LongHeap::AddPiece(const QByteArray& piece)
{
    quint32 page = Column_.FreeMap == 0 ? 0 : PageWithRoom(File_, Column_.FreeMap, piece.size(), 0);
    if (page == 0) {
        page = AllocatePage();
        File_.Change(page, MakeDataPage(LongOwner, {}));
    }
    RowPageEdit edit(File_, page);
    const int slot = edit.Add(piece);
    if (Column_.FreeMap != 0) {
        if (edit.FreeOctets() >= RoomWorthNoting && edit.RowCount() < MostRowsOfPage)
            Pages_.AddTo(Column_.FreeMap, page);
        else
            Pages_.TakeFrom(Column_.FreeMap, page);
    }
    return {page, static_cast<quint8>(slot)};
}

QByteArray LongHeap::Add(const QByteArray& value)
{
    return StoreLongValue(
        value, [&](const QByteArray& piece) { return AddPiece(piece); }, [&] { return AllocatePage(); },
        [&](quint32 page, const QByteArray& piece) { File_.Change(page, MakeDataPage(LongOwner, {piece})); });
}

void LongHeap::Delete(const QByteArray& reference)
{
    std::vector<RowPlace> pieces;
    try {
        ReadLongValue(File_, OctetView(reference), &pieces);
    } catch (const Fault&) {
        return; // What it said was its own may be another's.
    }
    for (const RowPlace& piece : pieces)
        DeletePiece(piece);
}

void LongHeap::DeletePiece(RowPlace piece)
{
    RowPageEdit edit(File_, piece.Page);
    edit.Delete(piece.Row);
    const bool isKnown = Column_.OwnedMap != 0 && Pages_.IsIn(Column_.OwnedMap, piece.Page);
    if (edit.HasRows() || !isKnown) {
        if (isKnown && Column_.FreeMap != 0 && edit.FreeOctets() >= RoomWorthNoting && edit.RowCount() < MostRowsOfPage)
            Pages_.AddTo(Column_.FreeMap, piece.Page);
        return;
    }
    if (Column_.FreeMap != 0)
        Pages_.TakeFrom(Column_.FreeMap, piece.Page);
    Pages_.TakeFrom(Column_.OwnedMap, piece.Page);
    Pages_.Free(piece.Page);
}

} // namespace dao::jet
