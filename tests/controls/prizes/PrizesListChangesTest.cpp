// SPDX-License-Identifier: Apache-2.0

// What other computers store shows in the rows that it changed, and leaves the user's place as it is.

#include "common/ClockHelper.h"
#include "database/watch/StationWatch.h"
#include "messageslist/uMessagesList.h"
#include "prizes/PrizesListTest.h"

#include <QLabel>
#include <QSignalSpy>

class PrizesListChangesTest : public PrizesListTest
{
protected:
    void ChangeElsewhere(qint32 reference, const std::function<void(cPrize&)>& change)
    {
        Now.Advance(1);
        const cPrizePtr prize = OtherComputer().GetPrize(reference, false);
        ASSERT_NE(prize, nullptr);
        change(*prize);
        EXPECT_TRUE(OtherComputer().SavePrize(prize));
    }
    qint32 SaveElsewhere(const QString& title)
    {
        Now.Advance(1);
        const auto prize = std::make_shared<cPrize>();
        prize->SetTitle(title);
        prize->SetNumberSupplied(5);
        EXPECT_TRUE(OtherComputer().SavePrize(prize));
        return prize->Reference();
    }
    void DeleteElsewhere(qint32 reference)
    {
        Now.Advance(1);
        EXPECT_TRUE(OtherComputer().DeletePrize(reference));
        OtherComputer().SetLastPrizeChanged(ClockHelper::NowUTC());
    }
    /// A tick that must not cover the list, nor run events between the rows.
    void TickInPlace()
    {
        const QSignalSpy progress(List.get(), &uPrizesList::FillProgress);
        const int yields = Ui.Yields();
        Tick();
        EXPECT_EQ(progress.size(), 0) << "the list was filled";
        EXPECT_EQ(Ui.Yields(), yields);
        EXPECT_EQ(TakeFills(), 1);
    }
    /// What is on show is what a fill shows.
    void ExpectAsFilled()
    {
        const QStringList titles = Titles();
        const QStringList lines = SecondLines();
        const QList<qint32> references = References();
        List->UpdateDisplay();
        EXPECT_EQ(titles, Titles());
        EXPECT_EQ(lines, SecondLines());
        EXPECT_EQ(references, References());
    }
};

TEST_F(PrizesListChangesTest, AChangedTitleIsDrawnInItsRowAlone)
{
    const QList<qint32> references = SaveMany(60);
    Attach();
    // Without a stamp of its own nobody sees this one, unless the row is drawn again.
    for (int row = 1; row <= 60; ++row)
        Grid->SetTextMatrix(row, 1, QStringLiteral("Drawn before"));
    ChangeElsewhere(references.at(40), [](cPrize& prize) { prize.SetTitle(QStringLiteral("Two mugs")); });
    TickInPlace();
    EXPECT_EQ(Titles().count(QStringLiteral("Drawn before")), 59);
    EXPECT_EQ(Titles().at(40), QStringLiteral("Two mugs"));
    EXPECT_EQ(SecondLines().at(40), QStringLiteral("(0 of 5 Won)"));
}

TEST_F(PrizesListChangesTest, RowsThatComeAndGoLeaveTheOthersAndTheUsersPlace)
{
    const QList<qint32> references = SaveMany(120);
    Attach();
    Grid->SetTopRow(50);
    ClickRow(52);
    TakeSelections();
    DeleteElsewhere(references.at(9));
    SaveElsewhere(QStringLiteral("From afar"));
    TickInPlace();
    EXPECT_EQ(List->NumberItems(), 120);
    EXPECT_EQ(Titles().last(), QStringLiteral("From afar"));
    EXPECT_FALSE(References().contains(references.at(9)));
    EXPECT_EQ(List->SelectedReference(), references.at(51));
    EXPECT_EQ(Grid->Row(), 51);
    EXPECT_EQ(Grid->TopRow(), 49) << "the same prizes stand under the eyes";
    EXPECT_EQ(TakeSelections(), QList<qint32>{references.at(51)}) << "its script and notes may be others";
    ExpectAsFilled();
    EXPECT_TRUE(List->RefreshDisplay(references.at(119)));
    EXPECT_EQ(Grid->Row(), 119);
}

