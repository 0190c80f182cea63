// SPDX-License-Identifier: Apache-2.0
#include "common/GeneralHelper.h"
#include "common/kvGeneral.h"

#include <gtest/gtest.h>

namespace
{
const QString Blank = QStringLiteral(" ");

QString Get(const char16_t* text, const char16_t* key)
{
    return GetKeyValue(QString::fromUtf16(text), QString::fromUtf16(key), Blank);
}

QString Set(const QString& text, const char16_t* key, const char16_t* value)
{
    return GeneralHelper::SetKeyValue(text, QString::fromUtf16(key), QString::fromUtf16(value));
}
} // namespace

TEST(KeyValueTextTest, ReadsQuotedAndBareValues)
{
    EXPECT_EQ(Get(u"!KVMessage Reference=\"12\"", u"Reference"), u"12");
    EXPECT_EQ(Get(u"Started=\"21/11/2026 14:05:09\" By=DESK1", u"Started"), u"21/11/2026 14:05:09");
    EXPECT_EQ(Get(u"Started=\"21/11/2026 14:05:09\" By=DESK1", u"By"), u"DESK1");
    EXPECT_EQ(Get(u"By=DESK1 Run=1", u"By"), u"DESK1");
}

TEST(KeyValueTextTest, AnAbsentKeyIsEmpty)
{
    EXPECT_EQ(Get(u"A=1", u"B"), QString());
    EXPECT_EQ(Get(u"", u"B"), QString());
    EXPECT_EQ(Get(u"B", u"B"), QString());
    EXPECT_EQ(Get(u"B =1", u"B"), QString());
}

TEST(KeyValueTextTest, AKeyAtTheVeryStartIsAWholeWordLikeAnyOther)
{
    EXPECT_EQ(Get(u"By=1", u"By"), u"1");
    EXPECT_EQ(Get(u" By=1", u"By"), u"1");
    EXPECT_EQ(Get(u" By=1", u" By"), u"1");
}

TEST(KeyValueTextTest, APartOfAnotherKeyIsNotTheKey)
{
    EXPECT_EQ(Get(u"LastRun=1 Runner=2 Run=3", u"Run"), u"3");
    EXPECT_EQ(Get(u"LastRun=1", u"Run"), QString());
    EXPECT_EQ(Get(u"Runner=1", u"Run"), QString());
}

TEST(KeyValueTextTest, AQuotedValueIsSearchedLikeAllText)
{
    EXPECT_EQ(Get(u"Name=\"The Run=5 Show\" Run=6", u"Run"), u"5");
}

TEST(KeyValueTextTest, AnUnclosedQuoteEndsWithTheText)
{
    EXPECT_EQ(Get(u"Name=\"The Show", u"Name"), u"The Show");
    EXPECT_EQ(Get(u"Name=\"", u"Name"), QString());
    EXPECT_EQ(Get(u"Name=", u"Name"), QString());
}

TEST(KeyValueTextTest, TheQuotesAreNotPartOfTheValueWhateverIsAsked)
{
    const QString text = QStringLiteral("A=\"1 2\" B=3 C=\"4");
    EXPECT_EQ(GetKeyValue(text, QStringLiteral("A"), Blank, false), u"1 2");
    EXPECT_EQ(GetKeyValue(text, QStringLiteral("B"), Blank, false), u"3");
    EXPECT_EQ(GetKeyValue(text, QStringLiteral("C"), Blank, false), u"4");
}

TEST(KeyValueTextTest, DelimiterAndSeparatorMayBeOthers)
{
    EXPECT_EQ(GetKeyValue(QStringLiteral("A:1;B:2 3;C:4"), QStringLiteral("B"), QStringLiteral(";"), true,
                          QStringLiteral(":")),
              u"2 3");
    EXPECT_EQ(GetKeyValue(QStringLiteral("xA=1 2"), QStringLiteral("A"), QString()), u"1 2");
}

