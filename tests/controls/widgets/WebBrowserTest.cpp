// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/WebBrowser.h"

#include "platform/widgets/Contrast.h"
#include "platform/widgets/PageView.h"
#include "support/ScriptedUserInterface.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

#include <gtest/gtest.h>

namespace
{
QPalette DarkPalette()
{
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(45, 47, 52));
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::Base, QColor(30, 31, 35));
    dark.setColor(QPalette::Text, QColor(235, 235, 235));
    dark.setColor(QPalette::Link, QColor(120, 170, 255));
    return dark;
}

QByteArray Png()
{
    QImage image(30, 30, QImage::Format_RGB32);
    image.fill(Qt::magenta);
    QByteArray octets;
    QBuffer buffer(&octets);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return octets;
}
} // namespace

class WebBrowserTest : public testing::Test
{
protected:
    WebBrowserTest()
    {
        Pane.resize(500, 300);
        Pane.show();
        WebBrowser::SetLinkOpener([this](const QUrl& address) { Opened.append(address.toString()); });
    }
    ~WebBrowserTest() override { WebBrowser::SetLinkOpener({}); }

    PageView& Page() { return *Pane.findChild<PageView*>(QStringLiteral("pageText")); }
    QPushButton& Button(const char* name) { return *Pane.findChild<QPushButton*>(QLatin1String(name)); }
    QString Notice() { return Pane.findChild<QLabel*>(QStringLiteral("lblNotice"))->text(); }
    QString Text() { return Page().toPlainText(); }
    void ShowHtml(const char* html) { Pane.ShowHTML(QString::fromUtf8(html)); }
    void Click(const char* button) { QTest::mouseClick(&Button(button), Qt::LeftButton); }
    QPoint PlaceOf(const QString& text)
    {
        QTextCursor cursor = Page().document()->find(text);
        EXPECT_FALSE(cursor.isNull());
        cursor.setPosition(cursor.selectionStart() + 1);
        return Page().cursorRect(cursor).center();
    }
    /// The colours of the first character of a text and of the ground it stands on.
    double ContrastOf(const QString& text)
    {
        const QTextCursor cursor = Page().document()->find(text);
        const QTextCharFormat format = cursor.charFormat();
        const QColor ink = format.hasProperty(QTextFormat::ForegroundBrush) ? format.foreground().color()
                                                                            : Page().palette().color(QPalette::Text);
        return Contrast::Ratio(ink, Page().grab().toImage().pixelColor(2, Page().height() - 3));
    }

    ScriptedUserInterface Ui;
    WebBrowser Pane;
    QStringList Opened;
};

TEST_F(WebBrowserTest, ShowsHtmlAndTextAndNothing)
{
    ShowHtml("<p>Hello <b>you</b>");
    EXPECT_EQ(Text(), QStringLiteral("Hello you"));
    Pane.ShowText(QStringLiteral("a <b> & c\n  d"));
    EXPECT_EQ(Text(), QStringLiteral("a <b> & c\n  d"));
    Pane.ClearPage();
    EXPECT_EQ(Text(), QString());
    EXPECT_EQ(Notice(), QString());
    EXPECT_FALSE(Button("cmdShowSource").isVisible());
}

TEST_F(WebBrowserTest, CurlyQuotesAndEmojiShow)
{
    const QString text = QString::fromUtf8("\u201CIt\u2019s\u201D \u2013 \U0001F600 \U0001F468\u200D\U0001F469");
    Pane.ShowHTML(text);
    EXPECT_EQ(Text(), text);
    Pane.ShowText(text);
    EXPECT_EQ(Text(), text);
}

