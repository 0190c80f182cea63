// SPDX-License-Identifier: Apache-2.0

// Fetching, saving and deleting prizes.

#include "core/prizes/PrizeTest.h"

namespace
{
const QString AllHours = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWX");

class PrizeStoreTest : public PrizeTest
{
};
} // namespace

TEST_F(PrizeStoreTest, ASavedPrizeReadsBack)
{
    const cPrizePtr prize = MakePrize(QStringLiteral("Zwei Karten für \u201cFaust\u201d \U0001F3AD"), 4);
    prize->SetScript(QString(70000, u's'));
    prize->SetNotes(QStringLiteral("n"));
    prize->SetNotesToSupplier(QStringLiteral("t"));
    prize->SetStartDate(Date(2026, 7, 1, 13, 0, 0));
    prize->SetEndDate(Date(2026, 12, 1, 13, 0, 0));
    prize->SetLastWonDate(Date(2026, 7, 2, 0, 30, 0));
    prize->SetSupplierReference(70000);
    prize->SetAddedByReference(9);
    prize->SetAvailableForHour(5, 23, false);
    ASSERT_TRUE(Station->SavePrize(prize));
    EXPECT_EQ(prize->Reference(), 1);
    EXPECT_FALSE(prize->Edited());
    EXPECT_EQ(prize->AddedDate(), Date(2026, 11, 21, 14, 5, 9));

    const cPrizePtr read = Station->GetPrize(1, false);
    ASSERT_NE(read, nullptr);
    EXPECT_TRUE(read->Edited());
    EXPECT_TRUE(read->RaiseEvents());
    EXPECT_EQ(read->Reference(), 1);
    EXPECT_EQ(read->Title(), prize->Title());
    EXPECT_EQ(read->Script(), prize->Script());
    EXPECT_EQ(read->Notes(), QStringLiteral("n"));
    EXPECT_EQ(read->NotesToSupplier(), QStringLiteral("t"));
    EXPECT_EQ(read->StartDate(), Date(2026, 7, 1, 13, 0, 0));
    EXPECT_EQ(read->EndDate(), Date(2026, 12, 1, 13, 0, 0));
    EXPECT_EQ(read->LastWonDate(), Date(2026, 7, 2, 0, 30, 0));
    EXPECT_EQ(read->AddedDate(), Date(2026, 11, 21, 14, 5, 9));
    EXPECT_EQ(read->SupplierReference(), 70000);
    EXPECT_EQ(read->AddedByReference(), 9);
    EXPECT_EQ(read->NumberSupplied(), 4);
    EXPECT_EQ(read->NumberWinners(), 0);
    EXPECT_EQ(read->AvailableHours(5), QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVW "));
    EXPECT_EQ(read->AvailableHours(6), AllHours);
    // Universal time in the file.
    EXPECT_EQ(StoredPrize(1, QStringLiteral("StartDate")).toDouble(), Date(2026, 7, 1, 12, 0, 0).DayNumber());
}

TEST_F(PrizeStoreTest, DatesOfNoneAreStoredAsZero)
{
    const qint32 reference = SaveNewPrize();
    for (const char* column : {"StartDate", "EndDate", "LastWonDate"}) {
        const QVariant value = StoredPrize(reference, QString::fromLatin1(column));
        EXPECT_TRUE(value.isValid()) << column;
        EXPECT_EQ(value.toDouble(), 0.0) << column;
    }
    EXPECT_EQ(Station->GetPrize(reference, false)->StartDate(), Date());
}

TEST_F(PrizeStoreTest, NullsReadAsDefaultsAndHoursComeBackInFull)
{
    const qint32 reference = SaveNewPrize();
    for (const char* column :
         {"Title", "SupplierReference", "AddedByReference", "AddedDate", "NumberSupplied", "NumberWinners",
          "LastWonDate", "StartDate", "EndDate", "HourRestrictions4", "Script", "Notes", "NotesToSupplier"}) {
        OverwritePrize(reference, QString::fromLatin1(column), QVariant());
    }
    OverwritePrize(reference, QStringLiteral("HourRestrictions5"), QString());
    OverwritePrize(reference, QStringLiteral("EndDate"), -3.5);
    const cPrizePtr prize = Station->GetPrize(reference, true);
    ASSERT_NE(prize, nullptr);
    EXPECT_EQ(prize->Title(), QString());
    EXPECT_EQ(prize->NumberSupplied(), 0);
    EXPECT_EQ(prize->NumberWinners(), 0);
    EXPECT_EQ(prize->StartDate(), Date());
    EXPECT_EQ(prize->EndDate(), Date());
    EXPECT_EQ(prize->AddedDate(), Date());
    EXPECT_EQ(prize->AvailableHours(4), AllHours);
    EXPECT_EQ(prize->AvailableHours(5), AllHours);
    ASSERT_TRUE(Station->SavePrize(prize));
    EXPECT_EQ(StoredPrize(reference, QStringLiteral("HourRestrictions5")).toString(), AllHours);
    EXPECT_EQ(prize->AddedDate(), Date(2026, 11, 21, 14, 5, 9));
    EXPECT_EQ(prize->AddedByReference(), 7);
}

TEST_F(PrizeStoreTest, OddHourTextsOfOtherSoftwareReadAsTheyStand)
{
    const qint32 reference = SaveNewPrize();
    OverwritePrize(reference, QStringLiteral("HourRestrictions1"), QStringLiteral("AB"));
    OverwritePrize(reference, QStringLiteral("HourRestrictions2"), QStringLiteral("abcdefghijklmnopqrstuvwx"));
    OverwritePrize(reference, QStringLiteral("HourRestrictions3"), QString(24, u' '));
    const cPrizePtr prize = Station->GetPrize(reference, false);
    EXPECT_TRUE(prize->AvailableForHour(1, 1));
    EXPECT_FALSE(prize->AvailableForHour(1, 2));
    EXPECT_TRUE(prize->AvailableForHour(2, 23));
    EXPECT_FALSE(prize->AvailableForHour(3, 0));
}

TEST_F(PrizeStoreTest, HoursTooLongForTheirFieldAreRefusedWhole)
{
    const qint32 reference = SaveNewPrize();
    const cPrizePtr prize = Station->GetPrize(reference, false);
    prize->SetTitle(QStringLiteral("Changed"));
    prize->SetAvailableHours(1, AllHours + u'Y');
    EXPECT_FALSE(Station->SavePrize(prize));
    EXPECT_EQ(Station->LastErrorNumber(), dao::errFieldTooSmall);
    EXPECT_FALSE(Station->LastErrorDescription().isEmpty());
    EXPECT_EQ(StoredPrize(reference, QStringLiteral("Title")).toString(), QStringLiteral("Tickets"));
    ASSERT_EQ(Audit().size(), 1);
    EXPECT_EQ(Audit().first(),
              QStringLiteral("17 Prize Edited: Changed - %1 (0)").arg(Station->LastErrorDescription()));
    EXPECT_TRUE(Events.isEmpty());
    EXPECT_TRUE(prize->Edited());
}

TEST_F(PrizeStoreTest, AnAbsentPrizeIsNothing)
{
    EXPECT_EQ(Station->GetPrize(0, true), nullptr);
    EXPECT_EQ(Station->GetPrize(99, true), nullptr);
    EXPECT_EQ(Station->GetPrize(-1, true), nullptr);
    EXPECT_EQ(Station->GetPrizeWinner(0), nullptr);
    EXPECT_EQ(Station->GetPrizeWinner(99), nullptr);
    EXPECT_EQ(Station->LastErrorNumber(), 0);
    SaveNewPrize();
    Station->CloseTolvaDatabase();
    EXPECT_EQ(Station->GetPrize(1, true), nullptr);
    EXPECT_EQ(Station->GetPrizeWinner(1), nullptr);
    EXPECT_FALSE(Station->GetPrizeWinners(MakePrize()));
}

TEST_F(PrizeStoreTest, ANewPrizeIsStampedLoggedAndTold)
{
    EXPECT_EQ(Station->LastPrizeChanged(), Date());
    const cPrizePtr prize = MakePrize();
    ASSERT_TRUE(Station->SavePrize(prize));
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("16 Prize Added: Tickets (1)")});
    EXPECT_EQ(Events, QStringList{QStringLiteral("saved 1 Tickets 1")});
    EXPECT_EQ(prize->AddedByReference(), 7);
    EXPECT_EQ(Station->DatabaseSetting(QStringLiteral("Prizes.LastChanged"), QString()).toString(),
              QString::number(Date(2026, 11, 21, 14, 5, 9).DayNumber(), 'f', 8));
    EXPECT_NEAR(Station->LastPrizeChanged().DayNumber(), Date(2026, 11, 21, 14, 5, 9).DayNumber(), 1e-8);
    EXPECT_EQ(Station->LastMessageChanged(), Date());
    EXPECT_EQ(Ui.BusyCount(), 1);
}

