// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/SqliteStore.h"

#include "platform/records/engines/PrimaryKey.h"
#include "platform/records/engines/sqlite/FileFormat.h"
#include "platform/records/engines/sqlite/FileIdentity.h"
#include "platform/records/engines/sqlite/MemoBlob.h"
#include "platform/records/engines/sqlite/SchemaTables.h"
#include "platform/records/engines/sqlite/StoreScopes.h"

#include <QtEndian>

#include <algorithm>
#include <array>

namespace dao::sqlite
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
constexpr int SchemaCookieOffset = 40;

/// Rows that lie side by side in the file are read faster in one run than one by one.
bool IsDenseRun(std::span<const qint64> ids)
{
    const bool rises = std::adjacent_find(ids.begin(), ids.end(), std::greater_equal<>()) == ids.end();
    if (ids.size() < 2 || !rises || ids.front() < 0)
        return false;
    return ids.back() - ids.front() < 2 * static_cast<qint64>(ids.size());
}

} // namespace

SqliteStore::SqliteStore(const QString& fileName, bool readOnly)
    // Opened for writing also by one who only reads: a transaction that another process left half done when it died
    // has to be taken back before anything can be read.
    : Connection_(fileName, Connection::Mode::ReadWrite),
      IsReadOnly_(readOnly || Connection_.IsReadOnly()),
      CounterMarks_(Connection_),
      Counters_(CounterMarks_),
      Begin_(Connection_, "BEGIN"),
      BeginImmediate_(Connection_, "BEGIN IMMEDIATE"),
      Commit_(Connection_, "COMMIT")
{
    if (Connection_.Number("PRAGMA application_id") != ApplicationId)
        throw Error(errUnrecognisedFormat, QStringLiteral("Unrecognised database format '%1'.").arg(fileName));
    CheckLength();
    ReadSchemaUnderLock();
}

