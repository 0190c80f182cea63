// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/RepairReport.h"

/// Getting out of a station's damaged file what can be read of it. Other programs may have the station open; this one
/// must have closed it.
namespace StationRepair
{
struct Result
{
    dao::RepairReport Report;
    bool IsNeeded = true; ///< False for a file in which nothing is wrong: nothing was changed.
    QString KeepName;     ///< The damaged file's whole name now; empty where it kept its own.
    qint64 SizeBefore = 0;
    qint64 SizeAfter = 0;
};

enum class Put
{
    InPlace,
    Nowhere ///< What would be saved is only told.
};

/// Writes a new file of all rows that can be read, and puts it in the place of the damaged one, which is kept beside
/// it. Failure in words, which say what to do instead where the file's format has no such repair; code exitInterrupted
/// when the user cancelled. Nothing is changed then.
Result Run(const QString& folder, Put put);
} // namespace StationRepair