TEST_F(PrizeStoreTest, AStoredPrizeIsEditedInItsPlace)
{
    const qint32 reference = SaveNewPrize();
    const cPrizePtr prize = Station->GetPrize(reference, false);
    prize->SetTitle(QStringLiteral("Two tickets"));
    prize->SetEdited(false);
    ASSERT_TRUE(Station->SavePrize(prize));
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("17 Prize Edited: Two tickets (1)")});
    EXPECT_EQ(Events, QStringList{QStringLiteral("saved 1 Two tickets 0")});
    EXPECT_EQ(PrizeRows(), 1);
}

TEST_F(PrizeStoreTest, ThePointerIsNormalAndAllIsStoredWhenTheEventComes)
{
    bool wasBusy = true;
    Date stamp;
    qsizetype entries = 0;
    QObject::connect(Station.get(), &cTolvaDatabase::PrizeSaved, [&](const cPrizePtr& prize) {
        wasBusy = Ui.IsBusy();
        stamp = Station->LastPrizeChanged();
        entries = Directory.User.Log.size();
        EXPECT_EQ(StoredPrize(prize->Reference(), QStringLiteral("Title")).toString(), prize->Title());
    });
    ASSERT_TRUE(Station->SavePrize(MakePrize()));
    EXPECT_FALSE(wasBusy);
    EXPECT_FALSE(stamp.IsNone());
    EXPECT_EQ(entries, 1);
}

