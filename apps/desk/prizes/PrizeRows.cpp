// SPDX-License-Identifier: Apache-2.0
#include "PrizeRows.h"

#include "common/ClockHelper.h"
#include "common/PendingError.h"
#include "prizes/Awarding.h"
#include "prizes/PrizeQuery.h"
#include "station/DeskStation.h"

#include <QCoreApplication>
#include <QLocale>

#include <cmath>

namespace
{
/// How far back the user log is searched for who changed a prize.
constexpr int LogEntriesSearched = 500;

QString RowsText(const char* text)
{
    return QCoreApplication::translate("PrizeRows", text);
}

Date LocalDate(const QVariant& value)
{
    const Date stored(value.isValid() ? value.toDouble() : 0.0);
    return stored.IsNone() ? Date() : ClockHelper::UTCToLocal(stored);
}

QList<PrizeRows::Winner> Select(DeskStation& station, const QString& condition)
{
    QList<PrizeRows::Winner> winners;
    const auto rows = station.Database().OpenSnapshot(QStringLiteral("SELECT * FROM [PrizeWinners] WHERE ") +
                                                      condition + QStringLiteral(" ORDER BY [WonDate]"));
    for (; !rows->AtEOF(); rows->MoveNext()) {
        PrizeRows::Winner winner;
        winner.Reference = rows->Collect(QStringLiteral("Reference")).toInt();
        winner.PrizeReference = rows->Collect(QStringLiteral("PrizeReference")).toInt();
        winner.WinnerReference = rows->Collect(QStringLiteral("WinnerReference")).toInt();
        winner.AwardedByReference = rows->Collect(QStringLiteral("AwardedByReference")).toInt();
        winner.WonDate = LocalDate(rows->Collect(QStringLiteral("WonDate")));
        winner.SentDate = LocalDate(rows->Collect(QStringLiteral("SentDate")));
        winners.append(winner);
    }
    return winners;
}

bool HasTime(Date date)
{
    return date.DayNumber() != std::floor(date.DayNumber());
}

QString LimitWords(Date date)
{
    return HasTime(date) ? PrizeRows::MomentWords(date) : PrizeRows::DayWords(date);
}

} // namespace

QList<PrizeRows::Winner> PrizeRows::WinnersOf(DeskStation& station, qint32 prize)
{
    return Select(station, QStringLiteral("[PrizeReference]=%1").arg(prize));
}

std::optional<PrizeRows::Winner> PrizeRows::LastWinOf(DeskStation& station, qint32 contact)
{
    const QList<Winner> wins = Select(station, QStringLiteral("[WinnerReference]=%1").arg(contact));
    return wins.isEmpty() ? std::nullopt : std::optional(wins.last());
}

QString PrizeRows::NameOf(DeskStation& station, qint32 contact)
{
    const clsKVContactPtr found = contact > 0 ? station.Directory().GetContact(contact) : nullptr;
    if (!found)
        return contact > 0 ? RowsText("a contact who is not in the directory any more") : RowsText("nobody");
    const QString name = found->Name.simplified();
    return name.isEmpty() ? RowsText("a contact without a name") : name;
}

QString PrizeRows::UserName(DeskStation& station, qint32 user)
{
    PendingError pending; // a directory that cannot be read leaves the name out
    QString name = RowsText("a user who is not in the directory any more");
    pending.Try([&] {
        for (const DirectoryUser& known : station.Directory().Users()) {
            if (known.Reference == user)
                name = known.Name;
        }
    });
    return name;
}

QString PrizeRows::DetailOf(const clsKVContact& contact)
{
    for (const QString* detail :
         {&contact.Mobile, &contact.Telephone, &contact.Email, &contact.SecondEmail, &contact.Other}) {
        if (!detail->trimmed().isEmpty())
            return detail->simplified();
    }
    return QString();
}

QString PrizeRows::Quoted(const QString& title)
{
    const QString line = title.simplified();
    return line.isEmpty() ? RowsText("A prize without a title") : QStringLiteral("\u201C%1\u201D").arg(line);
}

QString PrizeRows::DayWords(Date date)
{
    return date.Format(QStringLiteral("d mmmm yyyy"));
}

QString PrizeRows::MomentWords(Date date)
{
    return date.Format(QStringLiteral("d mmmm yyyy, hh:nn"));
}

