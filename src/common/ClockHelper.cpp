// SPDX-License-Identifier: Apache-2.0
#include "common/ClockHelper.h"

#include <QDeadlineTimer>
#include <QTimeZone>

#include <cmath>
#include <limits>

namespace
{
class SystemClock final : public Clock
{
public:
    QDateTime CurrentDateTimeUtc() const override { return QDateTime::currentDateTimeUtc(); }
};

const Clock* currentClock = nullptr;

QDateTime Now()
{
    static const SystemClock systemClock;
    return (currentClock ? *currentClock : systemClock).CurrentDateTimeUtc();
}
constexpr double MillisecondsADay = 86400000;
constexpr qint64 UnixEpoch = qint64(25569) * 86400000; // 1 January 1970, in milliseconds since day zero

/// The offset of the machine's zone from universal time, in seconds, and the stretch of time over which it holds. A
/// list converts three dates a message, and asking the zone each time would cost more than reading the message. Asked
/// for anew after a minute, so that a change of the machine's zone is noticed.
class ZoneOffset
{
public:
    /// msecs: universal time since 1970.
    int At(qint64 msecs)
    {
        if (msecs < From_ || msecs >= To_ || Expires_.hasExpired())
            Ask(QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC));
        return Seconds_;
    }
    int At(const QDateTime& moment) { return At(moment.toMSecsSinceEpoch()); }

private:
    void Ask(const QDateTime& moment)
    {
        constexpr auto always = std::numeric_limits<qint64>::max();
        constexpr auto never = std::numeric_limits<qint64>::min();
        const QTimeZone zone = QTimeZone::systemTimeZone();
        const QTimeZone::OffsetData before = zone.previousTransition(moment.addMSecs(1));
        const QTimeZone::OffsetData after = zone.nextTransition(moment);
        From_ = before.atUtc.isValid() ? before.atUtc.toMSecsSinceEpoch() : never;
        To_ = after.atUtc.isValid() ? after.atUtc.toMSecsSinceEpoch() : always;
        Seconds_ = zone.offsetFromUtc(moment);
        Expires_.setRemainingTime(60000);
    }

    qint64 From_ = 0;
    qint64 To_ = 0;
    int Seconds_ = 0;
    QDeadlineTimer Expires_;
};

/// For the user interface thread, as all of this.
ZoneOffset& Zone()
{
    static ZoneOffset offset;
    return offset;
}
} // namespace

void Clock::SetCurrent(const Clock* clock)
{
    currentClock = clock;
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
    const qint64 msecs = std::llround(utc.DayNumber() * MillisecondsADay);
    const qint64 local = msecs + qint64(1000) * Zone().At(msecs - UnixEpoch);
    return Date(static_cast<double>(local) / MillisecondsADay);
}

Date ClockHelper::LocalToUTC(Date local)
{
    if (local.IsNone())
        return local;
    const QDateTime wall = local.ToDateTime(Qt::UTC); // the clock's face, not yet a moment
    const int before = Zone().At(wall.addDays(-1));
    const int after = Zone().At(wall.addDays(1));
    // Where the clock shows a time twice, the first of the two; where it skips one, what it would have shown unchanged.
    for (const int offset : {qMax(before, after), qMin(before, after)}) {
        const QDateTime moment = wall.addSecs(-offset);
        if (Zone().At(moment) == offset)
            return Date::FromDateTime(moment);
    }
    return Date::FromDateTime(wall.addSecs(-before));
}
