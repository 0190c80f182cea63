// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/JetStore.h"

/// What each operation of a store begins and ends with; for its sources alone.
namespace dao::jet
{

template <typename Operation>
auto JetStore::Reading(const Operation& operation) const
{
    try {
        return operation();
    } catch (const Fault& fault) {
        throw Error(errFileDamaged,
                    QStringLiteral("The database '%1' is damaged: %2.").arg(File_.Name(), fault.Words()));
    }
}

template <typename Operation>
auto JetStore::Run(const Operation& operation)
{
    return Reading([&] {
        const ReadingScope scope(Session_);
        if (scope.SawChanges())
            Forget();
        LoadSchema();
        return operation();
    });
}

template <typename Operation>
auto JetStore::ChangeStep(const Operation& operation)
{
    File_.BeginStep();
    try {
        if constexpr (std::is_void_v<decltype(operation())>) {
            Reading(operation);
            File_.KeepStep();
        } else {
            auto result = Reading(operation);
            File_.KeepStep();
            return result;
        }
    } catch (...) {
        TakeBackStep();
        throw;
    }
}

template <typename Operation>
auto JetStore::Change(const Operation& operation)
{
    if (IsReadOnly_)
        throw Error(errCannotOpen, QStringLiteral("Cannot change '%1': it was opened to be read.").arg(File_.Name()));
    const bool isOwn = Transaction_ == Transaction::None;
    if (Transaction_ != Transaction::Started)
        StartWriting();
    if (!isOwn)
        return ChangeStep(operation);
    try {
        if constexpr (std::is_void_v<decltype(operation())>) {
            ChangeStep(operation);
            CommitWriting();
        } else {
            auto result = ChangeStep(operation);
            CommitWriting();
            return result;
        }
    } catch (...) {
        if (Session_.IsWriting())
            Session_.Abandon();
        throw;
    }
}

} // namespace dao::jet
