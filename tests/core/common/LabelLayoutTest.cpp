// SPDX-License-Identifier: Apache-2.0

// Where labels lie on sheets.

#include "common/LabelLayout.h"

#include "common/cPageSetup.h"
#include "database/cTolvaDatabase.h"

#include <gtest/gtest.h>

namespace
{
cPageSetup Sheet(int columns, int rows, int width, int height, int left, int top)
{
    cPageSetup pageSetup;
    pageSetup.SetNumberColumns(columns);
    pageSetup.SetNumberRows(rows);
    pageSetup.SetColumnWidth(width);
    pageSetup.SetRowHeight(height);
    pageSetup.SetLeftMargin(left);
    pageSetup.SetTopMargin(top);
    pageSetup.SetRightMargin(0);
    pageSetup.SetBottomMargin(0);
    return pageSetup;
}

constexpr double Nothing = 1e-9; // millimetres
} // namespace

TEST(LabelLayoutTest, TheFirstAndLastLabelLieWhereTheirSheetHasThem)
{
    struct Case
    {
        cPageSetup PageSetup;
        QSizeF Paper;
        QRectF Last;
    };
    const Case cases[] = {
        {Sheet(2, 4, 99, 68, 6, 12), LabelLayout::A4, QRectF(105, 216, 99, 68)},
        {Sheet(3, 8, 64, 34, 9, 12), LabelLayout::A4, QRectF(137, 250, 64, 34)},
        {Sheet(5, 13, 38, 21, 10, 12), LabelLayout::A4, QRectF(162, 264, 38, 21)},
        {Sheet(1, 1, 210, 297, 0, 0), LabelLayout::A4, QRectF(0, 0, 210, 297)},
        {Sheet(3, 10, 66, 25, 5, 13), LabelLayout::Letter, QRectF(137, 238, 66, 25)},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(LabelLayout::Problem(each.PageSetup, each.Paper), QString());
        const int labels = LabelLayout::LabelsPerSheet(each.PageSetup);
        EXPECT_EQ(labels, each.PageSetup.NumberColumns() * each.PageSetup.NumberRows());
        const LabelLayout::LabelPlace first = LabelLayout::PlaceOf(each.PageSetup, 0, 1);
        EXPECT_EQ(first.Sheet, 0);
        EXPECT_NEAR(first.Label.left(), each.PageSetup.LeftMargin(), Nothing);
        EXPECT_NEAR(first.Label.top(), each.PageSetup.TopMargin(), Nothing);
        EXPECT_NEAR(first.Label.width(), each.PageSetup.ColumnWidth(), Nothing);
        EXPECT_NEAR(first.Label.height(), each.PageSetup.RowHeight(), Nothing);
        const LabelLayout::LabelPlace last = LabelLayout::PlaceOf(each.PageSetup, labels - 1, 1);
        EXPECT_EQ(last.Sheet, 0);
        EXPECT_NEAR(last.Label.left(), each.Last.left(), Nothing);
        EXPECT_NEAR(last.Label.top(), each.Last.top(), Nothing);
        EXPECT_NEAR(last.Label.width(), each.Last.width(), Nothing);
        EXPECT_NEAR(last.Label.height(), each.Last.height(), Nothing);
    }
}

TEST(LabelLayoutTest, NothingDriftsFromRowToRowOrFromSheetToSheet)
{
    const cPageSetup pageSetup = Sheet(5, 13, 38, 21, 10, 12);
    for (int i = 0; i < 65 * 40; ++i) {
        const LabelLayout::LabelPlace place = LabelLayout::PlaceOf(pageSetup, i, 1);
        ASSERT_EQ(place.Sheet, i / 65);
        ASSERT_NEAR(place.Label.left(), 10 + 38 * (i % 5), Nothing) << i;
        ASSERT_NEAR(place.Label.top(), 12 + 21 * ((i % 65) / 5), Nothing) << i;
    }
}

TEST(LabelLayoutTest, ASheetThatWasBegunIsUsedUpFromAnyLabelOn)
{
    const cPageSetup pageSetup = Sheet(2, 4, 99, 68, 6, 12);
    for (int startAt = 1; startAt <= 8; ++startAt) {
        const LabelLayout::LabelPlace first = LabelLayout::PlaceOf(pageSetup, 0, startAt);
        EXPECT_EQ(first.Sheet, 0);
        EXPECT_EQ(first.Label, LabelLayout::PlaceOf(pageSetup, startAt - 1, 1).Label);
        // The label behind the last one of the sheet is the first one of the next.
        const LabelLayout::LabelPlace next = LabelLayout::PlaceOf(pageSetup, 9 - startAt, startAt);
        EXPECT_EQ(next.Sheet, 1);
        EXPECT_EQ(next.Label, LabelLayout::PlaceOf(pageSetup, 0, 1).Label);
        EXPECT_EQ(LabelLayout::FirstLabelOf(pageSetup, 0, startAt), 0);
        EXPECT_EQ(LabelLayout::FirstLabelOf(pageSetup, 1, startAt), 9 - startAt);
    }
    EXPECT_EQ(LabelLayout::PlaceOf(pageSetup, 0, 0).Label, LabelLayout::PlaceOf(pageSetup, 0, 1).Label);
    EXPECT_EQ(LabelLayout::PlaceOf(pageSetup, 0, 99).Label, LabelLayout::PlaceOf(pageSetup, 0, 8).Label);
}

