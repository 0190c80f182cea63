// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "StationCounts.h"
#include "database/BackupFolders.h"

#include <optional>

/// Putting another file in the place of a station's: a backup, a compacted copy, or the same in another format. Other
/// programs may have the station open; this one must have closed it. What the file held is kept beside it.
namespace StationReplacing
{
struct Result
{
    std::optional<StationCounts> Before; ///< Nothing when the old file could not be read.
    std::optional<StationCounts> After;  ///< Nothing when others were at work on the new one already.
    qint64 SizeBefore = 0;
    qint64 SizeAfter = 0;
    QString KeepName; ///< The old file's whole name now; empty when there was none.
    QStringList Left; ///< What stays on a server, closed: where it is, in words.

    QString AfterWords() const;
};

/// What a file holds; nothing when it cannot be read.
std::optional<StationCounts> CountsOf(const QString& file);

/// Puts the backup in the place of the station in the folder and makes sure that the station holds then what the backup
/// holds. Failure in words: code exitInterrupted when the user cancelled; nothing is changed unless it says so.
Result Restore(const QString& folder, const BackupFolders::Backup& backup);
/// Writes the station's file anew and makes sure that it holds what it held. Failure as above.
Result Compact(const QString& folder);
/// Writes the station's file in the format of the engine of that name and makes sure that it holds what it held, value
/// by value. A station on a server is moved from there, and its directory with it, all or nothing; what an attempt that
/// was cut off has moved already stays. Failure as above.
Result Convert(const QString& folder, const QString& engine);
/// Moves the station and its directory to the server, with everything compared value by value before the files that
/// say where they are take the names of the old ones, which are kept. What an attempt before has moved already stays.
/// Failure as above; 3260 when somebody changed something meanwhile.
Result MoveToServer(const QString& folder, const QString& connect);
} // namespace StationReplacing
