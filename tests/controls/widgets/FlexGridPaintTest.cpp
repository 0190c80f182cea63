// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/Contrast.h"
#include "platform/widgets/FlexGridDelegate.h"
#include "platform/widgets/SystemColour.h"
#include "widgets/FlexGridFixture.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>

namespace
{
QPalette LightPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Base, QColor(255, 255, 255));
    palette.setColor(QPalette::Text, QColor(20, 20, 20));
    palette.setColor(QPalette::Highlight, QColor(48, 140, 198));
    palette.setColor(QPalette::HighlightedText, QColor(255, 255, 255));
    return palette;
}

QPalette DarkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Base, QColor(30, 30, 32));
    palette.setColor(QPalette::Text, QColor(230, 230, 230));
    palette.setColor(QPalette::Highlight, QColor(42, 98, 150));
    palette.setColor(QPalette::HighlightedText, QColor(255, 255, 255));
    return palette;
}

/// A picture that is one colour all over.
QIcon PlainIcon(const QColor& colour)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(colour);
    return QIcon(pixmap);
}
} // namespace

class FlexGridPaintTest : public FlexGridFixture
{
protected:
    void ShowWith(const QPalette& palette)
    {
        Grid.setPalette(palette);
        Show();
        Grid.activateWindow();
        Grid.setFocus();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&Grid));
    }

    QRect Cell(int row, int col) const { return Grid.visualRect(Grid.model()->index(row - 1, col)); }
    QImage Image(int row, int col) { return Grid.viewport()->grab(Cell(row, col)).toImage(); }
    /// Of the cell's left edge, where no text is.
    QColor Background(int row, int col) { return Image(row, col).pixelColor(1, 2); }

    /// The pixel of the cell that differs most from its background: the heart of a letter.
    QColor Ink(int row, int col)
    {
        const QImage image = Image(row, col);
        const QColor background = image.pixelColor(1, 2);
        QColor best = background;
        for (int y = 1; y < image.height() - 2; ++y) {
            for (int x = 1; x < image.width() - 1; ++x) {
                const QColor colour = image.pixelColor(x, y);
                if (Contrast::Ratio(colour, background) > Contrast::Ratio(best, background))
                    best = colour;
            }
        }
        return best;
    }

    /// The lines of the cell's picture that hold ink.
    QList<int> InkedLines(int row, int col)
    {
        const QImage image = Image(row, col);
        const QColor background = image.pixelColor(1, 2);
        QList<int> lines;
        for (int y = 0; y < image.height() - 1; ++y) {
            for (int x = 1; x < image.width() - 1; ++x) {
                if (Contrast::Ratio(image.pixelColor(x, y), background) > 2) {
                    lines.append(y);
                    break;
                }
            }
        }
        return lines;
    }

    static int Gaps(const QList<int>& lines)
    {
        int gaps = 0;
        for (int i = 1; i < lines.size(); ++i)
            gaps += lines.at(i) - lines.at(i - 1) > 2 ? 1 : 0;
        return gaps;
    }

    int InkedPixels(int row, int col)
    {
        const QImage image = Image(row, col);
        const QColor background = image.pixelColor(1, 2);
        int count = 0;
        for (int y = 0; y < image.height() - 1; ++y) {
            for (int x = 1; x < image.width() - 1; ++x)
                count += Contrast::Ratio(image.pixelColor(x, y), background) > 2 ? 1 : 0;
        }
        return count;
    }
};

TEST_F(FlexGridPaintTest, CellsHaveTheThemesColoursInALightAndADarkPalette)
{
    Fill(3);
    ShowWith(LightPalette());
    EXPECT_EQ(Background(1, 2), QColor(255, 255, 255));
    EXPECT_GT(Contrast::Ratio(Ink(1, 2), QColor(255, 255, 255)), 7);
    Grid.setPalette(DarkPalette());
    EXPECT_EQ(Background(1, 2), QColor(30, 30, 32));
    EXPECT_GT(Contrast::Ratio(Ink(1, 2), QColor(30, 30, 32)), 7);
}

