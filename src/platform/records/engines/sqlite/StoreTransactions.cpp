// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/StoreScopes.h"

/// The caller's transactions: one of SQLite's, and savepoints for those inside it.
namespace dao::sqlite
{

namespace
{

QByteArray SavepointName(int depth)
{
    return "depth" + QByteArray::number(depth);
}

} // namespace

void SqliteStore::BeginTrans()
{
    if (Transaction_ == Transaction::Started && Connection_.IsInTransaction())
        Connection_.Execute("SAVEPOINT " + SavepointName(Depth_ + 1));
    if (Depth_ == 0)
        Transaction_ = Transaction::Announced;
    ++Depth_;
}

void SqliteStore::BeginWriting()
{
    StatementUse(BeginImmediate_).Run();
    try {
        RequireSameFile();
    } catch (...) {
        Connection_.Abandon();
        throw;
    }
}

void SqliteStore::Start()
{
    BeginWriting();
    Transaction_ = Transaction::Started;
    for (int depth = 2; depth <= Depth_; ++depth)
        Connection_.Execute("SAVEPOINT " + SavepointName(depth));
}

void SqliteStore::NoteLoss()
{
    if (Transaction_ == Transaction::Started && !Connection_.IsInTransaction())
        Transaction_ = Transaction::Lost;
}

void SqliteStore::RaiseLost() const
{
    throw Error(errDiskError, QStringLiteral("The transaction on '%1' was taken back because of an earlier error.")
                                  .arg(Connection_.FileName()));
}

void SqliteStore::CommitTrans()
{
    NoteLoss();
    const int depth = Depth_--;
    if (depth > 1) {
        if (Transaction_ == Transaction::Lost)
            RaiseLost();
        if (Transaction_ == Transaction::Started)
            Connection_.Execute("RELEASE " + SavepointName(depth));
        return;
    }
    const Transaction state = std::exchange(Transaction_, Transaction::None);
    if (state == Transaction::Announced)
        return;
    if (state == Transaction::Lost) {
        RestoreCounters();
        RaiseLost();
    }
    try {
        Connection_.StartWaiting();
        StatementUse(Commit_).Run();
    } catch (...) {
        Connection_.Abandon();
        RestoreCounters();
        throw;
    }
    Counters_.TransactionEnded();
}

void SqliteStore::Rollback()
{
    NoteLoss();
    const int depth = Depth_--;
    if (depth > 1) {
        if (Transaction_ == Transaction::Started)
            TakeBackTo(depth);
        return;
    }
    const Transaction state = std::exchange(Transaction_, Transaction::None);
    if (state == Transaction::Announced)
        return;
    Connection_.Abandon();
    RestoreCounters();
    CurrentSchema();
}

void SqliteStore::LockForChange()
{
    if (Depth_ == 0)
        throw Error(errNotSupported, QStringLiteral("A lock needs a transaction that was begun before."));
    WriteScope(*this).Commit();
    // Others may have changed the structure up to now.
    ReadSchemaUnderLock();
}

void SqliteStore::TakeBackTo(int depth)
{
    const QByteArray name = SavepointName(depth);
    try {
        Connection_.Execute("ROLLBACK TO " + name);
        Connection_.Execute("RELEASE " + name);
        Counters_.Restore();
        ReadSchemaUnderLock();
    } catch (...) {
        // What is left of the outer transaction is not known to be what it should be.
        Connection_.Abandon();
        Transaction_ = Transaction::Lost;
        throw;
    }
}

void SqliteStore::RestoreCounters()
{
    if (!Counters_.TakenBack())
        return;
    try {
        WriteScope scope(*this);
        Counters_.Restore();
        scope.Commit();
    } catch (const Error&) {
        // It must not hide the error that it follows. Here the numbers stay drawn all the same; another process may
        // draw those of the rows that were taken back.
    }
}

} // namespace dao::sqlite
