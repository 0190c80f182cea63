// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/Panel3.h"

#include "platform/widgets/Contrast.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/Twips.h"

#include <QMouseEvent>
#include <QPainter>

Panel3::Panel3(QWidget* parent) : QFrame(parent), BackColour_(SystemColour::ButtonFace) {}

void Panel3::SetBackColour(qint32 colour)
{
    BackColour_ = colour;
    update();
}

void Panel3::SetCaption(const QString& caption)
{
    Caption_ = caption;
    setAccessibleName(caption);
    updateGeometry();
    update();
}

Panel3::BorderStyles Panel3::BorderStyle() const
{
    return frameShape() == QFrame::NoFrame ? None : FixedSingle;
}

void Panel3::SetBorderStyle(BorderStyles style)
{
    setFrameStyle(style == None ? QFrame::NoFrame : QFrame::Box | QFrame::Plain);
}

void Panel3::SetBevel(Bevels bevel)
{
    Bevel_ = bevel;
    update();
}

QSize Panel3::sizeHint() const
{
    const int margin = fontMetrics().height();
    return {fontMetrics().horizontalAdvance(Caption_) + margin, fontMetrics().height() + margin / 2};
}

void Panel3::paintEvent(QPaintEvent* event)
{
    const QColor background = SystemColour::ToColour(BackColour_, palette());
    QPainter painter(this);
    painter.fillRect(rect(), background);
    if (!Caption_.isEmpty()) {
        painter.setPen(Contrast::BlackOrWhite(background));
        // A pressed button's caption goes in with it.
        const QRect place = contentsRect().translated(Bevel_ == InsetBevel ? QPoint(1, 1) : QPoint());
        painter.drawText(place, Qt::AlignCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(Caption_, Qt::ElideRight, place.width()));
    }
    DrawBevel(painter, background);
    painter.end();
    QFrame::paintEvent(event);
}

void Panel3::DrawBevel(QPainter& painter, const QColor& background) const
{
    if (Bevel_ == NoBevel)
        return;
    const QColor light = Contrast::Blend(background, Qt::white, 0.5);
    const QColor dark = Contrast::Blend(background, Qt::black, 0.45);
    const QColor above = Bevel_ == RaisedBevel ? light : dark;
    const QColor below = Bevel_ == RaisedBevel ? dark : light;
    // Filled rather than drawn as lines, which lie half outside on an enlarged screen.
    painter.fillRect(0, 0, width(), 1, above);
    painter.fillRect(0, 0, 1, height(), above);
    painter.fillRect(0, height() - 1, width(), 1, below);
    painter.fillRect(width() - 1, 0, 1, height(), below);
}

void Panel3::mousePressEvent(QMouseEvent* event)
{
    QFrame::mousePressEvent(event);
    Q_EMIT MouseDown(event->button(), event->position() * Twips::PerPixel(*this));
}

void Panel3::mouseReleaseEvent(QMouseEvent* event)
{
    QFrame::mouseReleaseEvent(event);
    Q_EMIT MouseUp(event->button(), event->position() * Twips::PerPixel(*this));
}
