// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PrizeRows.h"
#include "prizes/Awarding.h"

class DeskStation;

/// The rules of awards (Awarding) in the desk's words, without any window. Everything may raise dao::Error as the
/// station's file does.
namespace PrizeAwards
{
/// Station settings: after a win a contact waits so many days before the award is made without a question (0: nobody
/// is asked about), and whether only users who may manage prizes award them.
inline constexpr int MostEligibleDays = Awarding::MostEligibleDays;
int EligibleDays(DeskStation& station);
void SetEligibleDays(DeskStation& station, int days);
bool NeedsRight(DeskStation& station);
void SetNeedsRight(DeskStation& station, bool needsRight);

/// Why nobody can be given this prize now: the user's right, a prize that is gone or used up. A sentence, or empty.
/// Winners whom the prize does not count are counted first, where they leave no unit.
QString WhyNotAwardable(DeskStation& station, qint32 prize);
/// Why this contact cannot win; empty when nothing stands against it.
QString WhyCannotWin(DeskStation& station, qint32 contact);
/// The question about a contact who won in the last EligibleDays; empty when there is nothing to ask.
QString RecentWinQuestion(DeskStation& station, qint32 contact);

struct Result
{
    qint32 Winner = 0; ///< The stored winner; 0 when nothing was stored.
    QString Words;     ///< Why nothing was stored.
};
/// Stores the award. Nothing is stored unless the result says so.
Result Award(DeskStation& station, qint32 prize, qint32 contact);

/// More winners are stored than were supplied, after two computers gave the last one away in the same moment.
struct OverAward
{
    QString Title;
    qint32 NumberSupplied = 0;
    bool IsPrizeThere = true;         ///< False when it was deleted in that moment.
    QList<PrizeRows::Winner> Winners; ///< All, the earliest first.
};
/// Looks after an award; a winner whom the prize does not count is counted then.
std::optional<OverAward> FindOverAward(DeskStation& station, qint32 prize);
/// "... has been awarded 2 times, but only 1 was supplied."
QString OverAwardWords(const OverAward& overAward);
/// One line a winner: who won, when, and who awarded it. own: the winner of this desk's own award.
QString WinnersInWords(DeskStation& station, const QList<PrizeRows::Winner>& winners, qint32 own);

/// Who awarded a prize may put that right; taking back what others awarded needs the right to manage prizes.
bool MayTakeBack(DeskStation& station, const cPrizeWinner& winner);
/// Deletes the winner and leaves the prize with the right count: a row that was never counted takes nothing off it. An
/// absent winner counts as taken back. False, with words, when it could not be done; everything is as before then.
bool TakeBack(DeskStation& station, qint32 winner, QString& words);
} // namespace PrizeAwards
