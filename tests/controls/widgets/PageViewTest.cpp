// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/PageView.h"

#include "platform/widgets/PictureReader.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QScrollBar>
#include <QTemporaryFile>
#include <QTest>
#include <QtEndian>

#include <gtest/gtest.h>

namespace
{
QByteArray Png(int width, int height, const QColor& colour = Qt::red)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    QByteArray octets;
    QBuffer buffer(&octets);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return octets;
}

/// A small file whose header says that it is this large.
QByteArray PngBomb(quint32 width, quint32 height)
{
    QByteArray octets = Png(8, 8);
    qToBigEndian(width, octets.data() + 16);
    qToBigEndian(height, octets.data() + 20);
    quint32 check = 0xFFFFFFFFU;
    for (const char octet : octets.mid(12, 17)) {
        check ^= static_cast<quint8>(octet);
        for (int bit = 0; bit < 8; ++bit)
            check = check >> 1 ^ (check & 1 ? 0xEDB88320U : 0);
    }
    qToBigEndian(~check, octets.data() + 29);
    return octets;
}

int PixelsOf(const QImage& image, const QColor& colour)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) == colour ? 1 : 0;
    }
    return count;
}
} // namespace

TEST(PictureReaderTest, APictureThatIsTooLargeIsRefusedBeforeItIsDecoded)
{
    EXPECT_EQ(PictureReader::Pixels(PngBomb(60'000, 60'000)), 0);
    EXPECT_TRUE(PictureReader::Read(PngBomb(60'000, 60'000)).isNull());
    EXPECT_EQ(PictureReader::Pixels(PngBomb(100, 200)), 20'000);
}

TEST(PictureReaderTest, OnlyRasterFormatsAreRead)
{
    EXPECT_EQ(PictureReader::Read(Png(3, 4)).size(), QSize(3, 4));
    for (const char* text :
         {"", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>", "%PDF-1.4", "GIF89a", "text"})
        EXPECT_TRUE(PictureReader::Read(text).isNull()) << text;
}

TEST(PictureReaderTest, APictureLargerThanAnyScreenIsMadeSmaller)
{
    EXPECT_EQ(PictureReader::Read(Png(6000, 10)).width(), 3000);
}

class PageViewTest : public testing::Test
{
protected:
    void Show(const QString& html)
    {
        View.resize(300, 200);
        View.ShowPage(html, View.font(), View.palette());
        View.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&View));
    }

    PageView View;
};

TEST_F(PageViewTest, NoResourceIsLoadedButTheMessagesPictures)
{
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write(Png(4, 4));
    file.close();
    QStringList asked;
    View.SetPictureSource([&](const QString& address) {
        asked.append(address);
        return Png(4, 4);
    });
    const QString local = QUrl::fromLocalFile(file.fileName()).toString();
    for (const QString& address :
         {QStringLiteral("http://example.com/x.png"), QStringLiteral("https://example.com/x.png"), local,
          file.fileName(), QStringLiteral("data:image/png;base64,iVBORw0KGgo="), QStringLiteral("qrc:/x"),
          QStringLiteral(":/x"), QStringLiteral("x.css")}) {
        for (const int type :
             {QTextDocument::ImageResource, QTextDocument::HtmlResource, QTextDocument::StyleSheetResource}) {
            EXPECT_TRUE(View.loadResource(type, QUrl(address)).isNull()) << qPrintable(address);
            EXPECT_TRUE(View.document()->resource(type, QUrl(address)).isNull()) << qPrintable(address);
        }
    }
    EXPECT_TRUE(View.loadResource(QTextDocument::HtmlResource, QUrl(QStringLiteral("cid:x"))).isNull());
    EXPECT_EQ(asked, QStringList());
    EXPECT_FALSE(View.loadResource(QTextDocument::ImageResource, QUrl(QStringLiteral("cid:x"))).isNull());
    EXPECT_EQ(asked, QStringList{QStringLiteral("cid:x")});
}

TEST_F(PageViewTest, EvenAPageThatNamesAFileDoesNotShowIt)
{
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write(Png(40, 40, Qt::magenta));
    file.close();
    Show(QStringLiteral("<img src=\"%1\"><img src=\"%2\">")
             .arg(QUrl::fromLocalFile(file.fileName()).toString(), file.fileName()));
    EXPECT_EQ(PixelsOf(View.grab().toImage(), Qt::magenta), 0);
}

TEST_F(PageViewTest, APictureOfTheMessageIsDrawnNoWiderThanThePane)
{
    View.SetPictureSource([](const QString&) { return Png(2000, 100, Qt::magenta); });
    Show(QStringLiteral("<img src=\"cid:x\">"));
    EXPECT_GT(PixelsOf(View.grab().toImage(), Qt::magenta), 200);
    EXPECT_EQ(View.horizontalScrollBar()->maximum(), 0);
    View.resize(200, 200);
    QTRY_VERIFY_WITH_TIMEOUT(View.horizontalScrollBar()->maximum() == 0, 5000);
}

TEST_F(PageViewTest, WideTablesAndLongWordsFitThePaneAtAnyWidth)
{
    Show(QStringLiteral("<table width=\"900\"><tr><td width=\"450\">a</td><td width=\"450\">b</td></tr></table>") +
         QString(500, u'w'));
    EXPECT_EQ(View.horizontalScrollBar()->maximum(), 0);
    View.resize(250, 200);
    QCoreApplication::processEvents();
    EXPECT_EQ(View.horizontalScrollBar()->maximum(), 0);
    View.resize(1200, 200);
    QCoreApplication::processEvents();
    auto* table = qobject_cast<QTextTable*>(View.document()->rootFrame()->childFrames().value(0));
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->format().width(), QTextLength(QTextLength::FixedLength, 900));
}

TEST_F(PageViewTest, TextCanBeCopiedButNothingComesIn)
{
    Show(QStringLiteral("<b>some</b> words"));
    View.setFocus();
    QTest::keyClick(&View, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&View, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("some words"));
    QGuiApplication::clipboard()->setText(QStringLiteral("new"));
    QTest::keyClick(&View, Qt::Key_V, Qt::ControlModifier);
    View.paste();
    EXPECT_EQ(View.toPlainText(), QStringLiteral("some words"));
    EXPECT_FALSE(View.acceptDrops() || View.viewport()->acceptDrops());
}
