// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

/// Where things stand on the pages of each kind, in octets from a page's beginning unless something else is said; for
/// the sources that read and make pages. docs/jet-file.md says what they mean.
namespace dao::jet
{

/// Pages of rows, of long values and of maps.
namespace RowPageLayout
{
inline constexpr int FreeOctetsAt = 2;
inline constexpr int OwnerAt = 4;
inline constexpr int RowCountAt = 12;
inline constexpr int SlotsAt = 14;
inline constexpr int SlotSize = 2;
} // namespace RowPageLayout

namespace IndexLayout
{
inline constexpr int FreeOctetsAt = 2;
inline constexpr int OwnerAt = 4;
inline constexpr int PreviousAt = 12;
inline constexpr int NextAt = 16;
inline constexpr int TailChildAt = 20;
inline constexpr int PrefixSizeAt = 24;
inline constexpr int LevelAt = 26;
/// Behind the key of each entry its row, and on a branch the child.
inline constexpr qsizetype RowSize = 4;
inline constexpr qsizetype ChildSize = 4;
/// A deeper one is taken for a ring.
inline constexpr int DeepestTree = 16;
} // namespace IndexLayout

/// Maps of pages, from the beginning of their rows.
namespace MapLayout
{
inline constexpr quint8 Inline = 0;
inline constexpr quint8 Referring = 1;
inline constexpr qsizetype FirstPageAt = 1; ///< Of an inline one.
inline constexpr qsizetype BitsAt = 5;      ///< Likewise.
inline constexpr qsizetype ReferencesAt = 1;
inline constexpr int RowSize = 69; ///< Of a new one.
inline constexpr int BitsOfOctet = 8;
inline constexpr qsizetype BitmapAt = 4; ///< On a page of bits.
} // namespace MapLayout

/// The definition of a table as one text, whatever pages it takes.
namespace DefinitionLayout
{
inline constexpr int LengthAt = 8;
inline constexpr int RowCountAt = 16;
inline constexpr int CounterAt = 20;
inline constexpr int KindAt = 40;
inline constexpr quint8 UserTable = 0x4E;
inline constexpr quint8 SystemTable = 0x53;
inline constexpr int FixedPart = 63;        ///< Behind it the statistics of each tree.
inline constexpr int StatisticsOfTree = 12; ///< Octets.
inline constexpr quint16 NoColumn = 0xFFFF;
} // namespace DefinitionLayout

} // namespace dao::jet
