// SPDX-License-Identifier: Apache-2.0
#include "DisplayText.h"

#include "common/HarmlessText.h"

#include <QList>

#include <algorithm>
#include <iterator>

namespace
{
constexpr char16_t Ellipsis = 0x2026;
constexpr char16_t FirstStrongIsolate = 0x2068;
constexpr char16_t PopDirectionalIsolate = 0x2069;
constexpr char32_t SoftHyphen = 0xAD;
constexpr char32_t ZeroWidthJoiner = 0x200D;
constexpr char32_t FirstJamoVowel = 0x1160;
constexpr char32_t LastJamo = 0x11FF;
constexpr char32_t FirstSkinTone = 0x1F3FB;
constexpr char32_t LastSkinTone = 0x1F3FF;

struct Range
{
    char32_t First;
    char32_t Last;
};

/// Characters of two columns: East Asian width W and F of Unicode 15, gaps without characters closed.
constexpr Range Wide[] = {
    {0x1100, 0x115F},   {0x231A, 0x231B},   {0x2329, 0x232A},   {0x23E9, 0x23EC},   {0x23F0, 0x23F0},
    {0x23F3, 0x23F3},   {0x25FD, 0x25FE},   {0x2614, 0x2615},   {0x2648, 0x2653},   {0x267F, 0x267F},
    {0x2693, 0x2693},   {0x26A1, 0x26A1},   {0x26AA, 0x26AB},   {0x26BD, 0x26BE},   {0x26C4, 0x26C5},
    {0x26CE, 0x26CE},   {0x26D4, 0x26D4},   {0x26EA, 0x26EA},   {0x26F2, 0x26F3},   {0x26F5, 0x26F5},
    {0x26FA, 0x26FA},   {0x26FD, 0x26FD},   {0x2705, 0x2705},   {0x270A, 0x270B},   {0x2728, 0x2728},
    {0x274C, 0x274C},   {0x274E, 0x274E},   {0x2753, 0x2755},   {0x2757, 0x2757},   {0x2795, 0x2797},
    {0x27B0, 0x27B0},   {0x27BF, 0x27BF},   {0x2B1B, 0x2B1C},   {0x2B50, 0x2B50},   {0x2B55, 0x2B55},
    {0x2E80, 0x303E},   {0x3041, 0x3247},   {0x3250, 0x4DBF},   {0x4E00, 0xA4CF},   {0xA960, 0xA97F},
    {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE10, 0xFE19},   {0xFE30, 0xFE6F},   {0xFF01, 0xFF60},
    {0xFFE0, 0xFFE6},   {0x16FE0, 0x1B2FB}, {0x1F004, 0x1F004}, {0x1F0CF, 0x1F0CF}, {0x1F18E, 0x1F18E},
    {0x1F191, 0x1F19A}, {0x1F200, 0x1F320}, {0x1F32D, 0x1F335}, {0x1F337, 0x1F37C}, {0x1F37E, 0x1F393},
    {0x1F3A0, 0x1F3CA}, {0x1F3CF, 0x1F3D3}, {0x1F3E0, 0x1F3F0}, {0x1F3F4, 0x1F3F4}, {0x1F3F8, 0x1F43E},
    {0x1F440, 0x1F440}, {0x1F442, 0x1F4FC}, {0x1F4FF, 0x1F53D}, {0x1F54B, 0x1F54E}, {0x1F550, 0x1F567},
    {0x1F57A, 0x1F57A}, {0x1F595, 0x1F596}, {0x1F5A4, 0x1F5A4}, {0x1F5FB, 0x1F64F}, {0x1F680, 0x1F6C5},
    {0x1F6CC, 0x1F6CC}, {0x1F6D0, 0x1F6D2}, {0x1F6D5, 0x1F6DF}, {0x1F6EB, 0x1F6EF}, {0x1F6F4, 0x1F6FF},
    {0x1F7E0, 0x1F7F0}, {0x1F90C, 0x1F93A}, {0x1F93C, 0x1F945}, {0x1F947, 0x1F9FF}, {0x1FA70, 0x1FAFF},
    {0x20000, 0x3FFFD},
};

bool IsWide(char32_t character)
{
    const Range* range = std::upper_bound(std::begin(Wide), std::end(Wide), character,
                                          [](char32_t value, const Range& r) { return value < r.First; });
    return range != std::begin(Wide) && character <= (range - 1)->Last;
}

bool IsSkinTone(char32_t character)
{
    return character >= FirstSkinTone && character <= LastSkinTone;
}

bool IsVariationSelector(char32_t character)
{
    return character >= 0xFE00 && character <= 0xFE0F;
}

bool IsRightToLeft(char32_t character)
{
    const QChar::Direction direction = QChar::direction(character);
    return direction == QChar::DirR || direction == QChar::DirAL;
}

int WidthOf(char32_t character)
{
    if (character >= FirstJamoVowel && character <= LastJamo)
        return 0;
    switch (QChar::category(character)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return 0;
    default:
        return IsWide(character) ? 2 : 1;
    }
}
} // namespace

QString OneLine(const QString& text)
{
    return HarmlessText::Words(text);
}

int DisplayWidth(QStringView text)
{
    int width = 0;
    for (const char32_t character : text.toUcs4())
        width += WidthOf(character);
    return width;
}

QString Cell(const QString& text, int width)
{
    QString shown;
    int used = 0;
    qsizetype fitting = 0; // what is kept, should the ellipsis be needed
    int fittingWidth = 0;
    bool isJoined = false;
    bool isCut = false;
    bool isRightToLeft = false;
    for (const char32_t character : OneLine(text).toUcs4()) {
        const bool followsJoiner = isJoined;
        // A joiner between letters shapes them and has no picture to drop.
        isJoined = character == ZeroWidthJoiner && used > 0 && !shown.isEmpty() && !shown.back().isLetter();
        if (isJoined || followsJoiner || IsSkinTone(character) || IsVariationSelector(character) ||
            character == SoftHyphen)
            continue;
        const int added = WidthOf(character);
        if (used + added > width) {
            isCut = true;
            break;
        }
        shown.append(QString::fromUcs4(&character, 1));
        used += added;
        isRightToLeft = isRightToLeft || IsRightToLeft(character);
        if (used < width) {
            fitting = shown.size();
            fittingWidth = used;
        }
    }
    if (isCut && width > 0) {
        shown.truncate(fitting);
        shown.append(QChar(Ellipsis));
        used = fittingWidth + 1;
    }
    if (isRightToLeft)
        shown = QChar(FirstStrongIsolate) + shown + QChar(PopDirectionalIsolate);
    return shown + QString(qMax(0, width - used), u' ');
}
