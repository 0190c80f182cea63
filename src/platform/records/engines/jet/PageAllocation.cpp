// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/PageAllocation.h"

#include "platform/records/Error.h"
#include "platform/records/engines/jet/PageLayout.h"
#include "platform/records/engines/jet/PageWriter.h"
#include "platform/records/engines/jet/RowPageEdit.h"
#include "platform/records/engines/jet/UsageMap.h"

#include <algorithm>
#include <optional>

namespace dao::jet
{

namespace
{

QByteArray MapRow(PageFile& file, RowPlace place)
{
    QByteArray row = DataPage(file, place.Page).RowAt(place.Row).Copy();
    const quint8 kind = OctetView(row).U8(0);
    if (kind > MapLayout::Referring || (kind == MapLayout::Inline && row.size() < MapLayout::BitsAt))
        throw Fault(QStringLiteral("row %1 of page %2 is no map of pages").arg(place.Row).arg(place.Page));
    return row;
}

quint32 FirstOf(const QByteArray& row)
{
    return OctetView(row).U32(MapLayout::FirstPageAt);
}

quint32 PagesOf(const QByteArray& row)
{
    return static_cast<quint32>(row.size() - MapLayout::BitsAt) * MapLayout::BitsOfOctet;
}

bool Covers(const QByteArray& row, quint32 page)
{
    return page >= FirstOf(row) && page - FirstOf(row) < PagesOf(row);
}

/// What the map says of a page; nothing when it does not reach that far.
std::optional<bool> MarkOf(PageFile& file, const QByteArray& row, quint32 page)
{
    if (row.at(0) == MapLayout::Inline)
        return Covers(row, page) ? std::optional(MapBitAt(row, MapLayout::BitsAt, page - FirstOf(row))) : std::nullopt;
    const qsizetype at = MapLayout::ReferencesAt + 4 * qsizetype(page / PagesOfBitmap);
    const quint32 bitmap = at + 4 <= row.size() ? OctetView(row).U32(at) : 0;
    if (bitmap == 0)
        return std::nullopt;
    return MapBitAt(file.Page(bitmap, PageType::Bitmap), MapLayout::BitmapAt, page % PagesOfBitmap);
}

} // namespace

bool IsMarkedFree(PageFile& file, quint32 page)
{
    // What lies behind its end was never used.
    return MarkOf(file, MapRow(file, RowPlace::FromPointer(GlobalMapPointer)), page).value_or(true);
}

bool PageAllocation::IsIn(quint32 map, quint32 page)
{
    return MarkOf(File_, MapRow(File_, RowPlace::FromPointer(map)), page).value_or(false);
}

quint32 PageAllocation::LastOf(quint32 map)
{
    const std::vector<quint32> last = LastPagesOf(File_, map, 1);
    return last.empty() ? 0 : last.front();
}

quint32 PageAllocation::Append()
{
    const quint32 page = File_.PageCount();
    if (page >= LargestPageCount)
        throw Error(errNotSupported,
                    QStringLiteral("'%1' is full: a Jet file holds 2 GB at most. Compact it, or convert the station to "
                                   "another format.")
                        .arg(File_.Name()));
    File_.Change(page, QByteArray(PageSize, '\0'));
    return page;
}

quint32 PageAllocation::Allocate(quint32 behind)
{
    if (!KnowsFree_)
        Free_ = ReadUsageMap(File_, GlobalMapPointer).Pages;
    KnowsFree_ = true;
    quint32 page = 0;
    const auto found = std::upper_bound(Free_.begin(), Free_.end(), behind);
    if (found != Free_.end()) {
        page = *found;
        Free_.erase(found);
        File_.Change(page, QByteArray(PageSize, '\0'));
    } else {
        page = Append();
    }
    Set(GlobalMapPointer, page, false);
    return page;
}

void PageAllocation::Free(quint32 page)
{
    // Readers that go by what stands on a page must not find rows there.
    File_.Change(page, QByteArray(PageSize, '\0'));
    Set(GlobalMapPointer, page, true);
}

quint32 PageAllocation::AddMap(quint32 beside)
{
    quint32 page = RowPlace::FromPointer(beside).Page;
    if (page < CatalogueDefinition || DataPage(File_, page).Owner() != 0 ||
        !RowPageEdit(File_, page).HasRoomFor(MapLayout::RowSize)) {
        page = Allocate();
        File_.Change(page, MakeDataPage(0, {}));
    }
    const int row = RowPageEdit(File_, page).Add(QByteArray(MapLayout::RowSize, '\0'));
    return RowPlace{page, static_cast<quint8>(row)}.Pointer();
}

void PageAllocation::StoreRow(RowPlace place, const QByteArray& row)
{
    RowPageEdit(File_, place.Page).Replace(place.Row, row, 0);
}

void PageAllocation::Set(quint32 map, quint32 page, bool isSet)
{
    const RowPlace place = RowPlace::FromPointer(map);
    const QByteArray row = MapRow(File_, place);
    const bool isGlobal = map == GlobalMapPointer;
    const bool otherwise = isGlobal; // What is said by saying nothing.
    if (MarkOf(File_, row, page).value_or(otherwise) == isSet)
        return;
    if (row.at(0) == MapLayout::Inline)
        SetInRow(place, row, page, isSet);
    else
        SetOnBitmap(place, row, page, isSet);
}

void PageAllocation::SetInRow(RowPlace place, QByteArray row, quint32 page, bool isSet)
{
    if (!Covers(row, page) && !MoveInline(place, row, page)) {
        MakeReferring(place, row, page);
        Set(place.Pointer(), page, isSet);
        return;
    }
    SetMapBit(row, MapLayout::BitsAt, page - FirstOf(row), isSet);
    StoreRow(place, row);
}

bool PageAllocation::MoveInline(RowPlace place, QByteArray& row, quint32 page)
{
    if (place.Pointer() == GlobalMapPointer)
        return false; // It begins with the file.
    std::vector<quint32> pages;
    for (quint32 bit = 0; bit < PagesOf(row); ++bit) {
        if (MapBitAt(row, MapLayout::BitsAt, bit))
            pages.push_back(FirstOf(row) + bit);
    }
    const quint32 lowest = pages.empty() ? page : std::min(page, pages.front());
    const quint32 first = lowest / MapLayout::BitsOfOctet * MapLayout::BitsOfOctet;
    const quint32 highest = pages.empty() ? page : std::max(page, pages.back());
    if (highest - first >= PagesOf(row))
        return false;
    row = row.left(MapLayout::BitsAt) + QByteArray(row.size() - MapLayout::BitsAt, '\0');
    Put(row, MapLayout::FirstPageAt, first);
    for (const quint32 each : pages)
        SetMapBit(row, MapLayout::BitsAt, each - first, true);
    return true;
}

/// The same map with pages of bits, as far as the new page needs them.
void PageAllocation::MakeReferring(RowPlace place, const QByteArray& row, quint32 page)
{
    const bool isGlobal = place.Pointer() == GlobalMapPointer;
    QByteArray referring(row.size(), '\0');
    Put(referring, 0, MapLayout::Referring);
    const qsizetype most = (row.size() - MapLayout::ReferencesAt) / 4;
    std::vector<quint32> own;
    for (quint32 first = 0; first < File_.PageCount() || first <= page; first += PagesOfBitmap) {
        QByteArray bitmap(PageSize, isGlobal ? '\xFF' : '\0');
        Put(bitmap, 0, static_cast<quint8>(PageType::Bitmap));
        Put(bitmap, 1, quint8(1));
        Put(bitmap, 2, quint16(0));
        bool isNeeded = isGlobal || page / PagesOfBitmap == first / PagesOfBitmap;
        for (quint32 bit = 0; bit < PagesOf(row); ++bit) {
            const quint32 each = FirstOf(row) + bit;
            if (each / PagesOfBitmap != first / PagesOfBitmap)
                continue;
            SetMapBit(bitmap, MapLayout::BitmapAt, each - first, MapBitAt(row, MapLayout::BitsAt, bit));
            isNeeded = isNeeded || MapBitAt(row, MapLayout::BitsAt, bit);
        }
        if (!isNeeded)
            continue;
        if (qsizetype(first / PagesOfBitmap) >= most)
            throw Fault(QStringLiteral("the map in row %1 of page %2 is too short").arg(place.Row).arg(place.Page));
        // The map of free pages gives none while it is being remade.
        own.push_back(isGlobal ? Append() : Allocate());
        File_.Change(own.back(), bitmap);
        Put(referring, MapLayout::ReferencesAt + 4 * qsizetype(first / PagesOfBitmap), own.back());
    }
    StoreRow(place, referring);
    for (const quint32 each : own) {
        if (isGlobal)
            Set(GlobalMapPointer, each, false);
    }
}

void PageAllocation::SetOnBitmap(RowPlace place, QByteArray row, quint32 page, bool isSet)
{
    const bool isGlobal = place.Pointer() == GlobalMapPointer;
    const qsizetype at = MapLayout::ReferencesAt + 4 * qsizetype(page / PagesOfBitmap);
    if (at + 4 > row.size())
        throw Fault(QStringLiteral("the map in row %1 of page %2 is too short").arg(place.Row).arg(place.Page));
    quint32 number = OctetView(row).U32(at);
    QByteArray bitmap;
    const bool isNew = number == 0;
    if (isNew) {
        number = isGlobal ? Append() : Allocate();
        bitmap = QByteArray(PageSize, isGlobal ? '\xFF' : '\0');
        Put(bitmap, 0, static_cast<quint8>(PageType::Bitmap));
        Put(bitmap, 1, quint8(1));
        Put(bitmap, 2, quint16(0));
        Put(row, at, number);
        StoreRow(place, row);
    } else {
        bitmap = File_.Page(number, PageType::Bitmap);
    }
    SetMapBit(bitmap, MapLayout::BitmapAt, page % PagesOfBitmap, isSet);
    File_.Change(number, bitmap);
    if (isNew && isGlobal)
        Set(GlobalMapPointer, number, false);
}

} // namespace dao::jet
