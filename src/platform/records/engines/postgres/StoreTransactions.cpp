// SPDX-License-Identifier: Apache-2.0
#include "platform/records/LockPatience.h"
#include "platform/records/engines/postgres/Naming.h"
#include "platform/records/engines/postgres/StoreScopes.h"

#include <QDeadlineTimer>
#include <QThread>

#include <algorithm>

/// The caller's transactions: one of the server's, and savepoints for those inside it.
namespace dao::postgres
{

namespace
{

QByteArray SavepointName(int depth)
{
    return "depth" + QByteArray::number(depth);
}

/// As long as every wait.
constexpr int MostSeconds = 5;

} // namespace

void ServerStore::RequireUsable() const
{
    if (IsReplaced_) {
        throw Error(errFileReplaced, QStringLiteral("A backup was put in the place of the station (%1) since it was "
                                                    "opened, or it was moved away. Open it anew.")
                                         .arg(Connection_.Connect().InWords()));
    }
    if (Transaction_ == Transaction::Lost)
        RaiseLost();
}

void ServerStore::RaiseLost() const
{
    throw Error(errServer, QStringLiteral("The transaction on the server (%1) was taken back because of an earlier "
                                          "error. Nothing of it is stored.")
                               .arg(Connection_.Connect().InWords()));
}

void ServerStore::RequireOpen() const
{
    switch (Standing()) {
    case StationStanding::Open:
        return;
    case StationStanding::MovedAway:
        throw Error(
            errServer,
            QStringLiteral("The station on the server (%1) was moved away from there into a file: open it in the "
                           "folder that it was moved to. If that was cut off, run \"tolva convert\" there once "
                           "more.")
                .arg(Connection_.Connect().InWords()));
    case StationStanding::Arriving:
        throw Error(errServer,
                    QStringLiteral("The station on the server (%1) is still being moved there. If that was cut "
                                   "off, run \"tolva convert\" once more.")
                        .arg(Connection_.Connect().InWords()));
    }
}

void ServerStore::RequireSameStation(const StationState& state)
{
    if (State_.Identity != 0 && StandingOf(state) != StationStanding::Open && !OpensClosed_) {
        // Who opens it anew is told more, or finds the file.
        IsReplaced_ = true;
        RequireUsable();
    }
    if (State_.Identity == 0 || state.Identity == State_.Identity)
        return;
    IsReplaced_ = true;
    RequireUsable();
}

void ServerStore::Reconnect()
{
    // What was told meanwhile was told to nobody.
    HasNews_ = HasNews_ || Connection_.IsListening();
    Connection_.Reconnect();
}

void ServerStore::RecoverFrom(const ServerFailure& failure)
{
    if (Transaction_ == Transaction::Started) {
        // What failed at the server took the transaction with it, unless a savepoint was in front of it.
        if (PQtransactionStatus(Connection_.Handle()) != PQTRANS_INTRANS)
            Transaction_ = Transaction::Lost;
        throw failure;
    }
    const bool isOld = failure.IsOfOldStructure();
    if (!failure.IsConnectionLost() && !isOld)
        throw failure;
    if (!isOld)
        Reconnect();
    RequireSameStation(StateIn(Connection_.Run(StateCommand(SchemaName_)), Connection_));
    if (isOld)
        throw Error(errTableNotFound, failure.Description());
}

std::optional<Result> ServerStore::BeginWriting(const Command* together)
{
    // The one lock of all writers, so that they wait for each other at their beginning and never meet in a deadlock.
    // Readers do not notice it.
    std::vector<Command> commands{Command{"BEGIN ISOLATION LEVEL READ COMMITTED"}};
    // The usual one stands in the connection's settings; 0 would be for ever.
    if (const qint64 patience = LockPatience::Milliseconds(); patience != LockPatience::UsualMilliseconds)
        commands.push_back(Command{"SET LOCAL lock_timeout = " + QByteArray::number(std::max(qint64{1}, patience))});
    commands.push_back(Command{"LOCK TABLE " + SchemaName_ + '.' + StationTable + " IN EXCLUSIVE MODE"});
    const std::size_t locked = commands.size();
    commands.push_back(StateCommand(SchemaName_));
    commands.push_back(Command{"SELECT pg_catalog.pg_current_xact_id()"});
    // Those who listen are told once it is committed.
    commands.push_back(Command{"NOTIFY " + SchemaName_});
    if (together != nullptr)
        commands.push_back(*together);
    try {
        std::vector<Result> results = Connection_.RunTogether(commands);
        const StationState state = StateIn(results[locked], Connection_);
        RequireSameStation(state);
        TransactionId_ = results[locked + 1].Integer(0, 0);
        if (state != State_)
            Schema_ = ReadStructure(Connection_, SchemaName_, true, Schema_, State_);
        return together == nullptr ? std::nullopt : std::optional(std::move(results.back()));
    } catch (...) {
        Connection_.TryRollback();
        throw;
    }
}

std::optional<Result> ServerStore::Start(const Command* together)
{
    std::optional<Result> result = BeginWriting(together);
    Transaction_ = Transaction::Started;
    for (int depth = 2; depth <= Depth_; ++depth)
        Connection_.DeferSavepoint(SavepointName(depth));
    return result;
}

void ServerStore::Commit()
{
    try {
        Connection_.Run(Command{"COMMIT", {}, false});
    } catch (const ServerFailure& failure) {
        if (!failure.IsConnectionLost() || !WasCommitted())
            throw;
    }
}

bool ServerStore::WasCommitted()
{
    const QDeadlineTimer deadline(std::chrono::seconds{MostSeconds});
    Command ask{"SELECT pg_catalog.pg_xact_status($1::bigint::text::pg_catalog.xid8)"};
    ask.Values.AddInteger(TransactionId_);
    while (true) {
        try {
            if (!Connection_.IsOpen())
                Reconnect();
            const Result result = Connection_.Run(ask);
            const std::string_view state = result.IsNull(0, 0) ? std::string_view() : result.Octets(0, 0);
            // In progress: the server has not noticed yet that this client was gone, or waits for another server.
            if (state != "in progress")
                return state == "committed";
        } catch (const ServerFailure& failure) {
            if (failure.IsOfUnknownTransaction())
                return false;
            // Whatever else keeps the server from answering is no answer.
        }
        if (deadline.hasExpired()) {
            throw Error(errServer, QStringLiteral("The connection to the server (%1) was lost at the very moment of "
                                                  "storing, and the server does not tell what became of it: look "
                                                  "whether the change is there before it is made again.")
                                       .arg(Connection_.Connect().InWords()));
        }
        QThread::msleep(50);
    }
}

void ServerStore::BeginTrans()
{
    if (Transaction_ == Transaction::Started)
        Connection_.DeferSavepoint(SavepointName(Depth_ + 1));
    if (Depth_ == 0) {
        Transaction_ = Transaction::Announced;
        HasLooked_ = false;
        Drawn_.clear();
    }
    ++Depth_;
}

void ServerStore::CommitTrans()
{
    const int depth = Depth_--;
    if (depth > 1) {
        if (Transaction_ == Transaction::Lost)
            RaiseLost();
        if (Transaction_ == Transaction::Started)
            Connection_.DeferRelease(SavepointName(depth));
        return;
    }
    ForgetRead();
    const Transaction state = std::exchange(Transaction_, Transaction::None);
    if (state == Transaction::Lost) {
        EndOnServer();
        RaiseLost();
    }
    if (state != Transaction::Started)
        return;
    try {
        Commit();
    } catch (...) {
        EndOnServer();
        throw;
    }
}

void ServerStore::EndOnServer()
{
    Connection_.TryRollback();
    // What was added to the structure in it is gone.
    State_.Structure = 0;
}

void ServerStore::Rollback()
{
    ForgetRead();
    const int depth = Depth_--;
    if (depth > 1) {
        if (Transaction_ == Transaction::Started) {
            Retried([&] {
                Connection_.Execute("ROLLBACK TO " + SavepointName(depth) + ";RELEASE " + SavepointName(depth));
            });
            RefreshUnderLock();
        }
        return;
    }
    const Transaction state = std::exchange(Transaction_, Transaction::None);
    if (state == Transaction::Started || state == Transaction::Lost)
        EndOnServer();
}

void ServerStore::LockForChange()
{
    if (Depth_ == 0)
        throw Error(errNotSupported, QStringLiteral("A lock needs a transaction that was begun before."));
    Retried([&] { WriteScope(*this).Commit(); });
}

} // namespace dao::postgres
