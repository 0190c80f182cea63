// SPDX-License-Identifier: Apache-2.0

// The tab strip, the tool bar, the overlay panel and the find box by themselves.

#include "platform/widgets/FindBox.h"
#include "platform/widgets/OverlayPanel.h"
#include "platform/widgets/TabStrip.h"
#include "platform/widgets/ToolBar.h"
#include "platform/widgets/Twips.h"

#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTabBar>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

TEST(TabStripTest, ASingleTabShowsNoTabsAndThePageFillsTheStrip)
{
    TabStrip strip;
    strip.resize(200, 100);
    strip.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&strip));
    EXPECT_EQ(strip.Tabs().count(), 1);
    EXPECT_EQ(strip.Tabs().tabText(0), QStringLiteral(" "));
    EXPECT_FALSE(strip.Tabs().isVisible());
    EXPECT_EQ(strip.Page().geometry(), QRect(0, 0, 200, 100));
    strip.close();
}

TEST(TabStripTest, FurtherTabsTakeRoomFromThePage)
{
    TabStrip strip;
    strip.resize(200, 100);
    strip.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&strip));
    QSignalSpy resized(&strip, &TabStrip::PageResized);
    strip.Tabs().addTab(QStringLiteral("Second"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return strip.Tabs().isVisible(); }));
    EXPECT_EQ(resized.count(), 1);
    EXPECT_EQ(strip.Page().y(), strip.Tabs().sizeHint().height());
    EXPECT_EQ(strip.Page().geometry().bottom(), 99);
    strip.Tabs().removeTab(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !strip.Tabs().isVisible(); }));
    EXPECT_EQ(strip.Page().geometry(), QRect(0, 0, 200, 100));
    strip.close();
}

TEST(TabStripTest, ChoosingATabIsTold)
{
    TabStrip strip;
    strip.Tabs().addTab(QStringLiteral("Second"));
    QSignalSpy clicks(&strip, &TabStrip::TabClick);
    strip.SetTab(1);
    strip.SetTab(1);
    strip.SetTab(7);
    strip.SetTab(-1);
    EXPECT_EQ(strip.Tab(), 1);
    ASSERT_EQ(clicks.count(), 1);
    EXPECT_EQ(clicks.first().first().toInt(), 1);
}

TEST(ToolBarTest, ButtonsLieSideBySideInTheirWidths)
{
    ToolBar bar;
    bar.AddButton(QStringLiteral("one"), QIcon(), QStringLiteral("First"));
    bar.AddPlaceholder(QStringLiteral("room"));
    bar.AddButton(QStringLiteral("two"), QIcon(), QStringLiteral("Second"));
    bar.resize(300, 24);
    bar.SetButtonWidth(QStringLiteral("ONE"), 30);
    bar.SetButtonWidth(QStringLiteral("room"), 100);
    bar.SetButtonWidth(QStringLiteral("two"), 40);
    bar.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&bar));
    EXPECT_EQ(bar.ButtonRect(QStringLiteral("one")), QRect(0, 0, 30, 24));
    EXPECT_EQ(bar.ButtonRect(QStringLiteral("Room")), QRect(30, 0, 100, 24));
    EXPECT_EQ(bar.ButtonRect(QStringLiteral("two")), QRect(130, 0, 40, 24));
    EXPECT_EQ(bar.WidthOfOthers(QStringLiteral("ROOM")), 70);
    bar.SetButtonVisible(QStringLiteral("one"), false);
    EXPECT_FALSE(bar.IsButtonVisible(QStringLiteral("one")));
    EXPECT_EQ(bar.ButtonRect(QStringLiteral("one")), QRect());
    EXPECT_EQ(bar.ButtonRect(QStringLiteral("room")), QRect(0, 0, 100, 24));
    EXPECT_EQ(bar.WidthOfOthers(QStringLiteral("room")), 40);
    EXPECT_FALSE(bar.findChild<QToolButton*>(QStringLiteral("one"))->isVisible());
    bar.SetButtonWidth(QStringLiteral("room"), -5);
    EXPECT_EQ(bar.ButtonWidth(QStringLiteral("room")), 0);
    bar.close();
}

TEST(ToolBarTest, AKeyThatIsNotThereIsNothing)
{
    ToolBar bar;
    bar.SetButtonWidth(QStringLiteral("none"), 5);
    bar.SetButtonVisible(QStringLiteral("none"), true);
    bar.SetIcon(QStringLiteral("none"), QIcon());
    EXPECT_EQ(bar.ButtonWidth(QStringLiteral("none")), 0);
    EXPECT_FALSE(bar.IsButtonVisible(QStringLiteral("none")));
    EXPECT_EQ(bar.ButtonRect(QStringLiteral("none")), QRect());
}

