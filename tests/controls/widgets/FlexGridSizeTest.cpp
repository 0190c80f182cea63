// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/FlexGridDelegate.h"
#include "platform/widgets/SystemColour.h"
#include "widgets/FlexGridFixture.h"

#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <limits>
#include <malloc.h>
#include <vector>

namespace
{
constexpr int ManyRows = 100'000;
constexpr int Block = 500;

/// As the messages of a busy station are: reference, picture, subject of 60 characters with a date line, sender of 40
/// characters, two forms of the date.
QStringList TextsOf(int row)
{
    const QString number = QStringLiteral("%1").arg(row, 6, 10, QLatin1Char('0'));
    return {number,
            QString(),
            QStringLiteral("A request for the breakfast show, from a listener, no. ") + number +
                QStringLiteral("\rFri 13 Mar 18:00"),
            QStringLiteral("\"Listener %1\" <listener@example.com>").arg(number),
            QStringLiteral("Fri 13 Mar 18:00"),
            QStringLiteral("13/03/2026 18:00:00")};
}

void FillRow(FlexGrid& grid, int row)
{
    const QStringList texts = TextsOf(row);
    for (int col = 0; col < texts.size(); ++col)
        grid.SetTextMatrix(row, col, texts.at(col));
    grid.SetRowHeight(row, 600);
    grid.SetCellBackColour(row, 1, 2, row % 10 == 0 ? 255 : SystemColour::WindowBackground);
    grid.SetCellFontBold(row, 1, 2, row % 3 == 0);
    grid.SetCellForeColour(row, 2, 2, row % 7 == 0 ? 0xFF0000 : SystemColour::WindowText);
    grid.SetRowAccessibleText(row, row % 3 == 0 ? QStringLiteral("unread") : QString());
}

void FillInBlocks(FlexGrid& grid, int count)
{
    grid.SetRedraw(false);
    grid.SetRows(1);
    for (int row = 1; row <= count; ++row) {
        if (row >= grid.Rows())
            grid.SetRows(grid.Rows() + Block);
        FillRow(grid, row);
    }
    grid.SetRows(count + 1);
    grid.SetRedraw(true);
}

qint64 AllocatedBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
}

/// Remembers the rows whose cells were drawn.
class WatchedDelegate : public FlexGridDelegate
{
public:
    using FlexGridDelegate::FlexGridDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        Rows.insert(index.row() + 1);
        FlexGridDelegate::paint(painter, option, index);
    }
    mutable QSet<int> Rows;
};
} // namespace

class FlexGridSizeTest : public FlexGridFixture
{
protected:
    FlexGridSizeTest() { Grid.SetCols(6); }

    /// Until no more is to be drawn: what is posted may post more.
    static void DrawAll()
    {
        for (int round = 0; round < 3; ++round)
            QApplication::processEvents();
    }
};

TEST_F(FlexGridSizeTest, ARowTakesLessThanAKilobyte)
{
    if (AllocatedBytes() == 0)
        GTEST_SKIP() << "the sanitizer's allocator does not count for the C library";
    Show();
    const qint64 before = AllocatedBytes();
    FillInBlocks(Grid, ManyRows);
    DrawAll();
    const double bytes = static_cast<double>(AllocatedBytes() - before) / ManyRows;
    RecordProperty("bytes_a_row", static_cast<int>(bytes));
    std::printf("%.0f bytes a row\n", bytes);
    EXPECT_LT(bytes, 1024);
    EXPECT_GT(bytes, 200) << "less than the texts themselves take";
}

TEST_F(FlexGridSizeTest, FillingCostsAFewTimesWhatABareVectorDoes)
{
    Show();
    QElapsedTimer timer;
    timer.start();
    std::vector<QString> bare;
    for (int row = 1; row <= ManyRows; ++row) {
        for (const QString& text : TextsOf(row))
            bare.push_back(text);
    }
    const qint64 bareTime = timer.restart();
    FillInBlocks(Grid, ManyRows);
    DrawAll();
    const qint64 gridTime = timer.elapsed();
    std::printf("100,000 rows: grid %lld ms, bare vector %lld ms\n", static_cast<long long>(gridTime),
                static_cast<long long>(bareTime));
    EXPECT_EQ(bare.size(), static_cast<size_t>(6 * ManyRows));
    EXPECT_EQ(Grid.TextMatrix(ManyRows, 0), QStringLiteral("100000"));
    // Wide enough for a loaded machine, far below what anything quadratic takes.
    EXPECT_LT(gridTime, 10 * bareTime + 500);
}

