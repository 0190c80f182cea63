// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/StationSettings.h"

#include <QString>

class cTolvaDatabase;

/// One setting of the station, for work that must not take a station that cannot be read for one that has the default.
/// Both raise dao::Error.
namespace StoredSetting
{
/// The default where none is stored.
QString Read(const cTolvaDatabase& station, const StationSettings::TextSetting& setting);
/// Durable with the transaction that it is called in. Nobody but the caller tells the user of a failure.
void Write(const cTolvaDatabase& station, const StationSettings::TextSetting& setting, const QString& value);
} // namespace StoredSetting
