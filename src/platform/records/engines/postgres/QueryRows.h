// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/postgres/ServerConnection.h"
#include "platform/records/query/ParameterTable.h"
#include "platform/records/query/QueryRun.h"

#include <map>

namespace dao::postgres
{

/// The rows of tables for a query that is worked out here: as few as the server can make of them, many in a round trip,
/// and their memos as well. Lives as long as the run, within one state of the station.
class QueryRows final : public query::TableRows
{
public:
    QueryRows(ServerConnection& connection, const QByteArray& quotedSchema);

    /// Lets the server leave out rows of the first source that cannot meet the condition.
    void Narrow(const std::vector<query::BoundSource>& sources, const std::optional<query::BoundExpression>& where,
                const query::ParameterTable& parameters);
    /// Has the memos read, many at a time, that the run will look at.
    void KeepMemosFor(const query::BoundSelect& select);
    void KeepMemosFor(const query::BoundChange& change);

    void ForEachRow(const engine::TablePtr& table, const Visitor& visit) override;
    StoredValue Memo(const engine::TablePtr& table, int column, qint64 id) override;

private:
    bool ReadsMemo(const std::vector<query::BoundSource>& sources, const query::BoundExpression& expression) const;
    /// Rows that memos are read with: some at a time, so that the connection is free in between.
    void ForEachChunk(const engine::TablePtr& table, const Visitor& visit);
    Command RowsCommand(const engine::TablePtr& table) const;

    ServerConnection& Connection_;
    const QByteArray& Schema_;
    engine::TablePtr Narrowed_;
    QByteArray Condition_;
    Parameters Values_;
    bool HasMemos_ = false;
    /// Of the rows that were read last, behind the one that is looked at.
    engine::TablePtr ChunkTable_;
    std::vector<qint64> Chunk_;
    std::map<std::pair<int, qint64>, StoredValue> Memos_;
};

} // namespace dao::postgres
