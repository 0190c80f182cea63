// SPDX-License-Identifier: Apache-2.0
#include "prizes/PrizeStore.h"

#include "common/GeneralHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/SettingsStore.h"
#include "database/StationContext.h"
#include "database/watch/ToldMove.h"
#include "platform/directory/clsKVUser.h"

#include <optional>

namespace
{
const QString PrizesTable = QStringLiteral("Prizes");
const QString MainIndex = QStringLiteral("Main");
constexpr int DetailLevel = 5;

/// Kinds of the user log.
enum AuditKind
{
    auditPrizeAdded = 16,
    auditPrizeEdited = 17,
    auditPrizeDeleted = 18
};
} // namespace

Date PrizeStore::LastChanged() const
{
    return Settings_.Stamp(StationSettings::PrizesLastChanged);
}

void PrizeStore::SetLastChanged(Date changeDate)
{
    Settings_.SetStamp(StationSettings::PrizesLastChanged, changeDate);
}

cPrizePtr PrizeStore::Get(qint32 prizeReference)
{
    if (prizeReference == 0 || !Station_.Database)
        return nullptr;
    auto prize = std::make_shared<cPrize>();
    bool isThere = false;
    PendingError pending;
    pending.Try([&] {
        const auto recordset = Station_.Database->OpenRecordset(PrizesTable, dao::dbOpenTable);
        isThere = prize->ReadFromRecordSet(prizeReference, recordset.get());
    });
    Station_.LastError = pending;
    return isThere ? prize : nullptr;
}

cPrizePtr PrizeStore::Get(dao::Recordset& row)
{
    auto prize = std::make_shared<cPrize>();
    try {
        return prize->ReadFromRecordSet(0, &row) ? prize : nullptr;
    } catch (const dao::Error& error) {
        if (error.Number() == dao::errRecordDeleted)
            return nullptr;
        throw;
    }
}

void PrizeStore::LogStartOfSave(const cPrizePtr& prize)
{
    if (GeneralHelper::DebugMode() == 0)
        return;
    WriteDebugLog(prize ? QStringLiteral("Started SavePrize Reference: %1 Prize:%2")
                              .arg(QString::number(prize->Reference()), prize->Title())
                        : QStringLiteral("Started SavePrize Reference: No Prize Object"),
                  DetailLevel);
}

bool PrizeStore::Save(const cPrizePtr& prize)
{
    Station_.LastError = {};
    LogStartOfSave(prize);
    if (Station_.Information.Location.isEmpty()) {
        ReportProblem(QStringLiteral("saving a Prize because no Tolva Database has been opened"), 0, Station_.IsSilent);
        WriteDebugLog(QStringLiteral("Exiting as No Database File"), DetailLevel);
        return false;
    }
    if (!prize) {
        ReportProblem(QStringLiteral("saving a Prize because no Prize details were supplied to save"), 0,
                      Station_.IsSilent);
        WriteDebugLog(QStringLiteral("Exiting as no Prize Supplied"), DetailLevel);
        return false;
    }
    std::optional<dao::Transaction> transaction;
    PendingError pending;
    if (!pending.Try([&] { transaction.emplace(); })) {
        WriteDebugLog(QStringLiteral("Couldn't save Prize - ") + pending.Description(), -1);
        Station_.LastError = pending;
        return false;
    }
    return StoreRow(prize, *transaction);
}

bool PrizeStore::Store(const cPrizePtr& prize, dao::Transaction& transaction)
{
    LogStartOfSave(prize);
    return StoreRow(prize, transaction);
}

bool PrizeStore::StoreRow(const cPrizePtr& prize, dao::Transaction& transaction)
{
    std::optional<BusyPointer> busy(std::in_place);
    PendingError pending;
    const auto recordset = OpenForSave(PrizesTable, pending);
    if (!recordset)
        return false;
    // Both change with the write.
    const bool wasEdited = prize->Edited();
    const qint32 reference = prize->Reference();
    if (prize->AddedByReference() == 0)
        prize->SetAddedByReference(Station_.CurrentUserReference());
    bool saved = prize->WriteToRecordSet(recordset.get(), pending, busy);
    if (saved) {
        WriteDebugLog(QStringLiteral("Setting LastPrizeFiled"), -1);
        saved = Settings_.CommitWithStamp(transaction, StationSettings::PrizesLastChanged, pending, CommittedMove_);
        // The row is not there after all: the next try is to make a new one.
        if (!saved)
            prize->SetReference(reference);
    }
    transaction.Rollback();
    Tell(prize, reference == 0, saved, wasEdited, pending);
    recordset->Close();
    WriteDebugLog(QStringLiteral("Finished SavePrize"), DetailLevel);
    return saved;
}

