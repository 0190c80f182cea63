// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileStatus.h"

#include <QtGlobal>

#include <memory>
#include <optional>

/// What is known of a file beside its content; what a copy takes over from its original.
struct FileAttributes
{
    int Rights = 0;                            ///< As the system counts them.
    std::optional<qint64> ChangedMilliseconds; ///< Since 1970, universal time; nothing to leave it as it is.
    qint64 Names = 1;                          ///< How many names the file has; never changed by SetAttributes.
};

enum class FileLock
{
    Shared,
    Exclusive
};

/// An open file. Whoever opened it owns it; closed at the latest by its destruction, which tells nobody of a failure:
/// whoever wrote calls Sync and Close and looks at both. Used by one thread at a time.
class FileHandle
{
public:
    FileHandle() = default;
    virtual ~FileHandle() = default;
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    /// count: the octets that were read; fewer than size at the end of the file alone.
    virtual FileStatus ReadAt(qint64 offset, char* data, qint64 size, qint64& count) = 0;
    /// All of it, or a failure; a part of it may be in the file then.
    virtual FileStatus WriteAt(qint64 offset, const char* data, qint64 size) = 0;
    /// Behind what is there at that moment, in one step where others append as well.
    virtual FileStatus Append(const char* data, qint64 size) = 0;
    /// -1 where it cannot be told.
    virtual qint64 Size() = 0;
    /// Cuts the file, or lengthens it by zeros.
    virtual FileStatus SetSize(qint64 size) = 0;
    /// Puts the content on the disk.
    virtual FileStatus Sync() = 0;
    /// Once; nothing is called afterwards. A failure may be the first news that something written before is lost.
    virtual FileStatus Close() = 0;

    /// As far as the file system keeps them.
    virtual void SetAttributes(const FileAttributes& attributes) = 0;

    /// Without waiting; FileError::Locked when another handle, in this process or elsewhere, has a lock that excludes
    /// it.
    virtual FileStatus Lock(FileLock kind, qint64 offset, qint64 size) = 0;
    virtual FileStatus Unlock(qint64 offset, qint64 size) = 0;

    /// Whether a name leads to this very file, and not to another one that took it, or to none.
    virtual bool HasName(const QString& name) = 0;
};

enum class FileAccess
{
    Read,         ///< A file that is there.
    ReadUnlinked, ///< The same, unless its name is a link.
    Change,       ///< Read and write a file that is there.
    New,          ///< Read and write a file that is made by this; FileError::Exists where anything bears the name.
    Append,       ///< Read a file that is there, and append to it.
    AppendOrNew,  ///< The same, made where there is none.
    WriteToDevice ///< What is no file, such as a pipe; links are followed.
};

/// What bears a name.
enum class FileKind
{
    None,
    File,
    Folder,
    Link, ///< Symbolic; whether it leads anywhere or not.
    Other ///< Devices, pipes, sockets.
};

/// The files of this machine. Everything that makes, changes, renames or removes a file goes through the one in force,
/// so that a test can put one there that fails.
///
/// Names are followed through links on their way. At their end no link is followed by what writes, but by
/// FileAccess::WriteToDevice; FileAccess::Read follows it. What is no plain file is refused (FileError::IsFolder,
/// NotSupported), without waiting at a pipe's end.
class FileSystem
{
public:
    FileSystem() = default;
    virtual ~FileSystem() = default;
    FileSystem(const FileSystem&) = delete;
    FileSystem& operator=(const FileSystem&) = delete;

    /// Null with the status that says why.
    virtual std::unique_ptr<FileHandle> Open(const QString& name, FileAccess access, FileStatus& status) = 0;
    /// Of the name itself, whatever a link under it leads to.
    virtual FileKind KindOf(const QString& name) = 0;
    /// Of the file, a link followed; without opening it.
    virtual std::optional<FileAttributes> AttributesOf(const QString& name) = 0;
    /// Gives a file to those who may use another one and to nobody else: its mode, its access list and, where this
    /// account may give it away, its owner and group. What cannot be given is left out. A failure when more would be
    /// left open than is by the other file, or its access list cannot be given; then the file is its owner's alone, as
    /// far as that can be had.
    virtual FileStatus CopyAccess(const QString& from, const QString& to) = 0;
    /// Renames in one step unless anything bears the new name (FileError::Exists).
    virtual FileStatus RenameToFreeName(const QString& oldName, const QString& newName) = 0;
    /// Renames in one step over whatever file or link bears the new name. A link is replaced, not followed.
    virtual FileStatus RenameOver(const QString& oldName, const QString& newName) = 0;
    /// Gives a file a second name, which must be free (FileError::Exists).
    virtual FileStatus Link(const QString& name, const QString& secondName) = 0;
    /// A file or a link, never what the link leads to.
    virtual FileStatus Remove(const QString& name) = 0;
    /// An empty one.
    virtual FileStatus RemoveFolder(const QString& name) = 0;
    /// Its parent must be there.
    virtual FileStatus MakeFolder(const QString& name) = 0;
    /// Puts the names in a folder on the disk. Done on file systems that have no such operation and need none.
    virtual FileStatus SyncFolder(const QString& folder) = 0;
    /// Octets that this account may still write there.
    virtual std::optional<qint64> FreeSpace(const QString& folder) = 0;
    /// Whether this account may write the file, or into the folder, of that name; what hinders it otherwise.
    virtual FileStatus MayWrite(const QString& name) = 0;

    static FileSystem& Current();
    /// Does not take ownership; null goes back to the system's.
    static void SetCurrent(FileSystem* fileSystem);
    /// The system's own, whatever is in force.
    static FileSystem& System();
};
