// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

class QObject;
class StationContext;

/// The hotlists of available hours: among a station's settings, under names that the user gives. dao::Error when the
/// settings cannot be opened.
namespace Hotlists
{

/// As cTolvaDatabase::LoadAvailableHoursHotlist.
QString LoadAvailableHours(StationContext& station, QObject* parentForm);
/// As cTolvaDatabase::SaveAvailableHoursHotlist.
bool SaveAvailableHours(StationContext& station, const QString& availableHours, QObject* parentForm);

} // namespace Hotlists
