// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/ChangeLog.h"

#include "platform/files/FileSystem.h"

#include <QtEndian>

#include <array>
#include <cstring>
#include <list>

namespace dao::sqlite
{

namespace
{

constexpr int CounterOffset = 24;
constexpr int CounterEnd = CounterOffset + 4;
constexpr qint64 RecordSize = 16;

/// What one connection writes down. It looks for the log at its first write under a lock: whoever begins a copy makes
/// the log before it waits for that lock.
class LogWriter
{
public:
    explicit LogWriter(const QString& databaseFile) : Name_(ChangeLog::NameFor(databaseFile)) {}

    void Note(qint64 offset, const void* data, int size)
    {
        if (!HasLooked_)
            Look();
        if (!File_)
            return;
        std::array<char, RecordSize> record{};
        qToBigEndian(offset, record.data());
        qToBigEndian(static_cast<quint32>(size), record.data() + 8);
        const bool hasCounter = offset == 0 && size >= CounterEnd;
        qToBigEndian(hasCounter ? ChangeCounterIn(data) : 0U, record.data() + 12);
        // A commit must not fail for the sake of a copy. Without its log the copy begins again.
        if (!File_->Append(record.data(), RecordSize).IsDone()) {
            File_.reset();
            FileSystem::Current().Remove(Name_);
        }
    }
    void LockEnded()
    {
        File_.reset();
        HasLooked_ = false;
    }

private:
    void Look()
    {
        HasLooked_ = true;
        FileStatus ignored; // without a log there is no copy, or it begins again
        File_ = FileSystem::Current().Open(Name_, FileAccess::Append, ignored);
    }

