// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/postgres/RowAccess.h"
#include "platform/records/engines/postgres/Structure.h"
#include "platform/records/query/QueryRun.h"

#include <deque>
#include <map>
#include <optional>

namespace dao::postgres
{

/// A station on a server. A connection that breaks is made anew at the next call; what was under way outside a
/// transaction is done again, once it is known that the server has not stored it.
class ServerStore final : public engine::Store
{
public:
    /// What is to be done where the schema holds no station yet.
    enum class Missing
    {
        IsError, ///< 3024
        Create
    };

    /// A station that is not open to be worked in.
    enum class Closed
    {
        IsError, ///< 3151
        IsOpened
    };

    ServerStore(const ConnectString& connect, bool readOnly, Missing missing, Closed closed = Closed::IsError);
    ~ServerStore() override;

    QString Version() const override;
    bool Updatable() const override { return !IsReadOnly_; }
    bool MayServeAgain() override;
    bool IsAsNew(const QString& fileName) override;

    engine::SchemaPtr CurrentSchema() override;
    void AddTable(const engine::Table& table) override;
    void AddColumn(const QString& table, const engine::Column& column) override;
    void AddIndex(const QString& table, const engine::IndexKey& index) override;

    bool BeginBeingTold() override;
    bool TakeChanges() override;

    void BeginTrans() override;
    void CommitTrans() override;
    void Rollback() override;
    void LockForChange() override;

    bool ReadEnd(const engine::TablePtr& table, int index, engine::Direction direction, engine::MemoFetch memos,
                 Row& row) override;
    bool ReadNext(const engine::TablePtr& table, int index, engine::Direction direction, engine::MemoFetch memos,
                  Row& row) override;
    bool Seek(const engine::TablePtr& table, int index, SeekComparison comparison, std::span<const StoredValue> keys,
              engine::MemoFetch memos, Row& row) override;
    std::vector<Row> ReadRows(const engine::TablePtr& table, std::span<const qint64> ids, engine::MemoFetch memos,
                              qint64 octetBudget) override;
    std::vector<engine::StoredMemo> ReadMemos(const engine::TablePtr& table, int column, std::span<const qint64> ids,
                                              qint64 octetBudget) override;
    std::vector<std::optional<MemoBeginning>> ReadMemoBeginnings(const engine::TablePtr& table, int column,
                                                                 std::span<const qint64> ids,
                                                                 qsizetype mostOctets) override;
    int CountRows(const engine::TablePtr& table) override;
    qint64 LastCounter(const engine::TablePtr& table) override;
    void RaiseCounter(const engine::TablePtr& table, qint64 last) override;

    qint64 DrawCounter(const engine::TablePtr& table) override;
    qint64 Insert(const engine::TablePtr& table, std::span<const engine::Assignment> values) override;
    void Update(const engine::TablePtr& table, qint64 id, qint64 version,
                std::span<const engine::Assignment> values) override;
    void Delete(const engine::TablePtr& table, qint64 id) override;

    engine::ResultShape Describe(const jetsql::SelectStatement& select) override;
    void Select(const jetsql::SelectStatement& select, const engine::ParameterValues& parameters,
                engine::ResultPart part, const engine::RowSink& sink) override;
    int Execute(const jetsql::Statement& statement, const engine::ParameterValues& parameters) override;
    QStringList ParametersOf(const jetsql::Statement& statement) override;

    /// From now on everything is read as it stands at this moment, and nothing can be changed, until the end.
    void HoldSnapshot();
    /// In a transaction with the writer's lock: takes all tables away; whoever has the station open is refused then.
    void Clear();
    StationStanding Standing() const { return StandingOf(State_); }
    /// In a transaction with the writer's lock: whoever opens a station that is not open, or has it open, is refused
    /// from its commit on.
    void SetStanding(StationStanding standing);
    /// 3151 for one that is not open.
    void RequireOpen() const;
    /// For those who work on the station as a whole.
    ServerConnection& Server() { return Connection_; }
    const QByteArray& QuotedSchema() const { return SchemaName_; }

private:
    class ReadScope;
    class WriteScope;
    /// Rows that were read ahead of a walk in order of entry, while nobody can change them.
    struct RowsAhead
    {
        engine::TablePtr Table;
        engine::MemoFetch Memos = engine::MemoFetch::Deferred;
        std::vector<Row> Rows;
        std::size_t Next = 0;
    };
    /// The row that was read last under the writer's lock: nobody else changes it until the lock is given back.
    struct KnownRow
    {
        engine::TablePtr Table;
        engine::MemoFetch Memos = engine::MemoFetch::Deferred;
        Row Content;
    };
    enum class Transaction
    {
        None,
        Announced, ///< Begun by the caller; the server knows nothing of it up to its first change.
        Started,
        Lost ///< The server took it back, because the connection broke or a statement failed in it.
    };

    RowAccess Rows(const engine::TablePtr& table) { return {Connection_, SchemaName_, *table}; }
    /// Does it, and once more over a new connection where the old one is gone and no transaction with it.
    template <typename Work>
    auto Retried(const Work& work);
    void Reconnect();
    void RecoverFrom(const ServerFailure& failure);
    void RequireUsable() const;
    void RequireSameStation(const StationState& state);
    void RefreshUnderLock();
    /// Takes in what others have told.
    void Hear();
    void Know(const engine::TablePtr& table, engine::MemoFetch memos, const Row& row);
    void ForgetRead();
    /// Whether the row stands as it was read until the transaction ends, and nothing can be in a change's way.
    bool IsCertain(const engine::TablePtr& table, qint64 id, qint64 version) const;
    /// Leaves a change to the next round trip, in the caller's transaction; false where that may fail for reasons of
    /// its own, which belong to its caller.
    bool Leave(const Command& change, bool isCertain);
    bool ReadAhead(const engine::TablePtr& table, engine::MemoFetch memos, Row& row);
    engine::TablePtr RequireTable(const QString& name);
    /// BEGIN, with the writer's lock. together: asked in the same round trip, for its result.
    std::optional<Result> BeginWriting(const Command* together = nullptr);
    /// The caller's announced transaction.
    std::optional<Result> Start(const Command* together = nullptr);
    void Commit();
    /// Takes the server's transaction back.
    void EndOnServer();
    /// After a commit whose answer did not come: whether the server has stored it.
    bool WasCommitted();
    [[noreturn]] void RaiseLost() const;
    void ApplyPlan(const query::BoundChange& change, const std::vector<query::ChangedRow>& plan);

    ServerConnection Connection_;
    QByteArray SchemaName_; ///< Quoted.
    bool IsReadOnly_ = false;
    bool OpensClosed_ = false;
    bool IsReplaced_ = false;
    Transaction Transaction_ = Transaction::None;
    int Depth_ = 0;            ///< Of the caller's transactions in each other; each inner one is a savepoint.
    qint64 TransactionId_ = 0; ///< The server's own number of the last one that was begun.
    StationState State_;
    engine::SchemaPtr Schema_;
    bool IsSnapshot_ = false;
    bool HasLooked_ = false; ///< At the structure, in the announced transaction; once is enough for all of it.
    RowsAhead Ahead_;
    KnownRow Known_;
    std::map<qint64, int> Drawn_; ///< By table, how many numbers the open transaction has drawn.
    /// By table, numbers that were drawn together with others.
    std::map<qint64, std::deque<qint64>> NumbersAhead_;
    bool HasNews_ = false;         ///< Told, and not taken yet.
    bool IsStructureTold_ = false; ///< A change of the structure since the last look would have been told.
};

} // namespace dao::postgres
