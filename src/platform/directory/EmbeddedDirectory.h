#pragma once

#include "platform/directory/clsKVDirectory.h"
#include "platform/records/Database.h"

#include <QDateTime>
#include <QList>

#include <functional>

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
class EmbeddedDirectory : public clsKVDirectory
{
public:
    EmbeddedDirectory();
    ~EmbeddedDirectory() override;

    /// Opens the directory in the folder, making folder, file and tables as needed. Raises dao::Error.
    void Open(const QString& folder);
    void Close();
    bool IsOpen() const;

    /// Signs the user of that name in (without regard to case). False when there is none; the user before stays signed
    /// in then.
    bool SignIn(const QString& name);
    void SignOut();

    clsKVUser* CurrentUser() const override;
    clsKVContactPtr GetContact(qint32 reference, int options = 0, int reserved = 0) const override;

    QList<DirectoryUser> Users() const;
    /// Adds (Reference 0, filled afterwards) or changes a user. Raises dao::Error: 3022 when another user has the name.
    void SaveUser(DirectoryUser& user);
    void DeleteUser(qint32 reference);

    QList<clsKVContactPtr> Contacts() const;
    /// Contacts one of whose addresses is this one, without regard to case, by name.
    QList<clsKVContactPtr> ContactsByAddress(const QString& address) const;
    void SaveContact(clsKVContact& contact);
    void DeleteContact(qint32 reference);

    /// The newest entries first, at most limit.
    QList<DirectoryLogEntry> LogEntries(int limit) const;

    /// Where the log's times come from; the system's clock until it is set.
    void SetClock(std::function<QDateTime()> utcNow);

private:
    class User;
    dao::Database& Opened() const;

    std::unique_ptr<dao::Database> Database_;
    std::unique_ptr<User> User_;
    std::function<QDateTime()> UtcNow_;
};
