// SPDX-License-Identifier: Apache-2.0
#include "platform/records/ServedEngine.h"

#include "platform/records/DBEngine.h"
#include "platform/records/engines/EngineRegistry.h"
#include "platform/records/query/Binder.h"
#include "platform/records/query/QueryRun.h"

#include <QDir>

using namespace dao;

namespace
{

const QString Mark = QStringLiteral("SERVED;");

engine::Engine& Keeper()
{
    return engine::EngineRegistry::Instance().Named(QStringLiteral("sqlite"));
}

/// Rows are the other store's, queries are run here.
class ServedStore final : public engine::Store
{
public:
    explicit ServedStore(std::unique_ptr<engine::Store> rows) : Rows_(std::move(rows)) {}

    QString Version() const override { return Rows_->Version(); }
    bool Updatable() const override { return Rows_->Updatable(); }
    engine::SchemaPtr CurrentSchema() override { return Rows_->CurrentSchema(); }
    void AddTable(const engine::Table& table) override { Rows_->AddTable(table); }
    void AddColumn(const QString& table, const engine::Column& column) override { Rows_->AddColumn(table, column); }
    void AddIndex(const QString& table, const engine::IndexKey& index) override { Rows_->AddIndex(table, index); }
    void BeginTrans() override { Rows_->BeginTrans(); }
    void CommitTrans() override { Rows_->CommitTrans(); }
    void Rollback() override { Rows_->Rollback(); }
    void LockForChange() override { Rows_->LockForChange(); }

    bool ReadEnd(const engine::TablePtr& table, int index, engine::Direction direction, engine::MemoFetch memos,
                 Row& row) override
    {
        return Rows_->ReadEnd(table, index, direction, memos, row);
    }
    bool ReadNext(const engine::TablePtr& table, int index, engine::Direction direction, engine::MemoFetch memos,
                  Row& row) override
    {
        return Rows_->ReadNext(table, index, direction, memos, row);
    }
    bool Seek(const engine::TablePtr& table, int index, SeekComparison comparison, std::span<const StoredValue> keys,
              engine::MemoFetch memos, Row& row) override
    {
        return Rows_->Seek(table, index, comparison, keys, memos, row);
    }
    std::vector<Row> ReadRows(const engine::TablePtr& table, std::span<const qint64> ids, engine::MemoFetch memos,
                              qint64 octetBudget) override
    {
        return Rows_->ReadRows(table, ids, memos, octetBudget);
    }
    std::vector<engine::StoredMemo> ReadMemos(const engine::TablePtr& table, int column, std::span<const qint64> ids,
                                              qint64 octetBudget) override
    {
        return Rows_->ReadMemos(table, column, ids, octetBudget);
    }
    int CountRows(const engine::TablePtr& table) override { return Rows_->CountRows(table); }
    qint64 LastCounter(const engine::TablePtr& table) override { return Rows_->LastCounter(table); }
    void RaiseCounter(const engine::TablePtr& table, qint64 last) override { Rows_->RaiseCounter(table, last); }
    qint64 DrawCounter(const engine::TablePtr& table) override { return Rows_->DrawCounter(table); }
    qint64 Insert(const engine::TablePtr& table, std::span<const engine::Assignment> values) override
    {
        return Rows_->Insert(table, values);
    }
    void Update(const engine::TablePtr& table, qint64 id, qint64 version,
                std::span<const engine::Assignment> values) override
    {
        Rows_->Update(table, id, version, values);
    }
    void Delete(const engine::TablePtr& table, qint64 id) override { Rows_->Delete(table, id); }

    engine::ResultShape Describe(const jetsql::SelectStatement& select) override
    {
        return query::BindSelect(select, *CurrentSchema()).Shape;
    }
    void Select(const jetsql::SelectStatement& select, const engine::ParameterValues& parameters,
                engine::ResultPart part, const engine::RowSink& sink) override
    {
        query::StoreRows rows(*Rows_);
        query::RunSelect(query::BindSelect(select, *CurrentSchema()), parameters, part, rows, sink);
    }
    int Execute(const jetsql::Statement& statement, const engine::ParameterValues& parameters) override
    {
        const query::BoundChange change = query::BindChangeToRun(statement, *CurrentSchema());
        BeginTrans();
        try {
            LockForChange();
            query::StoreRows rows(*Rows_);
            const int count = query::ApplyChange(change, query::PlanChange(change, parameters, rows), *Rows_);
            CommitTrans();
            return count;
        } catch (...) {
            Rollback();
            throw;
        }
    }
    QStringList ParametersOf(const jetsql::Statement& statement) override
    {
        return query::ParametersOf(statement, *CurrentSchema());
    }

private:
    std::unique_ptr<engine::Store> Rows_;
};

class ServedEngine final : public engine::Engine
{
public:
    QString Name() const override { return ServedEngineName(); }
    Capability Capabilities() const override { return {.Creates = false, .IsServer = true}; }
    bool IsAvailable(QString&) const override { return true; }
    bool RecognisesFile(const QByteArray&) const override { return false; }
    bool RecognisesConnect(const QString& connect) const override { return connect.startsWith(Mark); }

    std::unique_ptr<engine::Store> Open(const QString& name, const QString& connect, bool readOnly) override
    {
        const QString file = QDir(connect.mid(Mark.size())).filePath(name);
        return std::make_unique<ServedStore>(Keeper().Open(file, QString(), readOnly));
    }
    void Create(const QString&) override { RaiseNoFiles(); }
    void Compact(const QString&, const QString&) override { RaiseNoFiles(); }
    void Copy(const QString&, const QString&, const engine::CopyProgress&) override { RaiseNoFiles(); }
    FileReport Examine(const QString&, const engine::CopyProgress&) override { RaiseNoFiles(); }
    QStringList CompanionsOf(const QString&) const override { return {}; }
    std::unique_ptr<Connection> OpenConnection(const QString&, int, bool, const QString&) override { RaiseNoFiles(); }

private:
    [[noreturn]] static void RaiseNoFiles()
    {
        throw Error(errNotSupported, QStringLiteral("The served engine has no files and no connections."));
    }
};

} // namespace

QString ServedEngineName()
{
    return QStringLiteral("served");
}

std::unique_ptr<engine::Engine> MakeServedEngine()
{
    return std::make_unique<ServedEngine>();
}

DatabasePlace MakeServedDatabase(const QString& folder)
{
    const QString name = QStringLiteral("Test");
    Keeper().Create(QDir(folder).filePath(name));
    return {name, Mark + folder};
}
