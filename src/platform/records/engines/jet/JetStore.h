// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/CounterBlocks.h"
#include "platform/records/engines/jet/FileSession.h"
#include "platform/records/engines/jet/PageAllocation.h"
#include "platform/records/engines/jet/RowWriter.h"
#include "platform/records/engines/jet/TableReader.h"

#include <unordered_map>

namespace dao::jet
{

/// One open file. Damage is 3049, in words. A change that fails leaves nothing of itself behind.
///
/// Each operation begins by looking whether others changed the file; while it reads nobody can. Office programs know
/// nothing of these locks: while one of them has the file open it is only read, and a query that one of them changed
/// the file under is 3260.
class JetStore final : public engine::Store
{
public:
    /// Errors: those of FileSession, and 3049 when its tables cannot be read.
    JetStore(const QString& fileName, bool readOnly);
    ~JetStore() override;

    QString Version() const override;
    bool Updatable() const override { return IsUpdatable_; }
    engine::SchemaPtr CurrentSchema() override;
    void AddTable(const engine::Table& table) override;
    void AddColumn(const QString& table, const engine::Column& column) override;
    void AddIndex(const QString& table, const engine::IndexKey& index) override;

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

private:
    class Rows;
    enum class Transaction
    {
        None,
        Announced, ///< Begun by the caller; the file is locked from its first change on.
        Started
    };
    /// The counters in the tables' definitions.
    class Marks final : public engine::CounterMarks
    {
    public:
        explicit Marks(JetStore& store) : Store_(store) {}
        qint64 Mark(qint64 table) override;
        void SetMark(qint64 table, qint64 mark) override;

    private:
        JetStore& Store_;
    };

    /// Sees what others changed, then runs an operation; what is damaged becomes 3049.
    template <typename Operation>
    auto Run(const Operation& operation);
    template <typename Operation>
    auto Reading(const Operation& operation) const;
    /// A change: a transaction of its own, or a part of the one that the caller opened.
    template <typename Operation>
    auto Change(const Operation& operation);
    template <typename Operation>
    auto ChangeStep(const Operation& operation);

    void StartWriting();
    void CommitWriting();
    void TakeBackStep();
    void RestoreCounters();
    void Forget();
    void ForgetRows(const engine::TablePtr& table);
    void LoadSchema();
    engine::TablePtr RequireTable(const QString& name);
    TableReader& ReaderOf(const engine::TablePtr& table);
    RowWriter WriterOf(TableReader& reader);
    FoundRow RequireRow(TableReader& reader, qint64 id);

    FileSession Session_;
    PageFile& File_;
    bool IsReadOnly_;  ///< Opened to be read.
    bool IsUpdatable_; ///< As it was at the opening.
    engine::SchemaPtr Schema_;
    bool IsSchemaOld_ = true;
    Transaction Transaction_ = Transaction::None;
    int Depth_ = 0; ///< Of the caller's transactions in each other; each inner one is a step.
    PageAllocation Pages_;
    Marks Marks_;
    engine::CounterBlocks Counters_;
    std::unordered_map<const engine::Table*, std::unique_ptr<TableReader>> Readers_; ///< Each keeps its key alive.
};

} // namespace dao::jet
