// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/query/Evaluator.h"
#include "platform/records/query/TableRows.h"

#include <map>

namespace dao::query
{

/// The row that each source of a query stands at while it runs. Reads memos late, each once a row.
class CurrentRows final : public RowValues
{
public:
    CurrentRows(std::vector<engine::TablePtr> tables, TableRows& rows);

    /// row: null for none; it must live until the source stands at another.
    void Set(std::size_t source, const Row* row);
    /// NoRow for none.
    qint64 IdAt(std::size_t source) const;
    /// Null where an outer join found none.
    const Row* RowAt(std::size_t source) const { return Places_[source].At; }

    StoredValue ValueAt(const BoundColumn& column) override;

private:
    struct Place
    {
        const Row* At = nullptr;
        std::vector<const char*> Cells; ///< Where each cell begins, as far as they were looked at.
        std::map<int, StoredValue> Memos;
    };

    std::vector<engine::TablePtr> Tables_;
    TableRows& Rows_;
    std::vector<Place> Places_;
};

} // namespace dao::query
