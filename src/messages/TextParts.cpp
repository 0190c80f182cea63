// SPDX-License-Identifier: Apache-2.0
#include "messages/TextParts.h"

namespace
{
/// What one message holds, and each of several, which begin with six octets that tell how they belong together.
struct Capacity
{
    int Alone;
    int Divided;
};
constexpr Capacity SevenBit = {160, 153};
constexpr Capacity SixteenBit = {70, 67};

/// The default alphabet and its extension, which takes an escape in front (3GPP TS 23.038, 6.2.1).
const QString Alphabet =
    QStringLiteral("@\u00A3$\u00A5\u00E8\u00E9\u00F9\u00EC\u00F2\u00C7\n\u00D8\u00F8\r\u00C5\u00E5"
                   "\u0394_\u03A6\u0393\u039B\u03A9\u03A0\u03A8\u03A3\u0398\u039E\u00C6\u00E6\u00DF\u00C9"
                   " !\"#\u00A4%&'()*+,-./0123456789:;<=>?\u00A1ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                   "\u00C4\u00D6\u00D1\u00DC\u00A7\u00BFabcdefghijklmnopqrstuvwxyz\u00E4\u00F6\u00F1\u00FC\u00E0");
const QString Extension = QStringLiteral("\f^{}\\[~]|\u20AC");

/// Of the character at that place: how many UTF-16 units it has.
qsizetype SizeAt(const QString& text, qsizetype at)
{
    const bool isPair = text.at(at).isHighSurrogate() && at + 1 < text.size() && text.at(at + 1).isLowSurrogate();
    return isPair ? 2 : 1;
}

int SevenBitUnits(QChar character)
{
    if (Alphabet.contains(character))
        return 1;
    return Extension.contains(character) ? 2 : 0;
}

/// Fills messages of that size with the text; a character that does not fit whole begins the next one.
void Fill(const QString& text, int size, TextParts* result)
{
    int used = 0;
    result->Parts = text.isEmpty() ? 0 : 1;
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype units = SizeAt(text, i);
        const int count = result->Is16Bit ? static_cast<int>(units) : SevenBitUnits(text.at(i));
        if (used + count > size) {
            ++result->Parts;
            used = 0;
        }
        used += count;
        i += units;
    }
    result->Left = text.isEmpty() ? size : size - used;
}
} // namespace

TextParts CountTextParts(const QString& text)
{
    TextParts result;
    for (qsizetype i = 0; i < text.size() && !result.Is16Bit; i += SizeAt(text, i)) {
        const int units = SevenBitUnits(text.at(i));
        result.Is16Bit = units == 0;
        result.Units += units;
        if (result.Is16Bit)
            result.First16Bit = text.mid(i, SizeAt(text, i));
    }
    if (result.Is16Bit)
        result.Units = static_cast<int>(text.size());
    const Capacity& capacity = result.Is16Bit ? SixteenBit : SevenBit;
    Fill(text, result.Units <= capacity.Alone ? capacity.Alone : capacity.Divided, &result);
    return result;
}
