// SPDX-License-Identifier: Apache-2.0
#include "support/FaultyFileSystem.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace
{
QByteArray ContentOf(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString FolderOf(const QString& name)
{
    return QFileInfo(name).absolutePath();
}
} // namespace

/// A file of the system's that counts, fails and remembers.
class FaultyFile final : public FileHandle
{
public:
    FaultyFile(FaultyFileSystem& files, std::unique_ptr<FileHandle> real, const QString& name, bool isWritten)
        : Files_(files), Real_(std::move(real)), Number_(FaultyFileSystem::FileNumber(name)), IsWritten_(isWritten)
    {
    }

    FileStatus ReadAt(qint64 offset, char* data, qint64 size, qint64& count) override
    {
        return Real_->ReadAt(offset, data, size, count);
    }
    FileStatus WriteAt(qint64 offset, const char* data, qint64 size) override
    {
        return Write(size, [&](qint64 part) { return Real_->WriteAt(offset, data, part); });
    }
    FileStatus Append(const char* data, qint64 size) override
    {
        return Write(size, [&](qint64 part) { return Real_->Append(data, part); });
    }
    qint64 Size() override { return Real_->Size(); }
    FileStatus SetSize(qint64 size) override
    {
        const FileStatus status = Files_.Answer("set size");
        return status.IsDone() ? Real_->SetSize(size) : status;
    }
    FileStatus Sync() override
    {
        const FileStatus status = Files_.Answer("sync");
        if (!status.IsDone())
            return status;
        if (const auto name = Files_.Written_.constFind(Number_); name != Files_.Written_.constEnd())
            Files_.Synced_.insert(Number_, ContentOf(*name));
        return {};
    }
    FileStatus Close() override
    {
        const FileStatus status = IsWritten_ ? Files_.Answer("close") : FileStatus();
        const FileStatus closed = Real_->Close();
        return status.IsDone() ? closed : status;
    }
    void SetAttributes(const FileAttributes& attributes) override { Real_->SetAttributes(attributes); }
    FileStatus Lock(FileLock kind, qint64 offset, qint64 size) override { return Real_->Lock(kind, offset, size); }
    FileStatus Unlock(qint64 offset, qint64 size) override { return Real_->Unlock(offset, size); }
    bool HasName(const QString& name) override { return Real_->HasName(name); }

private:
    template <typename Call>
    FileStatus Write(qint64 size, Call&& call)
    {
        FaultyFileSystem::Fault fault = FaultyFileSystem::Fault::Fails;
        const FileStatus status = Files_.Answer("write", &fault);
        if (status.IsDone())
            return call(size);
        if (fault == FaultyFileSystem::Fault::Tears)
            static_cast<void>(call(size / 2));
        return status;
    }

    FaultyFileSystem& Files_;
    std::unique_ptr<FileHandle> Real_;
    quint64 Number_;
    bool IsWritten_;
};

void FaultyFileSystem::FailAt(int number, FileError error, Fault fault, bool lasting)
{
    FailAt_ = Calls_ + number;
    Error_ = error;
    Fault_ = fault;
    IsLasting_ = lasting;
}

FileStatus FaultyFileSystem::Answer(const char* call, Fault* fault)
{
    ++Calls_;
    Names_.append(call);
    const bool isDue = FailAt_ != 0 && (Calls_ == FailAt_ || (IsLasting_ && Calls_ > FailAt_));
    if (fault)
        *fault = Fault_;
    return isDue ? FileStatus(Error_) : FileStatus();
}

quint64 FaultyFileSystem::FileNumber(const QString& name)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(name).constData(), &status) == 0 ? status.st_ino : 0;
}

QString FaultyFileSystem::Kept(const QString& name)
{
    const QString kept = Attic_.filePath(QString::number(++Next_));
    EXPECT_TRUE(System().Link(name, kept).IsDone()) << "the test's folder must lie where temporary files do";
    return kept;
}

void FaultyFileSystem::Note(const QStringList& names, std::function<void()> undo)
{
    QStringList folders;
    for (const QString& name : names)
        folders.append(FolderOf(name));
    folders.removeDuplicates();
    Changes_.push_back({folders, std::move(undo)});
}

