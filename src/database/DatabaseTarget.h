// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Database.h"

#include <QString>

/// The file, or the database on a server, that a utility works on.
namespace DAO_DatabaseFunctions
{

/// A local name with ".mdb" added unless it ends in it, in any case; the name as it stands for a server.
QString TargetName(const QString& name, const QString& connect);

/// Opens the target. dao::Error.
std::unique_ptr<dao::Database> OpenTarget(const QString& name, const QString& connect);

/// A flag as it stands in the log.
QString LogText(bool flag);

} // namespace DAO_DatabaseFunctions
