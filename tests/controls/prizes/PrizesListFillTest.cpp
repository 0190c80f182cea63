// SPDX-License-Identifier: Apache-2.0

// Filling, polling, and what may happen while a fill lets the window answer.

#include "messageslist/ErrorCatcher.h"
#include "platform/widgets/SystemColour.h"
#include "prizes/PrizesListTest.h"

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>

#include <sqlite3.h>

class PrizesListFillTest : public PrizesListTest
{
protected:
    bool IsInFrontOfTheGrid(QWidget& panel) const
    {
        // Siblings are drawn in the order of their parent's list.
        const QObjectList& siblings = panel.parentWidget()->children();
        return panel.parentWidget() == Grid->parentWidget() && siblings.indexOf(&panel) > siblings.indexOf(Grid);
    }
};

TEST_F(PrizesListFillTest, RowsComeInTheOrderOfTheQueryWithTheirReferences)
{
    const QList<qint32> references = SaveMany(3);
    Attach();
    EXPECT_EQ(References(), references);
    EXPECT_EQ(Titles(), QStringList({QStringLiteral("Prize 1"), QStringLiteral("Prize 2"), QStringLiteral("Prize 3")}));
    EXPECT_EQ(Grid->TextMatrix(0, 0), QStringLiteral("Reference"));
    EXPECT_EQ(Grid->TextMatrix(0, 1), QStringLiteral("Title"));
    EXPECT_EQ(Grid->ColWidth(0), 0);
    EXPECT_EQ(Grid->toolTip(), QStringLiteral("Click and Drag to move this Prize"));
    const QAbstractItemModelTester tester(Grid->model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 3);
}

TEST_F(PrizesListFillTest, TheWindowAnswersEvery25RowsFromTheFirstOn)
{
    SaveMany(52);
    Attach();
    const int before = Ui.Yields();
    QSignalSpy progress(List.get(), &uPrizesList::FillProgress);
    List->UpdateDisplay();
    EXPECT_EQ(Ui.Yields() - before, 3); // behind 1, 26 and 51
    ASSERT_EQ(progress.size(), 3);
    EXPECT_EQ(progress.at(1).at(0).toInt(), 26);
    EXPECT_EQ(progress.at(1).at(1).toInt(), 52);
    EXPECT_EQ(Grid->Rows(), 53);
}

TEST_F(PrizesListFillTest, TheGridGrowsBy500RowsAndEndsWithThoseThatItHolds)
{
    SaveMany(30);
    Attach(plcWonPrizes);
    ASSERT_EQ(Grid->Rows(), 1);
    bool looked = false;
    AtYield(1, [&] {
        looked = true;
        EXPECT_EQ(Grid->Rows(), 501);
    });
    List->SetCategory(plcAllPrizes);
    EXPECT_TRUE(looked);
    EXPECT_EQ(Grid->Rows(), 31);
}

TEST_F(PrizesListFillTest, WhileItFillsTheTreeAndTheTabWaitAndAnotherUpdateIsDropped)
{
    SaveMany(30);
    Attach();
    bool looked = false;
    AtYield(1, [&] {
        looked = true;
        EXPECT_TRUE(List->IsFilling());
        EXPECT_TRUE(Loading().isVisible());
        EXPECT_TRUE(IsInFrontOfTheGrid(Loading()));
        EXPECT_FALSE(Tree->isEnabled());
        EXPECT_FALSE(Child<QWidget>("tbsPrizes").isEnabled());
        EXPECT_FALSE(Timer().isActive());
        EXPECT_FALSE(Grid->Redraw());
        EXPECT_EQ(List->SelectedReference(), 0);
        EXPECT_EQ(List->cursor().shape(), Qt::WaitCursor);
        List->UpdateDisplay();
    });
    List->UpdateDisplay();
    EXPECT_TRUE(looked);
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_FALSE(List->IsFilling());
    EXPECT_TRUE(Tree->isEnabled());
    EXPECT_TRUE(Child<QWidget>("tbsPrizes").isEnabled());
    EXPECT_TRUE(Timer().isActive());
    EXPECT_TRUE(Grid->Redraw());
    EXPECT_FALSE(Loading().isVisible());
    EXPECT_EQ(List->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(PrizesListFillTest, SurvivesTheEndOfTheListInAYield)
{
    SaveMany(30);
    Attach();
    AtYield(1, [&] { List.reset(); });
    List->UpdateDisplay();
    EXPECT_EQ(List, nullptr);
}

TEST_F(PrizesListFillTest, SurvivesTheClosingOfTheStationInAYield)
{
    SaveMany(30);
    Attach();
    AtYield(1, [&] { Station->CloseTolvaDatabase(); });
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 0);
    EXPECT_TRUE(Tree->isEnabled());
}

TEST_F(PrizesListFillTest, SurvivesTheDetachingAndTheEndOfTheStationInAYield)
{
    SaveMany(30);
    Attach();
    AtYield(1, [&] { List->SetTolvaDatabase(nullptr); });
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 0);
    EXPECT_EQ(List->SelectedReference(), 0);
    List->SetTolvaDatabase(Station.get());
    AtYield(1, [&] { Station.reset(); });
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 0);
    EXPECT_EQ(List->TolvaDatabase(), nullptr);
}

