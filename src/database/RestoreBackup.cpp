// SPDX-License-Identifier: Apache-2.0
#include "database/RestoreBackup.h"

#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/BackupFolders.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/FileExchange.h"
#include "database/Leftovers.h"
#include "database/cTolvaDatabase.h"
#include "platform/files/WorkClaim.h"
#include "platform/records/ContentExchange.h"
#include "platform/records/DBEngine.h"
#include "platform/records/FileTools.h"

#include <QUuid>

namespace
{
MessageBoxAnswer Ask(const QString& text)
{
    return UserInterface::Current().MessageBox(
        {text, QString(), MessageBoxButtons::YesNo, MessageBoxIcon::Question, MessageBoxAnswer::No});
}

/// What stands in the way of putting something into a file, rather than in its place: it is missing, or cannot be read.
bool NeedsRename(int errorNumber)
{
    switch (errorNumber) {
    case dao::errFileNotFound:
    case dao::errFileDamaged:
    case dao::errUnrecognisedFormat:
    case dao::errDiskError:
    case dao::errNotSupported:
        return true;
    default:
        return false;
    }
}

/// Answers the keep name.
QString PutInPlace(const QString& databaseFile, const QString& restored, const std::function<QString()>& keepName)
{
    const auto mark = [&] { dao::ContentExchange::MarkAsRestored(restored, databaseFile); };
    FileExchange::Plan plan;
    plan.File = databaseFile;
    plan.Replacement = restored;
    plan.Make = [&](dao::ContentExchange&) { mark(); };
    plan.KeepName = keepName;
    try {
        return FileExchange::InPlace(plan);
    } catch (const dao::Error& error) {
        if (!NeedsRename(error.Number()))
            throw;
    }
    mark();
    const QString name = keepName();
    FileExchange::ByRename(databaseFile, restored, name);
    return name;
}
} // namespace

QString RestoreBackup::KeepNameOf(const QString& databaseFile)
{
    return FileHelper::WithoutExtension(databaseFile) + QStringLiteral(".BAK");
}

RestoreBackup::Outcome RestoreBackup::Replace(const QString& databaseFile, const QString& backupFile,
                                              const std::function<QString()>& keepName, PendingError& failure,
                                              QString* keptAs)
{
    // A name of its own: somebody else may be restoring as well.
    const QString restored =
        databaseFile + QStringLiteral(".restored-") + QUuid::createUuid().toString(QUuid::Id128).left(12);
    Leftovers::Remove(databaseFile);
    const WorkClaim claim(restored);
    if (!claim.Status().IsDone()) {
        failure.Set(dao::ErrorNumberOf(claim.Status()),
                    QStringLiteral("'%1' cannot be made: %2").arg(restored, claim.Status().Words()));
        return Outcome::CopyFailed;
    }
    if (!FileHelper::CopyWithProgress(backupFile, restored, QStringLiteral("Restoring Backup"), &failure) ||
        FileHelper::FileSize(restored) <= 0)
        return Outcome::CopyFailed;
    const bool isPut = failure.Try([&] {
        const QString name = PutInPlace(databaseFile, restored, keepName);
        if (keptAs)
            *keptAs = name;
    });
    for (const QString& name : dao::DBEngine::CompanionsOf(restored) + QStringList(restored))
        FileSystem::Current().Remove(name);
    return isPut ? Outcome::Done : Outcome::NotPut;
}

/// Offers the newest backup that reads in place of a database that does not. failure: what reading it gave. 0 when the
/// database was replaced and reads again.
qint32 cTolvaDatabase::OfferBackupOfCorruptedDatabase(const QString& fileName, const QString& connect, qint32 failure)
{
    if (Ask(QStringLiteral("Your Tolva database is corrupted and cannot be repaired.\n\n"
                           "Do you want this program to search for recent automatic backups?")) !=
        MessageBoxAnswer::Yes)
        return failure;
    const BackupFolders::Backup best =
        BackupFolders::NewestSound(BackupFolders::RootOf(fileName), FileHelper::FileNameOf(fileName));
    if (best.Folder.isEmpty())
        return failure;
    if (Ask(QStringLiteral("A valid backup has been found that was created: %1\n\n"
                           "Do you want replace the corrupted database with this backup?\n\n"
                           "WARNING! You must quit from all copies of Tolva and Tolva Server before restoring from a "
                           "Backup")
                .arg(best.CreatedDate.Format(QStringLiteral("dddddd hh:nn")))) != MessageBoxAnswer::Yes)
        return -1;
    const QString keepName = RestoreBackup::KeepNameOf(fileName);
    if (FileHelper::FileExists(keepName) &&
        !FileHelper::DeleteWithProgress(keepName, QStringLiteral("Removing old files..."))) {
        UserInterface::Current().MessageBox(
            {QStringLiteral("An old corrupted file cannot be deleted to make way for a duplicate of the current "
                            "corrupted database. \n\n") +
                 keepName,
             QString(), MessageBoxButtons::OK, MessageBoxIcon::Exclamation, MessageBoxAnswer::OK});
        return -1;
    }
    PendingError pending;
    switch (RestoreBackup::Replace(
        fileName, FileHelper::Join(best.Folder, FileHelper::FileNameOf(fileName)), [&] { return keepName; }, pending)) {
    case RestoreBackup::Outcome::Done:
        break;
    case RestoreBackup::Outcome::NotPut:
        ReportProblem(QStringLiteral("renaming the old corrupted database"), pending.Number(), SilentMode_,
                      pending.Description());
        return -1;
    case RestoreBackup::Outcome::CopyFailed:
        return -1;
    }
    QString title = QStringLiteral("Kelvarin Tolva Database");
    if (const int code = DAO_DatabaseFunctions::ValidateDatabase(fileName, TolvaDatabaseType, false, title, connect))
        return -code;
    return DAO_DatabaseFunctions::GetDatabaseInformation(fileName, Information_, true, QString());
}
