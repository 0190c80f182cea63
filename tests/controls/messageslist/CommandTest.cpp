// SPDX-License-Identifier: Apache-2.0

// What the messages list hands to its host, and deleting.

#include "messageslist/ErrorCatcher.h"
#include "messageslist/MessageCommandTest.h"

#include <QPushButton>

class CommandTest : public MessageCommandTest
{
protected:
    void SetUp() override
    {
        OpenStation();
        const cMessagePtr message = MakeMessage(QStringLiteral("Lighthouse"));
        message->CDOMessage()->AddAttachment(QStringLiteral("a.txt"), "text/plain", "attached");
        message->SetCategory(tmcInbox);
        ASSERT_TRUE(Station->SaveMessage(message));
        Reference = message->Reference();
        Attach();
        ASSERT_EQ(List->SelectedReference(), Reference);
    }
    static QString DeleteQuestion(const QString& subject)
    {
        return QStringLiteral("Are you sure you want to permanently delete '%1'?").arg(subject);
    }

    qint32 Reference = 0;
};

TEST_F(CommandTest, ANewMessageIsAnEmptyRecordFromEachOfItsPlaces)
{
    QTest::mouseClick(&Child<QPushButton>("cmdNewMessage"), Qt::LeftButton);
    EXPECT_EQ(TakeFills(), 1);
    ChooseForRow(1, "mnuMessageNewMessage");
    EXPECT_EQ(TakeFills(), 1);
    ASSERT_EQ(New.size(), 2);
    for (const cMessagePtr& message : New) {
        EXPECT_EQ(message->Reference(), 0);
        EXPECT_FALSE(message->Edited());
        EXPECT_EQ(message->CDOMessage()->Octets(), QByteArray());
    }
    EXPECT_NE(New.at(0), New.at(1));
    EXPECT_EQ(StoredMessages(), 1);
}

TEST_F(CommandTest, ANewMessageNeedsAStation)
{
    List->SetTolvaDatabase(nullptr);
    QTest::mouseClick(&Child<QPushButton>("cmdNewMessage"), Qt::LeftButton);
    EXPECT_TRUE(New.isEmpty());
}

