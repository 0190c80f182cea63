// SPDX-License-Identifier: Apache-2.0

// Marking messages as read and unread: one, those of the grid, those of the query.

#include "messageslist/MessageCommandTest.h"

class MarkTest : public MessageCommandTest
{
protected:
    void SaveThree()
    {
        OpenStation();
        for (int i = 0; i < 3; ++i)
            References[i] = SaveDated(QStringLiteral("Message %1").arg(i));
    }
    qint32 FlagsOf(int index) const { return Station->GetMessage(References[index])->Flags(); }
    QList<bool> Bold() const
    {
        QList<bool> bold;
        for (int row = 1; row < Grid->Rows(); ++row)
            bold.append(IsBold(row));
        return bold;
    }

    qint32 References[3] = {};
};

TEST_F(MarkTest, OneMessageIsMarkedAndItsRowFollows)
{
    SaveThree();
    Attach();
    ASSERT_EQ(Bold(), (QList<bool>{true, true, true}));
    ChooseForRow(2, "mnuMarkAsRead");
    EXPECT_EQ(Bold(), (QList<bool>{true, false, true}));
    EXPECT_EQ(FlagsOf(1), mfRead);
    EXPECT_EQ(FlagsOf(0), 0);
    EXPECT_EQ(List->SelectedReference(), References[1]);
    ChooseForRow(2, "mnuMarkasUnread");
    EXPECT_EQ(Bold(), (QList<bool>{true, true, true}));
    EXPECT_EQ(FlagsOf(1), 0);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MarkTest, TheOtherFlagsStay)
{
    SaveThree();
    const cMessagePtr message = Station->GetMessage(References[0]);
    message->SetFlags(mfSendPending | mfAutomatic);
    ASSERT_TRUE(Station->SaveMessage(message));
    Attach();
    ChooseForRow(1, "mnuMarkAsRead");
    EXPECT_EQ(FlagsOf(0), mfRead | mfSendPending | mfAutomatic);
    ChooseForRow(1, "mnuMarkasUnread");
    EXPECT_EQ(FlagsOf(0), mfSendPending | mfAutomatic);
}

TEST_F(MarkTest, OfTwoComputersThatMarkAtOnceTheLastOneCounts)
{
    SaveThree();
    Attach();
    const cMessagePtr theirs = OtherComputer().GetMessage(References[0]);
    ChooseForRow(1, "mnuMarkAsRead");
    theirs->SetFlags(theirs->Flags() | mfAutomatic);
    ASSERT_TRUE(OtherComputer().SaveMessage(theirs));
    EXPECT_EQ(FlagsOf(0), mfAutomatic);
    ChooseForRow(2, "mnuMarkAsRead");
    EXPECT_EQ(FlagsOf(1), mfRead);
    EXPECT_EQ(StoredMessages(), 3);
}

TEST_F(MarkTest, AllRowsAreMarkedAndTheRowStaysSelected)
{
    SaveThree();
    const qint32 elsewhere = SaveDated(QStringLiteral("Elsewhere"), tmcSaved);
    Attach();
    ClickRow(2);
    TakeFills();
    ChooseForRow(2, "mnuMarkAllRead1");
    EXPECT_EQ(Bold(), (QList<bool>{false, false, false}));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(FlagsOf(i), mfRead);
    EXPECT_EQ(Station->GetMessage(elsewhere)->Flags(), 0);
    EXPECT_EQ(Grid->Row(), 2);
    EXPECT_EQ(Grid->Col(), 0);
    EXPECT_EQ(List->SelectedReference(), References[1]);
    EXPECT_TRUE(Grid->Redraw());
    ChooseForRow(2, "mnuMarkAllRead2");
    EXPECT_EQ(Bold(), (QList<bool>{true, true, true}));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(FlagsOf(i), 0);
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_GE(Ui.BusyCount(), 2) << "the pointer says wait";
}

TEST_F(MarkTest, OnlyRowsThatWouldChangeAreSaved)
{
    SaveThree();
    const cMessagePtr read = Station->GetMessage(References[1]);
    read->SetFlags(mfRead);
    ASSERT_TRUE(Station->SaveMessage(read));
    Attach();
    QList<qint32> saved;
    QObject::connect(Station.get(), &cTolvaDatabase::MessageSaved, List.get(),
                     [&](const cMessagePtr& message, bool) { saved.append(message->Reference()); });
    ChooseForRow(1, "mnuMarkAllRead1");
    EXPECT_EQ(saved, (QList<qint32>{References[0], References[2]}));
}

TEST_F(MarkTest, RowsAreJudgedByTheirLooks)
{
    OpenStation();
    const qint32 undated = SaveNew(QStringLiteral("Undated"));
    SaveDated(QStringLiteral("Dated"));
    Attach();
    const int row = static_cast<int>(Subjects().indexOf(QStringLiteral("Undated"))) + 1;
    ASSERT_TRUE(Station->GetMessage(undated)->Sent().IsNone());
    ASSERT_FALSE(IsBold(row));
    ChooseForRow(row, "mnuMarkAllRead1");
    EXPECT_EQ(Station->GetMessage(undated)->Flags(), 0) << "a row without a date counts as read";
    // Marking unread changes it, as it is not bold, and makes it bold.
    ChooseForRow(row, "mnuMarkAllRead2");
    EXPECT_EQ(Station->GetMessage(undated)->Flags(), 0);
    EXPECT_TRUE(IsBold(row));
    ChooseForRow(row, "mnuMarkAllRead1");
    EXPECT_EQ(Station->GetMessage(undated)->Flags(), mfRead);
    EXPECT_FALSE(IsBold(row));
}

