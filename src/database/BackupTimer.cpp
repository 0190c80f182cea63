// SPDX-License-Identifier: Apache-2.0
#include "database/BackupTimer.h"

#include "common/ClockHelper.h"
#include "common/RandomSource.h"
#include "common/UserInterface.h"
#include "platform/records/Error.h"

#include <cmath>

namespace
{
constexpr int FirstTickMilliseconds = 10000;
constexpr int TickMilliseconds = 60000;

/// The whole minutes between two checks lie in this range.
struct MinuteRange
{
    int Lower;
    int Upper;
};

/// Nothing for an interval that is none of the two.
std::optional<MinuteRange> RangeFor(qint32 backupInterval)
{
    switch (backupInterval) {
    case 60:
        return MinuteRange{20, 40};
    case 1440:
        return MinuteRange{120, 240};
    default:
        return std::nullopt;
    }
}
} // namespace

BackupTimer::BackupTimer(const QObject& owner, std::function<void()> makeBackup)
    : Owner_(&owner), MakeBackup_(std::move(makeBackup))
{
    tmrBackup_.setInterval(FirstTickMilliseconds);
    connect(&tmrBackup_, &QTimer::timeout, this, &BackupTimer::Tick);
}

void BackupTimer::Start(qint32 backupInterval)
{
    if (const auto range = RangeFor(backupInterval)) {
        const double minutes =
            RandomSource::Current().NextBelowOne() * (range->Upper - range->Lower + 1) + range->Lower;
        CheckInterval_ = static_cast<qint32>(std::floor(minutes)) * 60;
    }
    const auto self = shared_from_this();
    Tick();
    if (Owner_)
        tmrBackup_.start();
}

void BackupTimer::Stop()
{
    tmrBackup_.stop();
    Owner_.clear();
}

void BackupTimer::Tick()
{
    // The station may be closed by what runs while a backup shows its progress.
    const auto self = shared_from_this();
    tmrBackup_.setInterval(TickMilliseconds);
    if (!Owner_ || ClockHelper::SecondsSince(LastCheck_) <= CheckInterval_)
        return;
    tmrBackup_.stop();
    LastCheck_ = ClockHelper::CurrentTime();
    try {
        MakeBackup_();
    } catch (const dao::Error& error) {
        UserInterface::Current().RunTimeError(
            dao::Error(error.Number(), error.Description(), QStringLiteral("BackupTimer.tmrBackup_Timer")));
    }
    if (Owner_)
        tmrBackup_.start();
}
