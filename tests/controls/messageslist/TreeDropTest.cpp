// SPDX-License-Identifier: Apache-2.0

// Messages and folders of this program that are dropped on the tree.

#include "messageslist/ErrorCatcher.h"
#include "messageslist/FolderTest.h"
#include "platform/widgets/DragData.h"

#include <QDropEvent>

class TreeDropTest : public FolderTest
{
protected:
    void SetUp() override
    {
        OpenStation();
        Message = SaveNew(QStringLiteral("In"));
        Attach();
        TakeFills();
    }
    void Allow(DirectoryRight right) { Directory.User.Rights = static_cast<int>(right); }
    void MakeChain()
    {
        A = MakeFolder(QStringLiteral("A"), tmcSaved);
        B = MakeFolder(QStringLiteral("B"), A);
        C = MakeFolder(QStringLiteral("C"), B);
        QTest::keyClick(Tree, Qt::Key_F5);
        Tree->expandAll();
    }

    qint32 Message = 0;
    int A = 0;
    int B = 0;
    int C = 0;
};

TEST_F(TreeDropTest, AMessageMovesToAnyFolderAndTheFolderIsHighlighted)
{
    for (int category = tmcInbox; category <= tmcAutomatic; ++category) {
        EXPECT_EQ(DragOver(*MessageData(Message), category), Qt::MoveAction);
        EXPECT_EQ(Tree->DropHighlight(), Key(category));
    }
    EXPECT_EQ(DragOver(*MessageData(Message), 0), Qt::IgnoreAction);
    EXPECT_EQ(Tree->DropHighlight(), QString());
    DragOver(*MessageData(Message), tmcSaved);
    DragLeave();
    EXPECT_EQ(Tree->DropHighlight(), QString());
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(TreeDropTest, TheHighlightIsSeen)
{
    const QImage before = Tree->grab().toImage();
    DragOver(*MessageData(Message), tmcSaved);
    EXPECT_NE(Tree->grab().toImage(), before);
    DragLeave();
    EXPECT_EQ(Tree->grab().toImage(), before);
}

TEST_F(TreeDropTest, WhatADragMayDoFollowsTheRights)
{
    Allow(DirectoryRight::CanEditMessages);
    EXPECT_EQ(DragOver(*MessageData(Message), tmcSaved), Qt::MoveAction);
    EXPECT_EQ(DragOver(*FolderData(tmcSent), tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(Tree->DropHighlight(), QString());
    Allow(DirectoryRight::CanEditCategories);
    EXPECT_EQ(DragOver(*FolderData(tmcSent), tmcSaved), Qt::MoveAction);
    EXPECT_EQ(DragOver(*MessageData(Message), tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(Tree->DropHighlight(), QString());
}

TEST_F(TreeDropTest, WithoutAUserOrAStationNothingIsTaken)
{
    List->SetTolvaDatabase(nullptr);
    EXPECT_EQ(DragOver(*MessageData(Message), tmcSaved), Qt::IgnoreAction);
    Directory.SignedIn = nullptr;
    List->SetTolvaDatabase(Station.get());
    EXPECT_EQ(DragOver(*MessageData(Message), tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(Drop(*MessageData(Message), tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(StoredCategory(Message), tmcInbox);
}

TEST_F(TreeDropTest, OtherTextsAreNotTaken)
{
    for (const char* text :
         {"", "Please play it again", "!KV", "!KVContact Reference=\"1\"", "!kvmessage Reference=\"1\"",
          "!KVMessageCategoryX Reference=\"1\"", " !KVMessage Reference=\"1\"", "http://example.com/"}) {
        EXPECT_EQ(DragOver(*Text(QLatin1String(text)), tmcSaved), Qt::IgnoreAction) << text;
        EXPECT_EQ(Tree->DropHighlight(), QString());
        EXPECT_EQ(Drop(*Text(QLatin1String(text)), tmcSaved), Qt::IgnoreAction) << text;
    }
    EXPECT_EQ(StoredCategory(Message), tmcInbox);
}

TEST_F(TreeDropTest, ADroppedMessageIsFiledAndItsFolderShown)
{
    EXPECT_EQ(Drop(*MessageData(Message), tmcSaved), Qt::MoveAction);
    EXPECT_EQ(StoredCategory(Message), tmcSaved);
    EXPECT_EQ(SelectedCategory(), tmcSaved);
    EXPECT_EQ(List->Category(), tmcSaved);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("In")});
    EXPECT_EQ(Directory.User.Preferences.value(QStringLiteral("SelectedMessageCategory")).toInt(), tmcSaved);
    EXPECT_EQ(StoredMessages(), 1);
}

TEST_F(TreeDropTest, AMessageDroppedOnItsOwnFolderIsSavedAgain)
{
    int saved = 0;
    QObject::connect(Station.get(), &cTolvaDatabase::MessageSaved, List.get(), [&](const cMessagePtr& message, bool) {
        ++saved;
        EXPECT_EQ(message->Reference(), Message);
    });
    Now.Advance(60);
    const Date stamp = Station->LastMessageChanged();
    EXPECT_EQ(Drop(*MessageData(Message), tmcInbox), Qt::MoveAction);
    EXPECT_EQ(saved, 1);
    EXPECT_NE(Station->LastMessageChanged(), stamp);
    EXPECT_EQ(StoredCategory(Message), tmcInbox);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(TreeDropTest, AMessageThatIsGoneIsNotBroughtBack)
{
    ASSERT_TRUE(OtherComputer().DeleteMessage(Message, true));
    EXPECT_EQ(DragOver(*MessageData(Message), tmcSaved), Qt::MoveAction);
    EXPECT_EQ(Drop(*MessageData(Message), tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(StoredMessages(), 0);
    EXPECT_EQ(List->Category(), tmcInbox);
    for (const char* text : {"!KVMessage", "!KVMessage Reference=\"\"", "!KVMessage Reference=\"-4\"",
                             "!KVMessage Reference=\"99999999999999\"", "!KVMessage Reference=x"})
        EXPECT_EQ(Drop(*Text(QLatin1String(text)), tmcSaved), Qt::IgnoreAction) << text;
}

TEST_F(TreeDropTest, TheRightMayBeLostBeforeTheDrop)
{
    DragOver(*MessageData(Message), tmcSaved);
    Directory.User.Rights = 0;
    const auto data = MessageData(Message);
    QDropEvent late(NodePosition(tmcSaved), Both, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Tree->viewport(), &late);
    EXPECT_FALSE(late.isAccepted());
    EXPECT_EQ(StoredCategory(Message), tmcInbox);
    EXPECT_EQ(Tree->DropHighlight(), QString());
}

TEST_F(TreeDropTest, TheTextOfAMessageDecidesAndItsPromisedFileIsNotAskedFor)
{
    DragData data;
    data.SetText(QStringLiteral("!KVMessage Reference=\"%1\"").arg(Message));
    int asked = 0;
    data.PromiseFiles([&] {
        ++asked;
        return QStringList();
    });
    EXPECT_EQ(DragOver(data, tmcSaved), Qt::MoveAction);
    EXPECT_EQ(Drop(data, tmcSaved), Qt::MoveAction);
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(StoredCategory(Message), tmcSaved);
}

TEST_F(TreeDropTest, ADragFromTheGridFilesTheSelectedMessage)
{
    ClickRow(1);
    Qt::DropAction result = Qt::IgnoreAction;
    DragRunner::SetCurrent([&](QWidget&, DragData* data, Qt::DropActions allowed) {
        result = Drop(*data, tmcSaved, allowed);
        delete data;
        return result;
    });
    const QPoint from = RowPosition(1);
    QTest::mousePress(Grid->viewport(), Qt::LeftButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, from + QPoint(20, 0), Grid->viewport()->mapToGlobal(from + QPoint(20, 0)),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Grid->viewport(), &move);
    QTest::mouseRelease(Grid->viewport(), Qt::LeftButton, {}, from);
    DragRunner::SetCurrent({});
    EXPECT_EQ(result, Qt::MoveAction);
    EXPECT_EQ(StoredCategory(Message), tmcSaved);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("In")});
}

TEST_F(TreeDropTest, AFolderGoesBelowTheOneItIsDroppedOnWithAllBelowIt)
{
    MakeChain();
    EXPECT_EQ(Drop(*FolderData(A), tmcSent), Qt::MoveAction);
    const QStringList expected = {QStringLiteral("8 4 A"), QStringLiteral("9 8 B"), QStringLiteral("10 9 C")};
    EXPECT_EQ(StoredFolders(), expected);
    EXPECT_EQ(Tree->ParentKey(Key(A)), Key(tmcSent));
    EXPECT_EQ(Tree->ParentKey(Key(C)), Key(B));
    EXPECT_EQ(OtherComputer().MessageCategories().FindCategory(A)->ParentReference(), tmcSent);
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_EQ(List->Category(), tmcInbox);
}

TEST_F(TreeDropTest, AFolderDroppedOnItselfStaysAndTheTreeIsFilledAgain)
{
    MakeChain();
    clsCategory added;
    added.SetDescription(QStringLiteral("Theirs"));
    ASSERT_TRUE(OtherComputer().SaveMessageCategory(added));
    EXPECT_EQ(Drop(*FolderData(A), A), Qt::MoveAction);
    EXPECT_EQ(StoredFolders().value(0), QStringLiteral("8 3 A"));
    EXPECT_TRUE(HasNode(added.Reference()));
}

TEST_F(TreeDropTest, AFolderDroppedOnOneBelowItIsNotLost)
{
    MakeChain();
    const qint32 inA = SaveNew(QStringLiteral("In A"), static_cast<enTolvaMessageCategories>(A));
    EXPECT_EQ(Drop(*FolderData(A), C), Qt::MoveAction);
    const QStringList expected = {QStringLiteral("8 10 A"), QStringLiteral("9 8 B"), QStringLiteral("10 9 C")};
    EXPECT_EQ(StoredFolders(), expected);
    for (const int folder : {A, B, C})
        EXPECT_TRUE(HasNode(folder));
    EXPECT_EQ(StoredCategory(inA), A);
    // And it can be brought back to where it was.
    EXPECT_EQ(Drop(*FolderData(A), tmcSaved), Qt::MoveAction);
    EXPECT_EQ(Tree->ParentKey(Key(A)), Key(tmcSaved));
    EXPECT_EQ(Tree->ParentKey(Key(C)), Key(B));
    EXPECT_EQ(StoredFolders().value(0), QStringLiteral("8 3 A"));
    EXPECT_EQ(StoredFolders().size(), 3);
}

TEST_F(TreeDropTest, AFolderThatIsGoneIsNotBroughtBack)
{
    MakeChain();
    ASSERT_TRUE(OtherComputer().DeleteMessageCategory(C));
    EXPECT_EQ(Drop(*FolderData(C), tmcSent), Qt::IgnoreAction);
    EXPECT_EQ(StoredFolders().size(), 2);
    for (const char* text :
         {"!KVMessageCategory", "!KVMessageCategory Reference=\"0\"", "!KVMessageCategory Reference=\"-1\"",
          "!KVMessageCategory Reference=\"70000\"", "!KVMessageCategory Reference=\"99999999999999\""})
        EXPECT_EQ(Drop(*Text(QLatin1String(text)), tmcSent), Qt::IgnoreAction) << text;
}

TEST_F(TreeDropTest, WhatAnotherComputerPutIntoAMovedFolderStays)
{
    MakeChain();
    clsCategory added;
    added.SetDescription(QStringLiteral("Theirs"));
    added.SetParentReference(C);
    ASSERT_TRUE(OtherComputer().SaveMessageCategory(added));
    EXPECT_EQ(Drop(*FolderData(A), tmcSent), Qt::MoveAction);
    EXPECT_EQ(StoredFolders().value(3), QStringLiteral("11 10 Theirs"));
    EXPECT_TRUE(HasNode(11));
}

TEST_F(TreeDropTest, AnErrorOfTheStationIsToldAndEndsTheHighlight)
{
    const ErrorCatcher errors;
    DragOver(*MessageData(Message), tmcSaved);
    DamageStation();
    const auto data = MessageData(Message);
    QDropEvent drop(NodePosition(tmcSaved), Both, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Tree->viewport(), &drop);
    ASSERT_EQ(errors.Sources(), QStringList{QStringLiteral("uMessagesList.treeCategories_OLEDragDrop")});
    EXPECT_FALSE(drop.isAccepted()) << "the source would think that the message went";
    EXPECT_EQ(Tree->DropHighlight(), QString());
}
