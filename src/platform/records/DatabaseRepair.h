// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/records/RepairReport.h"

#include <functional>

namespace dao
{

/// Writes what can be read of a damaged database file, row by row as it was stored or not at all, into a new file of
/// the same format, and says what is missing. The damaged file is left as it is; who changes it meanwhile spoils the
/// result, so that the caller makes sure that nobody did. hints: other files, such as a backup, whose tables may have
/// the same names and fields; those that cannot be read are no help and no error. target must not exist. advance is
/// told how much of how much is done, and stops it by answering false (32755).
///
/// Errors: those of opening, but that the content may be damaged; 3251 where the format has no such repair; 3026, 3043
/// and 3051 of writing. They leave no target.
TOLVA_EXPORT RepairReport RepairDatabase(const QString& source, const QString& target, const QStringList& hints,
                                         const std::function<bool(qint64 done, qint64 total)>& advance = {});

/// The name of the engine that a damaged file was one of, as far as that can be told. Errors: those of opening.
TOLVA_EXPORT QString FormatOfDamaged(const QString& file);

} // namespace dao
