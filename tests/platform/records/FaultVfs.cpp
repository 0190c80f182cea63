// SPDX-License-Identifier: Apache-2.0
#include "platform/records/FaultVfs.h"

#include <array>
#include <cstring>

namespace
{

struct State
{
    sqlite3_vfs* Real = nullptr;
    FaultVfs::Operation Operation = FaultVfs::Operation::Write;
    int FailNumber = 0; ///< 0 for never.
    int Code = 0;
    bool IsLasting = false;
    bool HasFailed = false;
    bool SkipsSyncs = false;
    std::array<int, 4> Calls{};
};

State state;

/// SQLITE_OK, or the failure that is due.
int Count(FaultVfs::Operation operation)
{
    const int number = ++state.Calls[static_cast<std::size_t>(operation)];
    const bool isDue = operation == state.Operation && state.FailNumber > 0 &&
                       (number == state.FailNumber || (state.IsLasting && number > state.FailNumber));
    if (!isDue)
        return SQLITE_OK;
    state.HasFailed = true;
    return state.Code;
}

/// SQLite allocates one of these for each file, with the real file behind it.
struct FaultFile
{
    sqlite3_file Base;
    sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

sqlite3_file* RealOf(sqlite3_file* file)
{
    return reinterpret_cast<FaultFile*>(file)->Real();
}

int Close(sqlite3_file* file)
{
    return RealOf(file)->pMethods->xClose(RealOf(file));
}
int Read(sqlite3_file* file, void* data, int size, sqlite3_int64 offset)
{
    return RealOf(file)->pMethods->xRead(RealOf(file), data, size, offset);
}
int Write(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset)
{
    const int code = Count(FaultVfs::Operation::Write);
    if (code != SQLITE_OK) {
        // Half of it arrives, as on a disk that fills up or a line that breaks.
        RealOf(file)->pMethods->xWrite(RealOf(file), data, size / 2, offset);
        return code;
    }
    return RealOf(file)->pMethods->xWrite(RealOf(file), data, size, offset);
}
int Truncate(sqlite3_file* file, sqlite3_int64 size)
{
    const int code = Count(FaultVfs::Operation::Truncate);
    return code != SQLITE_OK ? code : RealOf(file)->pMethods->xTruncate(RealOf(file), size);
}
int Sync(sqlite3_file* file, int flags)
{
    const int code = Count(FaultVfs::Operation::Sync);
    if (code != SQLITE_OK || state.SkipsSyncs)
        return code;
    return RealOf(file)->pMethods->xSync(RealOf(file), flags);
}
int FileSize(sqlite3_file* file, sqlite3_int64* size)
{
    return RealOf(file)->pMethods->xFileSize(RealOf(file), size);
}
int Lock(sqlite3_file* file, int level)
{
    return RealOf(file)->pMethods->xLock(RealOf(file), level);
}
int Unlock(sqlite3_file* file, int level)
{
    return RealOf(file)->pMethods->xUnlock(RealOf(file), level);
}
int CheckReservedLock(sqlite3_file* file, int* result)
{
    return RealOf(file)->pMethods->xCheckReservedLock(RealOf(file), result);
}
int FileControl(sqlite3_file* file, int operation, void* argument)
{
    return RealOf(file)->pMethods->xFileControl(RealOf(file), operation, argument);
}
int SectorSize(sqlite3_file* file)
{
    return RealOf(file)->pMethods->xSectorSize(RealOf(file));
}
int DeviceCharacteristics(sqlite3_file* file)
{
    return RealOf(file)->pMethods->xDeviceCharacteristics(RealOf(file));
}

const sqlite3_io_methods Methods = {1,
                                    Close,
                                    Read,
                                    Write,
                                    Truncate,
                                    Sync,
                                    FileSize,
                                    Lock,
                                    Unlock,
                                    CheckReservedLock,
                                    FileControl,
                                    SectorSize,
                                    DeviceCharacteristics,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr};

int Open(sqlite3_vfs*, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags)
{
    auto* fault = reinterpret_cast<FaultFile*>(file);
    std::memset(static_cast<void*>(fault), 0, sizeof(FaultFile));
    const int code = state.Real->xOpen(state.Real, name, fault->Real(), flags, outFlags);
    if (fault->Real()->pMethods != nullptr)
        fault->Base.pMethods = &Methods;
    return code;
}
int Delete(sqlite3_vfs*, const char* name, int syncFolder)
{
    const int code = Count(FaultVfs::Operation::Delete);
    return code != SQLITE_OK ? code : state.Real->xDelete(state.Real, name, syncFolder);
}

sqlite3_vfs vfs;

} // namespace

FaultVfs::FaultVfs()
{
    state = {};
    state.Real = sqlite3_vfs_find(nullptr);
    vfs = *state.Real;
    vfs.iVersion = 1;
    vfs.szOsFile = static_cast<int>(sizeof(FaultFile)) + state.Real->szOsFile;
    vfs.zName = "fault";
    vfs.pNext = nullptr;
    vfs.xOpen = Open;
    vfs.xDelete = Delete;
    sqlite3_vfs_register(&vfs, 1);
}

FaultVfs::~FaultVfs()
{
    sqlite3_vfs_unregister(&vfs);
    sqlite3_vfs_register(state.Real, 1);
}

void FaultVfs::FailAt(Operation operation, int number, int code, bool isLasting)
{
    Heal();
    state.Operation = operation;
    state.FailNumber = number;
    state.Code = code;
    state.IsLasting = isLasting;
}

void FaultVfs::Heal()
{
    state.FailNumber = 0;
    state.HasFailed = false;
    state.Calls = {};
}

void FaultVfs::SkipSyncs()
{
    state.SkipsSyncs = true;
}

bool FaultVfs::HasFailed() const
{
    return state.HasFailed;
}

int FaultVfs::Calls(Operation operation) const
{
    return state.Calls[static_cast<std::size_t>(operation)];
}
