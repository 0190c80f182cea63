// SPDX-License-Identifier: Apache-2.0
#include "platform/records/Transaction.h"

#include "platform/records/DBEngine.h"
#include "platform/records/WorkspaceTransaction.h"

#include <utility>

namespace dao
{

Transaction::Transaction()
{
    DBEngine::BeginTrans();
}

Transaction::Transaction(Database& database) : Transaction()
{
    // The delegated constructor is done: when this throws, the destructor takes back.
    database.LockForChange();
}

void Transaction::Commit()
{
    IsOpen_ = false;
    DBEngine::CommitTrans(dbForceOSFlush);
}

void Transaction::Rollback() noexcept
{
    if (!std::exchange(IsOpen_, false))
        return;
    try {
        DBEngine::Rollback();
    } catch (const std::exception&) {
        // The engine knows: whatever is done in an outer transaction raises from now on.
    }
}

void Transaction::AfterCommit(std::function<void()> work)
{
    WorkspaceTransaction::AfterCommit(std::move(work));
}

} // namespace dao
