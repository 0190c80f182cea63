// SPDX-License-Identifier: Apache-2.0
#include "common/DurableFile.h"
#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "platform/files/WorkClaim.h"
#include "platform/records/DBEngine.h"
#include "platform/records/FileTools.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace
{
constexpr qint64 ChunkSize = qint64(1024) * 1024;

/// A file that goes away again unless it is put in its place; claimed while it is made.
class TemporaryFile
{
public:
    explicit TemporaryFile(const QString& folder)
        : Name_(FileHelper::Join(folder, QStringLiteral(".copy-") +
                                             QString::number(QRandomGenerator::global()->generate64(), 16))),
          Claim_(Name_)
    {
    }
    ~TemporaryFile()
    {
        if (IsMade_)
            FileSystem::Current().Remove(Name_);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Why it cannot be made.
    const FileStatus& Status() const { return Claim_.Status(); }
    /// Null when it cannot be made.
    std::unique_ptr<FileHandle> Make(FileStatus& status)
    {
        auto file = FileSystem::Current().Open(Name_, FileAccess::New, status);
        IsMade_ = file != nullptr;
        return file;
    }
    const QString& Name() const { return Name_; }
    /// Somebody else has made it.
    void Adopt() { IsMade_ = true; }
    /// It bears its lasting name now.
    void Keep() { IsMade_ = false; }

private:
    QString Name_;
    WorkClaim Claim_; ///< Goes behind the file.
    bool IsMade_ = false;
};

/// Nothing when the display was cancelled.
std::optional<FileStatus> CopyContent(FileHandle& source, FileHandle& target, ProgressDisplay& display)
{
    const qint64 total = source.Size();
    qint64 done = 0;
    QByteArray chunk(ChunkSize, Qt::Uninitialized);
    for (;;) {
        if (!display.Advance(done, qMax(done, total)))
            return std::nullopt;
        qint64 count = 0;
        FileStatus status = source.ReadAt(done, chunk.data(), chunk.size(), count);
        if (status.IsDone() && count > 0)
            status = target.WriteAt(done, chunk.constData(), count);
        if (!status.IsDone() || count == 0)
            return status;
        done += count;
    }
}

/// For whoever asked, in the words of the seam.
bool Fail(const QString& name, const FileStatus& status, PendingError* failure)
{
    const QString words = QStringLiteral("'%1' could not be copied: %2").arg(name, status.Words());
    WriteDebugLog(words);
    if (failure)
        failure->Set(dao::ErrorNumberOf(status), words);
    return false;
}

/// Makes a whole copy of source in the folder of target, on the disk, with its rights and its date of change.
bool MakeCopy(const QString& sourceName, TemporaryFile& copy, const QString& caption, PendingError* failure)
{
    FileStatus status;
    const auto source = FileSystem::Current().Open(sourceName, FileAccess::Read, status);
    const auto target = source ? copy.Make(status) : nullptr;
    if (!target)
        return Fail(sourceName, status, failure);
    const auto display = UserInterface::Current().Progress(caption);
    const std::optional<FileStatus> copied = CopyContent(*source, *target, *display);
    if (!copied)
        return false;
    status = *copied;
    if (const auto attributes = FileSystem::Current().AttributesOf(sourceName); attributes && status.IsDone())
        target->SetAttributes(*attributes);
    if (status.IsDone())
        status = target->Sync();
    const FileStatus closed = target->Close();
    if (status.IsDone())
        status = closed;
    return status.IsDone() || Fail(sourceName, status, failure);
}

bool IsDatabase(const QString& file)
{
    return FileHelper::FileExists(file) && dao::DBEngine::IsDatabase(file);
}

/// The same of a database, through the record store alone: to open and close its file here would take away the locks
/// that this process holds on it.
bool MakeDatabaseCopy(const QString& sourceName, TemporaryFile& copy, const QString& caption, PendingError* failure)
{
    const auto display = UserInterface::Current().Progress(caption);
    PendingError pending;
    const bool isWhole = pending.Try([&] {
        dao::DBEngine::CopyDatabase(sourceName, copy.Name(),
                                    [&](qint64 done, qint64 total) { return display->Advance(done, total); });
    });
    if (!isWhole) {
        WriteDebugLog(QStringLiteral("Copying '%1' failed: %2 (%3)")
                          .arg(sourceName, pending.Description(), QString::number(pending.Number())));
        if (failure)
            *failure = pending;
        return false;
    }
    copy.Adopt();
    const FileStatus given = FileSystem::Current().CopyAccess(sourceName, copy.Name());
    if (!given.IsDone()) {
        // A copy that its owner alone may use is better than none.
        WriteDebugLog(QStringLiteral("The rights on '%1' could not be given to its copy in '%2': %3")
                          .arg(sourceName, FileHelper::FolderOf(copy.Name()), given.Words()));
    }
    return true;
}

/// The file that a link points to.
QString Resolved(const QString& file)
{
    const QString canonical = QFileInfo(file).canonicalFilePath();
    return canonical.isEmpty() ? file : canonical;
}

bool CopyToFreeName(const QString& oldName, const QString& newName, const QString& caption)
{
    TemporaryFile copy(FileHelper::FolderOf(newName));
    if (!copy.Status().IsDone() || !MakeCopy(oldName, copy, caption, nullptr) ||
        DurableFile::RenameToFreeName(copy.Name(), newName) != DurableFile::RenameResult::Done)
        return false;
    copy.Keep();
    FileSystem& files = FileSystem::Current();
    if (!files.Remove(oldName).IsDone()) {
        files.Remove(newName); // one file under two names would be no rename
        return false;
    }
    DurableFile::SyncFolder(FileHelper::FolderOf(oldName));
    return true;
}

std::filesystem::path NativePath(const QString& name)
{
#ifdef Q_OS_WIN
    return std::filesystem::path(name.toStdWString());
#else
    return std::filesystem::path(QFile::encodeName(name).toStdString());
#endif
}

/// A name that is no valid text cannot be said to the seam.
bool RemoveEntry(const std::filesystem::path& entry)
{
#ifdef Q_OS_WIN
    const QString name = QString::fromStdWString(entry.native());
    const bool isText = true;
#else
    const QString name = QFile::decodeName(entry.c_str());
    const bool isText = QFile::encodeName(name) == entry.c_str();
#endif
    std::error_code error;
    if (!isText)
        return std::filesystem::remove(entry, error) && !error;
    FileSystem& files = FileSystem::Current();
    const FileKind kind = files.KindOf(name);
    return kind == FileKind::None ||
           (kind == FileKind::Folder ? files.RemoveFolder(name) : files.Remove(name)).IsDone();
}

/// Everything that stands in a folder, and the folder, each behind what it holds. Names stay in the system's own form,
/// so that those that are no valid text can be deleted as well.
std::vector<std::filesystem::path> Contents(const std::filesystem::path& target, std::error_code& error)
{
    std::vector<std::filesystem::path> entries{target};
    const auto status = std::filesystem::symlink_status(target, error);
    if (error || !std::filesystem::is_directory(status))
        return entries;
    for (auto i = std::filesystem::recursive_directory_iterator(target, error);
         !error && i != std::filesystem::recursive_directory_iterator(); i.increment(error))
        entries.push_back(i->path());
    std::reverse(entries.begin(), entries.end()); // a folder comes before its entries in the walk
    return entries;
}
} // namespace

bool FileHelper::CopyWithProgress(const QString& source, const QString& target, const QString& caption,
                                  PendingError* failure)
{
    if (source.isEmpty() || target.isEmpty())
        return false;
    const QString file = FolderExists(target) ? Join(target, FileNameOf(source)) : target;
    if (FolderExists(file) || Resolved(source) == Resolved(file))
        return false;
    TemporaryFile copy(FolderOf(file));
    if (!copy.Status().IsDone())
        return Fail(source, copy.Status(), failure);
    const bool isMade = IsDatabase(source) ? MakeDatabaseCopy(source, copy, caption, failure)
                                           : MakeCopy(source, copy, caption, failure);
    if (!isMade)
        return false;
    const FileStatus named = FileSystem::Current().RenameOver(copy.Name(), file);
    if (!named.IsDone())
        return Fail(file, named, failure);
    copy.Keep();
    DurableFile::SyncFolder(FolderOf(file));
    return true;
}

bool FileHelper::DeleteWithProgress(const QString& target, const QString& caption)
{
    std::error_code error;
    const std::filesystem::path path = NativePath(target);
    if (path.empty() || path == path.root_path())
        return false;
    if (!std::filesystem::exists(std::filesystem::symlink_status(path, error)))
        return true;
    const auto entries = Contents(path, error);
    if (error)
        return false;
    const auto display = UserInterface::Current().Progress(caption);
    qint64 done = 0;
    for (const std::filesystem::path& entry : entries) {
        if (!display->Advance(done++, static_cast<qint64>(entries.size())))
            return false;
        if (!RemoveEntry(entry))
            return false;
    }
    DurableFile::SyncFolder(FolderOf(target));
    return true;
}

bool FileHelper::RenameWithProgress(const QString& oldName, const QString& newName, const QString& caption)
{
    const DurableFile::RenameResult result = DurableFile::RenameToFreeName(oldName, newName);
    if (result == DurableFile::RenameResult::OtherFileSystem)
        return CopyToFreeName(oldName, newName, caption);
    return result == DurableFile::RenameResult::Done;
}
