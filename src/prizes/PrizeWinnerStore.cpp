// SPDX-License-Identifier: Apache-2.0

// The winner operations of cTolvaDatabase: who won which prize, and the rule that no prize has more winners than units.

#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/RowValues.h"
#include "database/cTolvaDatabase.h"
#include "platform/directory/clsKVDirectory.h"

#include <QPointer>

#include <algorithm>
#include <optional>
#include <vector>

namespace
{
const QString PrizesTable = QStringLiteral("Prizes");
const QString WinnersTable = QStringLiteral("PrizeWinners");
const QString MainIndex = QStringLiteral("Main");
constexpr int DetailLevel = 5;
constexpr int auditPrizeWinnerDeleted = 28; // kind of the user log
} // namespace

cPrizeWinnerPtr cTolvaDatabase::GetPrizeWinner(qint32 reference)
{
    if (reference == 0 || !Database_)
        return nullptr;
    const cPrizeWinnerPtr winner(new cPrizeWinner);
    bool isRead = false;
    PendingError pending;
    pending.Try([&] {
        const auto recordset =
            OpenSnapshot(QStringLiteral("SELECT * FROM [PrizeWinners] WHERE [Reference]=%1").arg(reference));
        isRead = recordset->RecordCount() > 0 && winner->ReadFromRecordSet(recordset.get());
    });
    KeepLastError(pending);
    return isRead ? winner : nullptr;
}

bool cTolvaDatabase::GetPrizeWinners(const cPrizePtr& prize)
{
    if (!prize || !Database_)
        return false;
    qint32 number = 0;
    bool isThere = false;
    std::vector<cPrizeWinnerPtr> read;
    PendingError pending;
    // All is read before the prize is touched: one whose winners cannot be read stays as it was.
    const bool isRead = pending.Try([&] {
        const auto prizes = Database_->OpenRecordset(PrizesTable, dao::dbOpenTable);
        prizes->SetIndex(MainIndex);
        prizes->Seek(dao::SeekComparison::Equal, {prize->Reference()});
        isThere = !prizes->NoMatch();
        if (!isThere)
            return;
        number = prizes->Collect(QStringLiteral("NumberWinners")).toInt();
        prizes->Close();
        const auto winners =
            OpenSnapshot(QStringLiteral("SELECT * FROM [PrizeWinners] WHERE [PrizeReference]=%1 ORDER BY [WonDate]")
                             .arg(prize->Reference()));
        for (qint32 slot = 1; !winners->AtEOF() && slot <= number; ++slot, winners->MoveNext()) {
            read.emplace_back(new cPrizeWinner);
            read.back()->ReadFromRecordSet(winners.get());
        }
    });
    KeepLastError(pending);
    if (!isThere || !isRead)
        return false;
    const bool wasEdited = prize->Edited();
    prize->SetRaiseEvents(false);
    prize->SetNumberWinners(0); // empties the slots
    prize->SetNumberWinners(number);
    for (qint32 slot = 1; slot <= static_cast<qint32>(read.size()); ++slot)
        prize->PutIntoSlot(slot, read[static_cast<std::size_t>(slot - 1)]);
    prize->SetWinnersRead(true);
    prize->SetEdited(wasEdited);
    prize->SetRaiseEvents(true);
    return true;
}

cPrizeWinnerPtr cTolvaDatabase::GetNewPrizeWinner(const cPrizePtr& prize)
{
    if (!prize || prize->NumberWinners() >= prize->NumberSupplied())
        return nullptr;
    cPrizeWinnerPtr winner(new cPrizeWinner);
    winner->SetPrizeReference(prize->Reference());
    winner->SetAwardedByReference(CurrentUserReference());
    return winner;
}

