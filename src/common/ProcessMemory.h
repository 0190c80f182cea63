// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

#include <optional>

/// How much memory this process takes, in bytes.
struct ProcessMemory
{
    quint64 WorkingSet = 0; ///< What lies in physical memory.
    quint64 PageFile = 0; ///< What the process has claimed for itself and the system must be able to page out: on Linux
                          ///< its data and stack, whether they are in memory or not.

    /// Nothing where the system does not tell.
    static std::optional<ProcessMemory> Current();
};
