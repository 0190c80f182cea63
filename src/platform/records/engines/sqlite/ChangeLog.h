// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <sqlite3.h>

#include <memory>
#include <vector>

/// How a copy of a file that others write to learns what they changed. While somebody copies a file, "FILE-copying"
/// stands beside it, and every connection of this engine, in any process on any computer, writes down there which
/// octets it is about to change. The copy then reads only those anew, instead of keeping all writers waiting while it
/// reads the whole file. Between copies nothing of this costs more than one look for the log in each commit.
///
/// The log is a help, not a promise: each commit counts up the file's change counter, and the log says which count each
/// commit made, so that the copy sees when one is missing.
namespace dao::sqlite
{

/// One write to the database file.
struct ChangeRecord
{
    qint64 Offset = 0;
    qint64 Size = 0;
    quint32 Counter = 0; ///< The file's change counter that this write brought, for a write to its beginning.
};

/// The side of the writers: the name of the VFS that connections open their files with. It stands over the default VFS
/// of the moment.
const char* LoggingVfsName();

/// The side of the copy.
class ChangeLog
{
public:
    explicit ChangeLog(const QString& databaseFile);
    /// Removes the log. Another copy that used it as well sees that, and begins again.
    ~ChangeLog();
    ChangeLog(const ChangeLog&) = delete;
    ChangeLog& operator=(const ChangeLog&) = delete;

    /// Makes the log or joins one that stands, and begins behind what it holds. False where none can be made.
    bool Begin();
    /// Adds what was written down since the last call. False when the log is gone. Under a lock that keeps writers off.
    bool ReadOn(std::vector<ChangeRecord>& records);

    static QString NameFor(const QString& databaseFile);

private:
    QString Name_;
    qint64 Position_ = 0;
};

/// The change counter in the first octets of a database file.
quint32 ChangeCounterIn(const void* firstPage);

} // namespace dao::sqlite
