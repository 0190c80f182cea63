// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/ServerStore.h"

#include "platform/records/engines/PrimaryKey.h"
#include "platform/records/engines/postgres/LinkFile.h"
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
constexpr int MostNumbersAhead = 64;
/// What is larger is sent at once, so that whoever stores it hears of its failure.
constexpr qint64 MostOctetsToLeave = qint64{256} * 1024;

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

/// Whether a row may be refused for its values' sake.
bool IsUniqueBesideId(const Table& table, const IndexKey& index)
{
    return index.Unique && (index.Columns.size() != 1 || index.Columns.front() != table.CounterColumn());
}

bool IsKeyChanged(const Table& table, std::span<const engine::Assignment> values)
{
    return std::any_of(table.Indexes.begin(), table.Indexes.end(), [&](const IndexKey& index) {
        return IsUniqueBesideId(table, index) &&
               std::any_of(values.begin(), values.end(), [&](const engine::Assignment& assignment) {
                   return std::find(index.Columns.begin(), index.Columns.end(), assignment.Column) !=
                          index.Columns.end();
               });
    });
}

} // namespace

ServerStore::ServerStore(const ConnectString& connect, bool readOnly, Missing missing, Closed closed)
    : Connection_(connect), SchemaName_(QuotedName(connect.Schema)), OpensClosed_(closed == Closed::IsOpened)
{
    const std::vector<Command> first{Command{"SELECT pg_catalog.pg_is_in_recovery() OR "
                                             "pg_catalog.current_setting('default_transaction_read_only') = 'on'"},
                                     HasStationCommand(Connection_)};
    const std::vector<Result> found = Connection_.RunTogether(first);
    IsReadOnly_ = readOnly || found[0].Truth(0, 0);
    if (found[1].Rows() == 0) {
        if (missing == Missing::IsError || IsReadOnly_) {
            throw Error(errFileNotFound, QStringLiteral("There is no station on the server (%1), or this user has no "
                                                        "right to see it.")
                                             .arg(connect.InWords()));
        }
        CreateStation(Connection_);
    }
    Schema_ = ReadStructure(Connection_, SchemaName_, false, nullptr, State_);
    if (!OpensClosed_)
        RequireOpen();
}

ServerStore::~ServerStore() = default;

QString ServerStore::Version() const
{
    return QString::fromLatin1(VersionText);
}

bool ServerStore::MayServeAgain()
{
    return !IsReadOnly_ && !IsReplaced_ && !OpensClosed_ && Transaction_ == Transaction::None && Connection_.IsOpen();
}

bool ServerStore::IsAsNew(const QString& fileName)
{
    try {
        if (!MayServeAgain() || ReadLinkFile(fileName).Text() != Connection_.Connect().Text())
            return false;
        // Raises where a backup was put in the station's place, or it was moved away.
        CurrentSchema();
    } catch (const Error&) {
        return false;
    }
    return true;
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
        Hear();
        if (IsStructureTold_ && State_.Structure != 0)
            return Schema_;
        // What is told from here on is told of what the look may have missed.
        const bool isTold = Connection_.IsListening();
        const StationState state = StateIn(Connection_.Run(StateCommand(SchemaName_)), Connection_);
        RequireSameStation(state);
        if (state != State_)
            Schema_ = ReadStructure(Connection_, SchemaName_, false, Schema_, State_);
        HasLooked_ = true;
        IsStructureTold_ = isTold && Connection_.IsListening();
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

void ServerStore::SetStanding(StationStanding standing)
{
    WriteStanding(Connection_, SchemaName_, standing);
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

void ServerStore::Hear()
{
    if (!Connection_.IsListening() || !Connection_.IsOpen())
        IsStructureTold_ = false;
    if (!Connection_.IsListening() || !Connection_.TakeNotices())
        return;
    HasNews_ = true;
    IsStructureTold_ = false;
}

bool ServerStore::TakeChanges()
{
    Hear();
    return std::exchange(HasNews_, false);
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
    return Retried([&] {
        const bool isFound = Rows(table).ReadEnd(index, direction, memos, row);
        if (isFound)
            Know(table, memos, row);
        return isFound;
    });
}

bool ServerStore::ReadNext(const TablePtr& table, int index, Direction direction, MemoFetch memos, Row& row)
{
    const bool isStill = IsSnapshot_ || Transaction_ == Transaction::Started;
    if (isStill && index < 0 && direction == Direction::Forward)
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
    return Retried([&] {
        const bool isFound = Rows(table).Seek(index, comparison, keys, memos, row);
        if (isFound)
            Know(table, memos, row);
        return isFound;
    });
}

void ServerStore::Know(const TablePtr& table, MemoFetch memos, const Row& row)
{
    if (Transaction_ == Transaction::Started && !IsSnapshot_)
        Known_ = {table, memos, row};
}

void ServerStore::ForgetRead()
{
    Known_ = {};
    Ahead_ = {};
}

bool ServerStore::IsCertain(const TablePtr& table, qint64 id, qint64 version) const
{
    return Transaction_ == Transaction::Started && Known_.Table == table && Known_.Content.Id == id &&
           Known_.Content.Version == version;
}

bool ServerStore::Leave(const Command& change, bool isCertain)
{
    if (!isCertain || Transaction_ != Transaction::Started || change.Values.Octets() > MostOctetsToLeave)
        return false;
    Connection_.Defer(change);
    return true;
}

std::vector<Row> ServerStore::ReadRows(const TablePtr& table, std::span<const qint64> ids, MemoFetch memos, qint64)
{
    const bool isKnown = ids.size() == 1 && Known_.Table == table && Known_.Content.Id == ids.front() &&
                         (memos == MemoFetch::Deferred || Known_.Memos == memos);
    if (isKnown && Transaction_ == Transaction::Started)
        return {Known_.Content};
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
        NumbersAhead_.erase(table->Id);
        Rows(table).RaiseIds(std::min<qint64>(last, std::numeric_limits<qint32>::max()));
        scope.Commit();
    });
}

