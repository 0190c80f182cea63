// SPDX-License-Identifier: Apache-2.0
#include "database/Leftovers.h"

#include "common/FileHelper.h"
#include "common/kvGeneral.h"
#include "database/BackupFolders.h"
#include "platform/files/WholeFile.h"
#include "platform/files/WorkClaim.h"
#include "platform/records/DBEngine.h"

#include <QDateTime>
#include <QDir>
#include <QRegularExpression>

namespace
{
constexpr qint64 DayMilliseconds = 86400000;
constexpr auto PlainFiles = QDir::Files | QDir::Hidden | QDir::System | QDir::NoSymLinks;

/// The names that only programs of ours make, and what else may tell that nobody is at work under one any more.
class WorkingNames
{
public:
    explicit WorkingNames(const QString& databaseName)
        : DatabaseName_(databaseName),
          Random_(QStringLiteral("~[0-9a-f]{12}\\.tmp|\\.copy-[0-9a-f]{1,16}|%1\\.restored-[0-9a-f]{12}")
                      .arg(QRegularExpression::escape(databaseName))),
          Brief_(QStringLiteral("\\.unfinished-[0-9a-f]{1,16}|TOLVA(-DESK)?[0-9A-F]{1,8}\\.tmp"))
    {
        for (QRegularExpression* names : {&Random_, &Brief_, &Compacted_})
            names->setPattern(QRegularExpression::anchoredPattern(names->pattern()));
    }

    /// With a dead process's claim beside it such a file goes.
    bool AreClaimed(const QString& name) const
    {
        return name != DatabaseName_ && (Random_.match(name).hasMatch() || Compacted_.match(name).hasMatch());
    }
    /// Without any claim such a file goes when it has not changed for a day: its claim did not reach the disk, or an
    /// older program made it, or it is one that is written within moments. A copy that somebody keeps may be called
    /// like a compacted one, so these are not among them.
    bool AreKnownByAge(const QString& name) const
    {
        return Random_.match(name).hasMatch() || Brief_.match(name).hasMatch();
    }

private:
    QString DatabaseName_;
    QRegularExpression Random_;
    QRegularExpression Brief_;
    QRegularExpression Compacted_{QStringLiteral(".*[0-9A-F]{1,8}\\.MDB")};
};

void RemoveFile(const QString& file)
{
    FileSystem& files = FileSystem::Current();
    if (files.KindOf(file) != FileKind::File)
        return;
    const FileStatus status = files.Remove(file);
    WriteDebugLog(status.IsDone()
                      ? QStringLiteral("Removed '%1', which a program that was ended left behind.").arg(file)
                      : QStringLiteral("'%1', which a program that was ended left behind, could not be removed: %2")
                            .arg(file, status.Words()));
}

void RemoveWithCompanions(const QString& file)
{
    RemoveFile(file);
    for (const QString& companion : dao::DBEngine::CompanionsOf(file))
        RemoveFile(companion);
}

/// Unchanged for a day, locked by nobody, and no second name of a file that is in use under its own.
bool IsForgotten(const QString& file)
{
    FileSystem& files = FileSystem::Current();
    const auto attributes = files.AttributesOf(file);
    if (!attributes || attributes->Names != 1 || !attributes->ChangedMilliseconds ||
        QDateTime::currentMSecsSinceEpoch() - *attributes->ChangedMilliseconds < DayMilliseconds)
        return false;
    FileStatus status;
    const auto handle = files.Open(file, FileAccess::Change, status);
    constexpr qint64 toTheEnd = 0;
    return handle && handle->Lock(FileLock::Exclusive, 0, toTheEnd).IsDone();
}

/// What the file belongs to: itself, or the file that it is a companion of.
QString OwnerOf(const QString& file)
{
    const qsizetype length = FileHelper::FileNameOf(file).size();
    for (const QString& companion : dao::DBEngine::CompanionsOf(file)) {
        const QString ending = FileHelper::FileNameOf(companion).mid(length);
        if (file.endsWith(ending))
            return file.chopped(ending.size());
    }
    return file;
}

/// What nobody claims.
void RemoveForgotten(const QString& file, const WorkingNames& names)
{
    const QString owner = OwnerOf(file);
    const auto isThere = [](const QString& name) { return FileSystem::Current().KindOf(name) != FileKind::None; };
    if (names.AreKnownByAge(FileHelper::FileNameOf(owner)) && !isThere(WorkClaim::NameFor(owner)) &&
        (owner == file || !isThere(owner)) && IsForgotten(file))
        RemoveFile(file);
}

void RemoveIn(const QString& folder, const WorkingNames& names)
{
    const QString claimEnding = WorkClaim::NameFor(QString());
    for (const QString& name : QDir(folder).entryList(PlainFiles)) {
        const QString file = FileHelper::Join(folder, name);
        if (name.endsWith(claimEnding)) {
            if (!names.AreClaimed(name.chopped(claimEnding.size())))
                continue;
            const QString claimed = file.chopped(claimEnding.size());
            // Held until all of it is gone; the claim goes last.
            if (const std::unique_ptr<WorkClaim> claim = WorkClaim::TakeOver(claimed))
                RemoveWithCompanions(claimed);
        } else {
            RemoveForgotten(file, names);
        }
    }
}
} // namespace

void Leftovers::Remove(const QString& databaseFile)
{
    const QString place = FileHelper::FolderOf(databaseFile);
    const WorkingNames names(FileHelper::FileNameOf(databaseFile));
    const QString backups = BackupFolders::RootOf(databaseFile);
    QStringList folders{place, FileHelper::Join(place, QStringLiteral("HTMLDocs"))};
    for (const QString& name : QDir(backups).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot))
        folders.append(FileHelper::Join(backups, name));
    for (const QString& folder : folders) {
        if (LinkBelow(place, folder).isEmpty())
            RemoveIn(folder, names);
    }
}
