// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/PendingError.h"
#include "common/UserInterface.h"

#include <new>
#include <utility>

/// Runs the work of an event handler: no exception crosses the event loop, its error goes to the user interface with
/// source as what raised it, such as "uMessagesList.timerUpdateList".
template <typename Work>
void RunEventHandler(const QString& source, Work&& work)
{
    try {
        std::forward<Work>(work)();
    } catch (const dao::Error& error) {
        UserInterface::Current().RunTimeError(dao::Error(error.Number(), error.Description(), source));
    } catch (const std::bad_alloc&) {
        UserInterface::Current().RunTimeError(
            dao::Error(dao::errOutOfMemory, QStringLiteral("There is not enough memory."), source));
    } catch (const std::exception& error) {
        UserInterface::Current().RunTimeError(
            dao::Error(PendingError::InvalidCall, QString::fromUtf8(error.what()), source));
    }
}
