// SPDX-License-Identifier: Apache-2.0

// Awarding prizes: the allocation rule, the counts and the slots.

#include "core/prizes/PrizeTest.h"

#include <sqlite3.h>

namespace
{
const QString Winners = QStringLiteral("PrizeWinners");
const QString FullyAllocated =
    QStringLiteral("There was a problem saving a Prize Winner because the Prize has already been fully allocated");

/// Something happens on another computer while a name is looked up.
class MeddlingDirectory : public ContactDirectory
{
public:
    MeddlingDirectory(const FakeDirectory& directory, std::function<void()> meddle)
        : ContactDirectory(directory), Meddle_(std::move(meddle))
    {
    }
    clsKVContactPtr GetContact(qint32 reference, int sort, int part) const override
    {
        Meddle_();
        return ContactDirectory::GetContact(reference, sort, part);
    }

private:
    std::function<void()> Meddle_;
};

class WinnerStoreTest : public PrizeTest
{
protected:
    void TearDown() override
    {
        Second_.reset();
        PrizeTest::TearDown();
    }
    /// Another computer that has the station open.
    cTolvaDatabase& Second()
    {
        if (!Second_) {
            Second_ = std::make_unique<cTolvaDatabase>();
            Second_->SetDirectoryDatabase(&Contacts);
            Second_->SetMakesAutomaticBackups(false);
            EXPECT_EQ(Second_->OpenTolvaDatabase(Folder.path()), 0);
        }
        return *Second_;
    }
    void AwardElsewhere(qint32 prize)
    {
        const cPrizeWinnerPtr theirs = Second().GetNewPrizeWinner(Second().GetPrize(prize, false));
        ASSERT_NE(theirs, nullptr);
        theirs->SetWinnerReference(12);
        EXPECT_TRUE(Second().SavePrizeWinner(theirs));
    }
    /// Whether another computer could write to the station in this moment.
    bool MayOthersWrite() const
    {
        sqlite3* file = nullptr;
        EXPECT_EQ(sqlite3_open(FileName().toUtf8().constData(), &file), SQLITE_OK);
        const int code = sqlite3_exec(file, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        EXPECT_TRUE(code == SQLITE_OK || code == SQLITE_BUSY) << code;
        sqlite3_close(file);
        return code == SQLITE_OK;
    }
    qint32 Counted(qint32 prize) const { return StoredPrize(prize, QStringLiteral("NumberWinners")).toInt(); }
    Date LastWon(qint32 prize) { return Station->GetPrize(prize, false)->LastWonDate(); }
    cPrizeWinnerPtr NewWinner(qint32 prize, qint32 contact = 11)
    {
        const cPrizeWinnerPtr winner = Station->GetNewPrizeWinner(Station->GetPrize(prize, false));
        if (winner)
            winner->SetWinnerReference(contact);
        return winner;
    }

private:
    std::unique_ptr<cTolvaDatabase> Second_;
};
} // namespace

TEST_F(WinnerStoreTest, ANewWinnerIsBlankAndNotStored)
{
    const qint32 prize = SaveNewPrize();
    const cPrizeWinnerPtr winner = Station->GetNewPrizeWinner(Station->GetPrize(prize, false));
    ASSERT_NE(winner, nullptr);
    EXPECT_EQ(winner->Reference(), 0);
    EXPECT_EQ(winner->PrizeReference(), prize);
    EXPECT_EQ(winner->AwardedByReference(), 7);
    EXPECT_EQ(winner->WinnerReference(), 0);
    EXPECT_EQ(winner->SentByReference(), 0);
    EXPECT_EQ(winner->WonDate(), Date());
    EXPECT_EQ(winner->SentDateString(), QString());
    EXPECT_EQ(WinnerRows(), 0);
    EXPECT_EQ(Station->GetNewPrizeWinner(nullptr), nullptr);
    EXPECT_EQ(Station->GetNewPrizeWinner(MakePrize(QStringLiteral("None"), 0)), nullptr);
    Station->SetDirectoryDatabase(nullptr);
    EXPECT_EQ(Station->GetNewPrizeWinner(Station->GetPrize(prize, false))->AwardedByReference(), 0);
}

TEST_F(WinnerStoreTest, AnAwardTakesAUnitAndTellsOfThePrize)
{
    const qint32 prize = SaveNewPrize();
    const cPrizeWinnerPtr winner = NewWinner(prize);
    Now.Advance(60);
    ASSERT_TRUE(Station->SavePrizeWinner(winner));
    EXPECT_EQ(winner->Reference(), 1);
    EXPECT_FALSE(winner->Reference() == 0);
    EXPECT_EQ(winner->WonDate(), Date(2026, 11, 21, 14, 6, 9));
    EXPECT_EQ(Counted(prize), 1);
    EXPECT_EQ(LastWon(prize), Date(2026, 11, 21, 14, 6, 9));
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("17 Prize Edited: Tickets (1)")});
    EXPECT_EQ(Events, QStringList{QStringLiteral("saved 1 Tickets 1")});
    EXPECT_NEAR(Station->LastPrizeChanged().DayNumber(), Date(2026, 11, 21, 14, 6, 9).DayNumber(), 1e-8);
    EXPECT_EQ(Station->LastErrorNumber(), 0);

    const cPrizeWinnerPtr read = Station->GetPrizeWinner(1);
    ASSERT_NE(read, nullptr);
    EXPECT_TRUE(read->Edited());
    EXPECT_EQ(read->PrizeReference(), prize);
    EXPECT_EQ(read->WinnerReference(), 11);
    EXPECT_EQ(read->AwardedByReference(), 7);
    EXPECT_EQ(read->WonDate(), Date(2026, 11, 21, 14, 6, 9));
    EXPECT_EQ(read->SentDate(), Date());
    const QVariant sent = Stored(Winners, 1, QStringLiteral("SentDate"));
    EXPECT_TRUE(sent.isValid());
    EXPECT_EQ(sent.toDouble(), 0.0);
}

