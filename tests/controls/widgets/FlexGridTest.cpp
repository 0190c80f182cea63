// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/SystemColour.h"
#include "widgets/FlexGridFixture.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QSignalSpy>

class FlexGridTest : public FlexGridFixture
{
};

TEST_F(FlexGridTest, ANewGridHasItsHeaderRowAndNoColumns)
{
    const FlexGrid grid;
    EXPECT_EQ(grid.Rows(), 1);
    EXPECT_EQ(grid.Cols(), 0);
    EXPECT_EQ(grid.Row(), 0);
    EXPECT_EQ(grid.TopRow(), 1);
    EXPECT_TRUE(grid.Redraw());
}

TEST_F(FlexGridTest, TheHeaderRowCannotBeTakenAway)
{
    Fill(2);
    Grid.SetRows(0);
    EXPECT_EQ(Grid.Rows(), 1);
    EXPECT_EQ(Grid.TextMatrix(0, 2), QStringLiteral("Subject"));
}

TEST_F(FlexGridTest, TheHeaderRowShowsAboveTheColumns)
{
    EXPECT_EQ(Grid.model()->headerData(2, Qt::Horizontal), QStringLiteral("Subject"));
    QSignalSpy changed(Grid.model(), &QAbstractItemModel::headerDataChanged);
    Grid.SetTextMatrix(0, 2, QStringLiteral("Text"));
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(Grid.model()->headerData(2, Qt::Horizontal), QStringLiteral("Text"));
}

TEST_F(FlexGridTest, CellsOutsideTheTableReadAsEmptyAndIgnoreBeingSet)
{
    Fill(2);
    for (const QPoint& cell : {QPoint(3, 0), QPoint(-1, 0), QPoint(1, 4), QPoint(1, -1)}) {
        Grid.SetTextMatrix(cell.x(), cell.y(), QStringLiteral("lost"));
        EXPECT_EQ(Grid.TextMatrix(cell.x(), cell.y()), QString());
        EXPECT_FALSE(Grid.CellFontBold(cell.x(), cell.y()));
        EXPECT_EQ(Grid.CellBackColour(cell.x(), cell.y()), SystemColour::WindowBackground);
        Grid.SetRow(cell.x());
        Grid.SetCol(cell.y());
    }
    EXPECT_EQ(Grid.RowHeight(3), 0);
    EXPECT_EQ(Grid.ColWidth(4), 0);
    Grid.SetRowHeight(7, 100);
    Grid.SetColWidth(7, 100);
    Grid.SetColAlignment(7, Qt::AlignRight);
}

TEST_F(FlexGridTest, NewRowsAreEmptyAndDroppedOnesComeBackEmpty)
{
    Fill(3);
    Grid.SetCellFontBold(3, 0, 3, true);
    Grid.SetRowHeight(3, 900);
    Grid.SetRowAccessibleText(3, QStringLiteral("unread"));
    Grid.SetRows(3);
    EXPECT_EQ(Grid.TextMatrix(2, 2), QStringLiteral("Subject 2"));
    Grid.SetRows(5);
    EXPECT_EQ(Grid.TextMatrix(3, 2), QString());
    EXPECT_FALSE(Grid.CellFontBold(3, 1));
    EXPECT_EQ(Grid.RowHeight(3), 300);
    EXPECT_EQ(Grid.RowAccessibleText(3), QString());
    EXPECT_EQ(Grid.verticalHeader()->sectionSize(2), 20);
}

TEST_F(FlexGridTest, ColumnsKeepWhatTheyHoldWhenOthersComeAndGo)
{
    Fill(2);
    Grid.SetCellFontBold(2, 2, 2, true);
    Grid.SetCols(6);
    EXPECT_EQ(Grid.TextMatrix(2, 2), QStringLiteral("Subject 2"));
    EXPECT_TRUE(Grid.CellFontBold(2, 2));
    EXPECT_FALSE(Grid.CellFontBold(2, 5));
    EXPECT_EQ(Grid.ColWidth(1), 300);
    Grid.SetCols(3);
    EXPECT_EQ(Grid.TextMatrix(1, 2), QStringLiteral("Subject 1"));
    EXPECT_EQ(Grid.TextMatrix(1, 3), QString());
    EXPECT_EQ(Grid.TextMatrix(0, 2), QStringLiteral("Subject"));
}

