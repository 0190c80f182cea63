// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/Twips.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

/// A grid as a list of messages uses it: a hidden key, a picture, subject and sender, rows of 300 twips (20 pixels).
class FlexGridFixture : public testing::Test
{
protected:
    FlexGridFixture()
    {
        Grid.SetCols(4);
        const QStringList headings{QStringLiteral("Reference"), QString(), QStringLiteral("Subject"),
                                   QStringLiteral("From")};
        for (int col = 0; col < headings.size(); ++col)
            Grid.SetTextMatrix(0, col, headings.at(col));
        Grid.SetColWidth(0, 0);
        Grid.SetColWidth(1, 300);
        Grid.SetColWidth(2, 2400);
        Grid.SetColWidth(3, 1500);
        Grid.SetDefaultRowHeight(300);
        Grid.resize(400, 250);
        QObject::connect(&Grid, &FlexGrid::EnterCell, &Grid, [this] { Entered.append({Grid.Row(), Grid.Col()}); });
    }

    /// count rows below the header, each with its number and a subject.
    void Fill(int count)
    {
        Grid.SetRows(count + 1);
        for (int row = 1; row <= count; ++row) {
            Grid.SetTextMatrix(row, 0, QString::number(1000 + row));
            Grid.SetTextMatrix(row, 2, QStringLiteral("Subject %1").arg(row));
        }
    }

    void Show()
    {
        Grid.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&Grid));
    }

    void TearDown() override { Grid.close(); }

    QPoint Centre(int row, int col) const { return Grid.visualRect(Grid.model()->index(row - 1, col)).center(); }
    void Click(int row, int col, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(Grid.viewport(), button, {}, Centre(row, col));
    }
    void Key(Qt::Key key) { QTest::keyClick(&Grid, key); }
    int ScrollPosition() const { return Grid.verticalScrollBar()->value(); }

    QList<int> SelectedRows() const
    {
        QList<int> rows;
        for (const QModelIndex& index : Grid.selectionModel()->selectedRows(3))
            rows.append(index.row() + 1);
        return rows;
    }

    FlexGrid Grid;
    QList<QPoint> Entered; ///< Row and column at each EnterCell.
};
