// SPDX-License-Identifier: Apache-2.0
#include "PrizeTransaction.h"

#include "common/UserInterface.h"
#include "station/DeskStation.h"

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
    dao::Transaction transaction = database.BeginChange();
    if (!work())
        return false;
    transaction.Commit();
    return true;
}
