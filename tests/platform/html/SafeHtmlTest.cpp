// SPDX-License-Identifier: Apache-2.0
#include "platform/html/SafeHtml.h"

#include "PageChecker.h"
#include "platform/html/Colours.h"

#include <gtest/gtest.h>

namespace
{
SafePage Safe(const char* html)
{
    return MakeSafe(QString::fromUtf8(html));
}
/// What stands within the body.
QString Written(const char* html)
{
    QString page = Safe(html).Html;
    EXPECT_TRUE(page.startsWith(QStringLiteral("<body>")) && page.endsWith(QStringLiteral("</body>")))
        << qPrintable(page);
    return page.mid(6, page.size() - 13);
}
QString Text(const char* text)
{
    return QString::fromUtf8(text);
}
} // namespace

TEST(SafeHtmlTest, PlainMarkupStays)
{
    EXPECT_EQ(Written("<b>b</b> <em>i</em> <u>u</u> <strike>s</strike> H<sub>2</sub>O<br>x<hr>"),
              Text("<b>b</b> <i>i</i> <u>u</u> <s>s</s> H<sub>2</sub>O<br>x<hr>"));
    EXPECT_EQ(Written("<ul><li>a<li>b</ul>"), Text("<ul><li>a</li><li>b</li></ul>"));
    EXPECT_EQ(Written("<section>x</section>"), Text("<div>x</div>"));
}

TEST(SafeHtmlTest, TextIsEscaped)
{
    EXPECT_EQ(Written("a &lt;script&gt; &amp;lt; &quot;"), Text("a &lt;script&gt; &amp;lt; &quot;"));
}

TEST(SafeHtmlTest, CurlyQuotesAndEmojiStay)
{
    EXPECT_EQ(Written("\u201Cquotes\u201D \U0001F600 &#x1F600;"), Text("\u201Cquotes\u201D \U0001F600 \U0001F600"));
}

TEST(SafeHtmlTest, AnOrdinaryPageHasNothingWithheld)
{
    const SafePage page =
        Safe("<html><head><title>t</title><style>p { color: red }</style></head><body><p class=x id=y>"
             "<a href=http://example.com>x</a><a href=#top>y</a></body></html>");
    EXPECT_EQ(page.RemoteContent + page.ActiveContent + page.UnsafeLinks + page.MissingPictures, 0);
    EXPECT_FALSE(page.IsCutShort || page.IsTextOnly);
}

TEST(SafeHtmlTest, EachKindOfActiveContentIsRemovedAndCounted)
{
    for (const char* html : {"<script>x</script>",
                             "<p onclick=x>",
                             "<form></form>",
                             "<iframe src=x></iframe>",
                             "<frameset></frameset>",
                             "<object data=x></object>",
                             "<embed src=x>",
                             "<applet></applet>",
                             "<svg></svg>",
                             "<math></math>",
                             "<a href=javascript:x>y</a>",
                             "<a href=data:x>y</a>",
                             "<a href=vbscript:x>y</a>",
                             "<a href=file:///x>y</a>",
                             "<meta http-equiv=refresh content=0>",
                             "<base href=http://x>",
                             "<template></template>",
                             "<input>",
                             "<select></select>",
                             "<textarea></textarea>",
                             "<button>x</button>",
                             "<img src=javascript:x>",
                             "<p style='width:expression(1)'>",
                             "<body onload=x>",
                             "<canvas></canvas>"}) {
        const SafePage page = Safe(html);
        EXPECT_EQ(page.ActiveContent, 1) << html;
        EXPECT_EQ(page.RemoteContent, 0) << html;
        EXPECT_EQ(PageChecker::Faults(page.Html), QStringList()) << html;
    }
}

TEST(SafeHtmlTest, EachKindOfRemoteContentIsWithheldAndCounted)
{
    for (const char* html :
         {"<img src=http://example.com/x>", "<img src=//example.com/x>", "<img src=x.png>",
          "<link rel=stylesheet href=http://x>", "<style>@import 'http://x'</style>",
          "<style>@font-face{src:url(http://x)}</style>", "<p style='background:url(http://x)'>",
          "<table background=http://x>", "<video src=http://x></video>", "<audio src=http://x></audio>",
          "<img srcset='http://x 2x'>", "<img src=file:///etc/passwd>", "<img src=:/x>"}) {
        const SafePage page = Safe(html);
        EXPECT_EQ(page.RemoteContent, 1) << html;
        EXPECT_EQ(page.ActiveContent, 0) << html;
        EXPECT_EQ(PageChecker::Faults(page.Html), QStringList()) << html;
    }
}

