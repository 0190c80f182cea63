// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"

#include <QString>

namespace dao::sqlite
{

/// Copies a database file, octet by octet, to a new file of that name, as it stands at one moment, while others read
/// and write it. A small file is copied under one lock of a reader. A large one is read in slices, each under a lock of
/// its own, so that writers wait for one slice at most; what they changed meanwhile is read again (see ChangeLog) until
/// so little is left that it can be read under one lock. Where that does not succeed, such as when a program that keeps
/// no change log writes all the time, a last run holds the lock from beginning to end.
///
/// The copy is on the disk then, and its owner's alone. Errors as in Engine::Copy; they leave no target.
void CopyFile(const QString& source, const QString& target, const engine::CopyProgress& progress);

} // namespace dao::sqlite
