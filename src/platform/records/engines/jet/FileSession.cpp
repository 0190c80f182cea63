// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/FileSession.h"

#include "platform/records/Error.h"
#include "platform/records/FileTools.h"
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

QString OfficeUsersFile(const QString& fileName)
{
    const QFileInfo info(fileName);
    return info.path() + u'/' + info.completeBaseName() + QStringLiteral(".ldb");
}

FileSession::FileSession(const QString& fileName, PageFile::Use use)
    : Pages_(RealName(fileName), use), Journal_(Pages_.Name())
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
    if (!HasCommitted_)
        return;
    // A closed database is one file. Whoever is using it now does this later.
    try {
        const QDeadlineTimer now(0);
        if (!Pages_.IsNamed() || !Locks().BeginWriting(now).IsDone())
            return;
        if (Locks().ShutReadersOut(now).IsDone()) {
            if (!Journal_.IsPending())
                Journal_.Remove();
            Locks().LetReadersIn();
        }
        Locks().EndWriting();
    } catch (const Error&) {
        // The empty file stays, and means nothing.
    }
}

QString FileSession::Hindrance() const
{
    const QString users = OfficeUsersFile(Pages_.Name());
    if (FileSystem::Current().KindOf(users) != FileKind::None)
        return QStringLiteral("another program has it open, for '%1' is there. Close it there. If nobody has it open, "
                              "a program left that file behind: take it away")
            .arg(users);
    return Pages_.IsWritable() ? QString() : QStringLiteral("this account may only read it");
}

void FileSession::Require(const FileStatus& status) const
{
    if (status.IsDone())
        return;
    if (status.Error() == FileError::Locked)
        throw Error(errLocked, QStringLiteral("'%1' is locked by another user.").arg(Pages_.Name()));
    throw Error(ErrorNumberOf(status), QStringLiteral("'%1' cannot be locked: %2").arg(Pages_.Name(), status.Words()));
}

template <typename Lock, typename Unlock>
bool FileSession::LockNamed(const Lock& lock, const Unlock& unlock)
{
    bool isOther = false;
    for (;;) {
        lock();
        if (Pages_.IsNamed())
            return isOther;
        unlock();
        Pages_.Reopen();
        isOther = true;
    }
}

bool FileSession::BeginReading()
{
    if (Readings_ > 0 || IsWriting_) {
        ++Readings_;
        return false;
    }
    const QDeadlineTimer deadline(LongestWait);
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
    };
    try {
        bool isOther = LockNamed(lock, unlock);
        while (Journal_.IsPending()) {
            unlock();
            isOther = Recover(deadline) || isOther;
            isOther = LockNamed(lock, unlock) || isOther;
        }
        isOther = Pages_.Refresh() || isOther;
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
        if (Journal_.IsPending())
            Journal_.Recover(Pages_);
    } catch (...) {
        Locks().LetReadersIn();
        throw;
    }
    Locks().LetReadersIn();
}

bool FileSession::Recover(const QDeadlineTimer& deadline)
{
    if (!Pages_.IsWritable())
        throw Error(errCannotOpen,
                    QStringLiteral("'%1' was left in the middle of a change by a program that ended. Open it once with "
                                   "an account that may write it.")
                        .arg(Pages_.Name()));
    const bool isOther = LockNamed([&] { Require(Locks().BeginWriting(deadline)); }, [&] { Locks().EndWriting(); });
    try {
        RecoverLocked(deadline);
    } catch (...) {
        Locks().EndWriting();
        throw;
    }
    Locks().EndWriting();
    return isOther;
}

bool FileSession::BeginWriting()
{
    const QString hindrance = Hindrance();
    if (!hindrance.isEmpty())
        throw Error(errCannotOpen, QStringLiteral("Cannot change '%1': %2.").arg(Pages_.Name(), hindrance));
    const QDeadlineTimer deadline(LongestWait);
    bool isOther = LockNamed([&] { Require(Locks().BeginWriting(deadline)); }, [&] { Locks().EndWriting(); });
    try {
        if (Journal_.IsPending())
            RecoverLocked(deadline);
        isOther = Pages_.Refresh() || isOther;
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
    if (!Pages_.IsNamed())
        throw Error(errFileReplaced,
                    QStringLiteral("The database '%1' was replaced by another file. Open it anew.").arg(Pages_.Name()));
    Require(Locks().ShutReadersOut(deadline));
    try {
        CountCommit();
        Journal_.Write(Pages_);
        HasCommitted_ = true;
        ChangeJournal::Apply(Pages_);
        Pages_.AdoptChanges();
    } catch (...) {
        Locks().LetReadersIn();
        throw;
    }
    try {
        Journal_.Clear();
    } catch (const Error&) {
        // The commit stands; whoever finds the journal writes the same once more.
    }
    Locks().LetReadersIn();
}

void FileSession::Commit()
{
    try {
        if (!Pages_.Changes().IsEmpty())
            Store(QDeadlineTimer(LongestWait));
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

void FileSession::EndWriting()
{
    IsWriting_ = false;
    Locks().EndWriting();
}

} // namespace dao::jet
