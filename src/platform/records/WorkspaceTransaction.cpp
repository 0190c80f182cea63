#include "platform/records/WorkspaceTransaction.h"

#include <exception>

namespace dao
{

namespace
{

struct State
{
    std::vector<std::weak_ptr<DatabaseSession>> Databases;
    std::vector<std::weak_ptr<DatabaseSession>> Members; ///< Of the open transaction.
    bool IsOpen = false;
};

State& Workspace()
{
    static State state;
    return state;
}

} // namespace

void WorkspaceTransaction::Join(const SessionPtr& session)
{
    auto& databases = Workspace().Databases;
    std::erase_if(databases, [](const std::weak_ptr<DatabaseSession>& other) { return other.expired(); });
    databases.push_back(session);
}

void WorkspaceTransaction::Begin()
{
    State& state = Workspace();
    if (state.IsOpen)
        throw Error(errNotSupported, QStringLiteral("A transaction is open already."));
    for (const auto& database : state.Databases) {
        const SessionPtr session = database.lock();
        if (!session || !session->Store)
            continue;
        session->Store->BeginTrans();
        state.Members.push_back(session);
    }
    state.IsOpen = true;
}

std::vector<SessionPtr> WorkspaceTransaction::Take()
{
    State& state = Workspace();
    if (!state.IsOpen)
        throw Error(errNotSupported, QStringLiteral("CommitTrans or Rollback without BeginTrans."));
    state.IsOpen = false;
    std::vector<SessionPtr> sessions;
    for (const auto& member : std::exchange(state.Members, {})) {
        const SessionPtr session = member.lock();
        if (session && session->Store)
            sessions.push_back(session);
    }
    return sessions;
}

void WorkspaceTransaction::Commit()
{
    std::exception_ptr failure;
    for (const SessionPtr& session : Take()) {
        try {
            session->Store->CommitTrans();
        } catch (...) {
            if (!failure)
                failure = std::current_exception();
        }
    }
    if (failure)
        std::rethrow_exception(failure);
}

void WorkspaceTransaction::Rollback()
{
    std::exception_ptr failure;
    for (const SessionPtr& session : Take()) {
        try {
            session->Store->Rollback();
        } catch (...) {
            if (!failure)
                failure = std::current_exception();
        }
    }
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace dao
