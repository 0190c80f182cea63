// SPDX-License-Identifier: Apache-2.0
#include "platform/html/HtmlDocument.h"

#include "ParsingCases.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <gtest/gtest.h>

#include <functional>

namespace
{
const QString BeforeEnd = QStringLiteral("beforeEnd");

/// The first element of that name, in a page that has one.
HtmlElement Element(HtmlDocument& document, const QString& name)
{
    document.Write(name == QLatin1String("html")       ? QString()
                   : name == QLatin1String("head")     ? QStringLiteral("<head></head>")
                   : name == QLatin1String("colgroup") ? QStringLiteral("<table><colgroup></colgroup></table>")
                   : name == QLatin1String("caption")  ? QStringLiteral("<table><caption></caption></table>")
                   : name.startsWith(u't') && name.size() < 6 && name != QLatin1String("title")
                       ? QStringLiteral("<table><tbody><tr><td></td></tr></tbody></table>")
                       : QStringLiteral("<body><%1></%1>").arg(name));
    if (name == QLatin1String("html"))
        return document.DocumentElement();
    for (const HtmlElement& element : document.DocumentElement().All()) {
        if (element.TagName() == name.toUpper())
            return element;
    }
    return {};
}

QString Parsed(const QString& context, const QString& markup)
{
    HtmlDocument document;
    if (context == QLatin1String("page")) {
        document.Write(markup);
        return document.Html();
    }
    HtmlElement element = context.isEmpty() ? document.Body() : Element(document, context);
    EXPECT_FALSE(element.IsNull()) << qPrintable(context);
    element.SetInnerHTML(markup);
    return element.InnerHTML();
}

QString TextOf(const QString& markup)
{
    HtmlDocument document;
    document.Body().SetInnerHTML(QStringLiteral("<div></div>"));
    HtmlElement element = document.Body().All().front();
    element.SetInnerHTML(markup);
    return element.InnerText();
}

HtmlElement Find(HtmlDocument& document, const char* tagName)
{
    for (const HtmlElement& element : document.DocumentElement().All()) {
        if (element.TagName() == QLatin1String(tagName))
            return element;
    }
    return {};
}

QString Body(HtmlDocument& document)
{
    return document.Body().InnerHTML();
}

qint64 Milliseconds(const std::function<void()>& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return timer.elapsed();
}
} // namespace

TEST(HtmlDocumentTest, MarkupBecomesTheTreeThatTheStandardSays)
{
    const std::vector<ParsingCase> cases = ParsingCasesOf("parsing.txt");
    EXPECT_GE(cases.size(), 120U);
    for (const ParsingCase& one : cases)
        EXPECT_EQ(Parsed(one.Context, one.Markup), one.Result)
            << qPrintable(one.Group) << " line " << one.Line << ": " << qPrintable(one.Markup);
}

TEST(HtmlDocumentTest, WhatWasWrittenOutParsesToTheSameTree)
{
    for (const ParsingCase& one : ParsingCasesOf("parsing.txt")) {
        // A plain text never ends, a script's fragment ends nothing, and a link within a link ends that one.
        const bool cannot = one.Result.contains(QStringLiteral("<plaintext>")) ||
                            one.Result.contains(QStringLiteral("<a><a>")) || one.Context == QLatin1String("script");
        if (!cannot) {
            EXPECT_EQ(Parsed(one.Context, one.Result), one.Result) << "line " << one.Line;
        }
    }
}

TEST(HtmlDocumentTest, TheTextIsWhatAReaderSees)
{
    const std::vector<ParsingCase> cases = ParsingCasesOf("innertext.txt");
    EXPECT_GE(cases.size(), 70U);
    for (const ParsingCase& one : cases) {
        EXPECT_EQ(TextOf(one.Markup), one.Result)
            << qPrintable(one.Group) << " line " << one.Line << ": " << qPrintable(one.Markup);
    }
}

TEST(HtmlDocumentTest, TheFirstLineIsTheTextUpToItsFirstLineEnd)
{
    for (const ParsingCase& one : ParsingCasesOf("innertext.txt")) {
        HtmlDocument document;
        document.Body().SetInnerHTML(one.Markup);
        EXPECT_EQ(document.Body().FirstLine(), one.Result.section(u'\n', 0, 0)) << qPrintable(one.Markup);
    }
}

