// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileSystem.h"

/// The word of a living process that it is making a file under a working name: beside the file stands "NAME-claim",
/// locked, from the construction to the destruction. Whoever dies leaves the claim without its lock, and so everybody,
/// also on another computer, can tell what is left behind from what is still being written.
///
/// Owned by who makes the file: claimed before the file is there, let go when the file is gone or bears its lasting
/// name. Used by one thread at a time.
class WorkClaim
{
public:
    /// name: nobody else's, such as one with random digits. On a file system without locks the claim stands unlocked.
    explicit WorkClaim(const QString& name);
    /// Removes the claim, unless the file is still there: then it is left to whoever finds it abandoned.
    ~WorkClaim();
    WorkClaim(const WorkClaim&) = delete;
    WorkClaim& operator=(const WorkClaim&) = delete;

    /// Why there is no claim; nothing is to be made under the name then.
    const FileStatus& Status() const { return Status_; }

    /// The claim that a dead process left on that name. Null when a living one has it, when there is none, and when
    /// neither can be told.
    static std::unique_ptr<WorkClaim> TakeOver(const QString& name);
    /// What the claim on a name is called.
    static QString NameFor(const QString& name);

private:
    struct Abandoned
    {
    };
    WorkClaim(const QString& name, Abandoned);

    /// False when it has to be tried again: somebody took the new claim for an abandoned one before it was locked.
    bool TryToMake();
    bool IsThere() const;

    QString Work_; ///< The working name.
    QString Name_; ///< Of the claim.
    std::unique_ptr<FileHandle> File_;
    FileStatus Status_;
};
