// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Transaction.h"
#include "prizes/cPrize.h"

#include <optional>

class PrizeStore;
class StationContext;

/// The winners of a station's prizes: who won which, and the rule that no prize has more winners than units. Each
/// change of a winner changes his prize, whose store tells of it. Owned by cTolvaDatabase, over its context and prizes,
/// which outlive it.
class WinnerStore : public QObject
{
    Q_OBJECT

public:
    WinnerStore(StationContext& station, PrizeStore& prizes) : Station_(station), Prizes_(prizes) {}

    /// As cTolvaDatabase::GetPrizeWinner.
    cPrizeWinnerPtr Get(qint32 reference);
    /// As cTolvaDatabase::GetPrize with its winners.
    cPrizePtr PrizeWithWinners(qint32 prizeReference);
    /// As cTolvaDatabase::GetPrizeWinners.
    bool FillSlots(const cPrizePtr& prize);
    /// As cTolvaDatabase::GetNewPrizeWinner.
    cPrizeWinnerPtr MakeNew(const cPrizePtr& prize);
    /// As cTolvaDatabase::SavePrizeWinner.
    bool Save(const cPrizeWinnerPtr& winner);
    /// As cTolvaDatabase::DeletePrizeWinner.
    bool Delete(qint32 reference);

    /// As cTolvaDatabase::StoredWinners.
    qint32 CountStored(qint32 prizeReference);
    enum class Counting
    {
        MayRaise, ///< As cTolvaDatabase::CountStoredWinners.
        MayLower  ///< As cTolvaDatabase::RecountWinners.
    };
    bool TakeStoredCount(qint32 prizeReference, Counting counting);

private:
    bool BeginChange(std::optional<dao::Transaction>& transaction);
    bool Store(const cPrizeWinnerPtr& winner, const cPrizePtr& prize, dao::Transaction& transaction);
    bool Count(const cPrizeWinnerPtr& winner, const cPrizePtr& prize, dao::Transaction& transaction);
    bool TakeWonDate(cPrizeWinner& winner, const cPrizePtr& prize, dao::Transaction& transaction);
    bool DeleteStored(qint32 reference);
    QString LogText(qint32 winnerReference, const cPrize* prize) const;

    StationContext& Station_;
    PrizeStore& Prizes_;
};
