// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/postgres/Command.h"
#include "platform/records/engines/postgres/ConnectString.h"
#include "platform/records/engines/postgres/ServerFailure.h"

#include <QHash>
#include <QList>

#include <functional>

namespace dao::postgres
{

/// One connection to a server, opened in the constructor; every call of it is answered or fails with a ServerFailure in
/// bounded time. Knows nothing of tables. One thread.
class ServerConnection
{
public:
    explicit ServerConnection(ConnectString connect);
    ~ServerConnection();
    ServerConnection(const ServerConnection&) = delete;
    ServerConnection& operator=(const ServerConnection&) = delete;

    const ConnectString& Connect() const { return Connect_; }
    /// A new connection in the place of this one; what was begun in the old one is taken back by the server.
    void Reconnect();
    bool IsOpen() const;

    Result Run(const Command& command);
    /// All in one round trip; the first failure is raised, and nothing behind it was done.
    std::vector<Result> RunTogether(std::span<const Command> commands);
    /// Each row as it arrives: a result of one row, gone when visit returns. visit answers false when it has enough; it
    /// must not use the connection.
    void Stream(const Command& command, const std::function<bool(const Result&)>& visit);
    /// Statements without values, one behind the other.
    void Execute(const QByteArray& statements);
    /// Goes in front of the next statement instead of a round trip of its own, and raises there: for what can hardly
    /// fail, in a transaction. Where much is waiting, all of it is sent.
    void Defer(Command command);
    /// A savepoint, and its release. One with nothing in between is left out.
    void DeferSavepoint(const QByteArray& name);
    void DeferRelease(const QByteArray& name);
    /// Execute, for taking back: a failure means that there is nothing more to be taken back. Nothing is raised.
    void TryExecute(const QByteArray& statements) noexcept;
    /// Takes the whole transaction back, with what is waiting for its first statement.
    void TryRollback() noexcept;

    /// From now on TakeNotices knows what others tell on the channel; once a connection.
    void Listen(const QByteArray& quotedChannel);
    bool IsListening() const { return IsListening_; }
    /// Whether somebody else has told something since the last call, or the connection was lost since. Asks nobody.
    bool TakeNotices();

    /// How often the server was asked, for tests that count.
    qint64 RoundTrips() const { return RoundTrips_; }
    PGconn* Handle() const { return Connection_.get(); }
    [[noreturn]] void Raise(const PGresult* result);

private:
    struct Finish
    {
        void operator()(PGconn* connection) const { PQfinish(connection); }
    };

    void Open();
    void AwaitOpening();
    void SetUp();
    /// Sends it, prepared where it is worth it. steps: one for each answer that will come, with the key of a statement
    /// that is prepared, empty for one that is run.
    void Send(const Command& command, std::vector<QByteArray>& steps);
    QByteArray KeyOf(const Command& command) const;
    void RequireSent(bool isSent);
    /// What is waiting goes in front, as text; what has values is sent by itself.
    QByteArray WithDeferred(const QByteArray& statements);
    Result NextResult();
    void Drain() noexcept;
    std::vector<Command> TakeDeferred() noexcept;
    void LeavePipeline() noexcept;

    ConnectString Connect_;
    std::unique_ptr<PGconn, Finish> Connection_;
    QHash<QByteArray, QByteArray> Prepared_; ///< Names of statements that the server keeps, by their text and kinds.
    qint64 NextName_ = 0;
    /// libpq takes the first command of a pipeline for one that is read row by row too, when the last one was.
    bool HasStreamed_ = false;
    std::vector<Command> Deferred_;
    qint64 DeferredOctets_ = 0;
    bool IsListening_ = false;
    qint64 RoundTrips_ = 0;
};

} // namespace dao::postgres
