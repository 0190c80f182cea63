// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/sqlite/SqliteConnection.h"

/// A number that a database file carries from its creation on, and through every compaction. A backup that is put back
/// gets a new one: whoever has the file open sees by it that the content is another state of the station, and not what
/// its numbers and texts were read from.
namespace dao::sqlite
{

/// 0 for a file of an earlier version, which has none.
qint64 ReadIdentity(Connection& connection);
/// Gives the file a new one, inside the caller's transaction.
void WriteNewIdentity(Connection& connection);

} // namespace dao::sqlite
