// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "StationCounts.h"
#include "database/cTolvaDatabase.h"

/// Making a backup of a station and making sure of it.
namespace StationBackup
{
struct Result
{
    QString Name;   ///< "2026-11-21 14.05"
    QString Folder; ///< Its whole path.
    qint64 Size = 0;
    StationCounts Before; ///< What the station held when the backup began,
    StationCounts Copy;   ///< what the backup holds,
    StationCounts After;  ///< and what the station held afterwards: others may have filed meanwhile.
};

/// Makes a backup of the station that is open in the folder and counts what is in it. The object has made no backup so
/// far, and makes none afterwards. Failure in words: code exitInterrupted when the user cancelled, without a backup
/// then.
Result Make(cTolvaDatabase& database, const QString& folder);
} // namespace StationBackup
