// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "platform/Export.h"

/// Where the time comes from. Tests install one that stands still.
class TOLVA_EXPORT Clock
{
public:
    virtual ~Clock() = default;
    virtual QDateTime CurrentDateTimeUtc() const = 0;

    /// Does not take ownership; null goes back to the system's clock.
    static void SetCurrent(const Clock* clock);
};

namespace ClockHelper
{

/// Local time now.
TOLVA_EXPORT Date CurrentTime();
/// Universal time now.
TOLVA_EXPORT Date NowUTC();
/// Seconds from a local time until now; very large for none.
TOLVA_EXPORT double SecondsSince(Date time);
/// Between universal time and the time of this machine's zone at that date. None stays none. A local time that the
/// clock shows twice in autumn is the first of the two; one that it skips in spring counts as if it had not moved on.
TOLVA_EXPORT Date UTCToLocal(Date utc);
TOLVA_EXPORT Date LocalToUTC(Date local);

} // namespace ClockHelper
