// SPDX-License-Identifier: Apache-2.0
#include "common/DurableFile.h"

#include "common/FileHelper.h"
#include "platform/files/FileSystem.h"

bool DurableFile::SyncFolder(const QString& folder)
{
    return FileSystem::Current().SyncFolder(folder).IsDone();
}

bool DurableFile::RenameOver(const QString& oldName, const QString& newName)
{
    if (!FileSystem::Current().RenameOver(oldName, newName).IsDone())
        return false;
    SyncFolder(FileHelper::FolderOf(newName)); // it has its name; nothing could be taken back
    return true;
}

DurableFile::RenameResult DurableFile::RenameToFreeName(const QString& oldName, const QString& newName)
{
    switch (FileSystem::Current().RenameToFreeName(oldName, newName).Error()) {
    case FileError::None:
        break;
    case FileError::Exists:
        return RenameResult::TargetExists;
    case FileError::OtherFileSystem:
        return RenameResult::OtherFileSystem;
    default:
        return RenameResult::Failed;
    }
    SyncFolder(FileHelper::FolderOf(newName));
    if (FileHelper::FolderOf(oldName) != FileHelper::FolderOf(newName))
        SyncFolder(FileHelper::FolderOf(oldName));
    return RenameResult::Done;
}
