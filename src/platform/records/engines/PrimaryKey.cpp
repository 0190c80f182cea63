// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/PrimaryKey.h"

#include <algorithm>

namespace dao::engine
{

namespace
{

bool BecomesNull(int column, std::span<const Assignment> values, RowIs row)
{
    const auto given = std::find_if(values.begin(), values.end(),
                                    [column](const Assignment& assignment) { return assignment.Column == column; });
    return given == values.end() ? row == RowIs::New : std::holds_alternative<std::monostate>(*given->Value);
}

} // namespace

void CheckPrimaryKey(const Table& table, std::span<const Assignment> values, RowIs row)
{
    for (const IndexKey& index : table.Indexes) {
        if (!index.Primary)
            continue;
        if (std::any_of(index.Columns.begin(), index.Columns.end(),
                        [&](int column) { return BecomesNull(column, values, row); }))
            throw Error(errInvalidUseOfNull,
                        QStringLiteral("Invalid use of Null: index or primary key cannot contain a Null value."));
    }
}

} // namespace dao::engine
