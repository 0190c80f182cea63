// SPDX-License-Identifier: Apache-2.0
#include "OwnWords.h"

#include "platform/files/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>

namespace
{
/// Some hundred thousand words.
constexpr qint64 LargestOwnWords = 4LL << 20;
constexpr int LockPatience = 2000;
} // namespace

QStringList OwnWords::In(const QString& file, FileStatus& status)
{
    status = FileStatus();
    const QFileInfo info(file);
    if (!info.exists() && !info.isSymLink())
        return {};
    if (info.isDir()) {
        status = FileStatus(FileError::IsFolder);
        return {};
    }
    QFile words(file);
    if (!info.isFile() || info.size() > LargestOwnWords || !words.open(QIODevice::ReadOnly)) {
        status = FileStatus(info.isFile() && !info.isReadable() ? FileError::NoPermission : FileError::Failed);
        return {};
    }
    QStringList result;
    for (const QString& line : QString::fromUtf8(words.readAll()).split(u'\n')) {
        if (const QString word = line.trimmed(); !word.isEmpty())
            result.append(word);
    }
    return result;
}

FileStatus OwnWords::Add(const QString& file, const QString& word)
{
    if (!QDir().mkpath(QFileInfo(file).path()))
        return FileStatus(FileError::NoPermission);
    QLockFile lock(file + QStringLiteral(".lock"));
    if (!lock.tryLock(LockPatience))
        return FileStatus(lock.error() == QLockFile::LockFailedError ? FileError::Locked : FileError::NoPermission);
    FileStatus status;
    QStringList words = In(file, status);
    if (!status.IsDone() || words.contains(word))
        return status;
    words.append(word);
    return WholeFile::Write(file, (words.join(u'\n') + u'\n').toUtf8(), IfThere::Replace);
}
