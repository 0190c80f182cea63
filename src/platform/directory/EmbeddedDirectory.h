// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/directory/clsKVDirectory.h"
#include "platform/records/Database.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QList>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

/// One user of the embedded directory as the technician edits it.
struct DirectoryUser
{
    qint32 Reference = 0; ///< 0 until it is saved.
    QString Name;
    int Rights = 0; ///< DirectoryRight values added up.
};

/// One entry of the user log.
struct DirectoryLogEntry
{
    qint32 Reference = 0;
    QDateTime When; ///< Universal time.
    qint32 UserReference = 0;
    int ClassNumber = 0;
    int Kind = 0;
    QString Title;
    QString Text;
    int Code = 0;
    int EventReference = 0;
};

/// The directory for hosts that bring none: contacts, users with rights, preferences and the user log in
/// "Directory.mdb" in a folder of its own, on the same record store as the station, shared between computers in the
/// same way. Owned by the program; one thread.
class TOLVA_EXPORT EmbeddedDirectory : public clsKVDirectory
{
public:
    EmbeddedDirectory();
    ~EmbeddedDirectory() override;

    /// Opens the directory in the folder, making folder, file and tables as needed; what stands already is kept. A
    /// directory that was open is closed before. Raises dao::Error: 3044 when the folder cannot be made.
    void Open(const QString& folder);
    /// Signs the user out and closes the file. Nothing happens when none is open.
    void Close();
    bool IsOpen() const;
    /// The file, for stores that keep a table of their own in it ("Sending"); until Close. Raises 3420 when none is
    /// open.
    dao::Database& File() const { return Opened(); }

    /// Signs the user of that name in (without regard to case). False when there is none; the user before stays signed
    /// in then. Raises dao::Error, and so does all below: 3420 when no directory is open, otherwise as the store does.
    bool SignIn(const QString& name);
    void SignOut();

    clsKVUser* CurrentUser() const override;
    clsKVContactPtr GetContact(qint32 reference, int options = 0, int reserved = 0) const override;

    /// By name.
    QList<DirectoryUser> Users() const;
    /// Adds (Reference 0, filled afterwards) or changes a user, with nothing asked of its name or rights. For programs
    /// that set a directory up; the four below are for its technician. Raises 3022 when another user has the name, 94
    /// when the name is empty, 3167 when the user was deleted meanwhile.
    void SaveUser(DirectoryUser& user);

    // What the technician changes, durable when the call returns. Blanks around a name go. The descriptions of the
    // errors are fit for a user: 94 for an empty name, 3163 for one of more than 255 characters, 3022 when another user
    // has it (in whatever case), 3167 when the user was deleted meanwhile, 3251 for what would leave nobody who may
    // change settings, though somebody could before, or would delete the user who is signed in here.

    /// rights: DirectoryRight values added up. The new user's reference.
    qint32 AddUser(const QString& name, int rights);
    void RenameUser(qint32 reference, const QString& name);
    void SetRights(qint32 reference, int rights);
    /// Deletes the user and its preferences; its entries in the log stay. No error when there is none. A user who is
    /// signed in at another computer stays so there, without any right.
    void DeleteUser(qint32 reference);

    /// By name.
    QList<clsKVContactPtr> Contacts() const;
    /// The first contacts with a reference above that one, at most limit, by reference: for reading a large directory
    /// in steps. None when there are no more.
    QList<clsKVContactPtr> ContactsAfter(qint32 reference, int limit) const;
    /// Contacts one of whose addresses is this one, without regard to case and each of its characters meaning itself,
    /// by name. None for the empty address.
    QList<clsKVContactPtr> ContactsByAddress(const QString& address) const;
    /// Adds (Reference 0, filled afterwards) or changes a contact, whatever it held. Raises 3167 when it was deleted
    /// meanwhile, 3163 for a detail of more than 255 characters (Other takes any length).
    void SaveContact(clsKVContact& contact);
    /// Changes a contact that is still what before says. Raises 3197 when somebody changed it meanwhile, and nothing is
    /// stored then; otherwise as SaveContact.
    void ChangeContact(const clsKVContact& before, const clsKVContact& after);
    /// No error when there is none.
    void DeleteContact(qint32 reference);
    /// Runs work that changes the directory; all of it is stored, durable when the call returns, or, when something is
    /// thrown out of it, nothing. The first change in it takes the file's lock.
    void InOneStep(const std::function<void()>& work);

    /// The newest entries first, at most limit.
    QList<DirectoryLogEntry> LogEntries(int limit) const;

    /// True: entries of the user log wait in memory and are stored together, with the first one that comes a second
    /// after them, when the log is read, and when the directory is closed. For programs that run for one command, each
    /// of whose entries would cost a commit. What waits when the process is killed is lost. False stores what waits.
    /// Starts false.
    void SetCollectsLog(bool collects);
    /// True: entries of the user log wait in memory and are stored from the event loop, as soon as nobody else has the
    /// directory locked, when the log is read and nobody has, or when the directory is closed, which waits for a lock
    /// as any write does. For programs with a window, which no entry is to hold up. Starts false: an entry is stored at
    /// once, and waits as long as any write does. Entries that are collected stay so.
    void SetLogGivesWay(bool givesWay) { LogGivesWay_ = givesWay; }
    /// Is told, in words, of entries that waited and had to be given up, and why; whoever logged them was answered long
    /// ago. It must not throw, and outlives the directory. Nobody is told until it is set.
    void SetLogProblemHandler(std::function<void(const QString&)> handler);

    /// Where the log's times come from; the system's clock until it is set.
    void SetClock(std::function<QDateTime()> utcNow);

private:
    class User;
    dao::Database& Opened() const;
    /// False when it could not be stored.
    bool Log(const DirectoryLogEntry& entry);
    std::optional<dao::Error> StoreLog(const QList<DirectoryLogEntry>& entries) const;
    enum class WhereLocked
    {
        Keep,
        GiveUp
    };
    /// False when entries were given up.
    bool StoreWaitingLog(WhereLocked whereLocked) const;
    void StoreLogUnlessLocked() const;

    std::unique_ptr<dao::Database> Database_;
    /// The user log, open from its first entry on: opening it asks a server what the table looks like.
    mutable std::unique_ptr<dao::Recordset> LogRows_;
    std::unique_ptr<User> User_;
    std::function<QDateTime()> UtcNow_;
    bool CollectsLog_ = false;
    bool LogGivesWay_ = false;
    mutable QList<DirectoryLogEntry> WaitingLog_;
    QElapsedTimer WaitingSince_;
    QTimer LogTimer_; ///< Runs while entries wait that give way.
    std::function<void(const QString&)> LogProblemHandler_;
};
