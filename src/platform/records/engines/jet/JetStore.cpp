// SPDX-License-Identifier: Apache-2.0
#include "platform/files/WorkClaim.h"
#include "platform/records/engines/jet/JetOperations.h"
#include "platform/records/engines/jet/JetSchema.h"
#include "platform/records/query/Binder.h"
#include "platform/records/query/QueryRun.h"
#include "platform/records/query/StoredValues.h"

namespace dao::jet
{

/// The rows for a run of a query, during which nobody looks whether the file was changed.
class JetStore::Rows final : public query::TableRows
{
public:
    explicit Rows(JetStore& store) : Store_(store) {}

    void ForEachRow(const engine::TablePtr& table, const Visitor& visit) override
    {
        Store_.Reading([&] { Store_.ReaderOf(table).ForEachRow(visit); });
    }
    bool ForEachRowWith(const engine::TablePtr& table, int column, const StoredValue& value,
                        const Visitor& visit) override
    {
        const engine::Column& definition = table->Columns[static_cast<std::size_t>(column)];
        const bool isText = definition.Type == dbText || definition.Type == dbMemo;
        if (isText != std::holds_alternative<QByteArray>(value))
            return false;
        const StoredValue key = isText ? query::Kept(value) : query::KeyFor(definition, value);
        return query::IsNull(key) ||
               Store_.Reading([&] { return Store_.ReaderOf(table).ForEachRowWith(column, key, visit); });
    }
    StoredValue Memo(const engine::TablePtr& table, int column, qint64 id) override
    {
        return query::TextOf(Store_.Reading([&] { return Store_.ReaderOf(table).ReadMemo(column, id); }));
    }

private:
    JetStore& Store_;
};

JetStore::JetStore(const QString& fileName, bool readOnly)
    // Opened for writing also by one who only reads: what a crash left half done has to be put right first.
    : Session_(fileName, PageFile::Use::Change),
      File_(Session_.Pages()),
      IsReadOnly_(readOnly),
      IsUpdatable_(!readOnly && Session_.IsChangeable()),
      Pages_(File_),
      Marks_(*this),
      Counters_(Marks_)
{
    CurrentSchema();
    // One that is being made is its maker's alone.
    if (IsUpdatable_ && FileSystem::Current().KindOf(WorkClaim::NameFor(File_.Name())) == FileKind::None)
        Session_.ShowAsUser();
}

QString JetStore::Version() const
{
    return QStringLiteral("4.0");
}

engine::SchemaPtr JetStore::CurrentSchema()
{
    return Run([&] { return Schema_; });
}

/// What is the same stays the same object.
void JetStore::LoadSchema()
{
    if (!IsSchemaOld_)
        return;
    const engine::SchemaPtr read = ReadSchema(File_);
    auto schema = std::make_shared<engine::Schema>();
    bool isSame = Schema_ && Schema_->Tables.size() == read->Tables.size();
    for (const engine::TablePtr& table : read->Tables) {
        const engine::TablePtr known = Schema_ ? Schema_->Find(table->Name) : nullptr;
        schema->Tables.push_back(known && *known == *table ? known : table);
        isSame = isSame && schema->Tables.back() == known;
    }
    if (!isSame)
        Schema_ = std::move(schema);
    IsSchemaOld_ = false;
}

engine::TablePtr JetStore::RequireTable(const QString& name)
{
    LoadSchema();
    engine::TablePtr table = Schema_->Find(name);
    if (!table)
        throw Error(errTableNotFound, QStringLiteral("The input table or query '%1' was not found.").arg(name));
    return table;
}

TableReader& JetStore::ReaderOf(const engine::TablePtr& table)
{
    const auto found = Readers_.find(table.get());
    if (found != Readers_.end())
        return *found->second;
    return *Readers_.emplace(table.get(), std::make_unique<TableReader>(File_, table)).first->second;
}

void JetStore::Forget()
{
    Readers_.clear();
    IsSchemaOld_ = true;
}

void JetStore::ForgetRows(const engine::TablePtr& table)
{
    for (const auto& [key, reader] : Readers_) {
        if (key->Id == table->Id)
            reader->ForgetRows();
    }
}

bool JetStore::ReadEnd(const engine::TablePtr& table, int index, engine::Direction direction, engine::MemoFetch memos,
                       Row& row)
{
    return Run([&] { return ReaderOf(table).ReadEnd(index, direction, memos, row); });
}

bool JetStore::ReadNext(const engine::TablePtr& table, int index, engine::Direction direction, engine::MemoFetch memos,
                        Row& row)
{
    return Run([&] { return ReaderOf(table).ReadNext(index, direction, memos, row); });
}

bool JetStore::Seek(const engine::TablePtr& table, int index, SeekComparison comparison,
                    std::span<const StoredValue> keys, engine::MemoFetch memos, Row& row)
{
    return Run([&] { return ReaderOf(table).Seek(index, comparison, keys, memos, row); });
}

std::vector<Row> JetStore::ReadRows(const engine::TablePtr& table, std::span<const qint64> ids, engine::MemoFetch memos,
                                    qint64 octetBudget)
{
    return Run([&] {
        TableReader& reader = ReaderOf(table);
        std::vector<Row> rows;
        qint64 octets = 0;
        for (const qint64 id : ids) {
            Row& row = rows.emplace_back();
            if (!reader.ReadRow(id, memos, row))
                row.Id = engine::NoRow;
            octets += static_cast<qint64>(row.Cells.size());
            if (octets > octetBudget)
                break;
        }
        return rows;
    });
}

std::vector<engine::StoredMemo> JetStore::ReadMemos(const engine::TablePtr& table, int column,
                                                    std::span<const qint64> ids, qint64 octetBudget)
{
    return Run([&] {
        TableReader& reader = ReaderOf(table);
        std::vector<engine::StoredMemo> memos;
        qint64 octets = 0;
        for (const qint64 id : ids) {
            memos.push_back(reader.ReadMemo(column, id));
            octets += memos.back().Size();
            if (octets > octetBudget)
                break;
        }
        return memos;
    });
}

std::vector<std::optional<MemoBeginning>> JetStore::ReadMemoBeginnings(const engine::TablePtr& table, int column,
                                                                       std::span<const qint64> ids,
                                                                       qsizetype mostOctets)
{
    return Run([&] {
        TableReader& reader = ReaderOf(table);
        std::vector<std::optional<MemoBeginning>> beginnings;
        beginnings.reserve(ids.size());
        for (const qint64 id : ids)
            beginnings.push_back(reader.ReadMemoBeginning(column, id, mostOctets));
        return beginnings;
    });
}

int JetStore::CountRows(const engine::TablePtr& table)
{
    return Run([&] { return ReaderOf(table).CountRows(); });
}

qint64 JetStore::LastCounter(const engine::TablePtr& table)
{
    return Run([&] { return ReaderOf(table).LastCounter(); });
}

engine::ResultShape JetStore::Describe(const jetsql::SelectStatement& select)
{
    return query::BindSelect(select, *CurrentSchema()).Shape;
}

void JetStore::Select(const jetsql::SelectStatement& select, const engine::ParameterValues& parameters,
                      engine::ResultPart part, const engine::RowSink& sink)
{
    Run([&] {
        const query::BoundSelect bound = query::BindSelect(select, *Schema_);
        Rows rows(*this);
        query::RunSelect(bound, parameters, part, rows, sink);
        if (!Session_.IsWriting() && File_.Refresh()) {
            Forget();
            throw Error(
                errLocked,
                QStringLiteral("'%1' was changed by another program while it was read. Try again.").arg(File_.Name()));
        }
    });
}

int JetStore::Execute(const jetsql::Statement& statement, const engine::ParameterValues& parameters)
{
    const int depth = Depth_;
    BeginTrans();
    try {
        LockForChange();
        const query::BoundChange change = query::BindChangeToRun(statement, *CurrentSchema());
        Rows rows(*this);
        const int count = query::ApplyChange(change, query::PlanChange(change, parameters, rows), *this);
        CommitTrans();
        return count;
    } catch (...) {
        if (Depth_ > depth)
            Rollback();
        throw;
    }
}

QStringList JetStore::ParametersOf(const jetsql::Statement& statement)
{
    return query::ParametersOf(statement, *CurrentSchema());
}

} // namespace dao::jet
