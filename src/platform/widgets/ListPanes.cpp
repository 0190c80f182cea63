// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/ListPanes.h"

#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/OverlayPanel.h"
#include "platform/widgets/TabStrip.h"
#include "platform/widgets/ToolBar.h"
#include "platform/widgets/Twips.h"

#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QStyle>

namespace
{
// Twips.
constexpr double LeastPaneWidth = 2500;
constexpr double LeastHeight = 1920;
constexpr double ToolBarOverhang = 15;
constexpr double FindMargin = 30;
constexpr double PaneMargin = 60;
constexpr double PaneGap = 30;
constexpr double OverlayOffset = 45;
constexpr double OverlayExcess = 15;
constexpr double ControlGap = 60;
const QString FindHolder = QStringLiteral("findholder");

/// rect: as it lies where people read from left to right.
void Place(QWidget& part, const QRect& rect)
{
    const QWidget& whole = *part.parentWidget();
    part.setGeometry(QStyle::visualRect(whole.layoutDirection(), whole.rect(), rect));
}
} // namespace

int ListPanes::Pixels(double twips) const
{
    return Twips::ToPixels(*Control, twips);
}

QLabel* ListPanes::MakeUnread(QWidget& page)
{
    auto* line = new QLabel(&page);
    line->setObjectName(QStringLiteral("lblUnread"));
    line->setTextFormat(Qt::PlainText);
    line->setAutoFillBackground(true);
    line->setBackgroundRole(QPalette::ToolTipBase);
    line->setForegroundRole(QPalette::ToolTipText);
    constexpr int Margin = 4;
    line->setMargin(Margin);
    line->hide();
    return line;
}

void ListPanes::SetLeastSize() const
{
    Control->setMinimumSize(Pixels(LeastPaneWidth), Pixels(LeastHeight));
}

void ListPanes::LayOut() const
{
    const int wide = qMax(Control->width(), Pixels(LeastPaneWidth));
    const int high = qMax(Control->height(), Pixels(LeastHeight));
    if (wide != Control->width() || high != Control->height()) {
        Control->resize(wide, high);
        return;
    }
    const int overhang = Pixels(ToolBarOverhang);
    const int band = qMax(Bar->sizeHint().height(), New->sizeHint().height()) + 2 * overhang;
    Bar->setGeometry(-overhang, -overhang, wide + 2 * overhang, band + overhang);
    const QSize button = New->sizeHint();
    Place(*New, {wide - button.width(), (band - button.height()) / 2, button.width(), button.height()});
    New->raise();
    LayOutFindBar();

    const int paneHeight = high - band;
    const int treeWidth = List->isHidden() ? wide : wide / 3;
    Place(*TreeTabs, {0, band, treeWidth, paneHeight});
    LayOutTree();
    if (List->isHidden())
        return;
    const int left = treeWidth + Pixels(PaneGap);
    Place(*List, {left, band, wide - left, paneHeight});
    ListTabs->setGeometry(List->rect());
    LayOutList();
}

void ListPanes::LayOutFindBar() const
{
    Bar->SetButtonWidth(FindHolder, Bar->width() - Bar->WidthOfOthers(FindHolder) - Pixels(FindMargin));
    const QRect place = Bar->ButtonRect(FindHolder);
    Find->setGeometry(place);
    const int gap = Pixels(ControlGap);
    const QSize caption = FindCaption->sizeHint();
    const int boxHeight = Box->sizeHint().height();
    Place(*FindCaption, {gap, 0, caption.width(), place.height()});
    const int left = gap + caption.width() + gap;
    // The button for a new entry lies over the far end of the bar.
    int right = place.width();
    if (!New->isHidden()) {
        const int barEnd =
            Bar->isRightToLeft() ? place.left() + Bar->x() : Control->width() - place.right() - 1 - Bar->x();
        right -= qMax(0, New->width() - barEnd);
    }
    Place(*Box, {left, (place.height() - boxHeight) / 2, qMax(0, right - left - gap), boxHeight});
}

void ListPanes::LayOutTree() const
{
    const int margin = Pixels(PaneMargin);
    Tree->setGeometry(TreeTabs->Page().rect().adjusted(margin, margin, -margin, -margin));
}

void ListPanes::LayOutList() const
{
    const int margin = Pixels(PaneMargin);
    Grid->setGeometry(ListTabs->Page().rect().adjusted(margin, margin, -margin, -margin));
    const int offset = Pixels(Grid->RowHeight(0) + OverlayOffset);
    const QRect grid = Grid->geometry();
    const QRect place(grid.left(), grid.top() + offset, grid.width(), grid.height() - offset + Pixels(OverlayExcess));
    Loading->setGeometry(place);
    Nothing->setGeometry(place);
    const int line = Unread->sizeHint().height();
    Unread->setGeometry(place.left(), place.bottom() + 1 - line, place.width(), line);
}

void ShowUnread(QLabel& line, int rows)
{
    line.setVisible(rows > 0);
    if (rows == 0)
        return;
    line.setText(rows == 1 ? QLabel::tr("1 row could not be read. Trying again.")
                           : QLabel::tr("%1 rows could not be read. Trying again.").arg(QLocale().toString(rows)));
    line.raise();
}
