// SPDX-License-Identifier: Apache-2.0

// What other computers store shows, whatever is done here at the same time; and it costs the rows that changed.

#include "common/ClockHelper.h"
#include "messageslist/FilledListTest.h"
#include "platform/records/DBEngine.h"
#include "platform/records/Database.h"

#include <QLabel>

class TwoComputersTest : public FilledListTest
{
protected:
    /// Changes what the other computer has stored, as it stands there now.
    void ChangeElsewhere(qint32 reference, const std::function<void(cMessage&)>& change)
    {
        Now.Advance(1);
        const cMessagePtr message = OtherComputer().GetMessage(reference);
        change(*message);
        EXPECT_TRUE(OtherComputer().SaveMessage(message));
    }
    /// Gives a stored mail another subject without a word of it in the other columns, so that only who reads the mail
    /// itself sees it.
    void ChangeUnnoticed(qint32 reference, const QString& subject)
    {
        const cMessagePtr message = Station->GetMessage(reference);
        message->CDOMessage()->SetSubject(subject);
        const auto database = dao::DBEngine::OpenDatabase(FileName());
        const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable);
        rows->SetIndex(QStringLiteral("Main"));
        rows->Seek(dao::SeekComparison::Equal, {reference});
        rows->Edit();
        (*rows)[QStringLiteral("Message")].SetOctets(message->CDOMessage()->Octets());
        rows->Update();
    }
    int MakeFolderElsewhere(const QString& name, int parent = tmcInbox)
    {
        clsCategory folder;
        folder.SetDescription(name);
        folder.SetParentReference(parent);
        EXPECT_TRUE(OtherComputer().SaveMessageCategory(folder));
        return folder.Reference();
    }
    QString NodeText(int folder) const { return Tree->NodeText(QStringLiteral("c%1").arg(folder)); }
};

// ---- The stamp

TEST_F(TwoComputersTest, AMessageFiledElsewhereShortlyBeforeAnOwnMarkShowsAtTheNextTick)
{
    const qint32 one = Save(QStringLiteral("One"));
    Attach();
    SaveElsewhere(QStringLiteral("Two"));
    ASSERT_TRUE(Station->ChangeMessageFlags(one, mfRead, 0));
    EXPECT_EQ(List->NumberItems(), 1);
    Tick();
    EXPECT_EQ(Subjects(), QStringList({QStringLiteral("One"), QStringLiteral("Two")}));
}

TEST_F(TwoComputersTest, SoItDoesWhenBothAreStoredInTheSameMoment)
{
    const qint32 one = Save(QStringLiteral("One"));
    Attach();
    const cMessagePtr message = MakeMessage(QStringLiteral("Two"));
    message->SetCategory(tmcInbox);
    ASSERT_TRUE(OtherComputer().SaveMessage(message)); // the clock stands
    ASSERT_TRUE(Station->ChangeMessageFlags(one, mfRead, 0));
    Tick();
    EXPECT_EQ(List->NumberItems(), 2);
}

