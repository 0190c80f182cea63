// SPDX-License-Identifier: Apache-2.0
#include "StationBackup.h"

#include "Failure.h"
#include "StationOpening.h"
#include "StationPlace.h"
#include "common/FileHelper.h"
#include "common/kvGeneral.h"
#include "database/BackupFolders.h"
#include "database/StationSettings.h"
#include "platform/files/FileSystem.h"
#include "platform/records/DBEngine.h"

namespace
{
/// The folder, or the first on the way up from it that is there.
QString NearestFolder(const QString& folder)
{
    QString nearest = folder;
    while (!FileHelper::FolderExists(nearest) && FileHelper::FolderOf(nearest).size() < nearest.size())
        nearest = FileHelper::FolderOf(nearest);
    return nearest;
}

/// Why there is no backup.
Failure WhyNone(const cTolvaDatabase& database, const QString& folder)
{
    const int number = database.LastErrorNumber();
    if (number == dao::errCancelled)
        return Failure(exitInterrupted, QStringLiteral("Ended early; no backup was made."));
    const QString file = StationPlace::FileIn(folder);
    const QString root = BackupFolders::RootOf(file);
    // A path is that of the backup's folder, which could not be made; a file that cannot be opened may be the copy.
    if (number == 0 || number == dao::errNotAValidPath || number == dao::errCannotOpen) {
        const FileStatus may = FileSystem::Current().MayWrite(NearestFolder(root));
        if (!may.IsDone())
            return Failure(exitNoPermission,
                           QStringLiteral("The backup could not be written into %1: %2").arg(root, may.Words()));
    }
    if (number != 0 && number != dao::errNotAValidPath)
        return StationOpening::FailureOf(folder, number, database.LastErrorDescription());
    if (const QString link = BackupFolders::LinkInTheWay(file); !link.isEmpty())
        return Failure(exitCannotCreate, QStringLiteral("No backup was made: %1 is a link, and nothing is written "
                                                        "through one. Take it away; another disk can be mounted "
                                                        "there instead.")
                                             .arg(link));
    return Failure(exitInputOutput, QStringLiteral("The backup could not be written into %1.").arg(root));
}

/// The folder that the station's last backup went to.
QString LastBackupName(const cTolvaDatabase& database, const QString& file)
{
    if (!dao::DBEngine::OpenDatabase(file)->Updatable()) {
        // It could not be noted in the station.
        const QList<BackupFolders::Backup> all = BackupFolders::List(BackupFolders::RootOf(file));
        return all.isEmpty() ? QString() : all.last().Name;
    }
    const QString last =
        database.DatabaseSetting(StationSettings::LastBackup.Key, StationSettings::LastBackup.Default).toString();
    return GetKeyValue(last, QStringLiteral("Name"), QStringLiteral(" "));
}
} // namespace

StationBackup::Result StationBackup::Make(cTolvaDatabase& database, const QString& folder)
{
    const QString file = StationPlace::FileIn(folder);
    try {
        Result result;
        const auto identity = dao::DBEngine::IdentityOf(file);
        result.Before = StationCounts::Of(file);
        if (!database.BackupDatabase(true))
            throw WhyNone(database, folder);
        result.Name = LastBackupName(database, file);
        // Somebody put an older backup back meanwhile, and the station knows nothing of this one.
        if (result.Name.trimmed().isEmpty())
            throw dao::Error(dao::errFileReplaced, QString());
        result.Folder = FileHelper::Join(BackupFolders::RootOf(file), result.Name);
        const QString copy = FileHelper::Join(result.Folder, FileHelper::FileNameOf(file));
        result.Size = FileHelper::FileSize(copy);
        result.Copy = StationCounts::Of(copy);
        result.After = StationCounts::Of(file);
        // While somebody files, the copy may hold more than before and less than after. A station that was put back
        // meanwhile, which changes its identity, may have lost again what the copy still has.
        const bool isSameState = dao::DBEngine::IdentityOf(file) == identity;
        if (isSameState && result.Before == result.After && result.Copy != result.Before) {
            throw Failure(exitData, QStringLiteral("The backup in %1 holds %2, the station %3.")
                                        .arg(result.Folder, result.Copy.Words(), result.Before.Words()));
        }
        return result;
    } catch (const dao::Error& error) {
        throw StationOpening::FailureOf(folder, error.Number(), error.Description());
    }
}
