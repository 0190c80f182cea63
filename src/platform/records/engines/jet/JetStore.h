// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/TableReader.h"

#include <unordered_map>

namespace dao::jet
{

/// One open file, to be read. What would change it is error 3027. Damage is 3049, in words.
///
/// Nothing keeps other programs from changing the file meanwhile: each operation begins by looking whether they did,
/// and a query that they changed the file under is 3260.
class JetStore final : public engine::Store
{
public:
    /// Errors: those of PageFile, and 3049 when its tables cannot be read.
    explicit JetStore(const QString& fileName);

    QString Version() const override;
    bool Updatable() const override { return false; }
    engine::SchemaPtr CurrentSchema() override;
    void AddTable(const engine::Table& table) override;
    void AddColumn(const QString& table, const engine::Column& column) override;
    void AddIndex(const QString& table, const engine::IndexKey& index) override;

    void BeginTrans() override { ++Depth_; }
    void CommitTrans() override { EndTransaction(); }
    void Rollback() override { EndTransaction(); }
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

    void EndTransaction();
    /// Sees what others changed, then runs an operation; what is damaged becomes 3049.
    template <typename Operation>
    auto Run(const Operation& operation);
    template <typename Operation>
    auto Reading(const Operation& operation) const;
    TableReader& ReaderOf(const engine::TablePtr& table);
    [[noreturn]] void RaiseReadOnly() const;

    PageFile File_;
    engine::SchemaPtr Schema_;
    bool IsSelecting_ = false; ///< The rows that a query reads stay as they are until it ends.
    int Depth_ = 0;            ///< Of transactions, which change nothing.
    std::unordered_map<const engine::Table*, std::unique_ptr<TableReader>> Readers_; ///< Each keeps its key alive.
};

} // namespace dao::jet
