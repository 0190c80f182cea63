// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>
#include <QStringView>

/// Where a word stands in a line, in units of its text.
struct WordPlace
{
    qsizetype Start = 0;
    qsizetype Length = 0;

    qsizetype End() const { return Start + Length; }
    friend bool operator==(const WordPlace&, const WordPlace&) = default;
};

/// Which parts of a text are words that a dictionary can judge.
namespace SpellingWords
{
/// The words of a line. Left out are addresses, links, names of files, numbers and what holds digits, abbreviations in
/// capitals or with points in them, single letters, and scripts that put no blanks between words.
QList<WordPlace> In(QStringView line);
/// A word in the one form in which it is looked up: composed letters, the straight apostrophe, the plain hyphen, no
/// soft hyphens.
QString Plain(QStringView word);
/// The suggestion for a word, with the apostrophe that the word was typed with.
QString LikeTyped(QString suggestion, QStringView word);
} // namespace SpellingWords
