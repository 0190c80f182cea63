// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/DatabaseSession.h"

#include <functional>

namespace dao
{

/// The databases of this process, and the transactions over all of them, one in the other. One thread.
class WorkspaceTransaction
{
public:
    /// Lists a database; it leaves by being closed.
    static void Join(const SessionPtr& session);

    /// Over the databases that are open now. 3251 when five are open already.
    static void Begin();
    /// Commit and Rollback end the innermost transaction; 3251 without Begin. Every database is committed; the first
    /// error is thrown after all have been. A commit over several files is not one: when one of them fails, those
    /// before it stay committed.
    static void Commit();
    static void Rollback();
    /// See Transaction::AfterCommit.
    static void AfterCommit(std::function<void()> work);
};

} // namespace dao
