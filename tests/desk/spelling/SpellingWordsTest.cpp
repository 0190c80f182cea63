// SPDX-License-Identifier: Apache-2.0
#include "spelling/SpellingWords.h"

#include "support/Print.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace
{
QStringList WordsIn(const QString& line)
{
    QStringList words;
    for (const WordPlace& place : SpellingWords::In(line))
        words.append(line.mid(place.Start, place.Length));
    return words;
}
} // namespace

TEST(SpellingWordsTest, WordsStandBetweenBlanksAndMarks)
{
    EXPECT_EQ(WordsIn(QStringLiteral("Hello, dear (old) \u201Cfriends\u201D\u2014welcome!")),
              (QStringList{QStringLiteral("Hello"), QStringLiteral("dear"), QStringLiteral("old"),
                           QStringLiteral("friends"), QStringLiteral("welcome")}));
    EXPECT_EQ(
        WordsIn(QStringLiteral("and/or 'quoted' words'")),
        (QStringList{QStringLiteral("and"), QStringLiteral("or"), QStringLiteral("quoted"), QStringLiteral("words")}));
    EXPECT_TRUE(WordsIn({}).isEmpty());
    EXPECT_TRUE(WordsIn(QStringLiteral("  \t ... -- ' \u0301 ")).isEmpty());
}

TEST(SpellingWordsTest, ApostrophesAndHyphensWithinAWordBelongToIt)
{
    EXPECT_EQ(WordsIn(QStringLiteral("don't don\u2019t well-known co\u00ADoperate non\u2011stop wait--what")),
              (QStringList{QStringLiteral("don't"), QStringLiteral("don\u2019t"), QStringLiteral("well-known"),
                           QStringLiteral("co\u00ADoperate"), QStringLiteral("non\u2011stop"), QStringLiteral("wait"),
                           QStringLiteral("what")}));
}

TEST(SpellingWordsTest, AddressesNumbersAndAbbreviationsAreLeftOut)
{
    const QStringList others = {QStringLiteral("ann@example.org"),
                                QStringLiteral("<ann@example.org>"),
                                QStringLiteral("https://example.org/pagge"),
                                QStringLiteral("(www.exampel)"),
                                QStringLiteral("example.org"),
                                QStringLiteral("/srv/statoin"),
                                QStringLiteral("C:\\Statoin"),
                                QStringLiteral("a/bb/ccc"),
                                QStringLiteral("#latenight"),
                                QStringLiteral("@harbourr"),
                                QStringLiteral("file_naem"),
                                QStringLiteral("07700"),
                                QStringLiteral("5th"),
                                QStringLiteral("mp3"),
                                QStringLiteral("BBCX"),
                                QStringLiteral("BBCX's"),
                                QStringLiteral("BBCX\u2019s"),
                                QStringLiteral("DJs"),
                                QStringLiteral("e.g."),
                                QStringLiteral("x")};
    for (const QString& other : others)
        EXPECT_TRUE(WordsIn(other).isEmpty()) << other.toStdString();
    const QString words = QStringLiteral("As Is It's I's Djs");
    EXPECT_EQ(WordsIn(words), words.split(u' '));
}

TEST(SpellingWordsTest, MarksAndOtherScriptsAreWholeWords)
{
    const QString decomposed = QStringLiteral("cafe\u0301s");
    EXPECT_EQ(WordsIn(decomposed), QStringList{decomposed});
    EXPECT_EQ(SpellingWords::Plain(decomposed), QStringLiteral("caf\u00E9s"));
    const QString hebrew = QStringLiteral("\u05E9\u05DC\u05D5\u05DD \u05E6\u05D4\"\u05DC");
    EXPECT_EQ(WordsIn(hebrew), hebrew.split(u' '));
    // Words of these have no blanks between them.
    EXPECT_TRUE(WordsIn(QStringLiteral("\u4F60\u597D \u0E2A\u0E27\u0E31\u0E2A\u0E14\u0E35")).isEmpty());
    // Letters of two units, and half of one.
    EXPECT_EQ(WordsIn(QStringLiteral("\U00010428\U00010429 ok")),
              (QStringList{QStringLiteral("\U00010428\U00010429"), QStringLiteral("ok")}));
    EXPECT_EQ(WordsIn(QStringLiteral("ab") + QChar(0xD800)), QStringList{QStringLiteral("ab")});
}

TEST(SpellingWordsTest, WhatIsTooLongForAWordIsNone)
{
    EXPECT_EQ(WordsIn(QString(64, u'a')).size(), 1);
    EXPECT_TRUE(WordsIn(QString(65, u'a')).isEmpty());
}

TEST(SpellingWordsTest, TheFormInWhichAWordIsLookedUpIsOne)
{
    EXPECT_EQ(SpellingWords::Plain(u"don\u2019t"), QStringLiteral("don't"));
    EXPECT_EQ(SpellingWords::Plain(u"don\u02BCt"), QStringLiteral("don't"));
    EXPECT_EQ(SpellingWords::Plain(u"co\u00ADop\u2011works"), QStringLiteral("coop-works"));
    EXPECT_EQ(SpellingWords::LikeTyped(QStringLiteral("don't"), u"dont\u2019"), QStringLiteral("don\u2019t"));
    EXPECT_EQ(SpellingWords::LikeTyped(QStringLiteral("don't"), u"dont"), QStringLiteral("don't"));
}
