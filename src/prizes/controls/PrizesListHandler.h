// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/widgets/EventHandler.h"
#include "prizes/controls/uPrizesList.h"

/// Runs an event handler's work.
template <typename Work>
void uPrizesList::Handle(const char* handler, Work&& work)
{
    RunEventHandler(QStringLiteral("uPrizesList.") + QLatin1String(handler), std::forward<Work>(work));
}
