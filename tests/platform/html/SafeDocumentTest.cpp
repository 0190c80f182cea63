// SPDX-License-Identifier: Apache-2.0

// Whole pages made safe, and the style sheets that they may keep.

#include "platform/html/SafeDocument.h"

#include "platform/html/StyleFilter.h"

#include <QElapsedTimer>
#include <QStringList>

#include <gtest/gtest.h>

namespace
{
const QByteArray Png =
    QByteArray::fromBase64("iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAIAAACQd1PeAAAADElEQVR4nGP4z8AAAAMBAQDJ/pLv"
                           "AAAAAElFTkSuQmCC");

QString BodyOf(const QString& html)
{
    const QString page = MakeDocumentSafe(html).Html;
    const qsizetype start = page.indexOf(u'>', page.indexOf(QStringLiteral("<body"))) + 1;
    return page.sliced(start, page.lastIndexOf(QStringLiteral("</body>")) - start);
}
} // namespace

TEST(SafeDocumentTest, APageKeepsItsOwnLook)
{
    const SafeDocument document =
        MakeDocumentSafe(QStringLiteral("<html><head><title>A &amp; B</title><style>h1 { color: red }</style></head>"
                                        "<body bgcolor=white class=x><h1 style=\"margin-top: 0px\">T</h1>"
                                        "<table width=\"100%\"><tr><td colspan=2>c</td></tr></table></body></html>"));
    EXPECT_TRUE(document.Html.contains(QStringLiteral("<title>A &amp; B</title>")));
    EXPECT_TRUE(document.Html.contains(QStringLiteral("h1 { color: red }")));
    EXPECT_TRUE(document.Html.contains(QStringLiteral("<body bgcolor=\"white\" class=\"x\">")));
    EXPECT_TRUE(document.Html.contains(QStringLiteral("<h1 style=\"margin-top: 0px\">T</h1>")));
    EXPECT_TRUE(document.Html.contains(QStringLiteral("<table width=\"100%\">")));
    EXPECT_EQ(document.ActiveContent + document.RemoteContent, 0);
}

TEST(SafeDocumentTest, CellsSpanNoMoreThanPagesAreLaidOutWith)
{
    EXPECT_EQ(BodyOf(QStringLiteral("<table><tr><td colspan=100000 rowspan=100000>a</td><th colspan=49>b</th>"
                                    "<td colspan=3>c</td><td colspan=2>d</td></tr>"
                                    "<tr><td colspan=3 rowspan=2>e</td><td colspan=-7 rowspan=x>f</td></tr></table>")),
              QStringLiteral("<table><tbody><tr><td colspan=\"50\" rowspan=\"50\">a</td><th colspan=\"49\">b</th>"
                             "<td>c</td><td>d</td></tr>"
                             "<tr><td colspan=\"3\" rowspan=\"2\">e</td><td>f</td></tr></tbody></table>"));
    EXPECT_EQ(
        BodyOf(QStringLiteral("<table><col span=100000><tr><td>a</td></tr></table>")),
        QStringLiteral("<table><colgroup><col span=\"50\"></colgroup><tbody><tr><td>a</td></tr></tbody></table>"));
}

TEST(SafeDocumentTest, AStyleSheetWithinTheBodyGoes)
{
    EXPECT_FALSE(MakeDocumentSafe(QStringLiteral("<p>x</p><style>p { display: none }</style>"))
                     .Html.contains(QStringLiteral("display")));
}

TEST(SafeDocumentTest, WhatRunsGoesAndIsCounted)
{
    const QStringList hostile = {QStringLiteral("<script>alert(1)</script>"),
                                 QStringLiteral("<p onclick=alert(1)>x"),
                                 QStringLiteral("<a href=\"java\tscript:alert(1)\">x</a>"),
                                 QStringLiteral("<iframe srcdoc=\"<b>alert(1)\">"),
                                 QStringLiteral("<svg onload=alert(1)><a xlink:href=\"javascript:alert(1)\"></svg>"),
                                 QStringLiteral("<form action=x><input value=\"alert(1)\"></form>"),
                                 QStringLiteral("<math><mtext><img src=x onerror=alert(1)></math>"),
                                 QStringLiteral("<meta http-equiv=refresh content=\"0;url=javascript:alert(1)\">")};
    for (const QString& html : hostile) {
        const SafeDocument document = MakeDocumentSafe(html);
        EXPECT_FALSE(document.Html.contains(QStringLiteral("alert"))) << html.toStdString();
        EXPECT_GT(document.ActiveContent, 0) << html.toStdString();
    }
}