TEST_F(WinnerStoreTest, DatesOfAWinnerAreUniversalInTheFile)
{
    Now.SetUtc(QDateTime(QDate(2026, 7, 1), QTime(12, 0, 0), Qt::UTC));
    const qint32 reference = Award(SaveNewPrize());
    EXPECT_EQ(Station->GetPrizeWinner(reference)->WonDate(), Date(2026, 7, 1, 13, 0, 0));
    EXPECT_EQ(Stored(Winners, reference, QStringLiteral("WonDate")).toDouble(), Date(2026, 7, 1, 12, 0, 0).DayNumber());
}

TEST_F(WinnerStoreTest, TheEventBringsThePrizeWithItsWinners)
{
    const qint32 prize = SaveNewPrize();
    Award(prize, 11);
    const cPrizeWinnerPtr second = NewWinner(prize, 12);
    cPrizePtr told;
    QObject::connect(Station.get(), &cTolvaDatabase::PrizeSaved, [&](const cPrizePtr& saved) { told = saved; });
    ASSERT_TRUE(Station->SavePrizeWinner(second));
    ASSERT_NE(told, nullptr);
    EXPECT_EQ(told->NumberWinners(), 2);
    EXPECT_TRUE(told->WinnersRead());
    ASSERT_NE(told->PrizeWinner(1), nullptr);
    EXPECT_EQ(told->PrizeWinner(1)->WinnerReference(), 11);
    EXPECT_EQ(told->PrizeWinner(2), second);
    EXPECT_EQ(told->PrizeWinner(3), nullptr);
}