TEST_F(PrizesListChangesTest, APrizeThatIsWonOutElsewhereLeavesTheAvailableOnes)
{
    const QList<qint32> references = SaveMany(30);
    Attach(plcAllAvailable);
    ClickRow(3);
    ChangeElsewhere(references.at(2), [](cPrize& prize) { prize.SetNumberSupplied(0); });
    ChangeElsewhere(references.at(4), [](cPrize& prize) { prize.SetNumberSupplied(2); });
    TickInPlace();
    EXPECT_EQ(List->NumberItems(), 29);
    EXPECT_FALSE(References().contains(references.at(2)));
    EXPECT_EQ(SecondLines().at(3), QStringLiteral("(2 Available)"));
    EXPECT_EQ(List->SelectedReference(), references.at(3)) << "the row number is kept";
    ExpectAsFilled();
}

TEST_F(PrizesListChangesTest, TheLastPrizeGoneLeavesTheWordsThatThereIsNone)
{
    const qint32 only = Save(QStringLiteral("Mug"));
    Attach();
    DeleteElsewhere(only);
    TickInPlace();
    EXPECT_EQ(List->NumberItems(), 0);
    EXPECT_TRUE(NoPrizes().isVisible());
    EXPECT_EQ(List->SelectedReference(), 0);
    SaveElsewhere(QStringLiteral("Pen"));
    TickInPlace();
    EXPECT_FALSE(NoPrizes().isVisible());
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("Pen")});
}

TEST_F(PrizesListChangesTest, ARowDrawnAnewHereAndTakenBackThereIsDrawnAsItIsStored)
{
    const qint32 mug = Save(QStringLiteral("Mug"));
    Attach();
    ChangeRow(mug, QStringLiteral("Title"), QStringLiteral("Pen"));
    EXPECT_TRUE(List->RefreshDisplay(mug));
    ASSERT_EQ(Titles(), QStringList{QStringLiteral("Pen")});
    ChangeElsewhere(mug, [](cPrize& prize) { prize.SetTitle(QStringLiteral("Mug")); });
    TickInPlace();
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("Mug")});
}

TEST_F(PrizesListChangesTest, HowLongAgoOthersWereWonIsSaidAnewWithTheRowThatChanged)
{
    const qint32 mug = Save(QStringLiteral("Mug"));
    const qint32 pen = Save(QStringLiteral("Pen"));
    Award(mug);
    Now.Advance(600);
    Attach(plcRecentlyWonPrizes);
    ASSERT_EQ(SecondLines(), QStringList{QStringLiteral("10 minutes ago")});
    Now.Advance(600);
    const cPrizeWinnerPtr winner = OtherComputer().GetNewPrizeWinner(OtherComputer().GetPrize(pen, false));
    winner->SetWinnerReference(3);
    EXPECT_TRUE(OtherComputer().SavePrizeWinner(winner));
    TickInPlace();
    EXPECT_EQ(Titles(), QStringList({QStringLiteral("Mug"), QStringLiteral("Pen")}));
    EXPECT_EQ(SecondLines().first(), QStringLiteral("20 minutes ago"));
}

TEST_F(PrizesListChangesTest, ManyChangesAreFilledWithPausesForTheWindow)
{
    SaveMany(2);
    Attach();
    const auto other = &OtherComputer();
    Station->SetRaiseEvents(false);
    SaveMany(520);
    Now.Advance(1);
    other->SetLastPrizeChanged(ClockHelper::NowUTC());
    const int yields = Ui.Yields();
    Tick();
    EXPECT_GT(Ui.Yields(), yields);
    EXPECT_EQ(List->NumberItems(), 522);
}

TEST_F(PrizesListChangesTest, AnotherFindTextIsAnotherList)
{
    SaveMany(12);
    Attach();
    Box->SetText(QStringLiteral("Prize 1"));
    SaveElsewhere(QStringLiteral("Prize 1 again"));
    Tick();
    EXPECT_EQ(List->NumberItems(), 5);
    ExpectAsFilled();
}

TEST_F(PrizesListChangesTest, AnOwnSaveIsDrawnInPlaceAndToldWithTheNewScript)
{
    const QList<qint32> references = SaveMany(60);
    Attach();
    Grid->SetTopRow(30);
    ClickRow(32);
    const QSignalSpy progress(List.get(), &uPrizesList::FillProgress);
    QString script;
    QObject::connect(List.get(), &uPrizesList::PrizeSelected, List.get(),
                     [&](const cPrizePtr& prize) { script = prize->Script(); });
    const cPrizePtr prize = Station->GetPrize(references.at(31), false);
    prize->SetScript(QStringLiteral("Read this"));
    ASSERT_TRUE(Station->SavePrize(prize));
    EXPECT_EQ(progress.size(), 0);
    EXPECT_EQ(script, QStringLiteral("Read this"));
    EXPECT_EQ(Grid->TopRow(), 30);
    EXPECT_EQ(Grid->Row(), 32);
}

