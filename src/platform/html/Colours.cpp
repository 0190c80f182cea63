// SPDX-License-Identifier: Apache-2.0
#include "platform/html/Colours.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace
{
struct NamedColour
{
    const char* Name;
    quint32 Value;
};

/// The names of CSS, sorted.
// clang-format off
constexpr NamedColour Named[] = {
    {"aliceblue", 0xF0F8FF}, {"antiquewhite", 0xFAEBD7}, {"aqua", 0x00FFFF}, {"aquamarine", 0x7FFFD4}, {"azure",
    0xF0FFFF}, {"beige", 0xF5F5DC}, {"bisque", 0xFFE4C4}, {"black", 0x000000}, {"blanchedalmond", 0xFFEBCD},
    {"blue", 0x0000FF}, {"blueviolet", 0x8A2BE2}, {"brown", 0xA52A2A}, {"burlywood", 0xDEB887}, {"cadetblue",
    0x5F9EA0}, {"chartreuse", 0x7FFF00}, {"chocolate", 0xD2691E}, {"coral", 0xFF7F50}, {"cornflowerblue",
    0x6495ED}, {"cornsilk", 0xFFF8DC}, {"crimson", 0xDC143C}, {"cyan", 0x00FFFF}, {"darkblue", 0x00008B},
    {"darkcyan", 0x008B8B}, {"darkgoldenrod", 0xB8860B}, {"darkgray", 0xA9A9A9}, {"darkgreen", 0x006400},
    {"darkgrey", 0xA9A9A9}, {"darkkhaki", 0xBDB76B}, {"darkmagenta", 0x8B008B}, {"darkolivegreen", 0x556B2F},
    {"darkorange", 0xFF8C00}, {"darkorchid", 0x9932CC}, {"darkred", 0x8B0000}, {"darksalmon", 0xE9967A},
    {"darkseagreen", 0x8FBC8F}, {"darkslateblue", 0x483D8B}, {"darkslategray", 0x2F4F4F}, {"darkslategrey",
    0x2F4F4F}, {"darkturquoise", 0x00CED1}, {"darkviolet", 0x9400D3}, {"deeppink", 0xFF1493}, {"deepskyblue",
    0x00BFFF}, {"dimgray", 0x696969}, {"dimgrey", 0x696969}, {"dodgerblue", 0x1E90FF}, {"firebrick", 0xB22222},
    {"floralwhite", 0xFFFAF0}, {"forestgreen", 0x228B22}, {"fuchsia", 0xFF00FF}, {"gainsboro", 0xDCDCDC},
    {"ghostwhite", 0xF8F8FF}, {"gold", 0xFFD700}, {"goldenrod", 0xDAA520}, {"gray", 0x808080}, {"green", 0x008000},
    {"greenyellow", 0xADFF2F}, {"grey", 0x808080}, {"honeydew", 0xF0FFF0}, {"hotpink", 0xFF69B4}, {"indianred",
    0xCD5C5C}, {"indigo", 0x4B0082}, {"ivory", 0xFFFFF0}, {"khaki", 0xF0E68C}, {"lavender", 0xE6E6FA},
    {"lavenderblush", 0xFFF0F5}, {"lawngreen", 0x7CFC00}, {"lemonchiffon", 0xFFFACD}, {"lightblue", 0xADD8E6},
    {"lightcoral", 0xF08080}, {"lightcyan", 0xE0FFFF}, {"lightgoldenrodyellow", 0xFAFAD2}, {"lightgray", 0xD3D3D3},
    {"lightgreen", 0x90EE90}, {"lightgrey", 0xD3D3D3}, {"lightpink", 0xFFB6C1}, {"lightsalmon", 0xFFA07A},
    {"lightseagreen", 0x20B2AA}, {"lightskyblue", 0x87CEFA}, {"lightslategray", 0x778899}, {"lightslategrey",
    0x778899}, {"lightsteelblue", 0xB0C4DE}, {"lightyellow", 0xFFFFE0}, {"lime", 0x00FF00}, {"limegreen",
    0x32CD32}, {"linen", 0xFAF0E6}, {"magenta", 0xFF00FF}, {"maroon", 0x800000}, {"mediumaquamarine", 0x66CDAA},
    {"mediumblue", 0x0000CD}, {"mediumorchid", 0xBA55D3}, {"mediumpurple", 0x9370DB}, {"mediumseagreen", 0x3CB371},
    {"mediumslateblue", 0x7B68EE}, {"mediumspringgreen", 0x00FA9A}, {"mediumturquoise", 0x48D1CC},
    {"mediumvioletred", 0xC71585}, {"midnightblue", 0x191970}, {"mintcream", 0xF5FFFA}, {"mistyrose", 0xFFE4E1},
    {"moccasin", 0xFFE4B5}, {"navajowhite", 0xFFDEAD}, {"navy", 0x000080}, {"oldlace", 0xFDF5E6}, {"olive",
    0x808000}, {"olivedrab", 0x6B8E23}, {"orange", 0xFFA500}, {"orangered", 0xFF4500}, {"orchid", 0xDA70D6},
    {"palegoldenrod", 0xEEE8AA}, {"palegreen", 0x98FB98}, {"paleturquoise", 0xAFEEEE}, {"palevioletred", 0xDB7093},
    {"papayawhip", 0xFFEFD5}, {"peachpuff", 0xFFDAB9}, {"peru", 0xCD853F}, {"pink", 0xFFC0CB}, {"plum", 0xDDA0DD},
    {"powderblue", 0xB0E0E6}, {"purple", 0x800080}, {"red", 0xFF0000}, {"rosybrown", 0xBC8F8F}, {"royalblue",
    0x4169E1}, {"saddlebrown", 0x8B4513}, {"salmon", 0xFA8072}, {"sandybrown", 0xF4A460}, {"seagreen", 0x2E8B57},
    {"seashell", 0xFFF5EE}, {"sienna", 0xA0522D}, {"silver", 0xC0C0C0}, {"skyblue", 0x87CEEB}, {"slateblue",
    0x6A5ACD}, {"slategray", 0x708090}, {"slategrey", 0x708090}, {"snow", 0xFFFAFA}, {"springgreen", 0x00FF7F},
    {"steelblue", 0x4682B4}, {"tan", 0xD2B48C}, {"teal", 0x008080}, {"thistle", 0xD8BFD8}, {"tomato", 0xFF6347},
    {"turquoise", 0x40E0D0}, {"violet", 0xEE82EE}, {"wheat", 0xF5DEB3}, {"white", 0xFFFFFF}, {"whitesmoke",
    0xF5F5F5}, {"yellow", 0xFFFF00}, {"yellowgreen", 0x9ACD32},
};
// clang-format on

std::optional<quint32> ReadHexadecimal(QStringView digits)
{
    if (!std::all_of(digits.begin(), digits.end(), [](QChar c) {
            return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
        }))
        return std::nullopt;
    const quint32 value = digits.toUInt(nullptr, 16);
    switch (digits.size()) {
    case 3:
        return (value & 0xF00) * 0x1100 | (value & 0xF0) * 0x110 | (value & 0xF) * 0x11;
    case 4:
        return ReadHexadecimal(digits.left(3));
    case 6:
        return value;
    case 8:
        return value >> 8;
    default:
        return std::nullopt;
    }
}

std::optional<quint32> ReadComponents(QStringView text)
{
    QString list = text.toString();
    list.replace(u'/', u' ').replace(u',', u' ');
    const QStringList parts = list.split(u' ', Qt::SkipEmptyParts);
    if (parts.size() < 3 || parts.size() > 4)
        return std::nullopt;
    quint32 colour = 0;
    for (int i = 0; i < 4; ++i) {
        if (i == parts.size())
            break;
        QString part = parts.at(i);
        const bool isPercentage = part.endsWith(u'%');
        if (isPercentage)
            part.chop(1);
        bool isNumber = false;
        const double number = part.toDouble(&isNumber);
        if (!isNumber || !std::isfinite(number))
            return std::nullopt;
        if (i == 3 && number <= 0)
            return std::nullopt;
        if (i < 3)
            colour = colour << 8 |
                     static_cast<quint32>(qRound(std::clamp(isPercentage ? number * 2.55 : number, 0.0, 255.0)));
    }
    return colour;
}

bool IsHexadecimal(QChar character)
{
    return (character >= u'0' && character <= u'9') || (character >= u'a' && character <= u'f') ||
           (character >= u'A' && character <= u'F');
}

std::optional<quint32> ReadName(const QString& lower)
{
    const QByteArray name = lower.toLatin1();
    const auto* found =
        std::lower_bound(std::begin(Named), std::end(Named), name,
                         [](const NamedColour& one, const QByteArray& other) { return one.Name < other; });
    return found != std::end(Named) && name == found->Name ? std::optional(found->Value) : std::nullopt;
}

double Luminance(quint32 colour)
{
    const auto linear = [](quint32 component) {
        const double value = component / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour >> 16 & 0xFF) + 0.7152 * linear(colour >> 8 & 0xFF) + 0.0722 * linear(colour & 0xFF);
}
} // namespace