TEST_F(PrizesListFillTest, AnotherKindChosenInAYieldIsTheOneOnShow)
{
    SaveMany(30);
    Attach();
    AtYield(1, [&] { List->SetCategory(plcWonPrizes); });
    List->UpdateDisplay();
    EXPECT_EQ(List->Category(), plcWonPrizes);
    EXPECT_EQ(List->NumberItems(), 0);
    EXPECT_TRUE(NoPrizes().isVisible());
    EXPECT_TRUE(IsInFrontOfTheGrid(NoPrizes()));
    EXPECT_EQ(TakeFills(), 1);
}

TEST_F(PrizesListFillTest, EveryCellHasTheWindowsColours)
{
    SaveMany(2);
    Attach();
    for (int row = 1; row <= 2; ++row) {
        EXPECT_EQ(Grid->CellBackColour(row, 1), SystemColour::WindowBackground);
        EXPECT_EQ(Grid->CellForeColour(row, 1), SystemColour::WindowText);
    }
}

TEST_F(PrizesListFillTest, APrizeThatVanishesBeforeItIsReadIsLeftOut)
{
    const QList<qint32> references = SaveMany(30);
    Attach();
    AtYield(1, [&] { EXPECT_TRUE(OtherComputer().DeletePrize(references.at(9))); });
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 29);
    EXPECT_FALSE(Titles().contains(QStringLiteral("Prize 10")));
    EXPECT_TRUE(Titles().contains(QStringLiteral("Prize 11")));
}

TEST_F(PrizesListFillTest, WhatIsSavedElsewhereDuringTheFillShowsAtTheNextTick)
{
    SaveMany(30);
    Attach();
    AtYield(2, [&] {
        Now.Advance(1);
        const auto prize = std::make_shared<cPrize>();
        prize->SetTitle(QStringLiteral("Late"));
        EXPECT_TRUE(OtherComputer().SavePrize(prize));
    });
    List->UpdateDisplay();
    EXPECT_FALSE(Titles().contains(QStringLiteral("Late")));
    Tick();
    EXPECT_TRUE(Titles().contains(QStringLiteral("Late")));
}

TEST_F(PrizesListFillTest, TheSelectionFollowsItsPrizeAndElseStaysInItsPlace)
{
    const QList<qint32> references = SaveMany(4);
    Attach();
    ClickRow(3);
    EXPECT_EQ(TakeSelections(), QList<qint32>{references.at(2)});
    EXPECT_TRUE(OtherComputer().DeletePrize(references.at(0)));
    List->UpdateDisplay();
    EXPECT_EQ(Grid->Row(), 2);
    EXPECT_EQ(List->SelectedReference(), references.at(2));
    EXPECT_EQ(TakeSelections(), QList<qint32>{references.at(2)});
    ClickRow(3);
    EXPECT_TRUE(OtherComputer().DeletePrize(references.at(3)));
    List->UpdateDisplay();
    EXPECT_EQ(Grid->Row(), 2);
    EXPECT_EQ(List->SelectedReference(), references.at(2));
}

TEST_F(PrizesListFillTest, AnEmptyListTellsThatNothingIsSelected)
{
    Save(QStringLiteral("Mug"));
    Attach();
    TakeSelections();
    ClickNode(plcWonPrizes);
    EXPECT_EQ(TakeSelections(), QList<qint32>{0});
    EXPECT_EQ(List->SelectedReference(), 0);
}

TEST_F(PrizesListFillTest, TheSelectedPrizeComesWithItsWinners)
{
    const qint32 reference = Save(QStringLiteral("Mug"));
    Award(reference);
    cPrizePtr told;
    QObject::connect(List.get(), &uPrizesList::PrizeSelected, List.get(),
                     [&](const cPrizePtr& prize) { told = prize; });
    Attach();
    ASSERT_NE(told, nullptr);
    EXPECT_TRUE(told->WinnersRead());
    EXPECT_NE(told->PrizeWinner(1), nullptr);
}

