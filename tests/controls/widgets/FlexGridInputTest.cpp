// SPDX-License-Identifier: Apache-2.0
#include "widgets/FlexGridFixture.h"

#include <QApplication>
#include <QSignalSpy>

class FlexGridInputTest : public FlexGridFixture
{
protected:
    FlexGridInputTest()
    {
        QObject::connect(&Grid, &FlexGrid::MouseDown, &Grid, [this](Qt::MouseButton button, const QPointF& at) {
            Told.append(QStringLiteral("down %1 %2,%3 row %4").arg(button).arg(at.x()).arg(at.y()).arg(Grid.Row()));
        });
        QObject::connect(&Grid, &FlexGrid::MouseMove, &Grid, [this](Qt::MouseButtons buttons, const QPointF& at) {
            Told.append(QStringLiteral("move %1 %2,%3").arg(buttons.toInt()).arg(at.x()).arg(at.y()));
        });
        QObject::connect(&Grid, &FlexGrid::MouseUp, &Grid, [this](Qt::MouseButton button, const QPointF& at) {
            Told.append(QStringLiteral("up %1 %2,%3").arg(button).arg(at.x()).arg(at.y()));
        });
        QObject::connect(&Grid, &FlexGrid::DblClick, &Grid, [this] { Told.append(QStringLiteral("double")); });
    }