TEST(HtmlDocumentTest, ANewDocumentHasHtmlHeadAndBody)
{
    HtmlDocument document;
    EXPECT_EQ(document.Html(), QStringLiteral("<html><head></head><body></body></html>"));
    EXPECT_EQ(document.DocumentElement().TagName(), QStringLiteral("HTML"));
    EXPECT_EQ(document.Body().TagName(), QStringLiteral("BODY"));
    EXPECT_EQ(document.Title(), QString());
    EXPECT_FALSE(document.IsTextOnly());
}

TEST(HtmlDocumentTest, ANullHandleReadsAsEmptyAndIgnoresBeingSet)
{
    HtmlElement none;
    EXPECT_TRUE(none.IsNull());
    none.SetInnerHTML(QStringLiteral("a"));
    none.InsertAdjacentHTML(BeforeEnd, QStringLiteral("a"));
    EXPECT_EQ(none.TagName() + none.InnerHTML() + none.InnerText() + none.FirstLine(), QString());
    EXPECT_TRUE(none.All().empty());
}

TEST(HtmlDocumentTest, TagNamesAreInUpperCaseButThoseOfOtherNamespaces)
{
    HtmlDocument document;
    document.Body().SetInnerHTML(QStringLiteral("<p><Foo-bar><svg><foreignobject>"));
    QStringList names;
    for (const HtmlElement& element : document.Body().All())
        names.append(element.TagName());
    EXPECT_EQ(names, QStringList({QStringLiteral("P"), QStringLiteral("FOO-BAR"), QStringLiteral("svg"),
                                  QStringLiteral("foreignObject")}));
}

TEST(HtmlDocumentTest, AllElementsComeInDocumentOrderWithoutWhatATemplateHolds)
{
    HtmlDocument document;
    document.Body().SetInnerHTML(QStringLiteral("<ul><li>a<b>b</b><li><i>c</i></ul><template><p>d</template><p>e"));
    QString names;
    for (const HtmlElement& element : document.Body().All())
        names += element.TagName() + u' ';
    EXPECT_EQ(names, QStringLiteral("UL LI B LI I TEMPLATE P "));
}

TEST(HtmlDocumentTest, AnElementThatIsNotShownGivesAllItsText)
{
    HtmlDocument document;
    document.Write(QStringLiteral("<title>a  b</title><script>c < d</script><div hidden> e <p>f</div>"
                                  "<template>g</template>"));
    EXPECT_EQ(Find(document, "TITLE").InnerText(), QStringLiteral("a  b"));
    EXPECT_EQ(Find(document, "SCRIPT").InnerText(), QStringLiteral("c < d"));
    EXPECT_EQ(Find(document, "DIV").InnerText(), QStringLiteral(" e f"));
    EXPECT_EQ(Find(document, "P").InnerText(), QStringLiteral("f"));
    EXPECT_EQ(Find(document, "TEMPLATE").InnerText(), QString());
}

TEST(HtmlDocumentTest, FragmentsGoToTheFourPlacesOfAnElement)
{
    HtmlDocument document;
    document.Body().SetInnerHTML(QStringLiteral("<p>x</p>"));
    HtmlElement paragraph = Find(document, "P");
    paragraph.InsertAdjacentHTML(QStringLiteral("beforeBegin"), QStringLiteral("<i>1</i>a"));
    paragraph.InsertAdjacentHTML(QStringLiteral("AFTERBEGIN"), QStringLiteral("<i>2</i>b"));
    paragraph.InsertAdjacentHTML(QStringLiteral("beforeend"), QStringLiteral("<i>3</i>c"));
    paragraph.InsertAdjacentHTML(QStringLiteral("afterEnd"), QStringLiteral("<i>4</i>d"));
    paragraph.InsertAdjacentHTML(QStringLiteral("elsewhere"), QStringLiteral("<i>5</i>"));
    EXPECT_EQ(Body(document), QStringLiteral("<i>1</i>a<p><i>2</i>bx<i>3</i>c</p><i>4</i>d"));
}

TEST(HtmlDocumentTest, FragmentsOfATableAreParsedAsWhatTheyGoInto)
{
    HtmlDocument document;
    document.Body().SetInnerHTML(QStringLiteral("<table><tr><td>a</table>"));
    Find(document, "TR").InsertAdjacentHTML(BeforeEnd, QStringLiteral("<td>b"));
    Find(document, "TR").InsertAdjacentHTML(QStringLiteral("afterEnd"), QStringLiteral("<tr><td>c"));
    EXPECT_EQ(Body(document), QStringLiteral("<table><tbody><tr><td>a</td><td>b</td></tr><tr><td>c</td></tr></tbody>"
                                             "</table>"));
}

