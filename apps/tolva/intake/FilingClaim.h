// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileSystem.h"

#include <QString>

#include <memory>

/// The word of this program that it looks for a mail in a station and files it if it is not there, so that of two that
/// are handed the same one files it: a mail server that was killed hands over again what its first delivery still
/// files. It is the file ".tolva-filing" in the station's folder, locked from the construction to the destruction, or
/// to the death of the process. The empty file stays.
class FilingClaim
{
public:
    /// Waits for another program for as long as a locked station is waited for. Failure 75, to be tried again, when it
    /// goes on for longer and where the file cannot be made or locked.
    explicit FilingClaim(const QString& station);

private:
    std::unique_ptr<FileHandle> File_;
};
