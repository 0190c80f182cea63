// SPDX-License-Identifier: Apache-2.0
#include "AwardTest.h"

TEST_F(AwardTest, APrizeAwardedElsewhereWhileTheContactIsChosenIsRefused)
{
    OpenPrizes();
    Select(Prize);
    Ui.ExpectWarning(QStringLiteral("“Two tickets” has been won already. The last one went to Ben Bosanko (21 November "
                                    "2026, 14:05). Nothing was saved."));
    DialogVisitor chooser("contactChooser", [this](QDialog& dialog) {
        AwardElsewhere(Prize, Ben);
        Choosing(QStringLiteral("Ann"))(dialog);
    });
    ClickAward();
    EXPECT_EQ(WinnersOf(Prize).size(), 1);
    EXPECT_EQ(AwardNotice().Text(), QString());
}

TEST_F(AwardTest, APrizeDeletedElsewhereIsRefused)
{
    OpenPrizes();
    Select(Prize);
    Ui.ExpectWarning(QStringLiteral("The prize is not there any more: it was deleted on another computer. Nothing was "
                                    "saved."));
    DialogVisitor chooser("contactChooser", [this](QDialog& dialog) {
        EXPECT_TRUE(Station.Database().DeletePrize(Prize));
        Choosing(QStringLiteral("Ann"))(dialog);
    });
    ClickAward();
    EXPECT_TRUE(WinnersOf(Prize).isEmpty());
}

TEST_F(AwardTest, AContactWithAHighReferenceIsRefusedAndNothingIsHalfSaved)
{
    // As in a directory through which many contacts have gone.
    sqlite3* directory = nullptr;
    ASSERT_EQ(sqlite3_open(StationPlace::DirectoryFileIn(Folder()).toUtf8().constData(), &directory), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(directory, "UPDATE \"~Tables\" SET Counter=39999 WHERE Name='Contacts'", nullptr, nullptr,
                           nullptr),
              SQLITE_OK);
    sqlite3_close(directory);
    EmbeddedDirectory elsewhere; // which has taken no numbers beforehand
    elsewhere.Open(StationPlace::DirectoryIn(Folder()));
    clsKVContact high;
    high.Name = QStringLiteral("Zacky High");
    elsewhere.SaveContact(high);
    elsewhere.Close();
    ASSERT_EQ(high.Reference, 40000);
    const Date stamp = Station.Database().LastPrizeChanged();
    OpenPrizes();
    Select(Prize);
    Ui.ExpectWarning(QStringLiteral("Zacky High cannot be stored as a winner: the contact has the number 40,000, and a "
                                    "winner's field holds numbers up to 32,767. Nothing was saved. Choose another "
                                    "contact, or ask your technician."));
    AwardOnPage(QStringLiteral("Zacky"));
    EXPECT_TRUE(WinnersOf(Prize).isEmpty());
    EXPECT_EQ(Stored(Prize)->NumberWinners(), 0);
    EXPECT_TRUE(Stored(Prize)->LastWonDate().IsNone());
    EXPECT_EQ(Station.Database().LastPrizeChanged(), stamp);
}

TEST_F(AwardTest, ThePrizeFieldOfAWinnerRefusesAHighReferenceByItself)
{
    const cPrizeWinnerPtr winner = Station.Database().GetNewPrizeWinner(Stored(Prize));
    winner->SetWinnerReference(32768);
    EXPECT_FALSE(Station.Database().SavePrizeWinner(winner));
    EXPECT_TRUE(WinnersOf(Prize).isEmpty());
    EXPECT_EQ(Stored(Prize)->NumberWinners(), 0);
}

TEST_F(AwardTest, ARecentWinnerIsAskedAbout)
{
    const qint32 earlier = AddPrize(QStringLiteral("A mug"));
    AwardElsewhere(earlier, Ann, Date(2026, 11, 14, 9, 30));
    OpenPrizes();
    Select(Prize);
    const QString question = QStringLiteral("Ann Angove won “A mug” on 14 November 2026 (7 days ago). At this station "
                                            "winners wait 30 days.\n\nDo you want to make the award all the same?");
    Ui.ExpectConfirmation(question, MessageBoxAnswer::No);
    AwardOnPage(QStringLiteral("Ann"));
    EXPECT_TRUE(WinnersOf(Prize).isEmpty());
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    AwardOnPage(QStringLiteral("Ann"));
    EXPECT_EQ(WinnersOf(Prize).size(), 1);
}

