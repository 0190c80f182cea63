// SPDX-License-Identifier: Apache-2.0

// Pages laid out on paper.

#include "platform/widgets/PrintedPages.h"

#include "DeskTest.h"
#include "platform/ProcessorTime.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QPdfWriter>
#include <QThreadPool>

#include <atomic>

namespace
{
constexpr double Scale = 4; // dots a millimetre

PrintedPages Laid(const QString& html, const PaperSetup& setup = {})
{
    return PrintedPages(MakeDocumentSafe(html), setup);
}

QImage PageOf(const PrintedPages& pages, int page = 0)
{
    QImage image((pages.Setup().Paper * Scale).toSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    pages.PaintPage(painter, page, Scale);
    return image;
}

/// What of an image is not white, in millimetres.
QRectF InkOf(const QImage& image)
{
    int left = image.width();
    int right = -1;
    int top = image.height();
    int bottom = -1;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == qRgb(255, 255, 255))
                continue;
            left = qMin(left, x);
            right = qMax(right, x);
            top = qMin(top, y);
            bottom = qMax(bottom, y);
        }
    }
    return QRectF(left / Scale, top / Scale, (right - left + 1) / Scale, (bottom - top + 1) / Scale);
}

QString PictureTag(const QSize& size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    QBuffer octets;
    octets.open(QIODevice::WriteOnly);
    image.save(&octets, "PNG");
    return QStringLiteral("<img src=\"%1\">").arg(AddressOfPicture(octets.data()));
}

bool HasRed(const QImage& image)
{
    for (int y = 0; y < image.height(); y += 2) {
        for (int x = 0; x < image.width(); x += 2) {
            const QRgb pixel = image.pixel(x, y);
            if (qRed(pixel) > 200 && qGreen(pixel) < 60)
                return true;
        }
    }
    return false;
}
} // namespace

/// Of this thread, so that a busy machine fails no test.
std::chrono::nanoseconds TimeOf(const std::function<void()>& work)
{
    const auto begin = ProcessorTime();
    work();
    return ProcessorTime() - begin;
}

TEST(PrintedPagesTest, CellsThatSpanAHundredThousandColumnsAreLaidOutAtOnce)
{
    const QString row = QStringLiteral("<tr><td colspan=100000 rowspan=100000>a</td><td colspan=100000>b</td></tr>");
    const auto time = TimeOf([&] {
        EXPECT_EQ(Laid(QStringLiteral("<table>") + row.repeated(5) + QStringLiteral("</table>")).LeftOut(), 0);
    });
    EXPECT_LT(time, std::chrono::seconds(1));
}

TEST(PrintedPagesTest, AMillionPlacesForAThousandCellsAreLaidOutAtOnce)
{
    const QString page = QStringLiteral("<table>") + QStringLiteral("<tr><td>a").repeated(1000) +
                         QStringLiteral("<tr>") + QStringLiteral("<td>b").repeated(1000) + QStringLiteral("</table>");
    EXPECT_LT(TimeOf([&] { EXPECT_EQ(Laid(page).LeftOut(), 0); }), std::chrono::seconds(2));
}