TEST_F(FlexGridTest, FormattingCoversARangeOfColumnsOfOneRow)
{
    Fill(3);
    Grid.SetCellBackColour(2, 1, 2, 255);
    Grid.SetCellForeColour(2, 2, 2, 0xFF0000);
    Grid.SetCellFontBold(2, 1, 2, true);
    EXPECT_EQ(Grid.CellBackColour(2, 0), SystemColour::WindowBackground);
    EXPECT_EQ(Grid.CellBackColour(2, 1), 255);
    EXPECT_EQ(Grid.CellBackColour(2, 2), 255);
    EXPECT_EQ(Grid.CellBackColour(2, 3), SystemColour::WindowBackground);
    EXPECT_EQ(Grid.CellBackColour(1, 1), SystemColour::WindowBackground);
    EXPECT_EQ(Grid.CellForeColour(2, 1), SystemColour::WindowText);
    EXPECT_EQ(Grid.CellForeColour(2, 2), 0xFF0000);
    EXPECT_TRUE(Grid.CellFontBold(2, 1));
    EXPECT_FALSE(Grid.CellFontBold(2, 3));
    Grid.SetCellFontBold(2, 2, 2, false);
    EXPECT_TRUE(Grid.CellFontBold(2, 1));
    EXPECT_FALSE(Grid.CellFontBold(2, 2));
    EXPECT_EQ(Grid.CellBackColour(2, 2), 255);
}

TEST_F(FlexGridTest, ARangeOfColumnsThatIsTooWideEndsAtTheTable)
{
    Fill(1);
    Grid.SetCellFontBold(1, -2, 9, true);
    EXPECT_TRUE(Grid.CellFontBold(1, 0));
    EXPECT_TRUE(Grid.CellFontBold(1, 3));
}

TEST_F(FlexGridTest, APictureComesAndGoesWithoutTouchingTheColours)
{
    Fill(2);
    QPixmap red(16, 16);
    red.fill(Qt::red);
    const QIcon picture(red);
    Grid.SetCellBackColour(1, 1, 1, 255);
    Grid.SetCellPicture(1, 1, picture);
    EXPECT_TRUE(Grid.HasCellPicture(1, 1));
    EXPECT_FALSE(Grid.HasCellPicture(2, 1));
    Grid.SetCellPicture(1, 1, QIcon());
    EXPECT_FALSE(Grid.HasCellPicture(1, 1));
    EXPECT_EQ(Grid.CellBackColour(1, 1), 255);
}

// ---- The current row

TEST_F(FlexGridTest, SettingTheRowSelectsItWholeAndOnlyIt)
{
    Fill(5);
    Grid.SetRow(2);
    Grid.SetRow(4);
    EXPECT_EQ(Grid.Row(), 4);
    EXPECT_EQ(SelectedRows(), QList<int>{4});
    Grid.SetRow(0);
    EXPECT_EQ(SelectedRows(), QList<int>());
}

TEST_F(FlexGridTest, EnterCellComesAtOnceForAnotherCellAndNotForTheSame)
{
    Fill(3);
    Grid.SetRow(2);
    EXPECT_EQ(Entered, (QList<QPoint>{{2, 0}}));
    Grid.SetRow(2);
    Grid.SetCol(0);
    EXPECT_EQ(Entered.size(), 1);
    Grid.SetCol(2);
    Grid.SetRow(0);
    EXPECT_EQ(Entered, (QList<QPoint>{{2, 0}, {2, 2}, {0, 2}}));
}

TEST_F(FlexGridTest, EnterCellComesAtOnceWhileRedrawIsOff)
{
    Fill(3);
    Grid.SetRedraw(false);
    Grid.SetRow(3);
    EXPECT_EQ(Entered, (QList<QPoint>{{3, 0}}));
    EXPECT_EQ(SelectedRows(), QList<int>());
    Grid.SetRedraw(true);
    EXPECT_EQ(Entered.size(), 1);
    EXPECT_EQ(SelectedRows(), QList<int>{3});
}

TEST_F(FlexGridTest, AHandlerOfEnterCellMaySetTheRowAgain)
{
    Fill(5);
    Show();
    QObject::connect(&Grid, &FlexGrid::EnterCell, &Grid, [this] { Grid.SetRow(5); });
    Click(2, 2);
    EXPECT_EQ(Grid.Row(), 5);
    EXPECT_EQ(SelectedRows(), QList<int>{5});
}

