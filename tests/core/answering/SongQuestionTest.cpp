// SPDX-License-Identifier: Apache-2.0
#include "answering/SongQuestion.h"

#include <gtest/gtest.h>

namespace
{
SongQuestion Asked(const char16_t* text, const QString& song = QStringLiteral("SONG"),
                   const QString& buy = QStringLiteral("BUY"))
{
    return QuestionIn(QString::fromUtf16(text), song, buy);
}
} // namespace

TEST(SongQuestionTest, TheKeyWordAsksInAnyCaseWithBlanksAndPunctuationAround)
{
    for (const char16_t* text : {u"SONG", u"song", u"Song?", u"  sOnG \n", u"\"SONG\"", u"...song!!",
                                 u"\u201Csong\u201D", u"S\u00F6ng", u"\uFF33\uFF2F\uFF2E\uFF27"})
        EXPECT_EQ(Asked(text), SongQuestion::Song) << qPrintable(QString::fromUtf16(text));
    for (const char16_t* text : {u"BUY", u"buy.", u" Buy "})
        EXPECT_EQ(Asked(text), SongQuestion::Buy) << qPrintable(QString::fromUtf16(text));
}

TEST(SongQuestionTest, AFewWordsBehindItStillAskAndAMessageForPeopleDoesNot)
{
    for (const char16_t* text : {u"song please", u"SONG - name pls?", u"Song title please mate"})
        EXPECT_EQ(Asked(text), SongQuestion::Song) << qPrintable(QString::fromUtf16(text));
    for (const char16_t* text : {u"what is this song?", u"Song for my mother's birthday, please", u"songs", u"Songbird",
                                 u"love song", u"buying", u"", u" ", u"?!"})
        EXPECT_EQ(Asked(text), SongQuestion::None) << qPrintable(QString::fromUtf16(text));
    EXPECT_EQ(QuestionIn(QStringLiteral("song") + QString(400, u'!'), QStringLiteral("SONG"), QStringLiteral("BUY")),
              SongQuestion::None);
}

TEST(SongQuestionTest, AKeyWordOfSeveralWordsCountsAsAWhole)
{
    const QString song = QStringLiteral(" What\u2019s  on? ");
    EXPECT_EQ(Asked(u"whats on", song), SongQuestion::Song);
    EXPECT_EQ(Asked(u"What's on, please?", song), SongQuestion::Song);
    EXPECT_EQ(Asked(u"WHATS", song), SongQuestion::None);
    EXPECT_EQ(Asked(u"on whats", song), SongQuestion::None);
    EXPECT_EQ(Asked(u"SONG", song), SongQuestion::None);
}

TEST(SongQuestionTest, OfTwoThatFitTheLongerCountsAndOfTwinsTheSong)
{
    const QString song = QStringLiteral("SONG");
    EXPECT_EQ(Asked(u"song buy", song, QStringLiteral("Song buy")), SongQuestion::Buy);
    EXPECT_EQ(Asked(u"song", song, QStringLiteral("Song buy")), SongQuestion::Song);
    EXPECT_EQ(Asked(u"song", song, song), SongQuestion::Song);
}

TEST(SongQuestionTest, ASignAsksAloneAndBlanksNeverDo)
{
    const QString note = QStringLiteral("\U0001F3B5");
    EXPECT_EQ(Asked(u" \U0001F3B5 ", note), SongQuestion::Song);
    EXPECT_EQ(Asked(u"\U0001F3B5\U0001F3B5", note), SongQuestion::None);
    EXPECT_EQ(Asked(u"Love it \U0001F3B5", note), SongQuestion::None);
    const QString blank = QStringLiteral(" ");
    for (const char16_t* text : {u"", u" ", u"?", u"song"})
        EXPECT_EQ(Asked(text, blank, blank), SongQuestion::None);
}
