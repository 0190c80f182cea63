// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/query/KeyCondition.h"

#include <string>
#include <unordered_map>

namespace dao::query
{

/// The rows of a table that is joined to those before it, held in memory without their memos. Where the condition asks
/// for one of its columns to equal a value of the sources before, only the rows with that value are tried.
class JoinedSource
{
public:
    /// number: the place of the source in the query.
    JoinedSource(const BoundSource& source, int number, TableRows& rows);

    /// Rows that may meet the condition, in order of entry: all others do not.
    const std::vector<const Row*>& Candidates(const Evaluator& before) const;

private:
    void IndexRows(TableRows& rows);

    const BoundSource& Source_;
    std::vector<Row> Rows_;
    std::vector<const Row*> AllRows_; ///< Where the condition gives no key.
    KeyCondition Key_;
    std::unordered_map<std::string, std::vector<const Row*>> RowsByKey_;
};

} // namespace dao::query