    QString Name_;
    std::unique_ptr<FileHandle> File_;
    bool HasLooked_ = false;
};

/// SQLite allocates one of these for a database file, with the real file behind it.
struct LoggingFile
{
    sqlite3_file Base;
    LogWriter* Writer;
    sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

struct LoggingVfs
{
    sqlite3_vfs Vfs; ///< First, so that one is the other.
    sqlite3_vfs* Real;
    QByteArray Name;
};

LoggingFile* Self(sqlite3_file* file)
{
    return reinterpret_cast<LoggingFile*>(file);
}

sqlite3_file* Real(sqlite3_file* file)
{
    return Self(file)->Real();
}

int Close(sqlite3_file* file)
{
    delete Self(file)->Writer;
    Self(file)->Writer = nullptr;
    return Real(file)->pMethods->xClose(Real(file));
}
int Read(sqlite3_file* file, void* data, int size, sqlite3_int64 offset)
{
    return Real(file)->pMethods->xRead(Real(file), data, size, offset);
}
int Write(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset)
{
    // Before the write: whoever dies in between has noted too much, which does no harm.
    Self(file)->Writer->Note(offset, data, size);
    return Real(file)->pMethods->xWrite(Real(file), data, size, offset);
}
int Truncate(sqlite3_file* file, sqlite3_int64 size)
{
    return Real(file)->pMethods->xTruncate(Real(file), size);
}
int Sync(sqlite3_file* file, int flags)
{
    return Real(file)->pMethods->xSync(Real(file), flags);
}
int FileSize(sqlite3_file* file, sqlite3_int64* size)
{
    return Real(file)->pMethods->xFileSize(Real(file), size);
}
int Lock(sqlite3_file* file, int level)
{
    const int code = Real(file)->pMethods->xLock(Real(file), level);
    if (code != SQLITE_OK || level != SQLITE_LOCK_SHARED)
        return code;
    // The first lock of each operation, before SQLite looks for a journal: the name, and the journal's name with it,
    // may be another file's by now, and what is open here lies under a keep name, where nobody may write any more.
    int hasMoved = 0;
    if (Real(file)->pMethods->xFileControl(Real(file), SQLITE_FCNTL_HAS_MOVED, &hasMoved) != SQLITE_OK || hasMoved == 0)
        return SQLITE_OK;
    Real(file)->pMethods->xUnlock(Real(file), SQLITE_LOCK_NONE);
    return SQLITE_READONLY_DBMOVED;
}
int Unlock(sqlite3_file* file, int level)
{
    Self(file)->Writer->LockEnded();
    return Real(file)->pMethods->xUnlock(Real(file), level);
}
int CheckReservedLock(sqlite3_file* file, int* result)
{
    return Real(file)->pMethods->xCheckReservedLock(Real(file), result);
}
int FileControl(sqlite3_file* file, int operation, void* argument)
{
    return Real(file)->pMethods->xFileControl(Real(file), operation, argument);
}
int SectorSize(sqlite3_file* file)
{
    return Real(file)->pMethods->xSectorSize(Real(file));
}
int DeviceCharacteristics(sqlite3_file* file)
{
    return Real(file)->pMethods->xDeviceCharacteristics(Real(file));
}
int ShmMap(sqlite3_file* file, int region, int size, int extend, void volatile** memory)
{
    return Real(file)->pMethods->xShmMap(Real(file), region, size, extend, memory);
}
int ShmLock(sqlite3_file* file, int offset, int count, int flags)
{
    return Real(file)->pMethods->xShmLock(Real(file), offset, count, flags);
}
void ShmBarrier(sqlite3_file* file)
{
    Real(file)->pMethods->xShmBarrier(Real(file));
}
int ShmUnmap(sqlite3_file* file, int remove)
{
    return Real(file)->pMethods->xShmUnmap(Real(file), remove);
}

/// Version 1 for files without shared memory. Neither maps the file into memory, which SQLite does not ask for here.
sqlite3_io_methods MakeMethods(int version)
{
    sqlite3_io_methods methods{};
    methods.iVersion = version;
    methods.xClose = Close;
    methods.xRead = Read;
    methods.xWrite = Write;
    methods.xTruncate = Truncate;
    methods.xSync = Sync;
    methods.xFileSize = FileSize;
    methods.xLock = Lock;
    methods.xUnlock = Unlock;
    methods.xCheckReservedLock = CheckReservedLock;
    methods.xFileControl = FileControl;
    methods.xSectorSize = SectorSize;
    methods.xDeviceCharacteristics = DeviceCharacteristics;
    if (version >= 2) {
        methods.xShmMap = ShmMap;
        methods.xShmLock = ShmLock;
        methods.xShmBarrier = ShmBarrier;
        methods.xShmUnmap = ShmUnmap;
    }
    return methods;
}

int Open(sqlite3_vfs* vfs, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags)
{
    sqlite3_vfs* real = reinterpret_cast<LoggingVfs*>(vfs)->Real;
    if ((flags & SQLITE_OPEN_MAIN_DB) == 0 || name == nullptr)
        return real->xOpen(real, name, file, flags, outFlags);
    static const sqlite3_io_methods plain = MakeMethods(1);
    static const sqlite3_io_methods shared = MakeMethods(2);
    LoggingFile* logging = Self(file);
    std::memset(static_cast<void*>(logging), 0, sizeof(LoggingFile));
    const int code = real->xOpen(real, name, logging->Real(), flags, outFlags);
    if (logging->Real()->pMethods == nullptr)
        return code;
    // From here on SQLite calls Close, also for a file that did not open.
    logging->Writer = new LogWriter(QString::fromUtf8(name));
    logging->Base.pMethods = logging->Real()->pMethods->iVersion >= 2 ? &shared : &plain;
    return code;
}

} // namespace

const char* LoggingVfsName()
{
    static std::list<LoggingVfs> made; // SQLite keeps pointers to them
    sqlite3_vfs* real = sqlite3_vfs_find(nullptr);
    for (const LoggingVfs& vfs : made) {
        if (vfs.Real == real)
            return vfs.Name.constData();
    }
    LoggingVfs& vfs = made.emplace_back(LoggingVfs{*real, real, QByteArray("logging-") + real->zName});
    vfs.Vfs.pNext = nullptr;
    vfs.Vfs.zName = vfs.Name.constData();
    vfs.Vfs.szOsFile = static_cast<int>(sizeof(LoggingFile)) + real->szOsFile;
    vfs.Vfs.xOpen = Open;
    sqlite3_vfs_register(&vfs.Vfs, 0);
    return vfs.Name.constData();
}

ChangeLog::ChangeLog(const QString& databaseFile) : Name_(NameFor(databaseFile)) {}

ChangeLog::~ChangeLog()
{
    FileSystem::Current().Remove(Name_);
}

QString ChangeLog::NameFor(const QString& databaseFile)
{
    return databaseFile + QStringLiteral("-copying");
}

bool ChangeLog::Begin()
{
    FileSystem& files = FileSystem::Current();
    // Nobody of ours makes links; what somebody put there for us to write through goes.
    if (files.KindOf(Name_) == FileKind::Link)
        files.Remove(Name_);
    FileStatus status;
    const auto file = files.Open(Name_, FileAccess::AppendOrNew, status);
    if (!file)
        return false;
    Position_ = file->Size();
    return Position_ >= 0 && Position_ % RecordSize == 0;
}

bool ChangeLog::ReadOn(std::vector<ChangeRecord>& records)
{
    FileStatus status;
    const auto file = FileSystem::Current().Open(Name_, FileAccess::Append, status);
    const qint64 size = file ? file->Size() - Position_ : -1;
    if (size < 0 || size % RecordSize != 0)
        return false;
    QByteArray octets(size, Qt::Uninitialized);
    qint64 count = 0;
    if (!file->ReadAt(Position_, octets.data(), size, count).IsDone() || count != size)
        return false;
    for (qint64 i = 0; i < octets.size(); i += RecordSize) {
        const char* record = octets.constData() + i;
        records.push_back({qFromBigEndian<qint64>(record), qFromBigEndian<quint32>(record + 8),
                           qFromBigEndian<quint32>(record + 12)});
    }
    Position_ += octets.size();
    return true;
}

quint32 ChangeCounterIn(const void* firstPage)
{
    return qFromBigEndian<quint32>(static_cast<const char*>(firstPage) + CounterOffset);
}

} // namespace dao::sqlite
