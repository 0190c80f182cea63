// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/RowFormat.h"
#include "platform/records/engines/Schema.h"

#include <optional>
#include <string_view>

/// What stored values are beside each other and as texts: the rules that every engine follows, whether it evaluates a
/// query itself or lends these functions to a database. Pure functions; any thread. A text may be a view of octets that
/// live elsewhere (QByteArray::fromRawData): the results share no octets with such a view unless said so.
namespace dao::query
{

inline bool IsNull(const StoredValue& value)
{
    return std::holds_alternative<std::monostate>(value);
}

inline bool IsNumber(const StoredValue& value)
{
    return std::holds_alternative<qint64>(value) || std::holds_alternative<double>(value);
}

/// The octets of a text; empty for what is none.
std::string_view TextIn(const StoredValue& value);
/// A text that is a view of these octets, which must live as long.
StoredValue TextView(std::string_view utf8);
/// A text view for a cell's text, the number for a number, Null for Null and for a memo that was not read.
StoredValue ViewOf(const CellView& cell);
/// A value with octets of its own.
StoredValue Kept(StoredValue value);

/// 0 for Null and text.
double RealIn(const StoredValue& value);

/// Compares texts without regard to case in all of Unicode (simple folding). A total order over any octets; what is
/// no UTF-8 sorts behind all characters.
int CompareText(std::string_view left, std::string_view right);
/// The order of sorting and of indexes, total: Null, then numbers by value (whole and floating-point ones exactly),
/// then texts by CompareText.
int CompareStored(const StoredValue& left, const StoredValue& right);

/// A text as it is, or the shortest text of a number with at most 15 digits ("5", "0.1"); Null for Null. A text view
/// gives a view again.
StoredValue AsText(const StoredValue& value);
/// The number that a text is, with blanks around it; none for any other text.
std::optional<double> NumberIn(std::string_view text);
/// A number as a double, the number that a text is; Null for Null. Error 3421 for any other text.
StoredValue AsNumber(const StoredValue& value);

/// The value as a column holds it; Null for an empty text where that is not allowed. Errors: 6 a number outside the
/// column's type, infinite or NaN, 3163 a text too long, 3421 a text that is no number.
StoredValue AsHeldBy(const engine::Column& column, const StoredValue& value);

} // namespace dao::query
