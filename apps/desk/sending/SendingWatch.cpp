// SPDX-License-Identifier: Apache-2.0
#include "SendingWatch.h"

#include "common/ClockHelper.h"
#include "messages/cMessage.h"
#include "platform/records/Recordset.h"
#include "sending/OutgoingIdentity.h"
#include "station/DeskStation.h"

namespace
{
/// Messages whose numbers differ by less are read together: more than a window shows, few enough for no pause.
constexpr qint32 BlockSize = 1024;

QString Note(const OutgoingState& state, bool isAutomatic)
{
    const QString words = InShort(state);
    return isAutomatic && !words.isEmpty() ? QStringLiteral("automatic, ") + words : words;
}
} // namespace

void SendingWatch::Refresh()
{
    if (!Station_.Database().IsOpen() || !Station_.Directory().IsOpen())
        return;
    const bool mayHaveChanged =
        Ledger_.MayHaveChanged(Station_.Directory().File().Name(), Station_.Database().Openings());
    if (Read() && mayHaveChanged)
        Ledger_.WasRead();
}

void SendingWatch::RefreshIfChanged()
{
    if (!Station_.Database().IsOpen() || !Station_.Directory().IsOpen())
        return;
    if (Ledger_.MayHaveChanged(Station_.Directory().File().Name(), Station_.Database().Openings()) && Read())
        Ledger_.WasRead();
}

bool SendingWatch::Read()
{
    const auto identityOf = [this](qint32 reference) {
        const cMessagePtr message = Station_.Database().ReadMessage(reference);
        return message ? OutgoingIdentity(*message) : QString();
    };
    try {
        // The ledger first: what leaves the Outbox in between is not taken for one that never went.
        const auto records = SendingLedger(Station_.Directory().File()).Open();
        const auto rows = Station_.Database().OpenMessageRows(Outbox::Columns(), Outbox::Condition(), QString());
        const Outbox before = std::exchange(Outbox_, Outbox(*rows, records, identityOf));
        const QList<qint32> changes = Outbox_.ChangesSince(before);
        if (!changes.isEmpty())
            Q_EMIT OutboxChanged(changes);
        return true;
    } catch (const dao::Error&) {
        return false;
    }
}

QString SendingWatch::OutboxNote(qint32 message) const
{
    return Note(Outbox_.StateOf(message), Outbox_.IsAutomatic(message));
}

QString SendingWatch::SentNote(qint32 message)
{
    if (message < 1 || !Station_.Database().IsOpen() || !Station_.Directory().IsOpen())
        return QString();
    const qint32 block = message / BlockSize;
    auto known = Blocks_.find(block);
    if (known == Blocks_.end()) {
        try {
            known = Blocks_.insert(block, ReadBlock(block * BlockSize, block * BlockSize + BlockSize - 1));
        } catch (const dao::Error&) {
            return QString();
        }
    }
    const SentOne sent = known->value(message);
    if (sent.When.IsNone())
        return QString();
    return Note({OutgoingState::Kind::Sent, ClockHelper::UTCToLocal(sent.When), QString()}, sent.IsAutomatic);
}

/// Without those that the ledger knows another message by: one that was put into the Outbox long after went some other
/// way.
QHash<qint32, SendingWatch::SentOne> SendingWatch::ReadBlock(qint32 first, qint32 last) const
{
    constexpr double ClocksDiffer = 1; // days
    const QHash<qint32, Date> dates = SendingLedger(Station_.Directory().File()).SentBetween(first, last);
    QHash<qint32, SentOne> sent;
    if (dates.isEmpty())
        return sent;
    for (auto date = dates.cbegin(); date != dates.cend(); ++date)
        sent.insert(date.key(), {*date, false});
    const auto rows = Station_.Database().OpenMessageRows(
        {QStringLiteral("Reference"), QStringLiteral("Sent"), QStringLiteral("Flags")},
        QStringLiteral("[Reference]>=%1 AND [Reference]<=%2").arg(first).arg(last), QString());
    for (; !rows->AtEOF(); rows->MoveNext()) {
        const auto when = sent.find(rows->Collect(QStringLiteral("Reference")).toInt());
        if (when == sent.end())
            continue;
        when->IsAutomatic = (rows->Collect(QStringLiteral("Flags")).toInt() & mfAutomatic) != 0;
        if (when->When.DayNumber() < rows->Collect(QStringLiteral("Sent")).toDouble() - ClocksDiffer)
            sent.erase(when);
    }
    return sent;
}