TEST_F(AwardTest, TheStationSaysHowLongAWinnerWaits)
{
    const qint32 earlier = AddPrize(QStringLiteral("A mug"), 3);
    AwardElsewhere(earlier, Ann, Date(2026, 11, 14, 9, 30));
    EXPECT_NE(PrizeAwards::RecentWinQuestion(Station, Ann), QString());
    PrizeAwards::SetEligibleDays(Station, 7);
    EXPECT_EQ(PrizeAwards::RecentWinQuestion(Station, Ann), QString());
    PrizeAwards::SetEligibleDays(Station, 8);
    EXPECT_NE(PrizeAwards::RecentWinQuestion(Station, Ann), QString());
    PrizeAwards::SetEligibleDays(Station, 0);
    EXPECT_EQ(PrizeAwards::RecentWinQuestion(Station, Ann), QString());
    Station.Database().SetDatabaseSetting(QStringLiteral("Prizes.EligibleDays"), QStringLiteral("a month"), QString());
    EXPECT_EQ(PrizeAwards::EligibleDays(Station), 30);
}

TEST_F(AwardTest, APrizeThatMayNotGoOutNowIsAskedAbout)
{
    const qint32 later =
        AddPrize(QStringLiteral("Tomorrow's"), 1, [](cPrize& prize) { prize.SetStartDate(Date(2026, 11, 22)); });
    OpenPrizes();
    List().SetCategory(plcAllPrizes);
    Select(later);
    Ui.ExpectConfirmation(QStringLiteral("“Tomorrow's” may not go out now. It may go out from 22 November 2026 on.\n\n"
                                         "Do you want to award it all the same?"),
                          MessageBoxAnswer::No);
    ClickAward();
    EXPECT_TRUE(WinnersOf(later).isEmpty());
}

TEST_F(AwardTest, AStationMayDemandTheRightToManagePrizes)
{
    AddUser(QStringLiteral("Petra"), static_cast<int>(DirectoryRight::CanEditMessages));
    OpenPrizes(QStringLiteral("Petra"));
    Select(Prize);
    AwardOnPage(QStringLiteral("Ann"));
    EXPECT_EQ(WinnersOf(Prize).size(), 1);
    PrizeAwards::SetNeedsRight(Station, true);
    Ui.ExpectWarning(QStringLiteral("At this station only users who may manage prizes award them. Your technician can "
                                    "give you that right."));
    Prizes().Award(Prize);
}

TEST_F(AwardTest, TheSecondOfTwoInTheSameMomentIsToldWhoWasQuicker)
{
    Ui.ExpectWarning(QStringLiteral("“Two tickets” has been won already. The last one went to Ben Bosanko (21 November "
                                    "2026, 14:05). Nothing was saved."));
    AwardAfter([this] { AwardElsewhere(Prize, Ben); });
    ASSERT_EQ(WinnersOf(Prize).size(), 1);
    EXPECT_EQ(WinnersOf(Prize).first().WinnerReference, Ben);
    EXPECT_EQ(Stored(Prize)->NumberWinners(), 1);
    EXPECT_EQ(AwardNotice().Text(), QString());
}

TEST_F(AwardTest, APrizeDeletedInTheMomentOfItsAwardIsNotAwarded)
{
    Ui.ExpectWarning(QStringLiteral("The prize is not there any more: it was deleted on another computer. Nothing was "
                                    "saved."));
    AwardAfter([this] { EXPECT_TRUE(Station.Database().DeletePrize(Prize)); });
    EXPECT_TRUE(WinnersOf(Prize).isEmpty());
}

TEST_F(AwardTest, MoreWinnersThanUnitsAreToldAndTheOwnOneTakenBack)
{
    EXPECT_EQ(AwardInTheSameMoment(QStringLiteral("Take it back from Ann Angove")),
              QStringLiteral("“Two tickets” has been awarded 2 times, but only 1 was supplied."));
    ASSERT_EQ(WinnersOf(Prize).size(), 1);
    EXPECT_EQ(WinnersOf(Prize).first().WinnerReference, Ben);
    EXPECT_EQ(Stored(Prize)->NumberWinners(), 1);
    EXPECT_EQ(AwardNotice().Text(), QString());
}

TEST_F(AwardTest, MoreWinnersThanUnitsMayBeLeft)
{
    AwardInTheSameMoment(QStringLiteral("Leave it as it is"));
    EXPECT_EQ(WinnersOf(Prize).size(), 2);
    EXPECT_EQ(AwardNotice().Text(), QStringLiteral("Awarded “Two tickets” to Ann Angove."));
    List().SetCategory(plcAllPrizes);
    Select(Prize);
    EXPECT_EQ(Text("presenterWinnersLabel"), QStringLiteral("Winners: 2, more than were supplied"));
}

TEST_F(AwardTest, TakingTheOtherOfTwoBackLeavesTheRightCountToo)
{
    AwardInTheSameMoment(QStringLiteral("Leave it as it is"));
    QString words;
    for (const PrizeRows::Winner& winner : WinnersOf(Prize)) {
        if (winner.WinnerReference == Ben) {
            EXPECT_TRUE(PrizeAwards::TakeBack(Station, winner.Reference, words)) << words.toStdString();
        }
    }
    ASSERT_EQ(WinnersOf(Prize).size(), 1);
    EXPECT_EQ(Stored(Prize)->NumberWinners(), 1);
    EXPECT_EQ(PrizeAwards::WhyNotAwardable(Station, Prize).isEmpty(), false);
}

