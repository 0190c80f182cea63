// SPDX-License-Identifier: Apache-2.0
#include "messages/search/IndexConnection.h"

#include "messages/search/SearchFailure.h"

#include <QDir>

namespace
{
constexpr int WaitingMilliseconds = 2000;

SearchFailure::Reason ReasonOf(int code)
{
    switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return SearchFailure::Reason::Busy;
    case SQLITE_FULL:
        return SearchFailure::Reason::Full;
    case SQLITE_READONLY:
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return SearchFailure::Reason::NoAccess;
    case SQLITE_INTERRUPT:
        return SearchFailure::Reason::Interrupted;
    case SQLITE_IOERR:
        // A write that fails is mostly one without room; a read that ends early is a file that was cut.
        return code == SQLITE_IOERR_SHORT_READ || code == SQLITE_IOERR_CORRUPTFS ? SearchFailure::Reason::Damaged
                                                                                 : SearchFailure::Reason::Full;
    default:
        return SearchFailure::Reason::Damaged;
    }
}

QString WordsOf(SearchFailure::Reason reason, const QString& file)
{
    const QString name = QDir::toNativeSeparators(file);
    switch (reason) {
    case SearchFailure::Reason::Busy:
        return QStringLiteral("The search index is in use by another program. Try again in a moment.");
    case SearchFailure::Reason::Full:
        return QStringLiteral("The search index in %1 cannot be written: the disk is full or fails. Make room there; "
                              "the station itself is not concerned.")
            .arg(name);
    case SearchFailure::Reason::NoAccess:
        return QStringLiteral("The search index in %1 cannot be written: this account may not write there. Its "
                              "technician can allow it; the station itself is not concerned.")
            .arg(name);
    case SearchFailure::Reason::Interrupted:
        return QStringLiteral("The search was ended.");
    case SearchFailure::Reason::Damaged:
        break;
    }
    return QStringLiteral("The search index in %1 is damaged and is made anew; the station itself is not concerned.")
        .arg(name);
}
} // namespace

IndexConnection::IndexConnection(const QString& file) : File_(file)
{
    const int code = sqlite3_open_v2(file.toUtf8().constData(), &Handle_,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    try {
        if (code != SQLITE_OK)
            Raise(code);
        sqlite3_busy_timeout(Handle_, WaitingMilliseconds);
        // The log is on the disk when it is merged into the file: a power cut loses the last minutes, not the rest.
        for (const char* setting :
             {"auto_vacuum=INCREMENTAL", "journal_mode=WAL", "synchronous=NORMAL", "secure_delete=ON",
              "temp_store=MEMORY", "cache_size=-8000", "trusted_schema=OFF", "cell_size_check=ON"})
            Execute(QByteArrayLiteral("PRAGMA ") + setting);
    } catch (...) {
        sqlite3_close_v2(Handle_);
        throw;
    }
}

IndexConnection::~IndexConnection()
{
    Statements_.clear();
    sqlite3_close_v2(Handle_);
}

void IndexConnection::Raise(int code) const
{
    const SearchFailure::Reason reason = ReasonOf(code);
    throw SearchFailure(reason, WordsOf(reason, File_));
}

void IndexConnection::Execute(const QByteArray& sql)
{
    const int code = sqlite3_exec(Handle_, sql.constData(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        Raise(code);
}

qint64 IndexConnection::Number(const QByteArray& sql)
{
    IndexStatement& statement = Statement(sql);
    const qint64 number = statement.Step() ? statement.Integer(0) : 0;
    statement.Reset();
    return number;
}

IndexStatement& IndexConnection::Statement(const QByteArray& sql)
{
    constexpr std::size_t MostKept = 400;
    if (Statements_.size() >= MostKept)
        Statements_.clear();
    const auto found = Statements_.try_emplace(sql.toStdString(), *this, sql).first;
    found->second.Reset();
    return found->second;
}

bool IndexConnection::HasMoved() const
{
    int moved = 0;
    sqlite3_file_control(Handle_, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

bool IndexConnection::EmptyLog()
{
    return sqlite3_wal_checkpoint_v2(Handle_, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr) == SQLITE_OK;
}

IndexStatement::IndexStatement(IndexConnection& connection, const QByteArray& sql) : Connection_(&connection)
{
    sqlite3_stmt* handle = nullptr;
    const int code =
        sqlite3_prepare_v2(connection.Handle(), sql.constData(), static_cast<int>(sql.size()), &handle, nullptr);
    Handle_.reset(handle);
    if (code != SQLITE_OK)
        connection.Raise(code);
}

IndexStatement& IndexStatement::Bind(int place, qint64 value)
{
    sqlite3_bind_int64(Handle_.get(), place, value);
    return *this;
}

IndexStatement& IndexStatement::Bind(int place, std::string_view utf8)
{
    sqlite3_bind_text(Handle_.get(), place, utf8.empty() ? "" : utf8.data(), static_cast<int>(utf8.size()),
                      SQLITE_STATIC);
    return *this;
}

bool IndexStatement::Step()
{
    const int code = sqlite3_step(Handle_.get());
    if (code != SQLITE_ROW && code != SQLITE_DONE) {
        sqlite3_reset(Handle_.get());
        Connection_->Raise(code);
    }
    return code == SQLITE_ROW;
}

void IndexStatement::Run()
{
    while (Step()) {
    }
    Reset();
}

std::string_view IndexStatement::Text(int column) const
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(Handle_.get(), column));
    return text == nullptr
               ? std::string_view()
               : std::string_view(text, static_cast<std::size_t>(sqlite3_column_bytes(Handle_.get(), column)));
}

IndexChange::IndexChange(IndexConnection& connection) : Connection_(connection)
{
    Connection_.Execute("BEGIN IMMEDIATE");
}

IndexChange::~IndexChange()
{
    if (!IsOver_)
        sqlite3_exec(Connection_.Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void IndexChange::Commit()
{
    Connection_.Execute("COMMIT");
    IsOver_ = true;
}
