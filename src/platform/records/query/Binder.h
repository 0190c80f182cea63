// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Schema.h"
#include "platform/records/jetsql/SyntaxTree.h"
#include "platform/records/query/BoundTree.h"

/// Resolves the names of a query and checks its types, once, for whatever engine runs it. Pure functions; any thread.
///
/// Types: a constant is converted to the type of the column it is compared with (Category = "5" is a comparison of
/// numbers, Title = 5 one of texts); what cannot be converted, such as Category = "five" or a date against a text
/// column, is error 13 with the place rather than a condition that never holds. A parameter is converted when it has
/// its value.
///
/// Errors: 3078 no such table, 3061 a qualified name that is no column (or a plain one that several tables have,
/// as 3079 has no place in the store's list), 13 types that cannot be compared or computed with each other, 3075 a
/// table named twice, a column assigned twice, a column beside an aggregate.
namespace dao::query
{

BoundSelect BindSelect(const jetsql::SelectStatement& statement, const engine::Schema& schema);
/// An UPDATE or DELETE; 3251 for a SELECT.
BoundChange BindChange(const jetsql::Statement& statement, const engine::Schema& schema);
/// BindChange for what is about to run: 3251 also for an UPDATE of an automatic counter.
BoundChange BindChangeToRun(const jetsql::Statement& statement, const engine::Schema& schema);
/// The names in a statement that are no columns.
QStringList ParametersOf(const jetsql::Statement& statement, const engine::Schema& schema);

/// Whether an UPDATE changes a column of the primary index, which takes no Null.
bool ChangesPrimaryKey(const BoundChange& change);

} // namespace dao::query
