// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// Renaming whose promise reaches the disk: the seam's operations, and the folder's sync behind them.
namespace DurableFile
{

enum class RenameResult
{
    Done,
    TargetExists,
    OtherFileSystem,
    Failed
};

/// Puts the names in a folder on the disk. False when the disk says no.
bool SyncFolder(const QString& folder);

/// Renames over whatever file or link bears the new name, in one step, and puts the name on the disk.
bool RenameOver(const QString& oldName, const QString& newName);
/// Renames in one step unless something bears the new name already.
RenameResult RenameToFreeName(const QString& oldName, const QString& newName);

} // namespace DurableFile
