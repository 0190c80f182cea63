// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/StoreScopes.h"

namespace dao::sqlite
{

SqliteStore::ReadScope::ReadScope(SqliteStore& store, bool isNeeded) : Store_(store)
{
    if (Store_.Connection_.IsInTransaction())
        return;
    Store_.Connection_.StartWaiting();
    if (!isNeeded)
        return;
    StatementUse(Store_.Begin_).Run();
    IsOwn_ = true;
}

SqliteStore::ReadScope::~ReadScope()
{
    if (IsOwn_)
        Store_.Connection_.Abandon();
}

SqliteStore::WriteScope::WriteScope(SqliteStore& store) : Store_(store)
{
    Connection& connection = Store_.Connection_;
    if (Store_.IsReadOnly_) {
        throw Error(errCannotOpen,
                    QStringLiteral("Cannot change '%1': it is read only or in use.").arg(connection.FileName()));
    }
    Store_.NoteLoss();
    if (Store_.Transaction_ == Transaction::Lost)
        Store_.RaiseLost();
    connection.StartWaiting();
    if (Store_.Transaction_ == Transaction::None) {
        Store_.BeginWriting();
        IsOwn_ = true;
        return;
    }
    if (Store_.Transaction_ == Transaction::Announced)
        Store_.Start();
    connection.Execute("SAVEPOINT change");
}

void SqliteStore::WriteScope::Commit()
{
    if (IsOwn_) {
        StatementUse(Store_.Commit_).Run();
        Store_.Counters_.TransactionEnded();
    } else {
        Store_.Connection_.Execute("RELEASE change");
    }
    IsDone_ = true;
}

SqliteStore::WriteScope::~WriteScope()
{
    if (IsDone_)
        return;
    if (IsOwn_) {
        Store_.Connection_.Abandon();
        return;
    }
    // A failure of the disk may have taken back the whole transaction already; CommitTrans tells then.
    sqlite3_exec(Store_.Connection_.Handle(), "ROLLBACK TO change; RELEASE change", nullptr, nullptr, nullptr);
}

} // namespace dao::sqlite
