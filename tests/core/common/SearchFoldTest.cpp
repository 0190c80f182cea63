#include "common/SearchFold.h"

#include <gtest/gtest.h>

namespace
{
QString Folded(const char* text)
{
    return SearchFold::Folded(QString::fromUtf8(text));
}
} // namespace

TEST(SearchFoldTest, CaseMakesNoDifference)
{
    EXPECT_EQ(Folded("Ann SMITH"), QStringLiteral("ann smith"));
    EXPECT_EQ(Folded("Straße"), Folded("STRASSE"));
    EXPECT_EQ(Folded("ΑΝΝΑ"), Folded("αννα"));
}

TEST(SearchFoldTest, AccentsMakeNoDifferenceHoweverTheyAreStored)
{
    EXPECT_EQ(Folded("Zoë Müller"), QStringLiteral("zoe muller"));
    EXPECT_EQ(Folded("Zoe\u0308"), QStringLiteral("zoe"));
    EXPECT_EQ(Folded("Ά"), Folded("α"));
    EXPECT_EQ(Folded("İzmir"), QStringLiteral("izmir"));
    EXPECT_EQ(Folded("ızgara"), QStringLiteral("izgara"));
}

TEST(SearchFoldTest, LettersWithABuiltInAccentStandForThePlainOnes)
{
    EXPECT_EQ(Folded("Ørsted"), QStringLiteral("orsted"));
    EXPECT_EQ(Folded("Łódź"), QStringLiteral("lodz"));
    EXPECT_EQ(Folded("Æther Œuvre"), QStringLiteral("aether oeuvre"));
    EXPECT_EQ(Folded("Þór Đại"), QStringLiteral("thor dai"));
}

TEST(SearchFoldTest, FormsOfALetterMakeNoDifference)
{
    EXPECT_EQ(Folded("ﬁrst"), QStringLiteral("first"));
    EXPECT_EQ(Folded("ＡＢＣ１２"), QStringLiteral("abc12"));
}

TEST(SearchFoldTest, InvisibleCharactersAreNotSearched)
{
    EXPECT_EQ(Folded("\u200eAnn\u200f\u00ad"), QStringLiteral("ann"));
}

TEST(SearchFoldTest, WhatIsNoLetterStays)
{
    EXPECT_EQ(Folded("o'neill+x@example.org"), QStringLiteral("o'neill+x@example.org"));
    EXPECT_EQ(Folded("📻 Radio"), QStringLiteral("📻 radio"));
    EXPECT_EQ(Folded(""), QString());
    EXPECT_EQ(Folded("例子"), QStringLiteral("例子"));
}

TEST(SearchFoldTest, HalfACharacterIsNoHarm)
{
    const QString broken = QStringLiteral("é") + QChar(0xD83D) + QStringLiteral("b");
    EXPECT_TRUE(SearchFold::Folded(broken).startsWith(u'e'));
    EXPECT_TRUE(SearchFold::Folded(broken).endsWith(u'b'));
}

TEST(SearchFoldTest, FoldingTwiceChangesNothing)
{
    for (const char* text : {"İzmir", "Straße", "Ørsted", "ﬁ", "Ά", "ǅ"})
        EXPECT_EQ(SearchFold::Folded(Folded(text)), Folded(text)) << text;
}
