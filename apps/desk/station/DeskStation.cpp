// SPDX-License-Identifier: Apache-2.0
#include "DeskStation.h"

#include "CollectingUserInterface.h"
#include "DamagedStation.h"
#include "StationOpening.h"
#include "StationPlace.h"
#include "StationReplacing.h"
#include "common/FileHelper.h"
#include "common/kvGeneral.h"
#include "database/RestoreBackup.h"

#include <QDir>
#include <QScopeGuard>

namespace
{
void RequireStation(const QString& folder)
{
    if (!FileHelper::FolderExists(folder)) {
        throw Failure(exitNoInput,
                      QStringLiteral("There is no folder %1. If it lies on another computer, check that the "
                                     "computer is on and the network is connected.")
                          .arg(folder));
    }
    if (!StationPlace::HoldsStation(folder))
        throw Failure(exitNoInput, QStringLiteral("There is no station in %1.").arg(folder));
}

void OpenDirectory(EmbeddedDirectory& directory, const QString& folder)
{
    const QString file = StationPlace::DirectoryFileIn(folder);
    if (!FileHelper::FileExists(file)) {
        throw Failure(exitNoUser, QStringLiteral("The station in %1 has no directory, so nobody is a user of it. Its "
                                                 "directory belongs into %2.")
                                      .arg(folder, StationPlace::DirectoryIn(folder)));
    }
    try {
        directory.Open(StationPlace::DirectoryIn(folder));
    } catch (const dao::Error& error) {
        throw FailureOf(QStringLiteral("The directory in %1").arg(StationPlace::DirectoryIn(folder)), file,
                        error.Number(), error.Description());
    }
}
/// What is to be said when the user has agreed that a backup takes the place of a damaged file, and the station opened
/// after that.
QString RestoredWords(const QStringList& confirmed, const QString& folder)
{
    const QString offer = QStringLiteral("A valid backup has been found that was created: ");
    for (const QString& question : confirmed) {
        if (!question.startsWith(offer))
            continue;
        const QString made = question.mid(offer.size()).section(u'\n', 0, 0);
        const QString file = StationPlace::FileIn(folder);
        const std::optional<StationCounts> counts = StationReplacing::CountsOf(file);
        return DamagedStation::RestoredWords(
            made, counts ? counts->Words() : QStringLiteral("its content could not be counted"),
            RestoreBackup::KeepNameOf(file));
    }
    return QString();
}
} // namespace

DeskStation::~DeskStation()
{
    Close();
}

QStringList DeskStation::UsersIn(const QString& folder)
{
    RequireStation(folder);
    EmbeddedDirectory directory;
    OpenDirectory(directory, folder);
    QStringList names;
    try {
        for (const DirectoryUser& user : directory.Users())
            names.append(user.Name);
    } catch (const dao::Error& error) {
        throw FailureOf(QStringLiteral("The directory in %1").arg(StationPlace::DirectoryIn(folder)),
                        StationPlace::DirectoryFileIn(folder), error.Number(), error.Description());
    }
    return names;
}

void DeskStation::Open(const QString& folder, const QString& user)
{
    Close();
    RequireStation(folder);
    try {
        OpenDirectory(Directory_, folder);
        Directory_.SetLogGivesWay(true);
        Directory_.SetLogProblemHandler([](const QString& problem) { WriteDebugLog(problem); });
        if (!Directory_.SignIn(user)) {
            throw Failure(exitNoUser,
                          QStringLiteral("\u201C%1\u201D is not a user of this station. Its technician can add users.")
                              .arg(user));
        }
        Database_.SetDirectoryDatabase(&Directory_);
        CollectingUserInterface collecting(UserInterface::Current());
        StationOpening::Open(Database_, folder, collecting);
        RestoredWords_ = RestoredWords(collecting.Confirmed(), folder);
    } catch (const dao::Error& error) {
        Close();
        throw StationOpening::FailureOf(folder, error.Number(), error.Description());
    } catch (...) {
        Close();
        throw;
    }
    Folder_ = folder;
    User_ = user;
}

