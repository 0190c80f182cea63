// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Error.h"
#include "platform/records/RowFormat.h"

#include <QElapsedTimer>
#include <QString>

#include <sqlite3.h>

#include <memory>
#include <string_view>

namespace dao::sqlite
{

class Connection;

/// A prepared statement. Kept for reuse; each use goes through a StatementUse, which leaves it reset.
class Statement
{
public:
    Statement() = default;
    Statement(Connection& connection, const QByteArray& text);

    explicit operator bool() const { return Handle_ != nullptr; }
    sqlite3_stmt* Handle() const { return Handle_.get(); }

private:
    friend class StatementUse;
    struct Finalize
    {
        void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
    };
    std::unique_ptr<sqlite3_stmt, Finalize> Handle_;
    Connection* Connection_ = nullptr;
};

/// One run of a statement: bind, step, read, and reset at the end of the scope, so that no lock outlives the call.
/// Bound texts are not copied and must live as long.
class StatementUse
{
public:
    explicit StatementUse(const Statement& statement) : Handle_(statement.Handle()), Connection_(*statement.Connection_)
    {
    }
    ~StatementUse();
    StatementUse(const StatementUse&) = delete;
    StatementUse& operator=(const StatementUse&) = delete;

    sqlite3_stmt* Handle() const { return Handle_; }
    void BindNull(int place);
    void Bind(int place, qint64 value);
    void Bind(int place, double value);
    void Bind(int place, std::string_view utf8);
    void Bind(int place, const StoredValue& value);

    /// True when there is a row.
    bool Step();
    /// Runs a statement without rows to its end.
    void Run();
    /// Makes it ready for another run with the same or other values.
    void Reset() { sqlite3_reset(Handle_); }

    qint64 Integer(int column) const { return sqlite3_column_int64(Handle_, column); }
    bool IsNull(int column) const { return sqlite3_column_type(Handle_, column) == SQLITE_NULL; }
    std::string_view Text(int column) const;
    void PackCell(int column, RowPacker& packer) const;

private:
    void Check(int code);
    sqlite3_stmt* Handle_;
    Connection& Connection_;
};

/// An open SQLite file with the settings that the store's promises rest on.
class Connection
{
public:
    enum class Mode
    {
        ReadWrite,
        ReadOnly,
        Create
    };

    Connection(const QString& fileName, Mode mode);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    sqlite3* Handle() const { return Handle_; }
    const QString& FileName() const { return FileName_; }
    bool IsReadOnly() const { return sqlite3_db_readonly(Handle_, "main") != 0; }
    bool IsInTransaction() const { return sqlite3_get_autocommit(Handle_) == 0; }
    /// Whether the file's name belongs to another file by now, or to none, or nobody can tell.
    bool HasMoved() const;
    int Changes() const { return sqlite3_changes(Handle_); }

    /// The time that all waiting for other processes in one operation may take together starts now.
    void StartWaiting() { Waiting_.start(); }
    /// From now on looks for a free lock so often that it finds the moment between two commits of programs that write
    /// without a pause.
    void WaitEagerly() { IsEager_ = true; }
    void Execute(const char* sql);
    void Execute(const QByteArray& sql) { Execute(sql.constData()); }
    qint64 Number(const char* sql);

    /// Throws what the result code stands for.
    [[noreturn]] void Raise(int code);
    /// Rolls back without regard to failure: for clearing up behind another error.
    void Abandon() noexcept;

private:
    static int Busy(void* self, int count);
    void RemoveEmptyJournal() noexcept;

    sqlite3* Handle_ = nullptr;
    QString FileName_;
    QElapsedTimer Waiting_;
    bool IsEager_ = false;
};

/// What is said once a file's name belongs to another file, or its content to another state.
Error FileExchanged(const QString& fileName);

/// What a result code of SQLite is in the numbers of the record store. message: SQLite's own words.
Error ErrorOf(int extendedCode, const QString& message, const QString& fileName);

} // namespace dao::sqlite
