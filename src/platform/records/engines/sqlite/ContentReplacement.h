// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/engines/sqlite/SqliteConnection.h"

namespace dao::sqlite
{

/// Writes another file's pages into a live one in one transaction of SQLite. The file keeps its inode, so that nobody
/// is left with an old one, and its mode, owner, access lists and names. A kill, a full disk or a pulled plug takes it
/// back whole by the journal. Everybody else waits for the lock and reads the new pages then: SQLite raises the change
/// counter and the schema cookie.
class ContentReplacement final : public engine::ContentExchange
{
public:
    /// Errors of Engine::Open, and 3051 for a file that may only be read.
    explicit ContentReplacement(const QString& file);

    void Note(bool keepsWritersOut) override;
    bool IsAsNoted() override;
    void KeepAs(const QString& keepName, const engine::CopyProgress& progress) override;
    void RequireSameRows(const QString& replacement) override;
    bool Put(const QString& replacement) override;

private:
    QString File_;
    Connection Holder_;      ///< Keeps writers out, and looks.
    Connection Destination_; ///< Open already when the holder lets go, so that the gap is short.
    quint32 Noted_ = 0;
};

/// See Engine::MarkAsRestored.
void MarkFileAsRestored(const QString& replacement, const QString& replaced);

/// SQLite's lock of a writer at work, taken past the content of the file.
class ContentLock final : public engine::FileLock
{
public:
    /// 3260 when others keep it for longer than the usual wait, 3051 for a file that may not be opened.
    explicit ContentLock(const QString& file);
    ~ContentLock() override;

private:
    void Close();
    int TryLock();

    QByteArray Memory_; ///< Of SQLite's file object.
    sqlite3_filename Name_ = nullptr;
    sqlite3_file* File_ = nullptr;
};

} // namespace dao::sqlite
