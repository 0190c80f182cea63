// SPDX-License-Identifier: Apache-2.0
#include "core/support/FaultyEngine.h"

#include "platform/records/DBEngine.h"
#include "platform/records/engines/EngineRegistry.h"
#include "platform/records/engines/sqlite/SqliteEngine.h"

#include <utility>

using namespace dao;
using namespace dao::engine;

namespace
{
struct State
{
    std::function<void()> Failure;
    int FailNumber = 0; ///< 0 for never.
    int Number = 0;
    bool IsLasting = false;
    bool HasFailed = false;
};

State state;

/// Counts an access and raises the failure that is due.
void Count()
{
    ++state.Number;
    const bool isDue = state.FailNumber > 0 &&
                       (state.Number == state.FailNumber || (state.IsLasting && state.Number > state.FailNumber));
    if (!isDue)
        return;
    state.HasFailed = true;
    state.Failure();
}

class FaultyStore final : public Store
{
public:
    explicit FaultyStore(std::unique_ptr<Store> real) : Real_(std::move(real)) {}

    QString Version() const override { return Counted().Version(); }
    bool Updatable() const override { return Counted().Updatable(); }
    SchemaPtr CurrentSchema() override { return Counted().CurrentSchema(); }
    void AddTable(const Table& table) override { Counted().AddTable(table); }
    void AddColumn(const QString& table, const Column& column) override { Counted().AddColumn(table, column); }
    void AddIndex(const QString& table, const IndexKey& index) override { Counted().AddIndex(table, index); }
    void BeginTrans() override { Counted().BeginTrans(); }
    void CommitTrans() override
    {
        try {
            Count();
        } catch (...) {
            Real_->Rollback();
            throw;
        }
        Real_->CommitTrans();
    }
    void Rollback() override { Real_->Rollback(); }
    void LockForChange() override { Counted().LockForChange(); }
    bool ReadEnd(const TablePtr& table, int index, Direction direction, MemoFetch memos, Row& row) override
    {
        return Counted().ReadEnd(table, index, direction, memos, row);
    }
    bool ReadNext(const TablePtr& table, int index, Direction direction, MemoFetch memos, Row& row) override
    {
        return Counted().ReadNext(table, index, direction, memos, row);
    }
    bool Seek(const TablePtr& table, int index, SeekComparison comparison, std::span<const StoredValue> keys,
              MemoFetch memos, Row& row) override
    {
        return Counted().Seek(table, index, comparison, keys, memos, row);
    }
    std::vector<Row> ReadRows(const TablePtr& table, std::span<const qint64> ids, MemoFetch memos,
                              qint64 octetBudget) override
    {
        return Counted().ReadRows(table, ids, memos, octetBudget);
    }
    std::vector<StoredMemo> ReadMemos(const TablePtr& table, int column, std::span<const qint64> ids,
                                      qint64 octetBudget) override
    {
        return Counted().ReadMemos(table, column, ids, octetBudget);
    }
    std::vector<std::optional<dao::MemoBeginning>>
    ReadMemoBeginnings(const TablePtr& table, int column, std::span<const qint64> ids, qsizetype mostOctets) override
    {
        return Counted().ReadMemoBeginnings(table, column, ids, mostOctets);
    }
    int CountRows(const TablePtr& table) override { return Counted().CountRows(table); }
    qint64 LastCounter(const TablePtr& table) override { return Counted().LastCounter(table); }
    void RaiseCounter(const TablePtr& table, qint64 last) override { Counted().RaiseCounter(table, last); }
    qint64 DrawCounter(const TablePtr& table) override { return Counted().DrawCounter(table); }
    qint64 Insert(const TablePtr& table, std::span<const Assignment> values) override
    {
        return Counted().Insert(table, values);
    }
    void Update(const TablePtr& table, qint64 id, qint64 version, std::span<const Assignment> values) override
    {
        Counted().Update(table, id, version, values);
    }
    void Delete(const TablePtr& table, qint64 id) override { Counted().Delete(table, id); }
    ResultShape Describe(const jetsql::SelectStatement& select) override { return Counted().Describe(select); }
    void Select(const jetsql::SelectStatement& select, const ParameterValues& parameters, ResultPart part,
                const RowSink& sink) override
    {
        Counted().Select(select, parameters, part, sink);
    }
    int Execute(const jetsql::Statement& statement, const ParameterValues& parameters) override
    {
        return Counted().Execute(statement, parameters);
    }
    QStringList ParametersOf(const jetsql::Statement& statement) override { return Counted().ParametersOf(statement); }

private:
    Store& Counted() const
    {
        Count();
        return *Real_;
    }

    std::unique_ptr<Store> Real_;
};

class Faulty final : public Engine
{
public:
    /// The real one's, for it is asked for by that name.
    QString Name() const override { return Real_->Name(); }
    Capability Capabilities() const override { return Real_->Capabilities(); }
    bool IsAvailable(QString& reason) const override { return Real_->IsAvailable(reason); }
    bool RecognisesFile(const QByteArray& firstOctets) const override { return Real_->RecognisesFile(firstOctets); }
    bool RecognisesConnect(const QString& connect) const override { return Real_->RecognisesConnect(connect); }
    std::unique_ptr<Store> Open(const QString& name, const QString& connect, bool readOnly) override
    {
        Count();
        return std::make_unique<FaultyStore>(Real_->Open(name, connect, readOnly));
    }
    void Create(const QString& fileName) override
    {
        Count();
        Real_->Create(fileName);
    }
    void Compact(const QString& source, const QString& target) override
    {
        Count();
        Real_->Compact(source, target);
    }
    void Copy(const QString& source, const QString& target, const CopyProgress& progress) override
    {
        Count();
        Real_->Copy(source, target, progress);
    }
    std::unique_ptr<ContentExchange> BeginExchange(const QString& fileName) override
    {
        Count();
        return Real_->BeginExchange(fileName);
    }
    void MarkAsRestored(const QString& replacement, const QString& replaced) override
    {
        Count();
        Real_->MarkAsRestored(replacement, replaced);
    }
    std::unique_ptr<FileLock> LockOut(const QString& fileName) override
    {
        Count();
        return Real_->LockOut(fileName);
    }
    FileReport Examine(const QString& fileName, const CopyProgress& progress) override
    {
        Count();
        return Real_->Examine(fileName, progress);
    }
    QStringList CompanionsOf(const QString& fileName) const override { return Real_->CompanionsOf(fileName); }
    std::unique_ptr<Connection> OpenConnection(const QString& name, int options, bool readOnly,
                                               const QString& connect) override
    {
        Count();
        return Real_->OpenConnection(name, options, readOnly, connect);
    }

private:
    std::unique_ptr<Engine> Real_ = sqlite::MakeSqliteEngine();
};
} // namespace

FaultyEngine::FaultyEngine()
{
    state = {};
    EngineRegistry& registry = EngineRegistry::Instance();
    registry.Unregister(sqlite::MakeSqliteEngine()->Name());
    registry.Register(std::make_unique<Faulty>());
}

FaultyEngine::~FaultyEngine()
{
    EngineRegistry& registry = EngineRegistry::Instance();
    registry.Unregister(sqlite::MakeSqliteEngine()->Name());
    registry.Register(sqlite::MakeSqliteEngine());
    state = {};
}

void FaultyEngine::FailAt(int number, std::function<void()> failure, bool isLasting)
{
    state = {std::move(failure), number, 0, isLasting, false};
}

void FaultyEngine::Heal()
{
    state = {};
}

bool FaultyEngine::HasFailed() const
{
    return state.HasFailed;
}
