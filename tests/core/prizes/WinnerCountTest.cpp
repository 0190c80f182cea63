// SPDX-License-Identifier: Apache-2.0
#include "WinnerStoreTest.h"

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
