#include "ChangeAnnouncement.h"

#include "common/ClockHelper.h"
#include "database/cTolvaDatabase.h"

void AnnounceDeletions(cTolvaDatabase& database)
{
    QObject::connect(&database, &cTolvaDatabase::MessageDeleted, &database, [&database] { AnnounceChange(database); });
    QObject::connect(&database, &cTolvaDatabase::PrizeDeleted, &database,
                     [&database] { database.SetLastPrizeChanged(ClockHelper::NowUTC()); });
}

void AnnounceChange(cTolvaDatabase& database)
{
    database.SetLastMessageChanged(ClockHelper::NowUTC());
}
