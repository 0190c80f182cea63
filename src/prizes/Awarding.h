// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "platform/Export.h"
#include "prizes/cPrizeWinner.h"

#include <QString>

#include <optional>

class cPrize;
class cTolvaDatabase;

/// What a prize has, what it says of its winners, and what is stored of them.
struct AwardStanding
{
    bool IsPrizeThere = false;
    QString Title;
    qint32 Units = 0;   ///< How many of the prize there are.
    qint32 Counted = 0; ///< What the prize says of its winners.
    qint32 Stored = 0;  ///< The winners that are stored.

    /// More winners than units, as after the number supplied was lowered: one of them has to be taken back.
    bool IsOverdrawn() const { return Stored > Units; }
};

/// The rules of giving prizes away, the same at every desk and on the command line: who may award, what may go out now,
/// who may win, what an award stores and what taking it back does. It answers in values; the words are the program's.
/// A short-lived helper over an open station with a directory, both of which outlive it. Everything may raise
/// dao::Error as the station's file does.
class TOLVA_EXPORT Awarding
{
public:
    /// A winner's field has 16 bits.
    static constexpr qint32 HighestWinnerReference = 32767;
    static constexpr int MostEligibleDays = 3650;

    explicit Awarding(cTolvaDatabase& database) : Database_(database) {}

    /// Settings of the station: whether only users who may manage prizes award them, and the days after a win within
    /// which the next award to the same contact is to be thought over (0 for none).
    bool NeedsRight() const;
    void SetNeedsRight(bool needsRight);
    int EligibleDays() const;
    void SetEligibleDays(int days);

    enum class Obstacle
    {
        None,
        Closed, ///< The station is not open.
        NobodySignedIn,
        NoRight,
        PrizeGone,
        NoneSupplied,
        UsedUp,
        WinnerNumberTooHigh,
        NotStored ///< The file failed: LastErrorNumber of the station.
    };
    /// What keeps the current user from awarding this prize to anybody. Winners whom the prize does not count are
    /// counted first, where they leave no unit.
    Obstacle WhyNotAwardable(qint32 prize);
    /// What keeps a contact of that number from being stored as a winner.
    static Obstacle WhyCannotWin(qint32 contact);

    enum class NotNow
    {
        None,
        NotYet,
        Over,
        WrongHour
    };
    /// Why a prize may not go out at this moment, by its dates and hours; the stock is not asked. The hours go by
    /// universal time, as they do in the list of what is available. No obstacle: the user may award it all the same.
    static NotNow WhyNotNow(const cPrize& prize);

    struct EarlierWin
    {
        qint32 PrizeReference = 0;
        Date WonDate; ///< Local time.
    };
    /// The contact's last win within EligibleDays. No obstacle either.
    std::optional<EarlierWin> RecentWin(qint32 contact) const;

    struct Result
    {
        Obstacle Why = Obstacle::None; ///< None when the award is stored.
        cPrizeWinnerPtr Winner;        ///< As stored.
    };
    /// Stores an award: the winner, the prize's count and the stamp, together or not at all, and never more winners
    /// than there are units. Shows no box.
    Result Award(qint32 prize, qint32 contact, const QString& notes = QString());

    /// Who awarded a prize may put that right; taking back what others awarded needs the right to manage prizes.
    bool MayTakeBack(const cPrizeWinner& winner) const;
    /// Deletes a winner and leaves his prize with the right count: a row that was never counted takes nothing off it.
    /// An absent winner counts as taken back. False when it could not be done (LastErrorNumber of the station);
    /// everything is as before then. The prize's event tells of it.
    bool TakeBack(qint32 winner);

    /// What stands now.
    AwardStanding Standing(qint32 prize);
    /// The same, and where a prize without a unit left counts fewer winners than are stored, puts that right first, so
    /// that nobody is offered a unit that is gone.
    AwardStanding Settle(qint32 prize);

private:
    cTolvaDatabase& Database_;
};
