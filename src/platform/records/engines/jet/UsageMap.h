// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/PageFile.h"

#include <vector>

namespace dao::jet
{

/// The pages that a map marks, as far as the file reaches, in order.
struct UsageMap
{
    std::vector<quint32> Pages;
    std::vector<quint32> BitmapPages; ///< Those that hold the map itself.
    quint32 CoveredUpTo = 0;          ///< The map says nothing of this page and those behind it.
};

/// pointer: where the map's row stands. Fault when it is no map.
UsageMap ReadUsageMap(PageFile& file, quint32 pointer);
/// Its last pages, up to that many, the last one first, without looking at all the others. Fault likewise.
std::vector<quint32> LastPagesOf(PageFile& file, quint32 pointer, std::size_t most);

/// A bit of a map whose bits begin at that octet.
bool MapBitAt(const QByteArray& octets, qsizetype at, quint32 bit);
void SetMapBit(QByteArray& octets, qsizetype at, quint32 bit, bool isSet);

} // namespace dao::jet
