// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/RowFormat.h"
#include "platform/records/engines/jet/TableDefinition.h"
#include "platform/records/engines/jet/TextKey.h"

#include <optional>
#include <span>

namespace dao::jet
{

/// The octets by which an index orders its rows. values: for its leading columns, as RowCells gives them; a memo's
/// whole text. Nothing when one of them cannot be made: a text of unknown order, or a value of a type
/// without a known form. An entry that another program made has that key only where the order of its texts is known.
std::optional<QByteArray> MakeKey(const TableDefinition& table, const IndexDefinition& index,
                                  std::span<const StoredValue> values, TextOrder order = TextOrder::Known);

} // namespace dao::jet
