// SPDX-License-Identifier: Apache-2.0
#include "OnAirEntries.h"

#include "DisplayText.h"
#include "common/ClockHelper.h"
#include "compose/Addresses.h"
#include "compose/Composition.h"
#include "contacts/SenderContact.h"
#include "database/RowCondition.h"
#include "messages/MessageArrivals.h"
#include "platform/directory/clsKVUser.h"
#include "platform/records/Recordset.h"
#include "prizes/cPrize.h"
#include "station/DeskStation.h"

#include <QObject>

#include <cmath>

namespace
{
/// Longer than anything that is read out; the message itself keeps the rest.
constexpr qsizetype LongestText = 20000;
constexpr qsizetype LongestLine = 80;
constexpr double SecondsADay = 86400;

QString UserOf(DeskStation& station)
{
    const clsKVUser* user = station.Directory().CurrentUser();
    return user ? user->Name() : QString();
}

QString SenderOf(const cMessage& message, DeskStation& station)
{
    const clsKVContactPtr contact = SenderContact::Find(station.Directory(), message);
    if (contact && !contact->Name.trimmed().isEmpty())
        return OneLine(contact->Name);
    const QString from = message.CDOMessage()->From();
    const QString name = OneLine(Addresses::DisplayName(Addresses::Split(from).value(0)));
    return name.isEmpty() ? OneLine(from) : name;
}

QString TimeOf(Date universal)
{
    const Date when = ClockHelper::UTCToLocal(universal);
    const QString day = QStringLiteral("d mmm yyyy");
    const bool isToday = when.Format(day) == ClockHelper::CurrentTime().Format(day);
    return when.Format(isToday ? QStringLiteral("hh:nn") : QStringLiteral("d mmm hh:nn"));
}

QSet<qint32> StoredPrizes(const QSet<qint32>& numbers, DeskStation& station)
{
    QSet<qint32> stored;
    if (numbers.isEmpty())
        return stored;
    const auto rows = station.Database().OpenSnapshot(QStringLiteral("SELECT [Reference] FROM [Prizes] WHERE ") +
                                                      RowCondition::HasOneOf(numbers));
    for (; !rows->AtEOF(); rows->MoveNext())
        stored.insert(rows->Collect(QStringLiteral("Reference")).toInt());
    return stored;
}
} // namespace

OnAirEntry OnAirEntries::OfMessage(const cMessage& message, DeskStation& station)
{
    OnAirEntry entry;
    entry.Message = message.Reference();
    entry.Arrived =
        MessageArrivals::Where(station.Database(), RowCondition::HasOneOf(QList<qint32>{message.Reference()}))
            .value(message.Reference());
    entry.From = SenderOf(message, station);
    const QString text = Composing::ReadableText(*message.CDOMessage()).trimmed();
    entry.Original = text.isEmpty() ? OneLine(message.CDOMessage()->Subject()) : text.left(LongestText);
    entry.Text = entry.Original;
    entry.AddedBy = UserOf(station);
    return entry;
}

OnAirEntry OnAirEntries::OfPrize(const cPrize& prize, DeskStation& station)
{
    OnAirEntry entry;
    entry.Prize = prize.Reference();
    entry.From = OneLine(prize.Title());
    const QString script = prize.Script().trimmed();
    entry.Original = script.isEmpty() ? entry.From : script.left(LongestText);
    entry.Text = entry.Original;
    entry.AddedBy = UserOf(station);
    return entry;
}

QSet<qint32> OnAirEntries::Gone(const QList<OnAirEntry>& entries, DeskStation& station)
{
    QSet<qint32> messages;
    QSet<qint32> prizes;
    for (const OnAirEntry& entry : entries) {
        if (entry.Message != 0)
            messages.insert(entry.Message);
        if (entry.Prize != 0)
            prizes.insert(entry.Prize);
    }
    const QMap<qint32, Date> storedMessages =
        messages.isEmpty() ? QMap<qint32, Date>()
                           : MessageArrivals::Where(station.Database(), RowCondition::HasOneOf(messages));
    const QSet<qint32> storedPrizes = StoredPrizes(prizes, station);
    QSet<qint32> gone;
    for (const OnAirEntry& entry : entries) {
        const auto arrived = storedMessages.constFind(entry.Message);
        const bool isOther =
            entry.Message != 0 && (arrived == storedMessages.constEnd() ||
                                   std::abs(arrived->DayNumber() - entry.Arrived.DayNumber()) * SecondsADay >= 1);
        if (isOther || (entry.Prize != 0 && !storedPrizes.contains(entry.Prize)))
            gone.insert(entry.Reference);
    }
    return gone;
}

QString OnAirEntries::StateInWords(const OnAirEntry& entry)
{
    if (entry.State == OnAirState::Waiting)
        return QString();
    const QString words = entry.State == OnAirState::Used ? QObject::tr("Used at %1") : QObject::tr("Skipped at %1");
    const QString at = words.arg(TimeOf(entry.When));
    return entry.StateBy.isEmpty() ? at : QObject::tr("%1 by %2").arg(at, OneLine(entry.StateBy));
}

QString OnAirEntries::LineOf(const OnAirEntry& entry, int number)
{
    const QString state = StateInWords(entry);
    const QString kind = entry.Prize != 0 ? QObject::tr("Prize: ") : QString();
    const QString text = OneLine(entry.Text).left(LongestLine);
    const QString line = QStringLiteral("%1. %2%3: %4").arg(QString::number(number), kind, OneLine(entry.From), text);
    return state.isEmpty() ? line : QStringLiteral("%1 (%2)").arg(line, state);
}

QString OnAirEntries::HeadOf(const OnAirEntry& entry)
{
    if (entry.Prize != 0)
        return QObject::tr("Prize: %1").arg(OneLine(entry.From));
    return entry.Arrived.IsNone() ? OneLine(entry.From)
                                  : QObject::tr("%1, %2").arg(OneLine(entry.From), TimeOf(entry.Arrived));
}
