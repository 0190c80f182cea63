// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/sqlite/SqliteStore.h"

namespace dao::sqlite
{

/// Several reads that see one state of the file.
class SqliteStore::ReadScope
{
public:
    explicit ReadScope(SqliteStore& store, bool isNeeded = true);
    ~ReadScope();
    ReadScope(const ReadScope&) = delete;
    ReadScope& operator=(const ReadScope&) = delete;

private:
    SqliteStore& Store_;
    bool IsOwn_ = false;
};

/// A change: a transaction of its own, or a part of the one that the caller opened. Without Commit it is taken back.
class SqliteStore::WriteScope
{
public:
    explicit WriteScope(SqliteStore& store);
    ~WriteScope();
    WriteScope(const WriteScope&) = delete;
    WriteScope& operator=(const WriteScope&) = delete;

    /// Durable when it returns, unless the caller's transaction is still open.
    void Commit();

private:
    SqliteStore& Store_;
    bool IsOwn_ = false; ///< Else a savepoint in the caller's transaction.
    bool IsDone_ = false;
};

} // namespace dao::sqlite