TEST_F(WinnerStoreTest, AFullPrizeTakesNoNewWinnerButAnEdit)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 1);
    const cPrizeWinnerPtr late = NewWinner(prize, 12);
    const qint32 reference = Award(prize);
    EXPECT_EQ(NewWinner(prize), nullptr);
    Forget();
    Ui.ExpectWarning(FullyAllocated);
    EXPECT_FALSE(Station->SavePrizeWinner(late));
    EXPECT_EQ(late->Reference(), 0);
    EXPECT_EQ(WinnerRows(), 1);
    EXPECT_TRUE(Audit().isEmpty());
    EXPECT_TRUE(Events.isEmpty());
    EXPECT_FALSE(Ui.WasBusyAtMessageBox(Ui.MessageBoxes().size() - 1));
    const cPrizeWinnerPtr winner = Station->GetPrizeWinner(reference);
    winner->SetNotes(QStringLiteral("Collects on Friday"));
    EXPECT_TRUE(Station->SavePrizeWinner(winner));
    EXPECT_EQ(Counted(prize), 1);
    EXPECT_EQ(Station->GetPrizeWinner(reference)->Notes(), QStringLiteral("Collects on Friday"));
}

TEST_F(WinnerStoreTest, AContactNumberBeyondTheFieldIsRefusedWhole)
{
    const qint32 prize = SaveNewPrize();
    const cPrizeWinnerPtr winner = NewWinner(prize, 32768);
    const Date stamp = Station->LastPrizeChanged();
    Now.Advance(60);
    EXPECT_FALSE(Station->SavePrizeWinner(winner));
    EXPECT_EQ(Station->LastErrorNumber(), dao::errOverflow);
    EXPECT_FALSE(Station->LastErrorDescription().isEmpty());
    EXPECT_EQ(winner->Reference(), 0);
    EXPECT_EQ(WinnerRows(), 0);
    EXPECT_EQ(Counted(prize), 0);
    EXPECT_EQ(LastWon(prize), Date());
    EXPECT_EQ(Station->LastPrizeChanged(), stamp);
    EXPECT_TRUE(Audit().isEmpty());
    EXPECT_TRUE(Events.isEmpty());
    winner->SetWinnerReference(32767);
    EXPECT_TRUE(Station->SavePrizeWinner(winner));
    EXPECT_EQ(Station->LastErrorNumber(), 0);
    // An edit that cannot be stored leaves the row as it was.
    winner->SetNotes(QStringLiteral("new"));
    winner->SetWinnerReference(40000);
    EXPECT_FALSE(Station->SavePrizeWinner(winner));
    EXPECT_EQ(Station->GetPrizeWinner(winner->Reference())->Notes(), QString());
    EXPECT_EQ(Station->GetPrizeWinner(winner->Reference())->WinnerReference(), 32767);
}

TEST_F(WinnerStoreTest, WhatCannotBeSavedIsTold)
{
    const qint32 prize = SaveNewPrize();
    const cPrizeWinnerPtr winner = NewWinner(prize);
    Ui.ExpectWarning(QStringLiteral(
        "There was a problem saving a Prize Winner because no Prize Winner details were supplied to save"));
    EXPECT_FALSE(Station->SavePrizeWinner(nullptr));
    winner->SetPrizeReference(0);
    EXPECT_FALSE(Station->SavePrizeWinner(winner)); // without a word
    winner->SetPrizeReference(99);
    Ui.ExpectWarning(QStringLiteral("There was a problem saving a Prize Winner because the Prize cannot be found"));
    EXPECT_FALSE(Station->SavePrizeWinner(winner));
    Station->SetSilentMode(true);
    EXPECT_FALSE(Station->SavePrizeWinner(winner));
    EXPECT_FALSE(Station->SavePrizeWinner(nullptr));
    Station->SetSilentMode(false);
    Station->CloseTolvaDatabase();
    Ui.ExpectWarning(QStringLiteral("There was a problem saving a Prize because no Tolva Database has been opened"));
    EXPECT_FALSE(Station->SavePrizeWinner(winner));
}

