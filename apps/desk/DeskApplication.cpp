#include "DeskApplication.h"

#include "Failure.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"

#include <QScopedValueRollback>

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
    // What fails while an error is shown cannot be shown.
    if (IsTelling_)
        return;
    const QScopedValueRollback<bool> telling(IsTelling_, true);
    UserInterface::Current().RunTimeError(
        dao::Error(failure.Code(), failure.Words(), QStringLiteral("tolva-desk.") + receiver));
}
