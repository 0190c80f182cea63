// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/RowFormat.h"
#include "platform/records/engines/Schema.h"

#include <QVariant>

/// Conversions between a field's value in memory (a QVariant, invalid for Null) and its stored form. Pure functions;
/// any thread.
namespace dao
{

/// The stored form of a value in a column of that type. Converted where nothing is lost but the fraction of a number
/// (halves to the even number): texts that are numbers, truth values (true is -1), dates. Errors: 3163 a text longer
/// than the column, 6 a number outside the type, 3421 a value that cannot be converted.
StoredValue ToStoredValue(const QVariant& value, const engine::Column& column);

/// The same for a key that is only compared: a text of any length.
StoredValue ToStoredKey(const QVariant& value, const engine::Column& column);

QVariant FromStoredValue(const StoredValue& value, DataTypeEnum type);
QVariant FromCell(const CellView& cell, DataTypeEnum type);

/// Whether a day number is a date of the years 100 to 9999.
bool IsStorableDate(double day);

/// Octets that a number of this type takes; 0 for text and memo.
int OctetsOfType(DataTypeEnum type);

} // namespace dao
