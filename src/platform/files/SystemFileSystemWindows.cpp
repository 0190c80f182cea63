// SPDX-License-Identifier: Apache-2.0

// The files of the machine, as Windows has them.

#include "platform/files/FileSystem.h"

#ifdef Q_OS_WIN

#include <qt_windows.h>

namespace
{
LPCWSTR Wide(const QString& name)
{
    return reinterpret_cast<LPCWSTR>(name.utf16());
}

FileStatus LastStatus()
{
    const DWORD number = GetLastError();
    const auto status = [number](FileError error) { return FileStatus(error, static_cast<int>(number)); };
    switch (number) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        return status(FileError::NotThere);
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
    case ERROR_DIR_NOT_EMPTY:
        return status(FileError::Exists);
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
        return status(FileError::NoPermission);
    case ERROR_WRITE_PROTECT:
        return status(FileError::ReadOnly);
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return status(FileError::Full);
    case ERROR_NOT_SAME_DEVICE:
        return status(FileError::OtherFileSystem);
    case ERROR_INVALID_FUNCTION:
    case ERROR_NOT_SUPPORTED:
        return status(FileError::NotSupported);
    case ERROR_LOCK_VIOLATION:
        return status(FileError::Locked);
    default:
        return status(FileError::Failed);
    }
}

FileStatus StatusOfCall(BOOL isDone)
{
    return isDone ? FileStatus() : LastStatus();
}

OVERLAPPED PlaceAt(qint64 offset)
{
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFF);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

class SystemFile final : public FileHandle
{
public:
    explicit SystemFile(HANDLE handle) : Handle_(handle) {}
    ~SystemFile() override
    {
        if (Handle_ != INVALID_HANDLE_VALUE)
            CloseHandle(Handle_);
    }

    FileStatus ReadAt(qint64 offset, char* data, qint64 size, qint64& count) override
    {
        for (count = 0; count < size;) {
            OVERLAPPED place = PlaceAt(offset + count);
            DWORD part = 0;
            if (!ReadFile(Handle_, data + count, static_cast<DWORD>(qMin(size - count, Piece)), &part, &place) &&
                GetLastError() != ERROR_HANDLE_EOF)
                return LastStatus();
            if (part == 0)
                break;
            count += part;
        }
        return {};
    }
    FileStatus WriteAt(qint64 offset, const char* data, qint64 size) override
    {
        for (qint64 done = 0; done < size;) {
            OVERLAPPED place = PlaceAt(offset + done);
            DWORD part = 0;
            if (!WriteFile(Handle_, data + done, static_cast<DWORD>(qMin(size - done, Piece)), &part, &place))
                return LastStatus();
            if (part == 0)
                return FileStatus(FileError::Full);
            done += part;
        }
        return {};
    }
    /// The largest offset there is means the end.
    FileStatus Append(const char* data, qint64 size) override { return WriteAt(-1, data, size); }
    qint64 Size() override
    {
        LARGE_INTEGER size = {};
        return GetFileSizeEx(Handle_, &size) ? size.QuadPart : -1;
    }
    FileStatus SetSize(qint64 size) override
    {
        FILE_END_OF_FILE_INFO end = {};
        end.EndOfFile.QuadPart = size;
        return StatusOfCall(SetFileInformationByHandle(Handle_, FileEndOfFileInfo, &end, sizeof(end)));
    }
    FileStatus Sync() override { return StatusOfCall(FlushFileBuffers(Handle_)); }
    FileStatus Close() override { return StatusOfCall(CloseHandle(std::exchange(Handle_, INVALID_HANDLE_VALUE))); }
    void SetAttributes(const FileAttributes& attributes) override
    {
        if (!attributes.ChangedMilliseconds)
            return;
        const qint64 ticks = (*attributes.ChangedMilliseconds + Since1601) * 10000;
        const FILETIME changed{static_cast<DWORD>(ticks & 0xFFFFFFFF), static_cast<DWORD>(ticks >> 32)};
        SetFileTime(Handle_, nullptr, nullptr, &changed);
    }
    FileStatus Lock(FileLock kind, qint64 offset, qint64 size) override
    {
        OVERLAPPED place = PlaceAt(offset);
        const DWORD flags = LOCKFILE_FAIL_IMMEDIATELY | (kind == FileLock::Exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0);
        return StatusOfCall(LockFileEx(Handle_, flags, 0, static_cast<DWORD>(size & 0xFFFFFFFF),
                                       static_cast<DWORD>(size >> 32), &place));
    }
    FileStatus Unlock(qint64 offset, qint64 size) override
    {
        OVERLAPPED place = PlaceAt(offset);
        return StatusOfCall(
            UnlockFileEx(Handle_, 0, static_cast<DWORD>(size & 0xFFFFFFFF), static_cast<DWORD>(size >> 32), &place));
    }

