// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"

namespace dao::jet
{

/// The engine of Jet 4 files (.mdb), which office programs read and write. So far it reads them.
std::unique_ptr<engine::Engine> MakeJetEngine();

} // namespace dao::jet
