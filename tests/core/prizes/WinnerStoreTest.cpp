// SPDX-License-Identifier: Apache-2.0
#include "WinnerStoreTest.h"

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