void FaultyFileSystem::LosePower()
{
    StopFailing();
    for (auto change = Changes_.rbegin(); change != Changes_.rend(); ++change)
        change->Undo();
    Changes_.clear();
    // A file has the same content under all its names, so that the one in the attic will do.
    for (auto name = Written_.constBegin(); name != Written_.constEnd(); ++name) {
        QFile file(*name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(Synced_.value(name.key()));
    }
}

std::unique_ptr<FileHandle> FaultyFileSystem::Open(const QString& name, FileAccess access, FileStatus& status)
{
    const bool mayMake = access == FileAccess::New || access == FileAccess::AppendOrNew;
    const bool isMade = mayMake && KindOf(name) == FileKind::None;
    status = isMade ? Answer("make a file") : FileStatus();
    if (!status.IsDone())
        return nullptr;
    auto real = System().Open(name, access, status);
    if (!real)
        return nullptr;
    const bool isWritten = access != FileAccess::Read && access != FileAccess::ReadUnlinked;
    const quint64 number = FileNumber(name);
    if (isWritten && access != FileAccess::WriteToDevice && !Written_.contains(number)) {
        Synced_.insert(number, ContentOf(name));
        Written_.insert(number, Kept(name));
    }
    if (isMade)
        Note({name}, [name] { System().Remove(name); });
    return std::make_unique<FaultyFile>(*this, std::move(real), name, isWritten);
}

FileStatus FaultyFileSystem::CopyAccess(const QString& from, const QString& to)
{
    const FileStatus status = Answer("copy access");
    return status.IsDone() ? System().CopyAccess(from, to) : status;
}

FileStatus FaultyFileSystem::RenameToFreeName(const QString& oldName, const QString& newName)
{
    FileStatus status = Answer("rename to a free name");
    if (status.IsDone())
        status = System().RenameToFreeName(oldName, newName);
    if (status.IsDone())
        Note({oldName, newName}, [oldName, newName] { System().RenameOver(newName, oldName); });
    return status;
}

FileStatus FaultyFileSystem::RenameOver(const QString& oldName, const QString& newName)
{
    FileStatus status = Answer("rename over");
    if (!status.IsDone())
        return status;
    const QString kept = KindOf(newName) == FileKind::None ? QString() : Kept(newName);
    status = System().RenameOver(oldName, newName);
    if (status.IsDone()) {
        Note({oldName, newName}, [oldName, newName, kept] {
            System().RenameOver(newName, oldName);
            if (!kept.isEmpty())
                System().Link(kept, newName);
        });
    }
    return status;
}

FileStatus FaultyFileSystem::Link(const QString& name, const QString& secondName)
{
    FileStatus status = Answer("link");
    if (status.IsDone())
        status = System().Link(name, secondName);
    if (status.IsDone())
        Note({secondName}, [secondName] { System().Remove(secondName); });
    return status;
}

FileStatus FaultyFileSystem::Remove(const QString& name)
{
    if (KindOf(name) == FileKind::None)
        return System().Remove(name);
    FileStatus status = Answer("remove");
    if (!status.IsDone())
        return status;
    const QString kept = Kept(name);
    status = System().Remove(name);
    if (status.IsDone())
        Note({name}, [name, kept] { System().Link(kept, name); });
    return status;
}

FileStatus FaultyFileSystem::RemoveFolder(const QString& name)
{
    FileStatus status = Answer("remove a folder");
    if (status.IsDone())
        status = System().RemoveFolder(name);
    if (status.IsDone())
        Note({name}, [name] { System().MakeFolder(name); });
    return status;
}

FileStatus FaultyFileSystem::MakeFolder(const QString& name)
{
    FileStatus status = Answer("make a folder");
    if (status.IsDone())
        status = System().MakeFolder(name);
    if (status.IsDone())
        Note({name}, [name] { System().RemoveFolder(name); });
    return status;
}

FileStatus FaultyFileSystem::SyncFolder(const QString& folder)
{
    const FileStatus status = Answer("sync a folder");
    if (!status.IsDone())
        return status;
    const QString synced = QFileInfo(folder.isEmpty() ? QStringLiteral(".") : folder).absoluteFilePath();
    // What happened in two folders is on the disk when both were synced; half of it cannot be told apart here.
    for (Change& change : Changes_)
        change.Folders.removeAll(synced);
    std::erase_if(Changes_, [](const Change& change) { return change.Folders.isEmpty(); });
    return {};
}

FileStatus FaultyFileSystem::MayWrite(const QString& name)
{
    return Refusal == FileError::None ? System().MayWrite(name) : FileStatus(Refusal);
}
