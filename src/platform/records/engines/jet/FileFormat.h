// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

/// The numbers of the Jet 4 file; docs/jet-file.md says what they mean.
namespace dao::jet
{

inline constexpr int PageSize = 4096;
inline constexpr quint32 LargestPageCount = 0x80000; ///< 2 GiB.
inline constexpr int LargestRow = 4060;
inline constexpr int LargestLongRow = 4076; ///< On a page of long values.
inline constexpr int LargestInline = 64;    ///< Octets of a long value that stand in their row.
inline constexpr int MostColumns = 255;
inline constexpr int MostRowsOfPage = 255;
inline constexpr int DefinitionHeader = 8;       ///< Octets in front of each page of a table's definition.
inline constexpr int IndexRoom = 3616;           ///< Octets of entries on an index page.
inline constexpr int IndexEntriesAt = 480;       ///< Where they begin.
inline constexpr int IndexBitmapAt = 27;         ///< A bit for each octet of them: an entry ends here.
inline constexpr int IndexColumns = 10;          ///< Of one index.
inline constexpr int PagesOfBitmap = 32736;      ///< What a bitmap page covers.
inline constexpr quint32 LongOwner = 0x4C41564C; ///< "LVAL", where a data page names its table.

enum class PageType : quint8
{
    Header = 0,
    Data = 1,
    Definition = 2,
    IndexNode = 3,
    IndexLeaf = 4,
    Bitmap = 5,
};

enum class ColumnType : quint8
{
    Boolean = 1,
    Byte = 2,
    Integer = 3,
    Long = 4,
    Currency = 5,
    Single = 6,
    Double = 7,
    Date = 8,
    Binary = 9,
    Text = 10,
    Ole = 11,
    Memo = 12,
    Guid = 15,
    Numeric = 16,
};

enum ColumnFlag : quint8
{
    FixedColumn = 0x01,
    UpdatableColumn = 0x02,
    CounterColumn = 0x04,
    SystemColumn = 0x10,
};

inline constexpr quint8 CompressedColumn = 0x01; ///< In the octet of further flags.

enum IndexFlag : quint8
{
    UniqueIndex = 0x01,
    IgnoresNulls = 0x02,
    RequiredIndex = 0x08,
    AlwaysSet = 0x80,
};

enum RowFlag : quint16
{
    RowOffsetMask = 0x1FFF,
    RowPointer = 0x4000, ///< The row moved; here stands where to.
    RowHidden = 0x8000,  ///< Where a row moved to.
    RowDeleted = 0xC000,
};

enum class ObjectType : qint16
{
    Table = 1,
    Database = 2,
    Container = 3,
};

inline constexpr quint32 SystemObject = 0x80000002; ///< Either bit of an object's flags.
inline constexpr quint32 CatalogueDefinition = 2;   ///< The page that defines the table of all objects.
inline constexpr quint32 GlobalMapPointer = 0x100;  ///< Page 1, row 0.
inline constexpr quint16 GeneralSortOrder = 0x0409;
inline constexpr double CurrencyUnit = 10000; ///< Of the whole number that is stored.

} // namespace dao::jet
