// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/FileReport.h"
#include "platform/records/engines/Engine.h"
#include "platform/records/engines/sqlite/SqliteConnection.h"

namespace dao::sqlite
{

/// Reads a file to its last page: its length, its structure in our own tables against what SQLite holds, every page,
/// every row and every memo against its check. Memos first and a few at a time; the pages under one lock of a reader,
/// while others cannot commit. Ends on any file: rows that come round again and work out of proportion to the file's
/// size are damage. progress may stop it (32755). Errors: those of opening but 3049, which is a finding.
FileReport ExamineFile(const QString& file, const engine::CopyProgress& progress);

} // namespace dao::sqlite
