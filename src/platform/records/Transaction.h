// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <functional>

namespace dao
{

class Database;

/// What is stored in its scope is stored together or not at all: begins when it is made, and takes everything back when
/// it goes without having been committed. Over all databases that are open then, each of which locks nothing before its
/// first change. Transactions nest as DBEngine's do: an inner one makes nothing durable by itself. A local object of
/// one function, ended in the order opposite to the beginning.
class TOLVA_EXPORT Transaction
{
public:
    /// Errors: 3251 when five are open already.
    Transaction();
    /// Has the writer's lock of database from the beginning, so that what is read there stays as it is read until the
    /// end. Errors: also 3260 when somebody else has the lock for too long, and 3051 for a database that is read only.
    explicit Transaction(Database& database);
    ~Transaction() { Rollback(); }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// Durable when it returns, unless there is an outer transaction. A commit that throws has ended the transaction as
    /// well: nothing of it is stored, and there is nothing left to take back.
    void Commit();
    /// Takes everything back, or does nothing behind a commit. Never throws: it mostly comes behind another error,
    /// which is the one to tell. What could not be taken back neatly is told by the commit of the outer transaction.
    void Rollback() noexcept;

    /// Runs work behind the outermost commit, in the order of these calls, and all of it in one transaction: for what
    /// tells of a change and must not precede it. Runs it at once when no transaction is open, and never when the part
    /// that it was asked for in is taken back. work must not throw.
    static void AfterCommit(std::function<void()> work);

private:
    bool IsOpen_ = true;
};

} // namespace dao