TEST_F(PrizeStoreTest, WithoutADirectoryAPrizeIsSavedByNobody)
{
    Station->SetDirectoryDatabase(nullptr);
    const cPrizePtr prize = MakePrize();
    ASSERT_TRUE(Station->SavePrize(prize));
    EXPECT_EQ(prize->AddedByReference(), 0);
    EXPECT_TRUE(Audit().isEmpty());
}

TEST_F(PrizeStoreTest, WithoutEventsAllElseHappens)
{
    Station->SetRaiseEvents(false);
    const cPrizePtr prize = MakePrize();
    ASSERT_TRUE(Station->SavePrize(prize));
    ASSERT_TRUE(Station->DeletePrize(prize->Reference()));
    EXPECT_TRUE(Events.isEmpty());
    EXPECT_EQ(Audit(), (QStringList{QStringLiteral("16 Prize Added: Tickets (1)"),
                                    QStringLiteral("18 Prize Deleted: Tickets (1)")}));
    EXPECT_FALSE(Station->LastPrizeChanged().IsNone());
    EXPECT_EQ(PrizeRows(), 0);
}

TEST_F(PrizeStoreTest, APrizeWhoseRowWentIsAddedAnewAndKeepsItsNumber)
{
    const qint32 reference = SaveNewPrize();
    const cPrizePtr prize = Station->GetPrize(reference, false);
    DeleteRow(QStringLiteral("Prizes"), reference);
    ASSERT_TRUE(Station->SavePrize(prize));
    EXPECT_EQ(prize->Reference(), reference);
    EXPECT_EQ(PrizeRows(), 1);
    EXPECT_EQ(Station->GetPrize(reference, false), nullptr);
    ASSERT_NE(Station->GetPrize(reference + 1, false), nullptr);
}