TEST(SafeDocumentTest, WhatFetchesGoesAndIsCounted)
{
    const QStringList hostile = {QStringLiteral("<img src=\"http://evil/a\">"),
                                 QStringLiteral("<img src=\"//evil/a\">"),
                                 QStringLiteral("<img src=\"file:///evil\">"),
                                 QStringLiteral("<table background=\"http://evil/a\"><tr><td>x"),
                                 QStringLiteral("<p style=\"background:url(http://evil/a)\">x"),
                                 QStringLiteral("<link rel=stylesheet href=//evil>"),
                                 QStringLiteral("<style>@import '//evil';</style>"),
                                 QStringLiteral("<video poster=http://evil></video>"),
                                 QStringLiteral("<style>p{background:u\\72l(//evil)}</style>")};
    for (const QString& html : hostile) {
        const SafeDocument document = MakeDocumentSafe(html);
        EXPECT_FALSE(document.Html.contains(QStringLiteral("evil"))) << html.toStdString();
        EXPECT_GT(document.RemoteContent, 0) << html.toStdString();
    }
}

TEST(SafeDocumentTest, NoElementFetchesWhateverItIs)
{
    for (const char* html : {"<img srcset=\"//evil/a 2x\">",
                             "<img src=\"\" srcset=\"//evil/a 2x\">",
                             "<image src=//evil>",
                             "<picture><source srcset=//evil><img></picture>",
                             "<iframe src=//evil></iframe>",
                             "<embed src=//evil>",
                             "<frameset><frame src=//evil></frameset>",
                             "<object data=//evil></object>",
                             "<input type=image src=//evil>",
                             "<audio src=//evil></audio>",
                             "<video><source src=//evil></video>",
                             "<bgsound src=//evil>",
                             "<script src=//evil></script>",
                             "<link rel=icon href=//evil>",
                             "<link rel=preload imagesrcset=\"//evil 1x\">",
                             "<link rel=dns-prefetch href=//evil>",
                             "<html manifest=//evil><p>x",
                             "<body background=//evil>x",
                             "<form background=//evil>x</form>",
                             "<applet codebase=//evil></applet>",

                             "<table><tr><td background=//evil>x",
                             "<img src=\"cid:evil\">",
                             "<img src=evil.png>",
                             "<img lowsrc=//evil dynsrc=//evil>",
                             "<a href=\"https://example.org/\" ping=//evil>x</a>",
                             "<template><img src=//evil></template>",
                             "<noscript><img src=//evil></noscript>"}) {
        const SafeDocument document = MakeDocumentSafe(QLatin1String(html));
        EXPECT_FALSE(document.Html.contains(QStringLiteral("evil"))) << html;
        EXPECT_GT(document.RemoteContent + document.ActiveContent, 0) << html;
        EXPECT_FALSE(BodyOf(QLatin1String(html)).contains(QStringLiteral("src"))) << html;
    }
}

TEST(SafeDocumentTest, NoStyleFetchesWhereverItStands)
{
    for (const char* style :
         {"background:url(//evil)", "background:URL('//evil')", "background:\\75\\72\\6c(//evil)",
          "background:u/**/rl(//evil)", "list-style-image:url(//evil)", "cursor:url(//evil),auto",
          "border-image:url(//evil)", "content:url(//evil)", "mask:url(//evil#a)", "behavior:url(//evil)",
          "background:image-set(\"//evil\" 1x)", "background:-webkit-image-set(url(//evil) 1x)",
          "--x:url(//evil);background:var(--x)", "color:red;background:url(//evil", "background:url(\n//evil\n)"}) {
        const QString text = QString::fromLatin1(style);
        for (const QString& html :
             {QStringLiteral("<p style='%1'>x").arg(QString(text).replace(u'\'', QStringLiteral("&#39;"))),
              QStringLiteral("<body style='%1'>x").arg(QString(text).replace(u'\'', QStringLiteral("&#39;"))),
              QStringLiteral("<style>p{%1}</style><p>x").arg(text),
              QStringLiteral("<style>@media print{p{%1}}</style><p>x").arg(text),
              QStringLiteral("<body><style>p{%1}</style>x").arg(text)}) {
            const SafeDocument document = MakeDocumentSafe(html);
            EXPECT_FALSE(document.Html.contains(QStringLiteral("evil"))) << html.toStdString();
            EXPECT_FALSE(document.Html.contains(u'(')) << html.toStdString();
        }
    }
}

