// SPDX-License-Identifier: Apache-2.0
#include "PrizeDeskTest.h"
#include "prizes/PrizeAwards.h"

#include <QAction>

namespace
{
class WinnerWindowTest : public PrizeDeskTest
{
protected:
    void SetUp() override
    {
        PrizeDeskTest::SetUp();
        Ann = AddContact(QStringLiteral("Ann Angove"));
        Ben = AddContact(QStringLiteral("Ben Bosanko"));
        Prize = AddPrize(QStringLiteral("Two tickets"), 2);
        Winner = AwardElsewhere(Prize, Ann);
        OpenPrizes();
        Select(Prize);
    }
    /// From the list of winners beside the script, by Enter.
    WinnerWindow& Open()
    {
        WinnersView& winners = Presenter().Winners();
        winners.setFocus();
        winners.setCurrentItem(winners.topLevelItem(0));
        QTest::keyClick(&winners, Qt::Key_Return);
        WinnerWindow* window = OnlyWinnerWindow();
        Activate(*window);
        return *window;
    }
    static void Save(WinnerWindow& window)
    {
        Activate(window);
        QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
    }
    cPrizeWinnerPtr Row() { return Station.Database().GetPrizeWinner(Winner); }

    qint32 Ann = 0;
    qint32 Ben = 0;
    qint32 Prize = 0;
    qint32 Winner = 0;
};
} // namespace

TEST_F(WinnerWindowTest, SentAndNotesAreKept)
{
    WinnerWindow& window = Open();
    EXPECT_EQ(Get<QLineEdit>(window, "winner").text(), QStringLiteral("Ann Angove"));
    EXPECT_EQ(Get<QLineEdit>(window, "sent").text(), QString());
    QTest::mouseClick(&Get<QPushButton>(window, "sentNow"), Qt::LeftButton);
    EXPECT_EQ(Get<QLabel>(window, "sentBy").text(), QStringLiteral("Sent by Technician"));
    Type(Get<QPlainTextEdit>(window, "notes"), QStringLiteral("Rang back"));
    Type(Get<QPlainTextEdit>(window, "notesToSupplier"), QStringLiteral("By post"));
    Save(window);
    EXPECT_EQ(Row()->SentDateString(), Date(2026, 11, 21, 14, 5, 9).GeneralDate());
    EXPECT_EQ(Row()->SentByReference(), Window->Station().Directory().CurrentUser()->Reference());
    EXPECT_EQ(Row()->Notes(), QStringLiteral("Rang back"));
    EXPECT_EQ(Row()->NotesToSupplier(), QStringLiteral("By post"));
    EXPECT_EQ(Stored(Prize)->NumberWinners(), 1);
    EXPECT_TRUE(window.close());
}

TEST_F(WinnerWindowTest, TheWinnerCanBeCorrected)
{
    WinnerWindow& window = Open();
    {
        DialogVisitor chooser("contactChooser", Choosing(QStringLiteral("Ben")));
        QTest::mouseClick(&Get<QPushButton>(window, "winnerChoose"), Qt::LeftButton);
    }
    Save(window);
    EXPECT_EQ(Row()->WinnerReference(), Ben);
    EXPECT_EQ(WinnersOf(Prize).size(), 1);
    window.close();
}

TEST_F(WinnerWindowTest, NobodyIsNoWinner)
{
    WinnerWindow& window = Open();
    QTest::mouseClick(&Get<QPushButton>(window, "winnerClear"), Qt::LeftButton);
    Ui.ExpectWarning(QStringLiteral("A prize that was won has a winner. Choose a contact, or take it back."));
    Save(window);
    EXPECT_EQ(Row()->WinnerReference(), Ann);
    BoxAnswer discard(QStringLiteral("Discard"));
    window.close();
}

TEST_F(WinnerWindowTest, TakingBackAsksAndGivesTheUnitBack)
{
    WinnerWindow& window = Open();
    const QString question =
        QStringLiteral("Do you want to take “Two tickets” back from Ann Angove? The prize can be awarded again then.");
    Ui.ExpectConfirmation(question, MessageBoxAnswer::No);
    window.findChild<QAction*>(QStringLiteral("takeBack"))->trigger();
    EXPECT_EQ(WinnersOf(Prize).size(), 1);
    Ui.ExpectConfirmation(question, MessageBoxAnswer::Yes);
    window.findChild<QAction*>(QStringLiteral("takeBack"))->trigger();
    EXPECT_TRUE(WinnersOf(Prize).isEmpty());
    EXPECT_EQ(Stored(Prize)->NumberWinners(), 0);
    EXPECT_TRUE(WaitUntil([this] { return Prizes().WinnerWindows().isEmpty(); }));
}

TEST_F(WinnerWindowTest, WhoMayNotManagePrizesTakesOnlyOwnAwardsBack)
{
    CloseWindow();
    AddUser(QStringLiteral("Petra"), static_cast<int>(DirectoryRight::CanEditMessages));
    OpenPrizes(QStringLiteral("Petra"));
    Select(Prize);
    WinnerWindow& window = Open();
    Ui.ExpectWarning(QStringLiteral("Another user made this award. Taking it back needs the right to manage prizes; "
                                    "Technician can do it too."));
    window.findChild<QAction*>(QStringLiteral("takeBack"))->trigger();
    EXPECT_EQ(WinnersOf(Prize).size(), 1);
    window.close();
}

TEST_F(WinnerWindowTest, AWinnerTakenBackElsewhereIsNotStoredAgain)
{
    WinnerWindow& window = Open();
    Type(Get<QPlainTextEdit>(window, "notes"), QStringLiteral("Rang back"));
    ASSERT_TRUE(Station.Database().DeletePrizeWinner(Winner));
    Ui.ExpectWarning(QStringLiteral("The award was taken back on another computer meanwhile, so there is nothing to "
                                    "save. Award the prize again if Ann Angove is to have it."));
    Save(window);
    EXPECT_TRUE(WinnersOf(Prize).isEmpty());
    EXPECT_EQ(Get<NoticeBar>(window, "storedNotice").Text(), QStringLiteral("This award was taken back meanwhile."));
    BoxAnswer discard(QStringLiteral("Discard"));
    window.close();
}

TEST_F(WinnerWindowTest, AnotherComputersChangeIsAskedAbout)
{
    WinnerWindow& window = Open();
    Type(Get<QPlainTextEdit>(window, "notes"), QStringLiteral("Mine"));
    const cPrizeWinnerPtr other = Row();
    other->SetNotes(QStringLiteral("Theirs"));
    ASSERT_TRUE(Station.Database().SavePrizeWinner(other));
    {
        BoxAnswer cancel(QStringLiteral("Cancel"));
        Save(window);
        EXPECT_TRUE(cancel.Details().contains(QStringLiteral("Notes: Theirs")));
    }
    EXPECT_EQ(Row()->Notes(), QStringLiteral("Theirs"));
    BoxAnswer mine(QStringLiteral("Save mine"));
    Save(window);
    EXPECT_EQ(Row()->Notes(), QStringLiteral("Mine"));
    window.close();
}

TEST_F(WinnerWindowTest, AWinnerThatIsGoneDoesNotOpen)
{
    WinnersView& winners = Presenter().Winners();
    winners.setCurrentItem(winners.topLevelItem(0));
    ASSERT_TRUE(Station.Database().DeletePrizeWinner(Winner));
    Ui.ExpectWarning(QStringLiteral("That award is not there any more: it was taken back on another computer."));
    QTest::keyClick(&winners, Qt::Key_Return);
    EXPECT_EQ(winners.Count(), 0);
}
