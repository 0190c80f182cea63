// SPDX-License-Identifier: Apache-2.0
#include "database/watch/StationWatch.h"

#include "database/cTolvaDatabase.h"
#include "database/watch/FileWatch.h"

#include <QPointer>

#include <algorithm>

namespace
{
/// Many changes within it are one poll.
constexpr int LookMilliseconds = 250;
/// And while changes come without pause, each desk reads them this often: fifty desks read what one of them stores.
constexpr int RestMilliseconds = 600;
/// And rests so many times as long as the reading took: large folders on a busy server are read less often.
constexpr qint64 RestShare = 4;
/// A server tells of what its programs store; somebody may have changed a folder past them.
constexpr qint64 UntoldMilliseconds = 30000;
} // namespace

StationWatch::StationWatch(cTolvaDatabase& station) : Station_(station), Folders_(std::make_unique<FileWatch>())
{
    Looking_.setInterval(LookMilliseconds);
    connect(&Looking_, &QTimer::timeout, this, &StationWatch::TakeNotice);
}

StationWatch::~StationWatch() = default;

void StationWatch::TakeNotice()
{
    if (!Station_.TakeChanges()) {
        if (Looking_.interval() != LookMilliseconds)
            Looking_.setInterval(LookMilliseconds);
        return;
    }
    AreFoldersToldOf_ = false;
    const QPointer<StationWatch> self(this);
    QElapsedTimer reading;
    reading.start();
    Poll(*this);
    if (self)
        Looking_.setInterval(static_cast<int>(std::max<qint64>(RestMilliseconds, RestShare * reading.elapsed())));
}

void StationWatch::Poll(const QObject& asker)
{
    const QPointer<StationWatch> self(this);
    IsTold_ = Station_.BeginBeingTold();
    if (!IsTold_)
        Looking_.stop();
    else if (!Looking_.isActive())
        Looking_.start();
    Seen_ = Seen{};
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
    const bool mayHaveChanged = Folders_->MayHaveChanged(Station_.Information().Path, Station_.Openings());
    // Its file says nothing of a station on a server, which tells by itself.
    const bool isUntold = Folders_->IsOnServer() && IsTold_ && AreFoldersToldOf_ &&
                          OpeningOfFolders_ == Station_.Openings() && !SinceFolders_.hasExpired(UntoldMilliseconds);
    if (mayHaveChanged && !isUntold) {
        Station_.RefreshCategoryTree();
        Folders_->WasRead();
        SinceFolders_.start();
        AreFoldersToldOf_ = IsTold_;
        OpeningOfFolders_ = Station_.Openings();
    }
    if (Seen_)
        Seen_->AreFoldersLoaded = true;
}
