// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/PageFile.h"

namespace dao::jet
{

/// A page of rows, of long values or of maps, as it stands. Shares the page's octets.
class DataPage
{
public:
    struct Slot
    {
        int Start = 0;
        int End = 0;
        quint16 Flags = 0; ///< Those of RowFlag.

        bool IsDeleted() const { return Flags == RowDeleted; }
        bool IsPointer() const { return Flags == RowPointer; }
        /// A row that a scan of its page shows.
        bool IsShown() const { return (Flags & RowHidden) == 0; }
    };

    /// Fault when there is no such page, or it holds no rows.
    DataPage(PageFile& file, quint32 number);
    /// The same of a page of rows that was read.
    DataPage(quint32 number, QByteArray octets);

    quint32 Number() const { return Number_; }
    /// The page that defines the table it belongs to, LongOwner, or 0 for maps.
    quint32 Owner() const;
    int RowCount() const { return RowCount_; }
    int FreeOctets() const;
    /// Fault when there is no such row, or it lies outside of where rows may.
    Slot SlotAt(int row) const;
    OctetView RowAt(int row) const;
    OctetView RowAt(const Slot& slot) const { return OctetView(Octets_).Part(slot.Start, slot.End - slot.Start); }

private:
    QByteArray Octets_;
    quint32 Number_;
    int RowCount_;
};

} // namespace dao::jet