TEST_F(WinnerStoreTest, EachStepOfAnAwardIsInTheLog)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 1);
    const cPrizeWinnerPtr winner = NewWinner(prize);
    const cPrizeWinnerPtr late = NewWinner(prize);
    LogSpy log;
    ASSERT_TRUE(Station->SavePrizeWinner(winner));
    const QStringList lines = log.Take();
    EXPECT_EQ(lines.mid(0, 8),
              (QStringList{QStringLiteral("Started SavePrizeWinner Reference: 0 WinnerRef:11"),
                           QStringLiteral("Find Prize 1"), QStringLiteral("Opening Prizes table in database"),
                           QStringLiteral("Started cPrizeWinner:WriteToRecordSet"),
                           QStringLiteral("Create new Prize Winner record"), QStringLiteral("Setting References"),
                           QStringLiteral("Saving Prize Winner in database (Recordset.Update)"),
                           QStringLiteral("Finished WriteToRecordSet")}));
    EXPECT_EQ(lines.at(8), QStringLiteral("Started SavePrize Reference: 1 Prize:Tickets"));
    EXPECT_EQ(lines.last(), QStringLiteral("Finished SavePrizeWinner"));
    Station->SetSilentMode(true);
    EXPECT_FALSE(Station->SavePrizeWinner(late));
    EXPECT_EQ(log.Take().mid(1), (QStringList{QStringLiteral("Find Prize 1"), FullyAllocated,
                                              QStringLiteral("Exit as prize fully allocated")}));
    late->SetPrizeReference(99);
    EXPECT_FALSE(Station->SavePrizeWinner(late));
    EXPECT_EQ(log.Take().last(), QStringLiteral("Exit as prize cannot be found"));
    EXPECT_FALSE(Station->SavePrizeWinner(nullptr));
    const QStringList none = log.Take();
    EXPECT_EQ(none.first(), QStringLiteral("Started SavePrizeWinner Reference: No PrizeWinner Object"));
    EXPECT_EQ(none.last(), QStringLiteral("Exiting as no PrizeWinner Object"));
    winner->SetWinnerReference(40000);
    EXPECT_FALSE(Station->SavePrizeWinner(winner));
    const QStringList refused = log.Take();
    EXPECT_TRUE(refused.contains(QStringLiteral("Seek for existing Prize Winner record")));
    EXPECT_EQ(refused.filter(QStringLiteral("Couldn't save Prize Winner - ") + Station->LastErrorDescription()).size(),
              2);
    EXPECT_EQ(refused.last(), QStringLiteral("Finished SavePrizeWinner"));
    Station->CloseTolvaDatabase();
    EXPECT_FALSE(Station->SavePrizeWinner(winner));
    EXPECT_EQ(log.Take().last(), QStringLiteral("No Database File so exiting"));
}

TEST_F(WinnerStoreTest, SavingAnExistingWinnerMovesThePrizesLastDateToIts)
{
    const qint32 prize = SaveNewPrize();
    const qint32 first = Award(prize, 11);
    Now.Advance(3600);
    Award(prize, 12);
    const Date later(2026, 11, 21, 15, 5, 9);
    ASSERT_EQ(LastWon(prize), later);
    Forget();
    const cPrizeWinnerPtr winner = Station->GetPrizeWinner(first);
    ASSERT_TRUE(Station->SavePrizeWinner(winner));
    const Date earlier(2026, 11, 21, 14, 5, 9);
    EXPECT_EQ(LastWon(prize), earlier);
    EXPECT_EQ(Station->GetPrizeWinner(first)->WonDate(), earlier);
    // The object alone is raised to the latest.
    EXPECT_EQ(winner->WonDate(), later);
    EXPECT_EQ(Counted(prize), 2);
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("17 Prize Edited: Tickets (1)")});
}

