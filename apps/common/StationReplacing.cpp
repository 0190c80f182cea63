// SPDX-License-Identifier: Apache-2.0
#include "StationReplacing.h"

#include "Failure.h"
#include "FileStamp.h"
#include "LinkedDatabases.h"
#include "StationOpening.h"
#include "StationPlace.h"
#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/FileExchange.h"
#include "database/Leftovers.h"
#include "database/RestoreBackup.h"
#include "platform/files/FileSystem.h"
#include "platform/records/DBEngine.h"
#include "platform/records/FileConversion.h"
#include "platform/records/FileTools.h"

#include <QScopeGuard>

namespace
{
/// The name of the old content.
QString PutInPlace(const QString& folder, const QString& file, const QString& copy)
{
    QString keepName;
    const auto freeName = [&] { return DAO_DatabaseFunctions::FreeKeepName(file); };
    PendingError failure;
    const RestoreBackup::Outcome outcome = RestoreBackup::Replace(file, copy, freeName, failure, &keepName);
    if (outcome == RestoreBackup::Outcome::Done)
        return keepName;
    if (failure.Number() == dao::errCancelled)
        throw Failure(exitInterrupted, QStringLiteral("Ended early; nothing was changed."));
    if (failure && outcome == RestoreBackup::Outcome::NotPut)
        throw StationOpening::FailureOf(folder, failure.Number(), failure.Description());
    if (failure)
        throw FailureOf(QStringLiteral("The backup"), copy, failure.Number(), failure.Description());
    throw Failure(exitInputOutput,
                  QStringLiteral("The backup could not be put into %1; nothing was changed.").arg(folder));
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
Failure WhyNotCompacted(const QString& folder, const QString& file, const PendingError& failure)
{
    switch (failure.Number()) {
    case dao::errLocked:
    case dao::errFileReplaced:
    case dao::errDiskFull:
    case dao::errReadOnly:
        return StationOpening::FailureOf(folder, failure.Number(), failure.Description());
    case dao::errNotSupported:
        // Its engine writes no content in place.
        return StationOpening::FailureOf(folder, dao::errReadOnly, failure.Description());
    default:
        break;
    }
    try {
        dao::DBEngine::CheckDatabase(file);
    } catch (const dao::Error& error) {
        return StationOpening::FailureOf(folder, error.Number(), error.Description());
    }
    return WhyNoSecondFile(folder, file);
}

/// Of a file that was just put in place. Nothing when others are at work on it already, which is no fault of the file.
std::optional<StationCounts> CountsAfter(const QString& file, const QString& damaged, const QString& keepName)
{
    try {
        return StationCounts::Of(file);
    } catch (const dao::Error& error) {
        if (error.Number() == dao::errLocked || error.Number() == dao::errFileReplaced)
            return std::nullopt;
        throw Failure(exitData, damaged.arg(keepName));
    }
}

QString KeptName(const QString& keepName)
{
    return FileHelper::FileExists(keepName) ? keepName : QString();
}
} // namespace

QString StationReplacing::Result::AfterWords() const
{
    return After ? After->Words() : QStringLiteral("in use by others");
}

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
    const QString keepName = PutInPlace(folder, file, copy);
    // What was put back was read whole before. Others may have filed into it already, so that it is not compared.
    result.After =
        CountsAfter(file, QStringLiteral("The restored station cannot be read. The old file is kept as %1."), keepName);
    result.SizeAfter = FileHelper::FileSize(file);
    result.KeepName = KeptName(keepName);
    return result;
}

namespace
{
/// then: behind the copying, when nobody else can change the database any more, and in front of the exchange.
void MoveFileFromServer(const QString& file, const QString& engine, const QString& words,
                        const std::function<void()>& then, StationReplacing::Result& result)
{
    Leftovers::Remove(file);
    const dao::TemporaryFile copy(file);
    copy.Vacate();
    const auto progress = UserInterface::Current().Progress(words);
    result.Left.append(dao::MoveOutOfLinked(
        file, copy.Name(), engine, [&](qint64 done, qint64 total) { return progress->Advance(done, total); },
        [&] {
            then();
            const QString keepName = DAO_DatabaseFunctions::FreeKeepName(file);
            FileExchange::OverLink(file, copy.Name(), keepName);
            // Of the two that are kept the station's is told.
            if (result.KeepName.isEmpty())
                result.KeepName = keepName;
        }));
}

StationReplacing::Result MoveFromServer(const QString& folder, const QString& engine)
{
    const QString file = StationPlace::FileIn(folder);
    const QString directory = StationPlace::DirectoryFileIn(folder);
    StationReplacing::Result result;
    result.Before = StationReplacing::CountsOf(file);
    result.SizeBefore = FileHelper::FileSize(file);
    const auto moveStation = [&] {
        if (dao::DBEngine::IsLinked(file))
            MoveFileFromServer(
                file, engine, QStringLiteral("Moving the station"), [] {}, result);
    };
    try {
        const QString usual;
        if (dao::DBEngine::IsLinked(directory))
            MoveFileFromServer(directory, usual, QStringLiteral("Moving the directory"), moveStation, result);
        else
            moveStation();
    } catch (const dao::Error& error) {
        if (error.Number() == dao::errCancelled)
            throw Failure(exitInterrupted, error.Description());
        throw StationOpening::FailureOf(folder, error.Number(), error.Description());
    }
    result.After = CountsAfter(
        file, QStringLiteral("The station cannot be read in its file. What said where it was is kept as %1."),
        result.KeepName);
    result.SizeAfter = FileHelper::FileSize(file);
    result.KeepName = KeptName(result.KeepName);
    return result;
}
} // namespace

