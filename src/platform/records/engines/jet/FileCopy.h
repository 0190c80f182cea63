// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"
#include "platform/records/engines/jet/FileSession.h"

namespace dao::jet
{

/// Copies a file as it stands at one moment, to a name that is free, and examines the copy. Others go on writing to it;
/// what they changed meanwhile is copied again at the end, while they wait. Errors: as engine::Engine::Copy, and 3260
/// when a program that knows no locks changed it in that moment; they leave no target.
void CopyFile(const QString& source, const QString& target, const engine::CopyProgress& progress);
/// The same into a file that is there, unexamined. session: nobody else uses it.
void CopyContent(FileSession& session, const QString& copy, const engine::CopyProgress& progress);

} // namespace dao::jet
