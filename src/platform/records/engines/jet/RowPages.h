// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/PageWriter.h"

#include <functional>

namespace dao::jet
{

/// Puts rows on pages of one owner, one page after the other, and the pages into its maps.
class RowPages
{
public:
    /// owner: as it stands on the pages.
    RowPages(PageWriter& pages, quint32 owner);

    quint32 OwnedMap() const { return OwnedMap_; }
    quint32 FreeMap() const { return FreeMap_; }
    /// The row is short enough for a page.
    RowPlace Add(const QByteArray& row);
    /// A page for one row alone, and that row; it has the number 0.
    quint32 AllocateAlone();
    void WriteAlone(quint32 page, const QByteArray& row);
    /// Writes what is still in memory; nothing is added afterwards.
    void Finish();

private:
    void WritePage();

    PageWriter& Pages_;
    quint32 Owner_;
    quint32 OwnedMap_;
    quint32 FreeMap_;
    quint32 Page_ = 0; ///< 0 while there is none.
    std::vector<QByteArray> Rows_;
    qsizetype Room_ = 0;
    std::vector<quint32> Owned_;
};

/// Takes a long value apart and answers what stands in the row for it. addPiece: puts a row on a page that others may
/// share; allocate: a page for one row alone; writeAlone: that row. Error 3251 beyond 1 GB.
QByteArray StoreLongValue(const QByteArray& value, const std::function<RowPlace(const QByteArray&)>& addPiece,
                          const std::function<quint32()>& allocate,
                          const std::function<void(quint32, const QByteArray&)>& writeAlone);

/// Writes memos and blobs of one column.
class LongValueWriter
{
public:
    explicit LongValueWriter(PageWriter& pages) : Rows_(pages, LongOwner) {}

    /// What stands in the row for it.
    QByteArray Add(const QByteArray& value);
    RowPages& Rows() { return Rows_; }

private:
    RowPages Rows_;
};

} // namespace dao::jet
