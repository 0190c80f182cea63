// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>

#include <sqlite3.h>

/// The file system as SQLite sees it, where the n-th writing call fails. The default one while the object lives, so it
/// has to be made before the database is opened and outlive it. One at a time.
class FaultVfs
{
public:
    enum class Operation
    {
        Write,
        Sync,
        Truncate,
        Delete
    };

    FaultVfs();
    ~FaultVfs();
    FaultVfs(const FaultVfs&) = delete;
    FaultVfs& operator=(const FaultVfs&) = delete;

    /// From now on the call of that kind and number (from 1) fails with SQLite's result code, and with isLasting every
    /// later one too.
    void FailAt(Operation operation, int number, int code, bool isLasting = false);
    void Heal();
    /// From now on nothing waits for the disk: for tests of many small changes that lose no power.
    void SkipSyncs();
    /// Whether the failure came since FailAt.
    bool HasFailed() const;
    /// Calls of that kind since FailAt or Heal.
    int Calls(Operation operation) const;
};
