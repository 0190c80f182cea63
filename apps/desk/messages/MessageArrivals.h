// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"

#include <QMap>

class cTolvaDatabase;

/// When messages arrived, as their rows hold it: by it a message is known again whose number another one may have now.
namespace MessageArrivals
{
/// Universal time of all messages that meet the condition, by their references. dao::Error of the station.
QMap<qint32, Date> Where(cTolvaDatabase& station, const QString& condition);
} // namespace MessageArrivals
