// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileSystem.h"

#include <QString>

namespace dao::jet
{

/// Where programs note who has a database file open: beside it, with the ending ".ldb". Each user has 64 octets, the
/// names of his computer and of himself, and keeps an octet far behind the file's end locked. The last one takes the
/// file away.
QString OfficeUsersFile(const QString& fileName);
/// Whether a program that is none of ours has the database open. A note of which nobody can tell whether its user is
/// still there counts; one beside a note of ours does as long as its lock is kept.
bool IsOpenInOfficeProgram(const QString& fileName);

/// This process's own note, from Join on: an office program sees that the database is in use, and does not take it for
/// itself alone. Where no note can be made, in a folder that may not be written, the database is used without one.
class OfficeUserNote
{
public:
    explicit OfficeUserNote(const QString& fileName) : FileName_(fileName), Name_(OfficeUsersFile(fileName)) {}
    ~OfficeUserNote() { Leave(); }
    OfficeUserNote(const OfficeUserNote&) = delete;
    OfficeUserNote& operator=(const OfficeUserNote&) = delete;

    /// Does nothing where it stands already.
    void Join();
    void Leave();

private:
    enum class Attempt
    {
        Done,
        Failed,
        Again ///< Somebody is taking the file away at this moment.
    };
    Attempt TryToJoin();

    QString FileName_;
    QString Name_;
    std::unique_ptr<FileHandle> File_; ///< With the lock; null without a note.
};

} // namespace dao::jet
