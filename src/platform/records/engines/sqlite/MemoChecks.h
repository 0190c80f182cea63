#pragma once

#include "platform/records/FileReport.h"
#include "platform/records/engines/sqlite/SqliteConnection.h"

namespace dao::sqlite
{

/// Gives the memos of a file their checks where it has none yet, and the file the format that says so. For a sound file
/// that nobody else has open: what its memos hold now is what they count as from then on.
void BackfillChecks(const QString& file);

/// What a compacted copy needs before it takes its source's place: sound indexes where those of the source were not,
/// and checks. source: what the examination of the source found. 3049 unless the copy is sound to its last page then.
void FinishCompaction(const QString& copy, const FileReport& source);

} // namespace dao::sqlite
