// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/FileSession.h"

#include "platform/records/Error.h"
#include "platform/records/FileTools.h"
#include "platform/records/LockPatience.h"
#include "platform/records/engines/jet/PageWriter.h"

#include <QFileInfo>

namespace dao::jet
{

namespace
{

constexpr quint16 FirstCount = 0x0100; ///< What is below means something else.

/// The file itself, where links lead to it: whoever comes by another name looks for the same journal.
QString RealName(const QString& name)
{
    const QString real = QFileInfo(name).canonicalFilePath();
    return real.isEmpty() ? name : real;
}

} // namespace

FileSession::FileSession(const QString& fileName, PageFile::Use use)
    : Pages_(RealName(fileName), use), Journal_(Pages_.Name()), Note_(Pages_.Name())
{
    try {
        const ReadingScope scope(*this);
    } catch (const Error& error) {
        if (error.Number() == errLocked)
            throw Error(errCannotOpen, QStringLiteral("Cannot open '%1': it is in use.").arg(fileName));
        throw;
    }
}

FileSession::~FileSession()
{
    if (IsWriting_)
        Abandon();
    if (!HasUsedJournal_)
        return;
    // A closed database is one file. Whoever is using it now does this later.
    try {
        const QDeadlineTimer now(0);
        if (!Locks().BeginWriting(now).IsDone())
            return;
        if (Locks().ShutReadersOut(now).IsDone()) {
            // Under the name of another file the journal would be that one's.
            if (Pages_.IsNamed() && !Journal_.IsPending())
                Journal_.Remove();
            Locks().LetReadersIn();
        }
        Locks().EndWriting();
    } catch (const Error&) {
        // The empty file stays, and means nothing.
    }
}

bool FileSession::IsChangeable() const
{
    return Pages_.IsWritable() && !IsOpenInOfficeProgram(Pages_.Name());
}

void FileSession::ShowAsUser()
{
    IsShown_ = true;
    Note_.Join();
}

void FileSession::RequireChangeable()
{
    if (IsOpenInOfficeProgram(Pages_.Name()))
        throw Error(errReadOnly, QStringLiteral("'%1' is only read while another program has it open, for '%2' is "
                                                "there. Close it there. If nobody has it open, a program left that "
                                                "file behind: take it away.")
                                     .arg(Pages_.Name(), OfficeUsersFile(Pages_.Name())));
    if (!Pages_.IsWritable())
        throw Error(errCannotOpen,
                    QStringLiteral("Cannot change '%1': this account may only read it.").arg(Pages_.Name()));
    // Somebody may have taken the note away, with what a program had left behind.
    if (IsShown_)
        Note_.Join();
}

void FileSession::Require(const FileStatus& status) const
{
    if (status.IsDone())
        return;
    if (status.Error() == FileError::Locked)
        throw Error(errLocked, QStringLiteral("'%1' is locked by another user.").arg(Pages_.Name()));
    throw Error(ErrorNumberOf(status), QStringLiteral("'%1' cannot be locked: %2").arg(Pages_.Name(), status.Words()));
}

void FileSession::RequireName()
{
    if (Pages_.IsNamed())
        return;
    if (FileSystem::Current().KindOf(Pages_.Name()) == FileKind::None)
        throw Error(errDiskError, QStringLiteral("'%1' is not there any more.").arg(Pages_.Name()));
    throw Error(errFileReplaced,
                QStringLiteral("The database '%1' was replaced by another file. Open it anew.").arg(Pages_.Name()));
}

bool FileSession::BeginReading()
{
    if (Readings_ > 0 || IsWriting_) {
        ++Readings_;
        return false;
    }
    const QDeadlineTimer deadline(LockPatience::Milliseconds());
    const auto unlock = [&] {
        if (HasLock_)
            Locks().EndReading();
        HasLock_ = false;
    };
    const auto lock = [&] {
        const FileStatus status = Locks().BeginReading(deadline);
        // A medium without locks is one that is read, and not written.
        if (status.Error() != FileError::NotSupported)
            Require(status);
        HasLock_ = status.IsDone();
        RequireName();
    };
    try {
        lock();
        while (Journal_.IsPending()) {
            unlock();
            Recover(deadline);
            lock();
        }
        const bool isOther = Pages_.Refresh();
        ++Readings_;
        return isOther;
    } catch (...) {
        unlock();
        throw;
    }
}

void FileSession::EndReading()
{
    if (--Readings_ > 0 || IsWriting_)
        return;
    if (HasLock_)
        Locks().EndReading();
    HasLock_ = false;
}

void FileSession::RecoverLocked(const QDeadlineTimer& deadline)
{
    Require(Locks().ShutReadersOut(deadline));
    try {
        if (Journal_.IsPending()) {
            HasUsedJournal_ = true;
            Journal_.Recover(Pages_);
        }
    } catch (...) {
        Locks().LetReadersIn();
        throw;
    }
    Locks().LetReadersIn();
}

void FileSession::Recover(const QDeadlineTimer& deadline)
{
    if (!Pages_.IsWritable())
        throw Error(errCannotOpen,
                    QStringLiteral("'%1' was left in the middle of a change by a program that ended. Open it once with "
                                   "an account that may write it.")
                        .arg(Pages_.Name()));
    Require(Locks().BeginWriting(deadline));
    try {
        RequireName();
        RecoverLocked(deadline);
    } catch (...) {
        Locks().EndWriting();
        throw;
    }
    Locks().EndWriting();
}

bool FileSession::BeginWriting()
{
    RequireChangeable();
    const QDeadlineTimer deadline(LockPatience::Milliseconds());
    Require(Locks().BeginWriting(deadline));
    bool isOther = false;
    try {
        RequireName();
        if (Journal_.IsPending())
            RecoverLocked(deadline);
        isOther = Pages_.Refresh();
    } catch (...) {
        Locks().EndWriting();
        throw;
    }
    IsWriting_ = true;
    return isOther;
}

void FileSession::CountCommit()
{
    QByteArray page = Pages_.Page(0);
    const quint16 count = OctetView(page).U16(CommitCountsAt);
    Put(page, CommitCountsAt, count == 0xFFFF || count < FirstCount ? FirstCount : static_cast<quint16>(count + 1));
    Pages_.Change(0, page);
}

void FileSession::Store(const QDeadlineTimer& deadline)
{
    RequireName();
    Require(Locks().ShutReadersOut(deadline));
    try {
        CountCommit();
        HasUsedJournal_ = true;
        Journal_.Write(Pages_);
    } catch (...) {
        Locks().LetReadersIn();
        throw;
    }
    // From here on it is done: an error would have the change made once more. Where the pages or the end of the journal
    // cannot be written, whoever comes next finds the journal and writes them.
    try {
        ChangeJournal::Apply(Pages_);
        Pages_.AdoptChanges();
        Journal_.Clear();
    } catch (...) {
        Pages_.DropChanges();
    }
    Locks().LetReadersIn();
}

void FileSession::Commit()
{
    try {
        if (!Pages_.Changes().IsEmpty())
            Store(QDeadlineTimer(LockPatience::Milliseconds()));
    } catch (...) {
        Abandon();
        throw;
    }
    EndWriting();
}

void FileSession::Abandon()
{
    Pages_.DropChanges();
    EndWriting();
}

void FileSession::GiveNameTo(const QString& replacement)
{
    FileSystem& files = FileSystem::Current();
    const auto requireDone = [&](const FileStatus& status) {
        if (!status.IsDone())
            throw Error(ErrorNumberOf(status), QStringLiteral("'%1' cannot take the place of '%2': %3")
                                                   .arg(replacement, Pages_.Name(), status.Words()));
    };
    try {
        RequireName();
        Require(Locks().ShutReadersOut(QDeadlineTimer(LockPatience::Milliseconds())));
        requireDone(files.CopyAccess(Pages_.Name(), replacement));
        requireDone(files.RenameOver(replacement, Pages_.Name()));
        requireDone(files.SyncFolder(QFileInfo(Pages_.Name()).absolutePath()));
    } catch (...) {
        Locks().LetReadersIn();
        Abandon();
        throw;
    }
    Locks().LetReadersIn();
    Abandon();
}

void FileSession::EndWriting()
{
    IsWriting_ = false;
    Locks().EndWriting();
}

} // namespace dao::jet
