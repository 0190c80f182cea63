// SPDX-License-Identifier: Apache-2.0
#include "sending/OutboxCount.h"

#include "common/ClockHelper.h"
#include "common/Enumerations.h"
#include "platform/records/Recordset.h"

QStringList OutboxCount::Columns()
{
    return {QStringLiteral("Reference"), QStringLiteral("Flags"), QStringLiteral("Sent"), QStringLiteral("SendAfter")};
}

QString OutboxCount::Condition()
{
    return QStringLiteral("[Category]=%1").arg(static_cast<int>(tmcOutbox));
}

OutboxCount CountOutbox(dao::Recordset& rows, const QHash<qint32, SendingRecord>& records)
{
    constexpr double SecondsADay = 86400;
    const Date now = ClockHelper::NowUTC();
    OutboxCount count;
    for (; !rows.AtEOF(); rows.MoveNext()) {
        if ((rows.Collect(QStringLiteral("Flags")).toInt() & mfSendPending) == 0)
            continue;
        ++count.All;
        const double sent = rows.Collect(QStringLiteral("Sent")).toDouble();
        const double since = qMax(sent, rows.Collect(QStringLiteral("SendAfter")).toDouble());
        const auto record = records.constFind(rows.Collect(QStringLiteral("Reference")).toInt());
        // What was put into the Outbox since is another message.
        const bool isKnown = record != records.cend() && record->When.DayNumber() >= sent;
        // A program that takes files has its time to mark them.
        if (isKnown && !record->IsHandedOut() && (record->Stage == SendingStage::Refused || record->IsUnclear(now)))
            ++count.Decisions;
        else if (since > 0 && (now.DayNumber() - since) * SecondsADay >= OutboxCount::UnsentSeconds)
            ++count.Late;
    }
    return count;
}
