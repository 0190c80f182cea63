// SPDX-License-Identifier: Apache-2.0
#include "database/watch/ChangeStamp.h"

#include "database/Collision.h"
#include "database/SettingText.h"
#include "platform/records/Database.h"

namespace
{
const QString Item = QStringLiteral("Item");
const QString Value = QStringLiteral("Value");
constexpr double SmallestStep = 1e-8; // of a day, the last place that is stored
constexpr double Minute = 1.0 / (24 * 60);
constexpr int MostTries = 50;

/// Never the stamp before, nor one that was there shortly before that: with saves in the same moment, on a clock that
/// stands or by computers whose clocks differ a little, stamps go on from each other.
Date Behind(Date before, Date now)
{
    const double ahead = before.DayNumber() - now.DayNumber();
    return before.IsNone() || ahead < -SmallestStep / 2 || ahead > Minute ? now
                                                                          : Date(before.DayNumber() + SmallestStep);
}

/// Fails where another program's write comes in between, so that what it found is what it replaced.
StampMove MoveOnce(dao::Database& database, const QString& setting, Date now)
{
    const auto settings = database.OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable);
    settings->SetIndex(QStringLiteral("Main"));
    settings->Seek(dao::SeekComparison::Equal, {setting});
    Date before;
    if (settings->NoMatch()) {
        settings->AddNew();
        settings->SetCollect(Item, setting);
    } else {
        settings->Edit();
        before = StampDate(settings->Collect(Value));
    }
    const QString after = StampText(Behind(before, now));
    settings->SetCollect(Value, after);
    settings->Update();
    return {before, StampDate(after)};
}
} // namespace

StampMove MoveStamp(dao::Database& database, const QString& setting, Date now)
{
    for (int tries = 1;; ++tries) {
        try {
            return MoveOnce(database, setting, now);
        } catch (const dao::Error& error) {
            if (!IsCollision(error.Number()) || tries == MostTries)
                throw;
        }
    }
}

void ReadStamp::Take(Date stamp, int opening)
{
    Stamp_ = stamp;
    Opening_ = opening;
}

void ReadStamp::Follow(const StampMove& save)
{
    if (!save.After.IsNone() && save.Before == Stamp_)
        Stamp_ = save.After;
}
