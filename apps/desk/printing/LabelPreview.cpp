// SPDX-License-Identifier: Apache-2.0
#include "LabelPreview.h"

#include "common/LabelLayout.h"
#include "common/dialogs/LabelSheet.h"

#include <QPainter>

namespace
{
const QColor Outline(0xB8, 0xC4, 0xCC);
const QColor LabelEdge(0x8A, 0x92, 0x99);
constexpr int MostOutlines = 2000;
} // namespace

LabelPreview::LabelPreview(QWidget* parent) : QWidget(parent), Paper_(LabelLayout::A4) {}

void LabelPreview::Show(const cPageSetup& pageSetup, const QSizeF& paper, const QStringList& texts, int startAt)
{
    PageSetup_ = pageSetup;
    Paper_ = paper;
    Texts_ = texts;
    StartAt_ = startAt;
    update();
}

void LabelPreview::paintEvent(QPaintEvent*)
{
    const double scale = qMin((width() - 2) / Paper_.width(), (height() - 2) / Paper_.height());
    if (scale <= 0)
        return;
    const QSizeF size = Paper_ * scale;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate((width() - size.width()) / 2, (height() - size.height()) / 2);
    const QRectF sheet(QPointF(), size);
    painter.fillRect(sheet, Qt::white);
    painter.setPen(LabelEdge);
    painter.drawRect(sheet);
    painter.setClipRect(sheet);
    painter.setPen(Outline);
    const int labels = qMin(LabelLayout::LabelsPerSheet(PageSetup_), MostOutlines);
    for (int i = 0; i < labels; ++i) {
        const QRectF label = LabelLayout::PlaceOf(PageSetup_, i, 1).Label;
        painter.drawRect(QRectF(label.topLeft() * scale, label.size() * scale));
    }
    LabelSheet(PageSetup_, Paper_, Texts_, StartAt_).PaintSheet(painter, 0, scale);
}
