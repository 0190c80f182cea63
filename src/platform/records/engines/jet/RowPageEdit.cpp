// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/RowPageEdit.h"

#include "platform/records/engines/jet/PageLayout.h"
#include "platform/records/engines/jet/PageWriter.h"

#include <cstring>

namespace dao::jet
{

namespace
{
} // namespace

RowPageEdit::RowPageEdit(PageFile& file, quint32 number)
    : File_(file),
      Number_(number),
      Octets_(file.Page(number, PageType::Data)),
      RowCount_(OctetView(Octets_).U16(RowPageLayout::RowCountAt))
{
    const DataPage page(file, number);
    for (int row = 0; row < RowCount_; ++row)
        page.SlotAt(row); // A page whose slots do not fit together is not made worse.
}

int RowPageEdit::StartOf(int row) const
{
    return row < 0 ? PageSize
                   : OctetView(Octets_).U16(RowPageLayout::SlotsAt + RowPageLayout::SlotSize * row) & RowOffsetMask;
}

int RowPageEdit::FreeOctets() const
{
    return StartOf(RowCount_ - 1) - RowPageLayout::SlotsAt - RowPageLayout::SlotSize * RowCount_;
}

bool RowPageEdit::HasRoomFor(qsizetype size) const
{
    return RowCount_ < MostRowsOfPage && size + RowPageLayout::SlotSize <= FreeOctets();
}

bool RowPageEdit::HasRoomInstead(int row, qsizetype size) const
{
    return size <= FreeOctets() + StartOf(row - 1) - StartOf(row);
}

bool RowPageEdit::HasRows() const
{
    for (int row = 0; row < RowCount_; ++row) {
        if ((OctetView(Octets_).U16(RowPageLayout::SlotsAt + RowPageLayout::SlotSize * row) & RowDeleted) != RowDeleted)
            return true;
    }
    return false;
}

void RowPageEdit::SetSlot(int row, int start, quint16 flags)
{
    Put(Octets_, RowPageLayout::SlotsAt + RowPageLayout::SlotSize * row, static_cast<quint16>(start | flags));
}

void RowPageEdit::Store()
{
    Put(Octets_, RowPageLayout::FreeOctetsAt, static_cast<quint16>(FreeOctets()));
    File_.Change(Number_, Octets_);
}

int RowPageEdit::Add(const QByteArray& row, quint16 flags)
{
    if (!HasRoomFor(row.size()))
        throw Fault(QStringLiteral("page %1 has no room for a row").arg(Number_));
    const int start = StartOf(RowCount_ - 1) - static_cast<int>(row.size());
    std::memcpy(Octets_.data() + start, row.constData(), static_cast<std::size_t>(row.size()));
    SetSlot(RowCount_, start, flags);
    ++RowCount_;
    Put(Octets_, RowPageLayout::RowCountAt, static_cast<quint16>(RowCount_));
    Store();
    return RowCount_ - 1;
}

void RowPageEdit::Replace(int row, const QByteArray& octets, quint16 flags)
{
    if (row >= RowCount_ || !HasRoomInstead(row, octets.size()))
        throw Fault(QStringLiteral("page %1 has no room for row %2").arg(Number_).arg(row));
    const int end = StartOf(row - 1);
    const int lowest = StartOf(RowCount_ - 1);
    const int shift = end - static_cast<int>(octets.size()) - StartOf(row);
    // The rows behind it lie below it.
    std::memmove(Octets_.data() + lowest + shift, Octets_.constData() + lowest,
                 static_cast<std::size_t>(StartOf(row) - lowest));
    for (int other = row + 1; other < RowCount_; ++other) {
        const quint16 slot = OctetView(Octets_).U16(RowPageLayout::SlotsAt + RowPageLayout::SlotSize * other);
        SetSlot(other, StartOf(other) + shift, static_cast<quint16>(slot & RowDeleted));
    }
    std::memcpy(Octets_.data() + end - octets.size(), octets.constData(), static_cast<std::size_t>(octets.size()));
    SetSlot(row, end - static_cast<int>(octets.size()), flags);
    Store();
}

void RowPageEdit::Delete(int row)
{
    Replace(row, {}, RowDeleted);
}

} // namespace dao::jet
