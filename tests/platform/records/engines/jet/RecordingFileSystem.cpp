// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/RecordingFileSystem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace
{

constexpr qint64 Sector = 512;

QString Short(const QString& name)
{
    return QFileInfo(name).fileName();
}

} // namespace

class RecordedFile final : public FileHandle
{
public:
    RecordedFile(RecordingFileSystem& files, std::unique_ptr<FileHandle> real, const QString& name)
        : Files_(files), Real_(std::move(real)), Name_(Short(name))
    {
    }

    FileStatus ReadAt(qint64 offset, char* data, qint64 size, qint64& count) override
    {
        return Real_->ReadAt(offset, data, size, count);
    }
    FileStatus WriteAt(qint64 offset, const char* data, qint64 size) override
    {
        Files_.Calls_.push_back({RecordingFileSystem::Kind::Write, Name_, offset, QByteArray(data, size)});
        return Real_->WriteAt(offset, data, size);
    }
    FileStatus Append(const char*, qint64) override
    {
        ADD_FAILURE() << "nothing is appended to these files";
        return FileStatus(FileError::Failed);
    }
    qint64 Size() override { return Real_->Size(); }
    FileStatus SetSize(qint64 size) override
    {
        Files_.Calls_.push_back({RecordingFileSystem::Kind::SetSize, Name_, size});
        return Real_->SetSize(size);
    }
    /// Not put on the test's disk: nothing depends on it here.
    FileStatus Sync() override
    {
        Files_.Calls_.push_back({RecordingFileSystem::Kind::Sync, Name_});
        return {};
    }
    FileStatus Close() override { return Real_->Close(); }
    void SetAttributes(const FileAttributes& attributes) override { Real_->SetAttributes(attributes); }
    FileStatus Lock(FileLock kind, qint64 offset, qint64 size) override { return Real_->Lock(kind, offset, size); }
    FileStatus Unlock(qint64 offset, qint64 size) override { return Real_->Unlock(offset, size); }
    bool HasName(const QString& name) override { return Real_->HasName(name); }

private:
    RecordingFileSystem& Files_;
    std::unique_ptr<FileHandle> Real_;
    QString Name_;
};

RecordingFileSystem::RecordingFileSystem(const QString& folder)
{
    for (const QString& name : QDir(folder).entryList(QDir::Files)) {
        QFile file(QDir(folder).filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        Beginning_.insert(name, file.readAll());
    }
    SetCurrent(this);
}

std::unique_ptr<FileHandle> RecordingFileSystem::Open(const QString& name, FileAccess access, FileStatus& status)
{
    auto real = System().Open(name, access, status);
    if (!real)
        return nullptr;
    if (access == FileAccess::New)
        Calls_.push_back({Kind::Make, Short(name)});
    return std::make_unique<RecordedFile>(*this, std::move(real), name);
}

FileStatus RecordingFileSystem::RenameToFreeName(const QString&, const QString&)
{
    ADD_FAILURE() << "nothing is renamed";
    return FileStatus(FileError::Failed);
}

FileStatus RecordingFileSystem::RenameOver(const QString&, const QString&)
{
    ADD_FAILURE() << "nothing is renamed";
    return FileStatus(FileError::Failed);
}

FileStatus RecordingFileSystem::Remove(const QString& name)
{
    Calls_.push_back({Kind::Remove, Short(name)});
    return System().Remove(name);
}

FileStatus RecordingFileSystem::SyncFolder(const QString&)
{
    Calls_.push_back({Kind::SyncFolder, QString()});
    return {};
}

void RecordingFileSystem::Apply(const Call& call, Files& files, std::mt19937* random)
{
    switch (call.What) {
    case Kind::Make:
        files.insert(call.Name, {});
        return;
    case Kind::Remove:
        files.remove(call.Name);
        return;
    case Kind::SetSize:
        if (files.contains(call.Name)) {
            QByteArray& content = files[call.Name];
            const qsizetype before = content.size();
            content.resize(call.Offset);
            if (call.Offset > before)
                std::memset(content.data() + before, 0, static_cast<std::size_t>(call.Offset - before));
        }
        return;
    case Kind::Write: {
        if (!files.contains(call.Name))
            return;
        QByteArray& content = files[call.Name];
        for (qint64 at = 0; at < call.Octets.size(); at += Sector) {
            // A torn write: each of its sectors is there or not.
            if (random != nullptr && (*random)() % 2 == 0)
                continue;
            const qint64 size = std::min<qint64>(Sector, call.Octets.size() - at);
            if (content.size() < call.Offset + at + size)
                content.append(call.Offset + at + size - content.size(), '\0');
            std::memcpy(content.data() + call.Offset + at, call.Octets.constData() + at,
                        static_cast<std::size_t>(size));
        }
        return;
    }
    case Kind::Sync:
    case Kind::SyncFolder:
        return;
    }
}

/// The place behind the last sync of what the call changed; 0 for none.
std::size_t RecordingFileSystem::LastSync(std::size_t calls, const Call& call, Kind kind) const
{
    for (std::size_t at = calls; at > 0; --at) {
        const Call& other = Calls_[at - 1];
        if (other.What == kind && (kind == Kind::SyncFolder || other.Name == call.Name))
            return at;
    }
    return 0;
}

RecordingFileSystem::Files RecordingFileSystem::After(std::size_t calls, std::mt19937* random) const
{
    Files files = Beginning_;
    for (std::size_t at = 0; at < calls; ++at) {
        const Call& call = Calls_[at];
        if (random == nullptr) {
            Apply(call, files, nullptr);
            continue;
        }
        const bool isName = call.What == Kind::Make || call.What == Kind::Remove;
        const bool isDurable = at < LastSync(calls, call, isName ? Kind::SyncFolder : Kind::Sync);
        const auto fate = (*random)() % 3;
        // A file that was made and whose name is lost leads its life without one: its content is lost with it.
        if (isDurable || fate == 0)
            Apply(call, files, nullptr);
        else if (fate == 1 && call.What == Kind::Write)
            Apply(call, files, random);
    }
    return files;
}
