#include "ChangeAnnouncement.h"

#include "common/ClockHelper.h"
#include "database/cTolvaDatabase.h"

void AnnounceDeletions(cTolvaDatabase& database)
{
    QObject::connect(&database, &cTolvaDatabase::MessageDeleted, &database, [&database] { AnnounceChange(database); });
}

void AnnounceChange(cTolvaDatabase& database)
{
    database.SetLastMessageChanged(ClockHelper::NowUTC());
}
