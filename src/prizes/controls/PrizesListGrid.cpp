// SPDX-License-Identifier: Apache-2.0

// The grid's keys and mouse in the prizes list, and the drag of a prize out of it.

#include "common/controls/StationListHandler.h"
#include "platform/widgets/DragData.h"
#include "platform/widgets/FlexGrid.h"
#include "prizes/controls/uPrizesList.h"

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
    DragRunner::Run(*grdList_, dragged, Qt::CopyAction | Qt::MoveAction);
}