TEST(SafeHtmlTest, ALinkThatGoesKeepsItsText)
{
    EXPECT_EQ(Written("<a href=javascript:x>press</a>"), Text("<span>press</span>"));
    EXPECT_EQ(Written("<a href='tel:+44 1'>call</a>"), Text("<span>call</span>"));
    EXPECT_EQ(Safe("<a href='tel:+44 1'>call</a><a href=/x>y</a>").UnsafeLinks, 2);
    EXPECT_EQ(Written("<a href='HTTP://Example.com/?a=1&amp;b'>x</a>"),
              Text("<a href=\"http://example.com/?a=1&amp;b\">x</a>"));
}

TEST(SafeHtmlTest, OnlyHiddenElementsGoWithTheirContent)
{
    EXPECT_EQ(
        Written("a<script>b</script><style>c</style><noscript>d</noscript><custom>e</custom><template>f</template>"),
        Text("ade"));
    EXPECT_EQ(Written("<form>q <input value=w><button>press</button></form>"), Text("<div>q <span>press</span></div>"));
}

TEST(SafeHtmlTest, ARemotePictureBecomesItsTextOrAMarkThatNamesItsHost)
{
    EXPECT_EQ(Written("<img src=http://example.com/x alt='A \"cat\"'>"),
              Text("<span title=\"Picture at example.com, not shown\">A &quot;cat&quot;</span>"));
    EXPECT_EQ(Written("<img src=http://example.com/x>"),
              Text("<span title=\"Picture at example.com, not shown\">[picture]</span>"));
    EXPECT_EQ(Written("<img src=http://example.com/x width=1 height=1><img src=http://example.com/x alt=''>"),
              QString());
}

TEST(SafeHtmlTest, APictureOfTheMessageStays)
{
    EXPECT_EQ(Written("<img src='cid:a%40b c' width=20 height=9999 onclick=x>"),
              Text("<img src=\"cid:a%40b%20c\" width=\"20\">"));
    SafeHtmlOptions options;
    QStringList asked;
    options.HasPicture = [&](const QString& id) {
        asked.append(id);
        return id == QLatin1String("a@b");
    };
    const SafePage page = MakeSafe(Text("<img src=cid:a%40b><img src=cid:gone alt=there>"), options);
    EXPECT_EQ(asked, (QStringList{QStringLiteral("a@b"), QStringLiteral("gone")}));
    EXPECT_EQ(page.MissingPictures, 1);
    EXPECT_TRUE(page.Html.contains(QStringLiteral(">there<"))) << qPrintable(page.Html);
}

TEST(SafeHtmlTest, ASmallRasterPictureWithinThePageIsHandedOut)
{
    const SafePage page = Safe("<img src='data:image/PNG;base64,AAEC'><img src='data:image/gif;base64,%41%41%45%44'>");
    EXPECT_EQ(page.EmbeddedPictures, (QList<QByteArray>{QByteArray("\0\1\2", 3), QByteArray("\0\1\3", 3)}));
    EXPECT_EQ(page.Html, Text("<body><img src=\"embedded:0\"><img src=\"embedded:1\"></body>"));
}

TEST(SafeHtmlTest, OtherDataPicturesAreWithheld)
{
    for (const QString& source :
         {Text("data:image/svg+xml;base64,AAEC"), Text("data:image/png,x"), Text("data:text/html,x"),
          Text("data:image/png;base64,"), Text("data:"), Text("data:image/png;base64,") + QString(2'000'000, u'A')}) {
        const SafePage page = MakeSafe(QStringLiteral("<img src='%1'>").arg(source));
        EXPECT_TRUE(page.EmbeddedPictures.isEmpty());
        EXPECT_EQ(page.MissingPictures, 1) << qPrintable(source.left(40));
        EXPECT_FALSE(page.Html.contains(QStringLiteral("<img")));
    }
}

