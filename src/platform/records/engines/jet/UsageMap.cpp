// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/UsageMap.h"

#include "platform/records/engines/jet/DataPage.h"
#include "platform/records/engines/jet/PageLayout.h"

#include <algorithm>

namespace dao::jet
{

namespace
{

void AddBits(const OctetView& bits, quint32 first, quint32 pageCount, std::vector<quint32>& pages)
{
    for (qsizetype at = 0; at < bits.Size(); ++at) {
        const quint64 base = first + quint64(at) * MapLayout::BitsOfOctet;
        if (base >= pageCount)
            return;
        const quint8 octet = bits.U8(at);
        for (quint32 bit = 0; octet >> bit != 0; ++bit) {
            if ((octet >> bit & 1) != 0 && base + bit < pageCount)
                pages.push_back(static_cast<quint32>(base + bit));
        }
    }
}

void ReadReferences(PageFile& file, const OctetView& row, UsageMap& map)
{
    const qsizetype count = (row.Size() - 1) / 4;
    for (qsizetype i = 0; i < count; ++i) {
        const quint64 first = quint64(i) * PagesOfBitmap;
        // Real files name pages there that they do not have: what lies behind the file's end marks nothing.
        if (first >= file.PageCount())
            break;
        const quint32 number = row.U32(1 + 4 * i);
        map.CoveredUpTo = static_cast<quint32>(std::min<quint64>(first + PagesOfBitmap, LargestPageCount));
        if (number == 0)
            continue;
        const QByteArray page = file.Page(number, PageType::Bitmap);
        map.BitmapPages.push_back(number);
        AddBits(OctetView(page).From(MapLayout::BitmapAt), static_cast<quint32>(first), file.PageCount(), map.Pages);
    }
}

/// The same from the end, until there are enough.
void AddLastBits(const OctetView& bits, quint32 first, quint32 pageCount, std::size_t most, std::vector<quint32>& pages)
{
    if (first >= pageCount)
        return;
    const qsizetype within = static_cast<qsizetype>((qint64(pageCount) - 1 - first) / MapLayout::BitsOfOctet) + 1;
    for (qsizetype at = std::min(bits.Size(), within); at-- > 0 && pages.size() < most;) {
        const quint8 octet = bits.U8(at);
        for (int bit = MapLayout::BitsOfOctet - 1; octet != 0 && bit >= 0 && pages.size() < most; --bit) {
            const quint64 page = first + quint64(at) * MapLayout::BitsOfOctet + static_cast<quint64>(bit);
            if ((octet >> bit & 1) != 0 && page < pageCount)
                pages.push_back(static_cast<quint32>(page));
        }
    }
}

} // namespace

std::vector<quint32> LastPagesOf(PageFile& file, quint32 pointer, std::size_t most)
{
    const RowPlace place = RowPlace::FromPointer(pointer);
    const DataPage page(file, place.Page);
    const OctetView row = page.RowAt(place.Row);
    std::vector<quint32> pages;
    if (row.U8(0) == MapLayout::Inline) {
        AddLastBits(row.From(5), row.U32(1), file.PageCount(), most, pages);
        return pages;
    }
    if (row.U8(0) != MapLayout::Referring)
        throw Fault(QStringLiteral("row %1 of page %2 is no map of pages").arg(place.Row).arg(place.Page));
    const qsizetype inFile = (qsizetype(file.PageCount()) + PagesOfBitmap - 1) / PagesOfBitmap;
    for (qsizetype i = std::min((row.Size() - 1) / 4, inFile); i-- > 0 && pages.size() < most;) {
        const quint32 number = row.U32(1 + 4 * i);
        if (number == 0)
            continue;
        const QByteArray bitmap = file.Page(number, PageType::Bitmap);
        AddLastBits(OctetView(bitmap).From(MapLayout::BitmapAt), static_cast<quint32>(i * PagesOfBitmap),
                    file.PageCount(), most, pages);
    }
    return pages;
}

UsageMap ReadUsageMap(PageFile& file, quint32 pointer)
{
    const RowPlace place = RowPlace::FromPointer(pointer);
    const DataPage page(file, place.Page);
    const OctetView row = page.RowAt(place.Row);
    UsageMap map;
    switch (row.U8(0)) {
    case MapLayout::Inline: {
        const quint32 first = row.U32(1);
        const OctetView bits = row.From(5);
        map.CoveredUpTo = static_cast<quint32>(
            std::min<quint64>(first + quint64(bits.Size()) * MapLayout::BitsOfOctet, LargestPageCount));
        AddBits(bits, first, file.PageCount(), map.Pages);
        return map;
    }
    case MapLayout::Referring:
        ReadReferences(file, row, map);
        return map;
    default:
        throw Fault(QStringLiteral("row %1 of page %2 is no map of pages").arg(place.Row).arg(place.Page));
    }
}

bool MapBitAt(const QByteArray& octets, qsizetype at, quint32 bit)
{
    return (static_cast<quint8>(octets.at(at + bit / MapLayout::BitsOfOctet)) >> (bit % MapLayout::BitsOfOctet) & 1) !=
           0;
}

void SetMapBit(QByteArray& octets, qsizetype at, quint32 bit, bool isSet)
{
    char& octet = octets.data()[at + bit / MapLayout::BitsOfOctet];
    const int mask = 1 << (bit % MapLayout::BitsOfOctet);
    octet = static_cast<char>(isSet ? octet | mask : octet & ~mask);
}

} // namespace dao::jet
