// SPDX-License-Identifier: Apache-2.0

// The prize operations of cTolvaDatabase: fetching, saving, deleting, and the change stamp.

#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/SettingText.h"
#include "database/cTolvaDatabase.h"
#include "database/watch/ToldMove.h"
#include "platform/directory/clsKVUser.h"

#include <optional>

namespace
{
const QString PrizesTable = QStringLiteral("Prizes");
const QString MainIndex = QStringLiteral("Main");
const QString LastChangedSetting = QStringLiteral("Prizes.LastChanged");
constexpr int DetailLevel = 5;

/// Kinds of the user log.
enum AuditKind
{
    auditPrizeAdded = 16,
    auditPrizeEdited = 17,
    auditPrizeDeleted = 18
};
} // namespace

Date cTolvaDatabase::LastPrizeChanged() const
{
    return StampDate(DatabaseSetting(LastChangedSetting, QString()));
}

void cTolvaDatabase::SetLastPrizeChanged(Date changeDate)
{
    SetDatabaseSetting(LastChangedSetting, StampText(changeDate), QString());
}

cPrizePtr cTolvaDatabase::GetPrize(qint32 prizeReference, bool getWinners)
{
    if (prizeReference == 0 || !Database_)
        return nullptr;
    auto prize = std::make_shared<cPrize>();
    bool isThere = false;
    PendingError pending;
    pending.Try([&] {
        const auto recordset = Database_->OpenRecordset(PrizesTable, dao::dbOpenTable);
        isThere = prize->ReadFromRecordSet(prizeReference, recordset.get());
    });
    KeepLastError(pending);
    if (!isThere)
        return nullptr;
    if (getWinners && prize->NumberWinners() >= 1)
        GetPrizeWinners(prize);
    return prize;
}

cPrizePtr cTolvaDatabase::GetPrize(dao::Recordset& row)
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

void cTolvaDatabase::LogStartOfSave(const cPrizePtr& prize)
{
    if (DebugMode() == 0)
        return;
    WriteDebugLog(prize ? QStringLiteral("Started SavePrize Reference: %1 Prize:%2")
                              .arg(QString::number(prize->Reference()), prize->Title())
                        : QStringLiteral("Started SavePrize Reference: No Prize Object"),
                  DetailLevel);
}

bool cTolvaDatabase::SavePrize(const cPrizePtr& prize)
{
    KeepLastError(PendingError());
    LogStartOfSave(prize);
    if (Location().isEmpty()) {
        ReportProblem(QStringLiteral("saving a Prize because no Tolva Database has been opened"), 0, SilentMode_);
        WriteDebugLog(QStringLiteral("Exiting as No Database File"), DetailLevel);
        return false;
    }
    if (!prize) {
        ReportProblem(QStringLiteral("saving a Prize because no Prize details were supplied to save"), 0, SilentMode_);
        WriteDebugLog(QStringLiteral("Exiting as no Prize Supplied"), DetailLevel);
        return false;
    }
    std::optional<dao::Transaction> transaction;
    PendingError pending;
    if (!pending.Try([&] { transaction.emplace(); })) {
        WriteDebugLog(QStringLiteral("Couldn't save Prize - ") + pending.Description(), -1);
        KeepLastError(pending);
        return false;
    }
    return StorePrize(prize, *transaction);
}

/// The row and the change stamp, and with them what the transaction holds already, together or not at all; then what
/// tells of it. Ends the transaction.
bool cTolvaDatabase::StorePrize(const cPrizePtr& prize, dao::Transaction& transaction)
{
    std::optional<BusyPointer> busy(std::in_place);
    PendingError pending;
    const auto recordset = OpenForPrizeSave(PrizesTable, pending);
    if (!recordset)
        return false;
    // Both change with the write.
    const bool wasEdited = prize->Edited();
    const qint32 reference = prize->Reference();
    if (prize->AddedByReference() == 0)
        prize->SetAddedByReference(CurrentUserReference());
    bool saved = prize->WriteToRecordSet(recordset.get(), pending, busy);
    if (saved) {
        WriteDebugLog(QStringLiteral("Setting LastPrizeFiled"), -1);
        saved = CommitWithStamp(transaction, LastChangedSetting, pending);
        // The row is not there after all: the next try is to make a new one.
        if (!saved)
            prize->SetReference(reference);
    }
    transaction.Rollback();
    TellOfPrize(prize, reference == 0, saved, wasEdited, pending);
    recordset->Close();
    WriteDebugLog(QStringLiteral("Finished SavePrize"), DetailLevel);
    return saved;
}

