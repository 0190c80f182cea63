// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/records/Database.h"
#include "platform/records/FileReport.h"

#include <QStringList>

#include <functional>

namespace dao
{

/// A connection to a server apart from any one of its databases. Owned by the caller.
class TOLVA_EXPORT Connection
{
public:
    virtual ~Connection() = default;
    /// A statement in the server's own language.
    virtual void Execute(const QString& statement) = 0;
    virtual std::unique_ptr<Recordset> OpenRecordset(const QString& query) = 0;
    virtual void Close() = 0;
};

/// A session of one user. Owned by the caller.
class TOLVA_EXPORT Workspace
{
public:
    virtual ~Workspace() = default;
    /// name: may be empty. Raises what the engine that serves the connect string raises; 3251 when no engine does.
    virtual std::unique_ptr<Connection> OpenConnection(const QString& name, int options, bool readOnly,
                                                       const QString& connect) = 0;
    virtual void Close() = 0;
};

/// The entry to the record store. Which engine opens a file is decided by the file's own first octets, which engine
/// opens a connect string by the string; see engines/EngineRegistry.h.
class TOLVA_EXPORT DBEngine
{
public:
    /// Errors: 3044 no such folder, 3024 no such file, 3343 not a database of any engine, 3049 damaged, 3051 no
    /// permission or in use.
    static std::unique_ptr<Database> OpenDatabase(const QString& name, int options = 0, bool readOnly = false,
                                                  const QString& connect = QString());
    /// Makes a new file; 3051 when a file of that name stands already. locale: accepted and not used by engines that
    /// store Unicode. engine: the name of the engine in whose format it is, empty for the usual one; 3265, with the
    /// names there are, when none of that name makes files.
    static std::unique_ptr<Database> CreateDatabase(const QString& name, const QString& locale,
                                                    const QString& engine = QString());
    /// A connect string as it may stand in logs and messages: with stars where a password is.
    static QString WithoutPassword(const QString& connect);
    /// Makes an empty database on a server, and a file that stands for it: whatever opens the file opens that database.
    /// part: empty, or the name of what belongs to the database that the connect string names. Errors: 3010 when one
    /// with tables is there already, 3051 when the file is, 3251 for a connect string that no engine serves or that
    /// holds a password, and those of OpenDatabase.
    static void CreateLinkedDatabase(const QString& file, const QString& connect, const QString& part = QString());
    /// Whether a file is there that stands for a database on a server. Nothing is raised.
    static bool IsLinked(const QString& file);
    /// A file that stands for one that is there; 3024 when there is none.
    static void LinkDatabase(const QString& file, const QString& connect, const QString& part = QString());
    /// Removes what CreateLinkedDatabase made, database and file.
    static void TakeAwayLinkedDatabase(const QString& file);
    /// Writes a compacted, checked copy of source under target, which must not exist (or be empty). Source is left
    /// alone. Raises 3049 when a table cannot be read; then no target is left behind.
    static void CompactDatabase(const QString& source, const QString& target);

    /// Whether a file is there that an engine recognises. Nothing is raised.
    static bool IsDatabase(const QString& file);
    /// Writes a copy of source, as it stands at one moment, under target, which must not exist. Others may have the
    /// source open and go on writing to it, this process as well (outside a transaction); none of them waits for longer
    /// than a moment. The copy was opened and read whole before this returns, and is on the disk. advance is told how
    /// much is done of the total, and stops the copy by answering false (32755). Errors: those of OpenDatabase, 3026
    /// and 3043 for the disk, 3260, and 3049 for a source that is damaged anywhere. They leave no target behind.
    static void CopyDatabase(const QString& source, const QString& target,
                             const std::function<bool(qint64 done, qint64 total)>& advance);
    /// Reads a database to its last page and says what is wrong with it; others may be using it, and wait for a moment
    /// while its pages are compared. advance stops it by answering false (32755). The errors of OpenDatabase, but for
    /// 3049, which is a finding.
    static FileReport ExamineDatabase(const QString& file, const std::function<bool(qint64, qint64)>& advance = {});
    /// The same where nothing but the verdict matters: 3049 when the database is damaged. Indexes that do not match
    /// their tables lose nothing and are no damage.
    static void CheckDatabase(const QString& file);
    /// A number by which what is kept of a database elsewhere is known to be of this one: the file carries it through
    /// renames and compactions; another database, or another state that is put in its place, has another number. 0
    /// where the file has none. The errors of OpenDatabase.
    static qint64 IdentityOf(const QString& file);
    /// The names of all files, there or not, that an engine may have put beside a database file. They are the file's
    /// own: another file that takes its name must not meet them.
    static QStringList CompanionsOf(const QString& file);

    static std::unique_ptr<Workspace> CreateWorkspace(const QString& name, const QString& user, const QString& password,
                                                      WorkspaceTypeEnum type);

    /// A transaction over all databases that are open now; one that is opened later joins the next BeginTrans. Changes
    /// of other calls join it until CommitTrans or Rollback, which raise 3251 without BeginTrans. Transactions nest, up
    /// to five (3251 for the sixth): an inner Rollback takes back what came since its own BeginTrans, an inner
    /// CommitTrans makes nothing durable yet, and the outermost of either decides over all.
    static void BeginTrans();
    static void CommitTrans(int options = dbCommitDefault);
    static void Rollback();
};

} // namespace dao

namespace ado
{

/// The short-lived second road to a database file that fixes and reads its locking mode: who opens a file first
/// decides the mode for all that open it while it stays open. Errors are dao::Error.
class TOLVA_EXPORT Connection
{
public:
    Connection();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void SetProvider(const QString& provider) { Provider_ = provider; }
    /// "Data Source" (a file name) before Open; "Jet OLEDB:Database Locking Mode" (0 page, 1 record): before Open what
    /// is asked for, after it what is in force. 3265 for another name.
    QVariant Property(const QString& name) const;
    void SetProperty(const QString& name, const QVariant& value);
    void SetCursorLocation(int location) { CursorLocation_ = location; }
    void Open(const QString& connectionString = QString(), const QString& user = QString(),
              const QString& password = QString(), int options = -1);
    void Close();

private:
    class Handle;
    QString Provider_;
    QString DataSource_;
    int LockingMode_ = 0;
    int CursorLocation_ = 2;
    std::unique_ptr<Handle> Handle_;
};

} // namespace ado