TEST(PrintedPagesTest, ALayoutThatIsNotWantedAnyMoreEndsAtTheNextStep)
{
    constexpr int Steps = 5;
    int asked = 0;
    std::chrono::nanoseconds refused{};
    LayoutLimits limits;
    limits.IsWanted = [&] {
        refused = ProcessorTime();
        return ++asked < Steps;
    };
    const PrintedPages pages(MakeDocumentSafe(QStringLiteral("<p>A word or two</p>").repeated(20'000)), {}, limits);
    EXPECT_EQ(asked, Steps);
    EXPECT_LT(ProcessorTime() - refused, std::chrono::milliseconds(100));
}

TEST(PrintedPagesTest, AnEmptyPageIsOnePage)
{
    EXPECT_EQ(Laid(QString()).PageCount(), 1);
}

TEST(PrintedPagesTest, AParagraphThatAsksForItBeginsAPage)
{
    const QString html = QStringLiteral("<style>P.breakhere {page-break-before: always}</style><p>one</p>"
                                        "<P CLASS=\"breakhere\"></p><p>two</p><P CLASS=\"breakhere\"></p><hr><p>three");
    EXPECT_EQ(Laid(html).PageCount(), 3);
    EXPECT_EQ(Laid(QString(html).remove(QStringLiteral("always"))).PageCount(), 1);
}

TEST(PrintedPagesTest, TextStaysWithinTheMargins)
{
    PaperSetup setup;
    setup.Margins = {30, 25, 20, 40};
    setup.NumbersPages = false;
    const PrintedPages pages = Laid(QStringLiteral("<p>Words to fill the paper. </p>").repeated(300), setup);
    ASSERT_GT(pages.PageCount(), 1);
    const QRectF ink = InkOf(PageOf(pages));
    EXPECT_GE(ink.left(), 29.5);
    EXPECT_GE(ink.top(), 24.5);
    EXPECT_LE(ink.right(), 190.5);
    EXPECT_LE(ink.bottom(), 257.5);
}

TEST(PrintedPagesTest, WhatIsTooWideForThePaperIsMadeNarrower)
{
    const QString row =
        QStringLiteral("<tr>") + QStringLiteral("<td width=\"700\">cell</td>").repeated(4) + QStringLiteral("</tr>");
    const QStringList wide = {QStringLiteral("<table width=\"3000\">") + row + QStringLiteral("</table>"),
                              PictureTag(QSize(4000, 300)),
                              QStringLiteral("<p>") + QStringLiteral("unbreakable").repeated(60),
                              QStringLiteral("<pre>") + QStringLiteral("a line of code ").repeated(15)};
    for (const QString& html : wide) {
        const PrintedPages pages = Laid(html);
        const QRectF ink = InkOf(PageOf(pages));
        EXPECT_GT(ink.width(), 100) << html.left(60).toStdString();
        EXPECT_LE(ink.right(), 195.5) << html.left(60).toStdString();
    }
}

TEST(PrintedPagesTest, ATallPictureFitsOnOnePage)
{
    const PrintedPages pages = Laid(PictureTag(QSize(300, 4000)));
    EXPECT_EQ(pages.PageCount(), 1);
    EXPECT_TRUE(HasRed(PageOf(pages)));
}

TEST(PrintedPagesTest, AFileOfTheMachineIsNoPicture)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("red.png"));
    QImage image(50, 50, QImage::Format_RGB32);
    image.fill(Qt::red);
    ASSERT_TRUE(image.save(file));
    // Past the filter for pages, as if that had let it through.
    SafeDocument document;
    document.Html = QStringLiteral("<p>x<img src=\"%1\"><img src=\"file://%1\">").arg(file);
    EXPECT_FALSE(HasRed(PageOf(PrintedPages(document, {}))));
}

TEST(PrintedPagesTest, DarkColoursOfTheDesktopDoNotReachThePaper)
{
    const QPalette before = QGuiApplication::palette();
    QGuiApplication::setPalette(QPalette(Qt::white, Qt::black, Qt::white, Qt::black, Qt::gray, Qt::white, Qt::black));
    const PrintedPages pages = Laid(QStringLiteral("<p>Words and <a href=\"https://example.org/\">a link"));
    const QImage page = PageOf(pages);
    QGuiApplication::setPalette(before);
    EXPECT_GT(InkOf(page).width(), 20);
    int darkest = 255;
    for (int y = 0; y < page.height(); ++y) {
        for (int x = 0; x < page.width(); ++x) {
            const QRgb pixel = page.pixel(x, y);
            darkest = qMin(darkest, qGray(pixel));
            EXPECT_LT(qAbs(qRed(pixel) - qBlue(pixel)), 12);
        }
    }
    EXPECT_LT(darkest, 90);
}

TEST(PrintedPagesTest, PagesAreNumberedWhenThereAreSeveral)
{
    const QString long_ = QStringLiteral("<p>Words</p>").repeated(120);
    const PrintedPages numbered = Laid(long_);
    PaperSetup setup;
    setup.NumbersPages = false;
    const PrintedPages plain = Laid(long_, setup);
    EXPECT_GT(InkOf(PageOf(numbered)).bottom(), 284);
    EXPECT_LT(InkOf(PageOf(plain)).bottom(), 283);
    EXPECT_LT(InkOf(PageOf(Laid(QStringLiteral("<p>Words</p>")))).bottom(), 40);
}

TEST(PrintedPagesTest, PagesLaidOutInAnotherThreadAreTheSame)
{
    const QString html = QStringLiteral("<h1>Title</h1>") + QStringLiteral("<p>Words</p>").repeated(120);
    std::shared_ptr<PrintedPages> pages;
    QThread* home = QThread::currentThread();
    std::atomic<bool> isDone = false;
    QThreadPool::globalInstance()->start([&] {
        pages = std::make_shared<PrintedPages>(MakeDocumentSafe(html), PaperSetup());
        pages->MoveTo(home);
        isDone = true;
    });
    ASSERT_TRUE(WaitUntil([&] { return isDone.load(); }));
    const PrintedPages here = Laid(html);
    ASSERT_EQ(pages->PageCount(), here.PageCount());
    EXPECT_EQ(PageOf(*pages, 1), PageOf(here, 1));
}

TEST(PrintedPagesTest, PrintingEndsWhenItsUserSaysSo)
{
    const PrintedPages pages = Laid(QStringLiteral("<p>Words</p>").repeated(300));
    ASSERT_GT(pages.PageCount(), 3);
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("out.pdf"));
    QString problem = QStringLiteral("old");
    int steps = 0;
    EXPECT_FALSE(pages.WritePdf(file, problem, [&](int page, int) {
        ++steps;
        return page < 2;
    }));
    EXPECT_EQ(steps, 3);
    EXPECT_EQ(problem, QString());
    EXPECT_FALSE(QFile::exists(file));
}

TEST(PrintedPagesTest, ARangeOfPagesIsPrinted)
{
    const PrintedPages pages = Laid(QStringLiteral("<p>Words</p>").repeated(300));
    QBuffer paper;
    paper.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&paper);
        EXPECT_TRUE(pages.Print(writer, {}, 1, 2));
    }
    EXPECT_EQ(paper.data().count("/Type /Page\n"), 2);
}
