// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/UsageMap.h"

#include "platform/records/engines/jet/DataPage.h"

#include <algorithm>

namespace dao::jet
{

namespace
{

constexpr quint8 InlineMap = 0;
constexpr quint8 ReferringMap = 1;
constexpr int BitmapAt = 4; // On a bitmap page.
constexpr qint64 BitsOfOctet = 8;

void AddBits(const OctetView& bits, quint32 first, quint32 pageCount, std::vector<quint32>& pages)
{
    for (qsizetype at = 0; at < bits.Size(); ++at) {
        const quint64 base = first + quint64(at) * BitsOfOctet;
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
        AddBits(OctetView(page).From(BitmapAt), static_cast<quint32>(first), file.PageCount(), map.Pages);
    }
}

} // namespace

UsageMap ReadUsageMap(PageFile& file, quint32 pointer)
{
    const RowPlace place = RowPlace::FromPointer(pointer);
    const DataPage page(file, place.Page);
    const OctetView row = page.RowAt(place.Row);
    UsageMap map;
    switch (row.U8(0)) {
    case InlineMap: {
        const quint32 first = row.U32(1);
        const OctetView bits = row.From(5);
        map.CoveredUpTo =
            static_cast<quint32>(std::min<quint64>(first + quint64(bits.Size()) * BitsOfOctet, LargestPageCount));
        AddBits(bits, first, file.PageCount(), map.Pages);
        return map;
    }
    case ReferringMap:
        ReadReferences(file, row, map);
        return map;
    default:
        throw Fault(QStringLiteral("row %1 of page %2 is no map of pages").arg(place.Row).arg(place.Page));
    }
}

} // namespace dao::jet
