// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/FileLocks.h"

#include <QThread>

#include <algorithm>

namespace dao::jet
{

namespace
{

constexpr qint64 FirstPlace = qint64(1) << 32; // Twice what such a file can grow to.
constexpr qint64 Readers = FirstPlace;
constexpr qint64 Writer = FirstPlace + 1;
constexpr qint64 Announced = FirstPlace + 2;
/// Milliseconds; short, so that who opens the file finds the moments between the commits of several writers.
constexpr unsigned long LongestPause = 4;

} // namespace

FileStatus FileLocks::Wait(FileLock kind, qint64 place, const QDeadlineTimer& deadline)
{
    for (unsigned long pause = 1;; pause = std::min(2 * pause, LongestPause)) {
        const FileStatus status = File_.Lock(kind, place, 1);
        if (status.Error() != FileError::Locked || deadline.hasExpired())
            return status;
        QThread::msleep(pause);
    }
}

void FileLocks::Unlock(qint64 place)
{
    static_cast<void>(File_.Unlock(place, 1)); // What cannot be let go now goes with the handle.
}

FileStatus FileLocks::BeginReading(const QDeadlineTimer& deadline)
{
    FileStatus status = Wait(FileLock::Shared, Announced, deadline);
    if (!status.IsDone())
        return status;
    status = Wait(FileLock::Shared, Readers, deadline);
    Unlock(Announced);
    return status;
}

void FileLocks::EndReading()
{
    Unlock(Readers);
}

FileStatus FileLocks::BeginWriting(const QDeadlineTimer& deadline)
{
    return Wait(FileLock::Exclusive, Writer, deadline);
}

void FileLocks::EndWriting()
{
    Unlock(Writer);
}

FileStatus FileLocks::ShutReadersOut(const QDeadlineTimer& deadline)
{
    FileStatus status = Wait(FileLock::Exclusive, Announced, deadline);
    if (!status.IsDone())
        return status;
    status = Wait(FileLock::Exclusive, Readers, deadline);
    if (!status.IsDone())
        Unlock(Announced);
    return status;
}

void FileLocks::LetReadersIn()
{
    Unlock(Readers);
    Unlock(Announced);
}

} // namespace dao::jet
