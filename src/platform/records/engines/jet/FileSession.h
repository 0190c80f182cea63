// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/ChangeJournal.h"
#include "platform/records/engines/jet/FileLocks.h"
#include "platform/records/engines/jet/OfficeUsers.h"

namespace dao::jet
{

/// One database file in use: whose turn it is to read and to write, over all processes; commits; and what a crash left
/// behind. Between its calls no lock is held unless a reading or a writing was begun and not ended.
///
/// All waiting of one call together is bounded; then it is error 3260. Each call makes sure that the file still has
/// its name: 3734 when another file took it, 3043 when there is none. One thread.
class FileSession
{
public:
    /// Takes over what a crash left. Errors: those of PageFile, 3051 when the file is in use for too long or needs to
    /// be written first and may not.
    FileSession(const QString& fileName, PageFile::Use use);
    ~FileSession();
    FileSession(const FileSession&) = delete;
    FileSession& operator=(const FileSession&) = delete;

    PageFile& Pages() { return Pages_; }
    /// False where this account may not write the file, and while an office program has it open.
    bool IsChangeable() const;
    /// From now on office programs see that the file is open, as long as no other one of them has it.
    void ShowAsUser();

    /// The pages stay as they are until EndReading. Whether they are others than the last time. Nests, and in a writing
    /// it is nothing.
    bool BeginReading();
    void EndReading();

    /// Nobody else writes until Commit or Abandon. Whether the pages are others than the last time. Errors: 3051 where
    /// the file may not be written, 3027 while an office program has it open, 3260.
    bool BeginWriting();
    bool IsWriting() const { return IsWriting_; }
    /// The changes of the pages are on the disk when it returns. When it throws, nothing is stored, unless the disk
    /// failed; the writing has ended either way. Errors: 3260 readers, 3026, 3043, 3734 another file has the name.
    void Commit();
    /// Forgets the changes.
    void Abandon();

    /// Gives the file's name to another one, which is on the disk, in the writing; everybody who has the file open
    /// finds out. The writing has ended when it returns. Errors: 3260 readers, 3051, 3043.
    void GiveNameTo(const QString& replacement);

private:
    void Require(const FileStatus& status) const;
    void RequireChangeable();
    /// Nobody goes on in a file that another one took the name of: its rows are others there. 3734, and 3043 when no
    /// file bears the name.
    void RequireName();
    void RecoverLocked(const QDeadlineTimer& deadline);
    void Recover(const QDeadlineTimer& deadline);
    void Store(const QDeadlineTimer& deadline);
    void CountCommit();
    void EndWriting();
    FileLocks Locks() { return FileLocks(Pages_.Handle()); }

    PageFile Pages_;
    ChangeJournal Journal_;
    OfficeUserNote Note_;
    bool IsShown_ = false; ///< To office programs.
    int Readings_ = 0;
    bool HasLock_ = false; ///< Of a reader; file systems without locks give none.
    bool IsWriting_ = false;
    bool HasUsedJournal_ = false;
};

/// A reading while it lives.
class ReadingScope
{
public:
    explicit ReadingScope(FileSession& session) : Session_(session), SawChanges_(session.BeginReading()) {}
    ~ReadingScope() { Session_.EndReading(); }
    ReadingScope(const ReadingScope&) = delete;
    ReadingScope& operator=(const ReadingScope&) = delete;

    bool SawChanges() const { return SawChanges_; }

private:
    FileSession& Session_;
    bool SawChanges_;
};

} // namespace dao::jet
