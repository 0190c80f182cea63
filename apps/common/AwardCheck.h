// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "prizes/Awarding.h"

namespace AwardCheck
{

/// What the user has to be told of a prize's winners, in whole sentences; empty when all is in order. It names every
/// cause that there may be, for what stands does not tell which it was. How a winner is taken back stands in the
/// program's own words behind it.
QString Warning(const AwardStanding& standing);

} // namespace AwardCheck
