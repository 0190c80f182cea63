#include "platform/widgets/Panel3.h"

#include "platform/widgets/Contrast.h"
#include "platform/widgets/SystemColour.h"

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
        const QRect place = contentsRect();
        painter.drawText(place, Qt::AlignCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(Caption_, Qt::ElideRight, place.width()));
    }
    painter.end();
    QFrame::paintEvent(event);
}
