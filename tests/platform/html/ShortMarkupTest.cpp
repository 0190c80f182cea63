// SPDX-License-Identifier: Apache-2.0
#include "platform/html/ShortMarkup.h"

#include "ParsingCases.h"
#include "platform/html/HtmlDocument.h"
#include "platform/html/HtmlImport.h"
#include "platform/html/HtmlMarkup.h"
#include "platform/html/HtmlTree.h"

#include <gtest/gtest.h>

namespace
{
const QString Words = QStringLiteral("a lamp that is lit for the lighthouse");

struct Page
{
    bool IsImported;
    QString Markup;
};

Page Parsed(const QString& markup, ShortMarkup::Runs runs)
{
    ShortMarkup shortened(markup, runs);
    HtmlNodes nodes;
    HtmlNodes::RemoveChildren(nodes.Document());
    const HtmlTree tree(shortened.Utf8());
    Page page{HtmlImport(&nodes, &shortened).Page(tree.Root(), nodes.Document()), QString()};
    HtmlMarkup::AppendWithin(nodes.Document(), &page.Markup);
    return page;
}

bool IsShortened(const QString& markup)
{
    return ShortMarkup(markup, ShortMarkup::Runs::Marked).Utf8() != markup.toUtf8();
}

/// The same page, or the word that it has to be parsed as it stands. True for the former.
bool GivesTheSame(const QString& markup)
{
    const Page marked = Parsed(markup, ShortMarkup::Runs::Marked);
    if (!marked.IsImported)
        return false;
    EXPECT_EQ(marked.Markup, Parsed(markup, ShortMarkup::Runs::Kept).Markup) << qPrintable(markup);
    return true;
}

QString WithWords(QString markup)
{
    markup.replace(QLatin1String(">"), u'>' + Words + u' ');
    return markup.replace(QLatin1String(" a"), u' ' + Words + QLatin1String(" a"));
}
} // namespace

TEST(ShortMarkupTest, LongRunsOfWordsAreTwoCharactersEach)
{
    const QString markup = QStringLiteral("<p>%1 &amp; more</p><p>%1</p>").arg(Words);
    const ShortMarkup shortened(markup, ShortMarkup::Runs::Marked);
    EXPECT_EQ(QString::fromUtf8(shortened.Utf8()).size(), markup.size() - 2 * (Words.size() - 2));
    EXPECT_EQ(shortened.Size(), markup.size());
    EXPECT_EQ(ShortMarkup(markup, ShortMarkup::Runs::Kept).Utf8(), markup.toUtf8());
    EXPECT_FALSE(IsShortened(QStringLiteral("<p>a few words</p>")));
}

TEST(ShortMarkupTest, EveryPageOfTheParsingCasesIsTheSameWithItsWordsMarked)
{
    int same = 0;
    const std::vector<ParsingCase> cases = ParsingCasesOf("parsing.txt");
    for (const ParsingCase& one : cases) {
        const QString markup = WithWords(one.Markup);
        same += IsShortened(markup) && GivesTheSame(markup) ? 1 : 0;
    }
    // The rest has words in tags, or words that the parser drops.
    EXPECT_GE(same, static_cast<int>(cases.size()) / 2);
}

TEST(ShortMarkupTest, WordsInTextsCommentsScriptsAndTitlesComeBack)
{
    const char* const around[] = {"%1",
                                  "<p>%1</p>",
                                  "<!-- > %1 -->",
                                  "<script> > %1 </script>",
                                  "<script><!-- <script> > %1 </script> --></script>",
                                  "<style> > %1 </style>",
                                  "<title> > %1 </title>",
                                  "<textarea> %1 </textarea>",
                                  "<table> %1 <tr><td>x</table>",
                                  "<select><option>%1</select>",
                                  "<svg><title>%1</title><![CDATA[ > %1 ]]></svg>",
                                  "<plaintext> %1",
                                  "<b><p>%1</b> %1</p>",
                                  "&lt %1",
                                  "&not %1 &notit; %1",
                                  "one\r\n%1\r\ntwo",
                                  "<pre>\n%1\n\n</pre>"};
    for (const char* text : around) {
        const QString markup = QString::fromLatin1(text).replace(QLatin1String("%1"), Words);
        EXPECT_TRUE(IsShortened(markup)) << text;
        EXPECT_TRUE(GivesTheSame(markup)) << text;
    }
}

