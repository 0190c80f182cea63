// SPDX-License-Identifier: Apache-2.0
#include "SpellingEdit.h"

#include "platform/widgets/Contrast.h"

#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTextBlock>
#include <QTextLayout>
#include <QtMath>

#include <algorithm>

namespace
{
const QColor Red(0xD3, 0x2F, 0x2F);
const QColor RedOnDark(0xFF, 0x6E, 0x6E);
constexpr int HalfLight = 128;
/// Of the height of a line.
constexpr double WaveShare = 0.12;
constexpr double PenShare = 0.07;

/// Between two points of a line, from one height to another one.
void DrawWave(QPainter& painter, double from, double to, double top, double bottom)
{
    const double step = bottom - top;
    QPainterPath wave(QPointF(from, bottom));
    const int steps = qCeil((to - from) / step);
    for (int i = 1; i <= steps; ++i)
        wave.lineTo(std::min(from + i * step, to), i % 2 == 1 ? top : bottom);
    painter.drawPath(wave);
}
} // namespace

QColor SpellingEdit::WaveColour() const
{
    const QColor ground = palette().color(QPalette::Base);
    return Contrast::Readable(ground.lightness() < HalfLight ? RedOnDark : Red, ground);
}

void SpellingEdit::SetMarks(const QList<QTextCursor>& marks)
{
    const bool isSame =
        std::equal(marks.begin(), marks.end(), Marks_.begin(), Marks_.end(), [](const auto& a, const auto& b) {
            return a.selectionStart() == b.selectionStart() && a.selectionEnd() == b.selectionEnd();
        });
    if (isSame)
        return;
    Marks_ = marks;
    viewport()->update();
}

void SpellingEdit::paintEvent(QPaintEvent* event)
{
    QPlainTextEdit::paintEvent(event);
    if (Marks_.isEmpty())
        return;
    QPainter painter(viewport());
    painter.setClipRect(event->rect());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    for (const QTextCursor& word : std::as_const(Marks_)) {
        if (word.hasSelection())
            DrawWaves(painter, word);
    }
}

/// A long word may go on in the next line. The wave stays within the line: what is drawn anew is a line.
void SpellingEdit::DrawWaves(QPainter& painter, const QTextCursor& word) const
{
    const QTextBlock block = document()->findBlock(word.selectionStart());
    const QTextLayout& layout = *block.layout();
    const QPointF origin = blockBoundingGeometry(block).translated(contentOffset()).topLeft();
    const int start = word.selectionStart() - block.position();
    const int end = word.selectionEnd() - block.position();
    if (origin.y() > viewport()->height() || start >= block.length())
        return;
    for (int i = layout.lineForTextPosition(start).lineNumber(); i >= 0 && i < layout.lineCount(); ++i) {
        const QTextLine line = layout.lineAt(i);
        if (line.textStart() >= end)
            break;
        const double one = line.cursorToX(std::max(start, line.textStart()));
        const double other = line.cursorToX(std::min(end, line.textStart() + line.textLength()));
        const double pen = std::max(1.0, line.height() * PenShare);
        const double baseline = origin.y() + line.y() + line.ascent();
        const double bottom = origin.y() + line.y() + line.height() - pen / 2;
        const double top = std::min(std::max(baseline + pen / 2, bottom - line.height() * WaveShare), bottom - pen);
        painter.setPen(QPen(WaveColour(), pen));
        DrawWave(painter, origin.x() + std::min(one, other), origin.x() + std::max(one, other), top, bottom);
    }
}