TEST_F(PrizesListFillTest, APatternThatCannotBeOpenedLeavesTheListAsItWas)
{
    SaveMany(2);
    Attach();
    QSignalSpy failed(List.get(), &uPrizesList::DisplayFailed);
    Station->SetRaiseEvents(false);
    Save(QStringLiteral("Unseen"));
    Box->SetText(QStringLiteral("x\" garbage ("));
    List->UpdateDisplay();
    EXPECT_EQ(failed.size(), 1);
    EXPECT_EQ(Titles(), QStringList({QStringLiteral("Prize 1"), QStringLiteral("Prize 2")}));
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_FALSE(NoPrizes().isVisible());
    EXPECT_FALSE(Loading().isVisible());
    EXPECT_TRUE(Tree->isEnabled());
    EXPECT_EQ(List->SelectedReference(), References().first());
    List->ClearFind();
    EXPECT_EQ(List->NumberItems(), 3);
}

TEST_F(PrizesListFillTest, ASaveHereShowsAtOnceAndSoDoesADeletion)
{
    const qint32 first = Save(QStringLiteral("Mug"));
    Attach();
    Save(QStringLiteral("Pen"));
    EXPECT_EQ(Titles(), QStringList({QStringLiteral("Mug"), QStringLiteral("Pen")}));
    EXPECT_TRUE(Station->DeletePrize(first));
    EXPECT_EQ(Titles(), QStringList{QStringLiteral("Pen")});
}

TEST_F(PrizesListFillTest, ATickReadsTheListOnlyWhenTheStampIsAnotherOne)
{
    Save(QStringLiteral("Mug"));
    Attach();
    Tick();
    EXPECT_EQ(TakeFills(), 0);
    Now.Advance(1);
    const auto prize = std::make_shared<cPrize>();
    prize->SetTitle(QStringLiteral("Elsewhere"));
    EXPECT_TRUE(OtherComputer().SavePrize(prize));
    Tick();
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(List->NumberItems(), 2);
    Tick();
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(PrizesListFillTest, ATickWithoutAnyStampStampsAndReads)
{
    Attach();
    ASSERT_TRUE(Station->LastPrizeChanged().IsNone());
    Tick();
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Station->LastPrizeChanged().GeneralDate(), ClockHelper::CurrentTime().GeneralDate());
}

TEST_F(PrizesListFillTest, ATickWaitsWhileSomebodyTypes)
{
    Save(QStringLiteral("Mug"));
    Attach();
    Now.Advance(1);
    const auto prize = std::make_shared<cPrize>();
    EXPECT_TRUE(OtherComputer().SavePrize(prize));
    Box->setFocus();
    QTest::keyClicks(Box->lineEdit(), QStringLiteral("mu"));
    Tick();
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_EQ(Box->Text(), QStringLiteral("mu"));
    QTest::keyClick(Box->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(TakeFills(), 1);
}

TEST_F(PrizesListFillTest, ATickOfAStationThatCannotBeReadTellsItAndWritesNothing)
{
    Attach();
    const QByteArray noise(8192, 'x');
    QFile file(FileName());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite | QIODevice::Truncate));
    file.write(noise);
    file.close();
    const ErrorCatcher errors;
    Tick();
    ASSERT_EQ(errors.Sources(), QStringList{QStringLiteral("uPrizesList.timerUpdateList")});
    EXPECT_EQ(TakeFills(), 0);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), noise);
    file.close();
    List->SetTolvaDatabase(nullptr);
}

TEST_F(PrizesListFillTest, RefreshingOneRowMakesItCurrentAndRefreshingAllKeepsTheCurrentOne)
{
    const QList<qint32> references = SaveMany(3);
    Attach();
    ClickRow(2);
    TakeSelections();
    ChangeRow(references.at(0), QStringLiteral("Title"), QStringLiteral("First"));
    ChangeRow(references.at(2), QStringLiteral("Title"), QStringLiteral("Third"));
    EXPECT_TRUE(List->RefreshDisplay(references.at(0)));
    EXPECT_EQ(Titles(), QStringList({QStringLiteral("First"), QStringLiteral("Prize 2"), QStringLiteral("Prize 3")}));
    EXPECT_EQ(Grid->Row(), 1);
    EXPECT_EQ(List->SelectedReference(), references.at(0));
    EXPECT_EQ(TakeSelections(), QList<qint32>({references.at(0)}));
    ClickRow(2);
    TakeSelections();
    EXPECT_TRUE(List->RefreshDisplay());
    EXPECT_EQ(Titles(), QStringList({QStringLiteral("First"), QStringLiteral("Prize 2"), QStringLiteral("Third")}));
    EXPECT_EQ(Grid->Row(), 2);
    EXPECT_EQ(List->SelectedReference(), references.at(1));
    EXPECT_EQ(TakeSelections(), QList<qint32>());
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_FALSE(List->RefreshDisplay(9999));
    List->SetTolvaDatabase(nullptr);
    EXPECT_FALSE(List->RefreshDisplay());
}

