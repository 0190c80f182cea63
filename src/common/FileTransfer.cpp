#include "common/DurableFile.h"
#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "platform/records/DBEngine.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace
{
constexpr qint64 ChunkSize = qint64(1024) * 1024;

/// A file that goes away again unless it is put in its place.
class TemporaryFile
{
public:
    explicit TemporaryFile(const QString& folder)
        : File_(FileHelper::Join(folder, QStringLiteral(".copy-") +
                                             QString::number(QRandomGenerator::global()->generate64(), 16)))
    {
    }
    ~TemporaryFile()
    {
        if (Made_)
            File_.remove();
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    bool Open()
    {
        Made_ = File_.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered);
        return Made_;
    }
    QFile& File() { return File_; }
    QString Name() const { return File_.fileName(); }
    /// Somebody else has made it.
    void Adopt() { Made_ = true; }
    /// It bears its lasting name now.
    void Keep() { Made_ = false; }

private:
    QFile File_;
    bool Made_ = false;
};

bool CopyContent(QFile& source, QFile& target, ProgressDisplay& display)
{
    const qint64 total = source.size();
    qint64 done = 0;
    QByteArray chunk(ChunkSize, Qt::Uninitialized);
    for (;;) {
        if (!display.Advance(done, qMax(done, total)))
            return false;
        const qint64 count = source.read(chunk.data(), chunk.size());
        if (count == 0)
            return true;
        if (count < 0 || target.write(chunk.constData(), count) != count)
            return false;
        done += count;
    }
}

/// Makes a whole copy of source in the folder of target, on the disk, with its rights and its date of change.
bool MakeCopy(const QString& sourceName, TemporaryFile& copy, const QString& caption)
{
    QFile source(sourceName);
    if (QFileInfo(sourceName).isDir() || !source.open(QIODevice::ReadOnly | QIODevice::Unbuffered) || !copy.Open())
        return false;
    const auto display = UserInterface::Current().Progress(caption);
    if (!CopyContent(source, copy.File(), *display))
        return false;
    // Not every file system keeps these; the content is what was asked for.
    copy.File().setFileTime(source.fileTime(QFileDevice::FileModificationTime), QFileDevice::FileModificationTime);
    copy.File().setPermissions(source.permissions());
    const bool whole = DurableFile::Sync(copy.File());
    copy.File().close();
    return whole;
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
    QFile::setPermissions(copy.Name(), QFile::permissions(sourceName));
    return true;
}

/// A link as the target means the file that it points to.
QString Resolved(const QString& file)
{
    const QString canonical = QFileInfo(file).canonicalFilePath();
    return canonical.isEmpty() ? file : canonical;
}

bool CopyToFreeName(const QString& oldName, const QString& newName, const QString& caption)
{
    TemporaryFile copy(FileHelper::FolderOf(newName));
    if (!MakeCopy(oldName, copy, caption) ||
        DurableFile::RenameToFreeName(copy.Name(), newName) != DurableFile::RenameResult::Done)
        return false;
    copy.Keep();
    if (!QFile::remove(oldName)) {
        QFile::remove(newName); // one file under two names would be no rename
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
    const QString file = Resolved(FolderExists(target) ? Join(target, FileNameOf(source)) : target);
    if (FolderExists(file) || Resolved(source) == file)
        return false;
    TemporaryFile copy(FolderOf(file));
    const bool isMade =
        IsDatabase(source) ? MakeDatabaseCopy(source, copy, caption, failure) : MakeCopy(source, copy, caption);
    if (!isMade || !DurableFile::RenameOver(copy.Name(), file))
        return false;
    copy.Keep();
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
        std::filesystem::remove(entry, error);
        if (error)
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
