// SPDX-License-Identifier: Apache-2.0
#include "answering/SongAnswerText.h"

#include "messages/TextParts.h"

#include <gtest/gtest.h>

namespace
{
SongAnswerText::Known Knowing(const QString& song)
{
    return {QStringLiteral("Harbour FM"), song, QStringLiteral("14:05"), QString()};
}

QString Answer(const QString& song, SongQuestion question = SongQuestion::Song)
{
    const SongAnswerText::Known known = Knowing(song);
    return SongAnswerText::Of(question, SongAnswerText::OwnWords(question, known), known);
}

int PartsOf(const QString& text)
{
    return CountTextParts(text).Parts;
}
} // namespace

TEST(SongAnswerTextTest, TheStationsWordsTellSongStationAndTime)
{
    EXPECT_EQ(Answer(QStringLiteral("Pete Quill - The Shanty")),
              QStringLiteral("Playing on Harbour FM at 14:05: Pete Quill - The Shanty"));
    EXPECT_EQ(Answer(QStringLiteral("Pete Quill - The Shanty"), SongQuestion::Buy),
              QStringLiteral("To buy what Harbour FM played at 14:05, ask for: Pete Quill - The Shanty"));
}

TEST(SongAnswerTextTest, WhereNoSongIsKnownTheAnswerSaysSo)
{
    for (const QString& song : {QString(), QStringLiteral(" \t\r\n"), QStringLiteral("\u202E"),
                                QStringLiteral("\u200B\u00AD\uFEFF\u2060"), QStringLiteral("\u200B\u200D \u200C")}) {
        for (const SongQuestion question : {SongQuestion::Song, SongQuestion::Buy}) {
            EXPECT_EQ(Answer(song, question),
                      QStringLiteral("Sorry, Harbour FM cannot tell what was playing at 14:05."));
            EXPECT_EQ(SongAnswerText::TemplateName(question, Knowing(song)), QStringLiteral("Automatic-No song.txt"));
        }
    }
    const SongAnswerText::Known known = Knowing(QStringLiteral("The Shanty"));
    EXPECT_EQ(SongAnswerText::TemplateName(SongQuestion::Song, known), QStringLiteral("Automatic-Song.txt"));
    EXPECT_EQ(SongAnswerText::TemplateName(SongQuestion::Buy, known), QStringLiteral("Automatic-Buy.txt"));
}

TEST(SongAnswerTextTest, NothingInTheSongSteersAScreenOrBreaksTheLine)
{
    const QString answer = Answer(QStringLiteral("The\r\nShanty\u0007\u001B[2J\u0085\u2028by\u202E <ZRT_TIME>\u0000x"));
    EXPECT_EQ(answer, QStringLiteral("Playing on Harbour FM at 14:05: The Shanty [2J by <ZRT_TIME> x"));
}

TEST(SongAnswerTextTest, CharactersThatNobodySeesGoAndJoinersStay)
{
    const QString answer = Answer(QStringLiteral("\uFEFFThe Shan\u00ADty\u200B by\U000E0020 Tide"));
    EXPECT_TRUE(answer.endsWith(QStringLiteral(": The Shanty by Tide"))) << qPrintable(answer);
    EXPECT_FALSE(CountTextParts(answer).Is16Bit);
    const QString family = QStringLiteral("\U0001F469\u200D\U0001F467");
    EXPECT_TRUE(Answer(family).endsWith(family)) << qPrintable(Answer(family));
}

TEST(SongAnswerTextTest, TypesettersMarksDoNotHalveTheRoom)
{
    const QString answer = Answer(QStringLiteral("\u201CDon\u2019t Stop\u201D \u2013 The Tides"));
    EXPECT_TRUE(answer.endsWith(QStringLiteral(": \"Don't Stop\" - The Tides"))) << qPrintable(answer);
    EXPECT_FALSE(CountTextParts(answer).Is16Bit);
}

TEST(SongAnswerTextTest, ALongSongIsCutToOneMessage)
{
    const QString words = QStringLiteral("Shanty ").repeated(100);
    const QString answer = Answer(words);
    EXPECT_EQ(PartsOf(answer), 1);
    EXPECT_TRUE(answer.endsWith(QStringLiteral("...")));
    EXPECT_GT(answer.size(), 150);
    const QString greek = Answer(QStringLiteral("\u03B1\u03B2\u03B3 ").repeated(100));
    EXPECT_EQ(PartsOf(greek), 1);
    EXPECT_GT(greek.size(), 60);
    EXPECT_LE(greek.size(), 70);
}

TEST(SongAnswerTextTest, NoCharacterIsDivided)
{
    const QString answer = Answer(QStringLiteral("\U0001F3B5").repeated(400));
    EXPECT_EQ(PartsOf(answer), 1);
    EXPECT_EQ(QString::fromUtf8(answer.toUtf8()), answer);
    const QString song = answer.section(QStringLiteral(": "), 1).chopped(3);
    EXPECT_GE(song.size(), 30);
    EXPECT_EQ(song.size() % 2, 0);
}

TEST(SongAnswerTextTest, AStationWithManyWordsKeepsThemAndTheBeginningOfTheSong)
{
    const SongAnswerText::Known known = Knowing(QStringLiteral("Pete Quill - The Shanty of the Seven Long Tides"));
    const QString words = QString(180, u'a') + QStringLiteral(" <ZRT_SONG>");
    const QString answer = SongAnswerText::Of(SongQuestion::Song, words, known);
    EXPECT_EQ(answer, QString(180, u'a') + u' ' + known.Song);
    EXPECT_EQ(PartsOf(answer), 2);
    const QString full = QString(150, u'a') + QStringLiteral(" <ZRT_SONG>");
    EXPECT_TRUE(SongAnswerText::Of(SongQuestion::Song, full, known).contains(known.Song));
}

TEST(SongAnswerTextTest, ATemplateForTheShopHasTheSongForALinkAndTheIdentifier)
{
    SongAnswerText::Known known = Knowing(QStringLiteral("Pete & Jo - \u00C9t\u00E9"));
    known.AmazonID = QStringLiteral("harbour-21");
    const QString words =
        QStringLiteral("<ZRT_SONG>: https://shop.example/?find=<ZRT_SONG_IN_LINK>&tag=<ZRT_AMAZON_ID>\n");
    EXPECT_EQ(SongAnswerText::Of(SongQuestion::Buy, words, known),
              QStringLiteral("Pete & Jo - \u00C9t\u00E9: "
                             "https://shop.example/?find=Pete%20%26%20Jo%20-%20%C3%89t%C3%A9&tag=harbour-21"));
    known.AmazonID = QStringLiteral(" ");
    EXPECT_EQ(SongAnswerText::Of(SongQuestion::Buy, words, known),
              QStringLiteral("To buy what Harbour FM played at 14:05, ask for: Pete & Jo - \u00C9t\u00E9"))
        << "a link without the identifier is worth nothing to the station";
    EXPECT_EQ(SongAnswerText::Of(SongQuestion::Buy, QStringLiteral(" \n"), known), QString());
}