TEST_F(PrizeStoreTest, WhatCannotBeSavedIsTold)
{
    Ui.ExpectWarning(
        QStringLiteral("There was a problem saving a Prize because no Prize details were supplied to save"));
    EXPECT_FALSE(Station->SavePrize(nullptr));
    Station->CloseTolvaDatabase();
    Ui.ExpectWarning(QStringLiteral("There was a problem saving a Prize because no Tolva Database has been opened"));
    EXPECT_FALSE(Station->SavePrize(MakePrize()));
    Station->SetSilentMode(true);
    EXPECT_FALSE(Station->SavePrize(MakePrize()));
    EXPECT_FALSE(Station->SavePrize(nullptr));
}

TEST_F(PrizeStoreTest, EachStepOfASaveIsInTheLog)
{
    LogSpy log;
    ASSERT_TRUE(Station->SavePrize(MakePrize()));
    EXPECT_EQ(
        log.Take(),
        (QStringList{QStringLiteral("Started SavePrize Reference: 0 Prize:Tickets"),
                     QStringLiteral("Opening Prizes table in database"),
                     QStringLiteral("Started cPrize:WriteToRecordSet"), QStringLiteral("Create new Prize record"),
                     QStringLiteral("Setting Title"), QStringLiteral("Saving Prize in database (Recordset.Update)"),
                     QStringLiteral("Finished WriteToRecordSet"), QStringLiteral("Setting LastPrizeFiled"),
                     QStringLiteral("Raising PrizeSaved Event"), QStringLiteral("Finished SavePrize")}));
    const cPrizePtr prize = Station->GetPrize(1, false);
    prize->SetAvailableHours(1, AllHours + u'Y');
    EXPECT_FALSE(Station->SavePrize(prize));
    const QString reason = Station->LastErrorDescription();
    EXPECT_EQ(log.Take(),
              (QStringList{
                  QStringLiteral("Started SavePrize Reference: 1 Prize:Tickets"),
                  QStringLiteral("Opening Prizes table in database"), QStringLiteral("Started cPrize:WriteToRecordSet"),
                  QStringLiteral("Seek for existing Prize record"), QStringLiteral("Setting Title"),
                  QStringLiteral("Saving Prize in database (Recordset.Update)"),
                  QStringLiteral("Couldn't save Prize - ") + reason, QStringLiteral("Finished WriteToRecordSet"),
                  QStringLiteral("Couldn't save Prize - ") + reason, QStringLiteral("Finished SavePrize")}));
    Station->SetSilentMode(true);
    EXPECT_FALSE(Station->SavePrize(nullptr));
    EXPECT_EQ(log.Take(),
              (QStringList{QStringLiteral("Started SavePrize Reference: No Prize Object"),
                           QStringLiteral("There was a problem saving a Prize because no Prize details were supplied "
                                          "to save"),
                           QStringLiteral("Exiting as no Prize Supplied")}));
    Station->CloseTolvaDatabase();
    EXPECT_FALSE(Station->SavePrize(prize));
    EXPECT_EQ(log.Take().last(), QStringLiteral("Exiting as No Database File"));
}

TEST_F(PrizeStoreTest, TheOuterStepsOfASaveAreOfLevelFive)
{
    LogSpy log(4);
    ASSERT_TRUE(Station->SavePrize(MakePrize()));
    const QStringList lines = log.Take();
    EXPECT_FALSE(lines.contains(QStringLiteral("Finished SavePrize")));
    EXPECT_FALSE(lines.contains(QStringLiteral("Setting LastPrizeFiled"))); // -1 counts as 5
    EXPECT_TRUE(lines.contains(QStringLiteral("Setting Title")));
}

