// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>

#ifndef _WIN32
#include <ctime>
#endif

/// The processor time that this thread has had, to bound work by: the wall's would take it from a busy computer. The
/// wall's where there is no other.
inline std::chrono::nanoseconds ProcessorTime()
{
#ifndef _WIN32
    timespec time = {};
    if (::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time) == 0)
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
#endif
    return std::chrono::steady_clock::now().time_since_epoch();
}
