// SPDX-License-Identifier: Apache-2.0

// Loaded in front of the C library, this lets the n-th call that changes a file fail, or end the process there:
// FAIL_AT=n the n-th call answers with "no space left"; FAIL_FROM=n that one and all later ones; KILL_AT=n the process
// is killed in front of it. FAIL_LOG names a file that gets the number of such calls when the process ends, SYNC_LOG
// one that gets the number of syncs among them. With FAIL_NAMES=text only calls count that are about a file with that
// text in its path, and closes of files that were opened for writing count as well. MISSING_LIBRARY=text lets no
// library be loaded later on that has that text in its name. CLOCK_AHEAD=n lets the computer's clock be that many
// seconds ahead.

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/time.h>
#include <sys/types.h>
#include <unistd.h>

namespace
{
long NumberOf(const char* name)
{
    const char* text = std::getenv(name);
    return text ? std::atol(text) : 0;
}

struct Plan
{
    long FailAt = NumberOf("FAIL_AT");
    long FailFrom = NumberOf("FAIL_FROM");
    long KillAt = NumberOf("KILL_AT");
    long Calls = 0;
    long Syncs = 0;

    ~Plan()
    {
        Write("FAIL_LOG", Calls);
        Write("SYNC_LOG", Syncs);
    }
    static void Write(const char* variable, long number)
    {
        const char* name = std::getenv(variable);
        std::FILE* log = name ? std::fopen(name, "w") : nullptr;
        if (log) {
            std::fprintf(log, "%ld\n", number);
            std::fclose(log);
        }
    }
};

Plan plan;

/// Whether the path counts, where not all do.
bool IsMeant(const char* path)
{
    const char* names = std::getenv("FAIL_NAMES");
    return names == nullptr || std::strstr(path, names) != nullptr;
}

bool IsMeant(int file)
{
    if (std::getenv("FAIL_NAMES") == nullptr)
        return true;
    char link[64];
    std::snprintf(link, sizeof(link), "/proc/self/fd/%d", file);
    char path[4096] = {};
    return ::readlink(link, path, sizeof(path) - 1) > 0 && IsMeant(path);
}

/// what: a path or a file's number.
template <typename Subject>
bool IsDue(Subject what)
{
    if (!IsMeant(what))
        return false;
    const long call = ++plan.Calls;
    if (call == plan.KillAt)
        ::raise(SIGKILL);
    if (call != plan.FailAt && (plan.FailFrom == 0 || call < plan.FailFrom))
        return false;
    errno = ENOSPC;
    return true;
}

template <typename Function>
Function Real(const char* name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}
} // namespace

extern "C" {
int clock_gettime(clockid_t clock, struct timespec* now)
{
    static const auto real = Real<int (*)(clockid_t, struct timespec*)>("clock_gettime");
    static const long ahead = NumberOf("CLOCK_AHEAD");
    const int answer = real(clock, now);
    if (answer == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE))
        now->tv_sec += ahead;
    return answer;
}
int gettimeofday(struct timeval* now, void* zone)
{
    static const auto real = Real<int (*)(struct timeval*, void*)>("gettimeofday");
    static const long ahead = NumberOf("CLOCK_AHEAD");
    const int answer = real(now, zone);
    if (answer == 0)
        now->tv_sec += ahead;
    return answer;
}
time_t time(time_t* now)
{
    struct timespec exact = {};
    clock_gettime(CLOCK_REALTIME, &exact);
    if (now != nullptr)
        *now = exact.tv_sec;
    return exact.tv_sec;
}

void* dlopen(const char* library, int flags)
{
    static const auto real = Real<void* (*)(const char*, int)>("dlopen");
    const char* missing = std::getenv("MISSING_LIBRARY");
    return missing != nullptr && library != nullptr && std::strstr(library, missing) != nullptr ? nullptr
                                                                                                : real(library, flags);
}

ssize_t write(int file, const void* data, size_t size)
{
    static const auto real = Real<ssize_t (*)(int, const void*, size_t)>("write");
    return file > 2 && IsDue(file) ? -1 : real(file, data, size);
}
ssize_t pwrite(int file, const void* data, size_t size, off_t offset)
{
    static const auto real = Real<ssize_t (*)(int, const void*, size_t, off_t)>("pwrite");
    return IsDue(file) ? -1 : real(file, data, size, offset);
}
ssize_t pwrite64(int file, const void* data, size_t size, off64_t offset)
{
    static const auto real = Real<ssize_t (*)(int, const void*, size_t, off64_t)>("pwrite64");
    return IsDue(file) ? -1 : real(file, data, size, offset);
}
int fsync(int file)
{
    static const auto real = Real<int (*)(int)>("fsync");
    ++plan.Syncs;
    return IsDue(file) ? -1 : real(file);
}
int fdatasync(int file)
{
    static const auto real = Real<int (*)(int)>("fdatasync");
    ++plan.Syncs;
    return IsDue(file) ? -1 : real(file);
}
int ftruncate(int file, off_t size)
{
    static const auto real = Real<int (*)(int, off_t)>("ftruncate");
    return IsDue(file) ? -1 : real(file, size);
}
int ftruncate64(int file, off64_t size)
{
    static const auto real = Real<int (*)(int, off64_t)>("ftruncate64");
    return IsDue(file) ? -1 : real(file, size);
}
int rename(const char* from, const char* to)
{
    static const auto real = Real<int (*)(const char*, const char*)>("rename");
    return IsDue(to) ? -1 : real(from, to);
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned int flags)
{
    static const auto real = Real<int (*)(int, const char*, int, const char*, unsigned int)>("renameat2");
    return IsDue(to) ? -1 : real(fromFolder, from, toFolder, to, flags);
}
int link(const char* from, const char* to)
{
    static const auto real = Real<int (*)(const char*, const char*)>("link");
    return IsDue(to) ? -1 : real(from, to);
}
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags)
{
    static const auto real = Real<int (*)(int, const char*, int, const char*, int)>("linkat");
    return IsDue(to) ? -1 : real(fromFolder, from, toFolder, to, flags);
}
int unlink(const char* name)
{
    static const auto real = Real<int (*)(const char*)>("unlink");
    return IsDue(name) ? -1 : real(name);
}
int setxattr(const char* name, const char* attribute, const void* value, size_t size, int flags)
{
    static const auto real = Real<int (*)(const char*, const char*, const void*, size_t, int)>("setxattr");
    return IsDue(name) ? -1 : real(name, attribute, value, size, flags);
}
int mkdir(const char* name, mode_t mode)
{
    static const auto real = Real<int (*)(const char*, mode_t)>("mkdir");
    return IsDue(name) ? -1 : real(name, mode);
}
int close(int file)
{
    static const auto real = Real<int (*)(int)>("close");
    const int flags = std::getenv("FAIL_NAMES") == nullptr ? -1 : ::fcntl(file, F_GETFL);
    const bool isWritten = flags >= 0 && (flags & O_ACCMODE) != O_RDONLY;
    const bool fails = isWritten && IsDue(file);
    const int result = real(file); // the file is closed whatever it answers
    if (!fails)
        return result;
    errno = ENOSPC;
    return -1;
}
}
