// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// What programs that were killed, or lost their power, left behind under working names: half a copy, a backup in the
/// making.
namespace Leftovers
{

/// Removes it beside a database, beside its page templates and in the folders of its backups, and tells the log each
/// name. What a living program, also on another computer, is still writing stays, and so does whatever is no plain file
/// or bears no working name of ours. Nothing is removed in a folder that is reached through a link. Never throws.
void Remove(const QString& databaseFile);

} // namespace Leftovers
