// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "platform/Export.h"

#include <QString>

namespace TolvaControlsFN
{

/// A past moment (local time) in the words that a presenter would say, such as "12 minutes ago" and "Yesterday
/// (17:02)". Weeks begin on Monday.
TOLVA_EXPORT QString RelativeTimeText(Date value);

} // namespace TolvaControlsFN
