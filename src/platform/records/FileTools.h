// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/WorkClaim.h"
#include "platform/records/FileReport.h"

#include <QString>

namespace dao
{

/// The number under which a failure of a file operation is known: 3026 for a full disk, 3043 for a failing one, else
/// 3051.
int ErrorNumberOf(const FileStatus& status);
/// That error for a call that writes a file and failed.
void RequireWritten(const QString& file, const FileStatus& status);
/// The error 3049 that a damaged file gives whoever needs a sound one; none for any other.
void RequireNotDamaged(const QString& file, const FileReport& report);

/// A file that is being made under a name of its own beside its target, and takes the target's name once it is whole
/// and on the disk. Removed, with its journal, unless it was moved. Claimed while it is made.
///
/// It is its owner's alone until it is moved. It is made empty by the constructor, so that nothing that somebody put
/// under its name is ever written to: 3026 when the disk is full, 3043 when it fails, 3051 when the folder may not be
/// written.
class TemporaryFile
{
public:
    explicit TemporaryFile(const QString& target);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const QString& Name() const { return Name_; }
    /// Nobody gets what the original does not give, of what new files usually give.
    void LimitRights(const QString& original);
    /// Removes the file, for somebody who makes it anew by himself under that name. Errors: as MoveTo where that fails.
    void Vacate() const;
    /// Gives it to those who may use the original, and to nobody else; see FileSystem::CopyAccess. Errors: as MoveTo.
    void CopyAccess(const QString& original);
    /// Flushes the file, gives it the name and flushes the folder. An empty file of that name is replaced; 3051 when
    /// another one stands there, 3043 when the disk fails.
    void MoveTo(const QString& target);

private:
    /// Makes way for the rename.
    void ReplaceEmpty(const QString& target) const;

    QString Name_;
    WorkClaim Claim_;           ///< Goes behind the file.
    std::optional<int> Rights_; ///< That it is moved with; nothing to leave what it has.
    bool IsMoved_ = false;
};

} // namespace dao
