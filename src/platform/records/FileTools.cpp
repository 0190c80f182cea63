#include "platform/records/FileTools.h"

#include "platform/records/Error.h"

#include <QFile>
#include <QFileInfo>
#include <QUuid>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace dao
{

namespace
{

#ifdef Q_OS_UNIX
void Flush(const QString& path)
{
    const int file = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    const bool isFlushed = file >= 0 && fsync(file) == 0;
    if (file >= 0)
        close(file);
    if (!isFlushed)
        throw Error(errDiskError, QStringLiteral("Disk or network error on '%1'.").arg(path));
}
#else
/// Elsewhere the engine's own syncing has to do.
void Flush(const QString&) {}
#endif

} // namespace

TemporaryFile::TemporaryFile(const QString& target)
    : Name_(QFileInfo(target).absolutePath() + QLatin1String("/~") +
            QUuid::createUuid().toString(QUuid::Id128).left(12) + QLatin1String(".tmp"))
{
}

TemporaryFile::~TemporaryFile()
{
    if (!IsMoved_)
        QFile::remove(Name_);
    QFile::remove(Name_ + QLatin1String("-journal"));
}

void TemporaryFile::ReplaceEmpty(const QString& target) const
{
    const QFileInfo info(target);
    if (!info.isFile() || info.size() > 0)
        return;
    // Between a look at its size and its removal it could have become another process's finished file. Under a name of
    // our own nobody else touches it, and it can still be put back.
    const QString aside = Name_ + QLatin1String("-empty");
    if (!QFile::rename(target, aside))
        return;
    if (QFileInfo(aside).size() == 0)
        QFile::remove(aside);
    else
        QFile::rename(aside, target);
}

void TemporaryFile::MoveTo(const QString& target)
{
    Flush(Name_);
    ReplaceEmpty(target);
    // A rename that does not replace: somebody else's file of that name, made meanwhile, stays.
    if (!QFile::rename(Name_, target)) {
        throw Error(
            errCannotOpen,
            QStringLiteral("Cannot write '%1': a file of that name exists, or permission is missing.").arg(target));
    }
    IsMoved_ = true;
    try {
        Flush(QFileInfo(target).absolutePath());
    } catch (...) {
        QFile::remove(target);
        throw;
    }
}

} // namespace dao
