// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/ContentReplacement.h"

#include "platform/files/FileSystem.h"
#include "platform/records/FileTools.h"
#include "platform/records/engines/sqlite/ChangeLog.h"
#include "platform/records/engines/sqlite/FileCopy.h"
#include "platform/records/engines/sqlite/FileIdentity.h"
#include "platform/records/engines/sqlite/SchemaTables.h"
#include "platform/records/engines/sqlite/SqlRenderer.h"
#include "platform/records/engines/sqlite/SqliteStore.h"

#include <QFileInfo>

#include <algorithm>
#include <array>

namespace dao::sqlite
{

namespace
{

/// What stands in the file, past SQLite's cache. Under a lock.
quint32 CounterInFile(Connection& connection)
{
    std::array<char, 100> header{};
    sqlite3_file* file = nullptr;
    const int code = sqlite3_file_control(connection.Handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (code != SQLITE_OK || file == nullptr || file->pMethods == nullptr ||
        file->pMethods->xRead(file, header.data(), static_cast<int>(header.size()), 0) != SQLITE_OK)
        throw Error(errDiskError, QStringLiteral("Disk or network error on '%1'.").arg(connection.FileName()));
    return ChangeCounterIn(header.data());
}

/// A lock of a reader, for a scope.
class Reading
{
public:
    explicit Reading(Connection& connection) : Connection_(connection), IsOwn_(!connection.IsInTransaction())
    {
        if (!IsOwn_)
            return;
        connection.StartWaiting();
        connection.Execute("BEGIN");
        connection.Number("PRAGMA schema_version"); // the lock comes with the first read
    }
    ~Reading()
    {
        if (IsOwn_)
            Connection_.Abandon();
    }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

private:
    Connection& Connection_;
    bool IsOwn_;
};

qint64 CountRows(Connection& connection, const QString& table)
{
    return connection.Number(("SELECT count(*) FROM " + QuoteName(table)).constData());
}

/// The highest number that a table's counter ever gave, as far as it can be told.
qint64 HighestNumber(Connection& connection, const engine::Table& table)
{
    const QByteArray mark = "SELECT Counter FROM \"~Tables\" WHERE Id=" + QByteArray::number(table.Id);
    return std::max(connection.Number(mark.constData()),
                    connection.Number(("SELECT max(_rowid_) FROM " + QuoteName(table.Name)).constData()));
}

struct CounterMark
{
    QString Table;
    qint64 Highest;
};

/// What can be read of them: a file that is replaced may be damaged.
std::vector<CounterMark> ReadableCounters(const QString& file)
{
    std::vector<CounterMark> marks;
    try {
        Connection connection(file, Connection::Mode::ReadOnly);
        const engine::SchemaPtr schema = ReadSchema(connection, nullptr);
        for (const engine::TablePtr& table : schema->Tables) {
            if (table->CounterColumn() < 0)
                continue;
            try {
                connection.StartWaiting();
                marks.push_back({table->Name, HighestNumber(connection, *table)});
            } catch (const Error& error) {
                if (error.Number() == errLocked)
                    throw;
            }
        }
    } catch (const Error& error) {
        if (error.Number() == errLocked)
            throw;
    }
    return marks;
}

/// Ends the exchange on every way out; what was not finished is taken back.
class Backup
{
public:
    Backup(Connection& target, Connection& source)
        : Target_(target), Handle_(sqlite3_backup_init(target.Handle(), "main", source.Handle(), "main"))
    {
        if (Handle_ == nullptr)
            target.Raise(sqlite3_errcode(target.Handle()));
    }
    ~Backup() { sqlite3_backup_finish(Handle_); }
    Backup(const Backup&) = delete;
    Backup& operator=(const Backup&) = delete;

    /// True while there is more.
    bool Step(int pages)
    {
        const int code = sqlite3_backup_step(Handle_, pages);
        if (code == SQLITE_OK)
            return true;
        if (code == SQLITE_DONE)
            return false;
        throw ErrorOf(code, QString::fromUtf8(sqlite3_errstr(code)), Target_.FileName());
    }

private:
    Connection& Target_;
    sqlite3_backup* Handle_;
};

/// Says what is wrong with a file that cannot be opened, and takes back what a dead process left half done.
QString Probed(const QString& file)
{
    const SqliteStore probe(file, true);
    return file;
}

} // namespace

ContentReplacement::ContentReplacement(const QString& file)
    : File_(Probed(file)), Holder_(file, Connection::Mode::ReadWrite), Destination_(file, Connection::Mode::ReadWrite)
{
    // Where the account may write, it is the file's own beginning that forbids it.
    if (Destination_.IsReadOnly() && FileSystem::Current().MayWrite(file).IsDone())
        throw Error(errFileDamaged, QStringLiteral("The database '%1' is damaged: its beginning.").arg(file));
    if (Destination_.IsReadOnly())
        throw Error(errCannotOpen, QStringLiteral("Cannot change '%1': it is read only or in use.").arg(file));
    Holder_.WaitEagerly();
    Destination_.WaitEagerly();
}

void ContentReplacement::Note(bool keepsWritersOut)
{
    Holder_.Abandon();
    if (keepsWritersOut) {
        Holder_.StartWaiting();
        Holder_.Execute("BEGIN IMMEDIATE");
    }
    const Reading reading(Holder_);
    Noted_ = CounterInFile(Holder_);
}

bool ContentReplacement::IsAsNoted()
{
    const Reading reading(Holder_);
    return CounterInFile(Holder_) == Noted_;
}

void ContentReplacement::KeepAs(const QString& keepName, const engine::CopyProgress& progress)
{
    TemporaryFile copy(keepName);
    copy.Vacate();
    CopyFile(File_, copy.Name(), progress);
    copy.CopyAccess(File_);
    copy.MoveTo(keepName);
}

void ContentReplacement::RequireSameRows(const QString& replacement)
{
    const Reading reading(Holder_);
    if (CounterInFile(Holder_) != Noted_)
        return; // Put finds out, and nothing is compared with what the copy was not made from.
    Connection copy(replacement, Connection::Mode::ReadOnly);
    const engine::SchemaPtr schema = ReadSchema(Holder_, nullptr);
    const engine::SchemaPtr copied = ReadSchema(copy, nullptr);
    for (const engine::TablePtr& table : schema->Tables) {
        if (copied->Find(table->Name) && CountRows(Holder_, table->Name) == CountRows(copy, table->Name))
            continue;
        throw Error(
            errFileDamaged,
            QStringLiteral("The copy of '%1' does not hold what its table '%2' holds.").arg(File_, table->Name));
    }
}

bool ContentReplacement::Put(const QString& replacement)
{
    Connection source(replacement, Connection::Mode::ReadOnly);
    // The first step takes the lock and must leave something to do behind the look at the counter.
    if (source.Number("PRAGMA page_count") < 2)
        throw Error(errFileDamaged, QStringLiteral("The database '%1' is damaged.").arg(replacement));
    Backup backup(Destination_, source);
    Destination_.StartWaiting();
    // From here to the lock of the first step somebody may commit, which the counter then tells.
    Holder_.Abandon();
    bool isMore = backup.Step(1);
    if (CounterInFile(Destination_) != Noted_)
        return false;
    while (isMore)
        isMore = backup.Step(-1);
    return true;
}

void MarkFileAsRestored(const QString& replacement, const QString& replaced)
{
    const std::vector<CounterMark> marks = ReadableCounters(replaced);
    Connection connection(replacement, Connection::Mode::ReadWrite);
    connection.Execute("BEGIN IMMEDIATE");
    const engine::SchemaPtr schema = ReadSchema(connection, nullptr);
    for (const engine::TablePtr& table : schema->Tables) {
        if (table->CounterColumn() < 0)
            continue;
        qint64 highest = HighestNumber(connection, *table);
        for (const CounterMark& mark : marks) {
            if (mark.Table.compare(table->Name, Qt::CaseInsensitive) == 0)
                highest = std::max(highest, mark.Highest);
        }
        connection.Execute("UPDATE \"~Tables\" SET Counter=" + QByteArray::number(highest) +
                           " WHERE Id=" + QByteArray::number(table->Id));
    }
    WriteNewIdentity(connection);
    connection.Execute("COMMIT");
}

} // namespace dao::sqlite
