// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/ServerStore.h"

#include "platform/records/engines/postgres/Naming.h"
#include "platform/records/engines/postgres/StoreScopes.h"
#include "platform/records/query/StoredValues.h"

#include <algorithm>
#include <limits>

namespace dao::postgres
{

using engine::Column;
using engine::Direction;
using engine::IndexKey;
using engine::MemoFetch;
using engine::SchemaPtr;
using engine::Table;
using engine::TablePtr;

namespace
{

constexpr std::size_t LargestIndex = 10;
constexpr char VersionText[] = "1.0";

[[noreturn]] void RaiseDeleted()
{
    throw Error(errRecordDeleted, QStringLiteral("Record is deleted."));
}

void RequireDistinctFields(const Table& table)
{
    for (std::size_t i = 0; i < table.Columns.size(); ++i) {
        RequireName(table.Columns[i].Name);
        if (table.FindColumn(table.Columns[i].Name) != static_cast<int>(i)) {
            throw Error(
                errTableExists,
                QStringLiteral("Field '%1' already exists in table '%2'.").arg(table.Columns[i].Name, table.Name));
        }
    }
}

} // namespace

ServerStore::ServerStore(const ConnectString& connect, bool readOnly, Missing missing)
    : Connection_(connect), SchemaName_(QuotedName(connect.Schema))
{
    const Result result =
        Connection_.Run(Command{"SELECT pg_catalog.pg_is_in_recovery() OR "
                                "pg_catalog.current_setting('default_transaction_read_only') = 'on'"});
    IsReadOnly_ = readOnly || result.Truth(0, 0);
    if (!HasStation(Connection_)) {
        if (missing == Missing::IsError || IsReadOnly_) {
            throw Error(errFileNotFound, QStringLiteral("There is no station on the server (%1), or this user has no "
                                                        "right to see it.")
                                             .arg(connect.InWords()));
        }
        CreateStation(Connection_);
    }
    Schema_ = ReadStructure(Connection_, SchemaName_, false, nullptr, State_);
}

ServerStore::~ServerStore() = default;

QString ServerStore::Version() const
{
    return QString::fromLatin1(VersionText);
}

SchemaPtr ServerStore::CurrentSchema()
{
    return Retried([&] {
        if (Transaction_ == Transaction::Started) {
            if (State_.Structure == 0)
                RefreshUnderLock();
            return Schema_;
        }
        if (Transaction_ == Transaction::Announced && HasLooked_)
            return Schema_;
        const StationState state = StateIn(Connection_.Run(StateCommand(SchemaName_)), Connection_);
        RequireSameStation(state);
        if (state != State_)
            Schema_ = ReadStructure(Connection_, SchemaName_, false, Schema_, State_);
        HasLooked_ = true;
        return Schema_;
    });
}

void ServerStore::HoldSnapshot()
{
    Connection_.Execute("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
    IsReadOnly_ = true;
    IsSnapshot_ = true;
    Transaction_ = Transaction::Started;
    Depth_ = 1;
    RefreshUnderLock();
}

void ServerStore::Clear()
{
    ClearStation(Connection_, SchemaName_, *Schema_);
    RefreshUnderLock();
}

bool ServerStore::BeginBeingTold()
{
    try {
        if (Transaction_ == Transaction::None && Connection_.IsOpen() && !Connection_.IsListening())
            Connection_.Listen(SchemaName_);
    } catch (const Error&) {
        // The next call that reads finds out and says it.
    }
    return Connection_.IsListening();
}

bool ServerStore::TakeChanges()
{
    return Connection_.IsListening() && Connection_.TakeNotices();
}

void ServerStore::RefreshUnderLock()
{
    Schema_ = ReadStructure(Connection_, SchemaName_, true, Schema_, State_);
}

TablePtr ServerStore::RequireTable(const QString& name)
{
    TablePtr table = Schema_->Find(name);
    if (!table)
        throw Error(errTableNotFound, QStringLiteral("The input table or query '%1' was not found.").arg(name));
    return table;
}

void ServerStore::AddTable(const Table& table)
{
    RequireName(table.Name);
    RequireDistinctFields(table);
    Retried([&] {
        WriteScope scope(*this);
        scope.MarkBeginning();
        if (Schema_->Find(table.Name))
            throw Error(errTableExists, QStringLiteral("Table '%1' already exists.").arg(table.Name));
        WriteTable(Connection_, SchemaName_, table);
        CountChange(Connection_, SchemaName_);
        RefreshUnderLock();
        scope.Commit();
    });
}

void ServerStore::AddColumn(const QString& tableName, const Column& column)
{
    RequireName(column.Name);
    Retried([&] {
        WriteScope scope(*this);
        scope.MarkBeginning();
        const TablePtr table = RequireTable(tableName);
        if (table->FindColumn(column.Name) >= 0) {
            throw Error(errTableExists,
                        QStringLiteral("Field '%1' already exists in table '%2'.").arg(column.Name, table->Name));
        }
        if (column.IsCounter() && table->CounterColumn() >= 0) {
            throw Error(errNotSupported,
                        QStringLiteral("Table '%1' has an automatic counter already.").arg(table->Name));
        }
        WriteColumn(Connection_, SchemaName_, *table, column);
        CountChange(Connection_, SchemaName_);
        RefreshUnderLock();
        scope.Commit();
    });
}

void ServerStore::AddIndex(const QString& tableName, const IndexKey& index)
{
    Retried([&] {
        WriteScope scope(*this);
        scope.MarkBeginning();
        const TablePtr table = RequireTable(tableName);
        if (table->FindIndex(index.Name) >= 0) {
            throw Error(errTableExists,
                        QStringLiteral("Index '%1' already exists in table '%2'.").arg(index.Name, table->Name));
        }
        if (index.Name.isEmpty() || index.Name.contains(QChar(u'\0')) || index.Columns.size() > LargestIndex)
            throw Error(errNotSupported, QStringLiteral("'%1' is not a valid index.").arg(index.Name));
        WriteIndex(Connection_, SchemaName_, *table, index);
        CountChange(Connection_, SchemaName_);
        RefreshUnderLock();
        scope.Commit();
    });
}

bool ServerStore::ReadEnd(const TablePtr& table, int index, Direction direction, MemoFetch memos, Row& row)
{
    return Retried([&] { return Rows(table).ReadEnd(index, direction, memos, row); });
}

bool ServerStore::ReadNext(const TablePtr& table, int index, Direction direction, MemoFetch memos, Row& row)
{
    if (IsSnapshot_ && index < 0 && direction == Direction::Forward)
        return Retried([&] { return ReadAhead(table, memos, row); });
    return Retried([&] { return Rows(table).ReadNext(index, direction, memos, row); });
}

bool ServerStore::ReadAhead(const TablePtr& table, MemoFetch memos, Row& row)
{
    RowsAhead& ahead = Ahead_;
    const bool isWalk =
        ahead.Table == table && ahead.Memos == memos && ahead.Next > 0 && ahead.Rows[ahead.Next - 1].Id == row.Id;
    if (!isWalk || ahead.Next == ahead.Rows.size()) {
        // The row that the walk stands at goes in front.
        ahead = {table, memos, {row}, 1};
        Rows(table).ReadBehind(row.Id, memos, ahead.Rows);
    }
    if (ahead.Next == ahead.Rows.size())
        return false;
    row = ahead.Rows[ahead.Next++];
    return true;
}

bool ServerStore::Seek(const TablePtr& table, int index, SeekComparison comparison, std::span<const StoredValue> keys,
                       MemoFetch memos, Row& row)
{
    return Retried([&] { return Rows(table).Seek(index, comparison, keys, memos, row); });
}

std::vector<Row> ServerStore::ReadRows(const TablePtr& table, std::span<const qint64> ids, MemoFetch memos, qint64)
{
    // The small memos of a batch are within any budget.
    return Retried([&] { return Rows(table).ReadRows(ids, memos); });
}

std::vector<engine::StoredMemo> ServerStore::ReadMemos(const TablePtr& table, int column, std::span<const qint64> ids,
                                                       qint64 octetBudget)
{
    return Retried([&] { return Rows(table).ReadMemos(column, ids, octetBudget); });
}

std::vector<std::optional<MemoBeginning>>
ServerStore::ReadMemoBeginnings(const TablePtr& table, int column, std::span<const qint64> ids, qsizetype mostOctets)
{
    return Retried([&] { return Rows(table).ReadMemoBeginnings(column, ids, mostOctets); });
}

int ServerStore::CountRows(const TablePtr& table)
{
    return Retried([&] { return static_cast<int>(Rows(table).CountRows()); });
}

qint64 ServerStore::LastCounter(const TablePtr& table)
{
    if (table->CounterColumn() < 0)
        return 0;
    return Retried([&] { return Rows(table).LastId(); });
}

void ServerStore::RaiseCounter(const TablePtr& table, qint64 last)
{
    Retried([&] {
        WriteScope scope(*this);
        scope.MarkBeginning();
        Rows(table).RaiseIds(std::min<qint64>(last, std::numeric_limits<qint32>::max()));
        scope.Commit();
    });
}

qint64 ServerStore::DrawCounter(const TablePtr& table)
{
    return Retried([&] { return Rows(table).DrawId(); });
}

void ServerStore::CheckPrimaryKey(const Table& table, std::span<const engine::Assignment> values, bool isNewRow) const
{
    for (const IndexKey& index : table.Indexes) {
        if (!index.Primary)
            continue;
        for (const int column : index.Columns) {
            const auto given = std::find_if(values.begin(), values.end(), [&](const engine::Assignment& assignment) {
                return assignment.Column == column;
            });
            if (given == values.end() ? isNewRow : query::IsNull(*given->Value)) {
                throw Error(errInvalidUseOfNull,
                            QStringLiteral("Invalid use of Null: index or primary key cannot contain a Null value."));
            }
        }
    }
}

qint64 ServerStore::Insert(const TablePtr& table, std::span<const engine::Assignment> values)
{
    CheckPrimaryKey(*table, values, true);
    return Retried([&] {
        qint64 id = 0;
        bool isGiven = false;
        for (const engine::Assignment& assignment : values) {
            if (assignment.Column != table->CounterColumn() || query::IsNull(*assignment.Value))
                continue;
            id = static_cast<qint64>(query::RealIn(*assignment.Value));
            isGiven = true;
        }
        WriteScope scope(*this);
        RowAccess rows = Rows(table);
        // The check of a memo is told by the row's id, so that the id is known before.
        if (!isGiven)
            id = rows.DrawId();
        scope.RunAndCommit(rows.InsertCommand(id, values));
        return id;
    });
}

void ServerStore::Update(const TablePtr& table, qint64 id, qint64 version, std::span<const engine::Assignment> values)
{
    CheckPrimaryKey(*table, values, false);
    Retried([&] {
        WriteScope scope(*this);
        RowAccess rows = Rows(table);
        const std::optional<Result> result = scope.RunAndCommit(rows.UpdateCommand(id, version, values));
        if (result && result->ChangedRows() > 0)
            return;
        if (!result) {
            // Stored, and its answer lost on the way: by its version the row tells whether it was the one.
            const Row row = rows.ReadRows(std::span(&id, 1), MemoFetch::Deferred).front();
            if (row.Id == id && row.Version > version)
                return;
        }
        if (rows.Exists(id)) {
            throw Error(errChangedByAnother,
                        QStringLiteral("The record was changed by another user since the edit began."));
        }
        RaiseDeleted();
    });
}

void ServerStore::Delete(const TablePtr& table, qint64 id)
{
    Retried([&] {
        WriteScope scope(*this);
        const std::optional<Result> result = scope.RunAndCommit(Rows(table).DeleteCommand(id));
        if (result && result->ChangedRows() == 0)
            RaiseDeleted();
    });
}

} // namespace dao::postgres
