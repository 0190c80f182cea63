// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Schema.h"
#include "platform/records/engines/jet/TableDefinition.h"

namespace dao::jet
{

/// Columns and indexes of a new table, in order, without places in rows and files. Errors: 3251 for a name or a number
/// of columns or indexes that such a file cannot have.
TableDefinition ShapeOf(const engine::Table& table);
ColumnDefinition ShapeOf(const engine::Column& column);
/// Adds an index of the table to its shape.
void AddShapeOf(const engine::IndexKey& index, const engine::Table& table, TableDefinition& shape);
/// What the properties of a new table say.
QByteArray PropertiesOf(const engine::Table& table);

} // namespace dao::jet
