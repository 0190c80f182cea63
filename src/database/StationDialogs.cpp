// SPDX-License-Identifier: Apache-2.0
#include "database/StationDialogs.h"

#include "common/UserInterface.h"

StationDialogs& StationDialogs::Of(UserInterface& userInterface)
{
    static StationDialogs none;
    auto* const dialogs = dynamic_cast<StationDialogs*>(&userInterface);
    return dialogs ? *dialogs : none;
}

StationDialogs& StationDialogs::InForce()
{
    return Of(UserInterface::Current());
}

bool StationDialogs::DatabaseSettings(cTolvaDatabase&)
{
    return false;
}

QString StationDialogs::GetHotlist(qint32, dao::Recordset&, bool, QObject*)
{
    return {};
}

void StationDialogs::SetBackupNotice(bool) {}
