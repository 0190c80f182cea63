// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

struct clsFont;

/// What stands before and behind a highlighted word.
struct HighlightTags
{
    QString Start;
    QString End;
};

/// The tags that show a font: a font element for name, size and colour, then one element for each style.
HighlightTags MakeHighlightTags(const clsFont& font);

enum class HighlightResult
{
    NotFound,
    Found,
    TooLarge
};

/// Puts the tags around each hit of the word in body. Plain text search without regard to case: inside longer words and
/// inside markup too; behind a hit one character is passed over before the search goes on, so that of two hits without
/// a space only the first is marked. The empty word is found before each character. TooLarge: the body would grow
/// beyond what a message can hold; it is left as it was.
HighlightResult MarkHighlightWord(QString& body, const QString& word, const HighlightTags& tags);

/// Whether the word stands in body, found in the same way.
bool HoldsHighlightWord(const QString& body, const QString& word);
