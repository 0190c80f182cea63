// SPDX-License-Identifier: Apache-2.0
#include "database/watch/FileWatch.h"

#include "platform/records/DBEngine.h"

#include <filesystem>

namespace
{
/// Two writes within one step of a file system's clock leave the same time; no clock has longer steps.
constexpr qint64 ClockStepMilliseconds = 2500;
} // namespace

/// Not through QFileInfo, whose times are local ones: working those out costs more than asking for them.
FileWatch::Look FileWatch::LookAt(const QString& file)
{
    const std::filesystem::path path(file.toStdU16String());
    std::error_code unreadable;
    const auto modified = std::filesystem::last_write_time(path, unreadable);
    const auto size = std::filesystem::file_size(path, unreadable);
    // What cannot be looked at is told by the reading.
    return {static_cast<qint64>(modified.time_since_epoch().count()), unreadable ? -1 : static_cast<qint64>(size)};
}

bool FileWatch::MayHaveChanged(const QString& file, int opening)
{
    const Look look = LookAt(file);
    if (look != Look_ || opening != Opening_) {
        Look_ = look;
        Opening_ = opening;
        SinceLook_.start();
        IsCertain_ = false;
        IsOnServer_ = dao::DBEngine::IsLinked(file);
    }
    IsOld_ = SinceLook_.elapsed() > ClockStepMilliseconds;
    return !IsCertain_;
}

void FileWatch::WasRead()
{
    IsCertain_ = IsOld_ && !IsOnServer_;
}
