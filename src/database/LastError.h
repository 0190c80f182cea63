// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/cTolvaDatabase.h"

/// For whoever hands errors on: throws the one that stands behind a station's last false or empty answer, as
/// dao::Error. Does nothing where none stood behind it.
inline void RaiseLastError(const cTolvaDatabase& database)
{
    if (database.LastErrorNumber() != 0)
        throw dao::Error(database.LastErrorNumber(), database.LastErrorDescription());
}
