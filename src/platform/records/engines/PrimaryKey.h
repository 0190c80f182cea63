// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"

namespace dao::engine
{

enum class RowIs
{
    New,  ///< What is not assigned is Null.
    There ///< What is not assigned stays as it is.
};

/// Error 94 where the values would put a Null into a primary index.
void CheckPrimaryKey(const Table& table, std::span<const Assignment> values, RowIs row);

} // namespace dao::engine
