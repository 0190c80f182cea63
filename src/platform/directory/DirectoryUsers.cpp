// SPDX-License-Identifier: Apache-2.0

// The users of an embedded directory: signing in, and what its technician changes.

#include "platform/directory/DirectoryTables.h"
#include "platform/directory/EmbeddedDirectory.h"
#include "platform/directory/EmbeddedDirectoryUser.h"

#include <algorithm>

namespace
{
const QString usersTable = QStringLiteral("Users");
const QString mainIndex = QStringLiteral("Main");
const QString nameColumn = QStringLiteral("Name");
const QString rightsColumn = QStringLiteral("Rights");

constexpr qsizetype longestName = 255;

DirectoryUser ReadUser(const dao::Recordset& row)
{
    DirectoryUser user;
    user.Reference = row.Collect(QStringLiteral("Reference")).toInt();
    user.Name = row.Collect(QStringLiteral("Name")).toString();
    user.Rights = row.Collect(QStringLiteral("Rights")).toInt();
    return user;
}

QString DeletedWords()
{
    return QStringLiteral("The user has been deleted.");
}

bool MayChangeSettings(int rights)
{
    return (rights & static_cast<int>(DirectoryRight::ChangeSettings)) != 0;
}

QString CheckedName(const QString& typed)
{
    QString name = typed.simplified();
    if (name.isEmpty())
        throw dao::Error(dao::errInvalidUseOfNull, QStringLiteral("A user needs a name."));
    if (name.size() > longestName) {
        throw dao::Error(dao::errFieldTooSmall,
                         QStringLiteral("A user's name has %1 characters at most.").arg(longestName));
    }
    return name;
}

/// Ends an addition or a change; the words of the store for a name that is taken would tell a user nothing.
void UpdateNamed(dao::Recordset& row, const QString& name)
{
    try {
        row.Update();
    } catch (const dao::Error& error) {
        if (error.Number() == dao::errDuplicateValue)
            throw dao::Error(error.Number(), QStringLiteral("There is a user \"%1\" already.").arg(name));
        throw;
    }
}

/// For a change that took the right to change settings from a user, after its write: somebody must still have it.
void RequireSomebodyInCharge(const QList<DirectoryUser>& users, const QString& name)
{
    if (std::none_of(users.begin(), users.end(),
                     [](const DirectoryUser& user) { return MayChangeSettings(user.Rights); })) {
        throw dao::Error(dao::errNotSupported,
                         QStringLiteral("\"%1\" is the only user who may change settings. Give another user that "
                                        "right first.")
                             .arg(name));
    }
}
} // namespace

bool EmbeddedDirectory::SignIn(const QString& name)
{
    const auto rows = DirectoryTables::OpenTable(Opened(), usersTable, QStringLiteral("Name"));
    rows->Seek(dao::SeekComparison::Equal, {name});
    if (name.isEmpty() || rows->NoMatch())
        return false;
    const DirectoryUser user = ReadUser(*rows);
    if (!User_ || User_->Reference() != user.Reference)
        User_ = std::make_unique<User>(*this, user.Reference, user.Name);
    return true;
}

QList<DirectoryUser> EmbeddedDirectory::Users() const
{
    const auto rows = DirectoryTables::OpenTable(Opened(), usersTable, QStringLiteral("Name"));
    QList<DirectoryUser> users;
    for (; !rows->AtEOF(); rows->MoveNext())
        users.append(ReadUser(*rows));
    return users;
}

void EmbeddedDirectory::SaveUser(DirectoryUser& user)
{
    if (user.Name.isEmpty())
        throw dao::Error(dao::errInvalidUseOfNull, QStringLiteral("A user needs a name."));
    const auto rows = DirectoryTables::OpenTable(Opened(), usersTable, mainIndex);
    const qint32 reference = DirectoryTables::BeginSave(*rows, user.Reference, DeletedWords());
    rows->SetCollect(nameColumn, user.Name);
    rows->SetCollect(rightsColumn, user.Rights);
    rows->Update();
    user.Reference = reference;
}

qint32 EmbeddedDirectory::AddUser(const QString& name, int rights)
{
    const QString checked = CheckedName(name);
    const auto rows = DirectoryTables::OpenTable(Opened(), usersTable, mainIndex);
    const qint32 reference = DirectoryTables::BeginSave(*rows, 0, QString());
    rows->SetCollect(nameColumn, checked);
    rows->SetCollect(rightsColumn, rights);
    UpdateNamed(*rows, checked);
    return reference;
}

void EmbeddedDirectory::RenameUser(qint32 reference, const QString& name)
{
    const QString checked = CheckedName(name);
    const auto rows = DirectoryTables::OpenTable(Opened(), usersTable, mainIndex);
    rows->Seek(dao::SeekComparison::Equal, {reference});
    if (rows->NoMatch())
        throw dao::Error(dao::errRecordDeleted, DeletedWords());
    rows->Edit();
    rows->SetCollect(nameColumn, checked);
    UpdateNamed(*rows, checked);
}

void EmbeddedDirectory::SetRights(qint32 reference, int rights)
{
    InOneStep([&] {
        const auto rows = DirectoryTables::OpenTable(Opened(), usersTable, mainIndex);
        rows->Seek(dao::SeekComparison::Equal, {reference});
        if (rows->NoMatch())
            throw dao::Error(dao::errRecordDeleted, DeletedWords());
        const DirectoryUser before = ReadUser(*rows);
        rows->Edit();
        rows->SetCollect(rightsColumn, rights);
        rows->Update();
        if (MayChangeSettings(before.Rights) && !MayChangeSettings(rights))
            RequireSomebodyInCharge(Users(), before.Name);
    });
}

void EmbeddedDirectory::DeleteUser(qint32 reference)
{
    dao::Database& database = Opened();
    if (User_ && User_->Reference() == reference) {
        throw dao::Error(
            dao::errNotSupported,
            QStringLiteral("\"%1\" is signed in here and cannot be deleted meanwhile.").arg(User_->Name()));
    }
    InOneStep([&] {
        const QList<DirectoryUser> before = Users();
        DirectoryTables::DeleteRow(database, usersTable, reference);
        const auto user = std::find_if(before.begin(), before.end(), [reference](const DirectoryUser& candidate) {
            return candidate.Reference == reference;
        });
        if (user != before.end() && MayChangeSettings(user->Rights))
            RequireSomebodyInCharge(Users(), user->Name);
        database.Execute(QStringLiteral("DELETE FROM [Preferences] WHERE [UserReference]=%1").arg(reference));
    });
}
