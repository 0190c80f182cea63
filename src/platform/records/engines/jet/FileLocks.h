// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileSystem.h"

#include <QDeadlineTimer>

namespace dao::jet
{

/// The locks of one open file: ranges far behind the end that such a file can have, so that they are let go with it and
/// hinder nobody who does not know them. Readers share one; the one writer has another, and shuts readers out only
/// while pages are written. Who wants to shut them out announces it, so that no new readers come.
///
/// Each call waits up to the deadline. One thread.
class FileLocks
{
public:
    explicit FileLocks(FileHandle& file) : File_(file) {}

    /// Answers FileError::Locked when somebody else keeps his lock for longer.
    FileStatus BeginReading(const QDeadlineTimer& deadline);
    void EndReading();
    /// Nobody else writes from then on; others go on reading.
    FileStatus BeginWriting(const QDeadlineTimer& deadline);
    void EndWriting();
    /// Nobody else reads from then on; for the writer.
    FileStatus ShutReadersOut(const QDeadlineTimer& deadline);
    void LetReadersIn();

private:
    FileStatus Wait(FileLock kind, qint64 place, const QDeadlineTimer& deadline);
    void Unlock(qint64 place);

    FileHandle& File_;
};

} // namespace dao::jet