TEST_F(WebBrowserTest, SaysWhatWasWithheldAndOffersTheSource)
{
    const char* html =
        "<p>Hi<script>x()</script><img src=http://example.com/x.png><a href=tel:1>t</a><img src=cid:gone>";
    ShowHtml(html);
    EXPECT_EQ(Notice(),
              QStringLiteral("Pictures and other content on the internet are not shown. Active content was removed. "
                             "Links that lead to no web page or mail address were removed. "
                             "Some pictures of this message cannot be shown."));
    EXPECT_EQ(Button("cmdShowSource").text(), QStringLiteral("Show source"));
    Click("cmdShowSource");
    EXPECT_EQ(Text(), QString::fromUtf8(html));
    EXPECT_EQ(Button("cmdShowSource").text(), QStringLiteral("Show page"));
    Click("cmdShowSource");
    EXPECT_TRUE(Text().startsWith(QStringLiteral("Hi")));
}

TEST_F(WebBrowserTest, APlainPageHasNoNoticeButItsSource)
{
    ShowHtml("<p>Hi");
    EXPECT_EQ(Notice(), QString());
    EXPECT_TRUE(Button("cmdShowSource").isVisible());
    EXPECT_FALSE(Button("cmdShowAll").isVisible());
    Pane.ShowText(QStringLiteral("Hi"));
    EXPECT_FALSE(Button("cmdShowSource").isVisible());
}

TEST_F(WebBrowserTest, ANewPageForgetsWhatTheUserChoseForTheLast)
{
    ShowHtml("<p>one");
    Click("cmdShowSource");
    ShowHtml("<p>two");
    EXPECT_EQ(Text(), QStringLiteral("two"));
}

