// SPDX-License-Identifier: Apache-2.0

// Where the controls of the list lie, and what its properties show and hide.

#include "messageslist/FilledListTest.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/ToolBar.h"
#include "platform/widgets/Twips.h"

#include <QHelpEvent>
#include <QLabel>
#include <QPushButton>
#include <QTabBar>
#include <QToolTip>

class MessagesListLayoutTest : public FilledListTest
{
protected:
    int Pixels(double twips) const { return Twips::ToPixels(*List, twips); }
    QRect Place(const char* name) const { return Child<QWidget>(name).geometry(); }
    ToolBar& Bar() const { return Child<ToolBar>("toolSearch"); }
    /// In pixels of the list.
    QRect PlaceInList(const QWidget& widget) const { return {widget.mapTo(List.get(), QPoint()), widget.size()}; }
    void ExpectOverlaysBelowTheHeader() const
    {
        const QRect grid = Grid->geometry();
        const int offset = Pixels(Grid->RowHeight(0) + 45);
        const QRect expected(grid.left(), grid.top() + offset, grid.width(), grid.height() - offset + Pixels(15));
        EXPECT_EQ(Loading().geometry(), expected);
        EXPECT_EQ(NoMessages().geometry(), expected);
    }
};

TEST_F(MessagesListLayoutTest, IsNeverSmallerThanItsLeastSize)
{
    Attach();
    List->resize(10, 10);
    EXPECT_EQ(List->width(), Pixels(2500));
    EXPECT_EQ(List->height(), Pixels(1920));
    // A host's layout that knows no least sizes.
    List->setMinimumSize(0, 0);
    List->resize(10, 10);
    EXPECT_EQ(List->size(), QSize(Pixels(2500), Pixels(1920)));
}

TEST_F(MessagesListLayoutTest, TheFindBarFillsTheTop)
{
    Attach();
    EXPECT_EQ(Bar().x(), -Pixels(15));
    EXPECT_EQ(Bar().y(), -Pixels(15));
    EXPECT_EQ(Bar().width(), List->width() + 2 * Pixels(15));
    EXPECT_EQ(Bar().ButtonWidth(QStringLiteral("findholder")),
              Bar().width() - Bar().ButtonWidth(QStringLiteral("search")) - Pixels(30));
    EXPECT_EQ(Place("picFind"), Bar().ButtonRect(QStringLiteral("findholder")));
    Bar().SetButtonVisible(QStringLiteral("stop"), true);
    List->resize(950, 600);
    EXPECT_EQ(Bar().ButtonWidth(QStringLiteral("findholder")),
              Bar().width() - Bar().ButtonWidth(QStringLiteral("search")) - Bar().ButtonWidth(QStringLiteral("stop")) -
                  Pixels(30));
}

TEST_F(MessagesListLayoutTest, TheTreeTakesAThirdAndTheMessagesTheRest)
{
    Attach();
    const QRect categories = Place("tbsCategories");
    EXPECT_EQ(categories.left(), 0);
    EXPECT_EQ(categories.width(), List->width() / 3);
    EXPECT_EQ(categories.bottom(), List->rect().bottom());
    EXPECT_GE(categories.top(), Bar().geometry().bottom());
    const int margin = Pixels(60);
    const QRect tree = PlaceInList(*Tree);
    EXPECT_EQ(tree, categories.adjusted(margin, margin, -margin, -margin));

    const QRect messages = Place("picMessages");
    EXPECT_EQ(messages.left(), categories.width() + Pixels(30));
    EXPECT_EQ(messages.right(), List->rect().right());
    EXPECT_EQ(messages.top(), categories.top());
    EXPECT_EQ(Tabs->geometry(), Child<QWidget>("picMessages").rect());
    EXPECT_EQ(PlaceInList(*Grid), messages.adjusted(margin, margin, -margin, -margin));
}

TEST_F(MessagesListLayoutTest, WithoutTheMessagesTheTreeTakesAll)
{
    Attach();
    List->SetDisplayMessageList(false);
    EXPECT_EQ(Place("tbsCategories").width(), List->width());
    EXPECT_EQ(Tree->width(), List->width() - 2 * Pixels(60));
    EXPECT_FALSE(Child<QWidget>("picMessages").isVisible());
    List->SetDisplayMessageList(true);
    EXPECT_EQ(Place("tbsCategories").width(), List->width() / 3);
    EXPECT_TRUE(Grid->isVisible());
}

TEST_F(MessagesListLayoutTest, TheControlsLieThereAlsoWhenTheListWasSizedBeforeItWasShown)
{
    List->resize(700, 500);
    Attach();
    const int margin = Pixels(60);
    EXPECT_EQ(Tree->width(), 700 / 3 - 2 * margin);
    EXPECT_EQ(Grid->width(), Place("picMessages").width() - 2 * margin);
    ExpectOverlaysBelowTheHeader();
}

