// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messageslist/uMessagesList.h"
#include "platform/widgets/EventHandler.h"

/// Runs an event handler's work.
template <typename Work>
void uMessagesList::Handle(const char* handler, Work&& work)
{
    RunEventHandler(QStringLiteral("uMessagesList.") + QLatin1String(handler), std::forward<Work>(work));
}
