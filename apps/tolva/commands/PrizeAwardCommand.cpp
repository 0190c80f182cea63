// SPDX-License-Identifier: Apache-2.0

// tolva prize award, winners and remove-winner: who won a prize.

#include "AwardCheck.h"
#include "DisplayText.h"
#include "Terminal.h"
#include "commands/JsonDate.h"
#include "commands/PrizeForms.h"
#include "commands/PrizeText.h"
#include "contacts/ContactSearch.h"
#include "contacts/SenderContact.h"
#include "database/RowValues.h"

namespace
{
using namespace PrizeOptions;

const QString LimitFormat = QStringLiteral("yyyy-mm-dd hh:nn");
constexpr int MostCandidates = 10;

/// The only one of them, or of those of exactly that name. Failure (data) for none and, with the candidates, for
/// several. sought: what was looked for, in words.
clsKVContactPtr OnlyOne(const QList<clsKVContactPtr>& found, const QString& sought)
{
    if (found.isEmpty())
        throw Failure(exitData,
                      QStringLiteral("There is no contact with the %1 in the directory. \"tolva contacts\" lists "
                                     "contacts and takes in new ones.")
                          .arg(sought));
    if (found.size() == 1)
        return found.first();
    QStringList candidates;
    for (const clsKVContactPtr& contact : found.mid(0, MostCandidates))
        candidates.append(QStringLiteral("%1 (%2)").arg(OneLine(contact->Name)).arg(contact->Reference));
    if (found.size() > MostCandidates)
        candidates.append(QStringLiteral("..."));
    throw Failure(exitData, QStringLiteral("Several contacts have the %1: %2. Say which with --contact.")
                                .arg(sought, candidates.join(QStringLiteral(", "))));
}

clsKVContactPtr FindByName(Station& station, const QString& name)
{
    const QList<clsKVContactPtr> found = ContactSearch(station.Directory().Contacts()).Find(name);
    QList<clsKVContactPtr> exact;
    for (const clsKVContactPtr& contact : found) {
        if (contact->Name.simplified().compare(name.simplified(), Qt::CaseInsensitive) == 0)
            exact.append(contact);
    }
    return OnlyOne(exact.isEmpty() ? found : exact, QStringLiteral("name \"%1\"").arg(name));
}

clsKVContactPtr FindWinner(Station& station, const Arguments& arguments)
{
    if (arguments.Has(Name))
        return FindByName(station, arguments.Value(Name));
    if (arguments.Has(Number)) {
        return OnlyOne(SenderContact::AllByNumber(station.Directory(), arguments.Value(Number)),
                       QStringLiteral("number %1").arg(arguments.Value(Number)));
    }
    const qint32 reference = ToReference(arguments.Value(Contact), QStringLiteral("contact"));
    const clsKVContactPtr contact = station.Directory().GetContact(reference);
    if (!contact)
        throw Failure(exitData, QStringLiteral("There is no contact %1 in the directory.").arg(reference));
    return contact;
}

void RefuseFullPrize(const cPrize& prize)
{
    if (prize.NumberSupplied() == 0) {
        throw Failure(exitCannotCreate,
                      QStringLiteral("\"%1\" cannot be awarded: none of it was supplied. Say how many there are with: "
                                     "tolva prize FOLDER edit %2 --supplied N")
                          .arg(OneLine(prize.Title()))
                          .arg(prize.Reference()));
    }
    if (prize.NumberWinners() >= prize.NumberSupplied()) {
        throw Failure(exitCannotCreate, QStringLiteral("\"%1\" has already been fully allocated: all %2 are won.")
                                            .arg(OneLine(prize.Title()))
                                            .arg(prize.NumberSupplied()));
    }
}

void RefuseLargeNumber(const clsKVContact& contact)
{
    if (Awarding::WhyCannotWin(contact.Reference) != Awarding::Obstacle::None) {
        throw Failure(exitData, QStringLiteral("%1 has the number %2; a winner's number can be %3 at most, so this "
                                               "contact cannot be stored as a winner.")
                                    .arg(OneLine(contact.Name))
                                    .arg(contact.Reference)
                                    .arg(Awarding::HighestWinnerReference));
    }
}

/// Somebody who won a short while ago is told of, and on a terminal asked about. False when the answer is No.
bool AcceptsRecentWin(Station& station, const Arguments& arguments, const clsKVContact& contact)
{
    const auto win = Awarding(station.Database()).RecentWin(contact.Reference);
    if (!win)
        return true;
    const cPrizePtr prize = station.Database().GetPrize(win->PrizeReference, false);
    const QString words =
        QStringLiteral("%1 won %2 on %3; winners wait %4 days here.")
            .arg(OneLine(contact.Name), prize ? u'"' + OneLine(prize->Title()) + u'"' : QStringLiteral("a prize"),
                 win->WonDate.Format(QStringLiteral("yyyy-mm-dd")),
                 QString::number(Awarding(station.Database()).EligibleDays()));
    if (arguments.Has(Yes) || !Terminal::CanAsk()) {
        Terminal::Complain(words);
        return true;
    }
    return UserInterface::Confirm(words + QStringLiteral(" Award the prize all the same?"));
}

/// A prize that may not go out at this moment is told of, and on a terminal asked about. False when the answer is No.
bool AcceptsOtherTime(const Arguments& arguments, const cPrize& prize)
{
    QString why;
    switch (Awarding::WhyNotNow(prize)) {
    case Awarding::NotNow::None:
        return true;
    case Awarding::NotNow::NotYet:
        why = QStringLiteral("it may go out from %1 on").arg(prize.StartDate().Format(LimitFormat));
        break;
    case Awarding::NotNow::Over:
        why = QStringLiteral("its time ended on %1").arg(prize.EndDate().Format(LimitFormat));
        break;
    case Awarding::NotNow::WrongHour:
        why = QStringLiteral("it may not go out in this hour");
        break;
    }
    const QString words = QStringLiteral("\"%1\" is awarded outside its times: %2.").arg(OneLine(prize.Title()), why);
    if (arguments.Has(Yes) || !Terminal::CanAsk()) {
        Terminal::Complain(words);
        return true;
    }
    return UserInterface::Confirm(words + QStringLiteral(" Award it all the same?"));
}

/// Failure in words for a winner that was not stored.
Failure WhyNotAwarded(Station& station, const QString& prizeWords)
{
    if (station.Database().LastErrorNumber() != 0)
        return WhyNotStored(station, station.Database());
    try {
        // Somebody else was quicker since the look at the stock.
        RefuseFullPrize(*PrizeOf(station, prizeWords));
    } catch (const Failure& failure) {
        return failure;
    }
    return WhyNotStored(station, station.Database());
}

/// What stands after the award; Failure (data), which names the way back, when it is more than there is.
void CheckStanding(Station& station, qint32 prizeReference, const cPrizeWinner& winner, const QString& name)
{
    const QString stored = QStringLiteral("The award is stored as winner %1").arg(winner.Reference());
    AwardStanding standing;
    try {
        standing = Awarding(station.Database()).Settle(prizeReference);
    } catch (const dao::Error& error) {
        const Failure reason = station.FailureOfStation(error.Number(), error.Description());
        throw Failure(reason.Code(),
                      stored + QStringLiteral(", but what the prize has left cannot be told. ") + reason.Words());
    }
    Terminal::PrintLine(QStringLiteral("%1  %2: \"%3\", %4 of %5 left")
                            .arg(winner.Reference())
                            .arg(OneLine(name), OneLine(standing.Title))
                            .arg(qMax(0, standing.Units - standing.Stored))
                            .arg(standing.Units));
    const QString warning = AwardCheck::Warning(standing);
    if (!warning.isEmpty()) {
        throw Failure(exitData, QStringLiteral("%1 %2; it is taken back with: tolva prize %3 remove-winner %4")
                                    .arg(warning, stored, station.Folder())
                                    .arg(winner.Reference()));
    }
}

void PrintWinner(Station& station, const dao::Recordset& rows)
{
    const auto column = [&rows](const char16_t* name) { return rows.Collect(QString::fromUtf16(name)); };
    const Date won = RowValues::LocalDate(column(u"WonDate"));
    const Date sent = RowValues::LocalDate(column(u"SentDate"));
    QString line = QString::number(column(u"Reference").toInt()).rightJustified(6) + u' ' +
                   won.Format(QStringLiteral("yyyy-mm-dd hh:nn")).leftJustified(16) + u' ' +
                   OneLine(ContactName(station, column(u"WinnerReference").toInt()));
    const QString awarder = UserNameOf(station, column(u"AwardedByReference").toInt());
    if (!awarder.isEmpty())
        line += QStringLiteral(", awarded by ") + OneLine(awarder);
    if (!sent.IsNone())
        line += QStringLiteral(", sent ") + sent.Format(QStringLiteral("yyyy-mm-dd"));
    Terminal::PrintLine(line);
}

void PrintWinnerJson(Station& station, const dao::Recordset& rows)
{
    const auto column = [&rows](const char16_t* name) { return rows.Collect(QString::fromUtf16(name)); };
    const auto number = [&](const char16_t* name) { return column(name).toInt(); };
    const auto date = [&](const char16_t* name) { return JsonDate(Date(column(name).toDouble())); };
    const QJsonObject object{
        {QStringLiteral("reference"), number(u"Reference")},
        {QStringLiteral("prize"), number(u"PrizeReference")},
        {QStringLiteral("contact"), number(u"WinnerReference")},
        {QStringLiteral("name"), ContactName(station, number(u"WinnerReference"))},
        {QStringLiteral("won"), date(u"WonDate")},
        {QStringLiteral("awardedBy"), number(u"AwardedByReference")},
        {QStringLiteral("sent"), date(u"SentDate")},
        {QStringLiteral("sentBy"), number(u"SentByReference")},
        {QStringLiteral("notes"), column(u"Notes").toString()},
        {QStringLiteral("notesToSupplier"), column(u"NotesToSupplier").toString()},
    };
    Terminal::PrintJson(object);
}
} // namespace

