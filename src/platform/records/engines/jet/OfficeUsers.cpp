// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/OfficeUsers.h"

#include <QFileInfo>
#include <QSysInfo>
#include <QThread>

#include <algorithm>
#include <vector>

namespace dao::jet
{

namespace
{

constexpr qint64 MostUsers = 255;
constexpr qint64 FirstUserLock = 0x10000001;
constexpr qsizetype UserNameAt = 32;
constexpr qsizetype UserNoteSize = 64;
constexpr int MostAttempts = 20;
const QByteArray& OurUserName()
{
    static const QByteArray name("Tolva");
    return name;
}

QByteArray OwnNote()
{
    QByteArray note(UserNoteSize, '\0');
    // The last octet of each name is its end.
    const QByteArray computer = QSysInfo::machineHostName().toLatin1().left(UserNameAt - 1);
    std::copy(computer.begin(), computer.end(), note.begin());
    std::copy(OurUserName().begin(), OurUserName().end(), note.begin() + UserNameAt);
    return note;
}

bool IsOurs(const QByteArray& note)
{
    return note.mid(UserNameAt, OurUserName().size() + 1) == OurUserName() + '\0';
}

bool IsNoNote(const QByteArray& note)
{
    return std::all_of(note.begin(), note.end(), [](char octet) { return octet == 0; });
}

bool KeepsLock(FileHandle& file, qint64 user)
{
    const FileStatus status = file.Lock(FileLock::Exclusive, FirstUserLock + user, 1);
    if (status.IsDone())
        static_cast<void>(file.Unlock(FirstUserLock + user, 1));
    return !status.IsDone();
}

/// Of the notes that are not ours, by their places.
std::vector<qint64> OthersIn(const QByteArray& notes, bool& hasOurs)
{
    std::vector<qint64> others;
    for (qsizetype at = 0; at < notes.size(); at += UserNoteSize) {
        const QByteArray note = notes.mid(at, UserNoteSize);
        if (IsOurs(note))
            hasOurs = true;
        else if (!IsNoNote(note))
            others.push_back(at / UserNoteSize);
    }
    return others;
}

} // namespace

QString OfficeUsersFile(const QString& fileName)
{
    const QFileInfo info(fileName);
    return info.path() + u'/' + info.completeBaseName() + QStringLiteral(".ldb");
}

bool IsOpenInOfficeProgram(const QString& fileName)
{
    const QString name = OfficeUsersFile(fileName);
    FileSystem& files = FileSystem::Current();
    if (files.KindOf(name) == FileKind::None)
        return false;
    FileStatus status;
    auto file = files.Open(name, FileAccess::Change, status);
    const bool canLock = file != nullptr;
    if (!file)
        file = files.Open(name, FileAccess::Read, status);
    if (!file)
        return files.KindOf(name) != FileKind::None;
    QByteArray notes(MostUsers * UserNoteSize, '\0');
    qint64 count = 0;
    if (!file->ReadAt(0, notes.data(), notes.size(), count).IsDone())
        return true;
    notes.truncate(count);
    bool hasOurs = false;
    const std::vector<qint64> others = OthersIn(notes, hasOurs);
    if (!hasOurs || !canLock)
        return !others.empty();
    // Who came later and went has left his note, for the file was not his to take away.
    return std::any_of(others.begin(), others.end(), [&](qint64 user) { return KeepsLock(*file, user); });
}

OfficeUserNote::Attempt OfficeUserNote::TryToJoin()
{
    FileSystem& files = FileSystem::Current();
    FileStatus status;
    auto file = files.Open(Name_, FileAccess::Change, status);
    const bool isNew = !file && files.KindOf(Name_) == FileKind::None;
    if (isNew)
        file = files.Open(Name_, FileAccess::New, status);
    if (!file)
        return status.Error() == FileError::Exists ? Attempt::Again : Attempt::Failed;
    // Whoever may use the database may leave a note here.
    if (isNew)
        static_cast<void>(files.CopyAccess(FileName_, Name_));
    qint64 user = 0;
    while (user < MostUsers && !file->Lock(FileLock::Exclusive, FirstUserLock + user, 1).IsDone())
        ++user;
    if (user == MostUsers || !file->HasName(Name_))
        return Attempt::Again;
    const QByteArray note = OwnNote();
    File_ = std::move(file);
    if (File_->WriteAt(user * UserNoteSize, note.constData(), note.size()).IsDone())
        return Attempt::Done;
    Leave();
    return Attempt::Failed;
}

void OfficeUserNote::Join()
{
    if (File_ && File_->HasName(Name_))
        return;
    File_.reset();
    for (int attempt = 0; attempt < MostAttempts && TryToJoin() == Attempt::Again; ++attempt)
        QThread::msleep(1);
}

void OfficeUserNote::Leave()
{
    if (!File_)
        return;
    // Nobody can come while all places are locked.
    const bool isLast = File_->Lock(FileLock::Exclusive, FirstUserLock, MostUsers).IsDone();
    if (isLast && File_->HasName(Name_))
        static_cast<void>(FileSystem::Current().Remove(Name_));
    File_.reset();
}

} // namespace dao::jet