// ---- One poll for all lists of a station

class PolledListsTest : public PrizesListChangesTest
{
protected:
    PolledListsTest()
    {
        Messages.resize(900, 600);
        QObject::connect(&Messages, &uMessagesList::DisplayUpdated, &Messages, [this] { ++Updates; });
    }
    ~PolledListsTest() override { Messages.SetTolvaDatabase(nullptr); }
    void AttachBoth()
    {
        SaveNew(QStringLiteral("One"));
        Attach();
        Messages.SetTolvaDatabase(Station.get());
        Updates = 0;
    }
    void FileElsewhere()
    {
        Now.Advance(1);
        const cMessagePtr message = MakeMessage(QStringLiteral("Two"));
        message->SetCategory(tmcInbox);
        EXPECT_TRUE(OtherComputer().SaveMessage(message));
    }
    QTimer& MessagesTimer() const { return *Messages.findChild<QTimer*>(QStringLiteral("timerUpdateList")); }

    uMessagesList Messages;
    int Updates = 0;
};

TEST_F(PolledListsTest, TheTickOfOneListBringsTheOthersUpToDate)
{
    OpenStation();
    AttachBoth();
    FileElsewhere();
    SaveElsewhere(QStringLiteral("Mug"));
    Tick();
    EXPECT_EQ(List->NumberItems(), 1);
    EXPECT_EQ(Messages.NumberItems(), 2);
}

TEST_F(PolledListsTest, AListThatWasJustToldBeginsItsIntervalAnew)
{
    OpenStation();
    AttachBoth();
    Messages.SetAutoUpdateInterval(60);
    MessagesTimer().setTimerType(Qt::PreciseTimer); // coarse ones are rounded by up to a second
    MessagesTimer().start();
    ASSERT_TRUE(QTest::qWaitFor([this] { return MessagesTimer().remainingTime() <= 59'900; }));
    const int before = MessagesTimer().remainingTime();
    int behind = 0;
    // Told behind the lists.
    QObject::connect(&Station->Watch(), &StationWatch::Polled, &Messages,
                     [&] { behind = MessagesTimer().remainingTime(); });
    Tick();
    EXPECT_GT(behind, before);
}

TEST_F(PolledListsTest, AListThatDoesNotPollIsLeftAlone)
{
    OpenStation();
    AttachBoth();
    Messages.SetAutoUpdate(false);
    FileElsewhere();
    Tick();
    EXPECT_EQ(Messages.NumberItems(), 1);
    EXPECT_EQ(Updates, 0);
    EXPECT_FALSE(MessagesTimer().isActive());
}

TEST_F(PolledListsTest, AListOfAnotherStationHearsNothing)
{
    OpenStation();
    AttachBoth();
    Messages.SetTolvaDatabase(&OtherComputer());
    Updates = 0;
    FileElsewhere();
    Updates = 0;
    Tick();
    EXPECT_EQ(Updates, 0);
    Messages.SetTolvaDatabase(nullptr);
}

TEST_F(PolledListsTest, AHostMayDetachAListInTheEventOfAnother)
{
    OpenStation();
    AttachBoth();
    QObject::connect(List.get(), &uPrizesList::DisplayUpdated, &Messages,
                     [this] { Messages.SetTolvaDatabase(nullptr); });
    SaveElsewhere(QStringLiteral("Mug"));
    Tick();
    EXPECT_EQ(List->NumberItems(), 1);
    EXPECT_EQ(Messages.NumberItems(), 0);
}

TEST_F(PolledListsTest, TheListThatAskedMayGoInTheEventOfAnother)
{
    OpenStation();
    SaveNew(QStringLiteral("One"));
    Messages.SetTolvaDatabase(Station.get());
    Attach();
    QObject::connect(&Messages, &uMessagesList::DisplayUpdated, &Messages, [this] { List.reset(); });
    FileElsewhere();
    SaveElsewhere(QStringLiteral("Mug"));
    QMetaObject::invokeMethod(&Timer(), "timeout", Qt::DirectConnection);
    EXPECT_EQ(List, nullptr);
    EXPECT_EQ(Messages.NumberItems(), 2);
}