TEST(ToolBarTest, AClickTellsTheKeyAndTheButtonHasAName)
{
    ToolBar bar;
    bar.AddButton(QStringLiteral("Find"), QIcon(), QStringLiteral("Search now"));
    bar.resize(100, 24);
    bar.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&bar));
    QSignalSpy clicks(&bar, &ToolBar::ButtonClick);
    auto* button = bar.findChild<QToolButton*>(QStringLiteral("Find"));
    EXPECT_EQ(button->toolTip(), QStringLiteral("Search now"));
    EXPECT_EQ(button->accessibleName(), QStringLiteral("Search now"));
    QTest::mouseClick(button, Qt::LeftButton);
    ASSERT_EQ(clicks.count(), 1);
    EXPECT_EQ(clicks.first().first().toString(), QStringLiteral("Find"));
    bar.close();
}

class OverlayPanelTest : public testing::Test
{
protected:
    OverlayPanel Panel{QStringLiteral("Wait"), nullptr};

    QLabel& Label(int index) const { return *Panel.findChildren<QLabel*>().at(index); }
};

TEST_F(OverlayPanelTest, ItsTextStaysInTheMiddle)
{
    for (const QSize& size : {QSize(300, 200), QSize(120, 90)}) {
        Panel.resize(size);
        Panel.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&Panel));
        EXPECT_EQ(Label(0).text(), QStringLiteral("Wait"));
        EXPECT_EQ(Label(0).alignment(), Qt::AlignCenter);
        EXPECT_EQ(Label(0).x(), 0);
        EXPECT_EQ(Label(0).width(), size.width());
        EXPECT_NEAR(Label(0).geometry().center().y(), size.height() / 2, 1);
    }
    Panel.close();
}

TEST_F(OverlayPanelTest, TheDetailStandsBelowTheText)
{
    Panel.resize(300, 200);
    Panel.SetDetail(QStringLiteral("1 of 2"));
    EXPECT_EQ(Label(1).text(), QStringLiteral("1 of 2"));
    Panel.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&Panel));
    EXPECT_GT(Label(1).y(), Label(0).geometry().bottom());
    Panel.close();
}

TEST_F(OverlayPanelTest, AButtonUpIsToldInTwipsAlsoOnTheText)
{
    Panel.resize(300, 200);
    Panel.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&Panel));
    QList<QPair<Qt::MouseButton, QPointF>> told;
    QObject::connect(&Panel, &OverlayPanel::MouseUp, &Panel, [&](Qt::MouseButton button, QPointF twips) {
        told.append({button, twips});
    });
    QTest::mouseClick(Panel.windowHandle(), Qt::RightButton, {}, Label(0).geometry().center());
    ASSERT_EQ(told.size(), 1);
    EXPECT_EQ(told.first().first, Qt::RightButton);
    EXPECT_EQ(told.first().second.x(), Twips::FromPixels(Panel, Label(0).geometry().center().x()));
    EXPECT_EQ(told.first().second.y(), Twips::FromPixels(Panel, Label(0).geometry().center().y()));
    Panel.close();
}

TEST(FindBoxTest, EnterAndPlusAskForTheSearchAndOtherKeysType)
{
    FindBox box;
    box.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&box));
    QSignalSpy clicks(&box, &FindBox::Click);
    QTest::keyClicks(&box, QStringLiteral("ab"));
    EXPECT_EQ(box.Text(), QStringLiteral("ab"));
    EXPECT_EQ(clicks.count(), 0);
    QTest::keyClick(&box, Qt::Key_Return);
    QTest::keyClick(&box, Qt::Key_Enter);
    QTest::keyClick(&box, '+');
    EXPECT_EQ(clicks.count(), 3);
    EXPECT_EQ(box.Text(), QStringLiteral("ab"));
    EXPECT_EQ(box.count(), 0);
    box.close();
}

TEST(FindBoxTest, NewEntriesLeaveTheTypedText)
{
    FindBox box;
    QObject::connect(&box, &FindBox::DropDown, &box, [&] {
        box.SetEntries({QStringLiteral("one"), QStringLiteral("two")});
    });
    box.SetText(QStringLiteral("typed"));
    box.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&box));
    QSignalSpy clicks(&box, &FindBox::Click);
    box.showPopup();
    box.hidePopup();
    EXPECT_EQ(box.count(), 2);
    EXPECT_EQ(box.Text(), QStringLiteral("typed"));
    EXPECT_EQ(clicks.count(), 0);
    SelectControlText(box);
    EXPECT_EQ(box.lineEdit()->selectedText(), QStringLiteral("typed"));
    box.close();
}