StationReplacing::Result StationReplacing::Convert(const QString& folder, const QString& engine)
{
    const QString file = StationPlace::FileIn(folder);
    if (dao::DBEngine::IsLinked(file) || dao::DBEngine::IsLinked(StationPlace::DirectoryFileIn(folder)))
        return MoveFromServer(folder, engine);
    Leftovers::Remove(file);
    const QString converted = GetTempFile(FileHelper::FolderOf(file), QStringLiteral("MDB"));
    if (converted.isEmpty())
        throw WhyNoSecondFile(folder, file);
    FileSystem::Current().Remove(converted);
    const auto removed = qScopeGuard([&] { FileSystem::Current().Remove(converted); });
    Result result;
    result.Before = CountsOf(file);
    result.SizeBefore = FileHelper::FileSize(file);
    const auto progress = UserInterface::Current().Progress(QStringLiteral("Converting"));
    try {
        dao::ConvertDatabase(file, converted, engine,
                             [&](qint64 done, qint64 total) { return progress->Advance(done, total); });
        result.KeepName = DAO_DatabaseFunctions::FreeKeepName(file);
        FileExchange::ByRename(file, converted, result.KeepName);
    } catch (const dao::Error& error) {
        if (error.Number() == dao::errCancelled)
            throw Failure(exitInterrupted, error.Description());
        throw StationOpening::FailureOf(folder, error.Number(), error.Description());
    }
    result.After = CountsAfter(
        file, QStringLiteral("The converted station cannot be read. The old file is kept as %1."), result.KeepName);
    result.SizeAfter = FileHelper::FileSize(file);
    result.KeepName = KeptName(result.KeepName);
    return result;
}

namespace
{
/// The name of the old file; empty when it was on a server before.
QString MoveFileToServer(const QString& file, const QString& connect, const QString& part, const QString& words)
{
    if (dao::DBEngine::IsLinked(file)) {
        dao::FinishMoveIntoLinked(file);
        return {};
    }
    Leftovers::Remove(file);
    const dao::TemporaryFile working(file);
    working.Vacate();
    const QString& link = working.Name();
    LinkedDatabases linked;
    linked.Create(link, connect, part);
    const FileStamp stamp = FileStamp::Settled(file);
    const auto progress = UserInterface::Current().Progress(words);
    QString keepName;
    dao::MoveIntoLinked(
        file, link, [&](qint64 done, qint64 total) { return progress->Advance(done, total); },
        [&] {
            keepName = DAO_DatabaseFunctions::FreeKeepName(file);
            FileExchange::ByRename(file, link, keepName, [&] {
                if (FileStamp::Of(file) != stamp)
                    throw dao::Error(dao::errLocked, QStringLiteral("It was changed meanwhile."));
            });
            linked.Keep();
        });
    return keepName;
}
} // namespace

StationReplacing::Result StationReplacing::MoveToServer(const QString& folder, const QString& connect)
{
    const QString file = StationPlace::FileIn(folder);
    const QString directory = StationPlace::DirectoryFileIn(folder);
    Result result;
    try {
        if (FileHelper::FileExists(directory))
            MoveFileToServer(directory, connect, LinkedDatabases::DirectoryPart(),
                             QStringLiteral("Moving the directory"));
        result.Before = CountsOf(file);
        result.SizeBefore = FileHelper::FileSize(file);
        result.KeepName = MoveFileToServer(file, connect, QString(), QStringLiteral("Moving the station"));
    } catch (const dao::Error& error) {
        if (error.Number() == dao::errCancelled)
            throw Failure(exitInterrupted, error.Description());
        throw StationOpening::FailureOf(folder, error.Number(), error.Description());
    }
    result.After = CountsAfter(
        file, QStringLiteral("The station on the server cannot be read. The old file is kept as %1."), result.KeepName);
    result.SizeAfter = FileHelper::FileSize(file);
    result.KeepName = KeptName(result.KeepName);
    return result;
}

StationReplacing::Result StationReplacing::Compact(const QString& folder)
{
    const QString file = StationPlace::FileIn(folder);
    if (!StationPlace::HoldsStation(folder))
        throw Failure(exitNoInput, QStringLiteral("There is no station in %1.").arg(folder));
    if (dao::DBEngine::IsLinked(file)) {
        throw Failure(
            exitUnavailable,
            QStringLiteral("The station in %1 is on a server, which keeps it compact by itself.").arg(folder));
    }
    Result result;
    result.SizeBefore = FileHelper::FileSize(file);
    PendingError failure;
    QString keepName;
    if (!DAO_DatabaseFunctions::CompactRepairDatabase(file, nullptr, QString(), true, &failure, &keepName))
        throw WhyNotCompacted(folder, file, failure);
    // That is what the compacted content was made from; others may go on filing.
    result.Before = CountsOf(keepName);
    result.After = CountsAfter(
        file, QStringLiteral("The compacted station cannot be read. The old file is kept as %1."), keepName);
    result.SizeAfter = FileHelper::FileSize(file);
    result.KeepName = KeptName(keepName);
    return result;
}
