// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/TableDefinition.h"

#include <vector>

namespace dao::jet
{

/// What stands in a stored row in front of its values of variable length, in a gap as deleted columns leave it: other
/// programs pass over it. By it a row is told from what it was before, and from what a failing disk made of it.
///
///     number drawn for this state of the row | a sum of each long value | a sum over the table and all of the row
///
/// Rows of other programs have none, nor have rows that fill their page.
struct RowSeal
{
    /// A long value in the order of the table's long columns; UnknownSum where it is Null or nobody knows.
    std::vector<quint32> LongSums;
    quint32 Number = 0;

    static constexpr quint32 UnknownSum = 0;
};

/// What a stored row says of itself.
struct FoundSeal
{
    enum class State
    {
        None,  ///< The row has no seal.
        Holds, ///< The row is as it was stored, but for its long values, which stand elsewhere.
        Broken
    };
    State What = State::None;
    RowSeal Seal;    ///< Where it holds.
    quint32 Sum = 0; ///< Likewise.
};

/// The sum of a long value's octets; never UnknownSum.
quint32 SumOfLong(const QByteArray& octets);
/// Where the values of fixed length end in a row with so many columns.
qsizetype FixedEnd(const TableDefinition& table, int columnCount);
/// The octets that a seal takes in a row with so many columns.
qsizetype SealSize(const TableDefinition& table, int columnCount);
/// The seal as it stands in a row, without its sum.
QByteArray SealOctets(const RowSeal& seal);
/// Puts the sum into a row that is complete otherwise. at: where its seal stands.
void CloseSeal(QByteArray& row, qsizetype at, qsizetype size, const TableDefinition& table);
/// Fault when the row does not fit together.
FoundSeal SealOf(const OctetView& row, const TableDefinition& table);

/// Draws the numbers of seals.
quint32 NewSealNumber();

} // namespace dao::jet
