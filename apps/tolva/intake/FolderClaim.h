// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileSystem.h"

#include <QString>

#include <memory>

/// The word of this program that it takes the messages out of a folder, so that two of them file none twice: the file
/// ".tolva-taking" in it, locked from the construction to the destruction, or to the death of the process. The empty
/// file stays; who takes messages passes over hidden files.
class FolderClaim
{
public:
    /// Failure: 75 when another program has it, 66 for what is no folder, 77 and 74 where the file cannot be made.
    explicit FolderClaim(const QString& folder);

private:
    std::unique_ptr<FileHandle> File_;
};
