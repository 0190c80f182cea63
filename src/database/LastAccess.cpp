// SPDX-License-Identifier: Apache-2.0
#include "database/LastAccess.h"

#include "common/ClockHelper.h"
#include "common/PendingError.h"
#include "database/StationContext.h"

namespace
{
const QString LastAccessed = QStringLiteral("LastAccessed");
const QString LastAccessedSoftware = QStringLiteral("LastAccessedSoftware");
} // namespace

void NoteLastAccess(StationContext& station)
{
    PendingError ignored;
    ignored.Try([&] {
        const auto recordset = station.OpenedDatabase().OpenRecordset(QStringLiteral("Description"), dao::dbOpenTable);
        const QString now = ClockHelper::CurrentTime().GeneralDate();
        const QString software = QStringLiteral("Tolva - %1.%2.%3")
                                     .arg(TOLVA_VERSION_MAJOR)
                                     .arg(TOLVA_VERSION_MINOR)
                                     .arg(TOLVA_VERSION_REVISION);
        if (recordset->Collect(LastAccessed).toString() == now &&
            recordset->Collect(LastAccessedSoftware).toString() == software)
            return; // by the same version within the same second: nothing would change
        recordset->Edit();
        recordset->SetCollect(LastAccessed, now);
        recordset->SetCollect(LastAccessedSoftware, software);
        recordset->Update();
    });
}
