// SPDX-License-Identifier: Apache-2.0
#include "database/watch/StationWatch.h"

#include "database/cTolvaDatabase.h"

#include <QPointer>

namespace
{
/// Many changes within it are one poll.
constexpr int LookMilliseconds = 250;
/// And while changes come without pause, each desk reads them this often: fifty desks read what one of them stores.
constexpr int RestMilliseconds = 600;
} // namespace

StationWatch::StationWatch(cTolvaDatabase& station) : Station_(station)
{
    Looking_.setInterval(LookMilliseconds);
    connect(&Looking_, &QTimer::timeout, this, &StationWatch::TakeNotice);
}

void StationWatch::TakeNotice()
{
    const bool isNews = Station_.TakeChanges();
    const int wait = isNews ? RestMilliseconds : LookMilliseconds;
    if (Looking_.interval() != wait)
        Looking_.setInterval(wait);
    if (isNews)
        Poll(*this);
}

void StationWatch::Poll(const QObject& asker)
{
    const QPointer<StationWatch> self(this);
    if (!Station_.BeginBeingTold())
        Looking_.stop();
    else if (!Looking_.isActive())
        Looking_.start();
    Seen_.emplace();
    Q_EMIT Polled(&asker);
    // A listener that let timers fire may have polled in between: then the rest of this poll reads for itself.
    if (self)
        Seen_.reset();
}

template <typename Read>
Date StationWatch::StampOf(std::optional<Date> Seen::*kept, Read&& read)
{
    if (Seen_ && (*Seen_).*kept)
        return *((*Seen_).*kept);
    const Date stamp = read();
    if (Seen_ && !stamp.IsNone())
        (*Seen_).*kept = stamp;
    return stamp;
}

Date StationWatch::MessageStamp()
{
    return StampOf(&Seen::MessageStamp, [this] { return Station_.LastMessageChanged(); });
}

Date StationWatch::PrizeStamp()
{
    return StampOf(&Seen::PrizeStamp, [this] { return Station_.LastPrizeChanged(); });
}

void StationWatch::RefreshFolders()
{
    if (Seen_ && Seen_->AreFoldersLoaded)
        return;
    if (Folders_.MayHaveChanged(Station_.Information().Path, Station_.Openings())) {
        Station_.RefreshCategoryTree();
        Folders_.WasRead();
    }
    if (Seen_)
        Seen_->AreFoldersLoaded = true;
}
