#pragma once

#include "platform/Export.h"

#include <QString>

class PendingError;

/// Putting a backup in the place of a database. At every moment the old file or the backup's copy stands under the
/// database's name, where the file system has hard links; elsewhere but for the moment between two renames.
namespace RestoreBackup
{

enum class Outcome
{
    Done,
    CopyFailed,  ///< The old file stands as it did.
    RenameFailed ///< The same; the user has been told why where there was a reason.
};

/// The name under which the old file is kept: the database's with the extension "BAK".
TOLVA_EXPORT QString KeepNameOf(const QString& databaseFile);

/// Copies backupFile whole beside databaseFile, shown as a restore, gives the old file, when there is one, the keep
/// name, which must be free, and the copy its name. Every program must have let go of the database. failure: what
/// stopped the copy, where that is known.
TOLVA_EXPORT Outcome Replace(const QString& databaseFile, const QString& backupFile, const QString& keepName,
                             PendingError& failure);

} // namespace RestoreBackup
