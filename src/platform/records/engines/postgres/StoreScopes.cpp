// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/StoreScopes.h"

namespace dao::postgres
{

namespace
{

constexpr char TakeBack[] = "ROLLBACK TO change; RELEASE change";

} // namespace

ServerStore::ReadScope::ReadScope(ServerStore& store) : Store_(store)
{
    if (Store_.Transaction_ == Transaction::Started)
        return;
    Store_.Connection_.Execute("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
    IsOwn_ = true;
}

ServerStore::ReadScope::~ReadScope()
{
    if (IsOwn_)
        Store_.Connection_.TryExecute("ROLLBACK");
}

ServerStore::WriteScope::WriteScope(ServerStore& store) : Store_(store)
{
    if (Store_.IsReadOnly_) {
        throw Error(errReadOnly, QStringLiteral("Cannot change the station (%1): the server can only be read, or the "
                                                "station was opened to be read.")
                                     .arg(Store_.Connection_.Connect().InWords()));
    }
    if (Store_.Transaction_ == Transaction::None) {
        Store_.BeginWriting();
        IsOwn_ = true;
    } else if (Store_.Transaction_ == Transaction::Announced) {
        Store_.Start();
    }
}

void ServerStore::WriteScope::MarkBeginning()
{
    if (IsOwn_ || HasSavepoint_)
        return;
    Store_.Connection_.Execute("SAVEPOINT change");
    HasSavepoint_ = true;
}

void ServerStore::WriteScope::Commit()
{
    if (IsOwn_)
        Store_.Commit();
    else if (HasSavepoint_)
        Store_.Connection_.Execute("RELEASE change");
    IsDone_ = true;
}

std::optional<Result> ServerStore::WriteScope::RunAndCommit(const Command& command)
{
    std::vector<Command> commands;
    if (!IsOwn_)
        commands.push_back(Command{"SAVEPOINT change"});
    HasSavepoint_ = !IsOwn_;
    const std::size_t place = commands.size();
    commands.push_back(command);
    commands.push_back(IsOwn_ ? Command{"COMMIT", {}, false} : Command{"RELEASE change"});
    try {
        std::vector<Result> results = Store_.Connection_.RunTogether(commands);
        IsDone_ = true;
        return std::move(results[place]);
    } catch (const ServerFailure& failure) {
        if (!IsOwn_ || !failure.IsConnectionLost() || !Store_.WasCommitted())
            throw;
        IsDone_ = true;
        return std::nullopt;
    }
}

ServerStore::WriteScope::~WriteScope()
{
    if (IsDone_)
        return;
    if (IsOwn_)
        Store_.Connection_.TryExecute("ROLLBACK");
    else if (HasSavepoint_)
        Store_.Connection_.TryExecute(TakeBack);
}

} // namespace dao::postgres
