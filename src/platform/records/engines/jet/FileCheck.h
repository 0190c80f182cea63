// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/FileReport.h"
#include "platform/records/engines/Engine.h"

namespace dao::jet
{

/// Reads a file to its last page: whose each page is, the maps, every table with its rows, values and indexes. Pages
/// that nobody owns, which real files have, are no fault. Ends on any file. progress may stop it (32755). Errors: those
/// of opening but 3049, which is a finding.
FileReport ExamineFile(const QString& fileName, const engine::CopyProgress& progress);

} // namespace dao::jet
