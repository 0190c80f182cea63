// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"

namespace dao::sqlite
{

/// The embedded default: one file, many processes. docs/record-store.md describes the file.
std::unique_ptr<engine::Engine> MakeSqliteEngine();

} // namespace dao::sqlite
