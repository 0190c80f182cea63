#include "database/RestoreBackup.h"

#include "common/DurableFile.h"
#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/BackupFolders.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/cTolvaDatabase.h"
#include "platform/records/DBEngine.h"

#include <QFile>

#include <filesystem>

namespace
{
MessageBoxAnswer Ask(const QString& text)
{
    return UserInterface::Current().MessageBox(
        {text, QString(), MessageBoxButtons::YesNo, MessageBoxIcon::Question, MessageBoxAnswer::No});
}

/// Gives the old file its keep name as well, or instead where a file has one name only.
bool Keep(const QString& databaseFile, const QString& keepName)
{
    std::error_code error;
    std::filesystem::create_hard_link(std::filesystem::path(databaseFile.toStdU16String()),
                                      std::filesystem::path(keepName.toStdU16String()), error);
    return !error || RenameWithChecks(databaseFile, keepName);
}

/// Its journal and the like go with the old file: under the restored one they would be taken for its own.
void MoveCompanions(const QString& from, const QString& to)
{
    const QStringList oldNames = dao::DBEngine::CompanionsOf(from);
    const QStringList newNames = dao::DBEngine::CompanionsOf(to);
    for (qsizetype i = 0; i < oldNames.size(); ++i) {
        if (FileHelper::FileExists(oldNames.at(i)))
            DurableFile::RenameOver(oldNames.at(i), newNames.at(i));
    }
}
} // namespace

QString RestoreBackup::KeepNameOf(const QString& databaseFile)
{
    return FileHelper::WithoutExtension(databaseFile) + QStringLiteral(".BAK");
}

RestoreBackup::Outcome RestoreBackup::Replace(const QString& databaseFile, const QString& backupFile,
                                              const QString& keepName, PendingError& failure)
{
    const QString restored = databaseFile + QStringLiteral(".restored");
    if (!FileHelper::CopyWithProgress(backupFile, restored, QStringLiteral("Restoring Backup"), &failure) ||
        FileHelper::FileSize(restored) <= 0)
        return Outcome::CopyFailed;
    const bool hasOld = FileHelper::FileExists(databaseFile);
    if (hasOld && !Keep(databaseFile, keepName)) {
        QFile::remove(restored);
        return Outcome::RenameFailed;
    }
    MoveCompanions(databaseFile, keepName);
    if (DurableFile::RenameOver(restored, databaseFile))
        return Outcome::Done;
    // Back to where it was.
    QFile::remove(restored);
    if (hasOld) {
        if (!FileHelper::FileExists(databaseFile))
            DurableFile::RenameOver(keepName, databaseFile);
        else
            QFile::remove(keepName); // a second name of the old file
        MoveCompanions(keepName, databaseFile);
    }
    return Outcome::CopyFailed;
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
    switch (RestoreBackup::Replace(fileName, FileHelper::Join(best.Folder, FileHelper::FileNameOf(fileName)), keepName,
                                   pending)) {
    case RestoreBackup::Outcome::Done:
        break;
    case RestoreBackup::Outcome::RenameFailed:
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
