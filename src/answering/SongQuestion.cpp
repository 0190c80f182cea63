// SPDX-License-Identifier: Apache-2.0
#include "answering/SongQuestion.h"

#include "common/SearchFold.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace
{
constexpr qsizetype MostWordsBehind = 3;
/// Of a text; whoever writes more asks no machine.
constexpr qsizetype LongestQuestion = 300;

/// An apostrophe divides no word: half of the telephones leave it out.
QStringList WordsOf(const QString& folded)
{
    static const QRegularExpression between(QStringLiteral("[^\\p{L}\\p{N}\\p{M}]+"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return QString(folded).remove(u'\'').split(between, Qt::SkipEmptyParts);
}

/// Of how many words the key word is with which the text begins; 0 for none.
qsizetype WordsAskedBy(const QString& folded, const QStringList& words, const QString& keyWord)
{
    const QString key = SearchFold::Folded(keyWord).trimmed();
    const QStringList keyWords = WordsOf(key);
    // A sign, such as an emoji, has no words; it asks alone.
    if (keyWords.isEmpty())
        return !key.isEmpty() && folded.trimmed() == key ? 1 : 0;
    const bool begins = words.size() >= keyWords.size() && std::equal(keyWords.begin(), keyWords.end(), words.begin());
    return begins && words.size() - keyWords.size() <= MostWordsBehind ? keyWords.size() : 0;
}
} // namespace

SongQuestion QuestionIn(const QString& text, const QString& songWord, const QString& buyWord)
{
    if (text.size() > LongestQuestion)
        return SongQuestion::None;
    const QString folded = SearchFold::Folded(text);
    const QStringList words = WordsOf(folded);
    const qsizetype song = WordsAskedBy(folded, words, songWord);
    const qsizetype buy = WordsAskedBy(folded, words, buyWord);
    if (song == 0 && buy == 0)
        return SongQuestion::None;
    return buy > song ? SongQuestion::Buy : SongQuestion::Song;
}
