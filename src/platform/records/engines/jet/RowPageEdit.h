// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/DataPage.h"

namespace dao::jet
{

/// Changes a page of rows, whatever they are: rows lie packed from its end, in the order of their slots. The page is
/// changed in the file's transaction by each call. Fault when it is none, or has no such row.
class RowPageEdit
{
public:
    RowPageEdit(PageFile& file, quint32 number);

    /// Whether a row of that size fits behind the others.
    bool HasRoomFor(qsizetype size) const;
    /// Whether the row fits in the place of that one.
    bool HasRoomInstead(int row, qsizetype size) const;
    int FreeOctets() const;
    int RowCount() const { return RowCount_; }
    bool HasRows() const; ///< Others than deleted ones.

    /// The number of the new row.
    int Add(const QByteArray& row, quint16 flags = 0);
    void Replace(int row, const QByteArray& octets, quint16 flags);
    /// The slot stays, for numbers of rows never change.
    void Delete(int row);

private:
    int StartOf(int row) const;
    void SetSlot(int row, int start, quint16 flags);
    void Store();

    PageFile& File_;
    quint32 Number_;
    QByteArray Octets_;
    int RowCount_;
};

} // namespace dao::jet
