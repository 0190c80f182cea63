// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

class IndexConnection;

/// A prepared statement: bind, step, reset. Outlived by its connection.
class IndexStatement
{
public:
    IndexStatement(IndexConnection& connection, const QByteArray& sql);

    IndexStatement& Bind(int place, qint64 value);
    /// Not copied: lives until the next Reset.
    IndexStatement& Bind(int place, std::string_view utf8);
    /// True when there is a row.
    bool Step();
    /// Runs it without rows, and makes it ready again.
    void Run();
    void Reset() { sqlite3_reset(Handle_.get()); }
    qint64 Integer(int column) const { return sqlite3_column_int64(Handle_.get(), column); }
    std::string_view Text(int column) const;

private:
    struct Finalize
    {
        void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
    };
    IndexConnection* Connection_;
    std::unique_ptr<sqlite3_stmt, Finalize> Handle_;
};

/// The file of a search index: SQLite with the settings that a file wants which may be lost at any time, but never
/// shows anybody else what stands in it and keeps nothing that was erased. One thread at a time. Errors are
/// SearchFailure. The record store's files have a connection of their own, which promises more.
class IndexConnection
{
public:
    /// Opens a file that is there.
    explicit IndexConnection(const QString& file);
    ~IndexConnection();
    IndexConnection(const IndexConnection&) = delete;
    IndexConnection& operator=(const IndexConnection&) = delete;

    sqlite3* Handle() const { return Handle_; }
    const QString& File() const { return File_; }
    /// Kept for the next time and ready to be bound; no more than one of the same text at a time.
    IndexStatement& Statement(const QByteArray& sql);
    void Execute(const QByteArray& sql);
    qint64 Number(const QByteArray& sql);
    /// Whether the name is another file's by now, or nobody's.
    bool HasMoved() const;
    /// Puts what is written into the file itself and empties the log beside it, so that nothing erased stands there.
    /// False while another program reads in it.
    bool EmptyLog();

    [[noreturn]] void Raise(int code) const;

private:
    sqlite3* Handle_ = nullptr;
    QString File_;
    std::unordered_map<std::string, IndexStatement> Statements_;
};

/// A change that is there whole or not at all: taken back by the destructor unless it was committed. Waits for other
/// programs of this computer for a moment.
class IndexChange
{
public:
    explicit IndexChange(IndexConnection& connection);
    ~IndexChange();
    IndexChange(const IndexChange&) = delete;
    IndexChange& operator=(const IndexChange&) = delete;
    void Commit();

private:
    IndexConnection& Connection_;
    bool IsOver_ = false;
};