bool cTolvaDatabase::SavePrizeWinner(const cPrizeWinnerPtr& prizeWinner)
{
    KeepLastError(PendingError());
    if (DebugMode() != 0) {
        WriteDebugLog(prizeWinner ? QStringLiteral("Started SavePrizeWinner Reference: %1 WinnerRef:%2")
                                        .arg(prizeWinner->Reference())
                                        .arg(prizeWinner->WinnerReference())
                                  : QStringLiteral("Started SavePrizeWinner Reference: No PrizeWinner Object"),
                      DetailLevel);
    }
    const auto refuse = [this](const QString& problem, const QString& logLine) {
        ReportProblem(problem, 0, SilentMode_);
        WriteDebugLog(logLine, DetailLevel);
        return false;
    };
    if (Location().isEmpty()) {
        return refuse(QStringLiteral("saving a Prize because no Tolva Database has been opened"),
                      QStringLiteral("No Database File so exiting"));
    }
    if (!prizeWinner) {
        return refuse(QStringLiteral("saving a Prize Winner because no Prize Winner details were supplied to save"),
                      QStringLiteral("Exiting as no PrizeWinner Object"));
    }
    if (prizeWinner->PrizeReference() < 1)
        return false;
    WriteDebugLog(QStringLiteral("Find Prize %1").arg(prizeWinner->PrizeReference()), -1);
    // Whether a unit is left is read under the lock under which it is taken.
    std::optional<dao::Transaction> transaction;
    if (!BeginWinnerChange(transaction)) {
        WriteDebugLog(QStringLiteral("Couldn't save Prize Winner - ") + LastErrorDescription(), -1);
        return false;
    }
    const cPrizePtr prize = GetPrize(prizeWinner->PrizeReference(), true);
    if (!prize) {
        transaction.reset();
        return refuse(QStringLiteral("saving a Prize Winner because the Prize cannot be found"),
                      QStringLiteral("Exit as prize cannot be found"));
    }
    // An edit takes no new unit.
    if (prizeWinner->Reference() == 0 && prize->NumberWinners() >= prize->NumberSupplied()) {
        transaction.reset();
        return refuse(QStringLiteral("saving a Prize Winner because the Prize has already been fully allocated"),
                      QStringLiteral("Exit as prize fully allocated"));
    }
    return StorePrizeWinner(prizeWinner, prize, *transaction);
}

/// Locks the station for a change of winners; false, with the reason kept, when that cannot be.
bool cTolvaDatabase::BeginWinnerChange(std::optional<dao::Transaction>& transaction)
{
    PendingError pending;
    pending.Try([&] { transaction.emplace(OpenedDatabase()); });
    KeepLastError(pending);
    return !pending;
}

/// The winner's row, then the prize's, in the transaction in which the prize was read, which ends here.
bool cTolvaDatabase::StorePrizeWinner(const cPrizeWinnerPtr& winner, const cPrizePtr& prize,
                                      dao::Transaction& transaction)
{
    const qint32 reference = winner->Reference();
    std::optional<BusyPointer> busy(std::in_place);
    PendingError pending;
    const auto recordset = OpenForPrizeSave(WinnersTable, pending);
    if (!recordset)
        return false;
    bool saved = winner->WriteToRecordSet(recordset.get(), pending, busy);
    if (saved) {
        saved = reference < 1 ? CountWinner(winner, prize, transaction) : TakeWonDate(*winner, prize, transaction);
        // The row is not there after all: the next try is to make a new one.
        if (!saved)
            winner->SetReference(reference);
    } else {
        WriteDebugLog(QStringLiteral("Couldn't save Prize Winner - ") + pending.Description(), -1);
        KeepLastError(pending);
    }
    recordset->Close();
    WriteDebugLog(QStringLiteral("Finished SavePrizeWinner"), DetailLevel);
    return saved;
}

bool cTolvaDatabase::CountWinner(const cPrizeWinnerPtr& winner, const cPrizePtr& prize, dao::Transaction& transaction)
{
    if (prize->AddPrizeWinner(winner)) {
        LogStartOfSave(prize);
        return StorePrize(prize, transaction);
    }
    // One with a number below 0, which takes no unit of a prize that has none left.
    PendingError pending;
    pending.Try([&] { transaction.Commit(); });
    KeepLastError(pending);
    return !pending;
}

/// A changed winner's date becomes the prize's last one. Where another winner's is later, the object that was saved,
/// and neither row, takes that one: hosts show it.
bool cTolvaDatabase::TakeWonDate(cPrizeWinner& winner, const cPrizePtr& prize, dao::Transaction& transaction)
{
    prize->SetLastWonDate(winner.WonDate());
    for (const cPrizeWinnerPtr& other : prize->PrizeWinners_) {
        if (other && other->Reference() != winner.Reference() && other->WonDate() > winner.WonDate())
            winner.SetWonDate(other->WonDate());
    }
    LogStartOfSave(prize);
    return StorePrize(prize, transaction);
}

