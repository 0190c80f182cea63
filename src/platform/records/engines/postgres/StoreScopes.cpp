// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/StoreScopes.h"

namespace dao::postgres
{

namespace
{

constexpr char ChangeSavepoint[] = "change";
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
        Store_.Connection_.TryRollback();
}

ServerStore::WriteScope::WriteScope(ServerStore& store, const Command* together) : Store_(store)
{
    if (Store_.IsReadOnly_) {
        throw Error(errReadOnly, QStringLiteral("Cannot change the station (%1): the server can only be read, or the "
                                                "station was opened to be read.")
                                     .arg(Store_.Connection_.Connect().InWords()));
    }
    Store_.ForgetRead();
    if (Store_.Transaction_ == Transaction::None) {
        Together_ = Store_.BeginWriting(together);
        IsOwn_ = true;
    } else if (Store_.Transaction_ == Transaction::Announced) {
        Together_ = Store_.Start(together);
    }
}

void ServerStore::WriteScope::MarkBeginning()
{
    if (IsOwn_ || HasSavepoint_)
        return;
    Store_.Connection_.DeferSavepoint(ChangeSavepoint);
    HasSavepoint_ = true;
}

void ServerStore::WriteScope::Commit()
{
    if (IsOwn_)
        Store_.Commit();
    else if (HasSavepoint_)
        Store_.Connection_.DeferRelease(ChangeSavepoint);
    IsDone_ = true;
}

std::optional<std::vector<Result>> ServerStore::WriteScope::RunAndCommit(std::vector<Command> commands)
{
    MarkBeginning();
    if (IsOwn_)
        commands.push_back(Command{"COMMIT", {}, false});
    try {
        std::vector<Result> results = Store_.Connection_.RunTogether(commands);
        if (HasSavepoint_)
            Store_.Connection_.DeferRelease(ChangeSavepoint);
        IsDone_ = true;
        return results;
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
        Store_.Connection_.TryRollback();
    else if (HasSavepoint_)
        Store_.Connection_.TryExecute(TakeBack);
}

} // namespace dao::postgres