/// The entry in the user log and the event of a prize that was saved, or could not be.
void cTolvaDatabase::TellOfPrize(const cPrizePtr& prize, bool isNew, bool saved, bool wasEdited,
                                 const PendingError& pending)
{
    const int kind = isNew ? auditPrizeAdded : auditPrizeEdited;
    const QString title = isNew ? QStringLiteral("Prize Added") : QStringLiteral("Prize Edited");
    if (saved) {
        LogDatabaseEvent(kind, title, prize->Title(), 1);
        if (RaiseEvents_) {
            WriteDebugLog(QStringLiteral("Raising PrizeSaved Event"), -1);
            const ToldMove told(*this, ToldPrizeMove_, CommittedMove_);
            Q_EMIT PrizeSaved(prize, wasEdited);
        }
        return;
    }
    WriteDebugLog(QStringLiteral("Couldn't save Prize - ") + pending.Description(), -1);
    const QString reason = pending ? QStringLiteral(" - ") + pending.Description() : QString();
    LogDatabaseEvent(kind, title, prize->Title() + reason, 0);
    KeepLastError(pending);
}

/// Opens a table for a save, which ends here, with the reason kept, when it answers nothing. The log calls either table
/// Prizes.
std::unique_ptr<dao::Recordset> cTolvaDatabase::OpenForPrizeSave(const QString& table, PendingError& pending)
{
    WriteDebugLog(QStringLiteral("Opening Prizes table in database"), DetailLevel);
    std::unique_ptr<dao::Recordset> recordset;
    pending.Try([&] { recordset = OpenedDatabase().OpenRecordset(table, dao::dbOpenTable); });
    if (!recordset) {
        WriteDebugLog(QStringLiteral("Failed to open - ") + pending.Description(), DetailLevel);
        KeepLastError(pending);
    }
    return recordset;
}

qint32 cTolvaDatabase::CurrentUserReference() const
{
    const clsKVUser* user = CurrentUser();
    return user ? user->Reference() : 0;
}

bool cTolvaDatabase::DeletePrize(qint32 reference)
{
    KeepLastError(PendingError());
    if (Location().isEmpty() || reference <= 0)
        return false;
    const cPrizePtr prize = GetPrize(reference, false);
    if (!prize)
        return false;
    PendingError pending;
    bool isAllowed = false;
    std::unique_ptr<dao::Recordset> recordset;
    bool isThere = false;
    pending.Try([&] {
        const clsKVUser* user = CurrentUser();
        isAllowed = user && user->ManagePrizes();
        if (!isAllowed)
            return;
        recordset = OpenedDatabase().OpenRecordset(PrizesTable, dao::dbOpenTable);
        recordset->SetIndex(MainIndex);
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        isThere = !recordset->NoMatch();
    });
    KeepLastError(pending);
    if (!isAllowed || pending)
        return false;
    // Gone in this moment: nobody needs to hear of it from here.
    if (!isThere)
        return true;
    const bool isDeleted = DeleteStoredPrize(reference, *recordset, pending);
    LogDatabaseEvent(auditPrizeDeleted, QStringLiteral("Prize Deleted"), prize->Title(), isDeleted ? 1 : 0);
    if (isDeleted && RaiseEvents_)
        Q_EMIT PrizeDeleted(prize);
    return isDeleted;
}

/// The row on which prizes stands, then the prize's winners, and the stamp where it is wanted, together or not at all.
bool cTolvaDatabase::DeleteStoredPrize(qint32 reference, dao::Recordset& prizes, PendingError& pending)
{
    bool isDeleted = false;
    pending.Try([&] {
        dao::Transaction transaction;
        prizes.Delete();
        prizes.Close();
        DeleteWinnersOf(reference);
        if (StampsEveryChange_)
            isDeleted = CommitWithStamp(transaction, LastChangedSetting, pending);
        else
            transaction.Commit();
        isDeleted = !pending;
    });
    // The failure of a winner stands behind that of the commit, if both failed, and is the one to tell.
    if (!isDeleted && LastErrorNumber() == 0)
        KeepLastError(pending);
    return isDeleted;
}

/// Goes on after a winner that cannot be deleted: the prize is gone, and what fails is kept as the last error.
void cTolvaDatabase::DeleteWinnersOf(qint32 prizeReference)
{
    PendingError pending;
    pending.Try([&] {
        const auto winners = OpenedDatabase().OpenRecordset(
            QStringLiteral("SELECT * FROM [PrizeWinners] WHERE [PrizeReference]=%1").arg(prizeReference));
        for (; !winners->AtEOF(); winners->MoveNext())
            pending.Try([&] { winners->Delete(); });
        winners->Close();
    });
    KeepLastError(pending);
}