TEST_F(FlexGridSizeTest, AChangeOfOneRowDrawsItAndItsNeighboursAtMost)
{
    FillInBlocks(Grid, ManyRows);
    auto* delegate = new WatchedDelegate(&Grid);
    Grid.setItemDelegate(delegate);
    Show();
    Grid.SetTopRow(50'000);
    DrawAll();
    delegate->Rows.clear();
    Grid.SetCellFontBold(50'002, 1, 2, !Grid.CellFontBold(50'002, 1));
    ASSERT_TRUE(QTest::qWaitFor([delegate] { return !delegate->Rows.isEmpty(); }));
    // The view takes the row that the changed area touches along.
    EXPECT_TRUE((QSet<int>{50'001, 50'002, 50'003}.contains(delegate->Rows)));
    EXPECT_TRUE(delegate->Rows.contains(50'002));
    delegate->Rows.clear();
    Grid.SetTextMatrix(7, 2, QStringLiteral("far out of sight"));
    DrawAll();
    EXPECT_EQ(delegate->Rows, QSet<int>());
}

TEST_F(FlexGridSizeTest, AChangeOfTheSelectionDrawsTheTwoRowsOnly)
{
    FillInBlocks(Grid, ManyRows);
    auto* delegate = new WatchedDelegate(&Grid);
    Grid.setItemDelegate(delegate);
    Show();
    Grid.SetTopRow(50'000);
    Grid.SetRow(50'001);
    DrawAll();
    delegate->Rows.clear();
    Grid.SetRow(50'003);
    ASSERT_TRUE(QTest::qWaitFor([delegate] { return delegate->Rows.size() >= 2; }));
    EXPECT_EQ(delegate->Rows, (QSet<int>{50'001, 50'003}));
}

TEST_F(FlexGridSizeTest, ScrollingAndSelectingTakeAsLongInAHundredThousandRowsAsInAThousand)
{
    Show();
    const auto timeOf = [this](int rows) {
        FillInBlocks(Grid, rows);
        DrawAll();
        // The best of some rounds: the machine may be busy with something else in one of them.
        qint64 best = std::numeric_limits<qint64>::max();
        for (int round = 0; round < 5; ++round) {
            QElapsedTimer timer;
            timer.start();
            for (int step = 0; step < 50; ++step) {
                Grid.SetTopRow(rows / 2 + step);
                Key(Qt::Key_Down);
                QTest::mouseClick(Grid.viewport(), Qt::LeftButton, {}, {100, 50});
                Grid.viewport()->repaint();
            }
            best = std::min(best, timer.elapsed());
        }
        return best;
    };
    const qint64 few = timeOf(1000);
    const qint64 many = timeOf(ManyRows);
    std::printf("50 times scroll, key, click and draw: %lld ms in 1,000 rows, %lld ms in 100,000\n",
                static_cast<long long>(few), static_cast<long long>(many));
    EXPECT_LT(many, 2 * few + 100);
}

TEST_F(FlexGridSizeTest, PicturesAndStylesAreKeptOnceHoweverManyCellsHaveThem)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::blue);
    const QIcon picture(pixmap);
    Grid.SetRows(10'001);
    const qint64 before = AllocatedBytes();
    for (int row = 1; row <= 10'000; ++row) {
        Grid.SetCellPicture(row, 1, picture);
        Grid.SetCellBackColour(row, 1, 2, 255);
        Grid.SetCellFontBold(row, 1, 2, row % 2 == 0);
    }
    EXPECT_LT(AllocatedBytes() - before, 100'000);
    EXPECT_TRUE(Grid.HasCellPicture(10'000, 1));
}
