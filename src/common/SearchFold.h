// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// Text as people search it: without regard to case, accents and the forms that a letter has. May be called from any
/// thread.
namespace SearchFold
{
/// The text in its compatibility decomposition, without marks and invisible format characters, in folded case; letters
/// that have their accent built in (as in "Ørsted", "Łódź") stand for the plain ones, "æ" for "ae", "ß" for "ss",
/// and what typesetters and telephones write for a mark of the keyboard for that mark. The result is for comparing with
/// another result, not for showing, and its positions are not those of the text.
QString Folded(const QString& text);

/// The mark of the keyboard that a curly apostrophe or quotation mark, a dash or a wide, narrow or non-breaking blank
/// stands for; any other character itself.
QChar KeyboardMark(QChar character);
/// All characters with this mark of the keyboard, the mark itself first; the character alone if it is none.
QString FormsOfMark(QChar mark);
} // namespace SearchFold