TEST_F(FlexGridPaintTest, AnUrgentCellIsPureRedWithBlackTextInBothPalettes)
{
    Fill(3);
    Grid.SetCellBackColour(2, 1, 2, 255);
    for (const QPalette& palette : {LightPalette(), DarkPalette()}) {
        ShowWith(palette);
        EXPECT_EQ(Background(2, 1), QColor(255, 0, 0));
        EXPECT_EQ(Background(2, 2), QColor(255, 0, 0));
        EXPECT_EQ(Background(2, 3), palette.color(QPalette::Base));
        EXPECT_GT(Contrast::Ratio(Ink(2, 2), QColor(255, 0, 0)), 4.5);
    }
}

TEST_F(FlexGridPaintTest, AnUrgentRowIsStillRedWhenItIsSelected)
{
    Fill(3);
    Grid.SetCellBackColour(2, 1, 2, 255);
    Grid.SetRow(2);
    for (const QPalette& palette : {LightPalette(), DarkPalette()}) {
        ShowWith(palette);
        const QColor red = Background(2, 2);
        EXPECT_GT(red.red(), 2 * red.blue());
        EXPECT_GT(red.red(), 2 * red.green());
        EXPECT_NE(red, QColor(255, 0, 0)) << "and shows that it is selected";
        EXPECT_EQ(Background(2, 3), palette.color(QPalette::Highlight));
        EXPECT_GT(Contrast::Ratio(Ink(2, 2), red), 4.5);
    }
}

TEST_F(FlexGridPaintTest, ACellsOwnTextColourShowsWhereItCanBeReadAndIsShadedWhereNot)
{
    Fill(3);
    Grid.SetCellForeColour(1, 2, 2, 0xFF0000);
    ShowWith(LightPalette());
    QColor ink = Ink(1, 2);
    EXPECT_GT(ink.blue(), 200);
    EXPECT_LT(ink.red(), 80);
    for (const bool selected : {false, true}) {
        Grid.setPalette(DarkPalette());
        Grid.SetRow(selected ? 1 : 0);
        EXPECT_GT(Contrast::Ratio(Ink(1, 2), Background(1, 2)), 3.5) << selected;
    }
    Grid.SetRow(0);
    ink = Ink(1, 2);
    EXPECT_GT(ink.blue(), ink.red());
}

TEST_F(FlexGridPaintTest, ASelectedRowIsPalerWithoutTheFocus)
{
    Fill(3);
    Grid.SetRow(1);
    ShowWith(LightPalette());
    EXPECT_EQ(Background(1, 3), QColor(48, 140, 198));
    Grid.clearFocus();
    const QColor pale = Background(1, 3);
    EXPECT_NE(pale, QColor(48, 140, 198));
    EXPECT_NE(pale, QColor(255, 255, 255));
    EXPECT_GT(Contrast::Ratio(Ink(1, 2), pale), 4.5);
}

TEST_F(FlexGridPaintTest, BoldTextHasMoreInk)
{
    Fill(2);
    Grid.SetTextMatrix(2, 2, Grid.TextMatrix(1, 2));
    ShowWith(LightPalette());
    const int regular = InkedPixels(2, 2);
    Grid.SetCellFontBold(2, 2, 2, true);
    EXPECT_GT(InkedPixels(2, 2), regular);
}

TEST_F(FlexGridPaintTest, ACarriageReturnMakesASecondLineOnlyWithWordWrap)
{
    Fill(1);
    Grid.SetTextMatrix(1, 2, QStringLiteral("HHHH\rHHHH"));
    Grid.SetRowHeight(1, 750);
    Grid.setWordWrap(true);
    ShowWith(LightPalette());
    EXPECT_EQ(Gaps(InkedLines(1, 2)), 1);
    Grid.setWordWrap(false);
    EXPECT_EQ(Gaps(InkedLines(1, 2)), 0);
}

TEST_F(FlexGridPaintTest, APictureStandsInTheMiddleOfACellWithoutText)
{
    Fill(2);
    Grid.SetCellPicture(1, 1, PlainIcon(QColor(0, 128, 0)));
    ShowWith(LightPalette());
    const QImage image = Image(1, 1);
    EXPECT_EQ(image.pixelColor(image.width() / 2, image.height() / 2), QColor(0, 128, 0));
    EXPECT_EQ(image.pixelColor(2, 9), image.pixelColor(17, 9)) << "the picture of 16 pixels in a cell of 20";
    EXPECT_EQ(image.pixelColor(3, 9), QColor(0, 128, 0));
    EXPECT_EQ(image.pixelColor(1, 9), QColor(255, 255, 255));
    EXPECT_EQ(image.pixelColor(18, 9), QColor(255, 255, 255));
    EXPECT_NE(Image(2, 1).pixelColor(10, 10), QColor(0, 128, 0));
}

