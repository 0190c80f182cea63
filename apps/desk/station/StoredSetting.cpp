// SPDX-License-Identifier: Apache-2.0
#include "StoredSetting.h"

#include "database/DAO_DatabaseFunctions.h"
#include "database/cTolvaDatabase.h"
#include "platform/records/Error.h"
#include "platform/records/Recordset.h"

QString StoredSetting::Read(const cTolvaDatabase& station, const StationSettings::TextSetting& setting)
{
    const auto row = station.OpenSnapshot(
        QStringLiteral("SELECT [Value] FROM [Settings] WHERE [Item]='%1'").arg(QString(setting.Key)));
    return row->AtEOF() ? QString(setting.Default) : row->Collect(QStringLiteral("Value")).toString();
}

void StoredSetting::Write(const cTolvaDatabase& station, const StationSettings::TextSetting& setting,
                          const QString& value)
{
    const auto rows = station.File().OpenRecordset(QStringLiteral("Settings"), dao::dbOpenTable);
    constexpr bool isSilent = true;
    const int error =
        DAO_DatabaseFunctions::WriteSettingValue(rows.get(), setting.Key, value, setting.Default, isSilent);
    if (error != 0)
        throw dao::Error(error, QString());
}
