// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/query/Evaluator.h"
#include "platform/records/query/TableRows.h"

namespace dao::query
{

/// What a condition asks of one of its sources: that a column equals a value which does not depend on that source or
/// those behind it. Points into the condition.
struct KeyCondition
{
    const BoundColumn* Column = nullptr; ///< Null when there is no such thing.
    const BoundExpression* Value = nullptr;
};

/// The first such part of a condition, which may be one of several joined by AND. source: its number in the query.
KeyCondition FindKey(const BoundExpression& condition, int source);

/// Each row of the query's first source that may meet the condition, and few others where one of the engine's indexes
/// finds them. constants: of the same query, at no row yet.
void ForEachCandidate(const BoundSource& source, const std::optional<BoundExpression>& where,
                      const Evaluator& constants, TableRows& rows, const TableRows::Visitor& visit);

} // namespace dao::query
