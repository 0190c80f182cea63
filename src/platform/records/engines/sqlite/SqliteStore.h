// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/engines/sqlite/CounterColumn.h"
#include "platform/records/engines/sqlite/TableAccess.h"

#include <unordered_map>

namespace dao::sqlite
{

/// One open file.
class SqliteStore final : public engine::Store
{
public:
    SqliteStore(const QString& fileName, bool readOnly);
    ~SqliteStore() override;

    QString Version() const override;
    bool Updatable() const override { return !IsReadOnly_; }
    bool MayServeAgain() override;
    bool IsAsNew(const QString& fileName) override;

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
    quint64 MarkOf(const jetsql::SelectStatement& select) override;
    int Execute(const jetsql::Statement& statement, const engine::ParameterValues& parameters) override;
    QStringList ParametersOf(const jetsql::Statement& statement) override;

private:
    class ReadScope;
    class WriteScope;
    enum class Transaction
    {
        None,
        Announced, ///< Begun by the caller; the file is locked from its first change on.
        Started,
        Lost ///< SQLite took it back because of a failure of the disk.
    };

    /// 3049 when the file is shorter than it says.
    void CheckLength();
    engine::SchemaPtr ReadSchemaUnderLock();
    /// 3734 once a backup was put in the place of what this store was opened on. Otherwise takes over a structure that
    /// others changed.
    void RequireSameFile();
    /// The structure while a lock is held: looked at once more only where it changed.
    engine::SchemaPtr SchemaUnderLock();
    qint64 CookieInFile() const;
    engine::TablePtr RequireTable(const QString& name);
    TableAccess& Access(const engine::TablePtr& table);
    void CheckNoNullInPrimaryKey(const engine::Table& table);
    /// Takes the lock of a writer, on the file that was opened.
    void BeginWriting();
    /// The lock of a writer for an announced transaction.
    void Start();
    /// Sees whether a failure of the disk took the open transaction back.
    void NoteLoss();
    [[noreturn]] void RaiseLost() const;
    /// From the savepoint of an inner transaction on.
    void TakeBackTo(int depth);
    /// After a transaction was taken back.
    void RestoreCounters();

    Connection Connection_;
    bool IsReadOnly_;
    Transaction Transaction_ = Transaction::None;
    int Depth_ = 0; ///< Of the caller's transactions in each other; each inner one is a savepoint.
    engine::SchemaPtr Schema_;
    qint64 Cookie_ = -1;
    qint64 Identity_ = 0;
    bool IsReplaced_ = false;
    bool HasChecks_ = false; ///< Of the file: whether its memos carry checks.
    std::unordered_map<const engine::Table*, std::unique_ptr<TableAccess>> Accesses_;
    std::vector<engine::TablePtr> AccessedTables_; ///< Keeps the keys of Accesses_ alive.
    CounterColumn CounterMarks_;
    engine::CounterBlocks Counters_;
    Statement Begin_;
    Statement BeginImmediate_;
    Statement Commit_;
};

} // namespace dao::sqlite