    void MoveHolding(const QPoint& to)
    {
        QMouseEvent event(QEvent::MouseMove, to, Grid.viewport()->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(Grid.viewport(), &event);
    }

    QStringList Told;
};

TEST_F(FlexGridInputTest, ALeftClickMakesItsRowAndColumnCurrent)
{
    Fill(5);
    Show();
    Click(3, 2);
    EXPECT_EQ(Grid.Row(), 3);
    EXPECT_EQ(Grid.Col(), 2);
    EXPECT_EQ(SelectedRows(), QList<int>{3});
    EXPECT_EQ(Entered, (QList<QPoint>{{3, 2}}));
    Click(3, 2);
    EXPECT_EQ(Entered.size(), 1);
}

TEST_F(FlexGridInputTest, PositionsAreTwipsOfTheViewport)
{
    Fill(5);
    Show();
    QTest::mousePress(Grid.viewport(), Qt::LeftButton, {}, {100, 50});
    MoveHolding({102, 51});
    QTest::mouseRelease(Grid.viewport(), Qt::LeftButton, {}, {103, 52});
    EXPECT_EQ(Told, (QStringList{QStringLiteral("down 1 1500,750 row 3"), QStringLiteral("move 1 1530,765"),
                                 QStringLiteral("up 1 1545,780")}));
}

TEST_F(FlexGridInputTest, TheRightButtonIsToldAndChangesNothing)
{
    Fill(5);
    Show();
    Grid.SetRow(2);
    Told.clear();
    QTest::mouseClick(Grid.viewport(), Qt::RightButton, {}, {100, 70});
    EXPECT_EQ(Grid.Row(), 2);
    EXPECT_EQ(SelectedRows(), QList<int>{2});
    EXPECT_EQ(Told, (QStringList{QStringLiteral("down 2 1500,1050 row 2"), QStringLiteral("up 2 1500,1050")}));
}

TEST_F(FlexGridInputTest, AClickBelowTheRowsIsToldAndChangesNothing)
{
    Fill(2);
    Show();
    Grid.SetRow(1);
    QTest::mouseClick(Grid.viewport(), Qt::LeftButton, {}, {100, 150});
    EXPECT_EQ(Grid.Row(), 1);
    EXPECT_EQ(SelectedRows(), QList<int>{1});
    EXPECT_EQ(Told.size(), 2);
}

TEST_F(FlexGridInputTest, AClickRightOfTheColumnsTakesTheRowAndKeepsTheColumn)
{
    Fill(4);
    Show();
    Grid.SetCol(2);
    QTest::mouseClick(Grid.viewport(), Qt::LeftButton, {}, {360, 50});
    EXPECT_EQ(Grid.Row(), 3);
    EXPECT_EQ(Grid.Col(), 2);
}

TEST_F(FlexGridInputTest, ClicksWithControlOrShiftSelectOneRowToo)
{
    Fill(5);
    Show();
    Click(2, 2);
    QTest::mouseClick(Grid.viewport(), Qt::LeftButton, Qt::ShiftModifier, Centre(4, 2));
    EXPECT_EQ(SelectedRows(), QList<int>{4});
    QTest::mouseClick(Grid.viewport(), Qt::LeftButton, Qt::ControlModifier, Centre(4, 2));
    EXPECT_EQ(SelectedRows(), QList<int>{4});
}

TEST_F(FlexGridInputTest, ADoubleClickIsToldOnARowOnly)
{
    Fill(2);
    Show();
    QTest::mouseDClick(Grid.viewport(), Qt::LeftButton, {}, {100, 30});
    EXPECT_EQ(Told.count(QStringLiteral("double")), 1);
    EXPECT_EQ(Grid.Row(), 2);
    QTest::mouseDClick(Grid.viewport(), Qt::LeftButton, {}, {100, 150});
    QTest::mouseDClick(Grid.viewport(), Qt::RightButton, {}, {100, 30});
    EXPECT_EQ(Told.count(QStringLiteral("double")), 1);
}

TEST_F(FlexGridInputTest, AHeldButtonTakesTheSelectionAlongButNotForATremble)
{
    Fill(8);
    Show();
    QTest::mousePress(Grid.viewport(), Qt::LeftButton, {}, {100, 38});
    EXPECT_EQ(Grid.Row(), 2);
    MoveHolding({100, 42});
    EXPECT_EQ(Grid.Row(), 2) << "four pixels are a tremble";
    MoveHolding({100, 110});
    EXPECT_EQ(Grid.Row(), 6);
    QTest::mouseRelease(Grid.viewport(), Qt::LeftButton, {}, {100, 110});
    MoveHolding({100, 10});
    EXPECT_EQ(Grid.Row(), 6);
    EXPECT_EQ(SelectedRows(), QList<int>{6});
}

TEST_F(FlexGridInputTest, AfterTheEndOfTrackingAHeldButtonSelectsNothingMore)
{
    Fill(8);
    Show();
    QTest::mousePress(Grid.viewport(), Qt::LeftButton, {}, {100, 38});
    Told.clear();
    Grid.EndMouseTracking();
    EXPECT_EQ(Told, QStringList());
    MoveHolding({100, 110});
    EXPECT_EQ(Grid.Row(), 2);
    EXPECT_EQ(Told, (QStringList{QStringLiteral("move 1 1500,1650")}));
    QTest::mouseRelease(Grid.viewport(), Qt::LeftButton, {}, {100, 110});
    EXPECT_EQ(Grid.Row(), 2);
    QTest::mousePress(Grid.viewport(), Qt::LeftButton, {}, {100, 110});
    EXPECT_EQ(Grid.Row(), 6);
    MoveHolding({100, 10});
    EXPECT_EQ(Grid.Row(), 1) << "the next press tracks again";
    QTest::mouseRelease(Grid.viewport(), Qt::LeftButton, {}, {100, 10});
}

TEST_F(FlexGridInputTest, TheRowUnderAPositionIsFound)
{
    Fill(3);
    Show();
    EXPECT_EQ(Grid.RowAt(0), 1);
    EXPECT_EQ(Grid.RowAt(299), 2) << "rounded to the nearest pixel";
    EXPECT_EQ(Grid.RowAtPixel(19), 1);
    EXPECT_EQ(Grid.RowAtPixel(20), 2);
    EXPECT_EQ(Grid.RowAtPixel(59), 3);
    EXPECT_EQ(Grid.RowAtPixel(60), 0);
    EXPECT_EQ(Grid.RowAtPixel(-1), 0);
    Fill(100);
    EXPECT_EQ(Grid.RowAtPixel(Grid.viewport()->height()), 0) << "out of sight";
    QApplication::processEvents();
    Grid.verticalScrollBar()->setValue(30);
    EXPECT_EQ(Grid.RowAtPixel(5), 2);
    EXPECT_EQ(Grid.RowAtPixel(10), 3);
}

TEST_F(FlexGridInputTest, SelectingTheRowAtAPositionDoesNothingWhereThereIsNone)
{
    Fill(3);
    Show();
    SelectGridRowAt(Grid, 450, false);
    EXPECT_EQ(Grid.Row(), 2);
    SelectGridRowAt(Grid, 1500, false);
    EXPECT_EQ(Grid.Row(), 2);
    SelectGridRowAt(Grid, 750, true);
    EXPECT_EQ(Grid.Row(), 3);
    EXPECT_EQ(SelectedRows(), QList<int>{3});
}

TEST_F(FlexGridInputTest, NothingIsSelectedByHandWhileRedrawIsOff)
{
    Fill(8);
    Show();
    Grid.SetRow(2);
    Grid.SetRedraw(false);
    QTest::mouseClick(Grid.viewport(), Qt::LeftButton, {}, {100, 110});
    Key(Qt::Key_Down);
    Key(Qt::Key_End);
    Key(Qt::Key_PageDown);
    EXPECT_EQ(Grid.Row(), 2);
    EXPECT_EQ(Told.size(), 2) << "the buttons are told all the same";
    Grid.SetRedraw(true);
    Key(Qt::Key_Down);
    EXPECT_EQ(Grid.Row(), 3);
}

// ---- Keys

TEST_F(FlexGridInputTest, ArrowsAndPageKeysMoveTheRowAndKeepItInView)
{
    Fill(200);
    Show();
    Grid.SetCol(2);
    Key(Qt::Key_Down);
    EXPECT_EQ(Grid.Row(), 1) << "from none to the first";
    Key(Qt::Key_Down);
    EXPECT_EQ(Grid.Row(), 2);
    Key(Qt::Key_Up);
    Key(Qt::Key_Up);
    EXPECT_EQ(Grid.Row(), 1);
    Key(Qt::Key_PageDown);
    const int page = Grid.Row() - 1;
    EXPECT_NEAR(page, Grid.viewport()->height() / 20, 1);
    Key(Qt::Key_PageDown);
    EXPECT_EQ(Grid.Row(), 1 + 2 * page);
    EXPECT_TRUE(Grid.viewport()->rect().contains(Centre(Grid.Row(), 2)));
    EXPECT_GT(ScrollPosition(), 0);
    Key(Qt::Key_PageUp);
    EXPECT_EQ(Grid.Row(), 1 + page);
    Key(Qt::Key_End);
    EXPECT_EQ(Grid.Row(), 200);
    EXPECT_EQ(ScrollPosition(), Grid.verticalScrollBar()->maximum());
    Key(Qt::Key_PageDown);
    Key(Qt::Key_Down);
    EXPECT_EQ(Grid.Row(), 200);
    Key(Qt::Key_Home);
    EXPECT_EQ(Grid.Row(), 1);
    EXPECT_EQ(ScrollPosition(), 0);
    EXPECT_EQ(Grid.Col(), 2);
    EXPECT_EQ(SelectedRows(), QList<int>{1});
}

TEST_F(FlexGridInputTest, KeysComeBackToARowThatWasScrolledAway)
{
    Fill(200);
    Show();
    Grid.SetRow(5);
    Grid.SetTopRow(100);
    Key(Qt::Key_Down);
    EXPECT_EQ(Grid.Row(), 6);
    EXPECT_TRUE(Grid.viewport()->rect().contains(Centre(6, 2)));
}

TEST_F(FlexGridInputTest, KeysMoveTheRowWhileTheCurrentColumnIsHidden)
{
    Fill(5);
    Show();
    Grid.SetRow(2);
    ASSERT_EQ(Grid.Col(), 0);
    Key(Qt::Key_Down);
    EXPECT_EQ(Grid.Row(), 3);
    EXPECT_EQ(Grid.Col(), 0);
    EXPECT_EQ(SelectedRows(), QList<int>{3});
}

TEST_F(FlexGridInputTest, LeftAndRightMoveOverColumnsThatCanBeSeen)
{
    Fill(2);
    Show();
    Click(1, 2);
    Key(Qt::Key_Right);
    EXPECT_EQ(Grid.Col(), 3);
    Key(Qt::Key_Right);
    EXPECT_EQ(Grid.Col(), 3);
    Key(Qt::Key_Left);
    Key(Qt::Key_Left);
    EXPECT_EQ(Grid.Col(), 1);
    Key(Qt::Key_Left);
    EXPECT_EQ(Grid.Col(), 1) << "the key column is hidden";
    EXPECT_EQ(Grid.Row(), 1);
}

TEST_F(FlexGridInputTest, RowsOfNoHeightArePassedOver)
{
    Fill(4);
    Show();
    Grid.SetRowHeight(2, 0);
    Grid.SetRowHeight(4, 0);
    Grid.SetRow(1);
    Key(Qt::Key_Down);
    EXPECT_EQ(Grid.Row(), 3);
    Key(Qt::Key_Down);
    EXPECT_EQ(Grid.Row(), 3);
    Key(Qt::Key_Home);
    Key(Qt::Key_End);
    EXPECT_EQ(Grid.Row(), 3);
}

TEST_F(FlexGridInputTest, AnEmptyGridTakesItsKeysInPeace)
{
    Show();
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End,
                              Qt::Key_Left, Qt::Key_Right})
        Key(key);
    EXPECT_EQ(Grid.Row(), 0);
    EXPECT_EQ(Entered.size(), 0);
}

