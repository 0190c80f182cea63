// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/SqliteConnection.h"

#include "platform/files/FileSystem.h"
#include "platform/records/LockPatience.h"
#include "platform/records/engines/sqlite/ChangeLog.h"
#include "platform/records/engines/sqlite/SqlFunctions.h"

#include <QDir>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <cerrno>

namespace dao::sqlite
{

namespace
{

constexpr unsigned long EagerPauseMicroseconds = 100;
constexpr int CacheKibibytes = 8192;

/// SQLite writes its journal through no link either, but does not say so. A file that is reached through a link has its
/// journal beside itself.
void RequireOwnJournal(const QString& fileName)
{
    const QString canonical = QFileInfo(fileName).canonicalFilePath();
    const QString journal = (canonical.isEmpty() ? fileName : canonical) + QStringLiteral("-journal");
    if (FileSystem::Current().KindOf(journal) == FileKind::Link) {
        throw Error(errCannotOpen,
                    QStringLiteral("Cannot open '%1': its journal '%2' is a link.").arg(fileName, journal));
    }
}

} // namespace

Error FileExchanged(const QString& fileName)
{
    if (!QFileInfo::exists(fileName))
        return Error(errDiskError, QStringLiteral("The database '%1' is not there any more.").arg(fileName));
    return Error(errFileReplaced, QStringLiteral("The database '%1' was put back from a backup while it was open. It "
                                                 "has to be opened anew.")
                                      .arg(fileName));
}

Error ErrorOf(int extendedCode, const QString& message, const QString& fileName)
{
    const QString words = QStringLiteral(" (%1)").arg(message);
    switch (extendedCode & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return Error(errLocked, QStringLiteral("Could not update; currently locked by another user."));
    case SQLITE_CONSTRAINT:
        if (extendedCode == SQLITE_CONSTRAINT_NOTNULL)
            return Error(errInvalidUseOfNull, QStringLiteral("Index or primary key cannot contain a Null value."));
        return Error(errDuplicateValue, QStringLiteral("The change would create duplicate values in a unique index."));
    case SQLITE_CORRUPT:
        return Error(errFileDamaged, QStringLiteral("The database '%1' is damaged.").arg(fileName) + words);
    case SQLITE_NOTADB:
        return Error(errUnrecognisedFormat, QStringLiteral("Unrecognised database format '%1'.").arg(fileName));
    case SQLITE_FULL:
        return Error(errDiskFull, QStringLiteral("Not enough space on disk for '%1': the disk is full.").arg(fileName));
    case SQLITE_IOERR:
        if (extendedCode == SQLITE_IOERR_NOMEM)
            break;
        if (extendedCode == SQLITE_IOERR_CORRUPTFS)
            return Error(errFileDamaged, QStringLiteral("The database '%1' is damaged.").arg(fileName) + words);
        return Error(errDiskError, QStringLiteral("Disk or network error on '%1'.").arg(fileName) + words);
    case SQLITE_READONLY:
        if (extendedCode == SQLITE_READONLY_DBMOVED)
            return FileExchanged(fileName);
        [[fallthrough]];
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return Error(errCannotOpen,
                     QStringLiteral("Cannot change '%1': it is read only or in use.").arg(fileName) + words);
    case SQLITE_CANTOPEN:
        return Error(errCannotOpen,
                     QStringLiteral("Cannot open '%1': it is in use, or permission is missing.").arg(fileName) + words);
    case SQLITE_TOOBIG:
        return Error(errFieldTooSmall, QStringLiteral("The value is too large for the field."));
    case SQLITE_NOMEM:
        break;
    case SQLITE_INTERRUPT:
        return Error(errCancelled, QStringLiteral("The operation was cancelled."));
    default:
        // The structure that our own tables describe is not what the file holds.
        return Error(errFileDamaged, QStringLiteral("The database '%1' is damaged.").arg(fileName) + words);
    }
    return Error(errOutOfMemory, QStringLiteral("Not enough memory."));
}

Statement::Statement(Connection& connection, const QByteArray& text) : Connection_(&connection)
{
    sqlite3_stmt* handle = nullptr;
    const int code = sqlite3_prepare_v3(connection.Handle(), text.constData(), static_cast<int>(text.size()) + 1,
                                        SQLITE_PREPARE_PERSISTENT, &handle, nullptr);
    if (code != SQLITE_OK)
        connection.Raise(code);
    Handle_.reset(handle);
}

StatementUse::~StatementUse()
{
    sqlite3_reset(Handle_);
    sqlite3_clear_bindings(Handle_);
}

void StatementUse::Check(int code)
{
    if (code != SQLITE_OK)
        Connection_.Raise(code);
}

void StatementUse::BindNull(int place)
{
    Check(sqlite3_bind_null(Handle_, place));
}

void StatementUse::Bind(int place, qint64 value)
{
    Check(sqlite3_bind_int64(Handle_, place, value));
}

void StatementUse::Bind(int place, double value)
{
    Check(sqlite3_bind_double(Handle_, place, value));
}

void StatementUse::Bind(int place, std::string_view utf8)
{
    // A null pointer would bind Null instead of the empty text.
    const char* data = utf8.data() != nullptr ? utf8.data() : "";
    Check(sqlite3_bind_text64(Handle_, place, data, utf8.size(), SQLITE_STATIC, SQLITE_UTF8));
}

void StatementUse::Bind(int place, const StoredValue& value)
{
    if (const auto* integer = std::get_if<qint64>(&value))
        Bind(place, *integer);
    else if (const auto* real = std::get_if<double>(&value))
        Bind(place, *real);
    else if (const auto* text = std::get_if<QByteArray>(&value))
        Bind(place, std::string_view(text->constData(), static_cast<std::size_t>(text->size())));
    else
        BindNull(place);
}

bool StatementUse::Step()
{
    const int code = sqlite3_step(Handle_);
    if (code == SQLITE_ROW)
        return true;
    if (code == SQLITE_DONE)
        return false;
    Connection_.Raise(code);
}

void StatementUse::Run()
{
    while (Step()) {
    }
}

std::string_view StatementUse::Text(int column) const
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(Handle_, column));
    if (text == nullptr) {
        if (!IsNull(column))
            Connection_.Raise(SQLITE_NOMEM);
        return {};
    }
    return {text, static_cast<std::size_t>(sqlite3_column_bytes(Handle_, column))};
}

