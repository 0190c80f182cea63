// Whole pages made safe, and the style sheets that they may keep.

#include "platform/html/SafeDocument.h"

#include "platform/html/StyleFilter.h"

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

TEST(SafeDocumentTest, APageBuiltToBeTooMuchIsItsText)
{
    const SafeDocument document = MakeDocumentSafe(QStringLiteral("<div>").repeated(5000) + QStringLiteral("Words"));
    EXPECT_TRUE(document.IsTextOnly);
    EXPECT_TRUE(document.Html.contains(QStringLiteral("Words")));
    EXPECT_TRUE(document.Html.contains(QStringLiteral("Content-Security-Policy")));
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

TEST(StyleFilterTest, ASheetOfBracketsEnds)
{
    EXPECT_EQ(StyleFilter::Sheet(QStringLiteral("{").repeated(20000)), QString());
    EXPECT_EQ(StyleFilter::Sheet(QStringLiteral("@media print {").repeated(2000)).count(u'{'),
              StyleFilter::Sheet(QStringLiteral("@media print {").repeated(2000)).count(u'}'));
    EXPECT_EQ(StyleFilter::Sheet(QStringLiteral("}").repeated(20000)), QString());
}
