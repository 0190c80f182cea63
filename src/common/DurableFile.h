#pragma once

#include <QFileDevice>
#include <QString>

/// The few file operations whose promise reaches the disk, which the toolkit has no portable word for. Used by
/// FileHelper alone.
namespace DurableFile
{

enum class RenameResult
{
    Done,
    TargetExists,
    OtherFileSystem,
    Failed
};

/// Puts the written content of an open file on the disk. False when the disk says no.
bool Sync(QFileDevice& file);
/// Puts the names in a folder on the disk. File systems that have no such operation need none, so nothing is returned.
void SyncFolder(const QString& folder);

/// Renames over whatever file bears the new name, in one step, and puts the name on the disk.
bool RenameOver(const QString& oldName, const QString& newName);
/// Renames in one step unless something bears the new name already.
RenameResult RenameToFreeName(const QString& oldName, const QString& newName);

} // namespace DurableFile
