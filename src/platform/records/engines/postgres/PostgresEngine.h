// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"

/// The engine "postgres": stations on a PostgreSQL server.
namespace dao::postgres
{

std::unique_ptr<engine::Engine> MakePostgresEngine();

} // namespace dao::postgres
