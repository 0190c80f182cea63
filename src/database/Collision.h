// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Error.h"

/// Whether another computer stored, changed or deleted the same row at the same moment.
inline bool IsCollision(int errorNumber)
{
    return errorNumber == dao::errChangedByAnother || errorNumber == dao::errRecordDeleted ||
           errorNumber == dao::errDuplicateValue;
}

/// Runs a piece of work that puts right what every computer puts right, and once more when another one comes in
/// between: the work reads anew what it changes. The error that stays is thrown.
template <typename Work>
void UntilNobodyInterferes(Work&& work)
{
    constexpr int mostTries = 20;
    for (int tries = 1;; ++tries) {
        try {
            work();
            return;
        } catch (const dao::Error& error) {
            if (!IsCollision(error.Number()) || tries == mostTries)
                throw;
        }
    }
}
