// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/engines/sqlite/SqliteConnection.h"

#include <span>
#include <unordered_map>
#include <vector>

namespace dao::sqlite
{

/// Whether the memo at this place of what was read is as its check behind it says; id: of its row.
bool IsMemoAsSaved(const StatementUse& use, int place, qint64 id);

/// The memos of one table that are read apart from their rows, by the row's id. A large one is read once and straight
/// into what is handed out: as a value of SQLite's it would be in memory twice. Owned by the table's access, whose
/// caller holds the transaction around it.
class MemoAccess
{
public:
    /// hasChecks: whether the file's memos carry checks.
    MemoAccess(Connection& connection, engine::TablePtr table, bool hasChecks);

    /// column: the memo's place in the table.
    engine::StoredMemo Read(int column, qint64 id);
    /// The same for rows whose ids rise, in one run from the first to the last. Stops early, after one row at least,
    /// when octetBudget is used up.
    std::vector<engine::StoredMemo> ReadRange(int column, std::span<const qint64> ids, qint64 octetBudget);

private:
    /// What is read of a memo: whether it is a large one, itself if not, and its check.
    QByteArray Columns(int column) const;
    engine::StoredMemo Take(const StatementUse& use, int column, qint64 id);
    /// Of the row that the statement stands on, so that nobody changes it meanwhile.
    engine::StoredMemo TakeLarge(const StatementUse& use, int column, qint64 id);
    const Statement& Prepared(std::unordered_map<int, Statement>& statements, int column, const QByteArray& condition);

    Connection& Connection_;
    engine::TablePtr Table_;
    bool HasChecks_;
    std::unordered_map<int, Statement> ById_; ///< By column.
    std::unordered_map<int, Statement> Ranges_;
};

} // namespace dao::sqlite
