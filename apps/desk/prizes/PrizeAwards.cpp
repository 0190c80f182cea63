// SPDX-License-Identifier: Apache-2.0
#include "PrizeAwards.h"

#include "common/ClockHelper.h"
#include "prizes/Awarding.h"
#include "station/DeskStation.h"

#include <QCoreApplication>
#include <QLocale>

namespace
{
QString AwardsText(const char* text)
{
    return QCoreApplication::translate("PrizeAwards", text);
}

QString GoneWords()
{
    return AwardsText("The prize is not there any more: it was deleted on another computer. Nothing was saved.");
}

QString ClosedWords()
{
    return AwardsText("The station is not open at this moment. Nothing was saved; please try again.");
}

/// Who has the last one, so that the presenter can tell the listener.
QString UsedUpWords(DeskStation& station, const cPrize& prize)
{
    if (prize.NumberSupplied() <= 0) {
        return AwardsText("%1 cannot be awarded, because none was supplied. Enter the number supplied in the prize's "
                          "window first.")
            .arg(PrizeRows::Quoted(prize.Title()));
    }
    const QList<PrizeRows::Winner> winners = PrizeRows::WinnersOf(station, prize.Reference());
    QString words = prize.NumberSupplied() == 1
                        ? AwardsText("%1 has been won already.").arg(PrizeRows::Quoted(prize.Title()))
                        : AwardsText("%1 cannot be awarded again: all %2 have been won.")
                              .arg(PrizeRows::Quoted(prize.Title()), QLocale().toString(prize.NumberSupplied()));
    if (!winners.isEmpty()) {
        words += u' ' + AwardsText("The last one went to %1 (%2).")
                            .arg(PrizeRows::NameOf(station, winners.last().WinnerReference),
                                 PrizeRows::MomentWords(winners.last().WonDate));
    }
    return words + u' ' + AwardsText("Nothing was saved.");
}

QString WordsFor(DeskStation& station, Awarding::Obstacle obstacle, qint32 prize, qint32 contact)
{
    using Obstacle = Awarding::Obstacle;
    cTolvaDatabase& database = station.Database();
    const QLocale locale;
    switch (obstacle) {
    case Obstacle::None:
        break;
    case Obstacle::Closed:
        return ClosedWords();
    case Obstacle::NobodySignedIn:
        return AwardsText("Nobody is signed in, so nothing can be awarded. Open the station again.");
    case Obstacle::NoRight:
        return AwardsText("At this station only users who may manage prizes award them. Your technician can give you "
                          "that right.");
    case Obstacle::PrizeGone:
        return GoneWords();
    case Obstacle::NoneSupplied:
    case Obstacle::UsedUp: {
        const cPrizePtr stored = database.GetPrize(prize, false);
        return stored ? UsedUpWords(station, *stored) : GoneWords();
    }
    case Obstacle::WinnerNumberTooHigh:
        return AwardsText("%1 cannot be stored as a winner: the contact has the number %2, and a winner's field holds "
                          "numbers up to %3. Nothing was saved. Choose another contact, or ask your technician.")
            .arg(PrizeRows::NameOf(station, contact), locale.toString(contact),
                 locale.toString(Awarding::HighestWinnerReference));
    case Obstacle::NotStored:
        return AwardsText("The award was not saved. %1")
            .arg(station.Words(database.LastErrorNumber(), database.LastErrorDescription()));
    }
    return QString();
}

int DaysBetween(Date earlier, Date later)
{
    return static_cast<int>(earlier.ToDateTime(Qt::UTC).date().daysTo(later.ToDateTime(Qt::UTC).date()));
}

QString DaysAgo(int days)
{
    if (days <= 0)
        return AwardsText("today");
    return days == 1 ? AwardsText("yesterday") : AwardsText("%1 days ago").arg(days);
}
} // namespace

int PrizeAwards::EligibleDays(DeskStation& station)
{
    return Awarding(station.Database()).EligibleDays();
}

void PrizeAwards::SetEligibleDays(DeskStation& station, int days)
{
    Awarding(station.Database()).SetEligibleDays(days);
}

bool PrizeAwards::NeedsRight(DeskStation& station)
{
    return Awarding(station.Database()).NeedsRight();
}

void PrizeAwards::SetNeedsRight(DeskStation& station, bool needsRight)
{
    Awarding(station.Database()).SetNeedsRight(needsRight);
}

