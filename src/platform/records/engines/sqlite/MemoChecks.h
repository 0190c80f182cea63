// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/sqlite/SqliteConnection.h"

namespace dao::sqlite
{

/// Gives the memos of a file their checks where it has none yet, and the file the format that says so. For a sound file
/// that nobody else has open: what its memos hold now is what they count as from then on.
void BackfillChecks(const QString& file);

/// Writes a copy of a file whose indexes do not match its tables, with all of them built anew: a compaction takes
/// indexes over as they are. 3049 when a table holds a value twice that must be there once.
void RepairIndexes(const QString& file, const QString& copy);

/// What a compacted copy needs before it takes its source's place: checks. 3049 unless it is sound to its last page
/// then.
void FinishCompaction(const QString& copy);

} // namespace dao::sqlite