TEST_F(WebBrowserTest, AHostilePageAsksForNothingButItsOwnPictures)
{
    QStringList asked;
    Pane.SetContentLoader([&](const QString& id, QString*) {
        asked.append(id);
        return QByteArray();
    });
    QFile file(QStringLiteral(TOLVA_TEST_DATA "/html/images.html"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    Pane.ShowHTML(QString::fromUtf8(file.readAll()));
    Pane.grab();
    EXPECT_EQ(asked, QStringList{QStringLiteral("one@x")});
    for (QTextBlock block = Page().document()->begin(); block.isValid(); block = block.next()) {
        for (const QTextLayout::FormatRange& range : block.textFormats())
            EXPECT_TRUE(!range.format.isImageFormat() ||
                        range.format.toImageFormat().name() == QLatin1String("embedded:0"));
    }
}

TEST_F(WebBrowserTest, APictureOfTheMessageShowsInItsPlace)
{
    Pane.SetContentLoader([](const QString& id, QString* type) {
        *type = QStringLiteral("image/png");
        return id == QLatin1String("a@b") ? Png() : QByteArray();
    });
    ShowHtml("<p>x<img src='cid:a%40b'>");
    EXPECT_EQ(Notice(), QString());
    const QImage image = Page().grab().toImage();
    bool isDrawn = false;
    for (int y = 0; y < image.height() && !isDrawn; ++y) {
        for (int x = 0; x < image.width() && !isDrawn; ++x)
            isDrawn = image.pixelColor(x, y) == QColor(Qt::magenta);
    }
    EXPECT_TRUE(isDrawn);
}

TEST_F(WebBrowserTest, APictureThatCannotBeDecodedIsSaidToBeMissing)
{
    Pane.SetContentLoader([](const QString&, QString*) { return QByteArray("<svg/>"); });
    ShowHtml("<img src=cid:x alt=Logo><img src='data:image/png;base64,AAAA'>");
    EXPECT_EQ(Notice(), QStringLiteral("Some pictures of this message cannot be shown."));
    EXPECT_TRUE(Text().contains(QStringLiteral("Logo")));
}

TEST_F(WebBrowserTest, ALinkOpensOnAClickThroughTheSeam)
{
    ShowHtml("<p><a href='https://example.com/x?a=1'>press here</a>");
    QTest::mouseClick(Page().viewport(), Qt::LeftButton, Qt::NoModifier, PlaceOf(QStringLiteral("press here")));
    EXPECT_EQ(Opened, QStringList{QStringLiteral("https://example.com/x?a=1")});
    EXPECT_EQ(Text(), QStringLiteral("press here"));
}

TEST_F(WebBrowserTest, AnAddressInPlainTextIsALink)
{
    Pane.ShowText(QStringLiteral("Write to ann@example.com."));
    QTest::mouseClick(Page().viewport(), Qt::LeftButton, Qt::NoModifier, PlaceOf(QStringLiteral("ann@example.com")));
    EXPECT_EQ(Opened, QStringList{QStringLiteral("mailto:ann@example.com")});
}

TEST_F(WebBrowserTest, ALinkIsCheckedAgainAtTheClick)
{
    for (const char* address :
         {"javascript:alert(1)", "file:///etc/passwd", "tel:1", "data:text/html,x", "/etc/passwd"})
        Q_EMIT Page().anchorClicked(QUrl(QLatin1String(address)));
    EXPECT_EQ(Opened, QStringList());
}

TEST_F(WebBrowserTest, HoveringTellsTheRealTarget)
{
    QStringList hovered;
    QObject::connect(&Pane, &WebBrowser::LinkHovered, &Pane, [&](const QString& address) { hovered.append(address); });
    ShowHtml("<p><a href='http://evil.example.net/x'>http://bank.example.com</a><p>other");
    hovered.clear();
    QTest::mouseMove(Page().viewport(), PlaceOf(QStringLiteral("bank")));
    QTest::mouseMove(Page().viewport(), PlaceOf(QStringLiteral("other")));
    EXPECT_EQ(hovered, (QStringList{QStringLiteral("http://evil.example.net/x"), QString()}));
}

TEST_F(WebBrowserTest, AVeryLongMessageShowsItsBeginningAndAllOfItOnRequest)
{
    QString html = QStringLiteral("<p>start</p>");
    while (html.size() < 10 * 1024 * 1024 - 100)
        html += QStringLiteral("<!-- ") + QString(60'000, u'x') + QStringLiteral("--><p>") +
                QStringLiteral("words ").repeated(400);
    html += QStringLiteral("<p>the end");
    QElapsedTimer timer;
    timer.start();
    Pane.ShowHTML(html);
    EXPECT_LT(timer.elapsed(), 20'000);
    EXPECT_EQ(Notice(), QStringLiteral("This message is very long (10 MB); the beginning is shown."));
    EXPECT_TRUE(Text().startsWith(QStringLiteral("start")));
    EXPECT_FALSE(Text().contains(QStringLiteral("the end")));
    ASSERT_TRUE(Button("cmdShowAll").isVisible());
    Click("cmdShowAll");
    EXPECT_TRUE(Text().endsWith(QStringLiteral("the end")));
    EXPECT_EQ(Ui.BusyCount(), 1);
    EXPECT_FALSE(Button("cmdShowAll").isVisible());
    EXPECT_EQ(Notice(), QString());
}

TEST_F(WebBrowserTest, AVeryLongTextShowsItsBeginningAndAllOfItOnRequest)
{
    const QString text = QStringLiteral("line of text\n").repeated(50'000) + QStringLiteral("the end");
    Pane.ShowText(text);
    EXPECT_EQ(Notice(), QStringLiteral("This message is very long (634.8 kB); the beginning is shown."));
    EXPECT_LT(Text().size(), text.size());
    Click("cmdShowAll");
    EXPECT_EQ(Text(), text);
}

TEST_F(WebBrowserTest, ABombShowsItsTextInBoundedTime)
{
    QElapsedTimer timer;
    timer.start();
    Pane.ShowHTML(QStringLiteral("<div>").repeated(200'000) + QStringLiteral("the end"));
    EXPECT_EQ(Notice(), QStringLiteral("This message is very long (976.6 kB); the beginning is shown. This page is "
                                       "built in an unusual way; only its text is shown."));
    Click("cmdShowAll");
    EXPECT_EQ(Notice(), QStringLiteral("This page is built in an unusual way; only its text is shown."));
    EXPECT_TRUE(Text().contains(QStringLiteral("the end")));
    Pane.ShowHTML(QStringLiteral("<table><tr><td>").repeated(12) + QStringLiteral("word ").repeated(20'000));
    Pane.ShowHTML(QString(10'000'000, u'w'));
    Pane.ShowText(QString(10'000'000, u'w'));
    Pane.grab();
    EXPECT_LT(timer.elapsed(), 40'000);
}

TEST_F(WebBrowserTest, InADarkThemeAMailStandsOnALightGroundUntilTheUserAsks)
{
    Pane.setPalette(DarkPalette());
    ShowHtml("<p>Hello <a href=http://example.com>there</a> <span style='color:#000'>black</span>");
    EXPECT_EQ(Page().palette().color(QPalette::Base), QColor(Qt::white));
    for (const char* text : {"Hello", "there", "black"})
        EXPECT_GT(ContrastOf(QLatin1String(text)), 4.5) << text;
    EXPECT_EQ(Button("cmdGround").text(), QStringLiteral("Dark page"));
    Click("cmdGround");
    EXPECT_EQ(Page().palette().color(QPalette::Base), DarkPalette().color(QPalette::Base));
    for (const char* text : {"Hello", "there", "black"})
        EXPECT_GT(ContrastOf(QLatin1String(text)), 4.5) << text;
    EXPECT_EQ(Button("cmdGround").text(), QStringLiteral("Light page"));
    ShowHtml("<p>next");
    EXPECT_EQ(Page().palette().color(QPalette::Base), QColor(Qt::white));
}

TEST_F(WebBrowserTest, InALightThemeTheGroundIsNotOffered)
{
    ShowHtml("<p>Hello");
    EXPECT_FALSE(Button("cmdGround").isVisible());
    EXPECT_GT(ContrastOf(QStringLiteral("Hello")), 4.5);
}

TEST_F(WebBrowserTest, PlainTextFollowsTheThemeAndTheFont)
{
    QFont font = Pane.font();
    font.setPointSize(15);
    Pane.setFont(font);
    Pane.ShowText(QStringLiteral("Hello http://example.com"));
    EXPECT_EQ(Page().document()->defaultFont().pointSize(), 15);
    Pane.setPalette(DarkPalette());
    EXPECT_EQ(Page().palette().color(QPalette::Base), DarkPalette().color(QPalette::Base));
    EXPECT_GT(ContrastOf(QStringLiteral("Hello")), 4.5);
    EXPECT_GT(ContrastOf(QStringLiteral("http")), 4.5);
    EXPECT_FALSE(Button("cmdGround").isVisible());
}

TEST_F(WebBrowserTest, ControlAndPlusMakeTheTextLarger)
{
    ShowHtml("<p style='font-size:12pt'>Hello");
    const auto size = [this] { return Page().document()->find(QStringLiteral("Hello")).charFormat().fontPointSize(); };
    EXPECT_NEAR(size(), 12, 0.05);
    QTest::keyClick(&Page(), Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_NEAR(size(), 13.2, 0.05);
    QTest::keyClick(&Page(), Qt::Key_Minus, Qt::ControlModifier);
    QTest::keyClick(&Page(), Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_NEAR(size(), 10.9, 0.05);
    QTest::keyClick(&Page(), Qt::Key_0, Qt::ControlModifier);
    EXPECT_NEAR(size(), 12, 0.05);
}

TEST_F(WebBrowserTest, APageBeginsAtItsTop)
{
    Pane.ShowHTML(QStringLiteral("<p>x").repeated(500));
    Page().verticalScrollBar()->setValue(1000);
    Pane.ShowHTML(QStringLiteral("<p>y").repeated(500));
    EXPECT_EQ(Page().verticalScrollBar()->value(), 0);
}

TEST_F(WebBrowserTest, AScreenReaderKnowsTheText)
{
    EXPECT_EQ(Page().accessibleName(), QStringLiteral("Message text"));
    EXPECT_EQ(Pane.focusProxy(), &Page());
}