TEST(SafeDocumentTest, NoRuleOfASheetFetches)
{
    for (const char* sheet :
         {"@import url(//evil);", "@import '//evil';", "@import\"//evil\"print;", "@IMPORT url(//evil) screen;",
          "@\\69mport url(//evil);", "/**/@import/**/url(//evil);", "@charset 'x';@import url(//evil);",
          "@media print{@import url(//evil);}", "@import url(//evil)", "@font-face{font-family:a;src:url(//evil)}",
          "@namespace url(//evil);", "@page{background:url(//evil)}", "@page :first{@top-left{content:url(//evil)}}",
          "@supports(a:url(//evil)){p{color:red}}", "@document url(//evil){p{color:red}}",
          "p[a='url(//evil)']{color:red}", "p{color:red}}@import url(//evil);", "<!--@import url(//evil);-->",
          "@media print{@media print{@media print{@media print{@media print{p{background:url(//evil)}}}}}}"}) {
        const SafeDocument document =
            MakeDocumentSafe(QStringLiteral("<style>%1</style><p>x").arg(QString::fromLatin1(sheet)));
        EXPECT_FALSE(document.Html.contains(QStringLiteral("evil"))) << sheet;
        EXPECT_GT(document.RemoteContent, 0) << sheet;
    }
}

TEST(SafeDocumentTest, NoDataAddressBringsAPageOfItsOwn)
{
    for (const char* html :
         {"<img src=\"data:image/svg+xml,<svg onload=evil>\">", "<img src=\"data:image/svg+xml;base64,ZXZpbA==\">",
          "<img src=\"data:image/png,evil\">", "<img src=\"data:image/png;base64,ZXZpbA==\">",
          "<img src=\"data:image/png;charset=x;base64,iVBORw0KGgo=\">", "<img src=\"data:,evil\">",
          "<iframe src=\"data:text/html,evil\"></iframe>", "<object data=\"data:image/svg+xml,evil\"></object>",
          "<embed src=\"data:image/svg+xml,evil\">", "<link rel=stylesheet href=\"data:text/css,evil\">",
          "<a href=\"data:text/html,evil\">x</a>", "<p style=\"background:url(data:image/svg+xml,evil)\">x",
          "<style>@import 'data:text/css,evil';</style>", "<video poster=\"data:image/svg+xml,evil\"></video>"}) {
        const SafeDocument document = MakeDocumentSafe(QLatin1String(html));
        EXPECT_FALSE(document.Html.contains(QStringLiteral("evil"))) << html;
        EXPECT_FALSE(document.Html.contains(QStringLiteral("ZXZpbA"))) << html;
        EXPECT_FALSE(BodyOf(QLatin1String(html)).contains(QStringLiteral("data:"))) << html;
        EXPECT_GT(document.RemoteContent + document.ActiveContent, 0) << html;
    }
}

TEST(SafeDocumentTest, NothingSendsAndNothingLeadsElsewhereByItself)
{
    for (const char* html :
         {"<form action=//evil><button>x</button></form>", "<button formaction=//evil>x</button>",
          "<input form=a formaction=//evil>", "<isindex action=//evil>", "<base href=//evil>",
          "<meta http-equiv=refresh content=\"0;url=//evil\">", "<meta http-equiv=' Refresh ' content='1; //evil'>",
          "<svg><a href=//evil><text>x</text></a></svg>", "<svg><use href='//evil#a'/></svg>",
          "<svg><image xlink:href=//evil /></svg>", "<svg><style>@import url(//evil);</style></svg>",
          "<svg><script href=//evil></script></svg>", "<svg><foreignObject><iframe src=//evil></foreignObject></svg>",
          "<svg><set attributeName=href to=//evil /></svg>", "<math><a href=//evil>x</a></math>",
          "<math><annotation-xml encoding=text/html><img src=//evil></annotation-xml></math>"}) {
        const SafeDocument document = MakeDocumentSafe(QLatin1String(html));
        EXPECT_FALSE(document.Html.contains(QStringLiteral("evil"))) << html;
        EXPECT_GT(document.ActiveContent, 0) << html;
        for (const char* element : {"<form", "<button", "<input", "<base", "<svg", "<math", "refresh"})
            EXPECT_FALSE(document.Html.contains(QLatin1String(element), Qt::CaseInsensitive)) << html;
    }
}

