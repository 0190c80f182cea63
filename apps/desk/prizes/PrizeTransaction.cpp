#include "PrizeTransaction.h"

#include "DeskStation.h"
#include "common/UserInterface.h"
#include "platform/records/DBEngine.h"

#include <QScopeGuard>

bool PrizeTransaction::Run(DeskStation& station, const std::function<bool()>& work)
{
    cTolvaDatabase& database = station.Database();
    const bool raise = database.RaiseEvents();
    const bool silent = database.SilentMode();
    database.SetRaiseEvents(false);
    database.SetSilentMode(true);
    const auto restore = qScopeGuard([&] {
        database.SetRaiseEvents(raise);
        database.SetSilentMode(silent);
    });
    const BusyPointer busy;
    dao::DBEngine::BeginTrans();
    auto rollback = qScopeGuard([] { dao::DBEngine::Rollback(); });
    // A file that cannot be read now says so here; once it has been read, nobody changes it until the end.
    database.OpenMessageRows({QStringLiteral("Reference")}, QStringLiteral("[Reference]=0"));
    const bool isDone = work();
    if (!isDone)
        return false;
    rollback.dismiss();
    dao::DBEngine::CommitTrans(dao::dbForceOSFlush);
    return true;
}
