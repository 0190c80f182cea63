// SPDX-License-Identifier: Apache-2.0
#include "sending/Outbox.h"

#include "common/ClockHelper.h"
#include "common/Enumerations.h"
#include "platform/records/Recordset.h"

namespace
{
/// In days: clocks differ by less.
constexpr double ClocksDiffer = 1;

/// Whether the ledger speaks of what was put into the Outbox at that time: what was put there since is another message.
bool IsOfRow(const SendingRecord& record, Date sent, const Outbox::IdentityOf& identityOf)
{
    if (record.When >= sent)
        return true;
    return identityOf && record.When.DayNumber() > sent.DayNumber() - ClocksDiffer &&
           identityOf(record.Message) == record.Identity;
}
} // namespace

QStringList Outbox::Columns()
{
    return {QStringLiteral("Reference"), QStringLiteral("Flags"), QStringLiteral("Sent"), QStringLiteral("SendAfter")};
}

QString Outbox::Condition()
{
    return QStringLiteral("[Category]=%1").arg(static_cast<int>(tmcOutbox));
}

Outbox::Outbox(dao::Recordset& rows, const QHash<qint32, SendingRecord>& records, const IdentityOf& identityOf)
{
    const Date now = ClockHelper::NowUTC();
    for (; !rows.AtEOF(); rows.MoveNext()) {
        const int flags = rows.Collect(QStringLiteral("Flags")).toInt();
        if ((flags & mfSendPending) == 0)
            continue;
        const qint32 message = rows.Collect(QStringLiteral("Reference")).toInt();
        const Row row{Date(rows.Collect(QStringLiteral("Sent")).toDouble()),
                      Date(rows.Collect(QStringLiteral("SendAfter")).toDouble()), (flags & mfAutomatic) != 0};
        Rows_.insert(message, row);
        const auto record = records.constFind(message);
        if (record == records.cend() || !IsOfRow(*record, row.Sent, identityOf))
            continue;
        SendingRecord& kept = *Records_.insert(message, *record);
        // Time makes a claim unclear, nobody writes that.
        if (kept.IsUnclear(now))
            kept.Stage = SendingStage::Unclear;
    }
}

OutboxCount Outbox::Count() const
{
    constexpr double SecondsADay = 86400;
    const Date now = ClockHelper::NowUTC();
    OutboxCount count;
    count.All = static_cast<int>(Rows_.size());
    for (auto row = Rows_.cbegin(); row != Rows_.cend(); ++row) {
        const double since = qMax(row->Sent.DayNumber(), row->SendAfter.DayNumber());
        const auto record = Records_.constFind(row.key());
        // A program that takes files has its time to mark them.
        if (record != Records_.cend() && !record->IsHandedOut() &&
            (record->Stage == SendingStage::Refused || record->Stage == SendingStage::Unclear))
            ++count.Decisions;
        else if (since > 0 && (now.DayNumber() - since) * SecondsADay >= OutboxCount::UnsentSeconds)
            ++count.Late;
    }
    return count;
}

OutgoingState Outbox::StateOf(qint32 message) const
{
    const auto row = Rows_.constFind(message);
    if (row == Rows_.cend())
        return {};
    const auto record = Records_.constFind(message);
    const bool isKnown = record != Records_.cend();
    return ::StateOf({tmcOutbox, mfSendPending, ClockHelper::UTCToLocal(row->Sent),
                      ClockHelper::UTCToLocal(row->SendAfter), isKnown ? record->Identity : QString()},
                     isKnown ? std::optional(*record) : std::nullopt);
}

bool Outbox::IsSameAs(const Outbox& other, qint32 message) const
{
    const auto record = Records_.constFind(message);
    const auto otherRecord = other.Records_.constFind(message);
    const bool isKnown = record != Records_.cend();
    if (isKnown != (otherRecord != other.Records_.cend()) || Rows_.value(message) != other.Rows_.value(message) ||
        Rows_.contains(message) != other.Rows_.contains(message))
        return false;
    return !isKnown || (record->Stage == otherRecord->Stage && record->When == otherRecord->When &&
                        record->Until == otherRecord->Until && record->Words == otherRecord->Words);
}

QList<qint32> Outbox::ChangesSince(const Outbox& before) const
{
    QList<qint32> changes;
    for (auto row = Rows_.cbegin(); row != Rows_.cend(); ++row) {
        if (!IsSameAs(before, row.key()))
            changes.append(row.key());
    }
    for (auto row = before.Rows_.cbegin(); row != before.Rows_.cend(); ++row) {
        if (!Rows_.contains(row.key()))
            changes.append(row.key());
    }
    return changes;
}
