// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/FileCopy.h"

#include "platform/files/FileSystem.h"
#include "platform/records/FileTools.h"
#include "platform/records/engines/sqlite/ChangeLog.h"
#include "platform/records/engines/sqlite/SqliteConnection.h"

#include <QSet>

#include <algorithm>

namespace dao::sqlite
{

namespace
{

constexpr qint64 SliceSize = qint64{8} * 1024 * 1024;
/// Files up to this size, and changes up to that one, are read under one lock.
constexpr qint64 OneLockSize = qint64{16} * 1024 * 1024;
constexpr qint64 LastChangesSize = qint64{4} * 1024 * 1024;
/// What waits for the disk at any time: a writer's sync of its own few pages may have to wait for all of it.
constexpr qint64 UnsyncedSize = qint64{16} * 1024 * 1024;
/// A copy is its owner's alone while it is made.
constexpr int RightsOfOwner = 0600;
constexpr int LogAttempts = 3;
constexpr int MostRounds = 50;
constexpr int LockAttempts = 6;
/// The octets that SQLite locks lie here; they hold nothing, and some systems do not let anybody read them.
constexpr qint64 LockPageOffset = 0x40000000;

/// A lock of a reader, for a scope: the file stays as it is.
class ReadLock
{
public:
    explicit ReadLock(Connection& connection) : Connection_(connection)
    {
        for (int attempt = 1;; ++attempt) {
            try {
                Connection_.StartWaiting();
                Connection_.Execute("BEGIN");
                PageCount_ = Connection_.Number("PRAGMA page_count");
                return;
            } catch (const Error& error) {
                Connection_.Abandon();
                if (error.Number() != errLocked || attempt == LockAttempts)
                    throw;
            }
        }
    }
    ~ReadLock() { Connection_.Abandon(); }
    ReadLock(const ReadLock&) = delete;
    ReadLock& operator=(const ReadLock&) = delete;

    qint64 PageCount() const { return PageCount_; }

private:
    Connection& Connection_;
    qint64 PageCount_ = 0;
};

struct Range
{
    qint64 Offset;
    qint64 Size;
};

/// What the records say was written, in order and without gaps and overlaps in it.
std::vector<Range> RangesOf(const std::vector<ChangeRecord>& records)
{
    std::vector<Range> ranges;
    ranges.reserve(records.size());
    for (const ChangeRecord& record : records)
        ranges.push_back({record.Offset, record.Size});
    std::sort(ranges.begin(), ranges.end(), [](const Range& a, const Range& b) { return a.Offset < b.Offset; });
    std::vector<Range> joined;
    for (const Range& range : ranges) {
        if (!joined.empty() && range.Offset <= joined.back().Offset + joined.back().Size &&
            range.Offset + range.Size - joined.back().Offset <= SliceSize) {
            joined.back().Size = std::max(joined.back().Size, range.Offset + range.Size - joined.back().Offset);
        } else {
            joined.push_back(range);
        }
    }
    return joined;
}

qint64 SizeOf(const std::vector<Range>& ranges)
{
    qint64 size = 0;
    for (const Range& range : ranges)
        size += range.Size;
    return size;
}

class Copier
{
public:
    Copier(const QString& source, const QString& target, const engine::CopyProgress& progress)
        : Connection_(source, Connection::Mode::ReadWrite), TargetName_(target), Progress_(progress)
    {
        Connection_.WaitEagerly();
        PageSize_ = Connection_.Number("PRAGMA page_size");
        FileStatus status;
        Target_ = FileSystem::Current().Open(target, FileAccess::New, status);
        if (!Target_)
            throw Error(ErrorNumberOf(status), QStringLiteral("Cannot write '%1': %2").arg(target, status.Words()));
        Target_->SetAttributes({RightsOfOwner, std::nullopt});
    }

    ~Copier()
    {
        if (!IsDone_)
            FileSystem::Current().Remove(TargetName_);
    }
    Copier(const Copier&) = delete;
    Copier& operator=(const Copier&) = delete;

    void Run()
    {
        {
            const ReadLock lock(Connection_);
            Total_ = lock.PageCount() * PageSize_;
            if (Total_ <= OneLockSize) {
                CopyAll(lock);
                return Finish();
            }
        }
        for (int attempt = 0; attempt < LogAttempts; ++attempt) {
            if (CopyInSlices())
                return Finish();
        }
        const ReadLock lock(Connection_);
        CopyAll(lock);
        Finish();
    }

private:
    void CopyAll(const ReadLock& lock)
    {
        const qint64 end = lock.PageCount() * PageSize_;
        for (qint64 offset = 0; offset < end; offset += SliceSize) {
            Advance(offset, end);
            const Range range{offset, std::min(SliceSize, end - offset)};
            Read(range);
            Write(range);
        }
        Cut(end);
    }