TEST(ShortMarkupTest, WordsThatAreNamesOrValuesOrDroppedHaveThePageParsedAsItStands)
{
    const char* const around[] = {"<p title='> %1'>x</p>",
                                  "<p title='> ' %1>x</p>",
                                  "<p title='> ' id= %1>x</p>",
                                  "<frameset> > %1 </frameset>",
                                  "<p title='> ' id= %1 class=\"> <b>x</b>\">",
                                  "x<tr title='> ' id= %1 class=\"> <b>x</b>\">"};
    for (const char* text : around) {
        const QString markup = QString::fromLatin1(text).replace(QLatin1String("%1"), Words);
        EXPECT_TRUE(IsShortened(markup)) << text;
        EXPECT_FALSE(GivesTheSame(markup)) << text;
    }
}

TEST(ShortMarkupTest, APageThatCouldNameAMarkHasNone)
{
    for (const QString& text :
         {QString(QChar(0xE000)), QString(QChar(0xEFFF)), QStringLiteral("&#xE000;"), QStringLiteral("&#x000eFfF"),
          QStringLiteral("&#57344;"), QStringLiteral("&#0061439"), QStringLiteral("&#x10000E000;"),
          QStringLiteral("&#4295024640;"), QStringLiteral("<ISINDEX prompt=x>")}) {
        EXPECT_FALSE(IsShortened(Words + QStringLiteral(" <b>") + text)) << qPrintable(text);
        EXPECT_FALSE(IsShortened(text + QStringLiteral("<b>") + Words)) << qPrintable(text);
    }
    for (const QString& text : {QString(QChar(0xF000)), QStringLiteral("&#8217;"), QStringLiteral("&#xE9;"),
                                QStringLiteral("&#;"), QStringLiteral("&#x"), QStringLiteral("<index>")})
        EXPECT_TRUE(IsShortened(text + QStringLiteral("<b>") + Words)) << qPrintable(text);
}

TEST(ShortMarkupTest, AMarkThatComesBackTwiceOrBrokenIsNoticed)
{
    ShortMarkup shortened(Words, ShortMarkup::Runs::Marked);
    EXPECT_FALSE(shortened.IsComplete());
    const QByteArray mark = shortened.Utf8();
    EXPECT_EQ(shortened.Restored(mark.constData()), Words);
    EXPECT_TRUE(shortened.IsComplete());
    EXPECT_EQ(shortened.Restored(mark.constData()), QString());
    EXPECT_FALSE(shortened.IsComplete());

    ShortMarkup other(Words, ShortMarkup::Runs::Marked);
    EXPECT_EQ(other.Restored(QByteArray(mark + "x").constData()), Words + u'x');
    EXPECT_TRUE(other.IsComplete());
    EXPECT_EQ(other.Restored("x\xEE\x80\x80"), QStringLiteral("x"));
    EXPECT_FALSE(other.IsComplete());
}

TEST(ShortMarkupTest, AMarkThatANumberTooLargeWouldForgeIsNone)
{
    // The parser keeps the lower digits of such a number.
    HtmlDocument document;
    document.Write(QStringLiteral("<p title='> %1 -'>&#x10000E000;&#x10000E000;</p>").arg(Words));
    EXPECT_EQ(document.Body().InnerText(), QString(2, QChar(0xE000)));
    EXPECT_TRUE(document.Html().contains(QStringLiteral("title=\"&gt; %1 -\"").arg(Words)));
}

TEST(ShortMarkupTest, APageThatIsTooLargeOnlyWithMarksIsParsedAsItStands)
{
    QString value = QStringLiteral("\">");
    for (int i = 0; i < 300; ++i)
        value += QStringLiteral("<b x%1>").arg(i);
    value += QStringLiteral("<p>x").repeated(3000);
    HtmlDocument document;
    document.Write(QStringLiteral("<h1>Hello</h1><p title=\"> aaaaaaaaaaaaaa\" alt='-%1'>para</p>").arg(value));
    EXPECT_FALSE(document.IsTextOnly());
    EXPECT_EQ(document.Body().InnerText(), QStringLiteral("Hello\n\npara"));
}
