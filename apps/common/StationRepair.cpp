// SPDX-License-Identifier: Apache-2.0
#include "StationRepair.h"

#include "FileStamp.h"
#include "StationOpening.h"
#include "StationPlace.h"
#include "common/FileHelper.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/BackupFolders.h"
#include "database/FileExchange.h"
#include "database/Leftovers.h"
#include "database/StationStructure.h"
#include "platform/files/FileSystem.h"
#include "platform/records/DBEngine.h"
#include "platform/records/DatabaseRepair.h"

#include <QScopeGuard>
#include <QTemporaryDir>

namespace
{
constexpr int BackupsAsked = 3;

/// What to do with a damaged file whose rows are not read singly.
QString BackupAdvice(const QString& folder)
{
    const QString file = StationPlace::FileIn(folder);
    const QString root = BackupFolders::RootOf(file);
    const BackupFolders::Backup newest = BackupFolders::NewestSound(root, FileHelper::FileNameOf(file));
    if (newest.Folder.isEmpty())
        return QStringLiteral("There is no sound backup in %1. Keep the file, and look for a copy elsewhere: \"tolva "
                              "restore\" takes one that is put there.")
            .arg(root);
    return QStringLiteral("The newest sound backup is \"%1\"; put it back with: tolva restore %2")
        .arg(newest.Name, folder);
}

/// A file of another format: that nothing is wrong with it, or a Failure that says what to do.
StationRepair::Result Advise(const QString& folder)
{
    const QString file = StationPlace::FileIn(folder);
    dao::FileReport report;
    try {
        report = dao::DBEngine::ExamineDatabase(file);
    } catch (const dao::Error& error) {
        throw StationOpening::FailureOf(folder, error.Number(), error.Description());
    }
    const QString subject = QStringLiteral("The station in %1 ").arg(folder);
    switch (report.Verdict) {
    case dao::FileReport::State::Sound: {
        StationRepair::Result result;
        result.IsNeeded = false;
        return result;
    }
    case dao::FileReport::State::Repairable:
        throw Failure(exitData,
                      subject +
                          QStringLiteral("has lost no row; its indexes are repaired by: tolva compact %1").arg(folder));
    default:
        break;
    }
    const QString why = report.Faults.value(0);
    if (report.IsStructureSound)
        throw Failure(exitData, subject + QStringLiteral(
                                              "has damaged texts and is sound otherwise (%1). \"tolva check %2\" names "
                                              "them, and \"tolva recover\" fetches each from a backup.")
                                              .arg(why, folder));
    throw Failure(exitData, subject + QStringLiteral("is damaged (%1), and rows are saved singly only from files of "
                                                     "office programs. %2")
                                          .arg(why, BackupAdvice(folder)));
}

/// Files whose tables are like those of the station: an empty one, and its newest backups.
class Hints
{
public:
    Hints(const QString& file, const QString& engine)
    {
        const QList<BackupFolders::Backup> backups = BackupFolders::List(BackupFolders::RootOf(file));
        for (auto backup = backups.crbegin(); backup != backups.crend() && Files_.size() < BackupsAsked; ++backup)
            Files_ += FileHelper::Join(backup->Folder, FileHelper::FileNameOf(file));
        const QString empty = Folder_.filePath(QStringLiteral("Empty.mdb"));
        if (Folder_.isValid() && StationStructure::MakeEmpty(empty, engine) == 0)
            Files_ += empty;
    }

    const QStringList& Files() const { return Files_; }

private:
    QTemporaryDir Folder_;
    QStringList Files_;
};

QString FreeKeepName(const QString& file)
{
    for (int count = 1;; ++count) {
        const QString name = QStringLiteral("%1-damaged-%2.BAK")
                                 .arg(FileHelper::WithoutExtension(file))
                                 .arg(count, 4, 10, QLatin1Char('0'));
        if (FileSystem::Current().KindOf(name) == FileKind::None)
            return name;
    }
}

bool IsNeeded(const QString& file, const dao::RepairReport& report)
{
    if (!report.IsWhole())
        return true;
    try {
        return dao::DBEngine::ExamineDatabase(file).Verdict != dao::FileReport::State::Sound;
    } catch (const dao::Error&) {
        return true;
    }
}

StationRepair::Result Repair(const QString& file, const QString& repaired, StationRepair::Put put)
{
    StationRepair::Result result;
    result.SizeBefore = FileHelper::FileSize(file);
    const Hints hints(file, dao::FormatOfDamaged(file));
    const auto progress = UserInterface::Current().Progress(QStringLiteral("Repairing"));
    const FileStamp stamp = FileStamp::Settled(file);
    result.Report = dao::RepairDatabase(file, repaired, hints.Files(),
                                        [&](qint64 done, qint64 total) { return progress->Advance(done, total); });
    result.SizeAfter = FileHelper::FileSize(repaired);
    result.IsNeeded = IsNeeded(file, result.Report);
    if (put == StationRepair::Put::Nowhere || !result.IsNeeded)
        return result;
    result.KeepName = FreeKeepName(file);
    FileExchange::ByRename(file, repaired, result.KeepName, [&] {
        if (FileStamp::Of(file) != stamp)
            throw dao::Error(dao::errLocked, QStringLiteral("It was changed meanwhile."));
    });
    return result;
}
} // namespace

StationRepair::Result StationRepair::Run(const QString& folder, Put put)
{
    const QString file = StationPlace::FileIn(folder);
    if (!StationPlace::HoldsStation(folder))
        throw Failure(exitNoInput, QStringLiteral("There is no station in %1.").arg(folder));
    if (dao::DBEngine::IsLinked(file))
        throw Failure(exitUnavailable, QStringLiteral("The station in %1 is on a server, which looks after its files "
                                                      "itself. Ask whoever runs the server, or put a backup back with: "
                                                      "tolva restore %1")
                                           .arg(folder));
    Leftovers::Remove(file);
    const QString repaired = GetTempFile(FileHelper::FolderOf(file), QStringLiteral("MDB"));
    if (repaired.isEmpty())
        throw Failure(exitInputOutput,
                      QStringLiteral("A second file cannot be written beside %1; nothing was changed.").arg(file));
    FileSystem::Current().Remove(repaired);
    const auto removed = qScopeGuard([&] { FileSystem::Current().Remove(repaired); });
    try {
        return Repair(file, repaired, put);
    } catch (const dao::Error& error) {
        if (error.Number() == dao::errCancelled)
            throw Failure(exitInterrupted, error.Description());
        if (error.Number() == dao::errUnrecognisedFormat)
            throw Failure(exitData, QStringLiteral("%1 is no database any more. %2").arg(file, BackupAdvice(folder)));
        if (error.Number() == dao::errNotSupported && dao::FormatOfDamaged(file) == QLatin1String("sqlite"))
            return Advise(folder);
        throw StationOpening::FailureOf(folder, error.Number(), error.Description());
    }
}
