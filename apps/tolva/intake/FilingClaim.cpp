// SPDX-License-Identifier: Apache-2.0
#include "intake/FilingClaim.h"

#include "Failure.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QThread>

FilingClaim::FilingClaim(const QString& station)
{
    constexpr qint64 longestWait = 5000; // milliseconds, as for a locked station
    constexpr unsigned long pause = 20;
    const QString name = QDir(station).filePath(QStringLiteral(".tolva-filing"));
    FileStatus status;
    File_ = FileSystem::Current().Open(name, FileAccess::AppendOrNew, status);
    const QDeadlineTimer deadline(longestWait);
    while (File_) {
        status = File_->Lock(FileLock::Exclusive, 0, 1);
        if (status.Error() != FileError::Locked || deadline.hasExpired())
            break;
        QThread::msleep(pause);
    }
    if (status.Error() == FileError::Locked)
        throw Failure(exitTemporary,
                      QStringLiteral("Another program files mails in %1 just now. Try again.").arg(station));
    if (!status.IsDone()) {
        throw Failure(
            exitTemporary,
            QStringLiteral("%1 could not be locked, so nothing was filed: %2 Try again.").arg(name, status.Words()));
    }
}
