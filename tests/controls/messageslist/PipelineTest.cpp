// SPDX-License-Identifier: Apache-2.0

// When the list is filled, what it guards against meanwhile, and what stands when it is done.

#include "messageslist/FilledListTest.h"

#include <QPointer>

class MessagesListPipelineTest : public FilledListTest
{
};

TEST_F(MessagesListPipelineTest, NothingIsAskedForWithoutAStation)
{
    List->UpdateDisplay();
    EXPECT_FALSE(List->RefreshDisplay());
    List->SetCategory(tmcSaved);
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_EQ(static_cast<int>(List->Category()), 0);
    EXPECT_EQ(TakeSelections(), QList<qint32>{});
}

TEST_F(MessagesListPipelineTest, NothingIsAskedOfAStationThatIsNotOpen)
{
    List->SetTolvaDatabase(Station.get());
    List->UpdateDisplay();
    List->UpdateCategories();
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_EQ(Tree->NodeCount(), 0);
    EXPECT_EQ(List->NumberItems(), 0);
}

TEST_F(MessagesListPipelineTest, AnEmptyFolderSaysSoAndSelectsNothing)
{
    Attach();
    EXPECT_EQ(Grid->Rows(), 1);
    EXPECT_EQ(Grid->Row(), 0);
    EXPECT_EQ(List->SelectedReference(), 0);
    EXPECT_TRUE(NoMessages().isVisible());
    EXPECT_FALSE(Loading().isVisible());
    TakeSelections();
    List->UpdateDisplay();
    EXPECT_EQ(TakeSelections(), QList<qint32>{0});
}

TEST_F(MessagesListPipelineTest, TheFirstMessageIsSelectedAndTheHostToldOnce)
{
    const qint32 first = Save(QStringLiteral("One"));
    Save(QStringLiteral("Two"));
    Attach();
    TakeSelections();
    List->UpdateDisplay();
    EXPECT_EQ(Grid->Row(), 1);
    EXPECT_EQ(Grid->Col(), 0);
    EXPECT_EQ(List->SelectedReference(), first);
    EXPECT_EQ(TakeSelections(), QList<qint32>{first});
    EXPECT_FALSE(NoMessages().isVisible());
}

TEST_F(MessagesListPipelineTest, TreeAndTabsWaitAndTheTimerRestsDuringAFill)
{
    SaveMany(2);
    Attach();
    bool looked = false;
    AtYield(1, [&] {
        looked = true;
        EXPECT_FALSE(Tree->isEnabled());
        EXPECT_FALSE(Tabs->isEnabled());
        EXPECT_FALSE(Timer().isActive());
        EXPECT_EQ(List->cursor().shape(), Qt::WaitCursor);
        EXPECT_FALSE(Grid->Redraw());
        EXPECT_TRUE(Loading().isVisible());
        EXPECT_TRUE(List->IsFilling());
        EXPECT_EQ(List->SelectedReference(), 0);
        List->SetAutoUpdate(true);
        List->SetAutoUpdateInterval(5);
        EXPECT_FALSE(Timer().isActive());
    });
    List->UpdateDisplay();
    ASSERT_TRUE(looked);
    EXPECT_TRUE(Tree->isEnabled());
    EXPECT_TRUE(Tabs->isEnabled());
    EXPECT_TRUE(Timer().isActive());
    EXPECT_EQ(List->cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(Grid->Redraw());
    EXPECT_FALSE(Loading().isVisible());
    EXPECT_FALSE(List->IsFilling());
}

TEST_F(MessagesListPipelineTest, TheTimerStaysOffAfterAFillWithoutAutoUpdate)
{
    Save(QStringLiteral("One"));
    List->SetAutoUpdate(false);
    Attach();
    List->UpdateDisplay();
    EXPECT_FALSE(Timer().isActive());
}

TEST_F(MessagesListPipelineTest, ATimerThatTheHostStartsInTheQueryEventRestsDuringTheFill)
{
    SaveMany(2);
    Attach();
    QObject::connect(List.get(), qOverload<QString&>(&uMessagesList::UpdateDisplay), List.get(),
                     [this](QString&) { List->SetAutoUpdate(true); });
    bool wasActive = true;
    AtYield(1, [&] { wasActive = Timer().isActive(); });
    List->UpdateDisplay();
    EXPECT_FALSE(wasActive);
    EXPECT_TRUE(Timer().isActive());
}

TEST_F(MessagesListPipelineTest, TheTimerRunsOnlyWhenTheHostKnowsTheSelectedMessage)
{
    Save(QStringLiteral("One"));
    Attach();
    bool wasActive = true;
    QObject::connect(List.get(), &uMessagesList::MessageSelected, List.get(), [&] { wasActive = Timer().isActive(); });
    List->UpdateDisplay();
    EXPECT_FALSE(wasActive);
    EXPECT_TRUE(Timer().isActive());
}

TEST_F(MessagesListPipelineTest, ACallDuringAFillIsIgnored)
{
    SaveMany(2);
    Attach();
    AtYield(1, [&] { List->UpdateDisplay(); });
    List->UpdateDisplay();
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(List->NumberItems(), 2);
}

TEST_F(MessagesListPipelineTest, ResettingDuringAFillStartsNoSecondOneInside)
{
    SaveMany(2);
    Attach();
    int fillsInside = -1;
    AtYield(1, [&] {
        TakeFills();
        List->ResetDisplay();
        fillsInside = TakeFills();
        EXPECT_FALSE(Tree->isEnabled());
    });
    List->UpdateDisplay();
    EXPECT_EQ(fillsInside, 0);
    EXPECT_EQ(List->NumberItems(), 2);
    EXPECT_TRUE(Tree->isEnabled());
}

TEST_F(MessagesListPipelineTest, NoSelectionIsToldDuringAFill)
{
    const QList<qint32> references = SaveMany(60);
    Attach();
    TakeSelections();
    QList<qint32> during;
    Ui.DoAtYields([&] { during += TakeSelections(); });
    List->UpdateDisplay();
    EXPECT_EQ(during, QList<qint32>{});
    EXPECT_EQ(TakeSelections(), QList<qint32>{references.first()});
}

TEST_F(MessagesListPipelineTest, AnotherFolderChosenDuringAFillIsShownAtTheEnd)
{
    SaveMany(60);
    const qint32 saved = Save(QStringLiteral("Kept"), [](cMessage& message) { message.SetCategory(tmcSaved); });
    Attach();
    TakeSelections();
    const int before = Ui.Yields();
    AtYield(1, [&] { List->SetCategory(tmcSaved); });
    List->UpdateDisplay();
    EXPECT_EQ(Ui.Yields() - before, 1) << "the first fill went on";
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Kept")});
    EXPECT_EQ(List->Category(), tmcSaved);
    EXPECT_EQ(TakeFills(), 2);
    EXPECT_EQ(TakeSelections(), QList<qint32>{saved});
    EXPECT_TRUE(LastQuery().startsWith(QStringLiteral("([Category]=3) ")));
    EXPECT_TRUE(Timer().isActive());
    EXPECT_TRUE(Tree->isEnabled());
}

TEST_F(MessagesListPipelineTest, AStationDetachedDuringAFillLeavesAnEmptyList)
{
    SaveMany(60);
    Attach();
    TakeSelections();
    AtYield(2, [&] { List->SetTolvaDatabase(nullptr); });
    List->UpdateDisplay();
    EXPECT_EQ(Grid->Rows(), 1);
    EXPECT_EQ(List->SelectedReference(), 0);
    EXPECT_TRUE(Tree->isEnabled());
    EXPECT_TRUE(Grid->Redraw());
    EXPECT_EQ(List->TolvaDatabase(), nullptr);
    List->UpdateDisplay();
    EXPECT_EQ(TakeFills(), 1);
    // The list serves another time.
    List->SetTolvaDatabase(Station.get());
    EXPECT_EQ(List->NumberItems(), 60);
}

TEST_F(MessagesListPipelineTest, AStationClosedDuringAFillLeavesNoRowsOfIt)
{
    SaveMany(60);
    Attach();
    AtYield(2, [&] { Station->CloseTolvaDatabase(); });
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 0);
    EXPECT_EQ(List->SelectedReference(), 0);
    EXPECT_TRUE(Tree->isEnabled());
    EXPECT_FALSE(Loading().isVisible());
    OpenStation();
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 60);
}

