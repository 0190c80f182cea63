// SPDX-License-Identifier: Apache-2.0
#include "database/watch/StationWatch.h"

#include "database/cTolvaDatabase.h"
#include "platform/records/DBEngine.h"

#include <QPointer>

#include <algorithm>
#include <filesystem>

namespace
{
/// Two writes within one step of a file system's clock leave the same time; no clock has longer steps.
constexpr qint64 ClockStepMilliseconds = 2500;
/// Many changes within it are one poll.
constexpr int LookMilliseconds = 250;
/// And while changes come without pause, each desk reads them this often: fifty desks read what one of them stores.
constexpr int RestMilliseconds = 600;
/// And rests so many times as long as the reading took: large folders on a busy server are read less often.
constexpr qint64 RestShare = 4;
/// A server tells of what its programs store; somebody may have changed a folder past them.
constexpr qint64 UntoldMilliseconds = 30000;
} // namespace

/// Not through QFileInfo, whose times are local ones: working those out costs more than asking for them.
StationWatch::FileLook StationWatch::LookAt(const QString& name)
{
    const std::filesystem::path file(name.toStdU16String());
    std::error_code unreadable;
    const auto modified = std::filesystem::last_write_time(file, unreadable);
    const auto size = std::filesystem::file_size(file, unreadable);
    // What cannot be looked at is told by the reading.
    return {static_cast<qint64>(modified.time_since_epoch().count()), unreadable ? -1 : static_cast<qint64>(size)};
}

StationWatch::StationWatch(cTolvaDatabase& station) : Station_(station)
{
    Looking_.setInterval(LookMilliseconds);
    connect(&Looking_, &QTimer::timeout, this, &StationWatch::TakeNotice);
}

void StationWatch::TakeNotice()
{
    if (!Station_.TakeChanges()) {
        if (Looking_.interval() != LookMilliseconds)
            Looking_.setInterval(LookMilliseconds);
        return;
    }
    AreFoldersCertain_ = false;
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
    const FileLook look = LookAt(Station_.Information().Path);
    if (look != Look_ || LookOfOpening_ != Station_.Openings()) {
        Look_ = look;
        LookOfOpening_ = Station_.Openings();
        SinceLook_.start();
        AreFoldersCertain_ = false;
        IsOnServer_ = dao::DBEngine::IsLinked(Station_.Information().Path);
    }
    if (IsOnServer_ && (!IsTold_ || SinceFolders_.hasExpired(UntoldMilliseconds)))
        AreFoldersCertain_ = false;
    if (!AreFoldersCertain_) {
        const bool isOld = SinceLook_.elapsed() > ClockStepMilliseconds;
        Station_.RefreshCategoryTree();
        SinceFolders_.start();
        AreFoldersCertain_ = IsOnServer_ ? IsTold_ : isOld;
    }
    if (Seen_)
        Seen_->AreFoldersLoaded = true;
}
