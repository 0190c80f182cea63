// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/DatabaseSession.h"

namespace dao
{

/// Opens a database file with the engine that its first octets name. lockingMode counts if the file is not open in this
/// process yet. Errors: those of DBEngine::OpenDatabase.
SessionPtr OpenFile(const QString& fileName, bool readOnly, int lockingMode);

/// 3044 when the folder of a file is not there.
void RequireFolder(const QString& fileName);

/// The engine of an existing file; errors as above.
engine::Engine& EngineOfFile(const QString& fileName);

} // namespace dao
