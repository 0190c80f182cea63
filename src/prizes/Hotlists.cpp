// SPDX-License-Identifier: Apache-2.0
#include "prizes/Hotlists.h"

#include "database/DAO_DatabaseFunctions.h"
#include "database/StationContext.h"
#include "database/StationDialogs.h"

namespace
{
constexpr qint32 AvailableHours = 0; // type of the hotlists

std::unique_ptr<dao::Recordset> OpenSettings(dao::Database& database)
{
    auto recordset = database.OpenRecordset(QStringLiteral("Settings"));
    recordset->SetIndex(QStringLiteral("Main"));
    return recordset;
}
} // namespace

QString Hotlists::LoadAvailableHours(StationContext& station, QObject* parentForm)
{
    if (!station.Database)
        return {};
    const auto recordset = OpenSettings(*station.Database);
    const QString key = StationDialogs::InForce().GetHotlist(AvailableHours, *recordset, false, parentForm);
    if (key.isEmpty())
        return {};
    return DAO_DatabaseFunctions::ReadSettingValue(recordset.get(), key, QString()).toString();
}

bool Hotlists::SaveAvailableHours(StationContext& station, const QString& availableHours, QObject* parentForm)
{
    if (!station.Database)
        return false;
    const auto recordset = OpenSettings(*station.Database);
    const QString key = StationDialogs::InForce().GetHotlist(AvailableHours, *recordset, true, parentForm);
    if (key.isEmpty())
        return false;
    // A hotlist has no default: it keeps its row, and so its name, also without an hour.
    const QString noDefault = availableHours + u'-';
    return DAO_DatabaseFunctions::WriteSettingValue(recordset.get(), key, availableHours, noDefault,
                                                    station.IsSilent) == 0;
}
