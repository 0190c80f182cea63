#pragma once

#include <QString>

/// Text as people search it: without regard to case, accents and the forms that a letter has. May be called from any
/// thread.
namespace SearchFold
{
/// The text in its compatibility decomposition, without marks and invisible format characters, in folded case; letters
/// that have their accent built in (as in "Ørsted", "Łódź") stand for the plain ones, "æ" for "ae", "ß" for "ss",
/// and curly apostrophes, quotation marks and dashes for those on the keyboard. The result is for comparing with
/// another result, not for showing, and its positions are not those of the text.
QString Folded(const QString& text);
} // namespace SearchFold
