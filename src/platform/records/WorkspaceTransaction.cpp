#include "platform/records/WorkspaceTransaction.h"

#include <exception>

namespace dao
{

namespace
{

using Databases = std::vector<std::weak_ptr<DatabaseSession>>;

constexpr std::size_t LargestDepth = 5;

struct State
{
    Databases Open;
    std::vector<Databases> Transactions; ///< The members of each, the outermost first.
};

State& Workspace()
{
    static State state;
    return state;
}

std::vector<SessionPtr> OpenOnesOf(const Databases& databases)
{
    std::vector<SessionPtr> sessions;
    for (const auto& database : databases) {
        SessionPtr session = database.lock();
        if (session && session->Store)
            sessions.push_back(std::move(session));
    }
    return sessions;
}

/// Does the same to all, whatever comes of each, and raises the first failure.
void ForAll(const std::vector<SessionPtr>& sessions, void (engine::Store::*operation)())
{
    std::exception_ptr failure;
    for (const SessionPtr& session : sessions) {
        try {
            (*session->Store.*operation)();
        } catch (...) {
            if (!failure)
                failure = std::current_exception();
        }
    }
    if (failure)
        std::rethrow_exception(failure);
}

/// Ends the innermost transaction.
std::vector<SessionPtr> Take()
{
    auto& transactions = Workspace().Transactions;
    if (transactions.empty())
        throw Error(errNotSupported, QStringLiteral("CommitTrans or Rollback without BeginTrans."));
    std::vector<SessionPtr> sessions = OpenOnesOf(transactions.back());
    transactions.pop_back();
    return sessions;
}

} // namespace

void WorkspaceTransaction::Join(const SessionPtr& session)
{
    auto& databases = Workspace().Open;
    std::erase_if(databases, [](const std::weak_ptr<DatabaseSession>& other) { return other.expired(); });
    databases.push_back(session);
}

void WorkspaceTransaction::Begin()
{
    State& state = Workspace();
    if (state.Transactions.size() == LargestDepth)
        throw Error(errNotSupported, QStringLiteral("Too many transactions are open in each other."));
    std::vector<SessionPtr> begun;
    try {
        for (const SessionPtr& session : OpenOnesOf(state.Open)) {
            session->Store->BeginTrans();
            begun.push_back(session);
        }
    } catch (...) {
        ForAll(begun, &engine::Store::Rollback);
        throw;
    }
    state.Transactions.emplace_back(begun.begin(), begun.end());
}

void WorkspaceTransaction::Commit()
{
    ForAll(Take(), &engine::Store::CommitTrans);
}

void WorkspaceTransaction::Rollback()
{
    ForAll(Take(), &engine::Store::Rollback);
}

} // namespace dao
