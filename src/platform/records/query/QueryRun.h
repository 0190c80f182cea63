// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/query/BoundTree.h"
#include "platform/records/query/TableRows.h"

/// Runs bound queries over rows, for engines that have no query language of their own.
namespace dao::query
{

/// Rows in the order of ORDER BY; rows that are equal there, or without ORDER BY, in order of entry, the first source
/// leading. What sink is told is what engine::Store::Select says. Errors: those of ParameterTable, of the rows, and 6
/// for a SUM that is too large.
void RunSelect(const BoundSelect& select, const engine::ParameterValues& parameters, engine::ResultPart part,
               TableRows& rows, const engine::RowSink& sink);

/// A row that an UPDATE or DELETE concerns.
struct ChangedRow
{
    qint64 Id = 0;
    qint64 Version = 0;
    std::vector<StoredValue> Values; ///< For each assignment, as its column holds it.
};

/// The rows that a change concerns, in order of entry. All is worked out before anything is changed. Errors: those of
/// ParameterTable, of the rows, and of AsHeldBy.
std::vector<ChangedRow> PlanChange(const BoundChange& change, const engine::ParameterValues& parameters,
                                   TableRows& rows);
/// Stores a plan; to be called in a transaction, for an error leaves what was stored before it. The number of rows.
int ApplyChange(const BoundChange& change, const std::vector<ChangedRow>& plan, engine::Store& store);

} // namespace dao::query
