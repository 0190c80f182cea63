// SPDX-License-Identifier: Apache-2.0
#include "messages/search/SearchWords.h"

#include "messages/search/WordSet.h"

#include <gtest/gtest.h>

#include <algorithm>

using SearchWords::Place;

namespace
{
/// Whether what is typed finds a message with that text.
bool Finds(const QString& typed, const QString& text, bool endsInPrefix = false)
{
    WordSet words;
    SearchWords::Add(text, words);
    const QList<QByteArray> written = QByteArray(words.Joined().data(), words.Joined().size()).split(' ');
    const auto isThere = [&](const SearchWords::Term& term) {
        return std::any_of(written.begin(), written.end(), [&](const QByteArray& word) {
            return term.IsPrefix ? word.startsWith(term.Word) : word == term.Word;
        });
    };
    const auto isMet = [&](const SearchWords::Alternatives& alternatives) {
        return std::any_of(alternatives.begin(), alternatives.end(),
                           [&](const auto& terms) { return std::all_of(terms.begin(), terms.end(), isThere); });
    };
    const QList<SearchWords::Alternatives> wanted = SearchWords::Wanted(typed, endsInPrefix);
    return !wanted.isEmpty() && std::all_of(wanted.begin(), wanted.end(), isMet);
}
} // namespace

TEST(SearchWords, CaseAndAccentsMakeNoDifferenceInEitherDirection)
{
    EXPECT_TRUE(Finds(u"problem"_qs, u"Un PROBLÈM grave"_qs));
    EXPECT_TRUE(Finds(u"problème"_qs, u"no probleme at all"_qs));
    EXPECT_TRUE(Finds(u"STRASSE"_qs, u"Die Straße"_qs));
    EXPECT_TRUE(Finds(u"oersted Łódź"_qs, u"lodz, Oersted"_qs));
    EXPECT_TRUE(Finds(u"привет"_qs, u"ПРИВЕТ!"_qs));
    EXPECT_FALSE(Finds(u"problem"_qs, u"a pro blem"_qs));
}

TEST(SearchWords, AWordIsFoundInAnyFormOfItsAccentsByAnyOther)
{
    const QStringList forms{u"probleme"_qs,       u"PROBLEME"_qs,       u"probl\u00E8me"_qs,     u"PROBL\u00C8ME"_qs,
                            u"proble\u0300me"_qs, u"PROBLE\u0300ME"_qs, u"pr\u00F3bl\u00EAme"_qs};
    for (const QString& typed : forms) {
        for (const QString& written : forms) {
            const QString text = u"un "_qs + written + u" grave"_qs;
            EXPECT_TRUE(Finds(typed, text)) << qPrintable(typed + u'/' + written);
            EXPECT_TRUE(Finds(typed.left(typed.size() - 2), text, true)) << qPrintable(typed + u'/' + written);
            const QList<Place> places = SearchWords::PlacesOf(text, SearchWords::Wanted(typed, false));
            EXPECT_EQ(places, (QList<Place>{{3, written.size()}})) << "marked whole, with its accents";
        }
    }
    EXPECT_TRUE(Finds(u"problem"_qs, u"un probl\u00E8me"_qs, true)) << "while it is typed";
    EXPECT_FALSE(Finds(u"problem"_qs, u"un probl\u00E8me"_qs)) << "a letter more is another word";
}

TEST(SearchWords, ApostrophesDivideWordsWhicheverWayTheyAreWritten)
{
    EXPECT_TRUE(Finds(u"don't"_qs, u"I don\u2019t know"_qs));
    EXPECT_TRUE(Finds(u"l\u2019eau"_qs, u"de l'eau"_qs));
    EXPECT_TRUE(Finds(u"eau"_qs, u"de l\u2019eau"_qs));
}

TEST(SearchWords, WordsOfScriptsWithoutBlanksAreFoundWithinTheirLines)
{
    EXPECT_TRUE(Finds(u"灯台"_qs, u"港の灯台の歌"_qs));
    EXPECT_TRUE(Finds(u"灯"_qs, u"港の灯台"_qs));
    EXPECT_TRUE(Finds(u"台"_qs, u"港の灯台"_qs));
    EXPECT_TRUE(Finds(u"ラジオ"_qs, u"私のラジオ番組"_qs));
    EXPECT_FALSE(Finds(u"東京都"_qs, u"東京の京都"_qs));
    EXPECT_TRUE(Finds(u"ประภาคาร"_qs, u"เพลงประภาคารเก่า"_qs));
    EXPECT_TRUE(Finds(u"radio 灯台"_qs, u"FM-RADIO灯台"_qs));
}

TEST(SearchWords, EmojiFlagsAndSignsAreWords)
{
    EXPECT_TRUE(Finds(u"\U0001F3B5"_qs, u"thanks\U0001F3B5\U0001F44D\U0001F3FD!"_qs));
    EXPECT_TRUE(Finds(u"\U0001F44D"_qs, u"\U0001F44D\U0001F3FD"_qs));
    EXPECT_TRUE(Finds(u"\u2764\uFE0F"_qs, u"we \u2764 radio"_qs));
    EXPECT_TRUE(Finds(u"\U0001F1EC\U0001F1E7"_qs, u"\U0001F1EB\U0001F1F7\U0001F1EC\U0001F1E7"_qs));
    EXPECT_FALSE(Finds(u"\U0001F1F7\U0001F1EC"_qs, u"\U0001F1EB\U0001F1F7\U0001F1EC\U0001F1E7"_qs));
}

