// SPDX-License-Identifier: Apache-2.0

// Labels as they come out on paper.

#include "common/dialogs/LabelSheet.h"

#include "common/LabelLayout.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{
constexpr double Dots = 8;        // a millimetre
constexpr double Tolerance = 0.3; // millimetres: an outline and a dot

cPageSetup Sheet(int columns, int rows, int width, int height, int left, int top)
{
    cPageSetup pageSetup;
    pageSetup.SetNumberColumns(columns);
    pageSetup.SetNumberRows(rows);
    pageSetup.SetColumnWidth(width);
    pageSetup.SetRowHeight(height);
    pageSetup.SetLeftMargin(left);
    pageSetup.SetTopMargin(top);
    return pageSetup;
}

QImage Paint(const LabelSheet& labels, const QSizeF& paper, int sheet = 0)
{
    QImage image((paper * Dots).toSize(), QImage::Format_Grayscale8);
    image.fill(Qt::white);
    QPainter painter(&image);
    labels.PaintSheet(painter, sheet, Dots);
    return image;
}

/// What is printed within a part of the sheet, in millimetres; empty for nothing.
QRectF Ink(const QImage& image, const QRectF& part)
{
    const QRect dots = QRectF(part.topLeft() * Dots, part.size() * Dots).toRect().intersected(image.rect());
    QRect ink;
    for (int y = dots.top(); y <= dots.bottom(); ++y) {
        for (int x = dots.left(); x <= dots.right(); ++x) {
            if (qGray(image.pixel(x, y)) < 160)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return QRectF(QPointF(ink.topLeft()) / Dots, QSizeF(ink.size()) / Dots);
}

QRectF AllInk(const QImage& image)
{
    return Ink(image, QRectF(0, 0, image.width() / Dots, image.height() / Dots));
}

void ExpectNear(const QRectF& expected, const QRectF& actual)
{
    EXPECT_NEAR(expected.left(), actual.left(), Tolerance);
    EXPECT_NEAR(expected.top(), actual.top(), Tolerance);
    EXPECT_NEAR(expected.right(), actual.right(), Tolerance);
    EXPECT_NEAR(expected.bottom(), actual.bottom(), Tolerance);
}

struct Geometry
{
    cPageSetup PageSetup;
    QSizeF Paper;
};

QList<Geometry> Geometries()
{
    return {{Sheet(2, 4, 95, 68, 10, 12), LabelLayout::A4},
            {Sheet(3, 8, 62, 33, 12, 16), LabelLayout::A4},
            {Sheet(4, 12, 46, 22, 13, 16), LabelLayout::A4},
            {Sheet(3, 10, 64, 25, 12, 14), LabelLayout::Letter}};
}

/// The outer edge of the outline of a label that is looked at from its middle.
QRectF Outline(const QImage& image, const QRectF& label)
{
    const auto dark = [&](const QPointF& place) { return qGray(image.pixel((place * Dots).toPoint())) < 160; };
    constexpr double Step = 0.125;
    const QPointF quarter(label.left() + label.width() / 4, label.top() + label.height() / 4);
    const auto search = [&](const QPointF& step) {
        QPointF place = quarter;
        while (!dark(place))
            place += step;
        return place;
    };
    return {QPointF(search({-Step, 0}).x(), search({0, -Step}).y()),
            QPointF(search({Step, 0}).x(), search({0, Step}).y())};
}
/// The rectangles that the first drawn page of a PDF strokes, in millimetres from the paper's top left corner.
QList<QRectF> RectanglesOfPdf(const QByteArray& pdf, double paperHeight)
{
    constexpr double MillimetresPerPoint = 25.4 / 72;
    static const QRegularExpression transformed(QStringLiteral("([0-9.]+) 0 0 -([0-9.]+) ([0-9.]+) ([0-9.]+) cm"));
    static const QRegularExpression rectangle(QStringLiteral("([-0-9.]+) ([-0-9.]+) ([-0-9.]+) ([-0-9.]+) re"));
    for (qsizetype at = pdf.indexOf("stream\n"); at >= 0; at = pdf.indexOf("stream\n", at + 1)) {
        const qsizetype start = at + 7;
        // What comes in front tells about how much there is to expand to.
        const QByteArray packed("\0\1\0\0", 4);
        if (!pdf.mid(start).startsWith('\x78'))
            continue;
        const QString page =
            QString::fromLatin1(qUncompress(packed + pdf.mid(start, pdf.indexOf("endstream", start) - start)));
        const auto scale = transformed.match(page);
        if (!scale.hasMatch())
            continue;
        const double factor = scale.captured(1).toDouble() * MillimetresPerPoint;
        const double top = paperHeight - scale.captured(4).toDouble() * MillimetresPerPoint;
        QList<QRectF> rectangles;
        for (auto found = rectangle.globalMatch(page); found.hasNext();) {
            const auto match = found.next();
            rectangles.append(QRectF(match.captured(1).toDouble() * factor, top + match.captured(2).toDouble() * factor,
                                     match.captured(3).toDouble() * factor, match.captured(4).toDouble() * factor));
        }
        return rectangles;
    }
    return {};
}
} // namespace

TEST(LabelSheetTest, TheTestPrintOutlinesEachLabelWhereItLiesOnTheSheet)
{
    for (const Geometry& each : Geometries()) {
        const LabelSheet test = LabelSheet::TestPrint(each.PageSetup, each.Paper);
        EXPECT_EQ(test.SheetCount(), 1);
        const QImage image = Paint(test, each.Paper);
        const int labels = LabelLayout::LabelsPerSheet(each.PageSetup);
        for (int i = 0; i < labels; ++i) {
            SCOPED_TRACE(i);
            const QRectF label = LabelLayout::PlaceOf(each.PageSetup, i, 1).Label;
            ExpectNear(label, Outline(image, label));
        }
        ExpectNear(LabelLayout::PlaceOf(each.PageSetup, 0, 1)
                       .Label.united(LabelLayout::PlaceOf(each.PageSetup, labels - 1, 1).Label),
                   AllInk(image));
    }
}

TEST(LabelSheetTest, TheTestPrintNumbersEachLabel)
{
    const Geometry sheet = Geometries().first();
    const QImage image = Paint(LabelSheet::TestPrint(sheet.PageSetup, sheet.Paper), sheet.Paper);
    QList<QImage> numbers;
    for (int i = 0; i < 8; ++i) {
        const QRectF label = LabelLayout::PlaceOf(sheet.PageSetup, i, 1).Label.adjusted(2, 2, -2, -2);
        const QRectF number = Ink(image, label);
        EXPECT_NEAR(number.center().x(), label.center().x(), 2);
        EXPECT_NEAR(number.center().y(), label.center().y(), 2);
        const QImage shape = image.copy(QRectF(number.topLeft() * Dots, number.size() * Dots).toRect());
        EXPECT_FALSE(numbers.contains(shape)) << i;
        numbers.append(shape);
    }
}

TEST(LabelSheetTest, EachTextStaysWithinItsLabelOnEverySheet)
{
    const QString text = QStringLiteral("Megan Trelawney-Pascoe\n14 Harbour Street\nPorthleven\nTR13 9JB\nCornwall");
    for (const Geometry& each : Geometries()) {
        const int labels = LabelLayout::LabelsPerSheet(each.PageSetup);
        const LabelSheet sheet(each.PageSetup, each.Paper, QStringList(labels + 1, text));
        ASSERT_EQ(sheet.SheetCount(), 2);
        const QImage image = Paint(sheet, each.Paper);
        QImage rest = image;
        QPainter eraser(&rest);
        const QRectF firstInk = Ink(image, LabelLayout::PlaceOf(each.PageSetup, 0, 1).Label);
        for (int i = 0; i < labels; ++i) {
            SCOPED_TRACE(i);
            const QRectF label = LabelLayout::PlaceOf(each.PageSetup, i, 1).Label;
            const QRectF area = LabelLayout::TextArea(each.PageSetup, each.Paper, label);
            const QRectF ink = Ink(image, label);
            EXPECT_FALSE(ink.isEmpty());
            EXPECT_NEAR(ink.left(), area.left(), 1);
            EXPECT_LE(ink.right(), area.right() + Tolerance);
            EXPECT_GE(ink.top(), area.top() - Tolerance);
            EXPECT_LE(ink.bottom(), area.bottom() + Tolerance);
            // The same text lies the same way in each label: what drifts shows in the last rows.
            const QRectF first = LabelLayout::PlaceOf(each.PageSetup, 0, 1).Label;
            EXPECT_NEAR(ink.left() - label.left(), firstInk.left() - first.left(), Tolerance);
            if (area.bottom() + 3.01 > label.bottom()) {
                EXPECT_NEAR(ink.top() - label.top(), firstInk.top() - first.top(), Tolerance);
            }
            eraser.fillRect(QRectF(area.topLeft() * Dots, area.size() * Dots).adjusted(-3, -3, 3, 3), Qt::white);
        }
        eraser.end();
        EXPECT_TRUE(AllInk(rest).isEmpty());
        const QRectF second = AllInk(Paint(sheet, each.Paper, 1));
        ExpectNear(firstInk, second);
    }
}

TEST(LabelSheetTest, ALongTextShrinksAndThenIsCutButNeverRunsIntoTheNext)
{
    const cPageSetup pageSetup = Sheet(3, 8, 62, 33, 12, 16);
    const QString line = QStringLiteral("A line of an address\n");
    const QString texts[] = {
        line.repeated(7),
        line.repeated(9),
        line.repeated(100),
        QStringLiteral("Llanfairpwllgwyngyllgogerychwyrndrobwllllantysiliogogogoch ").repeated(3),
        QString(5000, u'W'),
        QStringLiteral("word ").repeated(2000),
        QStringLiteral("\U0001F3B5").repeated(2000),
        QStringLiteral("\u05E9\u05DC\u05D5\u05DD ").repeated(300),
    };
    const QRectF middle = LabelLayout::PlaceOf(pageSetup, 4, 1).Label;
    for (const QString& text : texts) {
        SCOPED_TRACE(qPrintable(text.left(30)));
        const QImage image = Paint(LabelSheet(pageSetup, LabelLayout::A4, {text}, 5), LabelLayout::A4);
        const QRectF ink = AllInk(image);
        EXPECT_FALSE(ink.isEmpty());
        EXPECT_TRUE(middle.adjusted(1, 1, -1, -1).contains(ink))
            << ink.left() << ' ' << ink.top() << ' ' << ink.right() << ' ' << ink.bottom();
    }
    // Seven lines do not fit at full size, and all of them are there at a smaller one.
    const auto rowsOfInk = [](const QImage& image) {
        int rows = 0;
        bool wasInk = false;
        for (int y = 0; y < image.height(); ++y) {
            bool isInk = false;
            for (int x = 0; x < image.width() && !isInk; ++x)
                isInk = qGray(image.pixel(x, y)) < 160;
            rows += isInk && !wasInk ? 1 : 0;
            wasInk = isInk;
        }
        return rows;
    };
    const QString plain = QStringLiteral("xxxx\n");
    for (const int lines : {1, 4, 7, 9}) {
        const QImage image = Paint(LabelSheet(pageSetup, LabelLayout::A4, {plain.repeated(lines)}), LabelLayout::A4);
        EXPECT_EQ(rowsOfInk(image), lines);
    }
    const double full = AllInk(Paint(LabelSheet(pageSetup, LabelLayout::A4, {plain}), LabelLayout::A4)).width();
    const double small =
        AllInk(Paint(LabelSheet(pageSetup, LabelLayout::A4, {plain.repeated(9)}), LabelLayout::A4)).width();
    EXPECT_LT(small, full);
    EXPECT_GE(small, full * 6 / 11 - Tolerance);
}

TEST(LabelSheetTest, ASheetThatWasBegunIsUsedUp)
{
    const cPageSetup pageSetup = Sheet(2, 4, 95, 68, 10, 12);
    const LabelSheet sheet(pageSetup, LabelLayout::A4, QStringList(4, QStringLiteral("Ann")), 7);
    ASSERT_EQ(sheet.SheetCount(), 2);
    for (const int page : {0, 1}) {
        const QImage image = Paint(sheet, LabelLayout::A4, page);
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(Ink(image, LabelLayout::PlaceOf(pageSetup, i, 1).Label).isEmpty(), page == 0 ? i < 6 : i > 1)
                << page << ' ' << i;
    }
    EXPECT_TRUE(AllInk(Paint(sheet, LabelLayout::A4, 2)).isEmpty());
    EXPECT_TRUE(AllInk(Paint(sheet, LabelLayout::A4, -1)).isEmpty());
}

TEST(LabelSheetTest, AnEmptyTextLeavesItsLabelFree)
{
    const cPageSetup pageSetup = Sheet(2, 4, 95, 68, 10, 12);
    const QImage image =
        Paint(LabelSheet(pageSetup, LabelLayout::A4,
                         {QStringLiteral("Ann"), QString(), QStringLiteral("\r\n\n"), QStringLiteral("Bob")}),
              LabelLayout::A4);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(Ink(image, LabelLayout::PlaceOf(pageSetup, i, 1).Label).isEmpty(), i == 1 || i == 2) << i;
}

TEST(LabelSheetTest, APdfHasThePaperAndASheetForEachPage)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("labels.pdf"));
    for (const Geometry& each : Geometries()) {
        const int labels = 2 * LabelLayout::LabelsPerSheet(each.PageSetup) + 1;
        QString problem = QStringLiteral("before");
        EXPECT_TRUE(
            LabelSheet(each.PageSetup, each.Paper, QStringList(labels, QStringLiteral("Ann"))).WritePdf(name, problem));
        EXPECT_EQ(problem, QString());
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString pdf = QString::fromLatin1(file.readAll());
        EXPECT_TRUE(pdf.startsWith(QStringLiteral("%PDF-")));
        EXPECT_EQ(pdf.count(QRegularExpression(QStringLiteral("/Type /Page\\s"))), 3);
        const auto box =
            QRegularExpression(QStringLiteral("/MediaBox \\[([0-9.]+) ([0-9.]+) ([0-9.]+) ([0-9.]+)\\]")).match(pdf);
        ASSERT_TRUE(box.hasMatch());
        // Points.
        EXPECT_NEAR(box.captured(3).toDouble(), each.Paper.width() / 25.4 * 72, 1);
        EXPECT_NEAR(box.captured(4).toDouble(), each.Paper.height() / 25.4 * 72, 1);
    }
}