QString PrizeAwards::WhyNotAwardable(DeskStation& station, qint32 prize)
{
    return WordsFor(station, Awarding(station.Database()).WhyNotAwardable(prize), prize, 0);
}

QString PrizeAwards::WhyCannotWin(DeskStation& station, qint32 contact)
{
    if (contact <= 0 || !station.Directory().GetContact(contact)) {
        return AwardsText("That contact is not in the directory any more. Nothing was saved; choose another contact.");
    }
    return WordsFor(station, Awarding::WhyCannotWin(contact), 0, contact);
}

QString PrizeAwards::RecentWinQuestion(DeskStation& station, qint32 contact)
{
    const int days = EligibleDays(station);
    const auto win = Awarding(station.Database()).RecentWin(contact);
    if (!win)
        return QString();
    const int age = DaysBetween(win->WonDate, ClockHelper::CurrentTime());
    const cPrizePtr prize = station.Database().GetPrize(win->PrizeReference, false);
    const QString title = prize ? PrizeRows::Quoted(prize->Title()) : AwardsText("a prize that is not there any more");
    const QString wait = days == 1 ? AwardsText("At this station winners wait 1 day.")
                                   : AwardsText("At this station winners wait %1 days.").arg(days);
    return AwardsText("%1 won %2 on %3 (%4). %5\n\nDo you want to make the award all the same?")
        .arg(PrizeRows::NameOf(station, contact), title, PrizeRows::DayWords(win->WonDate), DaysAgo(age), wait);
}

PrizeAwards::Result PrizeAwards::Award(DeskStation& station, qint32 prize, qint32 contact)
{
    Result result;
    Awarding awarding(station.Database());
    result.Words = WordsFor(station, awarding.WhyNotAwardable(prize), prize, contact);
    if (result.Words.isEmpty())
        result.Words = WhyCannotWin(station, contact);
    if (!result.Words.isEmpty())
        return result;
    const Awarding::Result award = awarding.Award(prize, contact);
    if (award.Winner)
        result.Winner = award.Winner->Reference();
    else
        result.Words = WordsFor(station, award.Why, prize, contact);
    return result;
}

std::optional<PrizeAwards::OverAward> PrizeAwards::FindOverAward(DeskStation& station, qint32 prize)
{
    const AwardStanding standing = Awarding(station.Database()).Settle(prize);
    if (standing.Stored == 0 || !standing.IsOverdrawn())
        return std::nullopt;
    return OverAward{standing.Title, standing.Units, standing.IsPrizeThere, PrizeRows::WinnersOf(station, prize)};
}

QString PrizeAwards::OverAwardWords(const OverAward& overAward)
{
    if (!overAward.IsPrizeThere)
        return AwardsText("The prize was deleted on another computer in the same moment, but the award is stored.");
    const QLocale locale;
    const QString awarded = locale.toString(overAward.Winners.size());
    return overAward.NumberSupplied == 1
               ? AwardsText("%1 has been awarded %2 times, but only 1 was supplied.")
                     .arg(PrizeRows::Quoted(overAward.Title), awarded)
               : AwardsText("%1 has been awarded %2 times, but only %3 were supplied.")
                     .arg(PrizeRows::Quoted(overAward.Title), awarded, locale.toString(overAward.NumberSupplied));
}

QString PrizeAwards::WinnersInWords(DeskStation& station, const QList<PrizeRows::Winner>& winners, qint32 own)
{
    QStringList lines;
    for (const PrizeRows::Winner& winner : winners) {
        const QString by =
            winner.Reference == own
                ? AwardsText("awarded by you just now")
                : AwardsText("awarded by %1").arg(PrizeRows::UserName(station, winner.AwardedByReference));
        lines.append(QStringLiteral("%1, %2, %3")
                         .arg(PrizeRows::NameOf(station, winner.WinnerReference),
                              winner.WonDate.Format(QStringLiteral("d mmmm yyyy, hh:nn:ss")), by));
    }
    return lines.join(u'\n');
}

bool PrizeAwards::MayTakeBack(DeskStation& station, const cPrizeWinner& winner)
{
    return Awarding(station.Database()).MayTakeBack(winner);
}

bool PrizeAwards::TakeBack(DeskStation& station, qint32 winner, QString& words)
{
    try {
        if (Awarding(station.Database()).TakeBack(winner))
            return true;
        words = station.Words(station.Database().LastErrorNumber(), station.Database().LastErrorDescription());
    } catch (const dao::Error& error) {
        words = station.Words(error.Number(), error.Description());
    }
    return false;
}