TEST_F(FlexGridPaintTest, APictureStandsBeforeTheTextOfItsCell)
{
    Fill(1);
    Grid.SetCellPicture(1, 2, PlainIcon(QColor(0, 128, 0)));
    ShowWith(LightPalette());
    const QImage image = Image(1, 2);
    EXPECT_EQ(image.pixelColor(10, 10), QColor(0, 128, 0));
    EXPECT_EQ(image.pixelColor(22, 2), QColor(255, 255, 255));
    EXPECT_GT(InkedPixels(1, 2), 16 * 16 + 50);
}

TEST_F(FlexGridPaintTest, NothingIsDrawnWhileRedrawIsOff)
{
    Fill(3);
    ShowWith(LightPalette());
    int paints = 0;
    class Counter : public QObject
    {
    public:
        explicit Counter(int& count) : Count(count) {}
        bool eventFilter(QObject*, QEvent* event) override
        {
            Count += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
        int& Count;
    };
    Counter counter(paints);
    Grid.viewport()->installEventFilter(&counter);
    Grid.SetRedraw(false);
    Grid.SetTextMatrix(1, 2, QStringLiteral("new"));
    Grid.SetRow(3);
    Grid.SetRows(10);
    QApplication::processEvents();
    EXPECT_EQ(paints, 0);
    Grid.SetRedraw(true);
    EXPECT_TRUE(QTest::qWaitFor([&paints] { return paints > 0; }));
}

TEST_F(FlexGridPaintTest, TextIsNeverWiderThanItsCell)
{
    Fill(1);
    Grid.SetTextMatrix(1, 2, QString(200, QLatin1Char('W')));
    ShowWith(LightPalette());
    const QImage image = Image(1, 2);
    for (int y = 1; y < image.height() - 2; ++y)
        EXPECT_EQ(image.pixelColor(image.width() - 2, y), QColor(255, 255, 255)) << y;
}

TEST_F(FlexGridPaintTest, OnAFineScreenCellsAreWholeAndSharp)
{
    Fill(2);
    Grid.SetCellPicture(1, 1, PlainIcon(QColor(0, 128, 0)));
    Grid.SetCellBackColour(2, 1, 2, 255);
    ShowWith(LightPalette());
    QImage image(Grid.viewport()->size() * 2, QImage::Format_RGB32);
    image.setDevicePixelRatio(2);
    Grid.viewport()->render(&image);
    const QRect cell = Cell(1, 2);
    QList<int> lines;
    for (int y = cell.top() * 2; y < cell.bottom() * 2 - 2; ++y) {
        for (int x = cell.left() * 2 + 4; x < cell.right() * 2; ++x) {
            if (image.pixelColor(x, y).lightness() < 100) {
                lines.append(y);
                break;
            }
        }
    }
    ASSERT_FALSE(lines.isEmpty());
    EXPECT_GT(lines.first(), cell.top() * 2 + 2) << "no letter is cut at the top";
    EXPECT_LT(lines.last(), cell.bottom() * 2 - 3) << "nor at the bottom";
    EXPECT_GT(lines.size(), 16) << "letters have the screen's pixels";
    const QPoint picture = Cell(1, 1).center() * 2;
    EXPECT_EQ(image.pixelColor(picture), QColor(0, 128, 0));
    EXPECT_EQ(image.pixelColor(Cell(2, 2).topLeft() * 2 + QPoint(1, 1)), QColor(255, 0, 0));
    EXPECT_EQ(image.pixelColor(QPoint(Cell(2, 2).right() * 2 + 1, Cell(2, 2).center().y() * 2)), QColor(255, 0, 0));
}

// ---- Lines of text

TEST(FlexGridLinesTest, WithoutWrapATextIsOneLine)
{
    const QFont font;
    for (const char16_t lineEnd : {u'\v', u'\f', u'\u0085', u'\u2028', u'\u2029'}) {
        for (const bool wraps : {false, true}) {
            EXPECT_EQ(FlexGridDelegate::Lines(QStringLiteral("one") + QChar(lineEnd) + QStringLiteral("two"), font,
                                              1000, 100, wraps),
                      QStringList{QStringLiteral("one two")});
        }
    }
    EXPECT_EQ(FlexGridDelegate::Lines(QStringLiteral("one\r\ntwo\rthree"), font, 1000, 100, false),
              QStringList{QStringLiteral("one two three")});
}

TEST(FlexGridLinesTest, WithWrapItsOwnLinesStayAndEachIsElided)
{
    const QFont font;
    const int lineSpacing = QFontMetrics(font).lineSpacing();
    const QString longLine(100, QLatin1Char('W'));
    const QStringList lines =
        FlexGridDelegate::Lines(longLine + QStringLiteral("\rFri 13 Mar 18:00"), font, 150, 2 * lineSpacing, true);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines.first().endsWith(QChar(0x2026)));
    EXPECT_LE(QFontMetrics(font).horizontalAdvance(lines.first()), 150);
    EXPECT_EQ(lines.last(), QStringLiteral("Fri 13 Mar 18:00"));
}

