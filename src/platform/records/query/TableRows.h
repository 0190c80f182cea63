// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"

#include <functional>

namespace dao::query
{

/// The rows of tables as a run of a query needs them, from an engine that has no query language of its own. Lives as
/// long as the run, during which the rows must not change.
class TableRows
{
public:
    /// Told one row after the other; answers false to stop.
    using Visitor = std::function<bool(const Row&)>;

    TableRows() = default;
    virtual ~TableRows() = default;
    TableRows(const TableRows&) = delete;
    TableRows& operator=(const TableRows&) = delete;

    /// Each row in order of entry, its memos deferred or not. The row is gone when visit returns.
    virtual void ForEachRow(const engine::TablePtr& table, const Visitor& visit) = 0;
    /// Each row whose column equals the value (not Null), in order of entry, and perhaps others. Answers false, having
    /// visited none, when no index finds them.
    virtual bool ForEachRowWith(const engine::TablePtr& /*table*/, int /*column*/, const StoredValue& /*value*/,
                                const Visitor& /*visit*/)
    {
        return false;
    }
    /// A memo that was deferred, as it stands; Null for Null.
    virtual StoredValue Memo(const engine::TablePtr& table, int column, qint64 id) = 0;
};

/// What a column of numbers holds that equals a number; Null for a number that its type cannot hold.
StoredValue KeyFor(const engine::Column& column, const StoredValue& number);
/// A memo's text; Null for Null.
StoredValue TextOf(const engine::StoredMemo& memo);
/// A memo as it was saved, for whoever copies it. Error 3428 when it is damaged.
StoredValue WholeMemo(engine::Store& store, const engine::TablePtr& table, int column, qint64 id);

/// The same through the store's own access to rows, and its indexes of one column.
class StoreRows final : public TableRows
{
public:
    explicit StoreRows(engine::Store& store) : Store_(store) {}

    void ForEachRow(const engine::TablePtr& table, const Visitor& visit) override;
    bool ForEachRowWith(const engine::TablePtr& table, int column, const StoredValue& value,
                        const Visitor& visit) override;
    StoredValue Memo(const engine::TablePtr& table, int column, qint64 id) override;

private:
    engine::Store& Store_;
};

} // namespace dao::query
