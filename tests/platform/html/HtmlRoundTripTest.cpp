// SPDX-License-Identifier: Apache-2.0
#include "platform/html/HtmlRoundTrip.h"

#include "ParsingCases.h"
#include "platform/html/HtmlDocument.h"
#include "platform/html/HtmlMarkup.h"
#include "platform/html/HtmlNodes.h"

#include <gtest/gtest.h>

namespace
{
bool ParsesToItself(const QString& body)
{
    HtmlNodes nodes;
    nodes.ParsePage(QStringLiteral("<body>") + body);
    return ParsesToItself(nodes.Body());
}

/// What a page says of its tree beyond its markup: the texts, each by itself.
QString Shape(const HtmlNode* top)
{
    QString shape;
    for (const HtmlNode* node = top->First; node != nullptr; node = NextNode(node, top)) {
        qsizetype depth = 0;
        for (const HtmlNode* above = node->Parent; above != top; above = above->Parent)
            ++depth;
        shape += QString(depth, u' ') + node->Name + u'|' + node->Text + u'\n';
    }
    return shape;
}

/// Whether it is said to parse to itself. Where it is, it does.
bool IsKept(const QString& page)
{
    HtmlNodes nodes;
    nodes.ParsePage(page);
    if (!ParsesToItself(nodes.Body()))
        return false;
    QString markup;
    HtmlMarkup::AppendWithin(nodes.Body(), &markup);
    HtmlNodes again;
    again.ParseFragment(markup, again.Body(), again.Body(), nullptr);
    QString markupAgain;
    HtmlMarkup::AppendWithin(again.Body(), &markupAgain);
    EXPECT_EQ(markupAgain, markup) << qPrintable(page);
    EXPECT_EQ(Shape(again.Body()), Shape(nodes.Body())) << qPrintable(page);
    return true;
}

/// The body of a document, after one with that page was put behind its own content.
QString Appended(const QString& page)
{
    HtmlDocument main;
    main.Write(QStringLiteral("<p>first</p>"));
    HtmlDocument one;
    one.Write(page);
    main.Body().AppendBodyOf(std::move(one));
    return main.Body().InnerHTML();
}
} // namespace

TEST(HtmlRoundTripTest, OrdinaryPagesParseToThemselves)
{
    const char* const bodies[] = {
        "",
        "plain &amp; text&nbsp;",
        "<h1>Head</h1><p>a <b>b <i>c</i></b><br>d <a href=\"x\">e</a></p><hr>",
        "<div><ul><li>a<ul><li>b</ul><li>c<p>d</p></ul></div>",
        "<table><tr><td>a</td><td><p>b</p><table><tr><th>c</table></table>",
        "<table>\n<tbody>\n<tr>\n<td>a</td>\n</tr>\n</tbody>\n</table>",
        "<a href=x><div>block in a link</div></a>",
        "<b><b><b><b><b>x</b></b></b></b></b> y",
        "<font color=red><table><tr><td>x</table>y</font>",
        "<p>one<div>two<p>three</div>",
    };
    for (const char* body : bodies) {
        EXPECT_TRUE(ParsesToItself(QLatin1String(body))) << body;
        EXPECT_TRUE(IsKept(QStringLiteral("<body>") + QLatin1String(body))) << body;
    }
}

TEST(HtmlRoundTripTest, TreesThatTheirMarkupDoesNotGiveAreFound)
{
    const char* const bodies[] = {
        "<a>x<table><tr><td><a>y</table>",        // a link within a link
        "<p><object><p>x</object></p>",           // something unknown
        "<table><tr><td>x</td></tr><caption>y",   // a part that is not looked into
        "<h1><div><h2>x</h2></div></h1>",         // a heading within a heading
        "a&#13;b",                                // a carriage return, which would become a line feed
        "<p title='a&#13;b'>x",                   // in a value, too
        "<!-- comment -->x",                      // a comment may end early
        "<svg><p>x",                              // another namespace
        "<form><p>x</form>",                      // the parser remembers forms
        "<li>x",                                  // an item without its list
        "<b><p>x</b>y</p><script>1 < 2</script>", // a raw text
    };
    for (const char* body : bodies)
        EXPECT_FALSE(ParsesToItself(QLatin1String(body))) << body;
    // Characters that a reference gives and that are read as others by themselves.
    for (const char* number : {"1", "8", "11", "14", "127", "x81", "xFDD0", "xFFFE", "x1FFFF", "x10FFFE", "xFEFF"}) {
        EXPECT_FALSE(ParsesToItself(QStringLiteral("a&#%1;b").arg(QLatin1String(number)))) << number;
        EXPECT_FALSE(ParsesToItself(QStringLiteral("<p title='a&#%1;b'>x").arg(QLatin1String(number)))) << number;
    }
    for (const char* number : {"9", "10", "12", "xA0", "xE000", "xFFFD", "x1F4FB", "x1FFFD"})
        EXPECT_TRUE(IsKept(QStringLiteral("<body>a&#%1;b").arg(QLatin1String(number)))) << number;
    EXPECT_FALSE(ParsesToItself(QStringLiteral("<i>").repeated(200) + QStringLiteral("deep")));
    EXPECT_TRUE(ParsesToItself(QStringLiteral("<i>").repeated(50) + QStringLiteral("deep")));
    HtmlNodes frames;
    frames.ParsePage(QStringLiteral("<frameset></frameset>"));
    EXPECT_FALSE(ParsesToItself(frames.Body()));
}

