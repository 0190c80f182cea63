// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/RowFormat.h"
#include "platform/records/engines/jet/TableDefinition.h"

#include <optional>

namespace dao::jet
{

/// A row taken apart. Shares the row's octets, which must live longer.
class RowCells
{
public:
    /// Fault when it does not fit together.
    RowCells(const OctetView& row, const TableDefinition& table);

    /// A value as it stands; none for Null. A truth value has no octets and is never Null: see Truth.
    std::optional<OctetView> Octets(const ColumnDefinition& column) const;
    bool Truth(const ColumnDefinition& column) const { return HasBit(column.Number); }
    /// What a column holds, as the record store takes it; Null for Null. What it has no type for is shown as a text: a
    /// decimal number by its digits, an identity in braces, octets as 0x and their digits. Of a long value nothing but
    /// Null is known here. Fault.
    StoredValue Value(const ColumnDefinition& column) const;

private:
    bool HasBit(quint16 number) const;

    OctetView Row_;
    int ColumnCount_ = 0;
    OctetView Mask_;
    int VariableCount_ = 0;
    qsizetype VariableTableAt_ = 0; ///< Behind it lies the table of ends, the last column's first.
};

/// Differs between the rows that a row has been, as far as anything of it differs.
qint64 VersionOf(const OctetView& row);

/// What a long value's octets say, as Value shows it.
QByteArray ShownLongValue(const ColumnDefinition& column, const QByteArray& octets);

} // namespace dao::jet
