// SPDX-License-Identifier: Apache-2.0
#include "messages/controls/ValueLabel.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>

namespace
{
/// Drawing and measuring take their time with a text's length.
constexpr qsizetype LongestValue = 10'000;
constexpr qsizetype LongestToolTip = 1000;
constexpr char16_t Ellipsis = 0x2026;
} // namespace

ValueLabel::ValueLabel(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void ValueLabel::SetValue(const QString& value)
{
    QString line = value.size() <= LongestValue ? value : value.left(LongestValue - 1) + QChar(Ellipsis);
    line.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    for (const char16_t lineEnd : {u'\n', u'\r', u'\v', u'\f', u'\u0085', u'\u2028', u'\u2029'})
        line.replace(QChar(lineEnd), u' ');
    setText(line);
    UpdateToolTip();
}

bool ValueLabel::Fits() const
{
    return fontMetrics().horizontalAdvance(text()) <= contentsRect().width();
}

void ValueLabel::UpdateToolTip()
{
    // As rich text a long line wraps, and no text is taken for markup.
    setToolTip(Fits() ? QString() : QStringLiteral("<span>%1</span>").arg(text().left(LongestToolTip).toHtmlEscaped()));
}

void ValueLabel::paintEvent(QPaintEvent* event)
{
    // While a part is selected the whole text is drawn, so that the selection is seen.
    if (Fits() || hasSelectedText())
        return QLabel::paintEvent(event);
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
    painter.drawText(contentsRect(), QStyle::visualAlignment(layoutDirection(), alignment()) | Qt::TextSingleLine,
                     shown);
}

void ValueLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    UpdateToolTip();
}

void ValueLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        UpdateToolTip();
}
