// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/ServerConnection.h"

#include "platform/records/LockPatience.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <utility>

namespace dao::postgres
{

namespace
{

constexpr int BinaryResults = 1;
/// For each host of the connect string.
constexpr int SecondsToConnect = 5;
constexpr qsizetype MostPrepared = 400;
constexpr std::size_t MostDeferred = 256;
constexpr qint64 MostDeferredOctets = qint64{1024} * 1024;

/// What libpq shall take where the connect string says nothing: a server that is gone is found within seconds.
struct UsualWord
{
    const char* Word;
    const char* Value;
};
constexpr std::array UsualWords{
    UsualWord{"client_encoding", "UTF8"},     UsualWord{"application_name", "Tolva"},
    UsualWord{"keepalives_idle", "5"},        UsualWord{"keepalives_interval", "2"},
    UsualWord{"keepalives_count", "3"},       UsualWord{"tcp_user_timeout", "8000"},
    UsualWord{"target_session_attrs", "any"},
};

/// Waits are bounded as in every engine. A parallel plan may give rows in any order. A server may be set up to confirm
/// what is not on its disk; a desk does not let it.
QByteArray SessionSettings()
{
    return "SET lock_timeout = " + QByteArray::number(LockPatience::UsualMilliseconds) +
           "; SET max_parallel_workers_per_gather = 0; SET jit = off; SET search_path = ''; "
           "SET client_min_messages = error; SET idle_in_transaction_session_timeout = 0; "
           "SELECT pg_catalog.set_config('synchronous_commit', 'on', false) "
           "WHERE pg_catalog.current_setting('synchronous_commit') = 'off'";
}

void IgnoreNotice(void*, const PGresult*)
{
    // Notices are for people at a terminal.
}

} // namespace

ServerConnection::ServerConnection(ConnectString connect) : Connect_(std::move(connect))
{
    Open();
}

ServerConnection::~ServerConnection() = default;

bool ServerConnection::IsOpen() const
{
    return Connection_ && PQstatus(Connection_.get()) == CONNECTION_OK;
}

void ServerConnection::Reconnect()
{
    Connection_.reset();
    Prepared_.clear();
    TakeDeferred();
    HasStreamed_ = false;
    IsListening_ = false;
    Open();
}

void ServerConnection::Listen(const QByteArray& quotedChannel)
{
    Execute("LISTEN " + quotedChannel);
    IsListening_ = true;
}

bool ServerConnection::TakeNotices()
{
    PGconn* const connection = Connection_.get();
    if (!IsOpen())
        return false;
    if (PQconsumeInput(connection) == 0)
        return true;
    bool isAny = false;
    while (PGnotify* notice = PQnotifies(connection)) {
        isAny = isAny || notice->be_pid != PQbackendPID(connection);
        PQfreemem(notice);
    }
    return isAny;
}

void ServerConnection::Open()
{
    std::vector<const char*> words;
    std::vector<const char*> values;
    for (const UsualWord& usual : UsualWords) {
        words.push_back(usual.Word);
        values.push_back(usual.Value);
    }
    // Of a word that stands twice the last one counts.
    for (const auto& [word, value] : Connect_.Words) {
        words.push_back(word.constData());
        values.push_back(value.constData());
    }
    words.push_back(nullptr);
    values.push_back(nullptr);
    Connection_.reset(PQconnectStartParams(words.data(), values.data(), 0));
    if (!Connection_)
        throw Error(errOutOfMemory, QStringLiteral("Out of memory."));
    // So that the failure of an attempt is known by its state, and not by words in the server's language.
    PQsetErrorVerbosity(Connection_.get(), PQERRORS_VERBOSE);
    PQsetNoticeReceiver(Connection_.get(), IgnoreNotice, nullptr);
    try {
        AwaitOpening();
        PQsetErrorVerbosity(Connection_.get(), PQERRORS_DEFAULT);
        SetUp();
    } catch (...) {
        Connection_.reset();
        throw;
    }
}

void ServerConnection::AwaitOpening()
{
    const int hosts = static_cast<int>(Connect_.Word("host").count(u',')) + 1;
    bool isGiven = false;
    const int given = Connect_.Word("connect_timeout").toInt(&isGiven);
    const QDeadlineTimer deadline(std::chrono::seconds((isGiven && given > 0 ? given : SecondsToConnect) * hosts));
    PostgresPollingStatusType state = PGRES_POLLING_WRITING;
    while (PQstatus(Connection_.get()) != CONNECTION_BAD && state != PGRES_POLLING_OK &&
           state != PGRES_POLLING_FAILED) {
        pollfd socket{PQsocket(Connection_.get()),
                      static_cast<short>(state == PGRES_POLLING_READING ? POLLIN : POLLOUT), 0};
        const int ready = poll(&socket, 1, static_cast<int>(deadline.remainingTime()));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            throw ServerFailure("08001", QStringLiteral("it does not answer."), Connect_.InWords());
        state = PQconnectPoll(Connection_.get());
    }
    if (PQstatus(Connection_.get()) != CONNECTION_OK)
        throw ConnectFailure(QString::fromUtf8(PQerrorMessage(Connection_.get())), Connect_.InWords());
}

void ServerConnection::SetUp()
{
    constexpr int OldestVersion = 130000;
    if (PQserverVersion(Connection_.get()) < OldestVersion) {
        throw Error(
            errNotSupported,
            QStringLiteral("The server (%1) is too old: PostgreSQL 13 or later is needed, and it is %2.")
                .arg(Connect_.InWords(), QString::fromUtf8(PQparameterStatus(Connection_.get(), "server_version"))));
    }
    Execute(SessionSettings());
}

void ServerConnection::Raise(const PGresult* result)
{
    const char* const state = result == nullptr ? nullptr : PQresultErrorField(result, PG_DIAG_SQLSTATE);
    const char* const primary = result == nullptr ? nullptr : PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
    QByteArray known(state);
    // A connection that broke in the middle has no state, or that of the server's last words.
    if (PQstatus(Connection_.get()) != CONNECTION_OK && !known.startsWith("57P"))
        known.clear();
    else if (known.isEmpty())
        known = "XX000";
    throw ServerFailure(known, QString::fromUtf8(primary != nullptr ? primary : PQerrorMessage(Connection_.get())),
                        Connect_.InWords());
}

void ServerConnection::RequireSent(bool isSent)
{
    if (!isSent)
        Raise(nullptr);
}

QByteArray ServerConnection::KeyOf(const Command& command) const
{
    const std::vector<Oid>& types = command.Values.Types();
    return command.Text + '\0' +
           QByteArray(reinterpret_cast<const char*>(types.data()), static_cast<qsizetype>(types.size() * sizeof(Oid)));
}

void ServerConnection::Send(const Command& command, std::vector<QByteArray>& steps)
{
    PGconn* const connection = Connection_.get();
    const std::vector<const char*> values = command.Values.Values();
    const std::vector<int> lengths = command.Values.Lengths();
    const std::vector<int> formats(values.size(), 1);
    const int count = command.Values.Count();
    if (!command.IsPrepared) {
        RequireSent(PQsendQueryParams(connection, command.Text.constData(), count, command.Values.Types().data(),
                                      values.data(), lengths.data(), formats.data(), BinaryResults) != 0);
        steps.emplace_back();
        return;
    }
    const QByteArray key = KeyOf(command);
    QByteArray name = Prepared_.value(key);
    if (name.isEmpty()) {
        name = "s" + QByteArray::number(++NextName_);
        RequireSent(PQsendPrepare(connection, name.constData(), command.Text.constData(), count,
                                  command.Values.Types().data()) != 0);
        Prepared_.insert(key, name);
        steps.push_back(key);
    }
    RequireSent(PQsendQueryPrepared(connection, name.constData(), count, values.data(), lengths.data(), formats.data(),
                                    BinaryResults) != 0);
    steps.emplace_back();
}

Result ServerConnection::NextResult()
{
    return Result(PQgetResult(Connection_.get()));
}

void ServerConnection::LeavePipeline() noexcept
{
    PGconn* const connection = Connection_.get();
    while (PQstatus(connection) == CONNECTION_OK && PQpipelineStatus(connection) != PQ_PIPELINE_OFF) {
        if (PQexitPipelineMode(connection) != 0)
            return;
        PQclear(PQgetResult(connection));
    }
}

std::vector<Result> ServerConnection::RunTogether(std::span<const Command> commands)
{
    PGconn* const connection = Connection_.get();
    if (!IsOpen())
        Raise(nullptr);
    if (Prepared_.size() > MostPrepared) {
        TryExecute("DEALLOCATE ALL");
        Prepared_.clear();
    }
    ++RoundTrips_;
    RequireSent(PQenterPipelineMode(connection) != 0);
    std::vector<QByteArray> steps; // The key of each statement that is prepared, empty for one that is run.
    std::vector<Result> results;
    std::size_t done = 0;
    const std::vector<Command> deferred = TakeDeferred();
    try {
        const bool hasStreamed = std::exchange(HasStreamed_, false);
        if (hasStreamed)
            RequireSent(PQpipelineSync(connection) != 0);
        for (const Command& command : deferred)
            Send(command, steps);
        for (const Command& command : commands)
            Send(command, steps);
        RequireSent(PQpipelineSync(connection) != 0);
        if (hasStreamed)
            NextResult();
        for (; done < steps.size(); ++done) {
            Result result = NextResult();
            const ExecStatusType status = PQresultStatus(result.Get());
            if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK)
                Raise(result.Get());
            if (steps[done].isEmpty())
                results.push_back(std::move(result));
            NextResult(); // The end of this command's results.
        }
    } catch (...) {
        for (; done < steps.size(); ++done)
            Prepared_.remove(steps[done]);
        LeavePipeline();
        throw;
    }
    LeavePipeline();
    results.erase(results.begin(), results.begin() + static_cast<qsizetype>(deferred.size()));
    return results;
}

