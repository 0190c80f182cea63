// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QChar>
#include <QStringView>

#include <string_view>

/// Characters without regard to case, and texts read character by character. Any thread. Simple folding: one character
/// gives one, so lengths in characters never change.
namespace dao::jetsql
{

/// Octets that are no UTF-8 read as characters from here on, behind all real ones.
inline constexpr char32_t firstInvalid = 0x110000;

inline unsigned char FoldAscii(unsigned char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<unsigned char>(character + ('a' - 'A')) : character;
}

inline char32_t Fold(char32_t character)
{
    if (character < 0x80)
        return FoldAscii(static_cast<unsigned char>(character));
    return character < firstInvalid ? QChar::toCaseFolded(character) : character;
}

/// Reads UTF-8. Surrogates in UTF-8 form read as themselves, so that any UTF-16 text survives.
class Utf8Reader
{
public:
    explicit Utf8Reader(std::string_view text) : Next_(text.data()), End_(text.data() + text.size()) {}

    bool AtEnd() const { return Next_ == End_; }
    /// Not at the end.
    char32_t Next()
    {
        const unsigned char first = static_cast<unsigned char>(*Next_);
        if (first < 0x80) {
            ++Next_;
            return first;
        }
        return NextBeyondAscii(first);
    }
    const char* Position() const { return Next_; }
    void MoveTo(const char* position) { Next_ = position; }
    std::string_view Rest() const { return {Next_, static_cast<std::size_t>(End_ - Next_)}; }

private:
    bool Continues(int offset) const
    {
        return End_ - Next_ > offset && (static_cast<unsigned char>(Next_[offset]) & 0xC0U) == 0x80;
    }
    char32_t Bits(int offset) const { return static_cast<unsigned char>(Next_[offset]) & 0x3FU; }
    char32_t Taken(int octets, char32_t character)
    {
        Next_ += octets;
        return character;
    }

    char32_t NextBeyondAscii(unsigned char first)
    {
        if (first >= 0xC2 && first < 0xE0 && Continues(1))
            return Taken(2, ((first & 0x1FU) << 6U) | Bits(1));
        if (first >= 0xE0 && first < 0xF0 && Continues(1) && Continues(2)) {
            const char32_t character = ((first & 0x0FU) << 12U) | (Bits(1) << 6U) | Bits(2);
            if (character >= 0x800)
                return Taken(3, character);
        }
        if (first >= 0xF0 && first < 0xF5 && Continues(1) && Continues(2) && Continues(3)) {
            const char32_t character = ((first & 0x07U) << 18U) | (Bits(1) << 12U) | (Bits(2) << 6U) | Bits(3);
            if (character >= 0x10000 && character < firstInvalid)
                return Taken(4, character);
        }
        return Taken(1, firstInvalid + first);
    }

    const char* Next_;
    const char* End_;
};

/// Reads UTF-16; half a surrogate pair reads as itself.
class Utf16Reader
{
public:
    explicit Utf16Reader(QStringView text) : Next_(text.utf16()), End_(text.utf16() + text.size()) {}

    bool AtEnd() const { return Next_ == End_; }
    char32_t Next()
    {
        const char16_t first = *Next_++;
        if (!QChar::isHighSurrogate(first) || AtEnd() || !QChar::isLowSurrogate(*Next_))
            return first;
        return QChar::surrogateToUcs4(first, *Next_++);
    }

private:
    const char16_t* Next_;
    const char16_t* End_;
};

} // namespace dao::jetsql
