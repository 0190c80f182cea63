// SPDX-License-Identifier: Apache-2.0

// What stands at the end of a row's last line, and what of the line gives way to it; how texts break into lines.

#include "platform/widgets/FlexGridDelegate.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/LineBreaker.h"
#include "platform/widgets/RowMark.h"
#include "widgets/FlexGridFixture.h"

#include <QFontMetrics>
#include <QPainter>

namespace
{
const QString DateWords = QStringLiteral(" \u00B7 Fri 20 Nov 09:05");

QString LineOf(const QString& name)
{
    return QChar(0x2068) + name + QChar(0x2069) + DateWords;
}

QIcon OneColour(const QColor& colour)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(colour);
    return QIcon(pixmap);
}
} // namespace

class FlexGridLineEndTest : public FlexGridFixture
{
protected:
    QImage Image(int row) const
    {
        return Grid.viewport()->grab(Grid.visualRect(Grid.model()->index(row - 1, 2))).toImage();
    }
    static int PixelsOf(const QImage& image, const QColor& colour)
    {
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                count += image.pixelColor(x, y) == colour;
        }
        return count;
    }
};

TEST_F(FlexGridLineEndTest, OfALineThatIsTooLongTheNameIsCutAndTheDateIsNot)
{
    const QFontMetrics metrics{QFont()};
    const QString line = LineOf(QStringLiteral("Loveday Tregenza of Mousehole"));
    for (const int letters : {40, 30, 26, 24}) {
        const int width = letters * metrics.averageCharWidth();
        const QString cut = FlexGridDelegate::Shortened(line, metrics, width);
        EXPECT_TRUE(cut.endsWith(DateWords)) << qPrintable(cut);
        EXPECT_LE(metrics.horizontalAdvance(cut), width);
    }
    EXPECT_EQ(FlexGridDelegate::Shortened(line, metrics, 2000), line);
}

TEST_F(FlexGridLineEndTest, ANoteLeavesTheDateOfItsLineReadable)
{
    Fill(1);
    Grid.SetColWidth(2, 4500);
    Grid.SetColWidth(3, 0);
    Show();
    // The date alone, at the place where it stands behind a name that fits.
    Grid.SetTextMatrix(1, 2, LineOf(QStringLiteral("Ann")));
    const QImage plain = Image(1);
    Grid.SetRowNotes(2, [](int) { return QString(60, u'w'); });
    const QImage noted = Image(1);
    const int end = Grid.fontMetrics().horizontalAdvance(QStringLiteral("Ann") + DateWords);
    EXPECT_EQ(noted.copy(0, 0, end, plain.height()), plain.copy(0, 0, end, plain.height()));
    EXPECT_NE(noted, plain);
}

TEST_F(FlexGridLineEndTest, MarksStandAtTheEndInTheirOrderAndAreNamed)
{
    Fill(2);
    Show();
    Grid.SetRowMarks(2, [](int row) {
        return row == 1 ? QList<RowMark>{{OneColour(Qt::red), QStringLiteral("urgent")},
                                         {OneColour(Qt::blue), QStringLiteral("mail")}}
                        : QList<RowMark>();
    });
    const QImage image = Image(1);
    EXPECT_GT(PixelsOf(image, Qt::red), 100);
    EXPECT_GT(PixelsOf(image, Qt::blue), 100);
    EXPECT_EQ(PixelsOf(Image(2), Qt::blue), 0);
    EXPECT_GT(PixelsOf(image.copy(image.width() - 24, 0, 24, image.height()), Qt::blue), 100)
        << "the last is outermost";
    EXPECT_EQ(Grid.model()->index(0, 2).data(Qt::AccessibleTextRole).toString(),
              QStringLiteral("urgent, mail, Subject 1"));
    Grid.setLayoutDirection(Qt::RightToLeft);
    const QImage mirrored = Image(1);
    EXPECT_GT(PixelsOf(mirrored.copy(0, 0, 24, mirrored.height()), Qt::blue), 100);
}

TEST_F(FlexGridLineEndTest, AMarkIsSharpOnAScreenOfTwiceThePixels)
{
    Fill(1);
    Show();
    Grid.SetRowMarks(2, [](int) { return QList<RowMark>{{Icons::Get(QStringLiteral("mail")), QString()}}; });
    const QRect cell = Grid.visualRect(Grid.model()->index(0, 2));
    QPixmap once(cell.size());
    QPixmap twice(cell.size() * 2);
    twice.setDevicePixelRatio(2);
    Grid.viewport()->render(&once, QPoint(), cell);
    Grid.viewport()->render(&twice, QPoint(), cell);
    EXPECT_NE(once.toImage().scaled(cell.size() * 2), twice.toImage()) << "drawn anew, not enlarged";
}

TEST(LineBreakerTest, TextsBreakBetweenWordsAndNoLineIsWiderThanItMayBe)
{
    const QFont font;
    const LineBreaker breaker(font);
    const QFontMetricsF metrics(font);
    const double width = metrics.horizontalAdvance(QStringLiteral("the quick brown fox "));
    const QStringList lines =
        breaker.Break(QStringLiteral("the quick brown fox jumps over the lazy dog again and again"), width, 9);
    EXPECT_EQ(lines.join(u' '), QStringLiteral("the quick brown fox jumps over the lazy dog again and again"));
    EXPECT_EQ(lines.first(), QStringLiteral("the quick brown fox"));
    for (const QString& line : lines)
        EXPECT_LE(metrics.horizontalAdvance(line), width);
}

TEST(LineBreakerTest, AWordThatIsWiderThanALineIsCutBetweenWholeCharacters)
{
    const QFont font;
    const LineBreaker breaker(font);
    const QString smiles = QStringLiteral("\U0001F600").repeated(40);
    const QStringList lines = breaker.Break(smiles, QFontMetricsF(font).horizontalAdvance(smiles.left(20)), 3);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines.join(QString()), smiles);
    for (const QString& line : lines) {
        EXPECT_TRUE(line.front().isHighSurrogate());
        EXPECT_TRUE(line.back().isLowSurrogate());
    }
    EXPECT_EQ(breaker.Break(QString(), 100, 3), QStringList{QString()});
    EXPECT_EQ(breaker.Break(QStringLiteral("abc"), 0, 2).size(), 2) << "ends, however narrow";
}
