// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

#include <csignal>
#include <sys/resource.h>

/// No file of this process gets larger than that while it lives; what would is refused, as on a full disk.
class FilesMayNotGrow
{
public:
    explicit FilesMayNotGrow(qint64 octets) : Handler_(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &Before_);
        rlimit limit = Before_;
        limit.rlim_cur = static_cast<rlim_t>(octets);
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FilesMayNotGrow()
    {
        setrlimit(RLIMIT_FSIZE, &Before_);
        std::signal(SIGXFSZ, Handler_);
    }
    FilesMayNotGrow(const FilesMayNotGrow&) = delete;
    FilesMayNotGrow& operator=(const FilesMayNotGrow&) = delete;

private:
    rlimit Before_{};
    void (*Handler_)(int);
};