TEST_F(WinnerStoreTest, AWinnerWhoseRowWentIsAddedAnewAndKeepsItsNumber)
{
    const qint32 prize = SaveNewPrize();
    const qint32 reference = Award(prize);
    const cPrizeWinnerPtr winner = Station->GetPrizeWinner(reference);
    DeleteRow(Winners, reference);
    ASSERT_TRUE(Station->SavePrizeWinner(winner));
    EXPECT_EQ(winner->Reference(), reference);
    EXPECT_EQ(Station->GetPrizeWinner(reference), nullptr);
    EXPECT_EQ(WinnerRows(), 1);
    EXPECT_EQ(Counted(prize), 1);
}

TEST_F(WinnerStoreTest, SlotsHoldTheWinnersByTheirDates)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 3);
    const qint32 first = Award(prize, 11);
    const qint32 second = Award(prize, 12);
    Overwrite(Winners, first, QStringLiteral("WonDate"), Date(2026, 11, 22).DayNumber());
    Overwrite(Winners, second, QStringLiteral("WonDate"), Date(2026, 11, 20).DayNumber());
    const cPrizePtr read = Station->GetPrize(prize, true);
    EXPECT_TRUE(read->WinnersRead());
    EXPECT_EQ(read->PrizeWinner(1)->Reference(), second);
    EXPECT_EQ(read->PrizeWinner(2)->Reference(), first);
    EXPECT_EQ(read->PrizeWinner(0), nullptr);
    EXPECT_EQ(read->PrizeWinner(3), nullptr);
    EXPECT_FALSE(Station->GetPrize(prize, false)->WinnersRead());
    EXPECT_EQ(Station->GetPrize(prize, false)->PrizeWinner(1), nullptr);
    EXPECT_FALSE(Station->GetPrize(SaveNewPrize(), true)->WinnersRead());
}

TEST_F(WinnerStoreTest, ACountAboveTheRowsLeavesSlotsEmpty)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 3);
    Award(prize, 11);
    Award(prize, 12);
    OverwritePrize(prize, QStringLiteral("NumberWinners"), 3);
    const cPrizePtr read = Station->GetPrize(prize, true);
    EXPECT_TRUE(read->WinnersRead());
    EXPECT_EQ(read->NumberWinners(), 3);
    EXPECT_NE(read->PrizeWinner(2), nullptr);
    EXPECT_EQ(read->PrizeWinner(3), nullptr);
}

TEST_F(WinnerStoreTest, ACountBelowTheRowsReadsNoMoreThanIt)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 3);
    for (const qint32 contact : {11, 12, 13})
        Award(prize, contact);
    OverwritePrize(prize, QStringLiteral("NumberWinners"), 1);
    const cPrizePtr read = Station->GetPrize(prize, true);
    EXPECT_EQ(read->NumberWinners(), 1);
    EXPECT_EQ(read->PrizeWinner(1)->WinnerReference(), 11);
    EXPECT_EQ(read->PrizeWinner(2), nullptr);
    EXPECT_EQ(Station->StoredWinners(prize), 3);
}

TEST_F(WinnerStoreTest, ACountOfAnySizeDoesNoHarm)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 3);
    Award(prize, 11);
    OverwritePrize(prize, QStringLiteral("NumberWinners"), std::numeric_limits<qint32>::max());
    const cPrizePtr read = Station->GetPrize(prize, true);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->NumberWinners(), std::numeric_limits<qint32>::max());
    EXPECT_NE(read->PrizeWinner(1), nullptr);
    OverwritePrize(prize, QStringLiteral("NumberWinners"), -4);
    EXPECT_EQ(Station->GetPrize(prize, true)->NumberWinners(), 0);
}

