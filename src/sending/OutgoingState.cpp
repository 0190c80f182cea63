// SPDX-License-Identifier: Apache-2.0
#include "sending/OutgoingState.h"

#include "common/ClockHelper.h"
#include "messages/cMessage.h"
#include "sending/OutgoingIdentity.h"

namespace
{
using Kind = OutgoingState::Kind;

OutgoingState Waiting(const OutgoingRow& row)
{
    if (!row.SendAfter.IsNone() && row.SendAfter > ClockHelper::CurrentTime())
        return {Kind::NotYet, row.SendAfter, QString()};
    return {Kind::Waiting, row.Sent, QString()};
}

OutgoingState OfWaiting(const OutgoingRow& row, const SendingRecord& record)
{
    const Date when = ClockHelper::UTCToLocal(record.When);
    switch (record.Stage) {
    case SendingStage::HandingOver:
        return {record.IsUnclear(ClockHelper::NowUTC()) ? Kind::Unclear : Kind::BeingSent, when, record.Words};
    case SendingStage::Accepted:
        return {Kind::Sent, when, QString()};
    case SendingStage::PutOff:
        return {Kind::NotYet, ClockHelper::UTCToLocal(record.Until), record.Words};
    case SendingStage::Refused:
        return {Kind::Refused, when, record.Words};
    case SendingStage::Unclear:
        return {Kind::Unclear, when, record.Words};
    case SendingStage::Sent:
        // Somebody has put it into the Outbox again, or an older state of the station is back.
        return {Kind::Unclear, when, QStringLiteral("it went out then, and waits in the Outbox again")};
    case SendingStage::Released:
        break;
    }
    return Waiting(row);
}

/// " on 22 Nov 2026 at 13:57", or nothing.
QString OnDate(const QString& before, Date when)
{
    return when.IsNone() ? QString()
                         : before + when.Format(QStringLiteral("d mmm yyyy")) + QStringLiteral(" at ") +
                               when.Format(QStringLiteral("hh:nn"));
}

QString Because(const QString& words)
{
    return words.isEmpty() ? QString() : QStringLiteral(": ") + words;
}
} // namespace

bool OutgoingRow::IsWaiting() const
{
    return Category == tmcOutbox && (Flags & mfSendPending) != 0;
}

OutgoingState StateOf(const OutgoingRow& row, const std::optional<SendingRecord>& record)
{
    const bool isKnown = record && record->Identity == row.Identity;
    if (row.IsWaiting())
        return isKnown ? OfWaiting(row, *record) : Waiting(row);
    if (isKnown && (record->Stage == SendingStage::Sent || record->Stage == SendingStage::Accepted))
        return {Kind::Sent, ClockHelper::UTCToLocal(record->When), QString()};
    return {};
}

OutgoingState StateOf(const cMessage& message, const SendingLedger& ledger)
{
    return StateOf(
        {message.Category(), message.Flags(), message.Sent(), message.SendAfter(), OutgoingIdentity(message)},
        ledger.Find(message.Reference()));
}

QString InWords(const OutgoingState& state)
{
    const QString on = QStringLiteral(" on ");
    switch (state.What) {
    case Kind::None:
        break;
    case Kind::Waiting:
        return QStringLiteral("Waiting to be sent") + OnDate(QStringLiteral(" since "), state.When);
    case Kind::NotYet:
        return QStringLiteral("Waiting; to be sent") + OnDate(on, state.When) + Because(state.Words);
    case Kind::BeingSent:
        return QStringLiteral("Being sent");
    case Kind::Sent:
        return QStringLiteral("Sent") + OnDate(on, state.When);
    case Kind::Refused:
        return QStringLiteral("Refused") + OnDate(on, state.When) + Because(state.Words);
    case Kind::Unclear:
        return QStringLiteral("May have gone out") + OnDate(on, state.When) + Because(state.Words);
    }
    return QString();
}

QString InShort(const OutgoingState& state)
{
    const QString when = state.When.IsNone() ? QString() : u' ' + state.When.Format(QStringLiteral("d mmm hh:nn"));
    switch (state.What) {
    case Kind::None:
        break;
    case Kind::Waiting:
        return QStringLiteral("waiting");
    case Kind::NotYet:
        return QStringLiteral("to be sent") + when + Because(state.Words);
    case Kind::BeingSent:
        return QStringLiteral("being sent");
    case Kind::Sent:
        return QStringLiteral("sent") + when;
    case Kind::Refused:
        return QStringLiteral("refused") + Because(state.Words);
    case Kind::Unclear:
        return QStringLiteral("may have gone out") + Because(state.Words);
    }
    return QString();
}