TEST_F(PrizeStoreTest, DeletingTakesThePrizeAndItsWinners)
{
    const qint32 reference = SaveNewPrize();
    Award(reference, 11);
    Award(reference, 12);
    const qint32 other = SaveNewPrize(QStringLiteral("Mug"));
    Award(other, 13);
    Forget();
    const Date stamp = Station->LastPrizeChanged();
    Now.Advance(60);
    EXPECT_TRUE(Station->DeletePrize(reference));
    EXPECT_EQ(Audit(), QStringList{QStringLiteral("18 Prize Deleted: Tickets (1)")});
    EXPECT_EQ(Events, QStringList{QStringLiteral("deleted 1 Tickets")});
    EXPECT_EQ(PrizeRows(), 1);
    EXPECT_EQ(WinnerRows(), 1);
    EXPECT_EQ(Station->LastPrizeChanged(), stamp);
    EXPECT_FALSE(Station->DeletePrize(reference)); // no such prize any more
    EXPECT_FALSE(Station->DeletePrize(0));
    EXPECT_FALSE(Station->DeletePrize(-1));
}

TEST_F(PrizeStoreTest, WithoutTheRightNothingIsDeleted)
{
    const qint32 reference = SaveNewPrize();
    Award(reference);
    Forget();
    Directory.User.Rights = 31 & ~static_cast<int>(DirectoryRight::ManagePrizes);
    EXPECT_FALSE(Station->DeletePrize(reference));
    Directory.SignedIn = nullptr;
    EXPECT_FALSE(Station->DeletePrize(reference));
    Station->SetDirectoryDatabase(nullptr);
    EXPECT_FALSE(Station->DeletePrize(reference));
    EXPECT_EQ(PrizeRows(), 1);
    EXPECT_EQ(WinnerRows(), 1);
    EXPECT_TRUE(Audit().isEmpty());
    EXPECT_TRUE(Events.isEmpty());
}

TEST_F(PrizeStoreTest, APrizeThatVanishesWhileItIsDeletedIsDeletedWithoutAWord)
{
    const qint32 reference = SaveNewPrize();
    Award(reference);
    Forget();
    // Another computer is quicker, between the look at the prize and its deletion: the user's rights are asked there.
    class QuickerComputer : public FakeUser
    {
    public:
        bool HasRight(DirectoryRight) const override
        {
            Delete();
            return true;
        }
        std::function<void()> Delete;
    } user;
    user.Delete = [&] { DeleteRow(QStringLiteral("Prizes"), reference); };
    Directory.SignedIn = &user;
    EXPECT_TRUE(Station->DeletePrize(reference));
    EXPECT_TRUE(user.Log.isEmpty());
    EXPECT_TRUE(Events.isEmpty());
    EXPECT_EQ(WinnerRows(), 1);
    Directory.SignedIn = nullptr;
}

TEST_F(PrizeStoreTest, AnotherObjectOnTheFileSeesSavesAndStamps)
{
    cTolvaDatabase second;
    second.SetDirectoryDatabase(&Contacts);
    second.SetMakesAutomaticBackups(false);
    ASSERT_EQ(second.OpenTolvaDatabase(Folder.path()), 0);
    const qint32 reference = SaveNewPrize();
    const cPrizePtr theirs = second.GetPrize(reference, false);
    ASSERT_NE(theirs, nullptr);
    EXPECT_EQ(second.LastPrizeChanged(), Station->LastPrizeChanged());
    theirs->SetTitle(QStringLiteral("Theirs"));
    Now.Advance(1);
    ASSERT_TRUE(second.SavePrize(theirs));
    EXPECT_EQ(Station->GetPrize(reference, false)->Title(), QStringLiteral("Theirs"));
    EXPECT_TRUE(Events.isEmpty()); // an event is for the listeners of its own object
    EXPECT_EQ(second.LastPrizeChanged(), Station->LastPrizeChanged());
}

