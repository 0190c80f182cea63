// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/JetStore.h"

#include "platform/records/engines/jet/JetSchema.h"
#include "platform/records/query/Binder.h"
#include "platform/records/query/QueryRun.h"
#include "platform/records/query/StoredValues.h"

#include <QScopedValueRollback>

namespace dao::jet
{

template <typename Operation>
auto JetStore::Reading(const Operation& operation) const
{
    try {
        return operation();
    } catch (const Fault& fault) {
        throw Error(errFileDamaged,
                    QStringLiteral("The database '%1' is damaged: %2.").arg(File_.Name(), fault.Words()));
    }
}

template <typename Operation>
auto JetStore::Run(const Operation& operation)
{
    return Reading([&] {
        if (!IsSelecting_ && File_.NoteChanges()) {
            Readers_.clear();
            Schema_.reset();
        }
        if (!Schema_)
            Schema_ = ReadSchema(File_);
        return operation();
    });
}

/// The rows for a run of a query, during which nobody looks whether the file was changed.
class JetStore::Rows final : public query::TableRows
{
public:
    explicit Rows(JetStore& store) : Store_(store) {}

    void ForEachRow(const engine::TablePtr& table, const Visitor& visit) override
    {
        Store_.Reading([&] {
            TableReader& reader = Store_.ReaderOf(table);
            Row row;
            bool isThere = reader.ReadEnd(-1, engine::Direction::Forward, engine::MemoFetch::Deferred, row);
            while (isThere && visit(row))
                isThere = reader.ReadNext(-1, engine::Direction::Forward, engine::MemoFetch::Deferred, row);
        });
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

JetStore::JetStore(const QString& fileName) : File_(fileName)
{
    CurrentSchema();
}

QString JetStore::Version() const
{
    return QStringLiteral("4.0");
}

engine::SchemaPtr JetStore::CurrentSchema()
{
    return Run([&] { return Schema_; });
}

TableReader& JetStore::ReaderOf(const engine::TablePtr& table)
{
    const auto found = Readers_.find(table.get());
    if (found != Readers_.end())
        return *found->second;
    return *Readers_.emplace(table.get(), std::make_unique<TableReader>(File_, table)).first->second;
}

void JetStore::EndTransaction()
{
    if (Depth_ == 0)
        throw Error(errNotSupported, QStringLiteral("No transaction was begun."));
    --Depth_;
}

void JetStore::RaiseReadOnly() const
{
    throw Error(errReadOnly,
                QStringLiteral("'%1' is a Jet file, which can be read here and not changed.").arg(File_.Name()));
}

void JetStore::AddTable(const engine::Table&)
{
    RaiseReadOnly();
}

void JetStore::AddColumn(const QString&, const engine::Column&)
{
    RaiseReadOnly();
}

void JetStore::AddIndex(const QString&, const engine::IndexKey&)
{
    RaiseReadOnly();
}

void JetStore::LockForChange()
{
    RaiseReadOnly();
}

void JetStore::RaiseCounter(const engine::TablePtr&, qint64)
{
    RaiseReadOnly();
}

qint64 JetStore::DrawCounter(const engine::TablePtr&)
{
    RaiseReadOnly();
}

qint64 JetStore::Insert(const engine::TablePtr&, std::span<const engine::Assignment>)
{
    RaiseReadOnly();
}

void JetStore::Update(const engine::TablePtr&, qint64, qint64, std::span<const engine::Assignment>)
{
    RaiseReadOnly();
}

void JetStore::Delete(const engine::TablePtr&, qint64)
{
    RaiseReadOnly();
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
    const engine::SchemaPtr schema = CurrentSchema();
    const query::BoundSelect bound = query::BindSelect(select, *schema);
    Rows rows(*this);
    {
        const QScopedValueRollback selecting(IsSelecting_, true);
        query::RunSelect(bound, parameters, part, rows, sink);
    }
    if (CurrentSchema() != schema && !IsSelecting_)
        throw Error(
            errLocked,
            QStringLiteral("'%1' was changed by another program while it was read. Try again.").arg(File_.Name()));
}

int JetStore::Execute(const jetsql::Statement&, const engine::ParameterValues&)
{
    RaiseReadOnly();
}

QStringList JetStore::ParametersOf(const jetsql::Statement& statement)
{
    return query::ParametersOf(statement, *CurrentSchema());
}

} // namespace dao::jet
