// SPDX-License-Identifier: Apache-2.0
#include "common/ProcessMemory.h"

#ifdef Q_OS_WIN
#include <qt_windows.h>

#include <psapi.h>

std::optional<ProcessMemory> ProcessMemory::Current()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    if (K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) == 0)
        return std::nullopt;
    return ProcessMemory{counters.WorkingSetSize, counters.PagefileUsage};
}
#else
#include <QFile>
#include <QList>

#include <unistd.h>

std::optional<ProcessMemory> ProcessMemory::Current()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    // Pages: whole, resident, shared, text, (unused), data and stack, (unused).
    const QList<QByteArray> pages = file.readAll().split(' ');
    if (pages.size() < 6)
        return std::nullopt;
    const auto pageSize = static_cast<quint64>(sysconf(_SC_PAGESIZE));
    return ProcessMemory{pages.at(1).toULongLong() * pageSize, pages.at(5).toULongLong() * pageSize};
}
#endif
