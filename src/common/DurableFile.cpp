#include "common/DurableFile.h"

#include "common/FileHelper.h"

#include <QFile>

#ifdef Q_OS_WIN
#include <qt_windows.h>

#include <io.h>

bool DurableFile::Sync(QFileDevice& file)
{
    return file.flush() && FlushFileBuffers(reinterpret_cast<HANDLE>(_get_osfhandle(file.handle()))) != 0;
}

void DurableFile::SyncFolder(const QString&) {}

bool DurableFile::RenameOver(const QString& oldName, const QString& newName)
{
    return MoveFileExW(reinterpret_cast<LPCWSTR>(oldName.utf16()), reinterpret_cast<LPCWSTR>(newName.utf16()),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

DurableFile::RenameResult DurableFile::RenameToFreeName(const QString& oldName, const QString& newName)
{
    if (MoveFileExW(reinterpret_cast<LPCWSTR>(oldName.utf16()), reinterpret_cast<LPCWSTR>(newName.utf16()),
                    MOVEFILE_WRITE_THROUGH) != 0)
        return RenameResult::Done;
    switch (GetLastError()) {
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
        return RenameResult::TargetExists;
    case ERROR_NOT_SAME_DEVICE:
        return RenameResult::OtherFileSystem;
    default:
        return RenameResult::Failed;
    }
}
#else
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
QByteArray FolderBytes(const QString& file)
{
    const QString folder = FileHelper::FolderOf(file);
    return QFile::encodeName(folder.isEmpty() ? QStringLiteral(".") : folder);
}

/// For file systems that can neither refuse to overwrite nor give a file two names. Another process could take the name
/// in between; nothing better is to be had there.
DurableFile::RenameResult LookAndRename(const QByteArray& oldName, const QByteArray& newName)
{
    struct stat status = {};
    if (::lstat(newName.constData(), &status) == 0)
        return DurableFile::RenameResult::TargetExists;
    return ::rename(oldName.constData(), newName.constData()) == 0 ? DurableFile::RenameResult::Done
                                                                   : DurableFile::RenameResult::Failed;
}

/// Not every file system can rename without overwriting; a second name for the same file, made only where it is free,
/// comes to the same.
DurableFile::RenameResult LinkToFreeName(const QByteArray& oldName, const QByteArray& newName)
{
    if (::link(oldName.constData(), newName.constData()) != 0) {
        if (errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS)
            return LookAndRename(oldName, newName);
        return errno == EEXIST ? DurableFile::RenameResult::TargetExists : DurableFile::RenameResult::Failed;
    }
    if (::unlink(oldName.constData()) == 0)
        return DurableFile::RenameResult::Done;
    ::unlink(newName.constData());
    return DurableFile::RenameResult::Failed;
}

DurableFile::RenameResult MoveToFreeName(const QByteArray& oldName, const QByteArray& newName)
{
    if (::renameat2(AT_FDCWD, oldName.constData(), AT_FDCWD, newName.constData(), RENAME_NOREPLACE) == 0)
        return DurableFile::RenameResult::Done;
    switch (errno) {
    case EEXIST:
        return DurableFile::RenameResult::TargetExists;
    case EXDEV:
        return DurableFile::RenameResult::OtherFileSystem;
    case EINVAL:
    case ENOSYS:
        return LinkToFreeName(oldName, newName);
    default:
        return DurableFile::RenameResult::Failed;
    }
}
} // namespace

bool DurableFile::Sync(QFileDevice& file)
{
    return file.flush() && ::fsync(file.handle()) == 0;
}

void DurableFile::SyncFolder(const QString& folder)
{
    const QByteArray name = QFile::encodeName(folder.isEmpty() ? QStringLiteral(".") : folder);
    const int handle = ::open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return;
    ::fsync(handle);
    ::close(handle);
}

bool DurableFile::RenameOver(const QString& oldName, const QString& newName)
{
    if (::rename(QFile::encodeName(oldName).constData(), QFile::encodeName(newName).constData()) != 0)
        return false;
    SyncFolder(FileHelper::FolderOf(newName));
    return true;
}

DurableFile::RenameResult DurableFile::RenameToFreeName(const QString& oldName, const QString& newName)
{
    const RenameResult result = MoveToFreeName(QFile::encodeName(oldName), QFile::encodeName(newName));
    if (result == RenameResult::Done) {
        SyncFolder(FileHelper::FolderOf(newName));
        if (FolderBytes(oldName) != FolderBytes(newName))
            SyncFolder(FileHelper::FolderOf(oldName));
    }
    return result;
}
#endif
