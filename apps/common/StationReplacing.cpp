#include "StationReplacing.h"

#include "Failure.h"
#include "StationOpening.h"
#include "StationPlace.h"
#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/RestoreBackup.h"
#include "platform/files/FileSystem.h"
#include "platform/records/DBEngine.h"

namespace
{
void PutInPlace(const QString& file, const QString& copy, const QString& keepName)
{
    PendingError failure;
    const RestoreBackup::Outcome outcome = RestoreBackup::Replace(file, copy, keepName, failure);
    if (outcome == RestoreBackup::Outcome::Done)
        return;
    if (failure.Number() == dao::errCancelled)
        throw Failure(exitInterrupted, QStringLiteral("Ended early; nothing was changed."));
    if (failure)
        throw FailureOf(QStringLiteral("The backup"), copy, failure.Number(), failure.Description());
    throw Failure(
        exitInputOutput,
        QStringLiteral("The backup could not be put into %1; nothing was changed.").arg(FileHelper::FolderOf(file)));
}

/// The new file is written beside the old one.
Failure WhyNoSecondFile(const QString& folder, const QString& file)
{
    const auto words = [&](ExitCode code, const QString& why) {
        return Failure(
            code, QStringLiteral("The station in %1 could not be compacted; nothing was changed. ").arg(folder) + why);
    };
    FileSystem& files = FileSystem::Current();
    for (const QString& written : {folder, file}) {
        const FileStatus may = files.MayWrite(written);
        if (may.Error() == FileError::ReadOnly)
            return words(exitNoPermission, QStringLiteral("%1 lies on a disk that can only be read.").arg(written));
        if (!may.IsDone())
            return words(exitNoPermission, QStringLiteral("This account may not write %1.").arg(written));
    }
    const std::optional<qint64> free = files.FreeSpace(folder);
    if (free && *free < FileHelper::FileSize(file))
        return words(exitInputOutput, QStringLiteral("Its folder needs room for a second copy of the file."));
    return words(exitInputOutput, QStringLiteral("A second file could not be written beside it."));
}

/// Says why the record store cannot write another file of it.
Failure WhyNotCompacted(const QString& folder, const QString& file)
{
    try {
        dao::DBEngine::CheckDatabase(file);
    } catch (const dao::Error& error) {
        return StationOpening::FailureOf(folder, error.Number(), error.Description());
    }
    return WhyNoSecondFile(folder, file);
}

QString KeptName(const QString& keepName)
{
    return FileHelper::FileExists(keepName) ? keepName : QString();
}
} // namespace

std::optional<StationCounts> StationReplacing::CountsOf(const QString& file)
{
    try {
        return StationCounts::Of(file);
    } catch (const dao::Error&) {
        return std::nullopt;
    }
}

StationReplacing::Result StationReplacing::Restore(const QString& folder, const BackupFolders::Backup& backup)
{
    const QString file = StationPlace::FileIn(folder);
    const QString copy = FileHelper::Join(backup.Folder, FileHelper::FileNameOf(file));
    const std::optional<StationCounts> counts = CountsOf(copy);
    if (!counts)
        throw Failure(exitData, QStringLiteral("The backup \"%1\" is damaged; nothing was changed.").arg(backup.Name));
    Result result;
    result.Before = CountsOf(file);
    result.SizeBefore = FileHelper::FileSize(file);
    const QString keepName = DAO_DatabaseFunctions::FreeKeepName(file);
    PutInPlace(file, copy, keepName);
    const std::optional<StationCounts> after = CountsOf(file);
    if (after != counts)
        throw Failure(exitData, QStringLiteral("The restored station does not hold what the backup \"%1\" holds. The "
                                               "old file is kept as %2.")
                                    .arg(backup.Name, keepName));
    result.After = *after;
    result.SizeAfter = FileHelper::FileSize(file);
    result.KeepName = KeptName(keepName);
    return result;
}

StationReplacing::Result StationReplacing::Compact(const QString& folder)
{
    const QString file = StationPlace::FileIn(folder);
    if (!StationPlace::HoldsStation(folder))
        throw Failure(exitNoInput, QStringLiteral("There is no station in %1.").arg(folder));
    Result result;
    result.Before = CountsOf(file);
    result.SizeBefore = FileHelper::FileSize(file);
    const QString keepName = DAO_DatabaseFunctions::FreeKeepName(file);
    if (!DAO_DatabaseFunctions::CompactRepairDatabase(file, nullptr, QString(), true))
        throw WhyNotCompacted(folder, file);
    const std::optional<StationCounts> after = CountsOf(file);
    if (!after || (result.Before && after != result.Before))
        throw Failure(exitData, QStringLiteral("The compacted station does not hold what it held before. The old file "
                                               "is kept as %1.")
                                    .arg(keepName));
    result.After = *after;
    result.SizeAfter = FileHelper::FileSize(file);
    result.KeepName = KeptName(keepName);
    return result;
}
