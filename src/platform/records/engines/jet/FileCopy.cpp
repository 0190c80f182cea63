// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/FileCopy.h"

#include "platform/records/FileTools.h"
#include "platform/records/engines/jet/FileCheck.h"

#include <algorithm>
#include <cstring>

namespace dao::jet
{

namespace
{

constexpr qint64 SliceSize = qint64{1024} * 1024;

void CopyOctets(PageFile& file, const QString& copy, const engine::CopyProgress& progress)
{
    FileStatus status;
    const auto to = FileSystem::Current().Open(copy, FileAccess::Change, status);
    RequireWritten(copy, status);
    RequireWritten(copy, to->SetSize(0));
    QByteArray slice(SliceSize, Qt::Uninitialized);
    const qint64 total = file.Handle().Size();
    qint64 done = 0;
    qint64 count = SliceSize;
    while (count == SliceSize) {
        if (!file.Handle().ReadAt(done, slice.data(), SliceSize, count).IsDone())
            throw Error(errDiskError, QStringLiteral("'%1' cannot be read.").arg(file.Name()));
        RequireWritten(copy, to->WriteAt(done, slice.constData(), count));
        done += count;
        if (progress && !progress(done, std::max(done, total)))
            throw Error(errCancelled, QStringLiteral("Cancel was selected."));
    }
    RequireWritten(copy, to->Sync());
    RequireWritten(copy, to->Close());
}

/// Copies again what others changed since; they wait for it.
void CopyChanges(PageFile& file, const QString& copy)
{
    FileStatus status;
    const auto to = FileSystem::Current().Open(copy, FileAccess::Change, status);
    RequireWritten(copy, status);
    QByteArray wanted(SliceSize, Qt::Uninitialized);
    QByteArray copied(SliceSize, Qt::Uninitialized);
    qint64 at = 0;
    qint64 count = SliceSize;
    for (; count == SliceSize; at += count) {
        qint64 known = 0;
        if (!file.Handle().ReadAt(at, wanted.data(), SliceSize, count).IsDone() ||
            !to->ReadAt(at, copied.data(), SliceSize, known).IsDone())
            throw Error(errDiskError, QStringLiteral("'%1' cannot be read.").arg(file.Name()));
        if (known < count || std::memcmp(wanted.constData(), copied.constData(), static_cast<std::size_t>(count)) != 0)
            RequireWritten(copy, to->WriteAt(at, wanted.constData(), count));
    }
    RequireWritten(copy, to->SetSize(at));
    RequireWritten(copy, to->Sync());
    RequireWritten(copy, to->Close());
    if (file.Refresh())
        throw Error(errLocked, QStringLiteral("'%1' was changed by another program while it was copied. Try again when "
                                              "nobody else works in it.")
                                   .arg(file.Name()));
}

} // namespace

void CopyContent(FileSession& session, const QString& copy, const engine::CopyProgress& progress)
{
    // Nobody waits for the greater part of it.
    CopyOctets(session.Pages(), copy, progress);
    const ReadingScope scope(session);
    if (scope.SawChanges())
        CopyChanges(session.Pages(), copy);
}

void CopyFile(const QString& source, const QString& target, const engine::CopyProgress& progress)
{
    TemporaryFile copy(target);
    {
        FileSession session(source, PageFile::Use::Change);
        CopyContent(session, copy.Name(), progress);
    }
    RequireNotDamaged(source, ExamineFile(copy.Name(), progress));
    copy.LimitRights(source);
    copy.MoveTo(target);
}

} // namespace dao::jet