qint64 ServerStore::DrawCounter(const TablePtr& table)
{
    return Retried([&] {
        std::deque<qint64>& ahead = NumbersAhead_[table->Id];
        RowAccess rows = Rows(table);
        if (ahead.empty() && Transaction_ == Transaction::Announced && !IsReadOnly_) {
            // A number is taken for a row: the lock that it needs comes in the same round trip.
            const Command draw = rows.DrawCommand();
            ahead.push_back(Start(&draw)->Integer(0, 0));
            Drawn_[table->Id] = 1;
        } else if (ahead.empty()) {
            // Whoever adds several rows in one transaction adds as many more.
            int& drawn = Drawn_[table->Id];
            const bool isFirst = Transaction_ != Transaction::Started || drawn == 0;
            ahead = rows.DrawIds(isFirst ? 1 : std::min(drawn, MostNumbersAhead));
            drawn += static_cast<int>(ahead.size());
        }
        const qint64 number = ahead.front();
        ahead.pop_front();
        return number;
    });
}

qint64 ServerStore::Insert(const TablePtr& table, std::span<const engine::Assignment> values)
{
    engine::CheckPrimaryKey(*table, values, engine::RowIs::New);
    return Retried([&] {
        qint64 id = 0;
        bool isGiven = false;
        for (const engine::Assignment& assignment : values) {
            if (assignment.Column != table->CounterColumn() || query::IsNull(*assignment.Value))
                continue;
            id = static_cast<qint64>(query::RealIn(*assignment.Value));
            isGiven = true;
        }
        RowAccess rows = Rows(table);
        const Command draw = rows.DrawCommand();
        WriteScope scope(*this, isGiven || !NumbersAhead_[table->Id].empty() ? nullptr : &draw);
        // The check of a memo is told by the row's id, so that the id is known before.
        if (!isGiven)
            id = scope.Together() ? scope.Together()->Integer(0, 0) : DrawCounter(table);
        const Command insert = rows.InsertCommand(id, values);
        const auto isUnique = [&](const IndexKey& index) { return IsUniqueBesideId(*table, index); };
        if (Leave(insert, std::none_of(table->Indexes.begin(), table->Indexes.end(), isUnique)))
            scope.Commit();
        else
            scope.RunAndCommit({insert});
        return id;
    });
}

void ServerStore::Update(const TablePtr& table, qint64 id, qint64 version, std::span<const engine::Assignment> values)
{
    engine::CheckPrimaryKey(*table, values, engine::RowIs::There);
    Retried([&] {
        const bool isCertain = IsCertain(table, id, version) && !IsKeyChanged(*table, values);
        WriteScope scope(*this);
        RowAccess rows = Rows(table);
        const Command update = rows.UpdateCommand(id, version, values);
        if (Leave(update, isCertain)) {
            scope.Commit();
            return;
        }
        const auto result = scope.RunAndCommit({update});
        if (result && result->front().ChangedRows() > 0)
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
        const bool isCertain = IsCertain(table, id, Known_.Content.Version);
        WriteScope scope(*this);
        const Command removal = Rows(table).DeleteCommand(id);
        if (Leave(removal, isCertain)) {
            scope.Commit();
            return;
        }
        const auto result = scope.RunAndCommit({removal});
        if (result && result->front().ChangedRows() == 0)
            RaiseDeleted();
    });
}

} // namespace dao::postgres
