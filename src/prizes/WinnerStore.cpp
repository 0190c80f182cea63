// SPDX-License-Identifier: Apache-2.0
#include "prizes/WinnerStore.h"

#include "common/GeneralHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/RowValues.h"
#include "database/StationContext.h"
#include "platform/directory/clsKVDirectory.h"
#include "prizes/PrizeStore.h"

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

cPrizeWinnerPtr WinnerStore::Get(qint32 reference)
{
    if (reference == 0 || !Station_.Database)
        return nullptr;
    const cPrizeWinnerPtr winner(new cPrizeWinner);
    bool isRead = false;
    PendingError pending;
    pending.Try([&] {
        const auto recordset =
            Station_.OpenSnapshot(QStringLiteral("SELECT * FROM [PrizeWinners] WHERE [Reference]=%1").arg(reference));
        isRead = recordset->RecordCount() > 0 && winner->ReadFromRecordSet(recordset.get());
    });
    Station_.LastError = pending;
    return isRead ? winner : nullptr;
}

bool WinnerStore::FillSlots(const cPrizePtr& prize)
{
    if (!prize || !Station_.Database)
        return false;
    qint32 number = 0;
    bool isThere = false;
    std::vector<cPrizeWinnerPtr> read;
    PendingError pending;
    // All is read before the prize is touched: one whose winners cannot be read stays as it was.
    const bool isRead = pending.Try([&] {
        const auto prizes = Station_.Database->OpenRecordset(PrizesTable, dao::dbOpenTable);
        prizes->SetIndex(MainIndex);
        prizes->Seek(dao::SeekComparison::Equal, {prize->Reference()});
        isThere = !prizes->NoMatch();
        if (!isThere)
            return;
        number = prizes->Collect(QStringLiteral("NumberWinners")).toInt();
        prizes->Close();
        const auto winners = Station_.OpenSnapshot(
            QStringLiteral("SELECT * FROM [PrizeWinners] WHERE [PrizeReference]=%1 ORDER BY [WonDate]")
                .arg(prize->Reference()));
        for (qint32 slot = 1; !winners->AtEOF() && slot <= number; ++slot, winners->MoveNext()) {
            read.emplace_back(new cPrizeWinner);
            read.back()->ReadFromRecordSet(winners.get());
        }
    });
    Station_.LastError = pending;
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

cPrizeWinnerPtr WinnerStore::MakeNew(const cPrizePtr& prize)
{
    if (!prize || prize->NumberWinners() >= prize->NumberSupplied())
        return nullptr;
    cPrizeWinnerPtr winner(new cPrizeWinner);
    winner->SetPrizeReference(prize->Reference());
    winner->SetAwardedByReference(Station_.CurrentUserReference());
    return winner;
}

bool WinnerStore::Save(const cPrizeWinnerPtr& winner)
{
    Station_.LastError = {};
    if (GeneralHelper::DebugMode() != 0) {
        WriteDebugLog(winner ? QStringLiteral("Started SavePrizeWinner Reference: %1 WinnerRef:%2")
                                   .arg(winner->Reference())
                                   .arg(winner->WinnerReference())
                             : QStringLiteral("Started SavePrizeWinner Reference: No PrizeWinner Object"),
                      DetailLevel);
    }
    const auto refuse = [this](const QString& problem, const QString& logLine) {
        ReportProblem(problem, 0, Station_.IsSilent);
        WriteDebugLog(logLine, DetailLevel);
        return false;
    };
    if (Station_.Information.Location.isEmpty()) {
        return refuse(QStringLiteral("saving a Prize because no Tolva Database has been opened"),
                      QStringLiteral("No Database File so exiting"));
    }
    if (!winner) {
        return refuse(QStringLiteral("saving a Prize Winner because no Prize Winner details were supplied to save"),
                      QStringLiteral("Exiting as no PrizeWinner Object"));
    }
    if (winner->PrizeReference() < 1)
        return false;
    WriteDebugLog(QStringLiteral("Find Prize %1").arg(winner->PrizeReference()), -1);
    // Whether a unit is left is read under the lock under which it is taken.
    std::optional<dao::Transaction> transaction;
    if (!BeginChange(transaction)) {
        WriteDebugLog(QStringLiteral("Couldn't save Prize Winner - ") + Station_.LastError.Description(), -1);
        return false;
    }
    const cPrizePtr prize = PrizeWithWinners(winner->PrizeReference());
    if (!prize) {
        transaction.reset();
        return refuse(QStringLiteral("saving a Prize Winner because the Prize cannot be found"),
                      QStringLiteral("Exit as prize cannot be found"));
    }
    // An edit takes no new unit.
    if (winner->Reference() == 0 && prize->NumberWinners() >= prize->NumberSupplied()) {
        transaction.reset();
        return refuse(QStringLiteral("saving a Prize Winner because the Prize has already been fully allocated"),
                      QStringLiteral("Exit as prize fully allocated"));
    }
    return Store(winner, prize, *transaction);
}

cPrizePtr WinnerStore::PrizeWithWinners(qint32 prizeReference)
{
    cPrizePtr prize = Prizes_.Get(prizeReference);
    if (prize && prize->NumberWinners() >= 1)
        FillSlots(prize);
    return prize;
}

/// Locks the station for a change of winners; false, with the reason kept, when that cannot be.
bool WinnerStore::BeginChange(std::optional<dao::Transaction>& transaction)
{
    PendingError pending;
    pending.Try([&] { transaction.emplace(Station_.OpenedDatabase()); });
    Station_.LastError = pending;
    return !pending;
}

/// The winner's row, then the prize's, in the transaction in which the prize was read, which ends here.
bool WinnerStore::Store(const cPrizeWinnerPtr& winner, const cPrizePtr& prize, dao::Transaction& transaction)
{
    const qint32 reference = winner->Reference();
    std::optional<BusyPointer> busy(std::in_place);
    PendingError pending;
    const auto recordset = Prizes_.OpenForSave(WinnersTable, pending);
    if (!recordset)
        return false;
    bool saved = winner->WriteToRecordSet(recordset.get(), pending, busy);
    if (saved) {
        saved = reference < 1 ? Count(winner, prize, transaction) : TakeWonDate(*winner, prize, transaction);
        // The row is not there after all: the next try is to make a new one.
        if (!saved)
            winner->SetReference(reference);
    } else {
        WriteDebugLog(QStringLiteral("Couldn't save Prize Winner - ") + pending.Description(), -1);
        Station_.LastError = pending;
    }
    recordset->Close();
    WriteDebugLog(QStringLiteral("Finished SavePrizeWinner"), DetailLevel);
    return saved;
}

bool WinnerStore::Count(const cPrizeWinnerPtr& winner, const cPrizePtr& prize, dao::Transaction& transaction)
{
    if (prize->AddPrizeWinner(winner))
        return Prizes_.Store(prize, transaction);
    // One with a number below 0, which takes no unit of a prize that has none left.
    PendingError pending;
    pending.Try([&] { transaction.Commit(); });
    Station_.LastError = pending;
    return !pending;
}

/// A changed winner's date becomes the prize's last one. Where another winner's is later, the object that was saved,
/// and neither row, takes that one: hosts show it.
bool WinnerStore::TakeWonDate(cPrizeWinner& winner, const cPrizePtr& prize, dao::Transaction& transaction)
{
    prize->SetLastWonDate(winner.WonDate());
    for (const cPrizeWinnerPtr& other : prize->PrizeWinners_) {
        if (other && other->Reference() != winner.Reference() && other->WonDate() > winner.WonDate())
            winner.SetWonDate(other->WonDate());
    }
    return Prizes_.Store(prize, transaction);
}

bool WinnerStore::Delete(qint32 reference)
{
    Station_.LastError = {};
    if (Station_.Information.Location.isEmpty() || reference <= 0)
        return false;
    PendingError pending;
    std::unique_ptr<dao::Recordset> recordset;
    bool isThere = false;
    qint32 winnerReference = 0;
    qint32 prizeReference = 0;
    pending.Try([&] {
        recordset = Station_.OpenedDatabase().OpenRecordset(WinnersTable, dao::dbOpenTable);
        recordset->SetIndex(MainIndex);
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        isThere = !recordset->NoMatch();
        if (isThere) {
            winnerReference = recordset->Collect(QStringLiteral("WinnerReference")).toInt();
            prizeReference = recordset->Collect(QStringLiteral("PrizeReference")).toInt();
        }
    });
    Station_.LastError = pending;
    if (pending)
        return false;
    if (!isThere)
        return true;
    const cPrizePtr prize = prizeReference > 0 ? Prizes_.Get(prizeReference) : nullptr;
    const QString text = LogText(winnerReference, prize.get());
    const QString title = QStringLiteral("Prize Winner Deleted");
    recordset->Close();
    // The prize that got its unit back is told, and whoever hears of it may destroy this object.
    const QPointer<WinnerStore> self(this);
    const bool isDeleted = DeleteStored(reference);
    if (self)
        Station_.LogEvent(auditPrizeWinnerDeleted, title, text, isDeleted ? 1 : 0);
    return isDeleted;
}

/// The winner's row and his prize's count, together or not at all.
bool WinnerStore::DeleteStored(qint32 reference)
{
    std::optional<dao::Transaction> transaction;
    if (!BeginChange(transaction))
        return false;
    qint32 prizeReference = 0;
    PendingError pending;
    pending.Try([&] {
        const auto recordset = Station_.OpenedDatabase().OpenRecordset(WinnersTable, dao::dbOpenTable);
        recordset->SetIndex(MainIndex);
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        if (recordset->NoMatch())
            return; // taken back elsewhere in this moment
        prizeReference = recordset->Collect(QStringLiteral("PrizeReference")).toInt();
        recordset->Delete();
    });
    Station_.LastError = pending;
    if (pending)
        return false;
    const cPrizePtr prize = prizeReference > 0 ? Prizes_.Get(prizeReference) : nullptr;
    if (prize) {
        prize->SetNumberWinners(prize->NumberWinners() - 1);
        return Prizes_.Store(prize, *transaction);
    }
    if (Station_.LastError)
        return false;
    pending.Try([&] { transaction->Commit(); });
    Station_.LastError = pending;
    return !pending;
}

qint32 WinnerStore::CountStored(qint32 prizeReference)
{
    qint32 number = -1;
    PendingError pending;
    pending.Try([&] {
        const auto rows = Station_.OpenSnapshot(
            QStringLiteral("SELECT COUNT(*) AS [Number] FROM [PrizeWinners] WHERE [PrizeReference]=%1")
                .arg(prizeReference));
        number = rows->Collect(QStringLiteral("Number")).toInt();
    });
    Station_.LastError = pending;
    return number;
}

bool WinnerStore::TakeStoredCount(qint32 prizeReference, Counting counting)
{
    std::optional<dao::Transaction> transaction;
    if (!BeginChange(transaction))
        return false;
    qint32 stored = 0;
    Date last;
    PendingError pending;
    pending.Try([&] {
        const auto rows = Station_.OpenSnapshot(
            QStringLiteral("SELECT [WonDate] FROM [PrizeWinners] WHERE [PrizeReference]=%1").arg(prizeReference));
        for (; !rows->AtEOF(); rows->MoveNext(), ++stored)
            last = std::max(last, RowValues::LocalDate(rows->Collect(QStringLiteral("WonDate"))));
    });
    Station_.LastError = pending;
    const cPrizePtr prize = pending ? nullptr : PrizeWithWinners(prizeReference);
    if (!prize)
        return false;
    if (prize->NumberWinners() == stored || (prize->NumberWinners() > stored && counting != Counting::MayLower))
        return true;
    // Whoever was not counted did not move the date either.
    if (prize->NumberWinners() < stored && last > prize->LastWonDate())
        prize->SetLastWonDate(last);
    prize->SetNumberWinners(stored);
    return Prizes_.Store(prize, *transaction);
}

/// "'Carla Count' from 'Two tickets'", as far as the directory and the prize are known.
QString WinnerStore::LogText(qint32 winnerReference, const cPrize* prize) const
{
    QString text;
    PendingError pending; // a directory that cannot be read leaves the name out
    pending.Try([&] {
        const clsKVContactPtr contact =
            Station_.Directory && winnerReference > 0 ? Station_.Directory->GetContact(winnerReference, 0, 0) : nullptr;
        if (contact)
            text = u'\'' + contact->Name + u'\'';
    });
    if (prize)
        text += QStringLiteral(" from '") + prize->Title() + u'\'';
    return text;
}