bool PrizeRows::MayGoOutNow(const cPrize& prize)
{
    return WhyNotNow(prize).isEmpty();
}

QString PrizeRows::WhyNotNow(const cPrize& prize)
{
    switch (Awarding::WhyNotNow(prize)) {
    case Awarding::NotNow::None:
        break;
    case Awarding::NotNow::NotYet:
        return RowsText("It may go out from %1 on.").arg(LimitWords(prize.StartDate()));
    case Awarding::NotNow::Over:
        return RowsText("Its time ended on %1.").arg(LimitWords(prize.EndDate()));
    case Awarding::NotNow::WrongHour:
        return RowsText("It may not go out in this hour.");
    }
    return QString();
}

QString PrizeRows::WhyInNoList(const cPrize& prize)
{
    const QString title = Quoted(prize.Title());
    switch (PrizeQuery::WhyUnlisted(prize, ClockHelper::NowUTC())) {
    case PrizeQuery::Unlisted::No:
        break;
    case PrizeQuery::Unlisted::NoneSupplied:
        return RowsText("%1 is in no list of available prizes, because none is supplied: enter how many there are.")
            .arg(title);
    case PrizeQuery::Unlisted::AllWon:
        return RowsText("%1 is in no list of available prizes, because all of it has been won.").arg(title);
    case PrizeQuery::Unlisted::NotYet:
        return RowsText("%1 is in no list of available prizes yet, because it starts on %2. It is listed from %3 on.")
            .arg(title, LimitWords(prize.StartDate()),
                 LimitWords(ClockHelper::UTCToLocal(PrizeQuery::FirstListedDay(prize))));
    case PrizeQuery::Unlisted::Over:
        return RowsText("%1 is in no list of available prizes any more, because its time ended on %2.")
            .arg(title, LimitWords(prize.EndDate()));
    case PrizeQuery::Unlisted::NoHours:
        return RowsText("%1 is in no list of an hour, because no hour of the week is marked for it.").arg(title);
    }
    return QString();
}

QString PrizeRows::StockWords(const cPrize& prize)
{
    const QLocale locale;
    const qint32 supplied = prize.NumberSupplied();
    const qint32 left = supplied - prize.NumberWinners();
    if (supplied <= 0)
        return RowsText("None supplied yet");
    if (left > 0)
        return RowsText("%1 of %2 left").arg(locale.toString(left), locale.toString(supplied));
    return supplied == 1 ? RowsText("The prize has been won")
                         : RowsText("All %1 prizes have been won").arg(locale.toString(supplied));
}

QString PrizeRows::DatesWords(const cPrize& prize)
{
    const bool hasStart = !prize.StartDate().IsNone();
    const bool hasEnd = !prize.EndDate().IsNone();
    if (hasStart && hasEnd)
        return RowsText("From %1 until %2").arg(LimitWords(prize.StartDate()), LimitWords(prize.EndDate()));
    if (hasStart)
        return RowsText("From %1 on").arg(LimitWords(prize.StartDate()));
    return hasEnd ? RowsText("Until %1").arg(LimitWords(prize.EndDate())) : QString();
}

QString PrizeRows::HoursWords(const WeekOfHours& hours)
{
    QString words = HoursText::InWords(hours);
    return words.replace(0, 1, words.left(1).toUpper());
}

QString PrizeRows::ClockWords()
{
    const Date local = ClockHelper::CurrentTime();
    const Date universal = ClockHelper::NowUTC();
    const QString format = QStringLiteral("hh:nn");
    if (local.Format(format) == universal.Format(format))
        return QString();
    return RowsText("Hours are those of universal time, which is %1 now (%2 on the clock here).")
        .arg(universal.Format(format), local.Format(format));
}

QString PrizeRows::WhoDid(DeskStation& station, int kind, const QString& title)
{
    for (const DirectoryLogEntry& entry : station.Directory().LogEntries(LogEntriesSearched)) {
        if (entry.Kind != kind || entry.Code != 1 || entry.Text != title)
            continue;
        for (const DirectoryUser& user : station.Directory().Users()) {
            if (user.Reference == entry.UserReference) {
                const Date when = ClockHelper::UTCToLocal(Date::FromDateTime(entry.When));
                return QStringLiteral("%1, %2").arg(user.Name, MomentWords(when));
            }
        }
    }
    return QString();
}
