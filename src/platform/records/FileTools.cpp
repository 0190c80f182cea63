// SPDX-License-Identifier: Apache-2.0
#include "platform/records/FileTools.h"

#include "platform/files/FileSystem.h"
#include "platform/records/Error.h"

#include <QFileInfo>
#include <QUuid>

namespace dao
{

namespace
{

/// As the engine makes its files: no wider than this whatever the account's mask allows.
constexpr int MostRights = 0644;
constexpr int RightsOfOwner = 0600;

[[noreturn]] void Raise(const QString& path, const FileStatus& status)
{
    throw Error(ErrorNumberOf(status), QStringLiteral("Cannot write '%1': %2").arg(path, status.Words()));
}

/// Puts what another hand wrote into the file on the disk, and gives it these rights, if any.
void Finish(const QString& path, std::optional<int> rights)
{
    FileStatus status;
    const auto file = FileSystem::Current().Open(path, FileAccess::Read, status);
    RequireWritten(path, status);
    if (rights)
        file->SetAttributes({*rights, std::nullopt});
    RequireWritten(path, file->Sync());
}

} // namespace

int ErrorNumberOf(const FileStatus& status)
{
    switch (status.Error()) {
    case FileError::Full:
        return errDiskFull;
    case FileError::Failed:
        return errDiskError;
    default:
        return errCannotOpen;
    }
}

void RequireWritten(const QString& file, const FileStatus& status)
{
    if (!status.IsDone())
        Raise(file, status);
}

void RequireNotDamaged(const QString& file, const FileReport& report)
{
    if (report.Verdict == FileReport::State::Damaged) {
        throw Error(errFileDamaged,
                    QStringLiteral("The database '%1' is damaged. (%2)").arg(file, report.Faults.value(0)));
    }
}

TemporaryFile::TemporaryFile(const QString& target)
    : Name_(QFileInfo(target).absolutePath() + QLatin1String("/~") +
            QUuid::createUuid().toString(QUuid::Id128).left(12) + QLatin1String(".tmp")),
      Claim_(Name_)
{
    RequireWritten(target, Claim_.Status());
    FileStatus status;
    const auto file = FileSystem::Current().Open(Name_, FileAccess::New, status);
    RequireWritten(target, status);
    if (const auto attributes = FileSystem::Current().AttributesOf(Name_))
        Rights_ = attributes->Rights & MostRights;
    file->SetAttributes({RightsOfOwner, std::nullopt});
}

TemporaryFile::~TemporaryFile()
{
    if (!IsMoved_)
        FileSystem::Current().Remove(Name_);
    FileSystem::Current().Remove(Name_ + QLatin1String("-journal"));
}

void TemporaryFile::CopyAccess(const QString& original)
{
    Rights_.reset();
    RequireWritten(Name_, FileSystem::Current().CopyAccess(original, Name_));
}

void TemporaryFile::LimitRights(const QString& original)
{
    const auto attributes = FileSystem::Current().AttributesOf(original);
    if (attributes && Rights_)
        Rights_ = *Rights_ & attributes->Rights;
}

void TemporaryFile::Vacate() const
{
    RequireWritten(Name_, FileSystem::Current().Remove(Name_));
}

void TemporaryFile::ReplaceEmpty(const QString& target) const
{
    FileSystem& files = FileSystem::Current();
    if (files.KindOf(target) != FileKind::File || QFileInfo(target).size() > 0)
        return;
    // Between a look at its size and its removal it could have become another process's finished file. Under a name of
    // our own nobody else touches it, and it can still be put back.
    const QString aside = Name_ + QLatin1String("-empty");
    if (!files.RenameToFreeName(target, aside).IsDone())
        return;
    if (QFileInfo(aside).size() == 0)
        files.Remove(aside);
    else
        files.RenameToFreeName(aside, target);
}

void TemporaryFile::MoveTo(const QString& target)
{
    FileSystem& files = FileSystem::Current();
    Finish(Name_, Rights_);
    ReplaceEmpty(target);
    // A rename that does not replace: somebody else's file of that name, made meanwhile, stays.
    RequireWritten(target, files.RenameToFreeName(Name_, target));
    IsMoved_ = true;
    const FileStatus synced = files.SyncFolder(QFileInfo(target).absolutePath());
    if (synced.IsDone())
        return;
    files.Remove(target);
    Raise(target, synced);
}

} // namespace dao
