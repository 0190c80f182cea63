// SPDX-License-Identifier: Apache-2.0

// The controls of the prizes list.

#include "common/controls/StationListHandler.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/TabStrip.h"
#include "prizes/controls/PrizesListNames.h"
#include "prizes/controls/uPrizesList.h"

#include <QKeyEvent>

void uPrizesList::MakeListControls()
{
    MakeControls({"lblFindDesc", "cmdNewPrize", "picPrizes", "tbsPrizes", "grdPrizes", "picNoPrizes",
                  PrizesListNames::AllPrizes, tr("Find in titles and notes"), tr("Kinds of prizes"), tr("Prizes"),
                  QStringLiteral("newprize"), QStringLiteral("New Prize"), QStringLiteral("Loading Prizes..."),
                  QStringLiteral("There are no matching prizes to display.")});
    // They would end the pattern within the query.
    comboFind_->SetSwallowed(QStringLiteral("'\""));
    tbsCategories_->ShowSingleTab(QStringLiteral("Categories"));
    treeCategories_->setRootIsDecorated(false); // no kind has kinds of its own
    tbsList_->ShowSingleTab(QStringLiteral("Prizes"));
    grdList_->setToolTip(QStringLiteral("Click and Drag to move this Prize"));
    connect(treeCategories_, &CategoryTreeView::KeyDown, this, [this](QKeyEvent* event) {
        if (event->key() != Qt::Key_F5)
            return;
        event->accept();
        Handle("treeCategories_KeyDown", [this] { UpdateCategories(); });
    });
    connect(grdList_, &FlexGrid::EnterCell, this,
            [this] { Handle("grdPrizes_SelChange", [this] { TakeSelection(); }); });
    connect(grdList_, &FlexGrid::KeyDown, this, &uPrizesList::TakeGridKey);
}

QStringList uPrizesList::FindEntries() const
{
    return comboFind_->History();
}
