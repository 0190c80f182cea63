// SPDX-License-Identifier: Apache-2.0
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

TEST(SearchFoldTest, AnApostropheIsFoundInWhateverFormItWasWritten)
{
    for (const char* word : {"can’t", "can‘t", "canʼt", "can´t", "can`t", "can′t", "can＇t", "CAN‛T"})
        EXPECT_EQ(Folded(word), QStringLiteral("can't")) << word;
    EXPECT_EQ(Folded("’Ōlelo Hawaiʻi"), QStringLiteral("'olelo hawai'i"));
}

TEST(SearchFoldTest, QuotationMarksAreFoundInWhateverFormTheyWereWritten)
{
    for (const char* words : {"“Quay”", "„Quay“", "«Quay»", "‟Quay”", "＂Quay＂", "″Quay″"})
        EXPECT_EQ(Folded(words), QStringLiteral("\"quay\"")) << words;
    EXPECT_EQ(Folded("‹Quay›"), QStringLiteral("'quay'"));
}

TEST(SearchFoldTest, DashesBlanksAndEllipsesAreThoseOfTheKeyboard)
{
    for (const char* words : {"9–5", "9—5", "9‑5", "9‐5", "9−5", "9―5", "9－5"})
        EXPECT_EQ(Folded(words), QStringLiteral("9-5")) << words;
    for (const char* words : {"a\u00a0b", "a\u202fb", "a\u2009b", "a\u2003b", "a\u3000b"})
        EXPECT_EQ(Folded(words), QStringLiteral("a b")) << words;
    EXPECT_EQ(Folded("well…"), QStringLiteral("well..."));
}

TEST(SearchFoldTest, TheFormsOfAMarkAreThoseThatStandForIt)
{
    for (const QChar mark : {u'\'', u'"', u'-', u' '}) {
        const QString forms = SearchFold::FormsOfMark(mark);
        EXPECT_GT(forms.size(), 5);
        EXPECT_EQ(forms.front(), mark);
        for (const QChar form : forms) {
            EXPECT_EQ(SearchFold::KeyboardMark(form), mark) << static_cast<int>(form.unicode());
            EXPECT_EQ(SearchFold::Folded(form), QString(mark)) << static_cast<int>(form.unicode());
        }
    }
    EXPECT_EQ(SearchFold::FormsOfMark(u'x'), QStringLiteral("x"));
    EXPECT_EQ(SearchFold::KeyboardMark(u'\u00E9'), QChar(u'\u00E9'));
}

TEST(SearchFoldTest, HalfACharacterIsNoHarm)
{
    const QString broken = QStringLiteral("é") + QChar(0xD83D) + QStringLiteral("b");
    EXPECT_TRUE(SearchFold::Folded(broken).startsWith(u'e'));
    EXPECT_TRUE(SearchFold::Folded(broken).endsWith(u'b'));
}

TEST(SearchFoldTest, FoldingTwiceChangesNothing)
{
    for (const char* text : {"İzmir", "Straße", "Ørsted", "ﬁ", "Ά", "ǅ", "can´t", "well…"})
        EXPECT_EQ(SearchFold::Folded(Folded(text)), Folded(text)) << text;
}