TEST_F(FlexGridInputTest, EachKeyIsToldFirstAndAnAcceptedOneIsKeptFromTheGrid)
{
    Fill(5);
    Show();
    Grid.SetRow(2);
    QList<int> keys;
    QObject::connect(&Grid, &FlexGrid::KeyDown, &Grid, [&](QKeyEvent* event) {
        EXPECT_FALSE(event->isAccepted());
        keys.append(event->key());
        event->setAccepted(event->key() == Qt::Key_Down);
    });
    Key(Qt::Key_Down);
    EXPECT_EQ(Grid.Row(), 2);
    Key(Qt::Key_Up);
    EXPECT_EQ(Grid.Row(), 1);
    EXPECT_EQ(keys, (QList<int>{Qt::Key_Down, Qt::Key_Up}));
}

TEST_F(FlexGridInputTest, KeysWithoutAMeaningHereReachTheParent)
{
    class Parent : public QWidget
    {
    public:
        void keyPressEvent(QKeyEvent* event) override { Keys.append(event->key()); }
        QList<int> Keys;
    };
    Parent parent;
    auto* grid = new FlexGrid(&parent);
    grid->SetCols(1);
    grid->SetRows(3);
    grid->SetTextMatrix(1, 0, QStringLiteral("A"));
    grid->SetTextMatrix(2, 0, QStringLiteral("B"));
    grid->SetRow(1);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Delete, Qt::Key_F2, Qt::Key_F5, Qt::Key_Down, Qt::Key_B})
        QTest::keyClick(grid, key);
    EXPECT_EQ(parent.Keys, (QList<int>{Qt::Key_Return, Qt::Key_Delete, Qt::Key_F2, Qt::Key_F5, Qt::Key_B}));
    EXPECT_EQ(grid->Row(), 2) << "by the arrow, not by the letter";
    parent.Keys.clear();
    QObject::connect(grid, &FlexGrid::KeyDown, grid, [](QKeyEvent* event) { event->accept(); });
    QTest::keyClick(grid, Qt::Key_Delete);
    EXPECT_TRUE(parent.Keys.isEmpty());
}