void PrizeForms::CheckAward(const Arguments& arguments)
{
    const int ways = int(arguments.Has(Contact)) + int(arguments.Has(Name)) + int(arguments.Has(Number));
    if (ways != 1)
        throw Failure(exitUsage, QStringLiteral("Say who won with one of --contact, --name and --number."));
    if (arguments.Has(Contact))
        ToReference(arguments.Value(Contact), QStringLiteral("contact"));
    else if (arguments.Value(arguments.Has(Name) ? Name : Number).trimmed().isEmpty())
        throw Failure(exitUsage, QStringLiteral("Say who won: the text is empty."));
}

int PrizeForms::Award(Station& station, const Arguments& arguments)
{
    const QString& prizeWords = arguments.Words().at(2);
    Awarding awarding(station.Database());
    if (awarding.NeedsRight())
        station.Require(DirectoryRight::ManagePrizes, QStringLiteral("award prizes"));
    // A winner who was not counted has his unit all the same.
    station.Try([&] { awarding.Settle(ToReference(prizeWords, QStringLiteral("prize"))); });
    const cPrizePtr prize = PrizeOf(station, prizeWords);
    RefuseFullPrize(*prize);
    const clsKVContactPtr contact = station.Try([&] { return FindWinner(station, arguments); });
    RefuseLargeNumber(*contact);
    const bool isAccepted = station.Try(
        [&] { return AcceptsOtherTime(arguments, *prize) && AcceptsRecentWin(station, arguments, *contact); });
    if (!isAccepted) {
        Terminal::Complain(QStringLiteral("Nothing was awarded."));
        return exitDeclined;
    }
    const Awarding::Result result =
        station.Try([&] { return awarding.Award(prize->Reference(), contact->Reference, arguments.Value(Notes)); });
    if (!result.Winner)
        throw WhyNotAwarded(station, prizeWords);
    CheckStanding(station, prize->Reference(), *result.Winner, contact->Name);
    return exitOK;
}

