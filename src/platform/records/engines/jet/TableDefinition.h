// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/PageFile.h"

#include <vector>

namespace dao::jet
{

struct ColumnDefinition
{
    QString Name;
    quint8 Type = 0;           ///< A ColumnType, or one that nobody knows.
    quint16 Number = 0;        ///< Its identity, and its bit among the Nulls.
    quint16 VariableIndex = 0; ///< Its place among the ends of the values of variable length.
    quint16 Ordinal = 0;       ///< Where it is shown.
    quint8 Flags = 0;
    quint8 FurtherFlags = 0;
    quint16 FixedOffset = 0;
    quint16 Length = 0; ///< In octets.
    /// Of a decimal number its digits, and above them those behind the point.
    quint16 SortOrder = GeneralSortOrder;
    quint8 SortVersion = 0;
    quint32 OwnedMap = 0; ///< The maps of the pages of long values; 0 for none.
    quint32 FreeMap = 0;

    bool Is(ColumnType type) const { return Type == static_cast<quint8>(type); }
    bool IsFixed() const { return (Flags & FixedColumn) != 0; }
    int Scale() const { return SortOrder >> 8; }
    /// Whether its texts stand in indexes in the one order that is known.
    bool HasGeneralOrder() const { return SortOrder == GeneralSortOrder && SortVersion == 0; }
    bool IsLong() const { return Is(ColumnType::Memo) || Is(ColumnType::Ole); }
};

/// The tree of an index.
struct IndexDefinition
{
    struct KeyColumn
    {
        quint16 Number = 0;
        bool IsAscending = true;
    };
    std::vector<KeyColumn> Columns;
    quint32 Map = 0;
    quint32 Root = 0;
    quint8 Flags = 0;
    quint32 DistinctKeys = 0; ///< Ever added.
};

/// A name that an index is known by; several may stand for one tree.
struct IndexName
{
    QString Name;
    quint32 Number = 0;
    quint32 Tree = 0; ///< Its place in the table's indexes.
    quint8 Relation = 0;
    qint32 OtherIndex = -1;
    quint32 OtherTable = 0;
    quint8 UpdateCascade = 4; ///< 4 where there is none.
    quint8 DeleteCascade = 4;
    quint8 Kind = 0; ///< Primary or Foreign.

    static constexpr quint8 Primary = 1;
    static constexpr quint8 Foreign = 2;
};

/// A table as its definition says it is. Columns are in order of their numbers.
struct TableDefinition
{
    /// By a sum that is stored with it, a definition is told from what a failing disk made of it. Those of other
    /// programs have none, and one that they changed has a wrong one.
    enum class Seal : quint8
    {
        None,
        Holds,
        Broken
    };

    std::vector<quint32> Pages; ///< The definition's own; the first is the table's identity.
    Seal State = Seal::None;
    quint32 RowCount = 0; ///< Of a file that was closed in order.
    quint32 Counter = 0;  ///< The last automatic number that was given.
    bool IsSystem = false;
    quint16 ColumnsEver = 0;     ///< Those that were deleted included.
    quint16 VariableColumns = 0; ///< Likewise.
    std::vector<ColumnDefinition> Columns;
    std::vector<IndexDefinition> Indexes;
    std::vector<IndexName> IndexNames;
    quint32 OwnedMap = 0;
    quint32 FreeMap = 0;

    quint32 Page() const { return Pages.front(); }
    /// Null when no column bears the number.
    const ColumnDefinition* ColumnOf(quint16 number) const;
    const ColumnDefinition* ColumnNamed(const QString& name) const;
};

inline constexpr int DefinitionSealAt = 28; ///< Where other programs have octets without a meaning.
inline constexpr quint32 DefinitionSealMark = 0x4C455344;
/// The sum of a definition that begins on a page, as one text; what changes with every row is left out.
quint32 SumOfDefinition(const QByteArray& octets, quint32 page);

/// The definition that begins on a page. Fault when it is none, or does not fit together.
TableDefinition ReadTableDefinition(PageFile& file, quint32 page);

} // namespace dao::jet