TEST_F(FlexGridTest, ACurrentRowThatIsDroppedGivesWayToTheLastOne)
{
    Fill(5);
    Grid.SetRow(4);
    Grid.SetRows(3);
    EXPECT_EQ(Grid.Row(), 2);
    EXPECT_EQ(SelectedRows(), QList<int>{2});
    Grid.SetRows(1);
    EXPECT_EQ(Grid.Row(), 0);
    EXPECT_EQ(Entered, (QList<QPoint>{{4, 0}, {2, 0}, {0, 0}}));
}

TEST_F(FlexGridTest, TheCurrentRowStaysWhenRowsAreAddedOrDroppedBelowIt)
{
    Fill(5);
    Grid.SetRow(2);
    Grid.SetRows(100);
    Grid.SetRows(4);
    EXPECT_EQ(Grid.Row(), 2);
    EXPECT_EQ(SelectedRows(), QList<int>{2});
    EXPECT_EQ(Entered.size(), 1);
}

TEST_F(FlexGridTest, ASelectionMadeByAnAssistiveToolBecomesTheCurrentRow)
{
    Fill(5);
    Show();
    Grid.selectionModel()->select(Grid.model()->index(2, 2),
                                  QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    EXPECT_EQ(Grid.Row(), 3);
    EXPECT_EQ(SelectedRows(), QList<int>{3});
    EXPECT_EQ(Entered, (QList<QPoint>{{3, 0}}));
    Grid.setCurrentIndex(Grid.model()->index(3, 2));
    EXPECT_EQ(Grid.Row(), 4);
    EXPECT_EQ(Grid.Col(), 2);
    EXPECT_EQ(SelectedRows(), QList<int>{4});
}

// ---- Redraw

TEST_F(FlexGridTest, NothingReachesTheViewWhileRedrawIsOffAndAllWhenItGoesOn)
{
    Fill(10);
    QSignalSpy inserted(Grid.model(), &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(Grid.model(), &QAbstractItemModel::rowsRemoved);
    QSignalSpy changed(Grid.model(), &QAbstractItemModel::dataChanged);
    QSignalSpy heading(Grid.model(), &QAbstractItemModel::headerDataChanged);
    Grid.SetRedraw(false);
    Grid.SetRows(1);
    Grid.SetRows(500);
    Grid.SetTextMatrix(5, 2, QStringLiteral("new"));
    Grid.SetTextMatrix(0, 2, QStringLiteral("Text"));
    Grid.SetRowHeight(5, 600);
    EXPECT_EQ(Grid.Rows(), 500);
    EXPECT_EQ(Grid.TextMatrix(5, 2), QStringLiteral("new"));
    EXPECT_EQ(Grid.RowHeight(5), 600);
    EXPECT_EQ(Grid.model()->rowCount(), 10);
    EXPECT_EQ(inserted.count() + removed.count() + changed.count() + heading.count(), 0);
    Grid.SetRedraw(true);
    EXPECT_EQ(Grid.model()->rowCount(), 499);
    EXPECT_EQ(inserted.count(), 1);
    EXPECT_EQ(removed.count(), 0);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(heading.count(), 1);
    EXPECT_EQ(changed.first().first().toModelIndex().row(), 0);
    EXPECT_EQ(changed.first().at(1).toModelIndex().row(), 9);
    EXPECT_EQ(Grid.verticalHeader()->sectionSize(4), 40);
    EXPECT_EQ(Grid.verticalHeader()->count(), 499);
}

TEST_F(FlexGridTest, FewerRowsAreOneRemovalWhenRedrawGoesOn)
{
    Fill(10);
    Grid.SetRow(9);
    QSignalSpy removed(Grid.model(), &QAbstractItemModel::rowsRemoved);
    Grid.SetRedraw(false);
    Grid.SetRows(1);
    Grid.SetRows(4);
    EXPECT_EQ(Grid.Row(), 0);
    EXPECT_FALSE(Grid.model()->data(Grid.model()->index(8, 2)).isValid());
    Grid.SetRedraw(true);
    EXPECT_EQ(removed.count(), 1);
    EXPECT_EQ(Grid.model()->rowCount(), 3);
    EXPECT_EQ(SelectedRows(), QList<int>());
}

TEST_F(FlexGridTest, TheTopRowWaitsForRedraw)
{
    Fill(10);
    Show();
    Grid.SetRedraw(false);
    Fill(500);
    Grid.SetTopRow(200);
    EXPECT_EQ(Grid.TopRow(), 200);
    EXPECT_EQ(ScrollPosition(), 0);
    Grid.SetRedraw(true);
    EXPECT_EQ(Grid.TopRow(), 200);
    EXPECT_EQ(ScrollPosition(), 199 * 20);
}

TEST_F(FlexGridTest, WhatIsOnTheScreenStaysWhileRedrawIsOff)
{
    Fill(3);
    Show();
    Grid.SetRedraw(false);
    EXPECT_FALSE(Grid.viewport()->updatesEnabled());
    Grid.SetRedraw(false);
    Grid.SetRedraw(true);
    EXPECT_TRUE(Grid.viewport()->updatesEnabled());
}

TEST_F(FlexGridTest, TheModelKeepsItsPromisesThroughEveryOperation)
{
    const QAbstractItemModelTester tester(Grid.model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    Fill(20);
    Grid.SetRow(15);
    Grid.SetCols(7);
    Grid.SetCols(3);
    Grid.SetRows(10);
    Grid.SetRows(30);
    Grid.SetCellBackColour(4, 1, 2, 255);
    Grid.SetColAlignment(2, Qt::AlignRight);
    for (const int rows : {1, 8, 31, 12, 1, 40}) {
        Grid.SetRedraw(false);
        Grid.SetRows(1);
        Grid.SetRows(rows);
        Grid.SetTextMatrix(rows - 1, 2, QStringLiteral("last"));
        Grid.SetRowAccessibleText(rows - 1, QStringLiteral("urgent"));
        Grid.SetCols(rows % 5 + 1);
        Grid.SetColAlignment(0, Qt::AlignHCenter);
        Grid.SetRow(rows / 2);
        Grid.SetRedraw(true);
        EXPECT_EQ(Grid.model()->rowCount(), rows - 1);
        EXPECT_EQ(Grid.Row(), rows / 2);
    }
    Grid.SetRows(1);
    Grid.SetCols(0);
    EXPECT_EQ(Grid.model()->columnCount(), 0);
}

// ---- Screen readers

TEST_F(FlexGridTest, AScreenReaderHearsTheRowsStateBeforeTheCellsText)
{
    Fill(2);
    Grid.SetRowAccessibleText(1, QStringLiteral("unread, urgent, personal"));
    Grid.SetTextMatrix(1, 2, QStringLiteral("Prize draw\rFri 13 Mar 18:00"));
    const QAbstractItemModel& model = *Grid.model();
    EXPECT_EQ(model.index(0, 2).data(Qt::AccessibleTextRole),
              QStringLiteral("unread, urgent, personal, Prize draw, Fri 13 Mar 18:00"));
    EXPECT_EQ(model.index(0, 1).data(Qt::AccessibleTextRole), QStringLiteral("unread, urgent, personal"));
    EXPECT_EQ(model.index(1, 2).data(Qt::AccessibleTextRole), QStringLiteral("Subject 2"));
    Grid.SetRowAccessibleText(1, QString());
    EXPECT_EQ(model.index(0, 1).data(Qt::AccessibleTextRole), QString());
}

TEST_F(FlexGridTest, TheAccessibleTableHasTheGridsNameHeadingsAndCells)
{
    Fill(3);
    Grid.setAccessibleName(QStringLiteral("Messages"));
    Grid.SetRowAccessibleText(2, QStringLiteral("unread"));
    Show();
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&Grid);
    ASSERT_NE(interface, nullptr);
    EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Messages"));
    QAccessibleTableInterface* table = interface->tableInterface();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->rowCount(), 3);
    EXPECT_EQ(table->columnDescription(2), QStringLiteral("Subject"));
    EXPECT_EQ(table->cellAt(1, 2)->text(QAccessible::Name), QStringLiteral("unread, Subject 2"));
    Grid.SetRow(2);
    EXPECT_EQ(table->selectedRows(), QList<int>{1});
    ASSERT_NE(interface->focusChild(), nullptr);
    EXPECT_EQ(interface->focusChild()->text(QAccessible::Name), QStringLiteral("unread, Subject 2"))
        << "the hidden key column is not what the focus speaks";
}
