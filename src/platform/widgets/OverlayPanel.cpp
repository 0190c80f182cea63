// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/OverlayPanel.h"

#include "platform/widgets/Twips.h"

#include <QLabel>
#include <QMouseEvent>

namespace
{
/// Nobody reads faster, and drawing it takes longer than the rows that it counts.
constexpr qint64 DetailMilliseconds = 50;
} // namespace

OverlayPanel::OverlayPanel(const QString& text, QWidget* parent)
    : QFrame(parent), Text_(new QLabel(text, this)), Detail_(new QLabel(this))
{
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    setAccessibleName(text);
    for (QLabel* label : {Text_, Detail_}) {
        label->setAlignment(Qt::AlignCenter);
        label->setForegroundRole(QPalette::Text);
        label->setWordWrap(true);
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
}

void OverlayPanel::SetDetail(const QString& text)
{
    if (Detail_->text() == text)
        return;
    if (text.isEmpty())
        DetailAge_.invalidate();
    else if (DetailAge_.isValid() && !DetailAge_.hasExpired(DetailMilliseconds))
        return;
    else
        DetailAge_.start();
    Detail_->setText(text);
    LayOut();
}

void OverlayPanel::resizeEvent(QResizeEvent*)
{
    LayOut();
}

void OverlayPanel::mouseReleaseEvent(QMouseEvent* event)
{
    const QPointF position = event->position();
    Q_EMIT MouseUp(event->button(), {Twips::FromPixels(*this, position.x()), Twips::FromPixels(*this, position.y())});
}

void OverlayPanel::LayOut()
{
    const int line = fontMetrics().lineSpacing();
    const int textHeight = qMax(line, Text_->heightForWidth(width()));
    const int top = qMax(0, (height() - textHeight) / 2);
    Text_->setGeometry(0, top, width(), textHeight);
    Detail_->setGeometry(0, top + textHeight + line / 2, width(), line);
}
