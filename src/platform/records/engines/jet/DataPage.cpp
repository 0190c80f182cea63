// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/DataPage.h"

#include "platform/records/engines/jet/PageLayout.h"

namespace dao::jet
{

DataPage::DataPage(PageFile& file, quint32 number) : DataPage(number, file.Page(number, PageType::Data)) {}

DataPage::DataPage(quint32 number, QByteArray octets)
    : Octets_(std::move(octets)), Number_(number), RowCount_(OctetView(Octets_).U16(RowPageLayout::RowCountAt))
{
    if (RowCount_ > (PageSize - RowPageLayout::SlotsAt) / 2)
        throw Fault(QStringLiteral("page %1 names more rows than a page can hold").arg(number));
}

quint32 DataPage::Owner() const
{
    return OctetView(Octets_).U32(RowPageLayout::OwnerAt);
}

int DataPage::FreeOctets() const
{
    return OctetView(Octets_).U16(RowPageLayout::FreeOctetsAt);
}

DataPage::Slot DataPage::SlotAt(int row) const
{
    if (row < 0 || row >= RowCount_)
        throw Fault(QStringLiteral("row %1 of page %2 is named and is not there").arg(row).arg(Number_));
    const OctetView page(Octets_);
    const quint16 slot = page.U16(RowPageLayout::SlotsAt + RowPageLayout::SlotSize * row);
    const int end =
        row == 0 ? PageSize : page.U16(RowPageLayout::SlotsAt + RowPageLayout::SlotSize * (row - 1)) & RowOffsetMask;
    const int start = slot & RowOffsetMask;
    if (start > end || end > PageSize || start < RowPageLayout::SlotsAt + RowPageLayout::SlotSize * RowCount_)
        throw Fault(QStringLiteral("row %1 of page %2 does not lie where rows may").arg(row).arg(Number_));
    return {start, end, static_cast<quint16>(slot & RowDeleted)};
}

OctetView DataPage::RowAt(int row) const
{
    return RowAt(SlotAt(row));
}

} // namespace dao::jet
