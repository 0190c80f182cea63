// SPDX-License-Identifier: Apache-2.0
#include "AwardTest.h"

TEST_F(AwardTest, TwoClicksAwardAPrizeAndTheDeskSaysSo)
{
    OpenPrizes();
    Select(Prize);
    AwardOnPage(QStringLiteral("Ann"));
    ASSERT_EQ(WinnersOf(Prize).size(), 1);
    EXPECT_EQ(WinnersOf(Prize).first().WinnerReference, Ann);
    EXPECT_EQ(Stored(Prize)->NumberWinners(), 1);
    EXPECT_EQ(AwardNotice().Text(), QStringLiteral("Awarded “Two tickets” to Ann Angove."));
}

TEST_F(AwardTest, UndoTakesTheAwardBack)
{
    OpenPrizes();
    Select(Prize);
    AwardOnPage(QStringLiteral("Ann"));
    QTest::mouseClick(&Get<QPushButton>(AwardNotice(), "noticeButton"), Qt::LeftButton);
    EXPECT_TRUE(WinnersOf(Prize).isEmpty());
    EXPECT_EQ(Stored(Prize)->NumberWinners(), 0);
    EXPECT_EQ(AwardNotice().Text(), QString());
}

TEST_F(AwardTest, WhoMayNotManagePrizesUndoesAnOwnAwardByTheKeyboard)
{
    AddUser(QStringLiteral("Petra"), static_cast<int>(DirectoryRight::CanEditMessages));
    OpenPrizes(QStringLiteral("Petra"));
    Select(Prize);
    AwardOnPage(QStringLiteral("Ann"));
    ASSERT_EQ(WinnersOf(Prize).size(), 1);
    EXPECT_EQ(List().NumberItems(), 0);
    Activate(*Window);
    QTest::keyClick(Window.get(), Qt::Key_U, Qt::AltModifier);
    EXPECT_TRUE(WaitUntil([this] { return WinnersOf(Prize).isEmpty(); }));
    EXPECT_EQ(Stored(Prize)->NumberWinners(), 0);
    EXPECT_EQ(List().NumberItems(), 1); // it may go out again
    EXPECT_EQ(AwardNotice().Text(), QString());
}

TEST_F(AwardTest, AnAwardThatTheOtherComputerTookBackIsUndoneWithoutAWord)
{
    OpenPrizes();
    Select(Prize);
    AwardOnPage(QStringLiteral("Ann"));
    ASSERT_EQ(WinnersOf(Prize).size(), 1);
    EXPECT_TRUE(Station.Database().DeletePrizeWinner(WinnersOf(Prize).first().Reference));
    QTest::mouseClick(&Get<QPushButton>(AwardNotice(), "noticeButton"), Qt::LeftButton);
    EXPECT_EQ(AwardNotice().Text(), QString());
    EXPECT_TRUE(WinnersOf(Prize).isEmpty());
    EXPECT_EQ(Stored(Prize)->NumberWinners(), 0);
}

TEST_F(AwardTest, TheUndoIsOfTheLastAwardAlone)
{
    const qint32 mug = AddPrize(QStringLiteral("A mug"));
    OpenPrizes();
    Select(Prize);
    AwardOnPage(QStringLiteral("Ann"));
    Select(mug);
    AwardOnPage(QStringLiteral("Ben"));
    EXPECT_EQ(AwardNotice().Text(), QStringLiteral("Awarded “A mug” to Ben Bosanko."));
    QTest::mouseClick(&Get<QPushButton>(AwardNotice(), "noticeButton"), Qt::LeftButton);
    EXPECT_TRUE(WinnersOf(mug).isEmpty());
    EXPECT_EQ(WinnersOf(Prize).size(), 1);
}

TEST_F(AwardTest, ANewPersonIsTakenInAndAwardedInThreeSteps)
{
    OpenPrizes();
    Select(Prize);
    DialogVisitor contact("contactDialog", [](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("contactName"))->text(), QStringLiteral("Demelza Deen"));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    DialogVisitor chooser("contactChooser", [](QDialog& dialog) {
        auto* box = dialog.findChild<QLineEdit*>(QStringLiteral("contactSearch"));
        QTest::keyClicks(box, QStringLiteral("Demelza Deen"));
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("newContact")), Qt::LeftButton);
    });
    ClickAward();
    ASSERT_EQ(WinnersOf(Prize).size(), 1);
    const clsKVContactPtr winner = Station.Directory().GetContact(WinnersOf(Prize).first().WinnerReference);
    ASSERT_TRUE(winner);
    EXPECT_EQ(winner->Name, QStringLiteral("Demelza Deen"));
    EXPECT_EQ(AwardNotice().Text(), QStringLiteral("Awarded “Two tickets” to Demelza Deen."));
}

TEST_F(AwardTest, GivingUpTheNewPersonAwardsNothing)
{
    OpenPrizes();
    Select(Prize);
    DialogVisitor contact("contactDialog", [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    DialogVisitor chooser("contactChooser", [](QDialog& dialog) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("newContact")), Qt::LeftButton);
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    ClickAward();
    EXPECT_TRUE(WinnersOf(Prize).isEmpty());
}

TEST_F(AwardTest, GivingUpInTheChooserAwardsNothing)
{
    OpenPrizes();
    Select(Prize);
    DialogVisitor chooser("contactChooser", [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    ClickAward();
    EXPECT_TRUE(WinnersOf(Prize).isEmpty());
}

TEST_F(AwardTest, TheKeyOfThePageAwardsToo)
{
    OpenPrizes();
    Select(Prize);
    DialogVisitor chooser("contactChooser", Choosing(QStringLiteral("Ben")));
    QTest::keyClick(&Grid(), Qt::Key_Return, Qt::ControlModifier);
    ASSERT_EQ(WinnersOf(Prize).size(), 1);
    EXPECT_EQ(WinnersOf(Prize).first().WinnerReference, Ben);
}

TEST_F(AwardTest, APrizeOfWhichNoneWasSuppliedIsRefusedInWords)
{
    const qint32 none = AddPrize(QStringLiteral("A promise"), 0);
    OpenPrizes();
    List().SetCategory(plcAllPrizes);
    Select(none);
    Ui.ExpectWarning(QStringLiteral("“A promise” cannot be awarded, because none was supplied. Enter the number "
                                    "supplied in the prize's window first."));
    ClickAward();
}

TEST_F(AwardTest, APrizeThatIsUsedUpSaysWhoHasTheLastOne)
{
    AwardElsewhere(Prize, Ben);
    OpenPrizes();
    List().SetCategory(plcAllPrizes);
    Select(Prize);
    Ui.ExpectWarning(QStringLiteral("“Two tickets” has been won already. The last one went to Ben Bosanko (21 November "
                                    "2026, 14:05). Nothing was saved."));
    ClickAward();
}

TEST_F(AwardTest, AWinnerWhomACrashLeftUncountedHasTheLastUnitAllTheSame)
{
    AwardElsewhere(Prize, Ben);
    // As a program leaves it that was killed before it counted the winner.
    OverwriteCount(0);
    OpenPrizes();
    Select(Prize);
    Ui.ExpectWarning(QStringLiteral("“Two tickets” has been won already. The last one went to Ben Bosanko (21 November "
                                    "2026, 14:05). Nothing was saved."));
    ClickAward();
    EXPECT_EQ(WinnersOf(Prize).size(), 1);
    EXPECT_EQ(Stored(Prize)->NumberWinners(), 1);
}