TEST_F(WinnerStoreTest, FillingTheSlotsKeepsTheMarkAndTurnsEventsOn)
{
    const qint32 prize = SaveNewPrize();
    Award(prize);
    const cPrizePtr read = Station->GetPrize(prize, false);
    read->SetEdited(false);
    read->SetRaiseEvents(false);
    int heard = 0;
    QObject::connect(read.get(), &cPrize::PrizeEdited, [&heard] { ++heard; });
    EXPECT_TRUE(Station->GetPrizeWinners(read));
    EXPECT_FALSE(read->Edited());
    EXPECT_TRUE(read->WinnersRead());
    EXPECT_TRUE(read->RaiseEvents());
    EXPECT_EQ(heard, 0);
    const cPrizeWinnerPtr other = read->PrizeWinner(1)->Copy();
    read->SetPrizeWinner(1, other);
    EXPECT_EQ(read->PrizeWinner(1), other);
    EXPECT_FALSE(read->Edited());
    EXPECT_FALSE(Station->GetPrizeWinners(nullptr));
    EXPECT_FALSE(Station->GetPrizeWinners(MakePrize()));
}

TEST_F(WinnerStoreTest, TakingAWinnerBackGivesTheUnitBackAndKeepsTheLastDate)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 1);
    const qint32 reference = Award(prize);
    const Date won = LastWon(prize);
    Forget();
    EXPECT_TRUE(Station->DeletePrizeWinner(reference));
    EXPECT_EQ(Counted(prize), 0);
    EXPECT_EQ(LastWon(prize), won);
    EXPECT_EQ(WinnerRows(), 0);
    EXPECT_EQ(Audit(), (QStringList{QStringLiteral("17 Prize Edited: Tickets (1)"),
                                    QStringLiteral("28 Prize Winner Deleted: 'Carla Count' from 'Tickets' (1)")}));
    EXPECT_EQ(Events, QStringList{QStringLiteral("saved 1 Tickets 1")});
    EXPECT_TRUE(Station->DeletePrizeWinner(reference)); // gone already
    EXPECT_FALSE(Station->DeletePrizeWinner(0));
    EXPECT_FALSE(Station->DeletePrizeWinner(-1));
    EXPECT_NE(Award(prize), 0);
}

TEST_F(WinnerStoreTest, TheLogNamesWhatIsKnownOfAWinnerTakenBack)
{
    const qint32 prize = SaveNewPrize();
    const qint32 stranger = Award(prize, 99);
    const qint32 nobody = Award(prize, 0);
    Forget();
    EXPECT_TRUE(Station->DeletePrizeWinner(stranger));
    EXPECT_EQ(Audit().last(), QStringLiteral("28 Prize Winner Deleted:  from 'Tickets' (1)"));
    DeleteRow(QStringLiteral("Prizes"), prize);
    Forget();
    EXPECT_TRUE(Station->DeletePrizeWinner(nobody));
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("28 Prize Winner Deleted:  (1)")});
    EXPECT_TRUE(Events.isEmpty());
}

TEST_F(WinnerStoreTest, NobodyElseWritesBetweenTheLookAtTheStockAndTheCount)
{
    const qint32 prize = SaveNewPrize();
    const cPrizeWinnerPtr winner = NewWinner(prize);
    QList<bool> mayWrite;
    // The object tells of each of its steps: the date before the row, the number and the mark behind it.
    QObject::connect(winner.get(), &cPrizeWinner::PrizeWinnerEdited, [&] { mayWrite.append(MayOthersWrite()); });
    QObject::connect(Station.get(), &cTolvaDatabase::PrizeSaved, [&] { mayWrite.append(MayOthersWrite()); });
    ASSERT_TRUE(Station->SavePrizeWinner(winner));
    EXPECT_EQ(mayWrite, (QList<bool>{false, false, false, false, true}));
    mayWrite.clear();
    ASSERT_TRUE(Station->SavePrizeWinner(winner));
    EXPECT_EQ(mayWrite, (QList<bool>{false, true}));
}

