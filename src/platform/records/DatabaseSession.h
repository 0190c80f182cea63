// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Error.h"
#include "platform/records/OpenFiles.h"
#include "platform/records/StoreReuse.h"
#include "platform/records/engines/Engine.h"

#include <memory>

namespace dao
{

/// What a database shares with its tables, recordsets and queries, which may outlive it.
struct DatabaseSession
{
    /// Gone once the database is closed.
    std::unique_ptr<engine::Store> Store;
    FileLease Lease;
    QString FileName; ///< Absolute; empty for what is no file.

    /// Leaves the store to the next opening of the file, where one is expected.
    void LendStore()
    {
        if (!FileName.isEmpty())
            StoreReuse::Keep(FileName, Store);
    }
    void Close()
    {
        LendStore();
        Store.reset();
        Lease.Release();
    }

    engine::Store& Required() const
    {
        if (!Store)
            throw Error(errObjectInvalid, QStringLiteral("Object invalid or no longer set: the database is closed."));
        return *Store;
    }
};

using SessionPtr = std::shared_ptr<DatabaseSession>;

} // namespace dao