TEST(KeyValueTextTest, CaseCountsUnlessToldOtherwise)
{
    EXPECT_EQ(Get(u"currentsongfullname=\"X\"", u"CurrentSongFullName"), QString());
    EXPECT_EQ(GetKeyValueCaseInsensitive(QStringLiteral("a=1 CURRENTSONGFULLNAME=\"X y\""),
                                         QStringLiteral("CurrentSongFullName"), Blank),
              u"X y");
}

TEST(KeyValueTextTest, SetAppendsAndReplaces)
{
    QString text = Set(QString(), u"Run", u"21/11/2026 14:05:09");
    EXPECT_EQ(text, u"Run=\"21/11/2026 14:05:09\"");
    text = Set(text, u"By", u"DESK1");
    EXPECT_EQ(text, u"Run=\"21/11/2026 14:05:09\" By=DESK1");
    text = Set(text, u"Name", u"");
    EXPECT_EQ(text, u"Run=\"21/11/2026 14:05:09\" By=DESK1 Name=\"\"");
    text = Set(text, u"By", u"DESK 2");
    EXPECT_EQ(text, u"Run=\"21/11/2026 14:05:09\" By=\"DESK 2\" Name=\"\"");
}

TEST(KeyValueTextTest, SetLeavesOneEntryAKeyAndOneBlankBetween)
{
    EXPECT_EQ(Set(QStringLiteral("  A=1   B=2 A=3  "), u"A", u"4"), u"A=4 B=2");
    EXPECT_EQ(Set(QStringLiteral("LastRun=1 Runner=2"), u"Run", u"3"), u"LastRun=1 Runner=2 Run=3");
}

TEST(KeyValueTextTest, WhatAValueCannotHoldIsReplaced)
{
    EXPECT_EQ(GetKeyValue(Set(QString(), u"A", u"The \"Big\" Show"), QStringLiteral("A"), Blank), u"The 'Big' Show");
    EXPECT_EQ(GetKeyValue(Set(QString(), u"A", u"\"x\""), QStringLiteral("A"), Blank), u"'x'");
    EXPECT_EQ(GetKeyValue(Set(QString(), u"A", u"one\r\ntwo\tthree\u2028four"), QStringLiteral("A"), Blank),
              u"one  two three four");
}

TEST(KeyValueTextTest, ANewValueIsReadBackThoughAnotherValueLooksLikeIt)
{
    const QString text = Set(QStringLiteral("Name=\"The Run=5 Show\""), u"Run", u"6");
    EXPECT_EQ(GetKeyValue(text, QStringLiteral("Run"), Blank), u"6");
    EXPECT_EQ(GetKeyValue(text, QStringLiteral("Name"), Blank), u"The Run=5 Show");
}

TEST(KeyValueTextTest, ANewValueIsReadBackBehindAnUnclosedQuote)
{
    const QString text = Set(QStringLiteral("Name=\"The Show"), u"Run", u"6");
    EXPECT_EQ(GetKeyValue(text, QStringLiteral("Run"), Blank), u"6");
    EXPECT_EQ(GetKeyValue(text, QStringLiteral("Name"), Blank), u"The Show");
}

TEST(KeyValueTextTest, LineTextHasOneQuotedEntryALine)
{
    const QString key = QStringLiteral("CurrentSongFullName");
    EXPECT_EQ(GeneralHelper::SetLineKeyValue(QString(), key, QStringLiteral("Song")), u"CurrentSongFullName=\"Song\"");
    EXPECT_EQ(GeneralHelper::SetLineKeyValue(QStringLiteral("A=\"1\"\ncurrentsongfullname=\"x\"\nB=\"2\"\n"), key,
                                             QStringLiteral("A \"new\"\none")),
              u"A=\"1\"\nCurrentSongFullName=\"A 'new' one\"\nB=\"2\"");
    EXPECT_EQ(GeneralHelper::SetLineKeyValue(QStringLiteral("A=\"1\"\r\nB=\"2\""), key, QString()),
              u"A=\"1\"\r\nB=\"2\"\r\nCurrentSongFullName=\"\"");
}