void DeskStation::Reopen()
{
    const QString folder = Folder_;
    const QString user = User_;
    const auto keep = qScopeGuard([&] {
        Folder_ = folder;
        User_ = user;
    });
    Open(folder, user);
}

void DeskStation::Close()
{
    Database_.CloseTolvaDatabase();
    Database_.SetDirectoryDatabase(nullptr);
    Directory_.Close();
    Folder_.clear();
}

void DeskStation::Suspend()
{
    Database_.CloseTolvaDatabase();
}

/// An object makes one backup in its life, so another one makes this.
void DeskStation::OpenForBackup(cTolvaDatabase& database, CollectingUserInterface& collecting)
{
    database.SetMakesAutomaticBackups(false);
    StationOpening::Open(database, Folder_, collecting);
}

StationBackup::Result DeskStation::BackUp()
{
    CollectingUserInterface collecting(UserInterface::Current());
    cTolvaDatabase database;
    database.SetDirectoryDatabase(&Directory_);
    OpenForBackup(database, collecting);
    return StationBackup::Make(database, Folder_);
}

bool DeskStation::BackUpWhenDue()
{
    if (!Database_.IsOpen() || !Database_.EnableAutoBackup())
        return false;
    try {
        CollectingUserInterface collecting(UserInterface::Current());
        cTolvaDatabase database; // without the directory: a look leaves no entry in the user log
        OpenForBackup(database, collecting);
        return database.BackupDatabase(false);
    } catch (const dao::Error& error) {
        WriteDebugLog(QStringLiteral("No automatic backup: ") + error.Description());
    } catch (const Failure& failure) {
        WriteDebugLog(QStringLiteral("No automatic backup: ") + failure.Words());
    }
    return false;
}

QString DeskStation::Name() const
{
    const QString name = Database_.StationName().trimmed();
    return name.isEmpty() ? QDir(Folder_).dirName() : name;
}

QString DeskStation::MarkAsRead(qint32 reference)
{
    try {
        // Not the message, whose mail may be large.
        const auto row = Database_.OpenMessageRows({QStringLiteral("Flags"), QStringLiteral("PersonalToContact")},
                                                   QStringLiteral("[Reference]=%1").arg(reference));
        const clsKVUser* user = Directory_.CurrentUser();
        if (row->AtEOF() || !user || (row->Collect(QStringLiteral("Flags")).toInt() & mfRead) != 0)
            return QString();
        if (!MayEditMessage(row->Collect(QStringLiteral("PersonalToContact")).toInt()))
            return QString();
        if (Database_.ChangeMessageFlags(reference, mfRead, 0) || Database_.LastErrorNumber() == 0)
            return QString();
        return Words(Database_.LastErrorNumber(), Database_.LastErrorDescription());
    } catch (const dao::Error& error) {
        return Words(error.Number(), error.Description());
    }
}

bool DeskStation::MayEditMessage(qint32 personalToContact) const
{
    const clsKVUser* user = Directory_.CurrentUser();
    if (!user)
        return false;
    return personalToContact == user->Reference() ? user->CanEditPersonalMessages() : user->CanEditMessages();
}

bool DeskStation::ChangePriority(qint32 reference, qint32 priority)
{
    const bool raises = Database_.RaiseEvents();
    cMessagePtr message;
    {
        Database_.SetRaiseEvents(false);
        const auto restore = qScopeGuard([&] { Database_.SetRaiseEvents(raises); });
        dao::Transaction transaction = Database_.BeginChange();
        message = Database_.GetMessage(reference);
        if (!message || !MayEditMessage(message->PersonalToContact()))
            return false;
        message->SetPriority(priority);
        if (!Database_.SaveMessage(message))
            return false;
        transaction.Commit();
    }
    if (raises)
        Database_.RaiseSaveMessageEvent(message, true);
    return true;
}

QString DeskStation::Words(int errorNumber, const QString& description) const
{
    return StationOpening::FailureOf(Folder_, errorNumber, description).Words();
}
