// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/postgres/ServerStore.h"

namespace dao::postgres
{

template <typename Work>
auto ServerStore::Retried(const Work& work)
{
    RequireUsable();
    try {
        return work();
    } catch (const ServerFailure& failure) {
        RecoverFrom(failure);
    }
    return work();
}

/// Several reads that see one state of the station.
class ServerStore::ReadScope
{
public:
    explicit ReadScope(ServerStore& store);
    ~ReadScope();
    ReadScope(const ReadScope&) = delete;
    ReadScope& operator=(const ReadScope&) = delete;

private:
    ServerStore& Store_;
    bool IsOwn_ = false;
};

/// A change: a transaction of its own, or a part of the one that the caller opened. Without Commit it is taken back.
class ServerStore::WriteScope
{
public:
    /// together: asked in the round trip in which the transaction begins, if one begins.
    explicit WriteScope(ServerStore& store, const Command* together = nullptr);
    ~WriteScope();
    WriteScope(const WriteScope&) = delete;
    WriteScope& operator=(const WriteScope&) = delete;

    const std::optional<Result>& Together() const { return Together_; }
    /// So that commands that are run one by one can be taken back; RunAndCommit does without.
    void MarkBeginning();
    /// Durable when it returns, unless the caller's transaction is still open.
    void Commit();
    /// All in one round trip; the results of the commands. Nothing where the answer was lost on the way, though the
    /// change is stored.
    std::optional<std::vector<Result>> RunAndCommit(std::vector<Command> commands);

private:
    ServerStore& Store_;
    std::optional<Result> Together_;
    bool IsOwn_ = false; ///< Else a savepoint in the caller's transaction.
    bool HasSavepoint_ = false;
    bool IsDone_ = false;
};

} // namespace dao::postgres
