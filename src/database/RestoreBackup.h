// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QString>

#include <functional>

class PendingError;

/// Putting a backup in the place of a database that others may have open. Into the file itself where it can still be
/// read: then its mode, owner, access lists and names stay, and nobody is left with an old file. Otherwise by renaming.
namespace RestoreBackup
{

enum class Outcome
{
    Done,
    CopyFailed, ///< The old file stands as it did.
    NotPut      ///< The same: the copy could not be put in its place.
};

/// The name under which the old file is kept: the database's with the extension "BAK".
TOLVA_EXPORT QString KeepNameOf(const QString& databaseFile);

/// Copies backupFile whole beside databaseFile, shown as a restore, and puts the copy's content into it; the old
/// content, when there is a file, is kept under the keep name, which must be free and is asked for when it is time. The
/// automatic numbers go on behind those of the old file, where they can be read. Whoever has the database open is told
/// to open it anew (3734). failure: what stopped it, where that is known. keptAs gets the keep name.
TOLVA_EXPORT Outcome Replace(const QString& databaseFile, const QString& backupFile,
                             const std::function<QString()>& keepName, PendingError& failure,
                             QString* keptAs = nullptr);

} // namespace RestoreBackup
