// SPDX-License-Identifier: Apache-2.0
#include "platform/files/WorkClaim.h"

#include <QThread>

namespace
{
constexpr int MostTries = 1000; // of a millisecond each
} // namespace

QString WorkClaim::NameFor(const QString& name)
{
    return name + QStringLiteral("-claim");
}

WorkClaim::WorkClaim(const QString& name) : Work_(name), Name_(NameFor(name))
{
    for (int i = 0; i < MostTries && !TryToMake(); ++i)
        QThread::msleep(1);
}

bool WorkClaim::TryToMake()
{
    File_ = FileSystem::Current().Open(Name_, FileAccess::New, Status_);
    if (!File_)
        return Status_.Error() != FileError::Exists;
    const bool isTaken = File_->Lock(FileLock::Exclusive, 0, 1).Error() == FileError::Locked;
    if (!isTaken && IsThere())
        return true;
    File_.reset();
    Status_ = FileStatus(FileError::Exists);
    return false;
}

WorkClaim::WorkClaim(const QString& name, Abandoned) : Work_(name), Name_(NameFor(name))
{
    if (IsThere())
        File_ = FileSystem::Current().Open(Name_, FileAccess::Change, Status_);
    // Behind the lock once more: its maker may have finished meanwhile.
    if (File_ && (!File_->Lock(FileLock::Exclusive, 0, 1).IsDone() || !IsThere()))
        File_.reset();
}

std::unique_ptr<WorkClaim> WorkClaim::TakeOver(const QString& name)
{
    std::unique_ptr<WorkClaim> claim(new WorkClaim(name, Abandoned()));
    return claim->File_ ? std::move(claim) : nullptr;
}

WorkClaim::~WorkClaim()
{
    FileSystem& files = FileSystem::Current();
    // While it is locked: nobody is to take a claim for abandoned that is about to go.
    if (File_ && files.KindOf(Work_) == FileKind::None)
        files.Remove(Name_);
}

bool WorkClaim::IsThere() const
{
    return FileSystem::Current().KindOf(Name_) == FileKind::File;
}
