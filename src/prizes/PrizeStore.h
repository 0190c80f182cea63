// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/watch/ChangeStamp.h"
#include "platform/records/Transaction.h"
#include "prizes/cPrize.h"

class PendingError;
class SettingsStore;
class StationContext;

/// The prizes of a station: reading, storing and deleting their rows, with the change stamp, the user log and the
/// events. Owned by cTolvaDatabase, which passes its events on; over its context and settings, which outlive it.
/// Whoever hears of an event may destroy the station.
class PrizeStore : public QObject
{
    Q_OBJECT

public:
    PrizeStore(StationContext& station, SettingsStore& settings) : Station_(station), Settings_(settings) {}

    /// As cTolvaDatabase::GetPrize, without winners.
    cPrizePtr Get(qint32 prizeReference);
    static cPrizePtr Get(dao::Recordset& row);
    /// As cTolvaDatabase::SavePrize.
    bool Save(const cPrizePtr& prize);
    /// As cTolvaDatabase::DeletePrize.
    bool Delete(qint32 reference);

    Date LastChanged() const;
    void SetLastChanged(Date changeDate);
    /// How the save that PrizeSaved tells of moved the stamp; of nothing outside the event.
    const StampMove& ToldStampMove() const { return ToldMove_; }

    /// The row and the change stamp, and with them what the transaction holds already, together or not at all; then
    /// what tells of it. Ends the transaction.
    bool Store(const cPrizePtr& prize, dao::Transaction& transaction);
    /// Opens a table for a save of a prize or a winner, which ends here, with the reason kept, when it answers nothing.
    std::unique_ptr<dao::Recordset> OpenForSave(const QString& table, PendingError& pending);

Q_SIGNALS:
    /// As cTolvaDatabase's, while the host wants events.
    void PrizeSaved(const cPrizePtr& Prize, bool Edited);
    void PrizeDeleted(const cPrizePtr& Prize);

private:
    static void LogStartOfSave(const cPrizePtr& prize);
    bool StoreRow(const cPrizePtr& prize, dao::Transaction& transaction);
    void Tell(const cPrizePtr& prize, bool isNew, bool saved, bool wasEdited, const PendingError& pending);
    bool DeleteStored(qint32 reference, dao::Recordset& prizes, PendingError& pending);
    void DeleteWinnersOf(qint32 prizeReference);

    StationContext& Station_;
    SettingsStore& Settings_;
    StampMove CommittedMove_; ///< Of the last commit.
    StampMove ToldMove_;
};
