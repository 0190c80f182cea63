// SPDX-License-Identifier: Apache-2.0
#include "commands/PendingRows.h"

#include "common/ClockHelper.h"
#include "database/cTolvaDatabase.h"
#include "platform/records/Recordset.h"

namespace
{
const QString SendAfterColumn = QStringLiteral("SendAfter");
}

QList<MessageRow> PendingRows(const cTolvaDatabase& station, const QString& type)
{
    const auto rows = station.OpenMessageRows(MessageRowColumns() << SendAfterColumn,
                                              QStringLiteral("[Category]=%1").arg(static_cast<int>(tmcOutbox)),
                                              QStringLiteral("[Reference]"));
    const double now = ClockHelper::NowUTC().DayNumber();
    QList<MessageRow> pending;
    for (; !rows->AtEOF(); rows->MoveNext()) {
        const MessageRow row = ReadMessageRow(*rows);
        const Date sendAfter(rows->Collect(SendAfterColumn).toDouble());
        const bool isDue = sendAfter.IsNone() || sendAfter.DayNumber() <= now;
        if ((row.Flags & mfSendPending) != 0 && isDue && (type.isEmpty() || type == TypeName(row.IsSMS)))
            pending.append(row);
    }
    return pending;
}
