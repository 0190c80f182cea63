// SPDX-License-Identifier: Apache-2.0
#include "database/RestoreBackup.h"

#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "database/FileExchange.h"
#include "database/Leftovers.h"
#include "platform/files/WorkClaim.h"
#include "platform/records/ContentExchange.h"
#include "platform/records/DBEngine.h"
#include "platform/records/FileTools.h"

#include <QUuid>

namespace
{
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