TEST_F(WinnerStoreTest, TheLastUnitIsNotGivenTwiceHoweverManyHoldABlankWinner)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 2);
    const cPrizeWinnerPtr first = NewWinner(prize);
    const cPrizeWinnerPtr second = NewWinner(prize);
    AwardElsewhere(prize);
    EXPECT_TRUE(Station->SavePrizeWinner(first));
    Ui.ExpectWarning(FullyAllocated);
    EXPECT_FALSE(Station->SavePrizeWinner(second));
    EXPECT_EQ(WinnerRows(), 2);
    EXPECT_EQ(Counted(prize), 2);
}

TEST_F(WinnerStoreTest, AnAwardOfAPrizeThatWentDoesNotBringItBack)
{
    const qint32 prize = SaveNewPrize();
    const cPrizeWinnerPtr winner = NewWinner(prize);
    DeleteRow(QStringLiteral("Prizes"), prize);
    Ui.ExpectWarning(QStringLiteral("There was a problem saving a Prize Winner because the Prize cannot be found"));
    EXPECT_FALSE(Station->SavePrizeWinner(winner));
    EXPECT_EQ(PrizeRows(), 0);
    EXPECT_EQ(WinnerRows(), 0);
}

TEST_F(WinnerStoreTest, InATransactionOfTheCallersTheUserLogFollowsTheCommit)
{
    const qint32 prize = SaveNewPrize();
    {
        dao::Transaction transaction = Station->BeginChange();
        EXPECT_NE(Award(prize), 0);
        EXPECT_TRUE(Audit().isEmpty());
    }
    EXPECT_TRUE(Audit().isEmpty());
    EXPECT_EQ(Counted(prize), 0);
    dao::Transaction transaction = Station->BeginChange();
    EXPECT_NE(Award(prize), 0);
    transaction.Commit();
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("17 Prize Edited: Tickets (1)")});
    EXPECT_EQ(Counted(prize), 1);
    EXPECT_EQ(WinnerRows(), 1);
}

TEST_F(WinnerStoreTest, ACountIsRaisedToTheRowsAndNeverLowered)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 3);
    Award(prize, 11);
    OverwritePrize(prize, QStringLiteral("NumberWinners"), 2);
    EXPECT_TRUE(Station->CountStoredWinners(prize));
    EXPECT_EQ(Counted(prize), 2);
    OverwritePrize(prize, QStringLiteral("NumberWinners"), 0);
    EXPECT_TRUE(Station->CountStoredWinners(prize));
    EXPECT_EQ(Counted(prize), 1);
    EXPECT_FALSE(Station->CountStoredWinners(99));
    Station->CloseTolvaDatabase();
    EXPECT_EQ(Station->StoredWinners(prize), -1);
    EXPECT_FALSE(Station->CountStoredWinners(prize));
}

TEST_F(WinnerStoreTest, ThePointerIsNormalWhenTheWinnerLosesItsMark)
{
    const cPrizeWinnerPtr winner = NewWinner(SaveNewPrize());
    QList<bool> busy;
    QObject::connect(winner.get(), &cPrizeWinner::PrizeWinnerEdited, [&](bool) { busy.append(Ui.IsBusy()); });
    ASSERT_TRUE(Station->SavePrizeWinner(winner));
    // The date before the row, then the number, the mark, and the prize when it is counted.
    EXPECT_EQ(busy, (QList<bool>{true, false, false, false}));
}

TEST_F(WinnerStoreTest, AnAwardOnAnotherComputerWhileAWinnerIsTakenBackKeepsItsCount)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 5);
    const qint32 reference = Award(prize);
    Second();
    // The contact's name is asked for between the look at the prize and the deletion.
    MeddlingDirectory meddling(Directory, [&] { AwardElsewhere(prize); });
    Station->SetDirectoryDatabase(&meddling);
    EXPECT_TRUE(Station->DeletePrizeWinner(reference));
    EXPECT_EQ(WinnerRows(), 1);
    EXPECT_EQ(Counted(prize), 1);
    Station->SetDirectoryDatabase(&Contacts);
}

