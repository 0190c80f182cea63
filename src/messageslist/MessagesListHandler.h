#pragma once

#include "common/UserInterface.h"
#include "messageslist/uMessagesList.h"

#include <exception>

/// Runs an event handler's work: no exception crosses the event loop, its error goes to the user interface.
template <typename Work>
void uMessagesList::Handle(const char* handler, Work&& work)
{
    const QString source = QStringLiteral("uMessagesList.") + QLatin1String(handler);
    try {
        std::forward<Work>(work)();
    } catch (const dao::Error& error) {
        UserInterface::Current().RunTimeError(dao::Error(error.Number(), error.Description(), source));
    } catch (const std::bad_alloc&) {
        UserInterface::Current().RunTimeError(
            dao::Error(dao::errOutOfMemory, QStringLiteral("There is not enough memory."), source));
    }
}
