// SPDX-License-Identifier: Apache-2.0

// Keys and mouse on the grid.

#include "messageslist/FilledListTest.h"

class MessagesListGridTest : public FilledListTest
{
protected:
    MessagesListGridTest()
    {
        QObject::connect(List.get(), &uMessagesList::OpenMessage, List.get(),
                         [this](const cMessagePtr& message) { Opened.append(message->Reference()); });
    }
    /// Whether the grid kept the key from its parents.
    bool PressKey(int key)
    {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(Grid, &press);
        return press.isAccepted();
    }

    QList<qint32> Opened;
};

TEST_F(MessagesListGridTest, AClickSelectsTheMessageAndTellsIt)
{
    const QList<qint32> references = SaveMany(3);
    Attach();
    TakeSelections();
    ClickRow(3);
    EXPECT_EQ(List->SelectedReference(), references.at(2));
    EXPECT_EQ(TakeSelections(), QList<qint32>{references.at(2)});
    QTest::keyClick(Grid, Qt::Key_Up);
    EXPECT_EQ(TakeSelections(), QList<qint32>{references.at(1)});
}

TEST_F(MessagesListGridTest, F2DoesNothing)
{
    Save(QStringLiteral("One"));
    Attach();
    TakeSelections();
    PressKey(Qt::Key_F2);
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_EQ(Opened, QList<qint32>{});
    EXPECT_FALSE(Tree->IsEditingLabel());
    EXPECT_EQ(TakeSelections(), QList<qint32>{});
}

TEST_F(MessagesListGridTest, F5ReadsTheListAgain)
{
    Save(QStringLiteral("One"));
    Attach();
    EXPECT_TRUE(PressKey(Qt::Key_F5));
    EXPECT_EQ(TakeFills(), 1);
}

TEST_F(MessagesListGridTest, EnterOpensTheSelectedMessage)
{
    const QList<qint32> references = SaveMany(2);
    Attach();
    ClickRow(2);
    EXPECT_TRUE(PressKey(Qt::Key_Return));
    EXPECT_TRUE(PressKey(Qt::Key_Enter));
    EXPECT_EQ(Opened, QList<qint32>({references.at(1), references.at(1)}));
}

TEST_F(MessagesListGridTest, EnterInAnEmptyListIsSwallowed)
{
    Attach();
    EXPECT_TRUE(PressKey(Qt::Key_Return));
    EXPECT_EQ(Opened, QList<qint32>{});
}

TEST_F(MessagesListGridTest, DeleteDeletesTheSelectedMessage)
{
    const QList<qint32> references = SaveMany(2);
    Attach();
    EXPECT_TRUE(PressKey(Qt::Key_Delete));
    EXPECT_EQ(Station->GetMessage(references.at(0))->Category(), tmcDeleted);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Message 2")});
    EXPECT_EQ(List->SelectedReference(), references.at(1));
}

TEST_F(MessagesListGridTest, DeleteIsSwallowedWhenTheLastPopupDisabledIt)
{
    const qint32 one = Save(QStringLiteral("One"));
    Attach();
    Directory.User.Rights = 0;
    QMenu* menu = List->MessageMenu();
    menu->popup(List->mapToGlobal(QPoint(10, 10)));
    menu->close();
    ASSERT_FALSE(Entry("mnuDelete").isEnabled());
    Directory.User.Rights = 31;
    EXPECT_TRUE(PressKey(Qt::Key_Delete));
    EXPECT_EQ(Station->GetMessage(one)->Category(), tmcInbox);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListGridTest, ADoubleClickOpensTheMessage)
{
    const QList<qint32> references = SaveMany(2);
    Attach();
    ClickRow(2);
    QTest::mouseDClick(Grid->viewport(), Qt::LeftButton, {}, RowPosition(2));
    EXPECT_EQ(Opened, QList<qint32>{references.at(1)});
}

TEST_F(MessagesListGridTest, TheRightButtonSelectsItsRowAndPopsUpWhenItIsReleased)
{
    const QList<qint32> references = SaveMany(3);
    Attach();
    Box->setFocus();
    TakeSelections();
    QTest::mousePress(Grid->viewport(), Qt::RightButton, {}, RowPosition(2));
    EXPECT_EQ(Grid->Row(), 2);
    EXPECT_EQ(List->SelectedReference(), references.at(1));
    EXPECT_EQ(TakeSelections().last(), references.at(1));
    EXPECT_EQ(QApplication::focusWidget(), Grid);
    EXPECT_FALSE(List->MessageMenu()->isVisible());
    QTest::mouseRelease(Grid->viewport(), Qt::RightButton, {}, RowPosition(2));
    EXPECT_TRUE(List->MessageMenu()->isVisible());
    List->MessageMenu()->close();
}

TEST_F(MessagesListGridTest, TheRightButtonBelowTheRowsKeepsTheSelection)
{
    const qint32 one = Save(QStringLiteral("One"));
    Attach();
    QTest::mouseClick(Grid->viewport(), Qt::RightButton, {}, QPoint(50, Grid->viewport()->height() - 5));
    EXPECT_EQ(List->SelectedReference(), one);
    EXPECT_TRUE(List->MessageMenu()->isVisible());
    List->MessageMenu()->close();
}

TEST_F(MessagesListGridTest, ThePopupWorksOverAnEmptyList)
{
    Attach();
    ASSERT_TRUE(NoMessages().isVisible());
    QTest::mouseClick(&NoMessages(), Qt::LeftButton, {}, NoMessages().rect().center());
    EXPECT_FALSE(List->MessageMenu()->isVisible());
    QTest::mouseClick(&NoMessages(), Qt::RightButton, {}, NoMessages().rect().center());
    EXPECT_TRUE(List->MessageMenu()->isVisible());
    EXPECT_FALSE(Entry("mnuOpen").isEnabled());
    EXPECT_TRUE(Entry("mnuMessageNewMessage").isEnabled());
    List->MessageMenu()->close();
}

TEST_F(MessagesListGridTest, TheMenuKeyPopsUpToo)
{
    Save(QStringLiteral("One"));
    Attach();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(5, 5), Grid->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(Grid->viewport(), &event);
    EXPECT_TRUE(List->MessageMenu()->isVisible());
    List->MessageMenu()->close();
}
