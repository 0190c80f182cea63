// SPDX-License-Identifier: Apache-2.0

// The find bar and the button for a new message.

#include "messageslist/FilledListTest.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QToolButton>

class MessagesListFindBarTest : public FilledListTest
{
protected:
    QStringList Entries() const
    {
        QStringList entries;
        for (int i = 0; i < Box->count(); ++i)
            entries.append(Box->itemText(i));
        return entries;
    }
    void Type(const QString& text)
    {
        Box->setFocus();
        Box->lineEdit()->selectAll();
        QTest::keyClicks(Box, text);
    }
};

TEST_F(MessagesListFindBarTest, EnterAndPlusSearchAndAreSwallowed)
{
    Save(QStringLiteral("One and one"));
    Save(QStringLiteral("Two"));
    Attach();
    Type(QStringLiteral("two"));
    EXPECT_EQ(TakeFills(), 0);
    QTest::keyClick(Box, Qt::Key_Return);
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Two")});
    Type(QStringLiteral("one+"));
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Box->Text(), QStringLiteral("one"));
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("One and one")});
    QTest::keyClick(Box, Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(TakeFills(), 1);
}

TEST_F(MessagesListFindBarTest, ClickingAnEntryOfTheListSearchesIt)
{
    Save(QStringLiteral("One"));
    Save(QStringLiteral("Two"));
    Attach();
    Find(QStringLiteral("one"));
    Find(QStringLiteral("two"));
    TakeFills();
    Box->showPopup();
    ASSERT_EQ(Entries(), QStringList({QStringLiteral("<All Messages>"), QStringLiteral("one"), QStringLiteral("two")}));
    QAbstractItemView* view = Box->view();
    const QPoint entry = view->visualRect(view->model()->index(1, 0)).center();
    QTest::mouseMove(view->viewport(), entry);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, entry);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !view->isVisible(); }));
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Box->Text(), QStringLiteral("one"));
    EXPECT_EQ(Box->lineEdit()->selectedText(), QStringLiteral("one"));
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("One")});
}

TEST_F(MessagesListFindBarTest, DroppingDownKeepsWhatWasTyped)
{
    Attach();
    EXPECT_EQ(Box->count(), 0);
    Type(QStringLiteral("half a wo"));
    Box->showPopup();
    Box->hidePopup();
    EXPECT_EQ(Entries(), QStringList{QStringLiteral("<All Messages>")});
    EXPECT_EQ(Box->Text(), QStringLiteral("half a wo"));
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListFindBarTest, LeavingTheBoxSearchesNothingAndKeepsTheSpelling)
{
    Attach();
    Find(QStringLiteral("dusty"));
    Find(QStringLiteral("abba"));
    Box->showPopup();
    Box->hidePopup();
    EXPECT_EQ(Box->count(), 3);
    Type(QStringLiteral("DUSTY"));
    TakeFills();
    Grid->setFocus();
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_EQ(Box->Text(), QStringLiteral("DUSTY"));
}

TEST_F(MessagesListFindBarTest, TheBoxSelectsItsTextWhenItGetsTheFocus)
{
    Attach();
    Grid->setFocus();
    Box->lineEdit()->deselect();
    Box->setFocus();
    EXPECT_EQ(Box->lineEdit()->selectedText(), QStringLiteral("<All Messages>"));
}

TEST_F(MessagesListFindBarTest, AnEmptyBoxShowsAllMessagesWhenItLosesTheFocus)
{
    Attach();
    for (const QString& text : {QString(), QStringLiteral("   ")}) {
        Box->setFocus();
        Box->SetText(text);
        Grid->setFocus();
        EXPECT_EQ(Box->Text(), QStringLiteral("<All Messages>"));
    }
    Box->setFocus();
    Box->SetText(QStringLiteral(" word "));
    Grid->setFocus();
    EXPECT_EQ(Box->Text(), QStringLiteral(" word "));
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListFindBarTest, OnlyTheSearchButtonSearches)
{
    Attach();
    QTest::mouseClick(&Child<QToolButton>("search"), Qt::LeftButton);
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_FALSE(Child<QToolButton>("stop").isVisible());
    Child<QToolButton>("stop").click();
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListFindBarTest, ChoosingATabReadsTheListAgain)
{
    Attach();
    Tabs->Tabs().addTab(QStringLiteral("Personal"));
    QTest::mouseClick(&Tabs->Tabs(), Qt::LeftButton, {}, Tabs->Tabs().tabRect(1).center());
    EXPECT_EQ(Tabs->Tab(), 1);
    EXPECT_EQ(TakeFills(), 1);
}

TEST_F(MessagesListFindBarTest, TheNewMessageButtonHandsTheHostANewOneAndReadsTheListAgain)
{
    Attach();
    QList<cMessagePtr> handed;
    QObject::connect(List.get(), &uMessagesList::NewMessage, List.get(),
                     [&](const cMessagePtr& message) { handed.append(message); });
    QTest::mouseClick(&Child<QPushButton>("cmdNewMessage"), Qt::LeftButton);
    ASSERT_EQ(handed.size(), 1);
    ASSERT_NE(handed.first(), nullptr);
    EXPECT_EQ(handed.first()->Reference(), 0);
    EXPECT_EQ(TakeFills(), 1);
}

TEST_F(MessagesListFindBarTest, WithoutAStationTheBarDoesNothing)
{
    List->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(List.get()));
    Find(QStringLiteral("one"));
    QTest::mouseClick(&Child<QPushButton>("cmdNewMessage"), Qt::LeftButton);
    EXPECT_EQ(TakeFills(), 0);
}