TEST(SafeDocumentTest, HandlersOfElementsThatGoAreCountedToo)
{
    for (const char* html :
         {"<img src=x onerror=alert(1)>", "<unknown onclick=alert(1)>x", "<details ontoggle=alert(1)>",
          "<body onload=alert(1)>", "<html onclick=alert(1)>", "<marquee onstart=alert(1)>x",
          "<label ONCLICK=alert(1)>x</label>", "<video onerror=alert(1)></video>"}) {
        const SafeDocument document = MakeDocumentSafe(QLatin1String(html));
        EXPECT_FALSE(document.Html.contains(QStringLiteral("alert"))) << html;
        EXPECT_GT(document.ActiveContent, 0) << html;
    }
}

TEST(SafeDocumentTest, TheOnlyPolicyIsItsOwnAndStandsFirst)
{
    const QString page =
        MakeDocumentSafe(QStringLiteral("<meta http-equiv=Content-Security-Policy content=\"default-src *\">"
                                        "<meta name=referrer content=unsafe-url><title>T</title><style>p{}</style>x"))
            .Html;
    const QString policy = QStringLiteral("<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                                          "style-src 'unsafe-inline'; img-src data:; base-uri 'none'; "
                                          "form-action 'none'\">");
    EXPECT_EQ(page.count(QStringLiteral("Content-Security-Policy")), 1);
    EXPECT_EQ(page.count(QStringLiteral("referrer")), 2); // "no-referrer"
    ASSERT_TRUE(page.contains(policy));
    EXPECT_LT(page.indexOf(policy), page.indexOf(QStringLiteral("<title>")));
    EXPECT_LT(page.indexOf(policy), page.indexOf(QStringLiteral("<style>")));
}

TEST(SafeDocumentTest, TextAndAttributesStayText)
{
    EXPECT_EQ(BodyOf(QStringLiteral("<p title='\"&gt;&lt;script&gt;'>&lt;script&gt;&amp;lt;")),
              QStringLiteral("<p title=\"&quot;&gt;&lt;script&gt;\">&lt;script&gt;&amp;lt;</p>"));
    // Elements whose content a parser reads as text do not turn it into elements.
    for (const char* name : {"noscript", "noembed", "noframes", "xmp", "plaintext", "textarea", "title", "template"}) {
        const QString html = QStringLiteral("<div><%1><img src=x onerror=alert(1)></%1>").arg(QLatin1String(name));
        EXPECT_FALSE(BodyOf(html).contains(QStringLiteral("<img"))) << name;
    }
}

TEST(SafeDocumentTest, PicturesWithinThePageStayWhenTheyArePictures)
{
    const QString address = AddressOfPicture(Png);
    EXPECT_TRUE(address.startsWith(QStringLiteral("data:image/png;base64,")));
    EXPECT_EQ(PictureWithin(address), Png);
    EXPECT_TRUE(BodyOf(QStringLiteral("<img src=\"%1\">").arg(address)).contains(address));
    const QByteArray svg("<svg xmlns='http://www.w3.org/2000/svg'><script>alert(1)</script></svg>");
    for (const char* kind : {"svg+xml", "png"}) {
        const QString hidden =
            QStringLiteral("data:image/%1;base64,%2").arg(QLatin1String(kind), QString::fromLatin1(svg.toBase64()));
        EXPECT_FALSE(IsPictureWithin(hidden)) << kind;
        EXPECT_FALSE(BodyOf(QStringLiteral("<img src=\"%1\">").arg(hidden)).contains(QStringLiteral("data:"))) << kind;
    }
    EXPECT_FALSE(IsPictureWithin(QStringLiteral("data:text/html;base64,") + QString::fromLatin1(Png.toBase64())));
    EXPECT_EQ(AddressOfPicture(svg), QString());
}

TEST(SafeDocumentTest, LinksThatAreSafeStay)
{
    EXPECT_EQ(
        BodyOf(QStringLiteral("<a href=\"https://example.org/\">a</a><a href=\"#x\">b</a><a href=\"ftp://x/\">c</a>")),
        QStringLiteral("<a href=\"https://example.org/\">a</a><a href=\"#x\">b</a><a>c</a>"));
}