TEST_F(MessagesListLayoutTest, TheOverlaysLieBelowTheHeaderInBothModes)
{
    Attach();
    ExpectOverlaysBelowTheHeader();
    List->SetDoubleHeightRows(false);
    ExpectOverlaysBelowTheHeader();
    List->resize(1000, 700);
    ExpectOverlaysBelowTheHeader();
    QFont large = List->Font();
    large.setPointSize(20);
    List->SetFont(large);
    ExpectOverlaysBelowTheHeader();
    List->SetDoubleHeightRows(true);
    ExpectOverlaysBelowTheHeader();
    EXPECT_EQ(Loading().accessibleName(), QStringLiteral("Loading Messages..."));
    EXPECT_EQ(NoMessages().accessibleName(), QStringLiteral("There are no matching messages to display."));
}

TEST_F(MessagesListLayoutTest, TheGridMakesRoomForTabs)
{
    Attach();
    const int height = Grid->height();
    Tabs->Tabs().addTab(QStringLiteral("Personal"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return Grid->height() < height; }));
    EXPECT_EQ(Grid->y(), Pixels(60));
    ExpectOverlaysBelowTheHeader();
}

TEST_F(MessagesListLayoutTest, TheNewMessageButtonLiesAtTheRightOfTheBarAndCoversNothing)
{
    Attach();
    auto& button = Child<QPushButton>("cmdNewMessage");
    EXPECT_EQ(button.text(), QStringLiteral("New Message"));
    EXPECT_EQ(button.geometry().right(), List->rect().right());
    EXPECT_LT(button.geometry().bottom(), Place("tbsCategories").top());
    EXPECT_LT(PlaceInList(*Box).right(), button.x());
    const int narrow = Box->width();
    List->SetDisplayNewMessage(false);
    EXPECT_FALSE(button.isVisible());
    EXPECT_GT(Box->width(), narrow);
    EXPECT_LE(PlaceInList(*Box).right(), List->rect().right());
}

TEST_F(MessagesListLayoutTest, DisplayNewMessageShowsTheButtonAndTheEntries)
{
    Attach();
    for (const bool shown : {false, true}) {
        List->SetDisplayNewMessage(shown);
        EXPECT_EQ(List->DisplayNewMessage(), shown);
        EXPECT_EQ(Child<QPushButton>("cmdNewMessage").isVisible(), shown);
        for (const char* name :
             {"mnuNewMessage", "mnuNewMessageSep", "mnuMessageNewMessage", "mnuMessageNewMessageSep"})
            EXPECT_EQ(Entry(name).isVisible(), shown) << name;
    }
}

TEST_F(MessagesListLayoutTest, PrintVisibleShowsThePrintEntry)
{
    for (const bool shown : {false, true}) {
        List->SetPrintVisible(shown);
        EXPECT_EQ(List->PrintVisible(), shown);
        EXPECT_EQ(Entry("mnuPrint").isVisible(), shown);
        EXPECT_EQ(Entry("mnuPrintSep").isVisible(), shown);
    }
}

TEST_F(MessagesListLayoutTest, TheBackColourGoesToTheListAndBothTabStrips)
{
    List->SetBackColour(0x0000FF);
    EXPECT_EQ(List->BackColour(), 0x0000FF);
    for (const QWidget* widget :
         {static_cast<const QWidget*>(List.get()), static_cast<const QWidget*>(&Child<TabStrip>("tbsCategories")),
          static_cast<const QWidget*>(Tabs)})
        EXPECT_EQ(widget->palette().color(QPalette::Window), QColor(255, 0, 0));
    List->SetBackColour(SystemColour::ButtonFace);
    EXPECT_EQ(Tabs->palette().color(QPalette::Window), QApplication::palette().color(QPalette::Button));
}

TEST_F(MessagesListLayoutTest, TheFontGoesToTheListTheTreeAndTheGrid)
{
    SaveMany(2);
    Attach();
    for (const int size : {16, 24}) {
        QFont font = List->Font();
        font.setPointSize(size);
        List->SetFont(font);
        for (const QWidget* widget :
             {static_cast<QWidget*>(List.get()), static_cast<QWidget*>(Tree), static_cast<QWidget*>(Grid)})
            EXPECT_EQ(widget->font().pointSize(), size);
        EXPECT_GE(Grid->RowHeight(1), 2 * Twips::FromPixels(*Grid, Grid->fontMetrics().lineSpacing()));
        EXPECT_EQ(Grid->RowHeight(1), Grid->RowHeight(0));
    }
}

TEST_F(MessagesListLayoutTest, TheGridExplainsItsHeads)
{
    SaveMany(1);
    Attach();
    for (const QPoint& place : {RowPosition(1), QPoint(40, Grid->viewport()->height() - 4)}) {
        QHelpEvent help(QEvent::ToolTip, place, Grid->viewport()->mapToGlobal(place));
        QApplication::sendEvent(Grid->viewport(), &help);
        EXPECT_EQ(QToolTip::text(), QStringLiteral("Messages with a Head icon are personal"));
        QToolTip::hideText();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !QToolTip::isVisible(); }));
    }
}

TEST_F(MessagesListLayoutTest, TheFindBoxHasItsLabel)
{
    EXPECT_EQ(Child<QLabel>("lblFind").text(), QStringLiteral("F&ind:"));
    EXPECT_EQ(Child<QLabel>("lblFind").buddy(), Box);
    EXPECT_EQ(Box->Text(), QStringLiteral("<All Messages>"));
}