TEST_F(FlexGridInputTest, GettingTheFocusSelectsNothing)
{
    Fill(3);
    Show();
    Grid.clearFocus();
    Grid.setFocus(Qt::TabFocusReason);
    EXPECT_EQ(Grid.Row(), 0);
    EXPECT_EQ(Entered.size(), 0);
}

TEST_F(FlexGridInputTest, WithoutAHorizontalBarNothingScrollsSideways)
{
    Fill(3);
    Grid.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    Grid.SetCols(6);
    Show();
    Click(1, 2);
    Key(Qt::Key_Right);
    Key(Qt::Key_Right);
    Key(Qt::Key_Right);
    EXPECT_EQ(Grid.Col(), 5);
    EXPECT_EQ(Grid.horizontalScrollBar()->value(), 0);
    QWheelEvent wheel(QPointF(50, 50), Grid.viewport()->mapToGlobal(QPointF(50, 50)), {-200, 0}, {-240, 0}, {}, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(Grid.viewport(), &wheel);
    EXPECT_EQ(Grid.horizontalScrollBar()->value(), 0);
}

TEST_F(FlexGridInputTest, TheGridsToolTipShowsOverItsRows)
{
    class Watcher : public QObject
    {
    public:
        bool eventFilter(QObject*, QEvent* event) override
        {
            Asked += event->type() == QEvent::ToolTip ? 1 : 0;
            return event->type() == QEvent::ToolTip;
        }
        int Asked = 0;
    };
    Fill(3);
    Show();
    Watcher watcher;
    Grid.installEventFilter(&watcher);
    QHelpEvent event(QEvent::ToolTip, Centre(2, 2), Grid.viewport()->mapToGlobal(Centre(2, 2)));
    QApplication::sendEvent(Grid.viewport(), &event);
    EXPECT_EQ(watcher.Asked, 1) << "the rows have no tip of their own that would keep it from the grid";
}

TEST_F(FlexGridInputTest, HeadingsDoNotSortMoveOrResize)
{
    Fill(3);
    Show();
    QHeaderView* header = Grid.horizontalHeader();
    const int edge = header->sectionViewportPosition(3);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, {60, 5});
    QTest::mousePress(header->viewport(), Qt::LeftButton, {}, {edge, 5});
    QTest::mouseMove(header->viewport(), {edge + 40, 5});
    QTest::mouseRelease(header->viewport(), Qt::LeftButton, {}, {edge + 40, 5});
    EXPECT_EQ(header->sectionViewportPosition(3), edge);
    EXPECT_EQ(Grid.TextMatrix(1, 2), QStringLiteral("Subject 1"));
    EXPECT_EQ(Grid.Row(), 0);
}
