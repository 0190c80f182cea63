// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"

namespace dao::jet
{

/// Copies a file as it stands, to a name that is free, and examines the copy. A file that another program changes
/// meanwhile is copied anew, three times at most, then it is error 3260. Errors: as engine::Engine::Copy; they leave no
/// target.
void CopyFile(const QString& source, const QString& target, const engine::CopyProgress& progress);

} // namespace dao::jet