    /// False when it has to be done again.
    bool CopyInSlices()
    {
        ChangeLog log(QString::fromUtf8(sqlite3_db_filename(Connection_.Handle(), "main")));
        if (!log.Begin())
            return false;
        quint32 firstCounter = 0;
        {
            // From here on every writer sees the log.
            const ReadLock lock(Connection_);
            Total_ = lock.PageCount() * PageSize_;
            firstCounter = ReadCounter();
        }
        for (qint64 offset = 0; offset < Total_; offset += SliceSize) {
            Advance(offset, Total_);
            CopyUnderOwnLock({offset, std::min(SliceSize, Total_ - offset)});
        }
        QSet<quint32> counters;
        std::vector<Range> changes;
        for (int round = 0; round < MostRounds; ++round) {
            Advance(Total_, Total_);
            Sync();
            for (const Range& range : changes)
                CopyUnderOwnLock(range);
            Sync();
            const ReadLock lock(Connection_);
            std::vector<ChangeRecord> records;
            if (!log.ReadOn(records))
                return false;
            for (const ChangeRecord& record : records) {
                if (record.Counter != 0)
                    counters.insert(record.Counter);
            }
            changes = RangesOf(records);
            if (SizeOf(changes) > LastChangesSize)
                continue;
            if (!IsUnbroken(firstCounter, ReadCounter(), counters))
                return false;
            for (const Range& range : changes) {
                Read(range);
                Write(range);
            }
            Cut(lock.PageCount() * PageSize_);
            return true;
        }
        return false;
    }

    /// Whether all commits since the first counter are known.
    static bool IsUnbroken(quint32 first, quint32 last, const QSet<quint32>& known)
    {
        for (quint32 counter = first; counter != last;) {
            if (!known.contains(++counter))
                return false;
        }
        return true;
    }

    void CopyUnderOwnLock(const Range& range)
    {
        {
            const ReadLock lock(Connection_);
            Read(range);
        }
        Write(range);
    }

    /// Into the buffer, past SQLite's cache. What lies behind the end of the file reads as zeros.
    void Read(const Range& range)
    {
        Buffer_.resize(range.Size);
        if (range.Offset < LockPageOffset + PageSize_ && range.Offset + range.Size > LockPageOffset) {
            const qint64 before = std::max<qint64>(0, LockPageOffset - range.Offset);
            const qint64 behind = std::min(range.Size, LockPageOffset + PageSize_ - range.Offset);
            Buffer_.fill('\0');
            ReadPart(Buffer_.data(), before, range.Offset);
            ReadPart(Buffer_.data() + behind, range.Size - behind, range.Offset + behind);
            return;
        }
        ReadPart(Buffer_.data(), range.Size, range.Offset);
    }
    void ReadPart(char* data, qint64 size, qint64 offset)
    {
        if (size <= 0)
            return;
        sqlite3_file* file = nullptr;
        int hasMoved = 0;
        sqlite3_file_control(Connection_.Handle(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved);
        const int code = sqlite3_file_control(Connection_.Handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
        if (hasMoved != 0)
            throw FileExchanged(Connection_.FileName());
        if (code != SQLITE_OK || file == nullptr || file->pMethods == nullptr)
            RaiseUnreadable();
        const int read = file->pMethods->xRead(file, data, static_cast<int>(size), offset);
        if (read != SQLITE_OK && read != SQLITE_IOERR_SHORT_READ)
            RaiseUnreadable();
    }
    quint32 ReadCounter()
    {
        Read({0, std::min<qint64>(PageSize_, 100)});
        return ChangeCounterIn(Buffer_.constData());
    }
    [[noreturn]] void RaiseUnreadable() const
    {
        throw Error(errDiskError, QStringLiteral("Disk or network error on '%1'.").arg(Connection_.FileName()));
    }

    void Write(const Range& range)
    {
        Require(Target_->WriteAt(range.Offset, Buffer_.constData(), range.Size));
        Unsynced_ += range.Size;
        if (Unsynced_ >= UnsyncedSize)
            Sync();
    }
    void Cut(qint64 size) { Require(Target_->SetSize(size)); }
    void Sync()
    {
        if (Unsynced_ > 0)
            Require(Target_->Sync());
        Unsynced_ = 0;
    }
    void Finish()
    {
        Unsynced_ = 1;
        Sync();
        Require(Target_->Close());
        IsDone_ = true;
    }
    void Require(const FileStatus& status) const
    {
        if (status.Error() == FileError::Full)
            throw Error(errDiskFull,
                        QStringLiteral("Not enough space on disk for '%1': the disk is full.").arg(TargetName_));
        if (!status.IsDone())
            throw Error(errDiskError, QStringLiteral("Disk or network error on '%1'.").arg(TargetName_));
    }

    void Advance(qint64 done, qint64 total)
    {
        if (Progress_ && !Progress_(done, std::max(done, total)))
            throw Error(errCancelled, QStringLiteral("The copy was cancelled."));
    }

    Connection Connection_;
    QString TargetName_;
    std::unique_ptr<FileHandle> Target_;
    const engine::CopyProgress& Progress_;
    QByteArray Buffer_;
    qint64 PageSize_ = 0;
    qint64 Total_ = 0;
    qint64 Unsynced_ = 0;
    bool IsDone_ = false;
};

} // namespace

void CopyFile(const QString& source, const QString& target, const engine::CopyProgress& progress)
{
    Copier(source, target, progress).Run();
}

} // namespace dao::sqlite
