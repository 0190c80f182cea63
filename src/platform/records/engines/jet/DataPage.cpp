// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/DataPage.h"

namespace dao::jet
{

namespace
{
constexpr int FreeOctetsAt = 2;
constexpr int OwnerAt = 4;
constexpr int RowCountAt = 12;
} // namespace

DataPage::DataPage(PageFile& file, quint32 number)
    : Octets_(file.Page(number, PageType::Data)), Number_(number), RowCount_(OctetView(Octets_).U16(RowCountAt))
{
    if (RowCount_ > (PageSize - RowSlotsAt) / 2)
        throw Fault(QStringLiteral("page %1 names more rows than a page can hold").arg(number));
}

quint32 DataPage::Owner() const
{
    return OctetView(Octets_).U32(OwnerAt);
}

int DataPage::FreeOctets() const
{
    return OctetView(Octets_).U16(FreeOctetsAt);
}

DataPage::Slot DataPage::SlotAt(int row) const
{
    if (row < 0 || row >= RowCount_)
        throw Fault(QStringLiteral("row %1 of page %2 is named and is not there").arg(row).arg(Number_));
    const OctetView page(Octets_);
    const quint16 slot = page.U16(RowSlotsAt + 2 * row);
    const int end = row == 0 ? PageSize : page.U16(RowSlotsAt + 2 * (row - 1)) & RowOffsetMask;
    const int start = slot & RowOffsetMask;
    if (start > end || end > PageSize || start < RowSlotsAt + 2 * RowCount_)
        throw Fault(QStringLiteral("row %1 of page %2 does not lie where rows may").arg(row).arg(Number_));
    return {start, end, static_cast<quint16>(slot & RowDeleted)};
}

OctetView DataPage::RowAt(int row) const
{
    return RowAt(SlotAt(row));
}

} // namespace dao::jet