/// The entry in the user log and the event of a prize that was saved, or could not be.
void PrizeStore::Tell(const cPrizePtr& prize, bool isNew, bool saved, bool wasEdited, const PendingError& pending)
{
    const int kind = isNew ? auditPrizeAdded : auditPrizeEdited;
    const QString title = isNew ? QStringLiteral("Prize Added") : QStringLiteral("Prize Edited");
    if (saved) {
        Station_.LogEvent(kind, title, prize->Title(), 1);
        if (Station_.RaisesEvents) {
            WriteDebugLog(QStringLiteral("Raising PrizeSaved Event"), -1);
            const ToldMove told(*this, ToldMove_, CommittedMove_);
            Q_EMIT PrizeSaved(prize, wasEdited);
        }
        return;
    }
    WriteDebugLog(QStringLiteral("Couldn't save Prize - ") + pending.Description(), -1);
    const QString reason = pending ? QStringLiteral(" - ") + pending.Description() : QString();
    Station_.LogEvent(kind, title, prize->Title() + reason, 0);
    Station_.LastError = pending;
}

/// The log calls either table Prizes.
std::unique_ptr<dao::Recordset> PrizeStore::OpenForSave(const QString& table, PendingError& pending)
{
    WriteDebugLog(QStringLiteral("Opening Prizes table in database"), DetailLevel);
    std::unique_ptr<dao::Recordset> recordset;
    pending.Try([&] { recordset = Station_.OpenedDatabase().OpenRecordset(table, dao::dbOpenTable); });
    if (!recordset) {
        WriteDebugLog(QStringLiteral("Failed to open - ") + pending.Description(), DetailLevel);
        Station_.LastError = pending;
    }
    return recordset;
}

bool PrizeStore::Delete(qint32 reference)
{
    Station_.LastError = {};
    if (Station_.Information.Location.isEmpty() || reference <= 0)
        return false;
    const cPrizePtr prize = Get(reference);
    if (!prize)
        return false;
    PendingError pending;
    bool isAllowed = false;
    std::unique_ptr<dao::Recordset> recordset;
    bool isThere = false;
    pending.Try([&] {
        const clsKVUser* user = Station_.CurrentUser();
        isAllowed = user && user->ManagePrizes();
        if (!isAllowed)
            return;
        recordset = Station_.OpenedDatabase().OpenRecordset(PrizesTable, dao::dbOpenTable);
        recordset->SetIndex(MainIndex);
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        isThere = !recordset->NoMatch();
    });
    Station_.LastError = pending;
    if (!isAllowed || pending)
        return false;
    // Gone in this moment: nobody needs to hear of it from here.
    if (!isThere)
        return true;
    const bool isDeleted = DeleteStored(reference, *recordset, pending);
    Station_.LogEvent(auditPrizeDeleted, QStringLiteral("Prize Deleted"), prize->Title(), isDeleted ? 1 : 0);
    if (isDeleted && Station_.RaisesEvents)
        Q_EMIT PrizeDeleted(prize);
    return isDeleted;
}

/// The row on which prizes stands, then the prize's winners, and the stamp where it is wanted, together or not at all.
bool PrizeStore::DeleteStored(qint32 reference, dao::Recordset& prizes, PendingError& pending)
{
    bool isDeleted = false;
    pending.Try([&] {
        dao::Transaction transaction;
        prizes.Delete();
        prizes.Close();
        DeleteWinnersOf(reference);
        if (Station_.StampsEveryChange)
            isDeleted =
                Settings_.CommitWithStamp(transaction, StationSettings::PrizesLastChanged, pending, CommittedMove_);
        else
            transaction.Commit();
        isDeleted = !pending;
    });
    // The failure of a winner stands behind that of the commit, if both failed, and is the one to tell.
    if (!isDeleted && Station_.LastError.Number() == 0)
        Station_.LastError = pending;
    return isDeleted;
}

/// Goes on after a winner that cannot be deleted: the prize is gone, and what fails is kept as the last error.
void PrizeStore::DeleteWinnersOf(qint32 prizeReference)
{
    PendingError pending;
    pending.Try([&] {
        const auto winners = Station_.OpenedDatabase().OpenRecordset(
            QStringLiteral("SELECT * FROM [PrizeWinners] WHERE [PrizeReference]=%1").arg(prizeReference));
        for (; !winners->AtEOF(); winners->MoveNext())
            pending.Try([&] { winners->Delete(); });
        winners->Close();
    });
    Station_.LastError = pending;
}
