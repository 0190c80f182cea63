// SPDX-License-Identifier: Apache-2.0
#include "widgets/FlexGridFixture.h"

#include <QApplication>
#include <QScreen>

class FlexGridScrollTest : public FlexGridFixture
{
};

// ---- Lengths

TEST_F(FlexGridScrollTest, LengthsAreTwips)
{
    Fill(2);
    Grid.SetRowHeight(2, 600);
    EXPECT_EQ(Grid.verticalHeader()->sectionSize(0), 20);
    EXPECT_EQ(Grid.verticalHeader()->sectionSize(1), 40);
    EXPECT_EQ(Grid.horizontalHeader()->sectionSize(2), 160);
    EXPECT_EQ(Grid.RowHeight(1), 300);
    EXPECT_EQ(Grid.RowHeight(2), 600);
    EXPECT_EQ(Grid.ColWidth(2), 2400);
}

TEST_F(FlexGridScrollTest, AWidthOfNothingHidesTheColumnAndAnotherShowsIt)
{
    EXPECT_TRUE(Grid.isColumnHidden(0));
    EXPECT_EQ(Grid.ColWidth(0), 0);
    Grid.SetColWidth(0, 900);
    EXPECT_FALSE(Grid.isColumnHidden(0));
    EXPECT_EQ(Grid.columnWidth(0), 60);
}

TEST_F(FlexGridScrollTest, TheHeaderRowsHeightIsTheHeaders)
{
    Fill(1);
    Show();
    const double natural = Grid.RowHeight(0);
    EXPECT_EQ(Twips::ToPixels(Grid, natural), Grid.horizontalHeader()->height());
    Grid.SetRowHeight(0, 750);
    EXPECT_EQ(Grid.horizontalHeader()->height(), 50);
    EXPECT_EQ(Grid.viewport()->y(), Grid.horizontalHeader()->geometry().bottom() + 1);
    EXPECT_EQ(Grid.RowHeight(0), 750);
    Grid.SetRowHeight(0, -1);
    EXPECT_EQ(Grid.RowHeight(0), natural);
}

TEST_F(FlexGridScrollTest, ADefaultHeightResetsAllOthersAndHoldsForNewRows)
{
    Fill(3);
    Grid.SetRowHeight(2, 900);
    Grid.SetDefaultRowHeight(450);
    EXPECT_EQ(Grid.RowHeight(2), 450);
    Grid.SetRows(6);
    for (int row = 1; row < 6; ++row)
        EXPECT_EQ(Grid.verticalHeader()->sectionSize(row - 1), 30) << row;
}

TEST_F(FlexGridScrollTest, WithoutAHeightOfTheirOwnRowsFollowTheFont)
{
    FlexGrid grid;
    grid.SetCols(1);
    grid.SetRows(2);
    const double small = grid.RowHeight(1);
    QFont font = grid.font();
    font.setPointSize(font.pointSize() * 2);
    grid.setFont(font);
    EXPECT_GT(grid.RowHeight(1), small);
    EXPECT_EQ(grid.verticalHeader()->sectionSize(0), Twips::ToPixels(grid, grid.RowHeight(1)));
}

TEST_F(FlexGridScrollTest, AnotherFontLeavesTheHeightsThatRowsHaveOfTheirOwn)
{
    FlexGrid grid;
    grid.SetCols(1);
    grid.SetRows(4);
    grid.SetRowHeight(2, 1500);
    QFont font = grid.font();
    font.setPointSize(font.pointSize() * 2);
    grid.setFont(font);
    EXPECT_EQ(grid.verticalHeader()->sectionSize(1), 100);
    EXPECT_EQ(grid.RowHeight(2), 1500);
    EXPECT_EQ(grid.verticalHeader()->sectionSize(2), Twips::ToPixels(grid, grid.RowHeight(3)));
}

// ---- Scrolling

TEST_F(FlexGridScrollTest, SettingTheRowDoesNotScroll)
{
    Fill(500);
    Grid.SetRow(400);
    Show();
    EXPECT_EQ(ScrollPosition(), 0);
    Grid.SetRow(300);
    QApplication::processEvents();
    EXPECT_EQ(ScrollPosition(), 0);
}

TEST_F(FlexGridScrollTest, TheTopRowIsReadAndSetByScrolling)
{
    Fill(500);
    Show();
    EXPECT_EQ(Grid.TopRow(), 1);
    Grid.SetTopRow(120);
    EXPECT_EQ(Grid.TopRow(), 120);
    EXPECT_EQ(ScrollPosition(), 119 * 20);
    Grid.verticalScrollBar()->setValue(119 * 20 + 7);
    EXPECT_EQ(Grid.TopRow(), 120);
    Grid.SetTopRow(500);
    EXPECT_EQ(ScrollPosition(), Grid.verticalScrollBar()->maximum());
    Grid.SetTopRow(501);
    Grid.SetTopRow(0);
    EXPECT_EQ(ScrollPosition(), Grid.verticalScrollBar()->maximum());
}

TEST_F(FlexGridScrollTest, TheTopRowCountsRowsOfTheirOwnHeight)
{
    Fill(100);
    Show();
    Grid.SetRowHeight(1, 3000);
    Grid.SetTopRow(2);
    EXPECT_EQ(ScrollPosition(), 200);
    EXPECT_EQ(Grid.TopRow(), 2);
}

TEST_F(FlexGridScrollTest, TheScrollPositionStaysWhenRowsGrowShrinkBelowAndChangeInPlace)
{
    Fill(500);
    Show();
    Grid.verticalScrollBar()->setValue(1234);
    Grid.SetRows(900);
    EXPECT_EQ(ScrollPosition(), 1234);
    Grid.SetRows(400);
    EXPECT_EQ(ScrollPosition(), 1234);
    Grid.SetTextMatrix(70, 2, QStringLiteral("Another subject"));
    Grid.SetCellFontBold(70, 1, 2, true);
    QApplication::processEvents();
    EXPECT_EQ(ScrollPosition(), 1234);
}

TEST_F(FlexGridScrollTest, TheScrollPositionStaysWhenTheRowsAreFilledAnewWithRedrawOff)
{
    Fill(500);
    Show();
    Grid.verticalScrollBar()->setValue(1234);
    Grid.SetRedraw(false);
    Grid.SetRows(1);
    Fill(501);
    Grid.SetRedraw(true);
    QApplication::processEvents();
    EXPECT_EQ(ScrollPosition(), 1234);
}

TEST_F(FlexGridScrollTest, WhatIsScrolledStandsOnTheScreenAsItIsPaintedAnew)
{
    Fill(300);
    Grid.setWordWrap(true);
    Grid.SetDefaultRowHeight(510);
    Grid.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    for (int row = 1; row <= 300; ++row)
        Grid.SetTextMatrix(row, 2, QStringLiteral("Subject %1\rFri 20 Nov 08:00").arg(row));
    Show();
    for (const int step : {7, 33, 20, 301, -54, 99}) {
        QScrollBar* bar = Grid.verticalScrollBar();
        bar->setValue(bar->value() + step);
        QApplication::processEvents();
        const QPixmap screen = Grid.screen()->grabWindow(Grid.winId(), 0, 0, Grid.width(), Grid.height());
        const QRect rows = Grid.viewport()->geometry();
        ASSERT_FALSE(screen.isNull());
        EXPECT_EQ(screen.toImage().convertToFormat(QImage::Format_RGB32).copy(rows),
                  Grid.grab().toImage().convertToFormat(QImage::Format_RGB32).copy(rows))
            << "after " << step;
    }
}