TEST_F(WinnerStoreTest, APrizeThatGoesWhileItsWinnerIsTakenBackDoesNotComeBack)
{
    const qint32 prize = SaveNewPrize();
    const qint32 reference = Award(prize);
    Forget();
    MeddlingDirectory meddling(Directory, [&] { DeleteRow(QStringLiteral("Prizes"), prize); });
    Station->SetDirectoryDatabase(&meddling);
    EXPECT_TRUE(Station->DeletePrizeWinner(reference));
    EXPECT_EQ(PrizeRows(), 0);
    EXPECT_EQ(WinnerRows(), 0);
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("28 Prize Winner Deleted: 'Carla Count' from 'Tickets' (1)")});
    EXPECT_TRUE(Events.isEmpty());
    Station->SetDirectoryDatabase(&Contacts);
}

TEST_F(WinnerStoreTest, AWinnerWhoWasNotCountedMovesTheLastDateWhenCounted)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 3);
    Award(prize, 11);
    const Date first = LastWon(prize);
    Now.Advance(3600);
    Award(prize, 12);
    const Date second = LastWon(prize);
    // As a program leaves it that was killed in between.
    OverwritePrize(prize, QStringLiteral("NumberWinners"), 1);
    OverwritePrize(prize, QStringLiteral("LastWonDate"), ClockHelper::LocalToUTC(first).DayNumber());
    Forget();
    EXPECT_TRUE(Station->CountStoredWinners(prize));
    EXPECT_EQ(Counted(prize), 2);
    EXPECT_EQ(LastWon(prize), second);
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("17 Prize Edited: Tickets (1)")});
    Forget();
    EXPECT_TRUE(Station->CountStoredWinners(prize)); // right already
    EXPECT_TRUE(Audit().isEmpty());
}

TEST_F(WinnerStoreTest, ARecountLowersTheCountAsWell)
{
    const qint32 prize = SaveNewPrize(QStringLiteral("Tickets"), 2);
    Award(prize, 11);
    const Date won = LastWon(prize);
    // As a program leaves it that was killed after it took a winner back.
    OverwritePrize(prize, QStringLiteral("NumberWinners"), 2);
    EXPECT_EQ(NewWinner(prize), nullptr);
    EXPECT_TRUE(Station->RecountWinners(prize));
    EXPECT_EQ(Counted(prize), 1);
    EXPECT_EQ(LastWon(prize), won);
    EXPECT_NE(NewWinner(prize), nullptr);
    OverwritePrize(prize, QStringLiteral("NumberWinners"), 0);
    EXPECT_TRUE(Station->RecountWinners(prize));
    EXPECT_EQ(Counted(prize), 1);
    EXPECT_FALSE(Station->RecountWinners(99));
    Station->CloseTolvaDatabase();
    EXPECT_FALSE(Station->RecountWinners(prize));
}

TEST_F(WinnerStoreTest, AWonDateOfLessThanNoneBecomesTheMomentOfTheSave)
{
    const cPrizeWinnerPtr winner = NewWinner(SaveNewPrize());
    winner->SetWonDate(Date(-1));
    ASSERT_TRUE(Station->SavePrizeWinner(winner));
    EXPECT_EQ(winner->WonDate(), Date(2026, 11, 21, 14, 5, 9));
    // One that is given stays.
    const cPrizeWinnerPtr earlier = NewWinner(winner->PrizeReference());
    earlier->SetWonDate(Date(2026, 2, 28, 12, 0, 0));
    ASSERT_TRUE(Station->SavePrizeWinner(earlier));
    EXPECT_EQ(Station->GetPrizeWinner(earlier->Reference())->WonDate(), Date(2026, 2, 28, 12, 0, 0));
    // The prize was last won when it was awarded all the same.
    EXPECT_EQ(LastWon(winner->PrizeReference()), Date(2026, 11, 21, 14, 5, 9));
}
