// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Schema.h"
#include "platform/records/engines/jet/Catalogue.h"

namespace dao::jet
{

/// The users' tables of a file as the record store speaks of them; a table's id is its definition's page. Queries,
/// links to other files and the format's own tables are left out, and so are indexes without a name of their own.
/// Fault.
engine::SchemaPtr ReadSchema(PageFile& file);

} // namespace dao::jet
