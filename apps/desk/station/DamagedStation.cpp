// SPDX-License-Identifier: Apache-2.0
#include "DamagedStation.h"

#include "Failure.h"
#include "StationPlace.h"
#include "StationReplacing.h"
#include "Words.h"
#include "common/FileHelper.h"
#include "common/UserInterface.h"

#include <QObject>

namespace
{
bool IsAgreed(const QString& problem, const QString& made)
{
    return UserInterface::Confirm(
        QObject::tr("%1\n\nThe newest backup that can be read was made on %2. Do you want to put it in the "
                    "place of the damaged file? The damaged file is kept beside it.\n\nWARNING! You must "
                    "quit from all copies of Tolva on all computers before.")
            .arg(problem, made));
}
} // namespace

QString DamagedStation::OfferBackup(const QString& folder, const QString& problem)
{
    const QString file = StationPlace::FileIn(folder);
    BackupFolders::Backup newest;
    {
        const BusyPointer busy;
        // The directory may be what is damaged, or the file whole again.
        if (!FileHelper::FileExists(file) || BackupFolders::IsSound(file)) {
            Words::Warn(problem);
            return QString();
        }
        newest = BackupFolders::NewestSound(BackupFolders::RootOf(file), FileHelper::FileNameOf(file));
    }
    if (newest.Folder.isEmpty()) {
        Words::Warn(problem);
        return QString();
    }
    const QString made = newest.CreatedDate.Format(QStringLiteral("dddddd hh:nn"));
    if (!IsAgreed(problem, made))
        return QString();
    try {
        const StationReplacing::Result result = StationReplacing::Restore(folder, newest);
        return RestoredWords(made, result.AfterWords(), result.KeepName);
    } catch (const Failure& failure) {
        Words::Warn(failure.Words());
        return QString();
    }
}

QString DamagedStation::RestoredWords(const QString& made, const QString& content, const QString& keepName)
{
    return QObject::tr("The station was restored from the backup of %1: %2.\n\nThe damaged file is kept as %3.")
        .arg(made, content, keepName);
}