TEST(SearchWords, ATelephoneNumberIsFoundInAnyWayOfWritingIt)
{
    const QStringList forms{
        u"07700 900123"_qs,      u"+44 7700 900123"_qs,    u"(07700) 900-123"_qs,         u"07700900123"_qs,
        u"0044 7700 900 123"_qs, u"+44 (0)7700 900123"_qs, u"07700\u00A0900\u2011123"_qs, u"٠٧٧٠٠ ٩٠٠١٢٣"_qs};
    for (const QString& typed : forms) {
        for (const QString& written : forms)
            EXPECT_TRUE(Finds(typed, u"call "_qs + written + u", please"_qs)) << qPrintable(typed + u'/' + written);
    }
    EXPECT_FALSE(Finds(u"07700 900123"_qs, u"07700 900124"_qs));
    EXPECT_TRUE(Finds(u"lighthouse 07700 900123"_qs, u"+447700900123 lighthouse"_qs));
    EXPECT_TRUE(Finds(u"07700 9001"_qs, u"07700 900123"_qs, true)) << "while it is typed";
}

TEST(SearchWords, TheLastWordMayBeABeginningButOneLetterIsNone)
{
    EXPECT_TRUE(Finds(u"old ligh"_qs, u"the old lighthouse"_qs, true));
    EXPECT_FALSE(Finds(u"old ligh"_qs, u"the old lighthouse"_qs, false));
    EXPECT_FALSE(Finds(u"ligh old"_qs, u"the old lighthouse"_qs, true)) << "the first word is whole";
    EXPECT_FALSE(Finds(u"old l"_qs, u"the old lighthouse"_qs, true));
    EXPECT_FALSE(Finds(u"old ligh "_qs, u"the old lighthouse"_qs, true)) << "a blank ends the word";
}

TEST(SearchWords, ControlCharactersHalfCharactersAndEndlessWordsAreNoTrouble)
{
    EXPECT_TRUE(Finds(u"lighthouse"_qs, QString(QChar(0xD83C)) + u"\u0001lighthouse\u0000x"_qs + QChar(0xDFB5)));
    EXPECT_TRUE(SearchWords::Wanted(QString(QChar(0xD83C)) + QChar(0xFFFD) + QChar(0), true).isEmpty());
    const QString halves = QChar(0xD83C) + u"lighthouse"_qs + QChar(0xD83C) + u"keeper"_qs + QChar(0xDFB5) + u"cat"_qs;
    for (const QString& word : {u"lighthouse"_qs, u"keeper"_qs, u"cat"_qs}) {
        EXPECT_TRUE(Finds(word, halves)) << qPrintable(word);
        EXPECT_TRUE(Finds(QChar(0xD83C) + word + QChar(0xDFB5), word)) << qPrintable(word);
    }
    const QString endless(1'000'000, u'x');
    EXPECT_TRUE(Finds(endless, endless));
    WordSet words;
    SearchWords::Add(endless, words);
    EXPECT_EQ(words.Joined().size(), 40U);
    words.Clear();
    SearchWords::Add(endless.left(39) + QString::fromUcs4(U"\U00010428"), words); // a letter of two
    EXPECT_EQ(words.Joined(), std::string(39, 'x')) << "no half of it";
}

TEST(SearchWords, AMessageHasABoundedNumberOfWords)
{
    WordSet words;
    QString text;
    for (int i = 0; i < 1'000'000; ++i)
        text += u'w' + QString::number(i) + u' ';
    SearchWords::Add(text, words);
    EXPECT_EQ(words.Count(), WordSet::MostWords);
    EXPECT_TRUE(words.Contains("w77"));
}

TEST(SearchWords, ALongQuestionIsCut)
{
    QString typed;
    for (int i = 0; i < 20'000; ++i)
        typed += u'w' + QString::number(i) + u' ';
    EXPECT_EQ(SearchWords::Wanted(typed, true).size(), 32);
}

TEST(SearchWords, WhatIsFoundIsMarkedWhereItStands)
{
    const auto places = [](const QString& text, const QString& typed) {
        return SearchWords::PlacesOf(text, SearchWords::Wanted(typed, true));
    };
    EXPECT_EQ(places(u"The old Lighthouse"_qs, u"old ligh"_qs), (QList<Place>{{4, 3}, {8, 10}}));
    EXPECT_EQ(places(u"Un problème"_qs, u"probleme"_qs), (QList<Place>{{3, 8}}));
    EXPECT_EQ(places(u"港の灯台の歌"_qs, u"灯台の歌"_qs), (QList<Place>{{2, 4}}));
    EXPECT_EQ(places(u"ring +44 7700 900123 now"_qs, u"07700900123"_qs), (QList<Place>{{6, 14}}));
    EXPECT_TRUE(places(u"nothing here"_qs, u"old"_qs).isEmpty());
}

TEST(SearchWords, SubjectsOfAConversationAreOne)
{
    EXPECT_EQ(SearchWords::SubjectTerm(u"RE: Fwd: The  Lighthouse"_qs), SearchWords::SubjectTerm(u"the lighthouse"_qs));
    EXPECT_NE(SearchWords::SubjectTerm(u"Re"_qs), SearchWords::SubjectTerm(u"the lighthouse"_qs));
    EXPECT_EQ(SearchWords::NumberTerm(u"+44 7700 900123"_qs), SearchWords::NumberTerm(u"07700900123"_qs));
    EXPECT_TRUE(SearchWords::NumberTerm(u"Postcard Pete"_qs).isEmpty());
}
