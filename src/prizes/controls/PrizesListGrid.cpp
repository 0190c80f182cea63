// SPDX-License-Identifier: Apache-2.0

// The grid's keys and mouse in the prizes list, and the drag of a prize out of it.

#include "platform/widgets/DragData.h"
#include "platform/widgets/FlexGrid.h"
#include "prizes/controls/PrizesListHandler.h"

#include <QCursor>
#include <QKeyEvent>
#include <QScopeGuard>

void uPrizesList::TakeGridKey(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_F5:
        event->accept();
        Handle("grdPrizes_KeyDown", [this] { UpdateDisplay(); });
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        event->accept();
        Handle("grdPrizes_KeyDown", [this] { OpenCommand(); });
        break;
    default:
        break;
    }
}

void uPrizesList::TakeGridMouseDown(Qt::MouseButton button, const QPointF& twips)
{
    if (button == Qt::LeftButton) {
        GridDragStart_ = twips;
    } else if (button == Qt::RightButton) {
        grdPrizes_->setFocus();
        const QPointer<uPrizesList> self(this);
        SelectGridRowAt(*grdPrizes_, twips.y(), false);
        if (self)
            Handle("grdPrizes_MouseDown", [this] { TakeSelectionChange(); });
    }
}

void uPrizesList::TakeGridMouseMove(Qt::MouseButtons buttons, const QPointF& twips)
{
    if ((buttons & Qt::LeftButton) == 0 || !GridDragStart_)
        return;
    if (!DragRunner::IsDrag(*grdPrizes_, *GridDragStart_, twips))
        return;
    const QPointer<uPrizesList> self(this);
    SelectGridRowAt(*grdPrizes_, GridDragStart_->y(), false);
    if (!self)
        return;
    grdPrizes_->EndMouseTracking();
    GridDragStart_.reset();
    if (GridDragging_ || SelectedReference_ <= 0)
        return;
    GridDragging_ = true;
    Handle("grdPrizes_OLEStartDrag", [this] { StartGridDrag(); });
}

void uPrizesList::TakeGridMouseUp(Qt::MouseButton button)
{
    if (button == Qt::LeftButton)
        GridDragStart_.reset();
    else if (button == Qt::RightButton)
        PopUpMenu(QCursor::pos());
}

void uPrizesList::StartGridDrag()
{
    const QPointer<uPrizesList> self(this);
    const auto finish = qScopeGuard([self] {
        if (self)
            self->GridDragging_ = false;
    });
    const cPrizePtr prize = SelectedPrize(false);
    if (!prize)
        return;
    auto* dragged = new DragData; // the drag destroys it
    dragged->SetText(QStringLiteral("!KVPrize Reference=\"%1\"").arg(prize->Reference()));
    DragRunner::Run(*grdPrizes_, dragged, Qt::CopyAction | Qt::MoveAction);
}
