#include "common/ClockHelper.h"

#include <QTimeZone>

#include <limits>

namespace
{
class SystemClock final : public Clock
{
public:
    QDateTime CurrentDateTimeUtc() const override { return QDateTime::currentDateTimeUtc(); }
};

const Clock* current = nullptr;

QDateTime Now()
{
    static const SystemClock systemClock;
    return (current ? *current : systemClock).CurrentDateTimeUtc();
}
} // namespace

void Clock::SetCurrent(const Clock* clock)
{
    current = clock;
}

Date ClockHelper::CurrentTime()
{
    return UTCToLocal(NowUTC());
}

Date ClockHelper::NowUTC()
{
    return Date::FromDateTime(Now().toUTC());
}

double ClockHelper::SecondsSince(Date time)
{
    if (time.IsNone())
        return std::numeric_limits<double>::max();
    return static_cast<double>(time.ToDateTime(Qt::UTC).msecsTo(CurrentTime().ToDateTime(Qt::UTC))) / 1000.0;
}

Date ClockHelper::UTCToLocal(Date utc)
{
    if (utc.IsNone())
        return utc;
    const QDateTime moment = utc.ToDateTime(Qt::UTC);
    return Date::FromDateTime(moment.addSecs(QTimeZone::systemTimeZone().offsetFromUtc(moment)));
}

Date ClockHelper::LocalToUTC(Date local)
{
    if (local.IsNone())
        return local;
    const QTimeZone zone = QTimeZone::systemTimeZone();
    const QDateTime wall = local.ToDateTime(Qt::UTC); // the clock's face, not yet a moment
    const int before = zone.offsetFromUtc(wall.addDays(-1));
    const int after = zone.offsetFromUtc(wall.addDays(1));
    // Where the clock shows a time twice, the first of the two; where it skips one, what it would have shown unchanged.
    for (const int offset : {qMax(before, after), qMin(before, after)}) {
        const QDateTime moment = wall.addSecs(-offset);
        if (zone.offsetFromUtc(moment) == offset)
            return Date::FromDateTime(moment);
    }
    return Date::FromDateTime(wall.addSecs(-before));
}
