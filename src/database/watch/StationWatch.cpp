// SPDX-License-Identifier: Apache-2.0
#include "database/watch/StationWatch.h"

#include "database/cTolvaDatabase.h"

#include <QDateTime>
#include <QFileInfo>
#include <QPointer>

namespace
{
/// Two writes within one step of a file system's clock leave the same time; no clock has longer steps.
constexpr qint64 ClockStepMilliseconds = 2500;
} // namespace

void StationWatch::Poll(const QObject& asker)
{
    const QPointer<StationWatch> self(this);
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
    const QFileInfo file(Station_.Information().Path);
    const FileLook look{file.lastModified().toMSecsSinceEpoch(), file.size()};
    if (look != Look_ || LookOfOpening_ != Station_.Openings()) {
        Look_ = look;
        LookOfOpening_ = Station_.Openings();
        SinceLook_.start();
        AreFoldersCertain_ = false;
    }
    if (!AreFoldersCertain_) {
        const bool isOld = SinceLook_.elapsed() > ClockStepMilliseconds;
        Station_.RefreshCategoryTree();
        AreFoldersCertain_ = isOld;
    }
    if (Seen_)
        Seen_->AreFoldersLoaded = true;
}
