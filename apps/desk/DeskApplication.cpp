// SPDX-License-Identifier: Apache-2.0
#include "DeskApplication.h"

#include "Failure.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "platform/records/Error.h"

bool DeskApplication::notify(QObject* receiver, QEvent* event)
{
    // It may be gone when there is something to tell.
    const char* const name = receiver->metaObject()->className();
    try {
        return QApplication::notify(receiver, event);
    } catch (...) {
        Tell(QLatin1String(name));
        return true;
    }
}

/// Within the handler of the exception.
void DeskApplication::Tell(const QString& receiver)
{
    const Failure failure = UnexpectedFailure();
    WriteDebugLog(QStringLiteral("%1: %2").arg(receiver, failure.Words()));
    if (Words_.contains(failure.Words()))
        return;
    Words_.append(failure.Words());
    if (Words_.size() > 1)
        return; // a box is up, and shows it next
    while (!Words_.isEmpty()) {
        UserInterface::Current().RunTimeError(
            dao::Error(failure.Code(), Words_.first(), QStringLiteral("tolva-desk.") + receiver));
        Words_.removeFirst();
    }
}