TEST_F(AwardTest, WhatStandsIsToldByNameTimeAndUser)
{
    const qint32 own = AwardElsewhere(Prize, Ben);
    EXPECT_EQ(PrizeAwards::WinnersInWords(Station, WinnersOf(Prize), 0),
              QStringLiteral("Ben Bosanko, 21 November 2026, 14:05:09, awarded by Technician"));
    EXPECT_EQ(PrizeAwards::WinnersInWords(Station, WinnersOf(Prize), own),
              QStringLiteral("Ben Bosanko, 21 November 2026, 14:05:09, awarded by you just now"));
}

TEST_F(AwardTest, AMessageAwardsAPrizeToItsSender)
{
    AddPrize(QStringLiteral("A mug"));
    const qint32 loveday = AddContact(QStringLiteral("Loveday Tregenza"), {}, QStringLiteral("loveday@example.org"));
    FileMail(Mail("Please"));
    OpenWindow();
    auto* grid = Window->List().findChild<FlexGrid*>(QStringLiteral("grdMessages"));
    grid->setFocus();
    grid->SetRow(1);
    DialogVisitor chooser("prizeChooser", [](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("winner"))->text(),
                  QStringLiteral("A prize for Loveday Tregenza (loveday@example.org)"));
        auto* find = dialog.findChild<QLineEdit*>(QStringLiteral("findPrize"));
        QTest::keyClicks(find, QStringLiteral("ticket"));
        QTest::keyClick(find, Qt::Key_Return);
    });
    QTest::keyClick(Window.get(), Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(WinnersOf(Prize).size(), 1);
    EXPECT_EQ(WinnersOf(Prize).first().WinnerReference, loveday);
    EXPECT_EQ(AwardNotice().Text(), QStringLiteral("Awarded “Two tickets” to Loveday Tregenza."));
}

TEST_F(AwardTest, AnUnknownSenderBecomesAContactFirst)
{
    FileMail(Mail("Please"));
    OpenWindow();
    auto* grid = Window->List().findChild<FlexGrid*>(QStringLiteral("grdMessages"));
    grid->setFocus();
    grid->SetRow(1);
    DialogVisitor contact("contactDialog", [](QDialog& dialog) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("saveContact")), Qt::LeftButton);
    });
    DialogVisitor chooser("prizeChooser", [](QDialog& dialog) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("awardPrize")), Qt::LeftButton);
    });
    Window->findChild<QAction*>(QStringLiteral("awardToSender"))->trigger();
    const QList<clsKVContactPtr> found = Station.Directory().ContactsByAddress(QStringLiteral("loveday@example.org"));
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found.first()->Name, QStringLiteral("Loveday Tregenza"));
    ASSERT_EQ(WinnersOf(Prize).size(), 1);
    EXPECT_EQ(WinnersOf(Prize).first().WinnerReference, found.first()->Reference);
}

TEST_F(AwardTest, TheStationsOwnMessageAwardsNothing)
{
    const qint32 reference = FileMail(Mail("Ours"), tmcSent);
    OpenWindow();
    Ui.ExpectWarning(QStringLiteral("The station wrote this message itself. Choose a message of a listener."));
    Prizes().AwardToSender(Station.Database().GetMessage(reference));
}

TEST_F(AwardTest, TheChooserOfPrizesOffersWhatMayGoOutNowFirst)
{
    AddPrize(QStringLiteral("At night"), 1, [](cPrize& prize) {
        for (qint16 day = 1; day <= 7; ++day)
            prize.SetAvailableForHour(day, 14, false);
    });
    const qint32 reference = FileMail(Mail("Please"));
    AddContact(QStringLiteral("Loveday Tregenza"), {}, QStringLiteral("loveday@example.org"));
    OpenWindow();
    DialogVisitor chooser("prizeChooser", [](QDialog& dialog) {
        auto* list = dialog.findChild<QListWidget*>(QStringLiteral("prizes"));
        ASSERT_EQ(list->count(), 1);
        EXPECT_EQ(list->item(0)->text(), QStringLiteral("Two tickets\n1 of 1 left"));
        auto* all = dialog.findChild<QCheckBox*>(QStringLiteral("showAllPrizes"));
        QTest::keyClick(all, Qt::Key_Space);
        EXPECT_EQ(list->count(), 2);
        auto* find = dialog.findChild<QLineEdit*>(QStringLiteral("findPrize"));
        QTest::keyClicks(find, QStringLiteral("castle"));
        EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("noPrizes"))->text(),
                  QStringLiteral("No prize has “castle” in its title. Clear the search to see the others."));
        EXPECT_FALSE(dialog.findChild<QPushButton*>(QStringLiteral("awardPrize"))->isEnabled());
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    Prizes().AwardToSender(Station.Database().GetMessage(reference));
    EXPECT_TRUE(WinnersOf(Prize).isEmpty());
}
