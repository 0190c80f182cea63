// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Error.h"
#include "platform/records/jetsql/LikePattern.h"

#include <memory>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

/// What rendered queries and the store's text columns need of an SQLite connection.
namespace dao::sqlite
{

/// The collation of query::CompareText.
inline constexpr char CollationName[] = "JET";

/// Makes the collation and the functions known to a connection. Call once after opening it, before any table that
/// uses the collation is touched. Error 3049 when SQLite refuses.
///
/// jet_like(pattern, text...): 1 when any of the texts meets the pattern, else Null when any or the pattern is Null,
/// else 0. Texts may be stored as TEXT or BLOB in UTF-8; numbers count by their text form.
/// jet_concatenate(left, right): the texts joined, Null as empty unless both are Null.
/// jet_store(value, type, size, allow zero length): the value as a column of that type stores it.
/// jet_mark(value...): RowMark of the values, for a row in which memos count as Null.
/// jet_check(memo, row id): what stands beside the memo in its check column; Null for Null.
void RegisterSqlFunctions(sqlite3* connection);

/// Binds a compiled pattern; the statement shares it. index: from 1. The result is SQLite's result code.
int BindLikePattern(sqlite3_stmt* statement, int index, std::shared_ptr<const jetsql::LikePattern> pattern);

/// When a step failed because an assigned value did not fit its column: the error to throw (3163, 6, 3421). None for
/// any other message of SQLite.
std::optional<Error> StoredValueError(const char* message);

} // namespace dao::sqlite