TEST(SafeHtmlTest, TheLookOfTheMailStaysWithinReason)
{
    EXPECT_EQ(Written("<font color=red size=5 face='Arial, x(y)'>x</font>"),
              Text("<span style=\"font-size:15.8pt;color:#ff0000;font-family:'Arial';\">x</span>"));
    EXPECT_EQ(Written("<p align=center style='margin:0;color:#123;position:fixed'>x"),
              Text("<div align=\"center\" style=\"color:#112233;margin-top:0px;margin-right:0px;margin-bottom:0px;"
                   "margin-left:0px;\">x</div>"));
    EXPECT_EQ(Safe("<body bgcolor=#000000 text=white>x").Html,
              Text("<body style=\"background-color:#000000;color:#ffffff;\">x</body>"));
}

TEST(SafeHtmlTest, WithoutColoursNoneIsWritten)
{
    SafeHtmlOptions options;
    options.KeepsColours = false;
    const QString html =
        MakeSafe(Text("<body bgcolor=red text=blue><p style='color:red;background:blue'><mark>x</mark>"
                      "<table border=1 bordercolor=red><tr><td bgcolor=red style='border:1px solid red'>y"),
                 options)
            .Html;
    EXPECT_FALSE(html.contains(QStringLiteral("background"))) << qPrintable(html);
    EXPECT_FALSE(html.contains(QStringLiteral(";color"))) << qPrintable(html);
    EXPECT_FALSE(html.contains(QStringLiteral("#ff0000"))) << qPrintable(html);
}

TEST(SafeHtmlTest, MarksOfWordsAreReadOnTheirGround)
{
    SafeHtmlOptions options;
    const auto colourOf = [&options](const char* html) {
        const QString written = MakeSafe(Text(html), options).Html;
        const qsizetype place = written.lastIndexOf(QStringLiteral(";color:#"));
        const qsizetype first = place < 0 ? written.lastIndexOf(QStringLiteral("\"color:#")) : place;
        return first < 0 ? QString() : written.mid(written.indexOf(u'#', first), 7);
    };
    const auto number = [](const QString& colour) { return colour.mid(1).toUInt(nullptr, 16); };
    EXPECT_EQ(colourOf("<font color=red>x</font>"), QStringLiteral("#ff0000")) << "as the mail has it";
    options.MarkGround = 0xFFFFFF;
    for (const char* html : {"<font color=red>x</font>", "<div style='background:#202020'><font color=blue>x</font>"}) {
        const quint32 ground = QString::fromLatin1(html).startsWith(u"<div") ? 0x202020 : 0xFFFFFF;
        EXPECT_GE(Colours::Contrast(number(colourOf(html)), ground), 4.5) << html;
    }
    EXPECT_EQ(colourOf("<font color=#800000>x</font>"), QStringLiteral("#800000")) << "what reads well stays";
    EXPECT_EQ(colourOf("<p style='color:red'>x"), QStringLiteral("#ff0000")) << "and so does all that is no mark";
    options.KeepsColours = false;
    options.MarkGround = 0x1D2023;
    EXPECT_GE(Colours::Contrast(number(colourOf("<font color=red>x</font>")), 0x1D2023), 4.5);
    EXPECT_EQ(colourOf("<font color=black>x</font>"), QString()) << "a grey is the colour of all text";
    EXPECT_EQ(colourOf("<p style='color:red'>x"), QString());
}

TEST(SafeHtmlTest, ParagraphsAndFontsKeepTheirNamesForWhoAsks)
{
    SafeHtmlOptions options;
    options.KeepsParagraphs = true;
    const auto written = [&options](const char* html) { return MakeSafe(Text(html), options).Html; };
    const QString margins = Text("margin-top:12px;margin-bottom:12px;");
    EXPECT_TRUE(written("<p>a<font color=red>b</font>")
                    .contains(Text("<p style=\"%1\">a<font style=\"color:#ff0000;\">b</font></p>").arg(margins)));
    EXPECT_TRUE(written("<ul><li><p>a</ul>").contains(Text("<li><p style=\"%1\">a</p></li>").arg(margins)));
    // A table within a paragraph would end it where the page is read again.
    EXPECT_FALSE(written("<p>a<table><tr><td>b</table>").contains(Text("<p")));
    EXPECT_FALSE(MakeSafe(Text("<p>a<font color=red>b</font>")).Html.contains(Text("<p")));
    EXPECT_FALSE(MakeSafe(Text("<p>a<font color=red>b</font>")).Html.contains(Text("<font")));
}