TEST(SafeDocumentTest, ALinkBesideThePageGoes)
{
    EXPECT_EQ(BodyOf(QStringLiteral("<base href=\"https://example.org/\"><a href=\"x\">a</a><a href=\"/x\">b</a>"
                                    "<a href=\"//example.org/\">c</a><a href=\" #x \">d</a>")),
              QStringLiteral("<a>a</a><a>b</a><a>c</a><a href=\"#x\">d</a>"));
    // A browser would not take the blank of no width away and look for a file of that name.
    EXPECT_EQ(BodyOf(QStringLiteral("<a href=\"&#x200B;#x\">e</a>")), QStringLiteral("<a>e</a>"));
}

TEST(SafeDocumentTest, TextAloneIsWholeHoweverLongItIs)
{
    const QString deep = QStringLiteral("<div>").repeated(2000);
    const SafeDocument words = MakeDocumentSafe(deep + QStringLiteral("word &amp; &eacute;\n").repeated(20'000));
    EXPECT_TRUE(words.IsTextOnly);
    EXPECT_EQ(words.Html.count(QStringLiteral("word &amp; \u00E9")), 20'000);
    // One word, longer than a piece, of characters that take two places each.
    const SafeDocument word = MakeDocumentSafe(deep + u'x' + QStringLiteral("\U0001F4FB").repeated(120'000) + u'y');
    EXPECT_EQ(word.Html.count(QStringLiteral("\U0001F4FB")), 120'000);
    EXPECT_FALSE(word.Html.contains(QChar::ReplacementCharacter));
}

TEST(SafeDocumentTest, APageBuiltToBeTooMuchIsItsText)
{
    const SafeDocument document = MakeDocumentSafe(QStringLiteral("<div>").repeated(5000) + QStringLiteral("Words"));
    EXPECT_TRUE(document.IsTextOnly);
    EXPECT_TRUE(document.Html.contains(QStringLiteral("Words")));
    EXPECT_TRUE(document.Html.contains(QStringLiteral("Content-Security-Policy")));
}

TEST(SafeDocumentTest, DepthThatTheTagsHideIsFoundInTheTree)
{
    // For HTML "<!-->" is a whole comment; for who looks for its end the page's tags are all within it.
    for (const char* hiding : {"<!-->", "<!--->", "<!-- --!>", ""}) {
        const SafeDocument document = MakeDocumentSafe(
            QLatin1String(hiding) + QStringLiteral("<table><tr><td>").repeated(3000) + QStringLiteral("the end"));
        EXPECT_TRUE(document.IsTextOnly) << hiding;
        EXPECT_EQ(document.Html.count(QStringLiteral("<table")), 0) << hiding;
        EXPECT_TRUE(document.Html.contains(QStringLiteral("the end"))) << hiding;
    }
}

TEST(SafeDocumentTest, ManyTagsThatDoNotNestMakeNoPageDeep)
{
    // A link ends the one before it, and so does a button.
    for (const char* tag : {"<a href=\"https://example.org/\">x", "<button>x"}) {
        const SafeDocument document = MakeDocumentSafe(QLatin1String(tag).toString().repeated(1500));
        EXPECT_FALSE(document.IsTextOnly) << tag;
    }
}

TEST(SafeDocumentTest, TablesThatWouldTakeTooLongToLayOutBecomeParagraphsAndALineSaysSo)
{
    const QString cell = QStringLiteral("<table><caption>title</caption><tr><td>some words");
    const SafeDocument deep = MakeDocumentSafe(cell.repeated(20) + QStringLiteral("the end"));
    EXPECT_FALSE(deep.IsTextOnly);
    EXPECT_GE(deep.FlatTables, 8);
    EXPECT_EQ(deep.Html.count(QStringLiteral("<table")), 20 - deep.FlatTables);
    EXPECT_EQ(deep.Html.count(QStringLiteral("some words")), 20);
    EXPECT_EQ(deep.Html.count(QStringLiteral("title")), 20 + 2); // and the page's own element
    EXPECT_TRUE(deep.Html.contains(QStringLiteral("stand as paragraphs.]")));
    EXPECT_EQ(MakeDocumentSafe(deep.Html).FlatTables, 0);

    const SafeDocument usual = MakeDocumentSafe(cell.repeated(6) + QStringLiteral("the end"));
    EXPECT_EQ(usual.FlatTables, 0);
    EXPECT_FALSE(usual.Html.contains(QStringLiteral("stand as paragraphs")));
}

TEST(SafeDocumentTest, ATableOfFewWordsAndAMillionPlacesBecomesParagraphs)
{
    const auto page = [](int rows, int columns) {
        return QStringLiteral("<table>") + QStringLiteral("<tr><td>a").repeated(rows) + QStringLiteral("<tr>") +
               QStringLiteral("<td>b").repeated(columns) + QStringLiteral("</table>");
    };
    const SafeDocument wide = MakeDocumentSafe(page(1000, 1000));
    EXPECT_EQ(wide.FlatTables, 1);
    EXPECT_EQ(wide.Html.count(QStringLiteral("<table")), 0);
    EXPECT_GE(wide.Html.count(u'b'), 1000) << "no word of it is left out";
    EXPECT_EQ(MakeDocumentSafe(page(1000, 8)).FlatTables, 0) << "a list of a thousand lines is none of those";
}

TEST(SafeDocumentTest, MakingItSafeTwiceChangesNothing)
{
    const QString once =
        MakeDocumentSafe(QStringLiteral("<title>x</title><style>@page { margin: 15mm } p.a > b { color: rgb(1, 2, 3) }"
                                        "</style><p class=a>one <b>two</b><br>three &amp; four"))
            .Html;
    EXPECT_EQ(MakeDocumentSafe(once).Html, once);
}

TEST(StyleFilterTest, DeclarationsThatAreUnderstoodStay)
{
    EXPECT_EQ(StyleFilter::Declarations(
                  QStringLiteral("color:#FF0000; FONT-FAMILY: \"A B\", 'C'; border: 1px solid rgba(0,0,0,.5)")),
              QStringLiteral("color: #FF0000; font-family: \"A B\", 'C'; border: 1px solid rgba(0,0,0,.5)"));
    EXPECT_EQ(StyleFilter::Declarations(QStringLiteral("page-break-before: always")),
              QStringLiteral("page-break-before: always"));
}

TEST(StyleFilterTest, DeclarationsThatReachOutOrOverGo)
{
    for (const char* hostile : {"background: url(http://x)", "background: URL ( x )", "width: expression(alert(1))",
                                "background: u\\72l(x)", "background-image: image-set('x' 1x)", "-moz-binding: x",
                                "behavior: x", "position: fixed", "color: red} body{color: blue", "font-family: \"a",
                                "color: </style><script>", "color: red /* ", "content: 'x'", "x", ""})
        EXPECT_EQ(StyleFilter::Declarations(QLatin1String(hostile)).remove(QStringLiteral("color: red")), QString())
            << hostile;
}

TEST(StyleFilterTest, RulesStayAndOtherAtRulesGo)
{
    EXPECT_EQ(
        StyleFilter::Sheet(
            QStringLiteral("/* a comment */ @charset \"x\"; @import url(x); @page { margin: 15mm }\n"
                           "@media print { p, td.a { color: black } }\n"
                           "@font-face { font-family: x; src: url(y) } h1{color:red;background:url(z)}")),
        QStringLiteral("@page { margin: 15mm }\n@media print {\np, td.a { color: black }\n}\nh1 { color: red }\n"));
    // A selector that is not understood goes with its rule; a rule without its end is none.
    EXPECT_EQ(StyleFilter::Sheet(QStringLiteral("p[style^='x'] { color: red } b { color: blue }")),
              QStringLiteral("b { color: blue }\n"));
    EXPECT_EQ(StyleFilter::Sheet(QStringLiteral("b { color: blue } p { color: red")),
              QStringLiteral("b { color: blue }\n"));
}

TEST(StyleFilterTest, BlanksWithoutEndCostNoMoreThanTheyAre)
{
    const QString declaration = QStringLiteral("color:") + QStringLiteral(" ").repeated(3000) + QStringLiteral("(;");
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(StyleFilter::Declarations(declaration.repeated(300) + QStringLiteral("color: \n red")),
              QStringLiteral("color: red"));
    EXPECT_LT(timer.elapsed(), 1000);
}

TEST(StyleFilterTest, ASheetOfBracketsEnds)
{
    EXPECT_EQ(StyleFilter::Sheet(QStringLiteral("{").repeated(20000)), QString());
    EXPECT_EQ(StyleFilter::Sheet(QStringLiteral("@media print {").repeated(2000)).count(u'{'),
              StyleFilter::Sheet(QStringLiteral("@media print {").repeated(2000)).count(u'}'));
    EXPECT_EQ(StyleFilter::Sheet(QStringLiteral("}").repeated(20000)), QString());
}
