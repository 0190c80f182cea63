// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/PlainPages.h"

#include <QFont>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace
{
// Millimetres.
constexpr double LineHeight = 4;
constexpr double FontHeight = 3.1;
/// Of one character of a font whose characters are all as wide.
constexpr double ColumnWidth = FontHeight * 0.61;

/// From here on scripts are about twice as wide as letters.
constexpr char16_t FirstWide = 0x2E80;
/// Of marks that take no column, as many as this to each column; what follows stands on a line of its own.
constexpr qsizetype MostCharactersToColumn = 4;

int ColumnsOf(QChar character)
{
    switch (character.category()) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return 0;
    default:
        return character.unicode() >= FirstWide && !character.isSurrogate() ? 2 : 1;
    }
}

/// Where the line that begins here ends: behind its line end, behind its last word that fits, or where it is full.
qsizetype EndOfLine(const QString& text, qsizetype begin, int columns)
{
    int used = 0;
    qsizetype behindWord = begin;
    for (qsizetype i = begin; i < text.size(); ++i) {
        const QChar character = text.at(i);
        if (character == u'\n')
            return i + 1;
        if (i - begin > columns * MostCharactersToColumn)
            return i;
        used += ColumnsOf(character);
        // A blank behind the last word that fits needs no room.
        if (character == u' ')
            behindWord = i + 1;
        else if (used > columns)
            return behindWord > begin ? behindWord : i - (character.isLowSurrogate() ? 1 : 0);
    }
    return text.size();
}

QTextOption LeftInOneLine()
{
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setTextDirection(Qt::LeftToRight);
    option.setWrapMode(QTextOption::NoWrap);
    return option;
}
} // namespace

PlainPages::PlainPages(const QString& text, const QSizeF& size)
    : Text_(text), Size_(size), LinesOnPage_(std::max(1, static_cast<int>(size.height() / LineHeight)))
{
    const int columns = std::max(2, static_cast<int>(size.width() / ColumnWidth));
    for (qsizetype begin = 0; begin < Text_.size(); begin = EndOfLine(Text_, begin, columns))
        Begins_.append(begin);
}

int PlainPages::PageCount() const
{
    return static_cast<int>((Begins_.size() + LinesOnPage_ - 1) / LinesOnPage_);
}

void PlainPages::PaintPage(QPainter& painter, int page, double dotsPerMillimetre) const
{
    QFont font(QStringList{QStringLiteral("Liberation Mono"), QStringLiteral("Courier New")});
    font.setStyleHint(QFont::Monospace);
    font.setPixelSize(std::max(1, qRound(FontHeight * dotsPerMillimetre)));
    painter.save();
    painter.setFont(font);
    painter.setPen(Qt::black);
    const double room = Size_.width() * dotsPerMillimetre;
    const qsizetype first = page * LinesOnPage_;
    const qsizetype last = std::min(first + LinesOnPage_, Begins_.size());
    for (qsizetype line = first; line < last; ++line) {
        const qsizetype end = line + 1 < Begins_.size() ? Begins_.at(line + 1) : Text_.size();
        QString words = Text_.sliced(Begins_.at(line), end - Begins_.at(line));
        while (!words.isEmpty() && words.back().isSpace())
            words.chop(1);
        if (words.isEmpty())
            continue;
        // Shaped once, to measure it and to draw it: that is what costs time with many scripts.
        QTextLayout layout(words, font, painter.device());
        layout.setTextOption(LeftInOneLine());
        layout.beginLayout();
        QTextLine whole = layout.createLine();
        layout.endLayout();
        painter.save();
        painter.translate(0, static_cast<double>(line - first) * LineHeight * dotsPerMillimetre);
        if (whole.naturalTextWidth() > room)
            painter.scale(room / whole.naturalTextWidth(), 1);
        layout.draw(&painter, QPointF(0, 0));
        painter.restore();
    }
    painter.restore();
}
