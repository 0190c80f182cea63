// SPDX-License-Identifier: Apache-2.0
#include "database/FileExchange.h"

#include "common/DurableFile.h"
#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "platform/files/FileSystem.h"
#include "platform/records/ContentExchange.h"
#include "platform/records/DBEngine.h"
#include "platform/records/FileTools.h"

namespace
{
constexpr int OpenAttempts = 2;
constexpr int AllAttempts = 8;

/// Whether the file is certain to hold what it held. A disk that fails in the very last sync leaves that open, and then
/// the copy of the old content has to stay.
bool IsUnchanged(dao::ContentExchange& exchange)
{
    PendingError pending;
    bool isAsNoted = false;
    pending.Try([&] { isAsNoted = exchange.IsAsNoted(); });
    return isAsNoted;
}

/// Writes the copy of the old content; its name. Empty when nobody is to blame but another exchange, which took the
/// name meanwhile.
QString KeepContent(dao::ContentExchange& exchange, const FileExchange::Plan& plan)
{
    const QString keepName = plan.KeepName();
    const bool wasFree = !FileHelper::FileExists(keepName);
    try {
        exchange.KeepAs(keepName);
        return keepName;
    } catch (const dao::Error&) {
        if (wasFree && FileHelper::FileExists(keepName))
            return QString();
        throw;
    }
}

/// False when somebody wrote meanwhile; no copy is left then.
bool Exchange(dao::ContentExchange& exchange, const FileExchange::Plan& plan, const QString& keepName)
{
    try {
        if (exchange.Put(plan.Replacement))
            return true;
    } catch (...) {
        if (IsUnchanged(exchange))
            FileSystem::Current().Remove(keepName);
        throw;
    }
    FileSystem::Current().Remove(keepName);
    return false;
}

/// Gives the old file its keep name as well, or instead where a file has one name only.
void Keep(const QString& file, const QString& keepName)
{
    if (!FileSystem::Current().Link(file, keepName).IsDone() && !RenameWithChecks(file, keepName))
        throw dao::Error(dao::errCannotOpen, QStringLiteral("The old file cannot be renamed to '%1'.").arg(keepName));
}

/// Its journal and the like go with the old file: under the new one they would be taken for its own. False when one of
/// them stays.
bool MoveCompanions(const QString& from, const QString& to)
{
    const QStringList oldNames = dao::DBEngine::CompanionsOf(from);
    const QStringList newNames = dao::DBEngine::CompanionsOf(to);
    for (qsizetype i = 0; i < oldNames.size(); ++i) {
        if (FileHelper::FileExists(oldNames.at(i)) && !DurableFile::RenameOver(oldNames.at(i), newNames.at(i)))
            return false;
    }
    return true;
}

/// Everything goes back to where it was. hasOld: the file was there.
void PutBack(const QString& file, const QString& keepName, bool hasOld)
{
    if (hasOld) {
        if (FileHelper::FileExists(file))
            FileSystem::Current().Remove(keepName); // a second name of the old file
        else
            DurableFile::RenameOver(keepName, file);
    }
    MoveCompanions(keepName, file);
}
} // namespace

void FileExchange::GiveAccess(const QString& file, const QString& other)
{
    const FileStatus status = FileSystem::Current().CopyAccess(file, other);
    if (!status.IsDone())
        throw dao::Error(
            dao::ErrorNumberOf(status),
            QStringLiteral("The rights on '%1' cannot be given to '%2': %3").arg(file, other, status.Words()));
}

QString FileExchange::InPlace(const Plan& plan)
{
    dao::ContentExchange exchange(plan.File);
    for (int attempt = 1; attempt <= AllAttempts; ++attempt) {
        exchange.Note(attempt > OpenAttempts);
        plan.Make(exchange);
        if (!exchange.IsAsNoted())
            continue;
        const QString keepName = KeepContent(exchange, plan);
        if (!keepName.isEmpty() && Exchange(exchange, plan, keepName))
            return keepName;
    }
    throw dao::Error(dao::errLocked,
                     QStringLiteral("Others wrote to '%1' all the time; nothing was changed.").arg(plan.File));
}

void FileExchange::ByRename(const QString& file, const QString& replacement, const QString& keepName,
                            const std::function<void()>& check)
{
    const dao::FileLockout lockout(file);
    if (check)
        check();
    OverLink(file, replacement, keepName);
}

void FileExchange::OverLink(const QString& file, const QString& replacement, const QString& keepName)
{
    const bool hasOld = FileHelper::FileExists(file);
    if (hasOld) {
        GiveAccess(file, replacement);
        Keep(file, keepName);
    }
    if (MoveCompanions(file, keepName) && DurableFile::RenameOver(replacement, file))
        return;
    PutBack(file, keepName, hasOld);
    throw dao::Error(dao::errDiskError, QStringLiteral("'%1' cannot be renamed to '%2'.").arg(replacement, file));
}