TEST(FlexGridLinesTest, AnEmptySecondLineKeepsItsPlace)
{
    const QFont font;
    const int lineSpacing = QFontMetrics(font).lineSpacing();
    EXPECT_EQ(FlexGridDelegate::Lines(QStringLiteral("one\r"), font, 500, 2 * lineSpacing, true),
              (QStringList{QStringLiteral("one"), QString()}));
}

TEST(FlexGridLinesTest, LinesThatHaveNoRoomAreLeftOutButNeverTheFirst)
{
    const QFont font;
    const int lineSpacing = QFontMetrics(font).lineSpacing();
    EXPECT_EQ(FlexGridDelegate::Lines(QStringLiteral("one\rtwo"), font, 500, 2 * lineSpacing - 1, true),
              QStringList{QStringLiteral("one")});
    EXPECT_EQ(FlexGridDelegate::Lines(QStringLiteral("one"), font, 500, 2, true), QStringList{QStringLiteral("one")});
}

TEST(FlexGridLinesTest, ALongTextIsWrappedAndItsLastLineElided)
{
    const QFont font;
    const QFontMetrics metrics(font);
    const QString text = QStringLiteral("the quick brown fox jumps over the lazy dog again and again and again");
    const int width = metrics.horizontalAdvance(QStringLiteral("the quick brown fox jum"));
    const QStringList lines = FlexGridDelegate::Lines(text, font, width, 2 * metrics.lineSpacing(), true);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines.first(), QStringLiteral("the quick brown fox"));
    EXPECT_TRUE(lines.last().startsWith(QStringLiteral("jumps")));
    EXPECT_TRUE(lines.last().endsWith(QChar(0x2026)));
}

TEST_F(FlexGridPaintTest, ANoteStandsAtTheEndOfItsRowAndIsReadableAndSpoken)
{
    Fill(3);
    ShowWith(LightPalette());
    const QImage before = Image(2, 2);
    const QImage other = Image(1, 2);
    Grid.SetRowNotes(
        2, [this](int row) { return Grid.TextMatrix(row, 0) == u"1002" ? QStringLiteral("Petra") : QString(); });
    const QImage after = Image(2, 2);
    EXPECT_EQ(Image(1, 2), other);
    ASSERT_EQ(after.size(), before.size());
    // The subject before it stays as it was.
    EXPECT_EQ(after.copy(0, 0, 40, after.height()), before.copy(0, 0, 40, before.height()));
    EXPECT_NE(after.copy(after.width() - 40, 0, 40, after.height()),
              before.copy(before.width() - 40, 0, 40, before.height()));
    const QColor ground = after.pixelColor(after.width() - 7, after.height() / 2);
    EXPECT_NE(ground, before.pixelColor(before.width() - 7, before.height() / 2)) << "it has a ground of its own";
    const QModelIndex cell = Grid.model()->index(1, 2);
    EXPECT_EQ(cell.data(Qt::AccessibleTextRole).toString(), QStringLiteral("Petra, Subject 2"));
    Grid.SetRowNotes(2, nullptr);
    EXPECT_EQ(Image(2, 2), before);
    EXPECT_EQ(cell.data(Qt::AccessibleTextRole).toString(), QStringLiteral("Subject 2"));
}
