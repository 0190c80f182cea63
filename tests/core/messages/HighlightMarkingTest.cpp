// SPDX-License-Identifier: Apache-2.0
#include "messages/HighlightMarking.h"

#include "common/clsFont.h"

#include <gtest/gtest.h>

namespace
{
const HighlightTags Stars = {QStringLiteral("<*"), QStringLiteral("*>")};

clsFont StationFont()
{
    clsFont font;
    font.Name = QStringLiteral("Tahoma");
    font.Size = 3;
    font.Colour = 255;
    font.Bold = true;
    return font;
}

QString Marked(const char16_t* text, const char16_t* word)
{
    QString body = QString::fromUtf16(text);
    MarkHighlightWord(body, QString::fromUtf16(word), Stars);
    return body;
}
} // namespace

TEST(HighlightTagsTest, TheDefaultFontOfAStation)
{
    const HighlightTags tags = MakeHighlightTags(StationFont());
    EXPECT_EQ(tags.Start, QStringLiteral("<font face = \"Tahoma\" size = \"3\" color = \"#FF00\"><b>"));
    EXPECT_EQ(tags.End, QStringLiteral("</b></font>"));
}

TEST(HighlightTagsTest, ColourPartsStandAsShortAsTheyCome)
{
    clsFont font;
    font.Colour = 0x0A05C8; // red C8, green 05, blue 0A
    EXPECT_EQ(MakeHighlightTags(font).Start, QStringLiteral("<font color = \"#C85A\">"));
}

TEST(HighlightTagsTest, ABlackFontWithoutNameAndSizeOpensABareTag)
{
    const HighlightTags tags = MakeHighlightTags(clsFont());
    EXPECT_EQ(tags.Start, QStringLiteral("<font>"));
    EXPECT_EQ(tags.End, QStringLiteral("</font>"));
}

TEST(HighlightTagsTest, StylesNestInTheirOrder)
{
    clsFont font;
    font.Colour = -1;
    font.Bold = font.Italic = font.Underline = font.Strikethrough = true;
    const HighlightTags tags = MakeHighlightTags(font);
    EXPECT_EQ(tags.Start, QStringLiteral("<b><i><u><strike>"));
    EXPECT_EQ(tags.End, QStringLiteral("</strike></u></i></b>"));
}

TEST(HighlightTagsTest, NoFontAndNoStyleGiveNoTags)
{
    clsFont font;
    font.Colour = -1;
    EXPECT_EQ(MakeHighlightTags(font).Start, QString());
    EXPECT_EQ(MakeHighlightTags(font).End, QString());
}

TEST(HighlightMarkingTest, TheHitKeepsItsCase)
{
    EXPECT_EQ(Marked(u"A Prize and a PRIZE", u"prize"), QStringLiteral("A <*Prize*> and a <*PRIZE*>"));
}

TEST(HighlightMarkingTest, AWordIsMarkedInsideALongerOneAndInsideMarkup)
{
    EXPECT_EQ(Marked(u"<a href=\"win\">winner</a>", u"win"), QStringLiteral("<a href=\"<*win*>\"><*win*>ner</a>"));
}

TEST(HighlightMarkingTest, AHitDirectlyBehindAHitIsPassedOver)
{
    EXPECT_EQ(Marked(u"abab ab", u"ab"), QStringLiteral("<*ab*>ab <*ab*>"));
}

TEST(HighlightMarkingTest, TheEmptyWordIsFoundBeforeEachCharacter)
{
    EXPECT_EQ(Marked(u"ab", u""), QStringLiteral("<**>a<**>b"));
    QString empty;
    EXPECT_EQ(MarkHighlightWord(empty, QString(), Stars), HighlightResult::NotFound);
}

TEST(HighlightMarkingTest, WithoutTagsTheBodyStaysAndTheHitCounts)
{
    QString body = QStringLiteral("a prize");
    EXPECT_EQ(MarkHighlightWord(body, QStringLiteral("PRIZE"), {}), HighlightResult::Found);
    EXPECT_EQ(body, QStringLiteral("a prize"));
}

TEST(HighlightMarkingTest, AWordThatIsNotThereChangesNothing)
{
    QString body = QStringLiteral("a prize");
    EXPECT_EQ(MarkHighlightWord(body, QStringLiteral("song"), Stars), HighlightResult::NotFound);
    EXPECT_EQ(body, QStringLiteral("a prize"));
}

TEST(HighlightMarkingTest, ABodyThatWouldGrowBeyondAMessageIsLeftAlone)
{
    QString body(4 * 1024 * 1024, QLatin1Char('x'));
    const HighlightTags longTags = {QString(20, QLatin1Char('<')), QString(20, QLatin1Char('>'))};
    EXPECT_EQ(MarkHighlightWord(body, QString(), longTags), HighlightResult::TooLarge);
    EXPECT_EQ(body.size(), 4 * 1024 * 1024);
}

TEST(HighlightMarkingTest, HoldingAWordIgnoresCaseInAllOfUnicode)
{
    EXPECT_TRUE(HoldsHighlightWord(QStringLiteral("Große ÄNDERUNG"), QStringLiteral("änderung")));
    EXPECT_FALSE(HoldsHighlightWord(QString(), QString()));
}
