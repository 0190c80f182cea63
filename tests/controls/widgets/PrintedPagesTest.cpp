// SPDX-License-Identifier: Apache-2.0

// Pages laid out on paper.

#include "platform/widgets/PrintedPages.h"

#include "platform/ProcessorTime.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QPaintEngine>
#include <QPainter>
#include <QPalette>
#include <QPdfWriter>
#include <QTextDocument>
#include <QThreadPool>
#include <QtTest>

#include <gtest/gtest.h>

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

/// What is drawn on pages, as text.
class TextRecorder final : public QPdfWriter, public QPaintEngine
{
public:
    explicit TextRecorder(QIODevice* unused) : QPdfWriter(unused), QPaintEngine(AllFeatures) {}

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState&) override {}
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawPath(const QPainterPath&) override {}
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
    void drawTextItem(const QPointF&, const QTextItem& item) override { Text += item.text() + u' '; }
    Type type() const override { return User; }
    bool newPage() override { return true; }

    QString Text;

protected:
    QPaintEngine* paintEngine() const override { return const_cast<TextRecorder*>(this); }
};

QString TextOn(const PrintedPages& pages)
{
    QBuffer unused;
    TextRecorder recorder(&unused);
    EXPECT_TRUE(pages.Print(recorder));
    return recorder.Text;
}

LayoutLimits Within(std::chrono::milliseconds time)
{
    LayoutLimits limits;
    limits.Budget = limits.FirstSize = time;
    return limits;
}

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
        EXPECT_FALSE(Laid(QStringLiteral("<table>") + row.repeated(5) + QStringLiteral("</table>")).HasPlainText());
    });
    EXPECT_LT(time, std::chrono::seconds(1));
}

TEST(PrintedPagesTest, AMillionPlacesForAThousandCellsAreLaidOutAtOnce)
{
    const QString page = QStringLiteral("<table>") + QStringLiteral("<tr><td>a").repeated(1000) +
                         QStringLiteral("<tr>") + QStringLiteral("<td>b").repeated(1000) + QStringLiteral("</table>");
    EXPECT_LT(TimeOf([&] { EXPECT_FALSE(Laid(page).HasPlainText()); }), std::chrono::seconds(2));
}

TEST(PrintedPagesTest, EveryWordIsOnThePagesAlsoWhenThereIsNoTimeToLayThemOut)
{
    QString page;
    for (int i = 0; i < 2000; ++i)
        page += QStringLiteral("<p>paragraph%1 &lt;of many&gt; words</p>").arg(i);
    page += QStringLiteral("<table><tr><td>cell1</td><td>cell2<p>within</p></td></tr></table><p>at the end");
    const QString mark = QStringLiteral("[From here on the page stands as plain text: it would take too long to lay");
    for (const auto& time : {std::chrono::milliseconds(0), std::chrono::milliseconds(15)}) {
        const PrintedPages pages(MakeDocumentSafe(page), {}, Within(time));
        EXPECT_TRUE(pages.HasPlainText());
        const QString text = TextOn(pages);
        EXPECT_EQ(text.count(mark), 1);
        for (int i = 0; i < 2000; ++i)
            EXPECT_TRUE(text.contains(QStringLiteral("paragraph%1 <of").arg(i))) << i;
        for (const char* words : {"cell1", "cell2", "within", "at the end"})
            EXPECT_EQ(text.count(QLatin1String(words)), 1) << words;
    }
    EXPECT_FALSE(Laid(page).HasPlainText());
}

TEST(PrintedPagesTest, SixMegabytesOfTextAreOnTheirPagesInFiveSeconds)
{
    QString words;
    for (int i = 0; words.size() < 6'000'000; ++i)
        words += QStringLiteral("word%1 and others ").arg(i);
    // Rich text lays a cell out several times.
    const SafeDocument document = MakeDocumentSafe(QStringLiteral("<table><tr><td>") + words);
    EXPECT_LT(TimeOf([&] {
                  const PrintedPages pages(document, {});
                  EXPECT_TRUE(pages.HasPlainText());
                  EXPECT_GT(pages.PageCount(), 500);
              }),
              std::chrono::seconds(6));
}

TEST(PrintedPagesTest, APageIsLaidOutOnceForASize)
{
    const SafeDocument document = MakeDocumentSafe(
        QStringLiteral("<table>") + QStringLiteral("<tr><td>a<td>cell with some more words<td>c").repeated(1500));
    auto bare = std::chrono::nanoseconds::max();
    auto pages = bare;
    for (int round = 0; round < 5; ++round) {
        bare = std::min(bare, TimeOf([&] {
                            QTextDocument once;
                            once.setPageSize({680, 1000});
                            once.setLayoutEnabled(false);
                            once.setHtml(document.Html);
                            once.setLayoutEnabled(true);
                            EXPECT_GT(once.pageCount(), 1);
                        }));
        pages = std::min(pages, TimeOf([&] { EXPECT_GT(PrintedPages(document, {}).PageCount(), 1); }));
    }
    RecordProperty("TimesTheBareLayoutInPercent", static_cast<int>(pages * 100 / bare));
    EXPECT_LT(pages, bare * 3 / 2);
}

TEST(PrintedPagesTest, ALineOfPlainTextStaysOnItsPaper)
{
    for (const QString& word : {QStringLiteral("wide"), QString(QChar(0x4E00)), QString(QChar(0x0E01))}) {
        const PrintedPages pages(MakeDocumentSafe(word.repeated(3000)), {}, Within(std::chrono::milliseconds(0)));
        ASSERT_TRUE(pages.HasPlainText());
        const QRectF ink = InkOf(PageOf(pages));
        EXPECT_GT(ink.width(), 100) << word.toStdString();
        EXPECT_LE(ink.right(), 195.5) << word.toStdString();
        EXPECT_LE(ink.bottom(), 297 - 4) << word.toStdString();
    }
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
    ASSERT_TRUE(QTest::qWaitFor([&] { return isDone.load(); }));
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