TEST(SafeHtmlTest, TextForAPictureThatIsNotThereCanStillBeRead)
{
    EXPECT_FALSE(Safe("<div style='background:url(http://x)'><p style='color:white'>x")
                     .Html.contains(QStringLiteral("#ffffff")));
    EXPECT_TRUE(Safe("<div style='background:#000 url(http://x)'><p style='color:white'>x")
                    .Html.contains(QStringLiteral("#ffffff")));
}

TEST(SafeHtmlTest, ALinkOnADarkGroundCanBeRead)
{
    EXPECT_TRUE(Safe("<div bgcolor=#102040><a href=http://x.example>x</a>")
                    .Html.contains(QStringLiteral("style=\"color:#9cc3ff;\">x</a>")));
}

TEST(SafeHtmlTest, SizesFollowTheScale)
{
    SafeHtmlOptions options;
    options.Scale = 2;
    EXPECT_TRUE(
        MakeSafe(Text("<p style='font-size:12pt'>x"), options).Html.contains(QStringLiteral("font-size:24.0pt")));
}

TEST(SafeHtmlTest, BlanksStayInPreformattedText)
{
    EXPECT_TRUE(Safe("<pre>a  b\n c</pre>").Html.contains(QStringLiteral("white-space:pre-wrap")));
    EXPECT_TRUE(Safe("<pre>a  b\n c</pre>").Html.contains(QStringLiteral("a  b\n c")));
}

TEST(SafeHtmlTest, TablesKeepTheirShape)
{
    EXPECT_EQ(PageChecker::TextOf(Safe("<table><caption>c</caption><tr><th>h<td>d</table>").Html), Text("chd"));
    const QString html =
        Safe("<table width=600 border=1><tr><td colspan=2 width=50% valign=top>a<tr><td>b<td>c</table>").Html;
    EXPECT_EQ(html.count(QStringLiteral("<tr>")), 2);
    EXPECT_EQ(html.count(QStringLiteral("<td")), 3);
    EXPECT_TRUE(html.contains(QStringLiteral("<td colspan=\"2\" width=\"50%\" valign=\"top\">"))) << qPrintable(html);
}

TEST(SafeHtmlTest, ARowWithMoreColumnsThanThePaneTakesIsCutAndSaysSo)
{
    const SafePage page = MakeSafe(QStringLiteral("<table><tr>") + QStringLiteral("<td>x").repeated(500));
    EXPECT_EQ(page.Html.count(QStringLiteral("<td")), 100);
    EXPECT_TRUE(page.IsCutShort);
}

TEST(SafeHtmlTest, APageThatIsCutIsWholeAndSaysSo)
{
    SafeHtmlOptions options;
    options.MaxCharacters = 40;
    const SafePage page =
        MakeSafe(QStringLiteral("<div><b>") + QString::fromUcs4(U"\U0001F600").repeated(100), options);
    EXPECT_TRUE(page.IsCutShort);
    EXPECT_TRUE(page.Html.endsWith(QStringLiteral("\U0001F600</b></div></body>"))) << qPrintable(page.Html);
    options.MaxCharacters = 10'000;
    EXPECT_FALSE(MakeSafe(QStringLiteral("<p>short"), options).IsCutShort);
}

TEST(SafeHtmlTest, NothingIsAPageToo)
{
    EXPECT_EQ(Safe("").Html, Text("<body></body>"));
    EXPECT_EQ(PageChecker::Faults(Safe("").Html), QStringList());
}

TEST(SafeHtmlTest, RightToLeftStays)
{
    EXPECT_EQ(Written("<div dir=rtl>x</div><div style='direction:rtl'>y</div>"),
              Text("<div dir=\"rtl\">x</div><div dir=\"rtl\">y</div>"));
}