int PrizeForms::Winners(Station& station, const Arguments& arguments)
{
    const cPrizePtr prize = PrizeOf(station, arguments.Words().at(2));
    station.Try([&] {
        const auto rows = station.Database().OpenSnapshot(
            QStringLiteral("SELECT * FROM [PrizeWinners] WHERE [PrizeReference]=%1 ORDER BY [WonDate], [Reference]")
                .arg(prize->Reference()));
        if (rows->AtEOF() && !arguments.Has(Json))
            Terminal::Complain(QStringLiteral("Nobody has won it yet."));
        for (; !rows->AtEOF(); rows->MoveNext())
            (arguments.Has(Json) ? PrintWinnerJson : PrintWinner)(station, *rows);
        const QString warning = AwardCheck::Warning(Awarding(station.Database()).Standing(prize->Reference()));
        if (!warning.isEmpty())
            Terminal::Complain(warning);
    });
    return exitOK;
}

int PrizeForms::RemoveWinner(Station& station, const Arguments& arguments)
{
    cTolvaDatabase& database = station.Database();
    const qint32 reference = ToReference(arguments.Words().at(2), QStringLiteral("winner"));
    const cPrizeWinnerPtr winner = database.GetPrizeWinner(reference);
    if (!winner && database.LastErrorNumber() != 0)
        throw WhyNotStored(station, database);
    if (!winner)
        throw Failure(exitData,
                      QStringLiteral(
                          "There is no winner %1 in the station in %2. A prize's winners are listed by: tolva prize %2 "
                          "winners REF")
                          .arg(QString::number(reference), station.Folder()));
    // Who awarded it by mistake puts it right without further ado.
    Awarding awarding(database);
    if (!awarding.MayTakeBack(*winner))
        station.Require(DirectoryRight::ManagePrizes, PrizeForms::ManageWords);
    const QString name = ContactName(station, winner->WinnerReference());
    if (!arguments.Has(Yes) && Terminal::CanAsk() &&
        !UserInterface::Confirm(
            QStringLiteral("Are you sure you want to take the prize back from '%1'?").arg(OneLine(name)))) {
        Terminal::Complain(QStringLiteral("Nothing was taken back."));
        return exitDeclined;
    }
    if (!station.Try([&] { return awarding.TakeBack(reference); }))
        throw WhyNotStored(station, database);
    const AwardStanding standing = station.Try([&] { return awarding.Standing(winner->PrizeReference()); });
    const QString warning = AwardCheck::Warning(standing);
    if (!warning.isEmpty())
        Terminal::Complain(warning);
    return exitOK;
}

int PrizeForms::Recount(Station& station, const Arguments& arguments)
{
    station.Require(DirectoryRight::ManagePrizes, PrizeForms::ManageWords);
    cTolvaDatabase& database = station.Database();
    const cPrizePtr prize = PrizeOf(station, arguments.Words().at(2));
    if (!station.Try([&] { return database.RecountWinners(prize->Reference()); }))
        throw WhyNotStored(station, database);
    const AwardStanding standing = station.Try([&] { return Awarding(database).Standing(prize->Reference()); });
    Terminal::PrintLine(QStringLiteral("\"%1\": %2, %3 of %4 left")
                            .arg(OneLine(standing.Title), standing.Counted == 1
                                                              ? QStringLiteral("1 winner")
                                                              : QStringLiteral("%1 winners").arg(standing.Counted))
                            .arg(qMax(0, standing.Units - standing.Counted))
                            .arg(standing.Units));
    const QString warning = AwardCheck::Warning(standing);
    if (!warning.isEmpty())
        Terminal::Complain(warning);
    return exitOK;
}
