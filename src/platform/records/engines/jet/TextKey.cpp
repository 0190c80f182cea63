// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/TextKey.h"

#include <array>
#include <optional>
#include <string_view>

namespace dao::jet
{

namespace
{

constexpr qsizetype LongestIndexed = 255; // Characters.
constexpr char PartEnd = 1;
constexpr char NoMark = 2;
constexpr char KeyEnd = 0;
constexpr char BehindAllLetters = '\xFC';
constexpr quint16 PlaceFlag = 0x8000;
constexpr int PlaceBase = 7;
constexpr int PlaceStep = 4;
constexpr char SpecialKind = 6;

/// What one letter or sign weighs.
struct Weight
{
    quint16 Primary = 0; ///< Two octets when it is above 0xFF.
    quint8 Mark = 0;     ///< Of an accent; 0 for none.
};

/// From the space on: those of the signs of ASCII up to its last one. 0 for what has no weight of its own.
constexpr std::array<quint16, 95> AsciiWeights{
    0x07,   0x09, 0x0A, 0x0C, 0x0E, 0x10, 0x12, 0,    0x14, 0x16, 0x18, 0x2C,   0x1A,   0,      0x1C,   0x1E,
    0x36,   0x38, 0x3A, 0x3C, 0x3E, 0x40, 0x42, 0x44, 0x46, 0x48, 0x20, 0x22,   0x2E,   0x30,   0x32,   0x24,
    0x26,   0x4A, 0x4C, 0x4D, 0x4F, 0x51, 0x53, 0x55, 0x57, 0x59, 0x5B, 0x5C,   0x5E,   0x60,   0x62,   0x64,
    0x66,   0x68, 0x69, 0x6B, 0x6D, 0x6F, 0x71, 0x73, 0x75, 0x76, 0x78, 0x27,   0x29,   0x2A,   0x2B02, 0x2B03,
    0x2B07, 0x4A, 0x4C, 0x4D, 0x4F, 0x51, 0x53, 0x55, 0x57, 0x59, 0x5B, 0x5C,   0x5E,   0x60,   0x62,   0x64,
    0x66,   0x68, 0x69, 0x6B, 0x6D, 0x6F, 0x71, 0x73, 0x75, 0x76, 0x78, 0x2B09, 0x2B0B, 0x2B0D, 0x2B0F};
constexpr char16_t FirstAscii = u' ';
constexpr char16_t LastAscii = u'~';

struct OtherWeight
{
    char16_t Unit;
    Weight Value;
};

constexpr quint16 LetterA = 0x4A;
constexpr quint16 LetterD = 0x4F;
constexpr quint16 LetterI = 0x59;
constexpr quint16 LetterL = 0x5E;
constexpr quint16 LetterO = 0x64;

constexpr std::array OtherWeights{
    OtherWeight{u'\u00A0', {0x0802, 0}},     OtherWeight{u'\u00AA', {LetterA, 0x03}},
    OtherWeight{u'\u00BA', {LetterO, 0x03}}, OtherWeight{u'\u00D0', {LetterD, 0x68}},
    OtherWeight{u'\u00D8', {LetterO, 0x21}}, OtherWeight{u'\u00F0', {LetterD, 0x68}},
    OtherWeight{u'\u00F8', {LetterO, 0x21}}, OtherWeight{u'\u0110', {LetterD, 0x1E}},
    OtherWeight{u'\u0111', {LetterD, 0x1E}}, OtherWeight{u'\u0131', {LetterI, 0x03}},
    OtherWeight{u'\u0141', {LetterL, 0x1F}}, OtherWeight{u'\u0142', {LetterL, 0x1F}},
    OtherWeight{u'\u2018', {0x2B37, 0}},     OtherWeight{u'\u2019', {0x2B38, 0}},
    OtherWeight{u'\u201C', {0x2B3B, 0}},     OtherWeight{u'\u201D', {0x2B3C, 0}},
    OtherWeight{u'\u201E', {0x2B3D, 0}},     OtherWeight{u'\u2022', {0x34B5, 0}},
    OtherWeight{u'\u2026', {0x34B9, 0}},     OtherWeight{u'\u20AC', {0x35A1, 0}},
    OtherWeight{u'\u2122', {0x6E04, 0}},
};

struct MarkWeight
{
    char16_t Mark;
    quint8 Weight;
};

constexpr std::array MarkWeights{
    MarkWeight{u'\u0301', 0x0E}, MarkWeight{u'\u0300', 0x0F}, MarkWeight{u'\u0307', 0x10}, MarkWeight{u'\u0302', 0x12},
    MarkWeight{u'\u0308', 0x13}, MarkWeight{u'\u030C', 0x14}, MarkWeight{u'\u0306', 0x15}, MarkWeight{u'\u0304', 0x17},
    MarkWeight{u'\u0303', 0x19}, MarkWeight{u'\u030A', 0x1A}, MarkWeight{u'\u0328', 0x1B}, MarkWeight{u'\u0327', 0x1C},
    MarkWeight{u'\u030B', 0x1D},
};

/// Letters that came later than the order: they weigh nothing.
constexpr std::u16string_view Weightless = u"\u01F8\u01F9\u021E\u021F\u0226\u0227\u0228\u0229\u022E\u022F\u0232\u0233";

constexpr char16_t FirstAccented = 0xC0;
constexpr char16_t LastAccented = 0x24F;

/// Two letters that one character stands for.
std::u16string_view Expansion(char16_t unit)
{
    switch (unit) {
    case 0xDF:
        return u"ss";
    case 0xC6:
    case 0xE6:
        return u"ae";
    case 0x152:
    case 0x153:
        return u"oe";
    case 0xDE:
    case 0xFE:
        return u"th";
    case 0xFB01:
        return u"fi";
    default:
        return {};
    }
}

/// Hyphens, the apostrophe and control characters: their place is noted behind the letters. 0 for all others.
quint8 SpecialWeight(char16_t unit)
{
    if (unit >= 0x01 && unit <= 0x08)
        return static_cast<quint8>(unit - 0x01 + 0x03);
    if (unit >= 0x0E && unit <= 0x1F)
        return static_cast<quint8>(unit - 0x0E + 0x0B);
    if (unit >= 0x7F && unit <= 0x9F)
        return static_cast<quint8>(unit - 0x7F + 0x1D);
    switch (unit) {
    case u'\'':
        return 0x80;
    case u'-':
        return 0x82;
    case 0xAD:
        return 0x83;
    case 0x2010:
        return 0x84;
    case 0x2013:
        return 0x89;
    case 0x2014:
        return 0x8B;
    default:
        return 0;
    }
}

std::optional<Weight> AccentedWeight(char16_t unit)
{
    const QChar character(unit);
    if (unit < FirstAccented || unit > LastAccented || character.decompositionTag() != QChar::Canonical)
        return std::nullopt;
    const QString parts = character.decomposition();
    if (parts.size() != 2 || parts.at(0).unicode() < FirstAscii || parts.at(0).unicode() > LastAscii)
        return std::nullopt;
    for (const MarkWeight& mark : MarkWeights) {
        if (mark.Mark == parts.at(1).unicode())
            return Weight{AsciiWeights[parts.at(0).unicode() - FirstAscii], mark.Weight};
    }
    return std::nullopt;
}

std::optional<Weight> WeightOf(char16_t unit)
{
    if (unit >= FirstAscii && unit <= LastAscii)
        return Weight{AsciiWeights[unit - FirstAscii], 0};
    if (unit >= u'\t' && unit <= u'\r')
        return Weight{static_cast<quint16>(0x0803 + (unit - u'\t')), 0};
    for (const OtherWeight& other : OtherWeights) {
        if (other.Unit == unit)
            return other.Value;
    }
    return AccentedWeight(unit);
}

/// Gathers the parts of a key.
class KeyParts
{
public:
    /// A character without a known weight.
    void AddOther(char32_t character)
    {
        const char32_t folded = QChar::toCaseFolded(character);
        if (folded != character && folded <= 0xFFFF && Add(static_cast<char16_t>(folded)))
            return;
        // Three digits to a base that leaves out the octets that end a part.
        constexpr char32_t Base = 254;
        constexpr char32_t LeastDigit = 2;
        Letters_ += BehindAllLetters;
        for (const char32_t unit : std::array<char32_t, 3>{Base * Base, Base, 1})
            Letters_ += static_cast<char>(LeastDigit + folded / unit % Base);
        Marks_ += NoMark;
    }
    bool Add(char16_t unit)
    {
        if (unit == 0 || Weightless.find(unit) != std::u16string_view::npos)
            return true;
        if (const quint8 special = SpecialWeight(unit)) {
            AddSpecial(special);
            return true;
        }
        for (const char16_t letter : Expansion(unit))
            AddWeight({AsciiWeights[static_cast<std::size_t>(letter - FirstAscii)], 0});
        if (!Expansion(unit).empty())
            return true;
        const std::optional<Weight> weight = WeightOf(unit);
        if (weight)
            AddWeight(*weight);
        return weight.has_value();
    }

