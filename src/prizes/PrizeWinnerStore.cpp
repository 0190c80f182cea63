// The winner operations of cTolvaDatabase: who won which prize, and the rule that no prize has more winners than units.

#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/RowValues.h"
#include "database/cTolvaDatabase.h"
#include "platform/directory/clsKVDirectory.h"

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

/// Saves what change gives, which reads the prize anew each time, until no other program's write comes in between: the
/// winner is stored already, and his count must not be lost to an award made elsewhere. Whether it was saved; not when
/// change gives nothing.
template <typename Change>
bool SaveUntilUnhindered(cTolvaDatabase& database, Change change)
{
    constexpr int mostTries = 20;
    for (int tries = 1; tries <= mostTries; ++tries) {
        const cPrizePtr prize = change();
        if (!prize)
            return false;
        if (database.SavePrize(prize))
            return true;
        if (database.LastErrorNumber() != dao::errChangedByAnother)
            return false;
    }
    return false;
}
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
    const cPrizePtr prize = GetPrize(prizeWinner->PrizeReference(), true);
    if (!prize) {
        return refuse(QStringLiteral("saving a Prize Winner because the Prize cannot be found"),
                      QStringLiteral("Exit as prize cannot be found"));
    }
    // An edit takes no new unit.
    if (prizeWinner->Reference() == 0 && prize->NumberWinners() >= prize->NumberSupplied()) {
        return refuse(QStringLiteral("saving a Prize Winner because the Prize has already been fully allocated"),
                      QStringLiteral("Exit as prize fully allocated"));
    }
    const bool isNew = prizeWinner->Reference() < 1;
    std::optional<BusyPointer> busy(std::in_place);
    PendingError pending;
    const auto recordset = OpenForPrizeSave(WinnersTable, pending);
    if (!recordset)
        return false;
    const bool saved = prizeWinner->WriteToRecordSet(recordset.get(), pending, busy);
    if (!saved) {
        WriteDebugLog(QStringLiteral("Couldn't save Prize Winner - ") + pending.Description(), -1);
        KeepLastError(pending);
    } else if (isNew) {
        CountWinner(prizeWinner, *prize);
    } else {
        TakeWonDate(*prizeWinner, *prize);
    }
    recordset->Close();
    WriteDebugLog(QStringLiteral("Finished SavePrizeWinner"), DetailLevel);
    return saved;
}

/// The prize as it stands after one of its winners was stored, with the winners that were read before. Its count is the
/// row's by now: another computer may have counted a winner of its own in between, and that one must not be lost.
/// Nothing for a prize that is gone, which must not be stored again.
cPrizePtr cTolvaDatabase::PrizeByNow(qint32 reference, const cPrize& asRead)
{
    cPrizePtr prize = GetPrize(reference, false);
    if (!prize)
        return nullptr;
    for (qint32 slot = 1; slot <= static_cast<qint32>(asRead.PrizeWinners_.size()); ++slot)
        prize->PutIntoSlot(slot, asRead.PrizeWinners_[static_cast<std::size_t>(slot - 1)]);
    prize->SetWinnersRead(asRead.WinnersRead());
    return prize;
}

void cTolvaDatabase::CountWinner(const cPrizeWinnerPtr& winner, const cPrize& asRead)
{
    SaveUntilUnhindered(*this, [&]() -> cPrizePtr {
        const cPrizePtr prize = PrizeByNow(winner->PrizeReference(), asRead);
        return prize && prize->AddPrizeWinner(winner) ? prize : nullptr;
    });
}

/// A changed winner's date becomes the prize's last one, on the prize's row as it is by now. Where another winner's is
/// later, the object that was saved, and neither row, takes that one: hosts show it.
void cTolvaDatabase::TakeWonDate(cPrizeWinner& winner, const cPrize& asRead)
{
    const Date won = winner.WonDate();
    for (const cPrizeWinnerPtr& other : asRead.PrizeWinners_) {
        if (other && other->Reference() != winner.Reference() && other->WonDate() > winner.WonDate())
            winner.SetWonDate(other->WonDate());
    }
    SaveUntilUnhindered(*this, [&] {
        const cPrizePtr prize = PrizeByNow(winner.PrizeReference(), asRead);
        if (prize)
            prize->SetLastWonDate(won);
        return prize;
    });
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
    if (!pending.Try([&] { recordset->Delete(); })) {
        KeepLastError(pending);
        LogDatabaseEvent(auditPrizeWinnerDeleted, title, text, 0);
        return false;
    }
    recordset->Close();
    // Another computer may have counted a winner of its own since the prize was read, or deleted the prize.
    SaveUntilUnhindered(*this, [&] {
        const cPrizePtr byNow = prize ? GetPrize(prizeReference, false) : nullptr;
        if (byNow)
            byNow->SetNumberWinners(byNow->NumberWinners() - 1);
        return byNow;
    });
    LogDatabaseEvent(auditPrizeWinnerDeleted, title, text, 1);
    return true;
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
    bool isRight = false;
    const auto change = [&]() -> cPrizePtr {
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
        if (pending)
            return nullptr;
        const cPrizePtr prize = GetPrize(prizeReference, true);
        if (!prize)
            return nullptr;
        isRight = prize->NumberWinners() == stored || (prize->NumberWinners() > stored && !mayLower);
        if (isRight)
            return nullptr;
        // Whoever was not counted did not move the date either.
        if (prize->NumberWinners() < stored && last > prize->LastWonDate())
            prize->SetLastWonDate(last);
        prize->SetNumberWinners(stored);
        return prize;
    };
    return SaveUntilUnhindered(*this, change) || isRight;
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