void StatementUse::PackCell(int column, RowPacker& packer) const
{
    // One look-up of the value, instead of one for each question about it: lists ask a million times.
    sqlite3_value* value = sqlite3_column_value(Handle_, column);
    switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
        packer.AddInteger(sqlite3_value_int64(value));
        break;
    case SQLITE_FLOAT:
        packer.AddReal(sqlite3_value_double(value));
        break;
    case SQLITE_NULL:
        packer.AddNull();
        break;
    default: {
        const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
        if (text == nullptr)
            Connection_.Raise(SQLITE_NOMEM);
        packer.AddText({text, static_cast<std::size_t>(sqlite3_value_bytes(value))});
        break;
    }
    }
}

Connection::Connection(const QString& fileName, Mode mode) : FileName_(fileName)
{
    const int access = mode == Mode::ReadOnly ? SQLITE_OPEN_READONLY
                       : mode == Mode::Create ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE
                                              : SQLITE_OPEN_READWRITE;
    RequireOwnJournal(fileName);
    StartWaiting();
    const int code = sqlite3_open_v2(QDir::toNativeSeparators(fileName).toUtf8().constData(), &Handle_,
                                     access | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE | SQLITE_OPEN_EXRESCODE,
                                     LoggingVfsName());
    try {
        if (code != SQLITE_OK)
            Raise(code);
        sqlite3_busy_handler(Handle_, &Connection::Busy, this);
        // A file from elsewhere must not be able to run anything or reach outside itself.
        sqlite3_db_config(Handle_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
        sqlite3_db_config(Handle_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
        sqlite3_db_config(Handle_, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
        sqlite3_db_config(Handle_, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
        sqlite3_db_config(Handle_, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
        sqlite3_db_config(Handle_, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
        RegisterSqlFunctions(Handle_);
        // A rollback journal, because the file may lie on a network share, and one that is cut to nothing at the end
        // of a commit rather than deleted: SQLite syncs the cut, so that a journal cannot come back after a power
        // failure and undo what was acknowledged, and it saves the sync of the folder.
        Execute("PRAGMA journal_mode=TRUNCATE");
        Execute("PRAGMA synchronous=FULL");
        Execute("PRAGMA cell_size_check=ON");
        Execute(QByteArrayLiteral("PRAGMA cache_size=-") + QByteArray::number(CacheKibibytes));
    } catch (...) {
        sqlite3_close_v2(Handle_);
        throw;
    }
}

Connection::~Connection()
{
    RemoveEmptyJournal();
    sqlite3_close_v2(Handle_);
}

bool Connection::HasMoved() const
{
    int hasMoved = 0;
    return sqlite3_file_control(Handle_, "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved) != SQLITE_OK || hasMoved != 0;
}

void Connection::RemoveEmptyJournal() noexcept
{
    // A file that was renamed while it was open is not the one that its journal's name belongs to now.
    if (IsReadOnly() || HasMoved())
        return;
    const QFileInfo journal(QString::fromUtf8(sqlite3_filename_journal(sqlite3_db_filename(Handle_, "main"))));
    if (!journal.isFile() || journal.size() > 0)
        return;
    // SQLite deletes it under the lock of a writer, so that nobody can be using it; whoever has that lock now keeps
    // the journal, and removes it in turn. Nothing is lost with an empty journal that stays, so nobody is waited for.
    sqlite3_busy_handler(Handle_, nullptr, nullptr);
    sqlite3_exec(Handle_, "PRAGMA journal_mode=DELETE", nullptr, nullptr, nullptr);
}

int Connection::Busy(void* self, int count)
{
    const auto* connection = static_cast<Connection*>(self);
    const qint64 left = LockPatience::Milliseconds() - connection->Waiting_.elapsed();
    if (left <= 0)
        return 0;
    if (connection->IsEager_)
        QThread::usleep(EagerPauseMicroseconds);
    else
        QThread::msleep(static_cast<unsigned long>(std::min<qint64>({left, 1 + count, 20})));
    return 1;
}

void Connection::Execute(const char* sql)
{
    const int code = sqlite3_exec(Handle_, sql, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        Raise(code);
}

qint64 Connection::Number(const char* sql)
{
    const Statement statement(*this, sql);
    StatementUse use(statement);
    return use.Step() ? use.Integer(0) : 0;
}

void Connection::Raise(int code)
{
    const QString message =
        Handle_ != nullptr ? QString::fromUtf8(sqlite3_errmsg(Handle_)) : QString::fromUtf8(sqlite3_errstr(code));
    // A journal that cannot be made because the disk is full.
    if ((code & 0xFF) == SQLITE_CANTOPEN && Handle_ != nullptr && sqlite3_system_errno(Handle_) == ENOSPC)
        throw ErrorOf(SQLITE_FULL, message, FileName_);
    const int extended = Handle_ != nullptr && (sqlite3_errcode(Handle_) & 0xFF) == (code & 0xFF)
                             ? sqlite3_extended_errcode(Handle_)
                             : code;
    throw ErrorOf(extended, message, FileName_);
}

void Connection::Abandon() noexcept
{
    if (Handle_ != nullptr && IsInTransaction())
        sqlite3_exec(Handle_, "ROLLBACK", nullptr, nullptr, nullptr);
}

} // namespace dao::sqlite