TEST_F(MessagesListPipelineTest, AStationThatEndsDuringAFillEndsTheFill)
{
    SaveMany(60);
    Attach();
    AtYield(1, [&] { Station.reset(); });
    List->UpdateDisplay();
    EXPECT_EQ(List->TolvaDatabase(), nullptr);
    EXPECT_EQ(List->NumberItems(), 0);
}

TEST_F(MessagesListPipelineTest, AStationDetachedInTheQueryEventEndsTheFill)
{
    SaveMany(3);
    Attach();
    QObject::connect(List.get(), qOverload<QString&>(&uMessagesList::UpdateDisplay), List.get(),
                     [this](QString&) { List->SetTolvaDatabase(nullptr); });
    List->UpdateDisplay();
    EXPECT_EQ(Grid->Rows(), 1);
    EXPECT_TRUE(Tree->isEnabled());
    EXPECT_FALSE(List->IsFilling());
}

TEST_F(MessagesListPipelineTest, AnotherStationAttachedDuringAFillIsShownAtTheEnd)
{
    SaveMany(60);
    QTemporaryDir folder;
    cTolvaDatabase second;
    second.SetDirectoryDatabase(&Directory);
    Ui.ExpectMessageBox(StationDetailsBox());
    Ui.ExpectDatabaseSettings([](cTolvaDatabase& database) {
        database.SetStationPhoneNumber(QStringLiteral("01632 960200"));
        return true;
    });
    ASSERT_EQ(second.OpenTolvaDatabase(folder.path()), 0);
    const cMessagePtr message = MakeMessage(QStringLiteral("Of the second station"));
    message->SetCategory(tmcInbox);
    ASSERT_TRUE(second.SaveMessage(message));
    Attach();
    AtYield(2, [&] { List->SetTolvaDatabase(&second); });
    List->UpdateDisplay();
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Of the second station")});
    List->SetTolvaDatabase(nullptr);
}

TEST_F(MessagesListPipelineTest, AListDestroyedDuringAFillEndsCleanly)
{
    SaveMany(60);
    QPointer<uMessagesList> list(new uMessagesList);
    list->SetTolvaDatabase(Station.get());
    AtYield(1, [&] { delete list; });
    list->UpdateDisplay();
    EXPECT_TRUE(list.isNull());
}

TEST_F(MessagesListPipelineTest, AListDestroyedByItsHostInAnEventEndsCleanly)
{
    SaveMany(3);
    QPointer<uMessagesList> list(new uMessagesList);
    list->SetTolvaDatabase(Station.get());
    QObject::connect(list, &uMessagesList::MessageSelected, qApp, [&] { delete list; });
    list->UpdateDisplay();
    EXPECT_TRUE(list.isNull());
    list = new uMessagesList;
    list->SetTolvaDatabase(Station.get());
    QObject::connect(list, qOverload<QString&>(&uMessagesList::UpdateDisplay), qApp, [&] { delete list; });
    list->UpdateDisplay();
    EXPECT_TRUE(list.isNull());
}
