// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/LineBreaker.h"

#include <algorithm>

LineBreaker::LineBreaker(const QFont& font) : Metrics_(font)
{
    Plain_.fill(-1);
}

/// Of the character at that place, which is length units long.
double LineBreaker::WidthAt(const QString& text, qsizetype place, qsizetype& length) const
{
    const QChar unit = text.at(place);
    const bool isPair = unit.isHighSurrogate() && place + 1 < text.size() && text.at(place + 1).isLowSurrogate();
    length = isPair ? 2 : 1;
    if (unit.unicode() < Plain_.size()) {
        float& width = Plain_[unit.unicode()];
        if (width < 0)
            width = static_cast<float>(Metrics_.horizontalAdvance(unit));
        return static_cast<double>(width);
    }
    const char32_t character = isPair ? QChar::surrogateToUcs4(unit, text.at(place + 1)) : unit.unicode();
    const auto known = Others_.constFind(character);
    if (known != Others_.constEnd())
        return static_cast<double>(*known);
    const double width = Metrics_.horizontalAdvance(text.mid(place, length));
    Others_.insert(character, static_cast<float>(width));
    return width;
}

/// Behind the last character that the line holds; one at least.
qsizetype LineBreaker::EndOfLine(const QString& text, qsizetype start, double width) const
{
    double used = 0;
    qsizetype afterWord = -1;
    qsizetype length = 1;
    for (qsizetype place = start; place < text.size(); place += length) {
        const bool isSpace = text.at(place).isSpace();
        if (isSpace)
            afterWord = place;
        used += WidthAt(text, place, length);
        // Marks stand on the letter before them, and a blank may hang over the edge.
        if (used > width && !isSpace && place > start && !text.at(place).isMark())
            return afterWord > start ? afterWord : place;
    }
    return text.size();
}

namespace
{
/// Blanks at the end of a line begin no other one.
qsizetype StartOfNext(const QString& text, qsizetype end)
{
    while (end < text.size() && text.at(end).isSpace())
        ++end;
    return end;
}
} // namespace

QStringList LineBreaker::Break(const QString& text, double width, int most) const
{
    QStringList lines;
    qsizetype start = 0;
    while (lines.size() + 1 < most) {
        const qsizetype end = EndOfLine(text, start, width);
        if (end >= text.size())
            break;
        lines.append(text.mid(start, end - start));
        start = StartOfNext(text, end);
    }
    lines.append(text.mid(start));
    return lines;
}

int LineBreaker::Count(const QString& text, double width, int most) const
{
    int lines = 1;
    for (qsizetype end = EndOfLine(text, 0, width); lines < most && end < text.size(); ++lines)
        end = EndOfLine(text, StartOfNext(text, end), width);
    return lines;
}
