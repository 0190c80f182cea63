// SPDX-License-Identifier: Apache-2.0
#include "MessageArrivals.h"

#include "database/cTolvaDatabase.h"
#include "platform/records/Recordset.h"

QMap<qint32, Date> MessageArrivals::Where(cTolvaDatabase& station, const QString& condition)
{
    QMap<qint32, Date> arrivals;
    const auto rows = station.OpenMessageRows({QStringLiteral("Reference"), QStringLiteral("Received")}, condition, {});
    for (; !rows->AtEOF(); rows->MoveNext()) {
        arrivals.insert(rows->Collect(QStringLiteral("Reference")).toInt(),
                        Date(rows->Collect(QStringLiteral("Received")).toDouble()));
    }
    return arrivals;
}
