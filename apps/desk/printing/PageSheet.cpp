// SPDX-License-Identifier: Apache-2.0
#include "printing/PageSheet.h"

#include "platform/widgets/PrintedPages.h"

#include <QPainter>

namespace
{
constexpr int EdgeWidth = 8;
constexpr double MillimetresPerInch = 25.4;
constexpr double SmallestScale = 0.5; // dots a millimetre
const QColor EdgeColour(0x8A, 0x92, 0x99);
} // namespace

PageSheet::PageSheet(QWidget* parent) : QWidget(parent) {}

int PageSheet::PageCount() const
{
    return Pages_ ? Pages_->PageCount() : 0;
}

void PageSheet::SetPages(std::shared_ptr<const PrintedPages> pages)
{
    Pages_ = std::move(pages);
    Page_ = qBound(0, Page_, qMax(PageCount() - 1, 0));
    FitSize();
    update();
    Q_EMIT PageChanged(Page_);
}

void PageSheet::SetPage(int page)
{
    page = qBound(0, page, qMax(PageCount() - 1, 0));
    if (page == Page_)
        return;
    Page_ = page;
    update();
    Q_EMIT PageChanged(Page_);
}

void PageSheet::SetZoom(double zoom)
{
    Zoom_ = zoom;
    FitSize();
}

void PageSheet::SetView(const QSize& view)
{
    View_ = view;
    FitSize();
}

double PageSheet::DotsPerMillimetre() const
{
    const QSizeF paper = Pages_ ? Pages_->Setup().Paper : PaperSetup::A4;
    if (Zoom_ > 0)
        return Zoom_ * logicalDpiX() / MillimetresPerInch;
    const double across = (View_.width() - 2 * EdgeWidth) / paper.width();
    const double down = (View_.height() - 2 * EdgeWidth) / paper.height();
    return qMax(SmallestScale, Zoom_ < 0 ? across : qMin(across, down));
}

void PageSheet::FitSize()
{
    const QSizeF paper = (Pages_ ? Pages_->Setup().Paper : PaperSetup::A4) * DotsPerMillimetre();
    const QSize size = paper.toSize() + QSize(2 * EdgeWidth, 2 * EdgeWidth);
    // A smaller sheet lies in the middle of the view.
    setFixedSize(size.expandedTo(View_));
    update();
}

void PageSheet::paintEvent(QPaintEvent*)
{
    if (!Pages_)
        return;
    const double scale = DotsPerMillimetre();
    const QSizeF paper = Pages_->Setup().Paper * scale;
    const QRectF sheet(QPointF((width() - paper.width()) / 2, (height() - paper.height()) / 2), paper);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(sheet, Qt::white);
    painter.setPen(EdgeColour);
    painter.drawRect(sheet);
    painter.setClipRect(sheet);
    painter.translate(sheet.topLeft());
    Pages_->PaintPage(painter, Page_, scale);
}