TEST(HtmlDocumentTest, TheHtmlElementTakesFragmentsAsItsBodyWouldAndNothingBesideIt)
{
    HtmlDocument document;
    document.DocumentElement().InsertAdjacentHTML(BeforeEnd, QStringLiteral("<p>a"));
    document.DocumentElement().InsertAdjacentHTML(QStringLiteral("afterEnd"), QStringLiteral("<p>b"));
    document.DocumentElement().InsertAdjacentHTML(QStringLiteral("beforeBegin"), QStringLiteral("<p>c"));
    EXPECT_EQ(document.Html(), QStringLiteral("<html><head></head><body></body><p>a</p></html>"));
}

TEST(HtmlDocumentTest, AFragmentCannotCloseWhatItStandsIn)
{
    HtmlDocument document;
    document.Body().SetInnerHTML(QStringLiteral("<div><table><tr><td></table></div>"));
    Find(document, "TD").SetInnerHTML(QStringLiteral("a</td></tr></table></div></body></html>b<!--"));
    EXPECT_EQ(Body(document), QStringLiteral("<div><table><tbody><tr><td>ab<!----></td></tr></tbody></table></div>"));
}

TEST(HtmlDocumentTest, AnElementThatWasTakenOutReadsOnAsItStood)
{
    HtmlDocument document;
    document.Body().SetInnerHTML(QStringLiteral("<p>a<b>b</b></p>"));
    HtmlElement paragraph = Find(document, "P");
    document.Body().SetInnerHTML(QStringLiteral("c"));
    EXPECT_EQ(paragraph.InnerHTML(), QStringLiteral("a<b>b</b>"));
    paragraph.InsertAdjacentHTML(QStringLiteral("afterEnd"), QStringLiteral("d"));
    paragraph.SetInnerHTML(QStringLiteral("e"));
    EXPECT_EQ(paragraph.InnerText(), QStringLiteral("e"));
    EXPECT_EQ(Body(document), QStringLiteral("c"));
}

TEST(HtmlDocumentTest, WritingInPiecesIsWritingAtOnce)
{
    HtmlDocument document;
    for (const char* piece : {"<tit", "le>a &am", "p; b</ti", "tle><p", ">c<ta", "ble><td>", "d"})
        document.Write(QLatin1String(piece));
    EXPECT_EQ(document.Title(), QStringLiteral("a & b"));
    document.Write(QStringLiteral("e</table>f"));
    EXPECT_EQ(Body(document), QStringLiteral("<p>c<table><tbody><tr><td>de</td></tr></tbody></table>f</p>"));
}

TEST(HtmlDocumentTest, WritingBehindAChangeAddsToTheBody)
{
    HtmlDocument document;
    document.Write(QStringLiteral("<p>a"));
    document.Body().InsertAdjacentHTML(BeforeEnd, QStringLiteral("<p>b"));
    document.Write(QStringLiteral("<p>c"));
    EXPECT_EQ(Body(document), QStringLiteral("<p>a</p><p>b</p><p>c</p>"));
}

TEST(HtmlDocumentTest, TheTitleIsSetInTheHeadOrWhereThePageHasIt)
{
    HtmlDocument document;
    document.SetTitle(QStringLiteral("a & <b>"));
    EXPECT_EQ(document.DocumentElement().InnerHTML(),
              QStringLiteral("<head><title>a &amp; &lt;b&gt;</title></head><body></body>"));
    EXPECT_EQ(document.Title(), QStringLiteral("a & <b>"));
    HtmlDocument other;
    other.Write(QStringLiteral("<title> c\n d </title><title>e</title>"));
    EXPECT_EQ(other.Title(), QStringLiteral("c d"));
    other.SetTitle(QStringLiteral("f"));
    EXPECT_EQ(other.DocumentElement().InnerHTML(),
              QStringLiteral("<head><title>f</title><title>e</title></head><body></body>"));
}