std::optional<quint32> Colours::Read(QStringView text)
{
    text = text.trimmed();
    constexpr qsizetype Longest = 64;
    if (text.isEmpty() || text.size() > Longest)
        return std::nullopt;
    if (text.startsWith(u'#'))
        return ReadHexadecimal(text.mid(1));
    const QString lower = text.toString().toLower();
    if (lower.startsWith(QLatin1String("rgb")) && lower.endsWith(u')')) {
        const qsizetype open = lower.indexOf(u'(');
        return ReadComponents(QStringView(lower).mid(open + 1, lower.size() - open - 2));
    }
    if (const std::optional<quint32> named = ReadName(lower))
        return named;
    return text.size() == 6 ? ReadHexadecimal(text) : std::nullopt;
}

std::optional<quint32> Colours::ReadAttribute(QStringView text)
{
    text = text.trimmed();
    const QString lower = text.left(128).toString().toLower();
    if (lower.isEmpty() || lower == QLatin1String("transparent"))
        return std::nullopt;
    if (const std::optional<quint32> named = ReadName(lower))
        return named;
    const bool isShort =
        lower.size() == 4 && lower.startsWith(u'#') && std::all_of(lower.begin() + 1, lower.end(), IsHexadecimal);
    if (isShort)
        return ReadHexadecimal(QStringView(lower).mid(1));

    QString digits = lower.mid(lower.startsWith(u'#') ? 1 : 0);
    for (QChar& character : digits)
        character = IsHexadecimal(character) ? character : QChar(u'0');
    while (digits.isEmpty() || digits.size() % 3 != 0)
        digits += u'0';
    const qsizetype length = digits.size() / 3;
    // Zeros that all three parts begin with do not count while more than two digits are left.
    constexpr qsizetype Longest = 8;
    qsizetype skipped = std::max(length - Longest, qsizetype{0});
    const auto digit = [&](int part, qsizetype place) { return digits.at(part * length + place); };
    while (length - skipped > 2 && digit(0, skipped) == u'0' && digit(1, skipped) == u'0' && digit(2, skipped) == u'0')
        ++skipped;
    quint32 colour = 0;
    for (int part = 0; part < 3; ++part) {
        const QStringView rest = QStringView(digits).mid(part * length + skipped, length - skipped);
        colour = colour << 8 | rest.left(2).toUInt(nullptr, 16);
    }
    return colour;
}

QString Colours::Text(quint32 colour)
{
    return QStringLiteral("#%1").arg(colour, 6, 16, QLatin1Char('0'));
}

double Colours::Contrast(quint32 one, quint32 other)
{
    const double first = Luminance(one);
    const double second = Luminance(other);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

quint32 Colours::Blend(quint32 one, quint32 other, double share)
{
    quint32 blend = 0;
    for (const int shift : {16, 8, 0}) {
        const double from = (one >> shift) & 0xFFU;
        const double to = (other >> shift) & 0xFFU;
        blend |= static_cast<quint32>(std::lround(from + (to - from) * share)) << shift;
    }
    return blend;
}

quint32 Colours::Readable(quint32 colour, quint32 ground, double least)
{
    constexpr quint32 black = 0;
    constexpr quint32 white = 0xFFFFFF;
    constexpr int steps = 10;
    const quint32 end = Contrast(black, ground) >= Contrast(white, ground) ? black : white;
    if (Contrast(colour, ground) >= least)
        return colour;
    for (int step = 1; step < steps; ++step) {
        const quint32 shade = Blend(colour, end, static_cast<double>(step) / steps);
        if (Contrast(shade, ground) >= GoodContrast)
            return shade;
    }
    return end;
}
