#pragma once

#include "platform/records/DatabaseSession.h"

namespace dao
{

/// The databases of this process, and the one transaction that may span them. One thread.
class WorkspaceTransaction
{
public:
    /// Lists a database; it leaves by being closed.
    static void Join(const SessionPtr& session);

    /// 3251 when a transaction is open already.
    static void Begin();
    /// 3251 without Begin. Every database is committed; the first error is thrown after all have been. A commit
    /// over several files is not one: when one of them fails, those before it stay committed.
    static void Commit();
    static void Rollback();

private:
    static std::vector<SessionPtr> Take();
};

} // namespace dao
