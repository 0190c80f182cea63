// SPDX-License-Identifier: Apache-2.0

// The hotlists of available hours: cTolvaDatabase stores them among the settings, under names that the user gives.

#include "common/UserInterface.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/cTolvaDatabase.h"

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

QString cTolvaDatabase::LoadAvailableHoursHotlist(QObject* parentForm)
{
    if (!Database_)
        return {};
    const auto recordset = OpenSettings(*Database_);
    const QString key = UserInterface::Current().GetHotlist(AvailableHours, *recordset, false, parentForm);
    if (key.isEmpty())
        return {};
    return DAO_DatabaseFunctions::ReadSettingValue(recordset.get(), key, QString()).toString();
}

bool cTolvaDatabase::SaveAvailableHoursHotlist(const QString& availableHours, QObject* parentForm)
{
    if (!Database_)
        return false;
    const auto recordset = OpenSettings(*Database_);
    const QString key = UserInterface::Current().GetHotlist(AvailableHours, *recordset, true, parentForm);
    if (key.isEmpty())
        return false;
    // A hotlist has no default: it keeps its row, and so its name, also without an hour.
    const QString noDefault = availableHours + u'-';
    return DAO_DatabaseFunctions::WriteSettingValue(recordset.get(), key, availableHours, noDefault, SilentMode_) == 0;
}