TEST(LabelSheetTest, TheOutlinesInAPdfLieWhereThePageSetupHasThem)
{
    for (const Geometry& each : Geometries()) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QPdfWriter writer(&buffer);
        // Whatever margins and paper the device came with.
        writer.setPageSize(QPageSize(QPageSize::A5));
        writer.setPageMargins(QMarginsF(20, 30, 20, 30), QPageLayout::Millimeter);
        ASSERT_TRUE(LabelSheet::TestPrint(each.PageSetup, each.Paper).Print(writer));
        const QList<QRectF> outlines = RectanglesOfPdf(buffer.data(), each.Paper.height());
        ASSERT_EQ(outlines.size(), LabelLayout::LabelsPerSheet(each.PageSetup));
        for (int i = 0; i < outlines.size(); ++i)
            ExpectNear(LabelLayout::PlaceOf(each.PageSetup, i, 1).Label, outlines.at(i));
    }
}

TEST(LabelSheetTest, WhatCannotBePrintedOrWrittenIsTold)
{
    const QTemporaryDir folder;
    QString problem;
    const QString name = folder.filePath(QStringLiteral("labels.pdf"));
    EXPECT_FALSE(LabelSheet(Sheet(2, 4, 95, 68, 10, 12), LabelLayout::A4, {}).WritePdf(name, problem));
    EXPECT_EQ(problem, QStringLiteral("There is nothing to print."));
    EXPECT_FALSE(
        LabelSheet(Sheet(0, 4, 95, 68, 10, 12), LabelLayout::A4, {QStringLiteral("Ann")}).WritePdf(name, problem));
    EXPECT_EQ(problem, QStringLiteral("There is nothing to print."));
    EXPECT_FALSE(QFile::exists(name));
    const QString nowhere = folder.filePath(QStringLiteral("missing/labels.pdf"));
    EXPECT_FALSE(
        LabelSheet(Sheet(2, 4, 95, 68, 10, 12), LabelLayout::A4, {QStringLiteral("Ann")}).WritePdf(nowhere, problem));
    EXPECT_TRUE(problem.startsWith(QStringLiteral("The file \"%1\" could not be written: ").arg(nowhere)))
        << qPrintable(problem);
}
