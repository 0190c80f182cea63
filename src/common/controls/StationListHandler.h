// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/controls/StationList.h"
#include "platform/widgets/EventHandler.h"

/// Runs an event handler's work.
template <typename Work>
void StationList::Handle(QAnyStringView handler, Work&& work)
{
    RunEventHandler(Source_ + QLatin1Char('.') + handler.toString(), std::forward<Work>(work));
}

template <typename Work>
void StationList::HandleReading(QAnyStringView handler, Work&& work)
{
    Handle(handler, [&] {
        const QPointer<StationList> self(this);
        try {
            std::forward<Work>(work)();
        } catch (const dao::Error& error) {
            bool isTold = false;
            if (self)
                Q_EMIT ReadingFailed(error.Number(), isTold);
            if (!isTold)
                throw;
        }
    });
}
