// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/RowFormat.h"
#include "platform/records/jetsql/LikePattern.h"

#include <optional>

/// The operators over stored values that are not comparisons. Pure functions; any thread. Arithmetic over Null is Null.
namespace dao::query
{

StoredValue Sum(const StoredValue& left, const StoredValue& right);
StoredValue Difference(const StoredValue& left, const StoredValue& right);
StoredValue Product(const StoredValue& left, const StoredValue& right);
/// A floating-point number; Null for division by zero.
StoredValue Quotient(const StoredValue& left, const StoredValue& right);
/// Of the numbers rounded to whole ones, halves away from zero; Null for zero.
StoredValue Remainder(const StoredValue& left, const StoredValue& right);

/// The texts joined, Null as empty unless both are Null.
StoredValue Concatenation(const StoredValue& left, const StoredValue& right);
/// None for Null; a number counts by its text.
std::optional<bool> IsLike(const jetsql::LikePattern& pattern, const StoredValue& text);

} // namespace dao::query
