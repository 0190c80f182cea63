// SPDX-License-Identifier: Apache-2.0
#include "OwnWords.h"

#include "platform/files/FileSystem.h"
#include "platform/files/WholeFile.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QStringDecoder>
#include <QThread>

namespace
{
/// Some hundred thousand words.
constexpr qint64 LargestOwnWords = 4LL << 20;
constexpr qint64 LockPatience = 2000; // milliseconds
constexpr unsigned long LockPause = 20;

/// Octet by octet, or why it could not be read.
QByteArray Octets(FileHandle& file, QString& problem)
{
    const qint64 size = file.Size();
    if (size > LargestOwnWords) {
        problem = QCoreApplication::translate("OwnWords", "it is too large to be a list of words.");
        return {};
    }
    // One more: it must end where it says.
    QByteArray octets(qMax<qint64>(size, 0) + 1, Qt::Uninitialized);
    qint64 count = 0;
    FileStatus status = file.ReadAt(0, octets.data(), octets.size(), count);
    if (status.IsDone() && count != size)
        status = FileStatus(FileError::Failed);
    problem = status.Words();
    return octets.left(qMax<qint64>(size, 0));
}

/// Waits a moment for another desk that adds a word.
FileStatus Lock(FileHandle& file)
{
    const QDeadlineTimer deadline(LockPatience);
    for (;;) {
        const FileStatus status = file.Lock(FileLock::Exclusive, 0, 1);
        if (status.Error() != FileError::Locked || deadline.hasExpired())
            return status;
        QThread::msleep(LockPause);
    }
}
} // namespace

QStringList OwnWords::In(const QString& file, QString& problem)
{
    problem.clear();
    FileStatus status;
    const auto words = FileSystem::Current().Open(file, FileAccess::Read, status);
    if (!words) {
        if (status.Error() != FileError::NotThere || QFileInfo(file).isSymLink())
            problem = status.Words();
        return {};
    }
    const QByteArray octets = Octets(*words, problem);
    if (!problem.isEmpty())
        return {};
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(octets);
    if (decoder.hasError()) {
        problem = QCoreApplication::translate("OwnWords", "it is no text in UTF-8. Save %1 as UTF-8, or take it away.")
                      .arg(QDir::toNativeSeparators(file));
        return {};
    }
    QStringList result;
    for (const QString& line : text.split(u'\n')) {
        if (const QString word = line.trimmed(); !word.isEmpty())
            result.append(word);
    }
    return result;
}

QString OwnWords::Add(const QString& file, const QString& word)
{
    if (!QDir().mkpath(QFileInfo(file).path()))
        return FileStatus(FileError::NoPermission).Words();
    FileStatus status;
    const auto lock = FileSystem::Current().Open(file + QStringLiteral(".lock"), FileAccess::AppendOrNew, status);
    if (lock)
        status = Lock(*lock);
    if (!status.IsDone())
        return status.Words();
    QString problem;
    QStringList words = In(file, problem);
    if (!problem.isEmpty() || words.contains(word))
        return problem;
    words.append(word);
    return WholeFile::Write(file, (words.join(u'\n') + u'\n').toUtf8(), IfThere::Replace).Words();
}