TEST_F(TwoComputersTest, AnOwnSaveAloneCostsNoReading)
{
    const QList<qint32> references = SaveMany(3);
    Attach();
    for (const qint32 reference : references)
        ASSERT_TRUE(Station->ChangeMessageFlags(reference, mfRead, 0));
    Tick();
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(TwoComputersTest, DrawingTheRowsAnewHidesNothing)
{
    const qint32 one = Save(QStringLiteral("One"));
    Attach();
    SaveElsewhere(QStringLiteral("Two"));
    EXPECT_TRUE(List->RefreshDisplay());
    EXPECT_TRUE(List->RefreshDisplay(one));
    Tick();
    EXPECT_EQ(List->NumberItems(), 2);
}

TEST_F(TwoComputersTest, AnOwnSaveIntoAnotherFolderIsNotTakenForWhatIsOnShow)
{
    const QList<qint32> references = SaveMany(2);
    Attach();
    const cMessagePtr message = Station->GetMessage(references.at(0));
    message->SetCategory(tmcSaved);
    ASSERT_TRUE(Station->SaveMessage(message));
    ASSERT_TRUE(Station->ChangeMessageFlags(references.at(1), mfRead, 0));
    Tick();
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Message 2")});
}

TEST_F(TwoComputersTest, AMarkedMessageThatIsNotSelectedDoesNotTakeTheSelection)
{
    const QList<qint32> references = SaveMany(5);
    Attach();
    ClickRow(2);
    TakeSelections();
    ASSERT_TRUE(Station->ChangeMessageFlags(references.at(3), mfRead, 0));
    EXPECT_EQ(List->SelectedReference(), references.at(1));
    EXPECT_EQ(Grid->Row(), 2);
    EXPECT_TRUE(TakeSelections().isEmpty());
}

// ---- The rows

TEST_F(TwoComputersTest, OfManyRowsOnlyTheChangedOneIsRead)
{
    const QList<qint32> references = SaveMany(60);
    Attach();
    for (const qint32 reference : references)
        ChangeUnnoticed(reference, QStringLiteral("Read again"));
    ChangeElsewhere(references.at(40), [](cMessage& message) { message.SetPriority(1); });
    Tick();
    EXPECT_EQ(Subjects().count(QStringLiteral("Read again")), 1);
    EXPECT_EQ(Subjects().at(40), QStringLiteral("Read again"));
    EXPECT_EQ(Grid->CellBackColour(41, 2), 255);
    List->UpdateDisplay();
    EXPECT_EQ(Subjects().count(QStringLiteral("Read again")), 60);
}

TEST_F(TwoComputersTest, RowsThatComeAndGoLeaveTheOthersTheUsersPlaceAndTheirLooks)
{
    const QList<qint32> references = SaveMany(120);
    Attach();
    Grid->SetTopRow(50);
    ClickRow(52);
    TakeSelections();
    // Dated ones stand first.
    Now.Advance(1);
    for (int i = 0; i < 3; ++i) {
        const cMessagePtr message = MakeMessage(QStringLiteral("Dated %1").arg(i));
        message->SetCategory(tmcInbox);
        message->SetSent(Date(2026, 11, 1 + i));
        ASSERT_TRUE(OtherComputer().SaveMessage(message));
    }
    ASSERT_TRUE(OtherComputer().DeleteMessage(references.at(9), true));
    Tick();
    QStringList expected = {QStringLiteral("Dated 2"), QStringLiteral("Dated 1"), QStringLiteral("Dated 0")};
    for (int i = 1; i <= 120; ++i) {
        if (i != 10)
            expected.append(QStringLiteral("Message %1").arg(i));
    }
    EXPECT_EQ(Subjects(), expected);
    EXPECT_TRUE(Grid->CellFontBold(1, 2));
    EXPECT_FALSE(Grid->CellFontBold(4, 2));
    EXPECT_EQ(List->SelectedReference(), references.at(51));
    EXPECT_EQ(Grid->Row(), 54);
    EXPECT_EQ(Grid->TopRow(), 52) << "the same messages stand under the eyes";
    EXPECT_TRUE(TakeSelections().isEmpty()) << "the selected message is the same";
    const QStringList shown = Subjects();
    const QStringList numbers = Column(0);
    List->UpdateDisplay();
    EXPECT_EQ(Subjects(), shown);
    EXPECT_EQ(Column(0), numbers);
}

TEST_F(TwoComputersTest, WhoStandsAtTheTopSeesWhatIsNewThere)
{
    SaveMany(60);
    Attach();
    ClickRow(1);
    Now.Advance(1);
    const cMessagePtr message = MakeMessage(QStringLiteral("New"));
    message->SetCategory(tmcInbox);
    message->SetSent(Date(2026, 11, 1));
    ASSERT_TRUE(OtherComputer().SaveMessage(message));
    Tick();
    EXPECT_EQ(Grid->TopRow(), 1);
    EXPECT_EQ(Subjects().first(), QStringLiteral("New"));
    EXPECT_EQ(Grid->Row(), 2);
}

TEST_F(TwoComputersTest, ASelectedMessageThatChangedElsewhereIsTold)
{
    const QList<qint32> references = SaveMany(3);
    Attach();
    ClickRow(2);
    TakeSelections();
    ChangeElsewhere(references.at(1), [](cMessage& message) { message.SetFlags(mfRead); });
    Tick();
    EXPECT_EQ(TakeSelections(), QList<qint32>{references.at(1)});
    ASSERT_TRUE(OtherComputer().DeleteMessage(references.at(1), true));
    Now.Advance(1);
    OtherComputer().SetLastMessageChanged(ClockHelper::NowUTC());
    Tick();
    EXPECT_EQ(TakeSelections(), QList<qint32>{references.at(2)});
    EXPECT_EQ(Grid->Row(), 2);
}

TEST_F(TwoComputersTest, WhatIsMarkedHereAndTakenBackThereIsDrawnAsItIsStored)
{
    const qint32 one = Save(QStringLiteral("One"), [](cMessage& message) { message.SetSent(Date(2026, 11, 1)); });
    Attach();
    ASSERT_TRUE(Station->ChangeMessageFlags(one, mfRead, 0));
    ASSERT_FALSE(Grid->CellFontBold(1, 2));
    ChangeElsewhere(one, [](cMessage& message) { message.SetFlags(0); });
    Tick();
    EXPECT_TRUE(Grid->CellFontBold(1, 2));
}

TEST_F(TwoComputersTest, TheLastMessageGoneLeavesTheWordsThatThereIsNone)
{
    const qint32 one = Save(QStringLiteral("One"));
    Attach();
    ASSERT_TRUE(NoMessages().isHidden());
    ASSERT_TRUE(OtherComputer().DeleteMessage(one, true));
    Now.Advance(1);
    OtherComputer().SetLastMessageChanged(ClockHelper::NowUTC());
    Tick();
    EXPECT_EQ(List->NumberItems(), 0);
    EXPECT_FALSE(NoMessages().isHidden());
    EXPECT_EQ(List->SelectedReference(), 0);
    SaveElsewhere(QStringLiteral("Two"));
    Tick();
    EXPECT_TRUE(NoMessages().isHidden());
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Two")});
}

// ---- Folders

TEST_F(TwoComputersTest, AFolderMadeElsewhereShowsAtTheNextTick)
{
    Save(QStringLiteral("One"));
    Attach();
    const int folder = MakeFolderElsewhere(QStringLiteral("Requests"));
    EXPECT_EQ(NodeText(folder), QString());
    Tick();
    EXPECT_EQ(NodeText(folder), QStringLiteral("Requests"));
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(TwoComputersTest, AFolderRenamedOrMovedElsewhereShowsAtTheNextTickAndWhatIsOpenStaysOpen)
{
    Attach();
    const int outer = MakeFolderElsewhere(QStringLiteral("Outer"));
    const int inner = MakeFolderElsewhere(QStringLiteral("Inner"), outer);
    Tick();
    const QString outerKey = QStringLiteral("c%1").arg(outer);
    const QString innerKey = QStringLiteral("c%1").arg(inner);
    Tree->Expand(QStringLiteral("c1"));
    Tree->Expand(outerKey);
    const auto stored = OtherComputer().GetMessageCategory(inner);
    stored->SetDescription(QStringLiteral("Renamed"));
    stored->SetParentReference(tmcSaved);
    ASSERT_TRUE(OtherComputer().SaveMessageCategory(*stored));
    Tick();
    EXPECT_EQ(NodeText(inner), QStringLiteral("Renamed"));
    EXPECT_EQ(Tree->ParentKey(innerKey), QStringLiteral("c3"));
    EXPECT_TRUE(Tree->IsExpanded(QStringLiteral("c1")));
}

TEST_F(TwoComputersTest, AFolderThatIsOnShowAndDeletedElsewhereGivesWayToTheInbox)
{
    Save(QStringLiteral("One"));
    Attach();
    const int folder = MakeFolderElsewhere(QStringLiteral("Requests"));
    Tick();
    List->SetCategory(static_cast<enTolvaMessageCategories>(folder));
    ASSERT_EQ(List->NumberItems(), 0);
    ASSERT_TRUE(OtherComputer().DeleteMessageCategory(folder));
    Tick();
    EXPECT_EQ(NodeText(folder), QString());
    EXPECT_EQ(List->Category(), tmcInbox);
    EXPECT_EQ(Tree->SelectedKey(), QStringLiteral("c1"));
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("One")});
}

TEST_F(TwoComputersTest, TheNameOfAFolderIsTypedToItsEndBeforeTheTreeChanges)
{
    Attach();
    const int folder = MakeFolderElsewhere(QStringLiteral("Requests"));
    Tick();
    List->SetCategory(static_cast<enTolvaMessageCategories>(folder));
    Tree->StartLabelEdit();
    ASSERT_TRUE(Tree->IsEditingLabel());
    const int second = MakeFolderElsewhere(QStringLiteral("Second"));
    Tick();
    EXPECT_TRUE(Tree->IsEditingLabel());
    EXPECT_EQ(NodeText(second), QString());
    QTest::keyClick(Tree->viewport()->findChild<QWidget*>(), Qt::Key_Escape);
    Tick();
    EXPECT_EQ(NodeText(second), QStringLiteral("Second"));
}
