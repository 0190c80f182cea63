// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/RepairReport.h"
#include "platform/records/engines/Engine.h"

namespace dao::jet
{

/// Writes all rows of users' tables that can be read from a damaged file, as they were stored or not at all, into a new
/// one. Nothing but the pages themselves is believed: tables are found by the list of tables, by definitions, and by
/// the rows' seals; rows by looking at each page. What other programs keep beside tables (queries, links, forms) is
/// left behind, and told. The source is only read; who writes to it meanwhile spoils the result.
/// hints: files that are thought to have tables of the same names and fields. target: there and empty.
///
/// Errors: those of opening a file, but that its content may be damaged; 3026, 3043, 3051 of writing; 32755.
RepairReport RepairFile(const QString& source, const QString& target, const QStringList& hints,
                        const engine::CopyProgress& progress);
/// Whether a file that no first page says it is looks as if it had been a Jet file.
bool LooksLikeRemains(const QString& fileName);

} // namespace dao::jet