bool cTolvaDatabase::DeletePrizeWinner(qint32 reference)
{
    KeepLastError(PendingError());
    if (Location().isEmpty() || reference <= 0)
        return false;
    PendingError pending;
    std::unique_ptr<dao::Recordset> recordset;
    bool isThere = false;
    qint32 winnerReference = 0;
    qint32 prizeReference = 0;
    pending.Try([&] {
        recordset = OpenedDatabase().OpenRecordset(WinnersTable, dao::dbOpenTable);
        recordset->SetIndex(MainIndex);
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        isThere = !recordset->NoMatch();
        if (isThere) {
            winnerReference = recordset->Collect(QStringLiteral("WinnerReference")).toInt();
            prizeReference = recordset->Collect(QStringLiteral("PrizeReference")).toInt();
        }
    });
    KeepLastError(pending);
    if (pending)
        return false;
    if (!isThere)
        return true;
    const cPrizePtr prize = prizeReference > 0 ? GetPrize(prizeReference, false) : nullptr;
    const QString text = WinnerLogText(winnerReference, prize.get());
    const QString title = QStringLiteral("Prize Winner Deleted");
    recordset->Close();
    // The prize that got its unit back is told, and whoever hears of it may destroy this object.
    const QPointer<cTolvaDatabase> self(this);
    const bool isDeleted = DeleteStoredWinner(reference);
    if (self)
        LogDatabaseEvent(auditPrizeWinnerDeleted, title, text, isDeleted ? 1 : 0);
    return isDeleted;
}

/// The winner's row and his prize's count, together or not at all.
bool cTolvaDatabase::DeleteStoredWinner(qint32 reference)
{
    std::optional<dao::Transaction> transaction;
    if (!BeginWinnerChange(transaction))
        return false;
    qint32 prizeReference = 0;
    PendingError pending;
    pending.Try([&] {
        const auto recordset = OpenedDatabase().OpenRecordset(WinnersTable, dao::dbOpenTable);
        recordset->SetIndex(MainIndex);
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        if (recordset->NoMatch())
            return; // taken back elsewhere in this moment
        prizeReference = recordset->Collect(QStringLiteral("PrizeReference")).toInt();
        recordset->Delete();
    });
    KeepLastError(pending);
    if (pending)
        return false;
    const cPrizePtr prize = prizeReference > 0 ? GetPrize(prizeReference, false) : nullptr;
    if (prize) {
        prize->SetNumberWinners(prize->NumberWinners() - 1);
        LogStartOfSave(prize);
        return StorePrize(prize, *transaction);
    }
    if (LastErrorNumber() != 0)
        return false;
    pending.Try([&] { transaction->Commit(); });
    KeepLastError(pending);
    return !pending;
}

qint32 cTolvaDatabase::StoredWinners(qint32 prizeReference)
{
    qint32 number = -1;
    PendingError pending;
    pending.Try([&] {
        const auto rows =
            OpenSnapshot(QStringLiteral("SELECT COUNT(*) AS [Number] FROM [PrizeWinners] WHERE [PrizeReference]=%1")
                             .arg(prizeReference));
        number = rows->Collect(QStringLiteral("Number")).toInt();
    });
    KeepLastError(pending);
    return number;
}

bool cTolvaDatabase::CountStoredWinners(qint32 prizeReference)
{
    return TakeStoredCount(prizeReference, false);
}

bool cTolvaDatabase::RecountWinners(qint32 prizeReference)
{
    return TakeStoredCount(prizeReference, true);
}

bool cTolvaDatabase::TakeStoredCount(qint32 prizeReference, bool mayLower)
{
    std::optional<dao::Transaction> transaction;
    if (!BeginWinnerChange(transaction))
        return false;
    qint32 stored = 0;
    Date last;
    PendingError pending;
    pending.Try([&] {
        const auto rows = OpenSnapshot(
            QStringLiteral("SELECT [WonDate] FROM [PrizeWinners] WHERE [PrizeReference]=%1").arg(prizeReference));
        for (; !rows->AtEOF(); rows->MoveNext(), ++stored)
            last = std::max(last, RowValues::LocalDate(rows->Collect(QStringLiteral("WonDate"))));
    });
    KeepLastError(pending);
    const cPrizePtr prize = pending ? nullptr : GetPrize(prizeReference, true);
    if (!prize)
        return false;
    if (prize->NumberWinners() == stored || (prize->NumberWinners() > stored && !mayLower))
        return true;
    // Whoever was not counted did not move the date either.
    if (prize->NumberWinners() < stored && last > prize->LastWonDate())
        prize->SetLastWonDate(last);
    prize->SetNumberWinners(stored);
    LogStartOfSave(prize);
    return StorePrize(prize, *transaction);
}

/// "'Carla Count' from 'Two tickets'", as far as the directory and the prize are known.
QString cTolvaDatabase::WinnerLogText(qint32 winnerReference, const cPrize* prize) const
{
    QString text;
    PendingError pending; // a directory that cannot be read leaves the name out
    pending.Try([&] {
        const clsKVContactPtr contact =
            DirectoryDatabase_ && winnerReference > 0 ? DirectoryDatabase_->GetContact(winnerReference, 0, 0) : nullptr;
        if (contact)
            text = u'\'' + contact->Name + u'\'';
    });
    if (prize)
        text += QStringLiteral(" from '") + prize->Title() + u'\'';
    return text;
}
