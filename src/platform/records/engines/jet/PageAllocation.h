// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/PageFile.h"

#include <vector>

namespace dao::jet
{

/// Gives and takes pages in a file's transaction, and keeps the maps that say whose they are.
class PageAllocation
{
public:
    explicit PageAllocation(PageFile& file) : File_(file) {}

    /// Other changes were made, or taken back.
    void BeginAnew() { KnowsFree_ = false; }

    /// A page that nobody has, of zeros, behind the given one. Error 3251 when the file would be larger than such a
    /// file can be.
    quint32 Allocate(quint32 behind = 0);
    /// Nobody has the page any more.
    void Free(quint32 page);

    /// An empty map, by the pointer to where it stands. beside: another one, on whose page it goes if there is room.
    quint32 AddMap(quint32 beside);
    void AddTo(quint32 map, quint32 page) { Set(map, page, true); }
    void TakeFrom(quint32 map, quint32 page) { Set(map, page, false); }
    bool IsIn(quint32 map, quint32 page);
    /// 0 for none.
    quint32 LastOf(quint32 map);

private:
    void Set(quint32 map, quint32 page, bool isSet);
    void SetInRow(RowPlace place, QByteArray row, quint32 page, bool isSet);
    void SetOnBitmap(RowPlace place, QByteArray row, quint32 page, bool isSet);
    void MakeReferring(RowPlace place, const QByteArray& row, quint32 page);
    bool MoveInline(RowPlace place, QByteArray& row, quint32 page);
    void StoreRow(RowPlace place, const QByteArray& row);
    quint32 Append();

    PageFile& File_;
    std::vector<quint32> Free_; ///< In order, as of the beginning.
    bool KnowsFree_ = false;
};

/// Whether the file's map of free pages marks a page that may lie behind the file's end as free.
bool IsMarkedFree(PageFile& file, quint32 page);

} // namespace dao::jet
