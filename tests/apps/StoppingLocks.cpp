// SPDX-License-Identifier: Apache-2.0

// Loaded in front of the C library, this lets a process stop (as by SIGSTOP) while it holds no lock of the station:
// STOP_AT=n stops it in front of the n-th time that it is about to take the first lock of a read or a write of
// Tolva.mdb, or of any file whose name ends as STOP_IN says. SIGCONT lets it go on.

#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace
{
/// Where SQLite's readers take their first lock.
constexpr off_t PendingByte = 0x40000000;

bool IsStation(int file)
{
    char name[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t length = ::readlink(link.c_str(), name, sizeof name);
    const char* end = std::getenv("STOP_IN");
    return length > 0 && std::string(name, static_cast<size_t>(length)).ends_with(end ? end : "/Tolva.mdb");
}

void StopWhenDue(int file, int command, const struct flock* lock)
{
    static const long stopAt = std::getenv("STOP_AT") ? std::atol(std::getenv("STOP_AT")) : 0;
    static long locks = 0;
    const bool isFirstLock = command == F_SETLK && lock->l_type == F_RDLCK && lock->l_start == PendingByte;
    if (isFirstLock && stopAt > 0 && IsStation(file) && ++locks == stopAt)
        ::raise(SIGSTOP);
}

int Call(const char* name, int file, int command, void* argument)
{
    auto* real = reinterpret_cast<int (*)(int, int, ...)>(::dlsym(RTLD_NEXT, name));
    if (command == F_SETLK)
        StopWhenDue(file, command, static_cast<const struct flock*>(argument));
    return real(file, command, argument);
}
} // namespace

extern "C" {
int fcntl(int file, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    return Call("fcntl", file, command, argument);
}
int fcntl64(int file, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    return Call("fcntl64", file, command, argument);
}
}
