// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "doctor/Diagnosis.h"

namespace dao
{
class Database;
}

/// What Diagnosis finds in the place where a station lies. OfBackups raises dao::Error.
namespace PlaceDiagnosis
{
/// Whether this account may write what a station writes.
Finding OfRights(const QString& folder);
/// Whether the file system keeps the locks of the station's file.
Finding OfLocks(const QString& folder);
/// Room for a backup and a compaction.
Finding OfSpace(const QString& folder);
Finding OfTemplates(const QString& folder);
/// Their age, and where wanted whether the newest reads to its end.
Finding OfBackups(const QString& folder, dao::Database& station, bool readsNewest);
} // namespace PlaceDiagnosis
