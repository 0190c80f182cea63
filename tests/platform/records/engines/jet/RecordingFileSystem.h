// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileSystem.h"

#include <QByteArray>
#include <QHash>

#include <random>
#include <vector>

/// The machine's files, and a list of everything that was done to those of one folder since this was made: from it the
/// folder can be made again as a crash would have left it. In force from its making to its destruction.
class RecordingFileSystem final : public FileSystem
{
public:
    /// folder: with the files that are there at the beginning.
    explicit RecordingFileSystem(const QString& folder);
    ~RecordingFileSystem() override { SetCurrent(nullptr); }

    using Files = QHash<QString, QByteArray>; ///< Content by name, without the folder.

    std::size_t CallCount() const { return Calls_.size(); }
    /// The files when the process ends behind that many calls: all that was written is there.
    Files AfterKill(std::size_t calls) const { return After(calls, nullptr); }
    /// The same when the power goes: of what no sync has put on the disk some is there, some is not, and of some a
    /// part.
    Files AfterPowerLoss(std::size_t calls, std::mt19937& random) const { return After(calls, &random); }

    std::unique_ptr<FileHandle> Open(const QString& name, FileAccess access, FileStatus& status) override;
    FileKind KindOf(const QString& name) override { return System().KindOf(name); }
    std::optional<FileAttributes> AttributesOf(const QString& name) override { return System().AttributesOf(name); }
    FileStatus CopyAccess(const QString& from, const QString& to) override { return System().CopyAccess(from, to); }
    FileStatus RenameToFreeName(const QString& oldName, const QString& newName) override;
    FileStatus RenameOver(const QString& oldName, const QString& newName) override;
    FileStatus Link(const QString& name, const QString& secondName) override { return System().Link(name, secondName); }
    FileStatus Remove(const QString& name) override;
    FileStatus RemoveFolder(const QString& name) override { return System().RemoveFolder(name); }
    FileStatus MakeFolder(const QString& name) override { return System().MakeFolder(name); }
    FileStatus SyncFolder(const QString& folder) override;
    std::optional<qint64> FreeSpace(const QString& folder) override { return System().FreeSpace(folder); }
    FileStatus MayWrite(const QString& name) override { return System().MayWrite(name); }

private:
    friend class RecordedFile;

    enum class Kind
    {
        Make,
        Write,
        SetSize,
        Sync,
        Remove,
        SyncFolder
    };
    struct Call
    {
        Kind What = Kind::Sync;
        QString Name;
        qint64 Offset = 0; ///< Or the size.
        QByteArray Octets{};
    };

    Files After(std::size_t calls, std::mt19937* random) const;
    static void Apply(const Call& call, Files& files, std::mt19937* random);
    std::size_t LastSync(std::size_t calls, const Call& call, Kind kind) const;

    Files Beginning_;
    std::vector<Call> Calls_;
};