Result ServerConnection::Run(const Command& command)
{
    return std::move(RunTogether(std::span(&command, 1)).front());
}

void ServerConnection::Drain() noexcept
{
    while (PGresult* result = PQgetResult(Connection_.get()))
        PQclear(result);
}

void ServerConnection::Stream(const Command& command, const std::function<bool(const Result&)>& visit)
{
    PGconn* const connection = Connection_.get();
    if (!IsOpen())
        Raise(nullptr);
    if (!Deferred_.empty())
        RunTogether({});
    ++RoundTrips_;
    const std::vector<const char*> values = command.Values.Values();
    const std::vector<int> lengths = command.Values.Lengths();
    const std::vector<int> formats(values.size(), 1);
    RequireSent(PQsendQueryParams(connection, command.Text.constData(), command.Values.Count(),
                                  command.Values.Types().data(), values.data(), lengths.data(), formats.data(),
                                  BinaryResults) != 0);
    PQsetSingleRowMode(connection);
    HasStreamed_ = true;
    bool isWanted = true;
    try {
        while (true) {
            const Result result = NextResult();
            if (result.Get() == nullptr)
                return;
            const ExecStatusType status = PQresultStatus(result.Get());
            if (status == PGRES_SINGLE_TUPLE) {
                if (isWanted)
                    isWanted = visit(result);
            } else if (status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK) {
                Raise(result.Get());
            }
        }
    } catch (...) {
        Drain();
        throw;
    }
}

