// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/RowFormat.h"
#include "platform/records/engines/jet/TableDefinition.h"

#include <optional>
#include <span>
#include <vector>

namespace dao::jet
{

/// A value that is written: as it stands in the row (of a long value all its octets; of a truth value nothing), and as
/// indexes and counters take it.
struct NewCell
{
    std::optional<QByteArray> Octets; ///< None for Null.
    StoredValue Value;
};

/// The cell of a value that the record store has, or Null. Errors: 6 and 13 for what a column of that type cannot hold.
NewCell CellOf(const ColumnDefinition& column, const StoredValue& value);
/// Gives the columns their places in rows that have never had others: numbers, offsets and so on. Indexes go by the
/// columns' numbers from before, and follow them.
void PlaceColumns(TableDefinition& table);
/// A row of a table. octets: what stands in it for each column, none for Null; of truth
/// values any octets for true. Error 3163 when it is too long.
/// The row gets a seal with these sums of its long values and a new number, where it has room.
QByteArray MakeRow(const TableDefinition& table, std::span<const std::optional<QByteArray>> octets,
                   std::vector<quint32> longSums);

} // namespace dao::jet
