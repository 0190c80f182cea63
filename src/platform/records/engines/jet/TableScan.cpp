// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/TableScan.h"

#include "platform/records/engines/jet/UsageMap.h"

#include <algorithm>

namespace dao::jet
{

std::optional<FoundRow> FindRow(PageFile& file, const TableDefinition& table, RowPlace place)
{
    const RowPlace known = place;
    for (int step = 0; step < LongestPath; ++step) {
        const bool isFirst = step == 0;
        // The page of a row that is gone may be anybody's by now, or nobody's.
        if (isFirst && (place.Page == 0 || place.Page >= file.PageCount()))
            return std::nullopt;
        QByteArray octets = isFirst ? file.Page(place.Page) : file.Page(place.Page, PageType::Data);
        if (isFirst && octets.at(0) != static_cast<char>(PageType::Data))
            return std::nullopt;
        DataPage page(place.Page, std::move(octets));
        if (page.Owner() != table.Page()) {
            if (isFirst)
                return std::nullopt;
            throw Fault(
                QStringLiteral("a row is said to have moved to page %1, which is another table's").arg(place.Page));
        }
        if (isFirst && place.Row >= page.RowCount())
            return std::nullopt;
        const DataPage::Slot slot = page.SlotAt(place.Row);
        if (slot.IsPointer()) {
            place = RowPlace::FromPointer(page.RowAt(slot).U32(0));
            continue;
        }
        if (isFirst ? !slot.IsShown() : slot.IsDeleted()) {
            if (isFirst)
                return std::nullopt;
            throw Fault(QStringLiteral("a row is said to have moved to row %1 of page %2, which was deleted")
                            .arg(place.Row)
                            .arg(place.Page));
        }
        return FoundRow{std::move(page), slot, place};
    }
    throw Fault(QStringLiteral("the way to row %1 of page %2 does not end").arg(known.Row).arg(known.Page));
}

TableScan::TableScan(PageFile& file, const TableDefinition& table)
    : File_(file), Table_(table), Pages_(ReadUsageMap(file, table.OwnedMap).Pages)
{
}

std::optional<DataPage> TableScan::PageOf(quint32 number)
{
    DataPage page(File_, number);
    if (page.Owner() != Table_.Page())
        return std::nullopt;
    return page;
}

std::optional<RowPlace> TableScan::Next(std::optional<RowPlace> place)
{
    auto at = place ? std::lower_bound(Pages_.begin(), Pages_.end(), place->Page) : Pages_.begin();
    for (; at != Pages_.end(); ++at) {
        const std::optional<DataPage> page = PageOf(*at);
        if (!page)
            continue;
        const int first = place && place->Page == *at ? place->Row + 1 : 0;
        for (int row = first; row < std::min(page->RowCount(), MostRowsOfPage + 1); ++row) {
            if (page->SlotAt(row).IsShown())
                return RowPlace{*at, static_cast<quint8>(row)};
        }
    }
    return std::nullopt;
}

std::optional<RowPlace> TableScan::Previous(std::optional<RowPlace> place)
{
    auto at = place ? std::upper_bound(Pages_.begin(), Pages_.end(), place->Page) : Pages_.end();
    while (at != Pages_.begin()) {
        --at;
        const std::optional<DataPage> page = PageOf(*at);
        if (!page)
            continue;
        const int rows = std::min(page->RowCount(), MostRowsOfPage + 1);
        int row = place && place->Page == *at ? std::min<int>(place->Row, rows) : rows;
        while (row-- > 0) {
            if (page->SlotAt(row).IsShown())
                return RowPlace{*at, static_cast<quint8>(row)};
        }
    }
    return std::nullopt;
}

qint64 TableScan::Count()
{
    qint64 count = 0;
    for (const quint32 number : Pages_) {
        const std::optional<DataPage> page = PageOf(number);
        for (int row = 0; page && row < page->RowCount(); ++row)
            count += static_cast<qint64>(page->SlotAt(row).IsShown());
    }
    return count;
}

void TableScan::ForEach(const Visitor& visit)
{
    for (const quint32 number : Pages_) {
        const std::optional<DataPage> page = PageOf(number);
        const int rows = page ? std::min(page->RowCount(), MostRowsOfPage + 1) : 0;
        for (int row = 0; row < rows; ++row) {
            const DataPage::Slot slot = page->SlotAt(row);
            if (!slot.IsShown())
                continue;
            const RowPlace known{number, static_cast<quint8>(row)};
            const std::optional<FoundRow> found =
                slot.IsPointer() ? FindRow(File_, Table_, known) : FoundRow{*page, slot, known};
            if (found && !visit(known, *found))
                return;
        }
    }
}

} // namespace dao::jet
