// SPDX-License-Identifier: Apache-2.0
#include "platform/files/WholeFile.h"

#include "platform/files/FileSystem.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

namespace
{
QString FolderOf(const QString& name)
{
    return QFileInfo(name).path();
}

/// A name of its own for a file in the making, which goes with it unless it got its lasting one.
class UnfinishedName
{
public:
    explicit UnfinishedName(const QString& folder) : Name_(WholeFile::UnfinishedNameIn(folder)) {}
    ~UnfinishedName()
    {
        if (IsMade_)
            FileSystem::Current().Remove(Name_);
    }
    UnfinishedName(const UnfinishedName&) = delete;
    UnfinishedName& operator=(const UnfinishedName&) = delete;

    const QString& Name() const { return Name_; }
    void SetMade(bool made) { IsMade_ = made; }

private:
    QString Name_;
    bool IsMade_ = false;
};

FileStatus Fill(FileHandle& file, const QByteArray& content, const std::optional<FileAttributes>& old)
{
    FileStatus status = file.WriteAt(0, content.constData(), content.size());
    if (old && old->Rights != 0 && status.IsDone())
        file.SetAttributes({old->Rights, std::nullopt});
    if (status.IsDone())
        status = file.Sync();
    const FileStatus closed = file.Close();
    return status.IsDone() ? closed : status;
}

FileStatus PutToFreeName(UnfinishedName& unfinished, const QString& name)
{
    FileSystem& files = FileSystem::Current();
    FileStatus status = files.RenameToFreeName(unfinished.Name(), name);
    if (!status.IsDone())
        return status;
    unfinished.SetMade(false);
    status = files.SyncFolder(FolderOf(name));
    if (!status.IsDone())
        files.Remove(name);
    return status;
}

/// The old file keeps a second name until the new one's is on the disk, so that it can come back.
FileStatus PutOver(UnfinishedName& unfinished, const QString& name)
{
    FileSystem& files = FileSystem::Current();
    UnfinishedName old(FolderOf(name));
    const FileStatus linked = files.Link(name, old.Name());
    if (linked.IsDiskFailure())
        return linked;
    old.SetMade(linked.IsDone());
    FileStatus status = files.RenameOver(unfinished.Name(), name);
    if (!status.IsDone())
        return status;
    unfinished.SetMade(false);
    status = files.SyncFolder(FolderOf(name));
    if (!status.IsDone() && linked.IsDone())
        old.SetMade(!files.RenameOver(old.Name(), name).IsDone());
    return status;
}
} // namespace

QString WholeFile::UnfinishedNameIn(const QString& folder)
{
    return QDir(folder).filePath(QStringLiteral(".unfinished-") +
                                 QString::number(QRandomGenerator::global()->generate64(), 16));
}

FileStatus WholeFile::Write(const QString& name, const QByteArray& content, IfThere ifThere)
{
    FileSystem& files = FileSystem::Current();
    std::optional<FileAttributes> old; // of a file that is replaced
    switch (files.KindOf(name)) {
    case FileKind::None:
        break;
    case FileKind::Link:
        return FileStatus(ifThere == IfThere::Replace ? FileError::IsLink : FileError::Exists);
    case FileKind::Folder:
        return FileStatus(ifThere == IfThere::Replace ? FileError::IsFolder : FileError::Exists);
    case FileKind::Other:
        return FileStatus(ifThere == IfThere::Replace ? FileError::NotSupported : FileError::Exists);
    case FileKind::File:
        if (ifThere == IfThere::Refuse)
            return FileStatus(FileError::Exists);
        // A folder that may be written would let a file be replaced that is closed to this account.
        if (const FileStatus may = files.MayWrite(name); !may.IsDone())
            return may;
        old = files.AttributesOf(name).value_or(FileAttributes{});
        break;
    }
    FileStatus status;
    UnfinishedName unfinished(FolderOf(name));
    const auto file = files.Open(unfinished.Name(), FileAccess::New, status);
    if (!file)
        return status;
    unfinished.SetMade(true);
    status = Fill(*file, content, old);
    if (!status.IsDone())
        return status;
    return old ? PutOver(unfinished, name) : PutToFreeName(unfinished, name);
}

QString LinkBelow(const QString& folder, const QString& path)
{
    const QString top = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    for (QString part = QDir::cleanPath(QFileInfo(path).absoluteFilePath()); part.size() > top.size();
         part = QFileInfo(part).path()) {
        if (FileSystem::Current().KindOf(part) == FileKind::Link)
            return part;
    }
    return {};
}
