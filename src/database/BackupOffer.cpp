// SPDX-License-Identifier: Apache-2.0
#include "database/BackupOffer.h"

#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/BackupFolders.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/RestoreBackup.h"
#include "database/StationFile.h"

namespace
{
MessageBoxAnswer Ask(const QString& text)
{
    return UserInterface::Current().MessageBox(
        {text, QString(), MessageBoxButtons::YesNo, MessageBoxIcon::Question, MessageBoxAnswer::No});
}
} // namespace

qint32 OfferBackup(const QString& fileName, const QString& connect, qint32 failure, bool silent)
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
        ReportProblem(QStringLiteral("renaming the old corrupted database"), pending.Number(), silent,
                      pending.Description());
        return -1;
    case RestoreBackup::Outcome::CopyFailed:
        return -1;
    }
    QString title = StationFile::Title;
    return -DAO_DatabaseFunctions::ValidateDatabase(fileName, StationFile::Type, false, title, connect);
}
