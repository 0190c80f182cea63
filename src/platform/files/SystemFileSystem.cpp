// SPDX-License-Identifier: Apache-2.0

// The files of the machine, as POSIX has them.

#include "platform/files/FileSystem.h"

#ifdef Q_OS_UNIX

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#ifdef Q_OS_LINUX
#include <sys/xattr.h>
#endif

namespace
{
constexpr mode_t NewFileRights = 0666; // less what the account's mask takes away
constexpr mode_t NewFolderRights = 0777;
constexpr int RightsMask = 07777;

FileError ErrorOf(int number)
{
    switch (number) {
    case ENOENT:
    case ENOTDIR:
        return FileError::NotThere;
    case EEXIST:
    case ENOTEMPTY:
        return FileError::Exists;
    case EISDIR:
        return FileError::IsFolder;
    case ELOOP:
        return FileError::IsLink;
    case EACCES:
    case EPERM:
        return FileError::NoPermission;
    case EROFS:
        return FileError::ReadOnly;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return FileError::Full;
    case EXDEV:
        return FileError::OtherFileSystem;
    case EINVAL:
    case ENOSYS:
    case EOPNOTSUPP:
    case ENXIO:
        return FileError::NotSupported;
    default:
        return FileError::Failed;
    }
}

FileStatus StatusOf(int number)
{
    return FileStatus(ErrorOf(number), number);
}

FileStatus StatusOfCall(int result)
{
    return result == 0 ? FileStatus() : StatusOf(errno);
}

/// Again when a signal came in between.
template <typename Call>
auto Retried(Call&& call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

FileKind KindOfMode(mode_t mode)
{
    if (S_ISREG(mode))
        return FileKind::File;
    if (S_ISDIR(mode))
        return FileKind::Folder;
    return S_ISLNK(mode) ? FileKind::Link : FileKind::Other;
}

class SystemFile final : public FileHandle
{
public:
    explicit SystemFile(int handle) : Handle_(handle) {}
    ~SystemFile() override
    {
        if (Handle_ >= 0)
            ::close(Handle_);
    }
    SystemFile(const SystemFile&) = delete;
    SystemFile& operator=(const SystemFile&) = delete;

    FileStatus ReadAt(qint64 offset, char* data, qint64 size, qint64& count) override
    {
        for (count = 0; count < size;) {
            const ssize_t part = Retried(
                [&] { return ::pread(Handle_, data + count, static_cast<size_t>(size - count), offset + count); });
            if (part < 0)
                return StatusOf(errno);
            if (part == 0)
                break;
            count += part;
        }
        return {};
    }
    FileStatus WriteAt(qint64 offset, const char* data, qint64 size) override
    {
        return WriteAll(size,
                        [&](qint64 done, size_t rest) { return ::pwrite(Handle_, data + done, rest, offset + done); });
    }
    FileStatus Append(const char* data, qint64 size) override
    {
        return WriteAll(size, [&](qint64 done, size_t rest) { return ::write(Handle_, data + done, rest); });
    }
    qint64 Size() override
    {
        struct stat status = {};
        return ::fstat(Handle_, &status) == 0 ? status.st_size : -1;
    }
    FileStatus SetSize(qint64 size) override
    {
        return StatusOfCall(Retried([&] { return ::ftruncate(Handle_, size); }));
    }
    FileStatus Sync() override
    {
        if (Retried([&] { return ::fsync(Handle_); }) == 0)
            return {};
        // Pipes and devices have nothing to put on a disk.
        const bool hasDisk = KindOfHandle() == FileKind::File;
        return (errno == EINVAL || errno == EROFS) && !hasDisk ? FileStatus() : StatusOf(errno);
    }
    FileStatus Close() override
    {
        const int handle = std::exchange(Handle_, -1);
        // After a signal the file is closed all the same, and its number may be another's.
        return ::close(handle) == 0 || errno == EINTR ? FileStatus() : StatusOf(errno);
    }
    void SetAttributes(const FileAttributes& attributes) override
    {
        static_cast<void>(::fchmod(Handle_, static_cast<mode_t>(attributes.Rights & RightsMask)));
        if (!attributes.ChangedMilliseconds)
            return;
        const qint64 changed = *attributes.ChangedMilliseconds;
        const qint64 seconds = changed >= 0 ? changed / 1000 : -((-changed + 999) / 1000);
        timespec last = {};
        last.tv_nsec = UTIME_OMIT;
        timespec date = {};
        date.tv_sec = static_cast<time_t>(seconds);
        date.tv_nsec = static_cast<long>(changed - seconds * 1000) * 1000000;
        const std::array<timespec, 2> times{last, date};
        static_cast<void>(::futimens(Handle_, times.data()));
    }
    FileStatus Lock(FileLock kind, qint64 offset, qint64 size) override
    {
        return SetLock(kind == FileLock::Shared ? F_RDLCK : F_WRLCK, offset, size);
    }
    FileStatus Unlock(qint64 offset, qint64 size) override { return SetLock(F_UNLCK, offset, size); }
    bool HasName(const QString& name) override
    {
        struct stat own = {};
        struct stat named = {};
        return ::fstat(Handle_, &own) == 0 && ::stat(QFile::encodeName(name).constData(), &named) == 0 &&
               own.st_dev == named.st_dev && own.st_ino == named.st_ino;
    }

    FileKind KindOfHandle() const
    {
        struct stat status = {};
        const int before = errno;
        const bool isKnown = ::fstat(Handle_, &status) == 0;
        errno = before;
        return isKnown ? KindOfMode(status.st_mode) : FileKind::None;
    }

private:
    template <typename Call>
    static FileStatus WriteAll(qint64 size, Call&& call)
    {
        for (qint64 done = 0; done < size;) {
            const ssize_t part = Retried([&] { return call(done, static_cast<size_t>(size - done)); });
            if (part < 0)
                return StatusOf(errno);
            if (part == 0)
                return FileStatus(FileError::Full);
            done += part;
        }
        return {};
    }
    /// A lock of this handle, not of the process: closing another handle of the file keeps it.
    FileStatus SetLock(short type, qint64 offset, qint64 size) const
    {
        struct flock lock = {};
        lock.l_type = type;
        lock.l_whence = SEEK_SET;
        lock.l_start = offset;
        lock.l_len = size;
#ifdef F_OFD_SETLK
        constexpr int command = F_OFD_SETLK;
#else
        constexpr int command = F_SETLK;
#endif
        if (Retried([&] { return ::fcntl(Handle_, command, &lock); }) == 0)
            return {};
        return errno == EAGAIN || errno == EACCES ? FileStatus(FileError::Locked, errno) : StatusOf(errno);
    }

    int Handle_;
};

int FlagsFor(FileAccess access)
{
    // A pipe that somebody put there must not hold up whoever opens it; files do not know the flag.
    constexpr int always = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    switch (access) {
    case FileAccess::Read:
        return always | O_RDONLY;
    case FileAccess::ReadUnlinked:
        return always | O_RDONLY | O_NOFOLLOW;
    case FileAccess::Change:
        return always | O_RDWR | O_NOFOLLOW;
    case FileAccess::New:
        return always | O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW;
    case FileAccess::Append:
        return always | O_RDWR | O_APPEND | O_NOFOLLOW;
    case FileAccess::AppendOrNew:
        return always | O_RDWR | O_APPEND | O_CREAT | O_NOFOLLOW;
    case FileAccess::WriteToDevice:
        return O_CLOEXEC | O_NOCTTY | O_WRONLY;
    }
    return always | O_RDONLY;
}

/// For file systems that can neither refuse to overwrite nor give a file two names. Another process could take the name
/// in between; nothing better is to be had there.
FileStatus LookAndRename(const QByteArray& oldName, const QByteArray& newName)
{
    struct stat status = {};
    if (::lstat(newName.constData(), &status) == 0)
        return FileStatus(FileError::Exists, EEXIST);
    return StatusOfCall(::rename(oldName.constData(), newName.constData()));
}

/// Not every file system can rename without overwriting; a second name for the same file, made only where it is free,
/// comes to the same.
FileStatus LinkToFreeName(const QByteArray& oldName, const QByteArray& newName)
{
    if (::link(oldName.constData(), newName.constData()) != 0) {
        const bool hasNoLinks = errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS;
        return hasNoLinks ? LookAndRename(oldName, newName) : StatusOf(errno);
    }
    if (::unlink(oldName.constData()) == 0)
        return {};
    const FileStatus status = StatusOf(errno);
    ::unlink(newName.constData());
    return status;
}

/// A file's access list in the form in which the system hands it over; empty where there is none.
class AccessList
{
public:
    explicit AccessList([[maybe_unused]] const QByteArray& name)
    {
#ifdef Q_OS_LINUX
        const ssize_t size = ::getxattr(name.constData(), Attribute, nullptr, 0);
        if (size > 0)
            Octets_.resize(size);
        if (size < 0 || ::getxattr(name.constData(), Attribute, Octets_.data(), static_cast<size_t>(size)) != size)
            Status_ = errno == ENODATA || errno == EOPNOTSUPP ? FileStatus() : StatusOf(errno);
#endif
    }

    bool IsEmpty() const
    {
        return Octets_.isEmpty();
    }
    /// The owning group gets nothing.
    void TakeFromGroup()
    {
        // A version of four octets, then entries of eight: what it is about, the rights, the account.
        constexpr qsizetype begin = 4;
        constexpr qsizetype entry = 8;
        constexpr quint16 owningGroup = 4;
        for (qsizetype at = begin; at + entry <= Octets_.size(); at += entry) {
            if (qFromLittleEndian<quint16>(Octets_.constData() + at) == owningGroup)
                qToLittleEndian<quint16>(0, Octets_.data() + at + 2);
        }
    }
    /// Gives the file this list and no other, such as one that its folder gives to new files.
    FileStatus GiveTo([[maybe_unused]] const QByteArray& name) const
    {
        if (!Status_.IsDone())
            return Status_;
#ifdef Q_OS_LINUX
        if (!IsEmpty())
            return StatusOfCall(
                ::setxattr(name.constData(), Attribute, Octets_.constData(), static_cast<size_t>(Octets_.size()), 0));
        if (::removexattr(name.constData(), Attribute) != 0 && errno != ENODATA && errno != EOPNOTSUPP)
            return StatusOf(errno);
#endif
        return {};
    }

private:
    static constexpr char Attribute[] = "system.posix_acl_access";
    QByteArray Octets_;
    FileStatus Status_;
};

/// Gives a file these rights, or fewer where the file system knows no others.
FileStatus GiveRights(const QByteArray& name, mode_t rights)
{
    if (::chmod(name.constData(), rights) == 0)
        return {};
    const FileStatus refused = StatusOf(errno);
    struct stat status = {};
    const bool isNarrow = ::stat(name.constData(), &status) == 0 && (status.st_mode & RightsMask & ~rights) == 0;
    return isNarrow ? FileStatus() : refused;
}

/// False where the file's group is another one than that.
bool GiveOwners(const QByteArray& name, const struct stat& owners)
{
    // An account that may not give a file away may often still give it to a group of its own.
    if (::chown(name.constData(), owners.st_uid, owners.st_gid) == 0 ||
        ::chown(name.constData(), static_cast<uid_t>(-1), owners.st_gid) == 0)
        return true;
    struct stat own = {};
    return ::stat(name.constData(), &own) == 0 && own.st_gid == owners.st_gid;
}

FileStatus CopyAccessOf(const QByteArray& from, const QByteArray& to)
{
    struct stat status = {};
    if (::stat(from.constData(), &status) != 0)
        return StatusOf(errno);
    AccessList list(from);
    mode_t rights = status.st_mode & RightsMask;
    if (!GiveOwners(to, status)) {
        // The group that it has must not get what the old one had. With a list, these bits are the most that anybody
        // named in it gets.
        if (list.IsEmpty())
            rights &= ~static_cast<mode_t>(S_IRWXG);
        else
            list.TakeFromGroup();
    }
    const FileStatus given = list.GiveTo(to);
    // Behind chown, which takes bits away.
    return given.IsDone() ? GiveRights(to, rights) : given;
}

class SystemFileSystem final : public FileSystem
{
public:
    std::unique_ptr<FileHandle> Open(const QString& name, FileAccess access, FileStatus& status) override
    {
        const QByteArray octets = QFile::encodeName(name);
        const int handle = Retried([&] { return ::open(octets.constData(), FlagsFor(access), NewFileRights); });
        if (handle < 0) {
            status = StatusOf(errno);
            return nullptr;
        }
        auto file = std::make_unique<SystemFile>(handle);
        const FileKind kind = file->KindOfHandle();
        if (access != FileAccess::WriteToDevice && kind != FileKind::File) {
            status = FileStatus(kind == FileKind::Folder ? FileError::IsFolder : FileError::NotSupported);
            return nullptr;
        }
        status = FileStatus();
        return file;
    }
    FileKind KindOf(const QString& name) override
    {
        struct stat status = {};
        return ::lstat(QFile::encodeName(name).constData(), &status) == 0 ? KindOfMode(status.st_mode) : FileKind::None;
    }
    std::optional<FileAttributes> AttributesOf(const QString& name) override
    {
        struct stat status = {};
        if (::stat(QFile::encodeName(name).constData(), &status) != 0)
            return std::nullopt;
        const timespec& changed = status.st_mtim;
        return FileAttributes{static_cast<int>(status.st_mode) & RightsMask,
                              qint64{changed.tv_sec} * 1000 + changed.tv_nsec / 1000000,
                              static_cast<qint64>(status.st_nlink)};
    }
    FileStatus CopyAccess(const QString& from, const QString& to) override
    {
        const QByteArray target = QFile::encodeName(to);
        const FileStatus status = CopyAccessOf(QFile::encodeName(from), target);
        if (!status.IsDone())
            ::chmod(target.constData(), S_IRUSR | S_IWUSR);
        return status;
    }
    FileStatus RenameToFreeName(const QString& oldName, const QString& newName) override
    {
        const QByteArray from = QFile::encodeName(oldName);
        const QByteArray to = QFile::encodeName(newName);
#ifdef RENAME_NOREPLACE
        if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
            return {};
        if (errno != EINVAL && errno != ENOSYS)
            return StatusOf(errno);
#endif
        return LinkToFreeName(from, to);
    }
    FileStatus RenameOver(const QString& oldName, const QString& newName) override
    {
        return StatusOfCall(::rename(QFile::encodeName(oldName).constData(), QFile::encodeName(newName).constData()));
    }
    FileStatus Link(const QString& name, const QString& secondName) override
    {
        return StatusOfCall(::link(QFile::encodeName(name).constData(), QFile::encodeName(secondName).constData()));
    }
    FileStatus Remove(const QString& name) override
    {
        return StatusOfCall(::unlink(QFile::encodeName(name).constData()));
    }
    FileStatus RemoveFolder(const QString& name) override
    {
        return StatusOfCall(::rmdir(QFile::encodeName(name).constData()));
    }
    FileStatus MakeFolder(const QString& name) override
    {
        return StatusOfCall(::mkdir(QFile::encodeName(name).constData(), NewFolderRights));
    }
    FileStatus SyncFolder(const QString& folder) override
    {
        const QByteArray name = QFile::encodeName(folder.isEmpty() ? QStringLiteral(".") : folder);
        const int handle = Retried([&] { return ::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
        if (handle < 0)
            return errno == EACCES ? FileStatus() : StatusOf(errno); // one that may be written and not read
        const bool isDone = Retried([&] { return ::fsync(handle); }) == 0 || errno == EINVAL || errno == EROFS;
        const FileStatus status = isDone ? FileStatus() : StatusOf(errno);
        ::close(handle);
        return status;
    }
    std::optional<qint64> FreeSpace(const QString& folder) override
    {
        struct statvfs status = {};
        if (::statvfs(QFile::encodeName(folder).constData(), &status) != 0)
            return std::nullopt;
        return static_cast<qint64>(status.f_bavail) * static_cast<qint64>(status.f_frsize);
    }
    FileStatus MayWrite(const QString& name) override
    {
        const QByteArray octets = QFile::encodeName(name.isEmpty() ? QStringLiteral(".") : name);
        return StatusOfCall(::faccessat(AT_FDCWD, octets.constData(), W_OK, AT_EACCESS));
    }
};
} // namespace

FileSystem& FileSystem::System()
{
    static SystemFileSystem system;
    return system;
}

#endif