void SqliteStore::CheckLength()
{
    // SQLite itself sees a file that lost whole pages, but takes the missing end of the last one for zeros.
    const ReadScope scope(*this);
    const qint64 wanted = Connection_.Number("PRAGMA page_count") * Connection_.Number("PRAGMA page_size");
    sqlite3_file* file = nullptr;
    sqlite3_int64 size = 0;
    sqlite3_file_control(Connection_.Handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (file == nullptr || file->pMethods == nullptr || file->pMethods->xFileSize(file, &size) != SQLITE_OK)
        throw Error(errDiskError, QStringLiteral("Disk or network error on '%1'.").arg(Connection_.FileName()));
    if (size < wanted)
        throw Error(errFileDamaged,
                    QStringLiteral("The database '%1' is damaged: its end is missing.").arg(Connection_.FileName()));
}

SqliteStore::~SqliteStore()
{
    Connection_.Abandon();
    Transaction_ = Transaction::None;
    const bool isRestoreDue = Counters_.TakenBack();
    if (IsReadOnly_ || (!isRestoreDue && !Counters_.HasRest()))
        return;
    try {
        WriteScope scope(*this);
        Counters_.Restore();
        Counters_.Return();
        scope.Commit();
    } catch (const Error&) {
        // Numbers are left out, or those of rows that were taken back are drawn once more; no row is concerned.
    }
}

bool SqliteStore::MayServeAgain()
{
    return !IsReadOnly_ && Transaction_ == Transaction::None && !Counters_.HasRest() && !Counters_.TakenBack();
}

bool SqliteStore::IsAsNew(const QString& fileName)
{
    if (!MayServeAgain() || Connection_.FileName() != fileName)
        return false;
    try {
        // Raises where a backup was put in the file's place.
        CurrentSchema();
    } catch (const Error&) {
        return false;
    }
    return !Connection_.HasMoved();
}

QString SqliteStore::Version() const
{
    return QString::fromLatin1(VersionText);
}

qint64 SqliteStore::CookieInFile() const
{
    // A read past SQLite's locks: four octets that may be in the middle of a change. It serves only to see that
    // nothing changed since, which it must not cost a lock to find out; a difference is looked at under the lock.
    sqlite3_file* file = nullptr;
    if (sqlite3_file_control(Connection_.Handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK ||
        file == nullptr || file->pMethods == nullptr)
        return -1;
    std::array<uchar, 4> octets{};
    if (file->pMethods->xRead(file, octets.data(), static_cast<int>(octets.size()), SchemaCookieOffset) != SQLITE_OK)
        return -1;
    return qFromBigEndian<quint32>(octets.data());
}

void SqliteStore::RequireSameFile()
{
    // A restore changes the cookie. In a transaction of our own nobody can.
    if (IsReplaced_ || (Transaction_ != Transaction::Started && CookieInFile() != Cookie_))
        ReadSchemaUnderLock();
}

SchemaPtr SqliteStore::CurrentSchema()
{
    // In a transaction of our own nobody else changes anything, and our own changes are read at once.
    if (!Connection_.IsInTransaction() && CookieInFile() != Cookie_)
        ReadSchemaUnderLock();
    return Schema_;
}

SchemaPtr SqliteStore::SchemaUnderLock()
{
    if (CookieInFile() != Cookie_)
        ReadSchemaUnderLock();
    return Schema_;
}

SchemaPtr SqliteStore::ReadSchemaUnderLock()
{
    if (IsReplaced_)
        throw FileExchanged(Connection_.FileName());
    ReadScope scope(*this);
    const qint64 cookie = Connection_.Number("PRAGMA schema_version");
    if (Schema_ && cookie == Cookie_)
        return Schema_;
    const qint64 identity = ReadIdentity(Connection_);
    if (Schema_ && identity != Identity_) {
        IsReplaced_ = true;
        throw FileExchanged(Connection_.FileName());
    }
    SchemaPtr schema = ReadSchema(Connection_, Schema_);
    const bool hasChecks = FormatOf(Connection_) != FormatVersionWithoutChecks;
    if (hasChecks != HasChecks_) {
        // A compaction gave its rows another layout.
        Accesses_.clear();
        AccessedTables_.clear();
        HasChecks_ = hasChecks;
    }
    std::erase_if(AccessedTables_, [&](const TablePtr& table) {
        const bool isGone = schema->Find(table->Name) != table;
        if (isGone)
            Accesses_.erase(table.get());
        return isGone;
    });
    Schema_ = std::move(schema);
    Cookie_ = cookie;
    Identity_ = identity;
    return Schema_;
}

TablePtr SqliteStore::RequireTable(const QString& name)
{
    TablePtr table = CurrentSchema()->Find(name);
    if (!table)
        throw Error(errTableNotFound, QStringLiteral("The input table or query '%1' was not found.").arg(name));
    return table;
}

TableAccess& SqliteStore::Access(const TablePtr& table)
{
    auto& access = Accesses_[table.get()];
    if (!access) {
        access = std::make_unique<TableAccess>(Connection_, table, HasChecks_);
        AccessedTables_.push_back(table);
    }
    return *access;
}

void SqliteStore::AddTable(const Table& table)
{
    CheckName(table.Name);
    for (const Column& column : table.Columns)
        CheckName(column.Name);
    WriteScope scope(*this);
    if (ReadSchemaUnderLock()->Find(table.Name))
        throw Error(errTableExists, QStringLiteral("Table '%1' already exists.").arg(table.Name));
    WriteTable(Connection_, table);
    ReadSchemaUnderLock();
    scope.Commit();
}

void SqliteStore::AddColumn(const QString& tableName, const Column& column)
{
    CheckName(column.Name);
    WriteScope scope(*this);
    ReadSchemaUnderLock();
    const TablePtr table = RequireTable(tableName);
    if (table->FindColumn(column.Name) >= 0) {
        throw Error(errTableExists,
                    QStringLiteral("Field '%1' already exists in table '%2'.").arg(column.Name, table->Name));
    }
    if (column.IsCounter() && table->CounterColumn() >= 0) {
        throw Error(errNotSupported, QStringLiteral("Table '%1' has an automatic counter already.").arg(table->Name));
    }
    WriteColumn(Connection_, *table, column);
    ReadSchemaUnderLock();
    scope.Commit();
}

void SqliteStore::AddIndex(const QString& tableName, const IndexKey& index)
{
    WriteScope scope(*this);
    ReadSchemaUnderLock();
    const TablePtr table = RequireTable(tableName);
    if (table->FindIndex(index.Name) >= 0) {
        throw Error(errTableExists,
                    QStringLiteral("Index '%1' already exists in table '%2'.").arg(index.Name, table->Name));
    }
    if (index.Name.isEmpty() || index.Name.contains(QChar(u'\0')) || index.Columns.size() > LargestIndex)
        throw Error(errNotSupported, QStringLiteral("'%1' is not a valid index.").arg(index.Name));
    WriteIndex(Connection_, *table, index);
    ReadSchemaUnderLock();
    scope.Commit();
}

bool SqliteStore::ReadEnd(const TablePtr& table, int index, Direction direction, MemoFetch memos, Row& row)
{
    Connection_.StartWaiting();
    RequireSameFile();
    return Access(table).ReadEnd(index, direction, memos, row);
}

bool SqliteStore::ReadNext(const TablePtr& table, int index, Direction direction, MemoFetch memos, Row& row)
{
    Connection_.StartWaiting();
    RequireSameFile();
    return Access(table).ReadNext(index, direction, memos, row);
}

bool SqliteStore::Seek(const TablePtr& table, int index, SeekComparison comparison, std::span<const StoredValue> keys,
                       MemoFetch memos, Row& row)
{
    Connection_.StartWaiting();
    RequireSameFile();
    return Access(table).Seek(index, comparison, keys, memos, row);
}

std::vector<Row> SqliteStore::ReadRows(const TablePtr& table, std::span<const qint64> ids, MemoFetch memos,
                                       qint64 octetBudget)
{
    ReadScope scope(*this);
    TableAccess& access = Access(table);
    std::vector<Row> rows;
    rows.reserve(ids.size());
    qint64 octets = 0;
    for (const qint64 id : ids) {
        if (octets > octetBudget)
            break;
        Row& row = rows.emplace_back();
        if (!access.ReadRow(id, memos, row))
            row.Id = engine::NoRow;
        octets += static_cast<qint64>(row.Cells.size());
    }
    // Behind the reads, and under their lock: the ids are those of rows that were found before.
    RequireSameFile();
    return rows;
}

std::vector<engine::StoredMemo> SqliteStore::ReadMemos(const TablePtr& table, int column, std::span<const qint64> ids,
                                                       qint64 octetBudget)
{
    const bool isRun = IsDenseRun(ids);
    ReadScope scope(*this, ids.size() > 1 && !isRun);
    TableAccess& access = Access(table);
    std::vector<engine::StoredMemo> memos;
    if (isRun) {
        memos = access.Memos().ReadRange(column, ids, octetBudget);
        RequireSameFile();
        return memos;
    }
    memos.reserve(ids.size());
    qint64 octets = 0;
    for (const qint64 id : ids) {
        if (octets > octetBudget)
            break;
        memos.push_back(access.Memos().Read(column, id));
        octets += memos.back().Size();
    }
    RequireSameFile();
    return memos;
}

std::vector<std::optional<MemoBeginning>>
SqliteStore::ReadMemoBeginnings(const TablePtr& table, int column, std::span<const qint64> ids, qsizetype mostOctets)
{
    ReadScope scope(*this, ids.size() > 1);
    TableAccess& access = Access(table);
    MemoBlob blob(Connection_, *table, column);
    std::vector<std::optional<MemoBeginning>> beginnings;
    beginnings.reserve(ids.size());
    for (const qint64 id : ids) {
        beginnings.push_back(blob.Beginning(id, mostOctets));
        if (beginnings.back())
            continue;
        const engine::StoredMemo memo = access.Memos().Read(column, id);
        if (memo.HasRow)
            beginnings.back() = engine::BeginningOf(memo, mostOctets);
    }
    RequireSameFile();
    return beginnings;
}

int SqliteStore::CountRows(const TablePtr& table)
{
    Connection_.StartWaiting();
    RequireSameFile();
    return static_cast<int>(Access(table).CountRows());
}

qint64 SqliteStore::LastCounter(const TablePtr& table)
{
    Connection_.StartWaiting();
    RequireSameFile();
    return Counters_.Mark(table->Id);
}

void SqliteStore::RaiseCounter(const TablePtr& table, qint64 last)
{
    WriteScope scope(*this);
    Counters_.Raise(table->Id, last);
    scope.Commit();
}

qint64 SqliteStore::DrawCounter(const TablePtr& table)
{
    if (!Counters_.HasNumber(table->Id)) {
        try {
            WriteScope scope(*this);
            Counters_.Reserve(table->Id);
            scope.Commit();
        } catch (...) {
            Counters_.GiveUp(table->Id);
            throw;
        }
    }
    return Counters_.Draw(table->Id);
}

qint64 SqliteStore::Insert(const TablePtr& table, std::span<const engine::Assignment> values)
{
    engine::CheckPrimaryKey(*table, values, engine::RowIs::New);
    WriteScope scope(*this);
    SchemaUnderLock();
    const qint64 id = Access(table).Insert(values);
    scope.Commit();
    return id;
}

void SqliteStore::Update(const TablePtr& table, qint64 id, qint64 version, std::span<const engine::Assignment> values)
{
    engine::CheckPrimaryKey(*table, values, engine::RowIs::There);
    WriteScope scope(*this);
    SchemaUnderLock();
    TableAccess& access = Access(table);
    if (!access.Update(id, version, values)) {
        if (access.Exists(id))
            throw Error(errChangedByAnother,
                        QStringLiteral("The record was changed by another user since the edit began."));
        throw Error(errRecordDeleted, QStringLiteral("Record is deleted."));
    }
    scope.Commit();
}

void SqliteStore::Delete(const TablePtr& table, qint64 id)
{
    WriteScope scope(*this);
    if (!Access(table).Delete(id))
        throw Error(errRecordDeleted, QStringLiteral("Record is deleted."));
    scope.Commit();
}

} // namespace dao::sqlite
