// SPDX-License-Identifier: Apache-2.0
#include "platform/records/WorkspaceTransaction.h"

#include "platform/records/Transaction.h"

#include <algorithm>
#include <exception>
#include <iterator>

namespace dao
{

namespace
{

using Databases = std::vector<std::weak_ptr<DatabaseSession>>;
using FollowUps = std::vector<std::function<void()>>;

constexpr std::size_t LargestDepth = 5;

struct OpenTransaction
{
    Databases Members;
    FollowUps Later; ///< To be done behind the commit.
};

struct State
{
    Databases Open;
    std::vector<OpenTransaction> Transactions; ///< The outermost first.
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
OpenTransaction Take()
{
    auto& transactions = Workspace().Transactions;
    if (transactions.empty())
        throw Error(errNotSupported, QStringLiteral("CommitTrans or Rollback without BeginTrans."));
    OpenTransaction transaction = std::move(transactions.back());
    transactions.pop_back();
    return transaction;
}

/// In a transaction of their own, so that many of them cost one commit. The change that they follow is stored, whatever
/// comes of them: their failure is not its failure.
void Run(const FollowUps& followUps)
{
    if (followUps.empty())
        return;
    try {
        Transaction together;
        for (const auto& followUp : followUps)
            followUp();
        together.Commit();
    } catch (const std::exception&) {
        // Nobody waits for them: who asked for them is told nothing by contract.
    }
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
    state.Transactions.push_back({Databases(begun.begin(), begun.end()), {}});
}

void WorkspaceTransaction::Commit()
{
    OpenTransaction ended = Take();
    ForAll(OpenOnesOf(ended.Members), &engine::Store::CommitTrans);
    auto& outer = Workspace().Transactions;
    if (outer.empty())
        Run(ended.Later);
    else
        std::move(ended.Later.begin(), ended.Later.end(), std::back_inserter(outer.back().Later));
}

void WorkspaceTransaction::Rollback()
{
    ForAll(OpenOnesOf(Take().Members), &engine::Store::Rollback);
}

void WorkspaceTransaction::AfterCommit(std::function<void()> work)
{
    auto& transactions = Workspace().Transactions;
    if (transactions.empty())
        work();
    else
        transactions.back().Later.push_back(std::move(work));
}

} // namespace dao