TEST(HtmlRoundTripTest, EveryParsingCaseThatIsSaidToKeepDoes)
{
    int kept = 0;
    for (const char* file : {"parsing.txt", "innertext.txt"}) {
        for (const ParsingCase& one : ParsingCasesOf(file))
            kept += IsKept(one.Markup) ? 1 : 0;
    }
    EXPECT_GE(kept, 60);
}

TEST(HtmlRoundTripTest, ABodyIsAppendedAsItsMarkupWouldBe)
{
    int moved = 0;
    for (const ParsingCase& one : ParsingCasesOf("parsing.txt")) {
        HtmlDocument main;
        main.Write(QStringLiteral("<p>first</p>"));
        HtmlDocument page;
        page.Write(one.Markup);
        main.Body().InsertAdjacentHTML(QStringLiteral("beforeEnd"), page.Body().InnerHTML());
        EXPECT_EQ(Appended(one.Markup), main.Body().InnerHTML()) << qPrintable(one.Markup);
        moved += IsKept(one.Markup) ? 1 : 0;
    }
    EXPECT_GE(moved, 20);
}

TEST(HtmlRoundTripTest, WhatWasAppendedIsPartOfItsNewDocument)
{
    HtmlDocument main;
    for (int i = 0; i < 3; ++i) {
        HtmlDocument one;
        one.Write(QStringLiteral("<title>t</title><body><p>number %1</p><i>x</i>").arg(i));
        main.Body().AppendBodyOf(std::move(one));
    }
    ASSERT_EQ(main.Body().All().size(), 6U);
    main.Body().All()[2].SetInnerHTML(QStringLiteral("changed"));
    EXPECT_EQ(main.Body().InnerText(), QStringLiteral("number 0\n\nx\n\nchanged\n\nx\n\nnumber 2\n\nx"));
    HtmlElement paragraph = main.Body().All()[4];
    HtmlDocument other;
    other.Write(QStringLiteral("<b>y</b>"));
    paragraph.AppendBodyOf(std::move(other));
    EXPECT_EQ(paragraph.InnerHTML(), QStringLiteral("number 2<b>y</b>"));
    HtmlElement none;
    none.AppendBodyOf(HtmlDocument());
    EXPECT_TRUE(none.IsNull());
}

TEST(HtmlRoundTripTest, OddDocumentsAreAppendedLikeAnyMarkup)
{
    HtmlDocument twice;
    twice.Write(QStringLiteral("<p>a</p>"));
    twice.Body().AppendBodyOf(std::move(twice));
    EXPECT_EQ(twice.Body().InnerHTML(), QStringLiteral("<p>a</p><p>a</p>"));

    HtmlDocument frames;
    frames.Write(QStringLiteral("<frameset></frameset>"));
    HtmlDocument one;
    one.Write(QStringLiteral("<p>a</p>"));
    frames.Body().AppendBodyOf(std::move(one));
    EXPECT_EQ(frames.Body().InnerHTML(), QString());

    HtmlDocument deep;
    deep.Write(QStringLiteral("<div>").repeated(2000) + QStringLiteral("far &amp; down"));
    ASSERT_TRUE(deep.IsTextOnly());
    HtmlDocument main;
    main.Body().AppendBodyOf(std::move(deep));
    EXPECT_EQ(main.Body().InnerText(), QStringLiteral("far & down"));

    HtmlDocument picture;
    picture.Write(QStringLiteral("<img>"));
    picture.Body().All().front().SetInnerHTML(QStringLiteral("<i>x</i>"));
    HtmlDocument other;
    other.Body().AppendBodyOf(std::move(picture));
    EXPECT_EQ(other.Body().All().size(), 1U);
}

TEST(HtmlRoundTripTest, ADocumentWhoseBodyWasTakenMayBeWrittenAnew)
{
    HtmlDocument main;
    HtmlDocument one;
    for (const char* text : {"<p>a</p>", "<p>b</p>"}) {
        one.Write(QLatin1String(text));
        main.Body().AppendBodyOf(std::move(one));
        EXPECT_EQ(one.Body().InnerHTML(), QString());
    }
    EXPECT_EQ(main.Body().InnerHTML(), QStringLiteral("<p>a</p><p>b</p>"));
}
