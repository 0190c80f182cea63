// SPDX-License-Identifier: Apache-2.0
#include "intake/FolderClaim.h"

#include "Failure.h"

#include <QDir>

FolderClaim::FolderClaim(const QString& folder)
{
    if (!QFileInfo(folder).isDir()) {
        throw Failure(exitNoInput,
                      QStringLiteral("%1 is no folder; --take takes messages out of folders.").arg(folder));
    }
    const QString name = QDir(folder).filePath(QStringLiteral(".tolva-taking"));
    FileStatus status;
    File_ = FileSystem::Current().Open(name, FileAccess::AppendOrNew, status);
    if (!File_) {
        const bool isForbidden = status.Error() == FileError::NoPermission || status.Error() == FileError::ReadOnly;
        throw Failure(isForbidden ? exitNoPermission : exitInputOutput,
                      QStringLiteral("%1 could not be opened, so nothing was taken: %2").arg(name, status.Words()));
    }
    status = File_->Lock(FileLock::Exclusive, 0, 1);
    if (status.Error() == FileError::Locked) {
        throw Failure(
            exitTemporary,
            QStringLiteral("Another program takes messages out of %1 just now. Nothing was taken.").arg(folder));
    }
    if (!status.IsDone()) {
        throw Failure(exitInputOutput,
                      QStringLiteral("%1 could not be locked, so nothing was taken: %2").arg(name, status.Words()));
    }
}
