// The prize operations of cTolvaDatabase: fetching, saving, deleting, and the change stamp.

#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/SettingText.h"
#include "database/cTolvaDatabase.h"
#include "platform/directory/clsKVUser.h"

#include <QScopedValueRollback>

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

bool cTolvaDatabase::SavePrize(const cPrizePtr& prize)
{
    KeepLastError(PendingError());
    if (DebugMode() != 0) {
        WriteDebugLog(prize ? QStringLiteral("Started SavePrize Reference: %1 Prize:%2")
                                  .arg(QString::number(prize->Reference()), prize->Title())
                            : QStringLiteral("Started SavePrize Reference: No Prize Object"),
                      DetailLevel);
    }
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
    std::optional<BusyPointer> busy(std::in_place);
    PendingError pending;
    const auto recordset = OpenForPrizeSave(PrizesTable, pending);
    if (!recordset)
        return false;
    // Both change with the write.
    const bool wasEdited = prize->Edited();
    const bool isNew = prize->Reference() == 0;
    if (prize->AddedByReference() == 0)
        prize->SetAddedByReference(CurrentUserReference());
    const bool saved = prize->WriteToRecordSet(recordset.get(), pending, busy);
    const int kind = isNew ? auditPrizeAdded : auditPrizeEdited;
    const QString title = isNew ? QStringLiteral("Prize Added") : QStringLiteral("Prize Edited");
    if (saved) {
        WriteDebugLog(QStringLiteral("Setting LastPrizeFiled"), -1);
        const StampMove move = MoveLastChanged(LastChangedSetting);
        LogDatabaseEvent(kind, title, prize->Title(), 1);
        if (RaiseEvents_) {
            WriteDebugLog(QStringLiteral("Raising PrizeSaved Event"), -1);
            const QScopedValueRollback<StampMove> told(ToldPrizeMove_, move);
            Q_EMIT PrizeSaved(prize, wasEdited);
        }
    } else {
        WriteDebugLog(QStringLiteral("Couldn't save Prize - ") + pending.Description(), -1);
        const QString reason = pending ? QStringLiteral(" - ") + pending.Description() : QString();
        LogDatabaseEvent(kind, title, prize->Title() + reason, 0);
        KeepLastError(pending);
    }
    recordset->Close();
    WriteDebugLog(QStringLiteral("Finished SavePrize"), DetailLevel);
    return saved;
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
    const QString title = QStringLiteral("Prize Deleted");
    if (!pending.Try([&] { recordset->Delete(); })) {
        KeepLastError(pending);
        LogDatabaseEvent(auditPrizeDeleted, title, prize->Title(), 0);
        return false;
    }
    recordset->Close();
    DeleteWinnersOf(reference);
    LogDatabaseEvent(auditPrizeDeleted, title, prize->Title(), 1);
    if (RaiseEvents_)
        Q_EMIT PrizeDeleted(prize);
    return true;
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
