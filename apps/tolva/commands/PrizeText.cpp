// SPDX-License-Identifier: Apache-2.0
#include "commands/PrizeText.h"

#include "DisplayText.h"
#include "commands/JsonDate.h"
#include "common/ClockHelper.h"
#include "prizes/PrizeHour.h"

#include <QJsonArray>

#include <algorithm>

namespace
{
Failure HoursFailure(const QString& typed)
{
    return Failure(exitUsage, QStringLiteral("\"%1\" are no hours. Hours are such as \"9-17\" (from 09:00 to 17:00), "
                                             "\"6-9,18-24\", \"all\" or \"none\"; a range ends after it begins.")
                                  .arg(typed));
}

/// The hour of "9" or "24", -1 for anything else.
int HourIn(const QString& text)
{
    bool isNumber = false;
    const int hour = text.trimmed().toInt(&isNumber);
    return isNumber && hour >= 0 && hour <= PrizeHour::HoursADay ? hour : -1;
}

Date ParseDate(const QString& typed)
{
    if (typed.trimmed().isEmpty())
        return Date();
    const std::optional<Date> date = Date::Parse(typed);
    if (!date || date->DayNumber() < 1)
        throw Failure(
            exitUsage,
            QStringLiteral("\"%1\" is no date. Dates are such as 2026-12-24 or \"2026-12-24 18:00\".").arg(typed));
    return *date;
}
} // namespace

cPrizePtr PrizeOf(Station& station, const QString& words)
{
    const qint32 reference = ToReference(words, QStringLiteral("prize"));
    const cPrizePtr prize = station.Database().GetPrize(reference, false);
    if (prize)
        return prize;
    if (station.Database().LastErrorNumber() != 0)
        throw WhyNotStored(station, station.Database());
    throw Failure(
        exitData,
        QStringLiteral("There is no prize %1 in the station in %2. All prizes are listed by: tolva prizes %2 --all")
            .arg(words, station.Folder()));
}

cPrizePtr ChangePrize(Station& station, const QString& words, const std::function<void(cPrize&)>& change)
{
    return station.Try([&] {
        cTolvaDatabase& database = station.Database();
        dao::Transaction transaction = database.BeginChange();
        const cPrizePtr prize = PrizeOf(station, words);
        change(*prize);
        if (!database.SavePrize(prize))
            throw WhyNotStored(station, database);
        transaction.Commit();
        return prize;
    });
}

Failure WhyNotStored(const Station& station, const cTolvaDatabase& database)
{
    if (database.LastErrorNumber() != 0)
        return station.FailureOfStation(database.LastErrorNumber(), database.LastErrorDescription());
    return Failure(exitTemporary, QStringLiteral("The prize changed or went while it was being worked on. Try again."));
}

QString ContactName(Station& station, qint32 reference)
{
    if (reference == 0)
        return {};
    const clsKVContactPtr contact = station.Try([&] { return station.Directory().GetContact(reference); });
    return contact ? contact->Name : QStringLiteral("contact %1").arg(reference);
}

QString UserNameOf(Station& station, qint32 reference)
{
    if (reference == 0)
        return {};
    const QList<DirectoryUser> users = station.Try([&] { return station.Directory().Users(); });
    const auto user = std::find_if(users.begin(), users.end(),
                                   [&](const DirectoryUser& candidate) { return candidate.Reference == reference; });
    return user != users.end() ? user->Name : QStringLiteral("user %1").arg(reference);
}

QString ParseHours(const QString& typed)
{
    const QString words = typed.trimmed().toLower();
    QString hours(PrizeHour::HoursADay, u' ');
    if (words == u"none")
        return hours;
    const QString ranges = words == u"all" ? QStringLiteral("0-24") : words;
    for (const QString& range : ranges.split(u',')) {
        const QStringList ends = range.split(u'-');
        const int from = HourIn(ends.first());
        const int until = ends.size() == 1 ? from + 1 : HourIn(ends.last());
        if (ends.size() > 2 || from < 0 || until <= from || until > PrizeHour::HoursADay)
            throw HoursFailure(typed);
        for (int hour = from; hour < until; ++hour)
            hours[hour] = PrizeHour{1, static_cast<qint16>(hour)}.Letter();
    }
    return hours;
}

Date ParseStart(const QString& typed)
{
    return ParseDate(typed);
}

Date ParseEnd(const QString& typed)
{
    const Date date = ParseDate(typed);
    if (date.IsNone() || typed.contains(u':'))
        return date;
    const QDate day = date.ToDateTime(Qt::UTC).date();
    return Date(day.year(), day.month(), day.day(), 23, 59, 59);
}

QString StockWords(const cPrize& prize)
{
    return QStringLiteral("%1 of %2 left")
        .arg(qMax(0, prize.NumberSupplied() - prize.NumberWinners()))
        .arg(prize.NumberSupplied());
}

QJsonObject ToJson(const cPrize& prize)
{
    const auto date = [](Date local) { return JsonDate(ClockHelper::LocalToUTC(local)); };
    QJsonArray hours;
    for (const QString& day : HoursText::HoursOf(prize))
        hours.append(day);
    return {
        {QStringLiteral("reference"), prize.Reference()},
        {QStringLiteral("title"), prize.Title()},
        {QStringLiteral("supplied"), prize.NumberSupplied()},
        {QStringLiteral("winners"), prize.NumberWinners()},
        {QStringLiteral("start"), date(prize.StartDate())},
        {QStringLiteral("end"), date(prize.EndDate())},
        {QStringLiteral("hours"), hours},
        {QStringLiteral("lastWon"), date(prize.LastWonDate())},
        {QStringLiteral("supplier"), prize.SupplierReference()},
        {QStringLiteral("added"), date(prize.AddedDate())},
        {QStringLiteral("addedBy"), prize.AddedByReference()},
        {QStringLiteral("script"), prize.Script()},
        {QStringLiteral("notes"), prize.Notes()},
        {QStringLiteral("notesToSupplier"), prize.NotesToSupplier()},
    };
}
