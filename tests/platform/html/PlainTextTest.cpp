// SPDX-License-Identifier: Apache-2.0
#include "platform/html/PlainText.h"

#include "PageChecker.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace
{
/// The addresses found, as they stand in the text.
QStringList Found(const char16_t* text)
{
    const QString all = QString::fromUtf16(text);
    QStringList found;
    for (const TextLink& link : FindLinks(all))
        found.append(all.mid(link.Position, link.Length));
    return found;
}
QStringList One(const char* address)
{
    return {QLatin1String(address)};
}
} // namespace

TEST(PlainTextTest, EverythingIsEscaped)
{
    EXPECT_EQ(HtmlOfPlainText(QStringLiteral("<b>\"A&B\"</b>")),
              QStringLiteral("<div style=\"white-space:pre-wrap\">&lt;b&gt;&quot;A&amp;B&quot;&lt;/b&gt;</div>"));
}

TEST(PlainTextTest, LineEndsAndBlanksStay)
{
    EXPECT_EQ(HtmlOfPlainText(QStringLiteral("a  b\r\n\r\n\tc\rd")),
              QStringLiteral("<div style=\"white-space:pre-wrap\">a  b\n\n\tc\nd</div>"));
}

TEST(PlainTextTest, CharactersThatNoTextHasAreLeftOut)
{
    const QString text = QStringLiteral("a\u0001b\uFFFCc\uFDD0d\u007Fe") + QChar(0);
    EXPECT_EQ(EscapedText(text), QStringLiteral("abcde"));
    EXPECT_EQ(CleanText(text), QStringLiteral("abcde"));
}

TEST(PlainTextTest, AnAddressBecomesALink)
{
    EXPECT_EQ(HtmlOfPlainText(QStringLiteral("see http://example.com/?a=1&b=2 now")),
              QStringLiteral("<div style=\"white-space:pre-wrap\">see <a href=\"http://example.com/?a=1&amp;b=2\">"
                             "http://example.com/?a=1&amp;b=2</a> now</div>"));
}

TEST(PlainTextTest, AnAddressEndsBeforeThePunctuationOfItsSentence)
{
    for (const char16_t* text :
         {u"http://example.com/a", u"Look: http://example.com/a.", u"(http://example.com/a)", u"<http://example.com/a>",
          u"\"http://example.com/a\"", u"\u201Chttp://example.com/a\u201D", u"http://example.com/a, and",
          u"[http://example.com/a]", u"http://example.com/a!?", u"http://example.com/a\u2026",
          u"'http://example.com/a'", u"(see http://example.com/a).", u"http://example.com/a\u00A0x",
          u"**http://example.com/a**"})
        EXPECT_EQ(Found(text), One("http://example.com/a")) << qPrintable(QString::fromUtf16(text));
}

TEST(PlainTextTest, ABracketThatIsPartOfTheAddressStays)
{
    EXPECT_EQ(Found(u"(http://example.com/a_(b))"), One("http://example.com/a_(b)"));
    EXPECT_EQ(Found(u"http://example.com/a_(b)_c."), One("http://example.com/a_(b)_c"));
}

TEST(PlainTextTest, AllKindsOfAddressesAreFound)
{
    EXPECT_EQ(
        Found(u"HTTPS://example.com:8080/x#y mailto:a@example.com, www.example.com. Or ann.b+c@mail.example.org!"),
        (QStringList{QStringLiteral("HTTPS://example.com:8080/x#y"), QStringLiteral("mailto:a@example.com"),
                     QStringLiteral("www.example.com"), QStringLiteral("ann.b+c@mail.example.org")}));
    EXPECT_EQ(FindLinks(QStringLiteral("www.example.com")).at(0).Address, QStringLiteral("http://www.example.com"));
    EXPECT_EQ(FindLinks(QStringLiteral("a@example.com")).at(0).Address, QStringLiteral("mailto:a@example.com"));
}

TEST(PlainTextTest, WhatOnlyLooksLikeAnAddressIsNone)
{
    for (const char16_t* text :
         {u"", u"http://", u"https://.", u"mailto:", u"www.", u"www.x", u"@", u"a@", u"@b.c", u"a@b",
          u"xhttp://example.com", u"javascript:alert(1)", u"file:///etc/passwd", u"a@.b", u"a@b..c", u"10 @ 20.5"})
        EXPECT_EQ(Found(text), QStringList()) << qPrintable(QString::fromUtf16(text));
}

TEST(PlainTextTest, ThePageOfAnyTextIsSafe)
{
    for (const char16_t* text : {u"http://example.com/\"onmouseover=alert(1)", u"http://example.com/<script>",
                                 u"</div><script>", u"mailto:a@b.c\"><img src=x onerror=1>", u"&lt;script&gt; &#60;"}) {
        const QString html = HtmlOfPlainText(QString::fromUtf16(text));
        EXPECT_EQ(PageChecker::Faults(html), QStringList());
        EXPECT_EQ(PageChecker::TextOf(html), QString::fromUtf16(text));
    }
}

TEST(PlainTextTest, TenMegabytesTakeBoundedTime)
{
    for (const char* piece : {"a@", "http://a.b/(", "@", "h", "www.", "ann@example.com ", "((((", "mailto:", "word "}) {
        const QString text = QString::fromLatin1(piece).repeated(10'000'000 / static_cast<qsizetype>(qstrlen(piece)));
        QElapsedTimer timer;
        timer.start();
        HtmlOfPlainText(text);
        EXPECT_LT(timer.elapsed(), 30'000) << piece;
    }
}

TEST(PlainTextTest, OnlyWordsLongerThanAnyAddressGetAPlaceToBreak)
{
    qsizetype length = 0;
    const QString ordinary = QString(3000, u'a') + u' ' + QString(3000, u'b');
    EXPECT_EQ(BreakLongWords(ordinary, &length), ordinary);
    length = 0;
    const QString broken = BreakLongWords(QString(7000, u'a'), &length);
    EXPECT_EQ(broken.count(QChar(0x200B)), 2);
    EXPECT_EQ(broken.indexOf(QChar(0x200B)), 3000);
    length = 2999;
    const QString smile = QString::fromUcs4(U"\U0001F600\U0001F600");
    EXPECT_EQ(BreakLongWords(smile, &length), smile.left(2) + QChar(0x200B) + smile.mid(2));
}
