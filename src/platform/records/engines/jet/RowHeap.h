// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/PageAllocation.h"
#include "platform/records/engines/jet/TableDefinition.h"

namespace dao::jet
{

/// The rows of a table, changed in the file's transaction. A new row stands behind all others, so that the order on the
/// pages is the order of entry; a row that has become too long for its page moves, and is known by its old place.
class RowHeap
{
public:
    /// table: must live as long as this.
    RowHeap(PageFile& file, PageAllocation& pages, const TableDefinition& table)
        : File_(file), Pages_(pages), Table_(table)
    {
    }

    RowPlace Add(const QByteArray& row);
    /// place: of a row that is there.
    void Replace(RowPlace place, const QByteArray& row);
    void Delete(RowPlace place);

private:
    std::vector<RowPlace> WayTo(RowPlace place);
    RowPlace AddOnLastPage(const QByteArray& row, quint16 flags);
    RowPlace AddMoved(const QByteArray& row, quint32 home);
    void DeleteSlot(RowPlace place);
    void FreePage(quint32 page);
    void NoteRoom(quint32 page);

    PageFile& File_;
    PageAllocation& Pages_;
    const TableDefinition& Table_;
};

/// The long values of one column, changed in the file's transaction.
class LongHeap
{
public:
    LongHeap(PageFile& file, PageAllocation& pages, const ColumnDefinition& column)
        : File_(file), Pages_(pages), Column_(column)
    {
    }

    /// What stands in the row for it.
    QByteArray Add(const QByteArray& value);
    /// reference: what stood in the row. A value that cannot be read is left where it is.
    void Delete(const QByteArray& reference);

private:
    RowPlace AddPiece(const QByteArray& piece);
    quint32 AllocatePage();
    void DeletePiece(RowPlace piece);

    PageFile& File_;
    PageAllocation& Pages_;
    const ColumnDefinition& Column_;
};

} // namespace dao::jet
