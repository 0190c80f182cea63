// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "doctor/Diagnosis.h"

namespace dao
{
class Database;
}

/// What Diagnosis finds of what comes in and goes out. All raise dao::Error.
namespace MailDiagnosis
{
/// When the last message came.
Finding OfArrivals(dao::Database& station);
/// Whether this computer's clock, or that of another one, is wrong.
Finding OfClock(dao::Database& station);
/// What waits, and what was refused. ledger: the directory's file; null where nothing was ever sent.
Finding OfSending(const QString& folder, dao::Database& station, dao::Database* ledger);
} // namespace MailDiagnosis