TEST(LabelLayoutTest, SheetsAreCountedWithTheLabelsThatAreLeftOut)
{
    const cPageSetup pageSetup = Sheet(2, 4, 99, 68, 6, 12);
    EXPECT_EQ(LabelLayout::SheetCount(pageSetup, 0, 1), 0);
    EXPECT_EQ(LabelLayout::SheetCount(pageSetup, 0, 5), 0);
    EXPECT_EQ(LabelLayout::SheetCount(pageSetup, 1, 8), 1);
    EXPECT_EQ(LabelLayout::SheetCount(pageSetup, 8, 1), 1);
    EXPECT_EQ(LabelLayout::SheetCount(pageSetup, 8, 2), 2);
    EXPECT_EQ(LabelLayout::SheetCount(pageSetup, 9, 1), 2);
    EXPECT_EQ(LabelLayout::SheetCount(pageSetup, 17, 8), 3);
}

TEST(LabelLayoutTest, ASheetWithoutLabelsPrintsNothingAndSaysWhy)
{
    const std::pair<cPageSetup, QString> cases[] = {
        {Sheet(0, 4, 99, 68, 0, 0),
         QStringLiteral("There are no labels on the sheet: the number of rows or columns is 0.")},
        {Sheet(2, 0, 99, 68, 0, 0),
         QStringLiteral("There are no labels on the sheet: the number of rows or columns is 0.")},
        {Sheet(2, 4, 0, 68, 0, 0), QStringLiteral("The labels have no size: their width or height is 0.")},
        {Sheet(2, 4, 99, 0, 0, 0), QStringLiteral("The labels have no size: their width or height is 0.")},
    };
    for (const auto& [pageSetup, problem] : cases) {
        EXPECT_EQ(LabelLayout::LabelsPerSheet(pageSetup), 0);
        EXPECT_EQ(LabelLayout::SheetCount(pageSetup, 5, 1), 0);
        EXPECT_EQ(LabelLayout::Problem(pageSetup, LabelLayout::A4), problem);
    }
}

TEST(LabelLayoutTest, LabelsThatLeaveThePaperAreTold)
{
    const std::pair<cPageSetup, QString> cases[] = {
        {Sheet(2, 4, 105, 68, 1, 0), QStringLiteral("The labels reach 1 mm beyond the right edge of the paper.")},
        {Sheet(2, 4, 105, 75, 0, 0), QStringLiteral("The labels reach 3 mm beyond the bottom edge of the paper.")},
        {Sheet(2, 4, 90, 70, -2, 0), QStringLiteral("The labels reach 2 mm beyond the left edge of the paper.")},
        {Sheet(2, 4, 90, 70, 0, -1), QStringLiteral("The labels reach 1 mm beyond the top edge of the paper.")},
    };
    for (const auto& [pageSetup, problem] : cases)
        EXPECT_EQ(LabelLayout::Problem(pageSetup, LabelLayout::A4), problem);
    EXPECT_EQ(LabelLayout::Problem(Sheet(2, 4, 105, 70, 0, 0), LabelLayout::A4), QString());
    EXPECT_EQ(LabelLayout::Problem(Sheet(2, 4, 105, 70, 0, 0), LabelLayout::Letter),
              QStringLiteral("The labels reach 0.6 mm beyond the bottom edge of the paper."));
}

TEST(LabelLayoutTest, TheMeasuresThatAStationBeginsWithAreWiderThanA4)
{
    cPageSetup pageSetup;
    cTolvaDatabase::SetLabelDefaults(pageSetup);
    EXPECT_EQ(LabelLayout::Problem(pageSetup, LabelLayout::A4),
              QStringLiteral("The labels reach 18 mm beyond the right edge of the paper."));
}

TEST(LabelLayoutTest, ATextStaysOnItsLabelAndOnThePaper)
{
    cPageSetup pageSetup = Sheet(2, 4, 104, 68, 20, 20);
    pageSetup.SetRightMargin(10);
    pageSetup.SetBottomMargin(10);
    const QRectF paper(QPointF(0, 0), LabelLayout::A4);
    for (int i = 0; i < 8; ++i) {
        const QRectF label = LabelLayout::PlaceOf(pageSetup, i, 1).Label;
        const QRectF area = LabelLayout::TextArea(pageSetup, LabelLayout::A4, label);
        EXPECT_FALSE(area.isEmpty());
        EXPECT_TRUE(label.contains(area));
        EXPECT_LE(area.right(), 200 + Nothing);
        EXPECT_LE(area.bottom(), 287 + Nothing);
    }
    EXPECT_TRUE(LabelLayout::TextArea(pageSetup, LabelLayout::A4, QRectF(205, 0, 50, 50)).isEmpty());
    EXPECT_TRUE(LabelLayout::TextArea(pageSetup, LabelLayout::A4, QRectF(0, 0, 5, 5)).isEmpty());
}