    void AppendTo(QByteArray& key)
    {
        while (!Marks_.isEmpty() && Marks_.back() <= NoMark)
            Marks_.chop(1);
        key += Letters_ + PartEnd + Marks_;
        if (!Specials_.isEmpty())
            key += QByteArray(3, PartEnd) + Specials_;
        key += KeyEnd;
    }

private:
    void AddWeight(const Weight& weight)
    {
        if (weight.Primary > 0xFF)
            Letters_ += static_cast<char>(weight.Primary >> 8);
        Letters_ += static_cast<char>(weight.Primary & 0xFF);
        Marks_ += weight.Mark == 0 ? NoMark : static_cast<char>(weight.Mark);
    }
    void AddSpecial(quint8 weight)
    {
        const int place = PlaceBase + PlaceStep * static_cast<int>(Marks_.size());
        const auto flagged = static_cast<quint16>(PlaceFlag | place);
        Specials_ += static_cast<char>(flagged >> 8);
        Specials_ += static_cast<char>(flagged & 0xFF);
        Specials_ += SpecialKind;
        Specials_ += static_cast<char>(weight);
    }

    QByteArray Letters_;
    QByteArray Marks_;
    QByteArray Specials_;
};

} // namespace

bool AppendTextKey(const QString& text, TextOrder order, QByteArray& key)
{
    qsizetype size = std::min(text.size(), LongestIndexed);
    while (size > 0 && text.at(size - 1) == u' ')
        --size;
    KeyParts parts;
    for (qsizetype i = 0; i < size; ++i) {
        if (parts.Add(text.at(i).unicode()))
            continue;
        if (order == TextOrder::Known)
            return false;
        const bool isPair = text.at(i).isHighSurrogate() && i + 1 < size && text.at(i + 1).isLowSurrogate();
        parts.AddOther(isPair ? QChar::surrogateToUcs4(text.at(i), text.at(i + 1)) : text.at(i).unicode());
        i += static_cast<qsizetype>(isPair);
    }
    parts.AppendTo(key);
    return true;
}

} // namespace dao::jet