void ServerConnection::Execute(const QByteArray& statements)
{
    if (!IsOpen())
        Raise(nullptr);
    const QByteArray all = WithDeferred(statements);
    ++RoundTrips_;
    const Result result(PQexec(Connection_.get(), all.constData()));
    const ExecStatusType status = PQresultStatus(result.Get());
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK)
        Raise(result.Get());
}

void ServerConnection::TryExecute(const QByteArray& statements) noexcept
{
    if (!IsOpen())
        return;
    QByteArray all = statements;
    try {
        all = WithDeferred(statements);
    } catch (const Error&) {
        // What was waiting has failed, and with it the transaction that this takes back.
    }
    ++RoundTrips_;
    PQclear(PQexec(Connection_.get(), all.constData()));
}

void ServerConnection::TryRollback() noexcept
{
    TakeDeferred();
    TryExecute("ROLLBACK");
}

void ServerConnection::Defer(Command command)
{
    DeferredOctets_ += command.Text.size() + command.Values.Octets();
    Deferred_.push_back(std::move(command));
    if (Deferred_.size() >= MostDeferred || DeferredOctets_ >= MostDeferredOctets)
        RunTogether({});
}

std::vector<Command> ServerConnection::TakeDeferred() noexcept
{
    DeferredOctets_ = 0;
    return std::exchange(Deferred_, {});
}

void ServerConnection::DeferSavepoint(const QByteArray& name)
{
    Defer(Command{"SAVEPOINT " + name});
}

void ServerConnection::DeferRelease(const QByteArray& name)
{
    if (!Deferred_.empty() && Deferred_.back().Text == "SAVEPOINT " + name)
        Deferred_.pop_back();
    else
        Defer(Command{"RELEASE " + name});
}

QByteArray ServerConnection::WithDeferred(const QByteArray& statements)
{
    const auto hasValues = [](const Command& command) { return command.Values.Count() > 0; };
    if (std::any_of(Deferred_.begin(), Deferred_.end(), hasValues))
        RunTogether({});
    QByteArray all;
    for (const Command& command : TakeDeferred())
        all += command.Text + ';';
    return all + statements;
}

} // namespace dao::postgres