TEST_F(CommandTest, AMessageIsOpenedFromTheMenuByEnterAndByADoubleClick)
{
    ChooseForRow(1, "mnuOpen");
    QTest::keyClick(Grid, Qt::Key_Return);
    QTest::mouseDClick(Grid->viewport(), Qt::LeftButton, {}, RowPosition(1));
    ASSERT_EQ(Opened.size(), 3);
    for (const cMessagePtr& message : Opened) {
        EXPECT_EQ(message->Reference(), Reference);
        EXPECT_EQ(message->CDOMessage()->Subject(), QStringLiteral("Lighthouse"));
    }
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(CommandTest, AMessageIsFetchedAnewForEachCommand)
{
    const cMessagePtr changed = OtherComputer().GetMessage(Reference);
    changed->CDOMessage()->SetSubject(QStringLiteral("Changed elsewhere"));
    changed->SetEdited(true);
    ASSERT_TRUE(OtherComputer().SaveMessage(changed));
    ChooseForRow(1, "mnuPrint");
    ASSERT_EQ(Printed.size(), 1);
    EXPECT_EQ(Printed.first()->CDOMessage()->Subject(), QStringLiteral("Changed elsewhere"));
}

TEST_F(CommandTest, AReplyEndsInATypeMismatchAndNothingIsHandedOver)
{
    const ErrorCatcher errors;
    ChooseForRow(1, "mnuReplyMessage");
    EXPECT_EQ(errors.Numbers(), QList<int>{dao::errTypeMismatch});
    EXPECT_EQ(errors.Descriptions(), QStringList{QStringLiteral("Type mismatch")});
    EXPECT_EQ(errors.Sources(), QStringList{QStringLiteral("uMessagesList.mnuReplyMessage")});
    EXPECT_TRUE(New.isEmpty());
    EXPECT_EQ(StoredMessages(), 1);
}

TEST_F(CommandTest, AForwardHasTheSubjectAndNothingElse)
{
    ChooseForRow(1, "mnuForwardMessage");
    ASSERT_EQ(New.size(), 1);
    const cMessagePtr forward = New.first();
    EXPECT_EQ(forward->Reference(), 0);
    EXPECT_EQ(forward->CDOMessage()->Subject(), QStringLiteral("FW: Lighthouse"));
    EXPECT_EQ(forward->CDOMessage()->To(), QString());
    EXPECT_EQ(forward->CDOMessage()->From(), QString());
    EXPECT_EQ(forward->CDOMessage()->TextBody(), QString());
    EXPECT_TRUE(forward->CDOMessage()->Attachments().isEmpty());
    EXPECT_EQ(StoredMessages(), 1);
}

TEST_F(CommandTest, ACopyIsTheWholeMessageUnderANewSubjectAndSavingItAddsOne)
{
    ChooseForRow(1, "mnuCopy");
    ASSERT_EQ(New.size(), 1);
    const cMessagePtr copy = New.first();
    EXPECT_EQ(copy->Reference(), 0);
    EXPECT_EQ(copy->CDOMessage()->Subject(), QStringLiteral("Copy of Lighthouse"));
    EXPECT_EQ(copy->CDOMessage()->To(), QStringLiteral("studio@example.org"));
    EXPECT_EQ(copy->CDOMessage()->Attachments().size(), 1);
    EXPECT_EQ(StoredMessages(), 1);
    ASSERT_TRUE(Station->SaveMessage(copy));
    EXPECT_EQ(StoredMessages(), 2);
    EXPECT_EQ(Subjects().size(), 2);
    EXPECT_EQ(Station->GetMessage(Reference)->CDOMessage()->Subject(), QStringLiteral("Lighthouse"));
}

TEST_F(CommandTest, DeletingMovesToDeletedItemsWithoutAQuestion)
{
    ChooseForRow(1, "mnuDelete");
    EXPECT_EQ(StoredCategory(Reference), tmcDeleted);
    EXPECT_EQ(Subjects(), QStringList());
    EXPECT_EQ(List->SelectedReference(), 0);
}

TEST_F(CommandTest, TheDeleteKeyAsksInDeletedItemsOnly)
{
    Grid->setFocus();
    QTest::keyClick(Grid, Qt::Key_Delete);
    ASSERT_EQ(StoredCategory(Reference), tmcDeleted);
    ClickNode(tmcDeleted);
    ASSERT_EQ(List->SelectedReference(), Reference);
    Ui.ExpectConfirmation(DeleteQuestion(QStringLiteral("Lighthouse")), MessageBoxAnswer::No);
    QTest::keyClick(Grid, Qt::Key_Delete);
    EXPECT_EQ(StoredCategory(Reference), tmcDeleted);
    Ui.ExpectConfirmation(DeleteQuestion(QStringLiteral("Lighthouse")), MessageBoxAnswer::Yes);
    TakeFills();
    QTest::keyClick(Grid, Qt::Key_Delete);
    EXPECT_EQ(StoredMessages(), 0);
    EXPECT_EQ(Subjects(), QStringList());
    EXPECT_EQ(TakeFills(), 1);
}

TEST_F(CommandTest, TheQuestionNamesTheSubjectWhateverItHolds)
{
    const qint32 odd = SaveNew(QStringLiteral("100% 'sure' & %1 %2"), tmcDeleted);
    List->SetCategory(tmcDeleted);
    Ui.ExpectConfirmation(DeleteQuestion(QStringLiteral("100% 'sure' & %1 %2")), MessageBoxAnswer::No);
    ChooseForRow(1, "mnuDelete");
    EXPECT_EQ(StoredCategory(odd), tmcDeleted);
}

TEST_F(CommandTest, OfASubjectWithoutEndItsBeginningIsAskedAboutAndForwarded)
{
    const QString endless = QStringLiteral("word ").repeated(4000).trimmed();
    SaveNew(endless, tmcDeleted);
    List->SetCategory(tmcDeleted);
    Ui.ExpectConfirmation(DeleteQuestion(endless.left(1000)), MessageBoxAnswer::No);
    ChooseForRow(1, "mnuDelete");
    ChooseForRow(1, "mnuForwardMessage");
    ASSERT_EQ(New.size(), 1);
    EXPECT_EQ(New.first()->CDOMessage()->Subject().trimmed(),
              (QStringLiteral("FW: ") + endless.left(10'000)).trimmed());
    // A copy is whole.
    ChooseForRow(1, "mnuCopy");
    ASSERT_EQ(New.size(), 2);
    EXPECT_EQ(New.last()->CDOMessage()->Subject(), QStringLiteral("Copy of ") + endless);
}

TEST_F(CommandTest, TheFolderOfTheStoredMessageDecidesNotTheOneOnShow)
{
    // Another computer has put it into Deleted Items since.
    ASSERT_TRUE(OtherComputer().MoveMessage(Reference, tmcDeleted));
    Ui.ExpectConfirmation(DeleteQuestion(QStringLiteral("Lighthouse")), MessageBoxAnswer::No);
    ChooseForRow(1, "mnuDelete");
    EXPECT_EQ(StoredCategory(Reference), tmcDeleted);
}

TEST_F(CommandTest, WithoutTheRightNothingIsDeleted)
{
    TakeFills();
    Directory.User.Rights = 0;
    QTest::mouseClick(Grid->viewport(), Qt::RightButton, {}, RowPosition(1));
    EXPECT_FALSE(Entry("mnuDelete").isEnabled());
    EXPECT_FALSE(Entry("mnuCopy").isEnabled());
    EXPECT_FALSE(Entry("mnuExportMessage").isEnabled());
    List->MessageMenu()->close();
    Grid->setFocus();
    QTest::keyClick(Grid, Qt::Key_Delete);
    // The station refuses too, whoever asks.
    Entry("mnuDelete").setEnabled(true);
    QTest::keyClick(Grid, Qt::Key_Delete);
    EXPECT_EQ(StoredCategory(Reference), tmcInbox);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(CommandTest, AMessageThatAnotherComputerDeletedGivesNothingToAnyCommand)
{
    QTest::mouseClick(Grid->viewport(), Qt::RightButton, {}, RowPosition(1));
    List->MessageMenu()->close();
    ASSERT_TRUE(OtherComputer().DeleteMessage(Reference, true));
    for (const char* name :
         {"mnuOpen", "mnuPrint", "mnuReplyMessage", "mnuForwardMessage", "mnuCopy", "mnuExportMessage", "mnuDelete",
          "mnuMarkAsRead", "mnuMarkasUnread", "mnuMarkAllRead1", "mnuMarkAllRead2"}) {
        Entry(name).setEnabled(true);
        Entry(name).setVisible(true);
        Entry(name).trigger();
    }
    QTest::keyClick(Grid, Qt::Key_Return);
    QTest::keyClick(Grid, Qt::Key_Delete);
    EXPECT_TRUE(New.isEmpty());
    EXPECT_TRUE(Opened.isEmpty());
    EXPECT_TRUE(Printed.isEmpty());
    EXPECT_EQ(StoredMessages(), 0);
}

TEST_F(CommandTest, WithoutAMessageThereIsNothingToDo)
{
    ClickNode(tmcSaved);
    ASSERT_EQ(List->SelectedReference(), 0);
    for (const char* name :
         {"mnuOpen", "mnuPrint", "mnuReplyMessage", "mnuForwardMessage", "mnuCopy", "mnuExportMessage", "mnuDelete",
          "mnuMarkAsRead", "mnuMarkasUnread", "mnuMarkAllRead1", "mnuMarkAllRead2"}) {
        Entry(name).setVisible(true);
        Entry(name).setEnabled(true);
        Entry(name).trigger();
    }
    EXPECT_TRUE(New.isEmpty());
    EXPECT_TRUE(Opened.isEmpty());
    EXPECT_TRUE(Printed.isEmpty());
    EXPECT_EQ(StoredCategory(Reference), tmcInbox);
}

TEST_F(CommandTest, CommandsWithoutAStationDoNothing)
{
    List->SetTolvaDatabase(nullptr);
    for (const char* name :
         {"mnuOpen", "mnuPrint", "mnuReplyMessage", "mnuForwardMessage", "mnuCopy", "mnuExportMessage", "mnuDelete",
          "mnuMarkAsRead", "mnuMarkasUnread", "mnuMarkAllRead1", "mnuMarkAllRead2", "mnuNewFolder", "mnuDeleteFolder",
          "mnuEmpty", "mnuRenameFolder", "mnuCategoryAllRead", "mnuCategoryAllUnRead", "mnuNewMessage"}) {
        Entry(name).setVisible(true);
        Entry(name).setEnabled(true);
        Entry(name).trigger();
    }
    EXPECT_TRUE(New.isEmpty());
    EXPECT_TRUE(Opened.isEmpty());
    EXPECT_EQ(StoredMessages(), 1);
}

TEST_F(CommandTest, AnErrorOfTheStationIsToldWithTheCommandThatMetIt)
{
    const ErrorCatcher errors;
    DamageStation();
    Entry("mnuForwardMessage").trigger();
    EXPECT_EQ(errors.Sources(), QStringList{QStringLiteral("uMessagesList.mnuForwardMessage")});
    EXPECT_TRUE(New.isEmpty());
}
