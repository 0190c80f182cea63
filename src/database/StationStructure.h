// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/LockingMode.h"

#include <QString>

namespace dao
{
class Database;
}

/// The structure of a station's file: its tables, and how it is locked. Nothing here throws.
namespace StationStructure
{

/// Creates or completes all tables of a file, which it opens by itself. 0 or an error number, which the user has been
/// told unless silent.
qint16 Validate(const QString& fileName, bool silent);

/// Makes a station's file with all tables and no rows but its description, in the format of the engine of that name. 0
/// or an error number, which nobody has been told.
qint16 MakeEmpty(const QString& fileName, const QString& engine);

/// What is in force on the file of an open database; Unknown when it does not say.
LockingMode LockingModeOf(const dao::Database& database);

} // namespace StationStructure