    bool HasName(const QString& name) override
    {
        const HANDLE other = CreateFileW(Wide(name), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (other == INVALID_HANDLE_VALUE)
            return false;
        BY_HANDLE_FILE_INFORMATION own = {};
        BY_HANDLE_FILE_INFORMATION named = {};
        const bool areKnown = GetFileInformationByHandle(Handle_, &own) && GetFileInformationByHandle(other, &named);
        CloseHandle(other);
        return areKnown && own.dwVolumeSerialNumber == named.dwVolumeSerialNumber &&
               own.nFileIndexHigh == named.nFileIndexHigh && own.nFileIndexLow == named.nFileIndexLow;
    }

    static constexpr qint64 Since1601 = 11644473600000; ///< Milliseconds until 1970.

private:
    static constexpr qint64 Piece = qint64{1} << 30;

    HANDLE Handle_;
};

class SystemFileSystem final : public FileSystem
{
public:
    std::unique_ptr<FileHandle> Open(const QString& name, FileAccess access, FileStatus& status) override
    {
        const bool isDevice = access == FileAccess::WriteToDevice;
        const FileKind kind = KindOf(name);
        if (kind == FileKind::Folder || (kind == FileKind::Link && access != FileAccess::Read && !isDevice)) {
            status = FileStatus(kind == FileKind::Folder ? FileError::IsFolder : FileError::IsLink);
            return nullptr;
        }
        DWORD rights = GENERIC_READ;
        if (access == FileAccess::Change || access == FileAccess::New)
            rights = GENERIC_READ | GENERIC_WRITE;
        else if (access != FileAccess::Read && access != FileAccess::ReadUnlinked)
            rights = isDevice ? GENERIC_WRITE : GENERIC_READ | FILE_APPEND_DATA;
        const DWORD making = access == FileAccess::New           ? CREATE_NEW
                             : access == FileAccess::AppendOrNew ? OPEN_ALWAYS
                                                                 : OPEN_EXISTING;
        const DWORD links = access == FileAccess::Read || isDevice ? 0 : FILE_FLAG_OPEN_REPARSE_POINT;
        const HANDLE handle = CreateFileW(Wide(name), rights, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                          nullptr, making, FILE_ATTRIBUTE_NORMAL | links, nullptr);
        status = StatusOfCall(handle != INVALID_HANDLE_VALUE);
        return status.IsDone() ? std::make_unique<SystemFile>(handle) : nullptr;
    }
    FileKind KindOf(const QString& name) override
    {
        const DWORD attributes = GetFileAttributesW(Wide(name));
        if (attributes == INVALID_FILE_ATTRIBUTES)
            return FileKind::None;
        if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
            return FileKind::Link;
        return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? FileKind::Folder : FileKind::File;
    }
    std::optional<FileAttributes> AttributesOf(const QString& name) override
    {
        WIN32_FILE_ATTRIBUTE_DATA data = {};
        if (!GetFileAttributesExW(Wide(name), GetFileExInfoStandard, &data))
            return std::nullopt;
        const qint64 ticks =
            (qint64{data.ftLastWriteTime.dwHighDateTime} << 32) + qint64{data.ftLastWriteTime.dwLowDateTime};
        return FileAttributes{0, ticks / 10000 - SystemFile::Since1601};
    }
    /// Files get theirs from their folder.
    FileStatus CopyAccess(const QString&, const QString&) override { return {}; }
    FileStatus RenameToFreeName(const QString& oldName, const QString& newName) override
    {
        return StatusOfCall(MoveFileExW(Wide(oldName), Wide(newName), MOVEFILE_WRITE_THROUGH));
    }
    FileStatus RenameOver(const QString& oldName, const QString& newName) override
    {
        return StatusOfCall(
            MoveFileExW(Wide(oldName), Wide(newName), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
    }
    FileStatus Link(const QString& name, const QString& secondName) override
    {
        return StatusOfCall(CreateHardLinkW(Wide(secondName), Wide(name), nullptr));
    }
    FileStatus Remove(const QString& name) override { return StatusOfCall(DeleteFileW(Wide(name))); }
    FileStatus RemoveFolder(const QString& name) override { return StatusOfCall(RemoveDirectoryW(Wide(name))); }
    FileStatus MakeFolder(const QString& name) override { return StatusOfCall(CreateDirectoryW(Wide(name), nullptr)); }
    /// A rename is written through.
    FileStatus SyncFolder(const QString&) override { return {}; }
    std::optional<qint64> FreeSpace(const QString& folder) override
    {
        ULARGE_INTEGER free = {};
        if (!GetDiskFreeSpaceExW(Wide(folder), &free, nullptr, nullptr))
            return std::nullopt;
        return static_cast<qint64>(free.QuadPart);
    }
    /// Folders tell it at the first write.
    FileStatus MayWrite(const QString& name) override
    {
        const DWORD attributes = GetFileAttributesW(Wide(name));
        if (attributes == INVALID_FILE_ATTRIBUTES)
            return LastStatus();
        const bool isClosed =
            (attributes & FILE_ATTRIBUTE_READONLY) != 0 && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
        return isClosed ? FileStatus(FileError::NoPermission) : FileStatus();
    }
};
} // namespace

FileSystem& FileSystem::System()
{
    static SystemFileSystem system;
    return system;
}

#endif
