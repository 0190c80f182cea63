// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

class WordSet;

/// What counts as a word when messages are searched. Both sides use it, so that whatever is typed meets what was
/// written: case and accents make no difference, an apostrophe divides words whichever way it is written, of scripts
/// without blanks between words (Chinese, Japanese, Thai and their kin) every two and three neighbouring characters
/// are words, an emoji is one, and a telephone number is one however it is written. Pure functions.
namespace SearchWords
{

/// Characters of a word that count; what is longer is no word that anybody types.
inline constexpr int LongestWord = 40;

/// Adds the words of a text.
void Add(QStringView text, WordSet& words);

/// A word that is looked for.
struct Term
{
    QByteArray Word;       ///< UTF-8.
    bool IsPrefix = false; ///< Words that begin so count too.

    friend bool operator==(const Term&, const Term&) = default;
};

/// Ways to find one thing that was typed: each is a list of terms of which all have to be there.
using Alternatives = QList<QList<Term>>;

/// What finds a typed text: of each of these one alternative has to be there. endsInPrefix: the last word may be the
/// beginning of one.
QList<Alternatives> Wanted(const QString& typed, bool endsInPrefix);

/// Words that no text holds, for what is no word: they are kept beside the others and found as exactly.
/// A mail address, from or to whom; a telephone number in any form, empty for what is none.
QByteArray AddressTerm(const QString& address);
QByteArray NumberTerm(const QString& number);
/// The identity of a mail, which answers refer to.
QByteArray IdentityTerm(const QString& messageID);
/// A subject without what answering and forwarding put in front of it.
QByteArray SubjectTerm(const QString& subject);

struct Place
{
    qsizetype Begin = 0;
    qsizetype Size = 0;

    friend bool operator==(const Place&, const Place&) = default;
};

/// Where a text holds what finds the typed one, in order, for marking it.
QList<Place> PlacesOf(const QString& text, const QList<Alternatives>& wanted);

} // namespace SearchWords