TEST_F(MarkTest, NoRowsAreMarkedWithoutHarm)
{
    Attach();
    for (const char* name : {"mnuMarkAllRead1", "mnuMarkAllRead2", "mnuCategoryAllRead", "mnuCategoryAllUnRead"}) {
        Entry(name).setVisible(true);
        Entry(name).setEnabled(true);
        Entry(name).trigger();
    }
    EXPECT_EQ(Grid->Rows(), 1);
    EXPECT_TRUE(Grid->Redraw());
}

TEST_F(MarkTest, TheUserMayStopInTheMiddle)
{
    SaveThree();
    Attach();
    ClickRow(3);
    Ui.CancelProgressAt(2);
    ChooseForRow(3, "mnuMarkAllRead1");
    EXPECT_EQ(Bold(), (QList<bool>{false, true, true}));
    EXPECT_EQ(FlagsOf(0), mfRead);
    EXPECT_EQ(FlagsOf(1), 0);
    EXPECT_EQ(Grid->Row(), 3);
    EXPECT_TRUE(Grid->Redraw());
    EXPECT_EQ(Ui.ProgressCaptions().last(), QStringLiteral("Marking messages"));
    TakeFills();
    List->UpdateDisplay();
    EXPECT_EQ(TakeFills(), 1) << "the list is not busy any more";
}

TEST_F(MarkTest, ARowWhoseMessageIsGoneIsPassedOver)
{
    SaveThree();
    Attach();
    ASSERT_TRUE(OtherComputer().DeleteMessage(References[1], true));
    ChooseForRow(1, "mnuMarkAllRead1");
    EXPECT_EQ(Bold(), (QList<bool>{false, true, false}));
    EXPECT_EQ(StoredMessages(), 2);
}

TEST_F(MarkTest, AHiddenListMarksAllOfItsQueryWithoutEventsAndTellsTheHost)
{
    SaveThree();
    const qint32 elsewhere = SaveDated(QStringLiteral("Elsewhere"), tmcSaved);
    Attach();
    List->SetDisplayMessageList(false);
    QList<qint32> saved;
    QObject::connect(Station.get(), &cTolvaDatabase::MessageSaved, List.get(),
                     [&](const cMessagePtr& message, bool) { saved.append(message->Reference()); });
    TakeFills();
    const QString query = LastQuery();
    bool raisedWithin = true;
    QObject::connect(List.get(), qOverload<QString&>(&uMessagesList::UpdateDisplay), List.get(),
                     [&] { raisedWithin = Station->RaiseEvents(); });
    ChooseAt(tmcInbox, "mnuCategoryAllRead");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(FlagsOf(i), mfRead);
    EXPECT_EQ(Station->GetMessage(elsewhere)->Flags(), 0);
    EXPECT_TRUE(saved.isEmpty());
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(LastQuery(), query);
    EXPECT_FALSE(raisedWithin);
    EXPECT_TRUE(Station->RaiseEvents());
    ChooseAt(tmcInbox, "mnuCategoryAllUnRead");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(FlagsOf(i), 0);
}

TEST_F(MarkTest, TheHostsOwnQueryDecidesWhatAHiddenListMarks)
{
    SaveThree();
    Attach();
    List->SetDisplayMessageList(false);
    QObject::connect(List.get(), qOverload<QString&>(&uMessagesList::UpdateDisplay), List.get(),
                     [&](QString& query) { query = QStringLiteral("[Reference]=%1").arg(References[2]); });
    List->UpdateDisplay();
    ChooseAt(tmcInbox, "mnuCategoryAllRead");
    EXPECT_EQ(FlagsOf(0), 0);
    EXPECT_EQ(FlagsOf(1), 0);
    EXPECT_EQ(FlagsOf(2), mfRead);
}

TEST_F(MarkTest, WithoutAConditionAHiddenListMarksNothing)
{
    SaveThree();
    Directory.SignedIn = nullptr;
    Attach();
    List->SetDisplayMessageList(false);
    List->UpdateDisplay();
    ASSERT_EQ(LastQuery().trimmed(), QStringLiteral("ORDER BY [Sent] DESC, [Reference]"));
    TakeFills();
    Entry("mnuCategoryAllRead").trigger();
    EXPECT_EQ(FlagsOf(0), 0);
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_TRUE(Station->RaiseEvents());
}

TEST_F(MarkTest, EventsAreOnAfterwardsWhateverTheyWere)
{
    SaveThree();
    Attach();
    List->SetDisplayMessageList(false);
    Station->SetRaiseEvents(false);
    ChooseAt(tmcInbox, "mnuCategoryAllRead");
    EXPECT_TRUE(Station->RaiseEvents());
}
