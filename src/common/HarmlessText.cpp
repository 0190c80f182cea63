// SPDX-License-Identifier: Apache-2.0
#include "common/HarmlessText.h"

#include <algorithm>

namespace
{
constexpr QChar Replacement(0xFFFD);
constexpr QChar FirstStrongIsolate(0x2068);
constexpr QChar PopDirectionalIsolate(0x2069);

enum class Kind
{
    Fit,
    Control,
    LineEnd, ///< And tabs: what becomes a blank on one line.
    Direction
};

bool IsBetween(QChar character, char16_t first, char16_t last)
{
    return character >= QChar(first) && character <= QChar(last);
}

Kind KindOf(QChar character)
{
    if (IsBetween(character, u' ', u'~'))
        return Kind::Fit;
    if (character == u'\n' || character == u'\r' || character == u'\t' || IsBetween(character, 0x2028, 0x2029))
        return Kind::LineEnd;
    if (character < QChar(u' ') || IsBetween(character, 0x7F, 0x9F))
        return Kind::Control;
    const bool isDirection = character == QChar(0x061C) || IsBetween(character, 0x200E, 0x200F) ||
                             IsBetween(character, 0x202A, 0x202E) || IsBetween(character, 0x2066, 0x2069);
    return isDirection ? Kind::Direction : Kind::Fit;
}

bool IsFit(QChar character)
{
    return KindOf(character) == Kind::Fit;
}

bool Never(QChar)
{
    return false;
}

/// Where the isolate that begins at start ends; -1 when its line or another isolate comes first.
qsizetype IsolateEnd(const QString& text, qsizetype start)
{
    for (qsizetype i = start + 1; i < text.size(); ++i) {
        if (text.at(i) == PopDirectionalIsolate)
            return i;
        if (IsBetween(text.at(i), 0x2066, 0x2068) || KindOf(text.at(i)) == Kind::LineEnd)
            return -1;
    }
    return -1;
}

enum class Isolates
{
    Keep,
    Drop
};

template <typename KeepsLineEnd>
QString Clean(const QString& text, KeepsLineEnd keepsLineEnd, Isolates isolates)
{
    if (std::all_of(text.begin(), text.end(), IsFit))
        return text;
    QString result;
    result.reserve(text.size());
    qsizetype isolateEnd = -1;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        switch (KindOf(character)) {
        case Kind::Fit:
            result.append(character);
            break;
        case Kind::LineEnd:
            result.append(keepsLineEnd(character) ? character : QChar(u' '));
            break;
        case Kind::Control:
            result.append(Replacement);
            break;
        case Kind::Direction:
            if (isolates == Isolates::Keep && character == FirstStrongIsolate)
                isolateEnd = IsolateEnd(text, i);
            if (i == isolateEnd || (character == FirstStrongIsolate && isolateEnd > i))
                result.append(character);
        }
    }
    return result;
}
} // namespace

QString HarmlessText::Line(const QString& text)
{
    return Clean(text, Never, Isolates::Keep);
}

QString HarmlessText::Lines(const QString& text)
{
    const auto keeps = [](QChar character) { return character == u'\n' || character == u'\t'; };
    QString lines = text;
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return Clean(lines, keeps, Isolates::Keep);
}

QString HarmlessText::Words(const QString& text)
{
    return Clean(text, Never, Isolates::Drop).simplified();
}

QByteArray HarmlessText::Json(const QByteArray& json)
{
    const QString text = QString::fromUtf8(json);
    // Its writer escaped what is below the blank; a line end can only stand between values.
    const auto isFit = [](QChar character) { return character == u'\n' || IsFit(character); };
    if (std::all_of(text.begin(), text.end(), isFit))
        return json;
    QString result;
    result.reserve(text.size());
    for (const QChar character : text) {
        if (isFit(character))
            result.append(character);
        else
            result.append(QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0')));
    }
    return result.toUtf8();
}