TEST_F(PrizeStoreTest, DatesKeepTheirClockFaceAroundTheChangesOfTheClock)
{
    // London goes forward on 29 March 2026 at 01:00 and back on 25 October at 02:00.
    const QList<Date> moments = {Date(2026, 3, 29, 0, 59, 59), Date(2026, 3, 29, 2, 0, 0),
                                 Date(2026, 3, 29, 23, 0, 0),  Date(2026, 10, 25, 0, 59, 59),
                                 Date(2026, 10, 25, 1, 30, 0), Date(2026, 10, 25, 2, 0, 0),
                                 Date(2028, 2, 29, 23, 59, 59)};
    for (const Date moment : moments) {
        const cPrizePtr prize = MakePrize();
        prize->SetStartDate(moment);
        prize->SetEndDate(moment);
        ASSERT_TRUE(Station->SavePrize(prize));
        const cPrizePtr read = Station->GetPrize(prize->Reference(), false);
        EXPECT_EQ(read->StartDateString(), moment.GeneralDate());
        EXPECT_TRUE(read->AvailableForDate(moment)) << qPrintable(moment.GeneralDate());
        EXPECT_FALSE(read->AvailableForDate(Date(moment.DayNumber() + 1 / 86400.0)));
    }
    // An hour that the clock skips counts as if it had not gone forward: half past one is read as half past two.
    const cPrizePtr skipped = MakePrize();
    skipped->SetStartDate(Date(2026, 3, 29, 1, 30, 0));
    ASSERT_TRUE(Station->SavePrize(skipped));
    EXPECT_EQ(Station->GetPrize(skipped->Reference(), false)->StartDate(), Date(2026, 3, 29, 2, 30, 0));
}

TEST_F(PrizeStoreTest, TheEventTellsOfTheMarkBeforeTheSaveTouchedThePrize)
{
    const cPrizePtr prize = MakePrize();
    prize->SetEdited(false);
    ASSERT_TRUE(Station->SavePrize(prize)); // which enters who added it and when
    EXPECT_EQ(Events, QStringList{QStringLiteral("saved 1 Tickets 0")});
    EXPECT_EQ(prize->AddedByReference(), 7);
}

TEST_F(PrizeStoreTest, ThePointerIsNormalWhenThePrizeLosesItsMark)
{
    const cPrizePtr prize = MakePrize();
    QList<bool> busy;
    QObject::connect(prize.get(), &cPrize::PrizeEdited, [&](bool) { busy.append(Ui.IsBusy()); });
    ASSERT_TRUE(Station->SavePrize(prize));
    // Who added it and when, then its number and the mark.
    EXPECT_EQ(busy, (QList<bool>{true, true, false, false}));
}

TEST_F(PrizeStoreTest, TheStampIsTheNumberToEightPlacesAndWhatIsNoneReadsAsNoDate)
{
    const QString setting = QStringLiteral("Prizes.LastChanged");
    Station->SetLastPrizeChanged(Date(46347.123456789));
    EXPECT_EQ(Station->DatabaseSetting(setting, QString()).toString(), QStringLiteral("46347.12345679"));
    EXPECT_EQ(Station->LastPrizeChanged(), Date(46347.12345679));
    Station->SetLastPrizeChanged(Date(46347.5));
    EXPECT_EQ(Station->DatabaseSetting(setting, QString()).toString(), QStringLiteral("46347.5"));
    Station->SetLastPrizeChanged(Date(46350));
    EXPECT_EQ(Station->DatabaseSetting(setting, QString()).toString(), QStringLiteral("46350"));
    EXPECT_EQ(Station->LastPrizeChanged(), Date(46350));
    Station->SetLastPrizeChanged(Date());
    EXPECT_EQ(Station->DatabaseSetting(setting, QString()).toString(), QStringLiteral("0"));
    for (const char* text : {"soon", "0", "-3"}) {
        Station->SetDatabaseSetting(setting, QString::fromLatin1(text), QString());
        EXPECT_EQ(Station->LastPrizeChanged(), Date()) << text;
    }
}
