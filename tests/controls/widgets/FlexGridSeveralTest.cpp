// SPDX-License-Identifier: Apache-2.0
#include "widgets/FlexGridFixture.h"

#include <QSignalSpy>

namespace
{
class FlexGridSeveralTest : public FlexGridFixture
{
protected:
    void SetUp() override
    {
        Grid.SetSelectsSeveral(true);
        Fill(8);
        Show();
    }
    void ClickWith(int row, Qt::KeyboardModifiers modifiers)
    {
        QTest::mouseClick(Grid.viewport(), Qt::LeftButton, modifiers, Centre(row, 2));
    }
    using Rows = QList<int>;
};
} // namespace

TEST_F(FlexGridSeveralTest, ShiftAndTheArrowsExtendAndAPlainKeyEndsIt)
{
    Key(Qt::Key_Home);
    QTest::keyClick(&Grid, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&Grid, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(Grid.SelectedRows(), (Rows{1, 2, 3}));
    EXPECT_EQ(SelectedRows(), (Rows{1, 2, 3})) << "as the view shows it";
    QTest::keyClick(&Grid, Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(Grid.SelectedRows(), (Rows{1, 2}));
    Key(Qt::Key_Down);
    EXPECT_EQ(Grid.SelectedRows(), Rows{3});
    EXPECT_EQ(SelectedRows(), Rows{3});
}

TEST_F(FlexGridSeveralTest, CtrlAddsAndTakesAwayAndShiftFillsTheGap)
{
    Click(2, 2);
    ClickWith(5, Qt::ControlModifier);
    EXPECT_EQ(Grid.SelectedRows(), (Rows{2, 5}));
    ClickWith(5, Qt::ControlModifier);
    EXPECT_EQ(Grid.SelectedRows(), Rows{2});
    ClickWith(4, Qt::ShiftModifier);
    EXPECT_TRUE(Grid.SelectedRows().contains(4));
    Click(7, 2);
    EXPECT_EQ(Grid.SelectedRows(), Rows{7});
}

TEST_F(FlexGridSeveralTest, CtrlASelectsAllAndLeavesTheCurrentRow)
{
    Click(3, 2);
    QTest::keyClick(&Grid, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Grid.SelectedRows().size(), 8);
    EXPECT_EQ(Grid.Row(), 3);
}

TEST_F(FlexGridSeveralTest, APressOnASelectedRowLeavesTheOthersUntilItIsReleased)
{
    Click(2, 2);
    ClickWith(4, Qt::ShiftModifier);
    QTest::mousePress(Grid.viewport(), Qt::LeftButton, {}, Centre(3, 2));
    EXPECT_EQ(Grid.SelectedRows(), (Rows{2, 3, 4})) << "a drag of all may begin";
    QTest::mouseRelease(Grid.viewport(), Qt::LeftButton, {}, Centre(3, 2));
    EXPECT_EQ(Grid.SelectedRows(), Rows{3});
}

TEST_F(FlexGridSeveralTest, TheSelectedRowsMoveWithTheRows)
{
    Click(2, 2);
    ClickWith(3, Qt::ShiftModifier);
    Grid.SetRedraw(false);
    Grid.ArrangeRows({-1, 0, 1, 2, 3, 4, 5, 6, 7});
    Grid.SetRow(4);
    Grid.SetRedraw(true);
    EXPECT_EQ(Grid.SelectedRows(), (Rows{3, 4}));
    EXPECT_EQ(SelectedRows(), (Rows{3, 4}));
}

TEST_F(FlexGridSeveralTest, AGridSelectsOneRowUnlessToldOtherwise)
{
    Grid.SetSelectsSeveral(false);
    Click(2, 2);
    ClickWith(5, Qt::ControlModifier);
    EXPECT_EQ(Grid.SelectedRows(), Rows{5});
    QTest::keyClick(&Grid, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(Grid.SelectedRows(), Rows{6});
}

TEST_F(FlexGridSeveralTest, PointingAtTheCurrentRowIsToldToo)
{
    Click(2, 2);
    QSignalSpy chosen(&Grid, &FlexGrid::RowChosen);
    Click(2, 2);
    EXPECT_EQ(chosen.size(), 1);
    Key(Qt::Key_Down);
    EXPECT_EQ(chosen.size(), 2);
    Grid.SetRow(5);
    EXPECT_EQ(chosen.size(), 2) << "code is not the user";
}