TEST(HtmlDocumentTest, HostileNestingShowsItsTextAndSaysSo)
{
    for (const char* tag : {"<div>", "<b>", "<span><div>", "<table><tr><td>", "<font size=7>", "<svg>", "<ul><li>"}) {
        const QString markup = QString::fromLatin1(tag).repeated(100'000) + QStringLiteral("the end &amp; all");
        HtmlDocument fragment;
        EXPECT_LT(Milliseconds([&] { fragment.Body().SetInnerHTML(markup); }), 20'000) << tag;
        EXPECT_TRUE(fragment.IsTextOnly()) << tag;
        EXPECT_TRUE(fragment.Body().InnerText().endsWith(QStringLiteral("the end & all"))) << tag;
        HtmlDocument page;
        page.Write(QStringLiteral("<title>t</title>") + markup);
        EXPECT_TRUE(page.IsTextOnly()) << tag;
        EXPECT_TRUE(page.Body().InnerText().endsWith(QStringLiteral("the end & all"))) << tag;
    }
}

TEST(HtmlDocumentTest, FormattingThatMultipliesShowsItsText)
{
    QString markup = QStringLiteral("<p>");
    for (int i = 0; i < 900; ++i)
        markup += QStringLiteral("<b x%1>").arg(i);
    markup += QStringLiteral("</p>") + QStringLiteral("<p>a</p>").repeated(3000);
    HtmlDocument document;
    document.Body().SetInnerHTML(markup + QStringLiteral("the end"));
    EXPECT_TRUE(document.IsTextOnly());
    EXPECT_LT(Body(document).size(), 4 * markup.size());
    EXPECT_TRUE(document.Body().InnerText().endsWith(QStringLiteral("the end")));
}

TEST(HtmlDocumentTest, AFragmentThatHadToBecomeItsTextLeavesTheRestOfThePage)
{
    HtmlDocument document;
    document.Body().SetInnerHTML(QStringLiteral("<p>a</p><p>c</p>"));
    Find(document, "P")
        .InsertAdjacentHTML(QStringLiteral("afterEnd"), QStringLiteral("<div>").repeated(5000) + QStringLiteral("b"));
    EXPECT_TRUE(document.IsTextOnly());
    EXPECT_EQ(document.Body().InnerText().simplified(), QStringLiteral("a b c"));
    EXPECT_TRUE(Body(document).startsWith(QStringLiteral("<p>a</p><div style=\"white-space: pre-wrap\">")));
    EXPECT_TRUE(Body(document).endsWith(QStringLiteral("</div><p>c</p>")));
}

TEST(HtmlDocumentTest, AHostilePageInTheHtmlElementStillHasHeadAndBody)
{
    HtmlDocument document;
    document.DocumentElement().SetInnerHTML(QStringLiteral("<div>").repeated(5000) + QStringLiteral("b"));
    EXPECT_EQ(document.Body().InnerText().trimmed(), QStringLiteral("b"));
    EXPECT_TRUE(document.Html().startsWith(QStringLiteral("<html><head></head><body><div ")));
}

TEST(HtmlDocumentTest, ATreeThatIsDeepByManyChangesIsReadWithoutDepthOfItsOwn)
{
    HtmlDocument document;
    HtmlElement inner = document.Body();
    for (int i = 0; i < 1000; ++i) {
        inner.SetInnerHTML(QStringLiteral("<div>").repeated(100));
        inner = inner.All().back();
    }
    inner.SetInnerHTML(QStringLiteral("the end"));
    EXPECT_EQ(document.Body().All().size(), 100'000U);
    EXPECT_EQ(document.Body().InnerText(), QStringLiteral("the end"));
    EXPECT_EQ(Body(document).size(), 100'000 * 11 + 7);
}

TEST(HtmlDocumentTest, AddingToALargePageCostsWhatTheFragmentCosts)
{
    HtmlDocument document;
    const QString fragment = QStringLiteral("<p>a</p>").repeated(20);
    const auto addMany = [&] {
        for (int i = 0; i < 1000; ++i)
            document.Body().InsertAdjacentHTML(BeforeEnd, fragment);
    };
    const qint64 first = Milliseconds(addMany);
    for (int i = 0; i < 8; ++i)
        addMany();
    // The square would be seventeen times as much.
    EXPECT_LT(Milliseconds(addMany), 5 * first + 100);
    EXPECT_EQ(document.Body().All().size(), 200'000U);
}

TEST(HtmlDocumentTest, TheFuzzersFindsAreHarmless)
{
    const QDir folder(QStringLiteral(TOLVA_TEST_DATA "/htmldocument/finds"));
    for (const QString& name : folder.entryList(QDir::Files)) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        HtmlDocument document;
        document.Write(QString::fromUtf8(file.readAll()));
        HtmlDocument again;
        again.Write(document.Html());
        EXPECT_FALSE(again.Body().IsNull()) << qPrintable(name);
    }
}
