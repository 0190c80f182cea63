#include "platform/records/FileTools.h"

#include "platform/records/Error.h"

#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cerrno>
#include <cstdio>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#include <sys/xattr.h>
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

/// Renames a file to a name that must be free, in one step: of two processes that want the name one gets it, and the
/// file that stands there is not touched. (QFile::rename looks first and renames then; where the name was taken in
/// between, it writes over the file that took it.)
bool MoveToFreeName(const QString& from, const QString& to)
{
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
#ifdef RENAME_NOREPLACE
    if (renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno == EEXIST)
        return false;
#endif
    // Network shares and older systems do not know it. A second name for the file fails as well where the name is
    // taken.
    if (link(source.constData(), target.constData()) == 0) {
        unlink(source.constData());
        return true;
    }
    // Without either there is a moment between the look and the step.
    return errno != EEXIST && access(target.constData(), F_OK) != 0 &&
           std::rename(source.constData(), target.constData()) == 0;
}
#else
/// Elsewhere the engine's own syncing has to do.
void Flush(const QString&) {}

bool MoveToFreeName(const QString& from, const QString& to)
{
    return QFile::rename(from, to);
}
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
    if (!MoveToFreeName(target, aside))
        return;
    if (QFileInfo(aside).size() == 0)
        QFile::remove(aside);
    else
        MoveToFreeName(aside, target);
}

void TemporaryFile::MoveTo(const QString& target)
{
    Flush(Name_);
    ReplaceEmpty(target);
    // A rename that does not replace: somebody else's file of that name, made meanwhile, stays.
    if (!MoveToFreeName(Name_, target)) {
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

#ifdef Q_OS_UNIX
namespace
{

void CopyAccessList([[maybe_unused]] const QByteArray& from, [[maybe_unused]] const QByteArray& to)
{
#ifdef Q_OS_LINUX
    constexpr char Attribute[] = "system.posix_acl_access";
    const ssize_t size = getxattr(from.constData(), Attribute, nullptr, 0);
    if (size <= 0)
        return;
    QByteArray list(size, '\0');
    const ssize_t read = getxattr(from.constData(), Attribute, list.data(), static_cast<std::size_t>(list.size()));
    if (read > 0)
        setxattr(to.constData(), Attribute, list.constData(), static_cast<std::size_t>(read), 0);
#endif
}

} // namespace

void CopyAccess(const QString& from, const QString& to)
{
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    struct stat status = {};
    if (stat(source.constData(), &status) != 0)
        return;
    // An account that may not give a file away may often still give it to a group of its own.
    if (chown(target.constData(), status.st_uid, status.st_gid) != 0 &&
        chown(target.constData(), static_cast<uid_t>(-1), status.st_gid) != 0) {
        // The group that it has may be another one. It must not get what the old one had.
        struct stat own = {};
        if (stat(target.constData(), &own) != 0 || own.st_gid != status.st_gid)
            status.st_mode &= ~static_cast<mode_t>(S_IRWXG);
    }
    // Behind chown, which takes bits away.
    chmod(target.constData(), status.st_mode & 07777U);
    CopyAccessList(source, target);
}
#else
void CopyAccess(const QString&, const QString&) {}
#endif

} // namespace dao