TEST_F(PrizesListFillTest, ARefreshHidesNothingThatAnotherComputerStored)
{
    const qint32 reference = Save(QStringLiteral("Mug"));
    Attach();
    Now.Advance(1);
    const auto prize = std::make_shared<cPrize>();
    prize->SetTitle(QStringLiteral("Elsewhere"));
    EXPECT_TRUE(OtherComputer().SavePrize(prize));
    EXPECT_TRUE(List->RefreshDisplay(reference));
    EXPECT_TRUE(List->RefreshDisplay());
    Tick();
    EXPECT_EQ(List->NumberItems(), 2);
}

TEST_F(PrizesListFillTest, NoStationEmptiesTheList)
{
    SaveMany(2);
    Attach();
    List->SetTolvaDatabase(nullptr);
    EXPECT_EQ(Grid->Rows(), 1);
    EXPECT_EQ(List->SelectedReference(), 0);
    EXPECT_EQ(List->NumberItems(), 0);
    List->UpdateDisplay();
    EXPECT_EQ(TakeFills(), 0);
    Save(QStringLiteral("Unheard"));
    EXPECT_EQ(List->NumberItems(), 0);
}

TEST_F(PrizesListFillTest, AnotherStationTellsNothingOfTheRowsOfTheOneBefore)
{
    SaveMany(2);
    Attach(plcAllPrizes);
    ClickRow(2);
    TakeSelections();
    Directory.User.Preferences.insert(QStringLiteral("SelectedPrizeCategory"), static_cast<int>(plcWonPrizes));
    List->SetTolvaDatabase(&OtherComputer());
    EXPECT_EQ(TakeSelections(), QList<qint32>{0});
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(List->Category(), plcWonPrizes);
    // The one before is not listened to any more.
    Station->SetRaiseEvents(true);
    Save(QStringLiteral("Unheard"));
    EXPECT_EQ(TakeFills(), 0);
    List->SetTolvaDatabase(nullptr);
}

TEST_F(PrizesListFillTest, OtherPreferencesReadNothing)
{
    Attach();
    const auto change = [&](int flags, const QString& name) {
        Q_EMIT Directory.User.PreferencesChanged(flags, name);
        return TakeFills();
    };
    EXPECT_EQ(change(32, QStringLiteral("PrizesListSortOrder")), 1);
    EXPECT_EQ(change(33, QString()), 1);
    EXPECT_EQ(change(32, QStringLiteral("MessagesListSortOrder")), 0);
    EXPECT_EQ(change(16, QStringLiteral("PrizesListSortOrder")), 0);
    EXPECT_EQ(change(16, QString()), 0);
}

TEST_F(PrizesListFillTest, ScrollsToItsEnds)
{
    SaveMany(60);
    Attach();
    List->ScrollToBottom();
    EXPECT_GT(Grid->TopRow(), 1);
    List->ScrollToTop();
    EXPECT_EQ(Grid->TopRow(), 1);
}

TEST_F(PrizesListFillTest, AStationReopenedOrReattachedInAYieldIsShownWhole)
{
    SaveMany(60);
    Attach();
    AtYield(2, [&] {
        Station->CloseTolvaDatabase();
        EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    });
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 60);
    AtYield(2, [&] {
        List->SetTolvaDatabase(nullptr);
        List->SetTolvaDatabase(Station.get());
    });
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 60);
    EXPECT_FALSE(Titles().contains(QString()));
}

TEST_F(PrizesListFillTest, AListThatLostItsRowsToAClosedStationIsFilledByTheTickAfterItsReopening)
{
    SaveMany(60);
    Attach();
    AtYield(2, [&] { Station->CloseTolvaDatabase(); });
    List->UpdateDisplay();
    ASSERT_EQ(List->NumberItems(), 0);
    ASSERT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    Tick();
    EXPECT_EQ(List->NumberItems(), 60);
}

TEST_F(PrizesListFillTest, RowsThatCouldNotBeReadAreToldAtOnceAndComeWithTheTickBehind)
{
    SaveMany(60);
    Attach();
    QList<int> failures;
    QObject::connect(List.get(), &uPrizesList::DisplayFailed, List.get(), [&](int number) { failures.append(number); });
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(FileName().toUtf8().constData(), &other), SQLITE_OK);
    AtYield(2, [&] { ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK); });
    QElapsedTimer waited;
    waited.start();
    List->UpdateDisplay();
    EXPECT_LT(waited.elapsed(), 20'000) << "it waited for each row";
    EXPECT_EQ(List->NumberItems(), 26);
    EXPECT_EQ(Child<QLabel>("lblUnread").text(), QStringLiteral("34 rows could not be read. Trying again."));
    EXPECT_TRUE(Child<QLabel>("lblUnread").isVisible());
    EXPECT_EQ(failures, QList<int>{dao::errLocked});
    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(other);
    Tick();
    EXPECT_EQ(List->NumberItems(), 60);
    EXPECT_FALSE(Child<QLabel>("lblUnread").isVisible());
}
