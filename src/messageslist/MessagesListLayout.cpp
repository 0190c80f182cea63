// SPDX-License-Identifier: Apache-2.0

// The controls of the messages list and where they lie.

#include "common/controls/StationListHandler.h"
#include "messageslist/MessagesListTexts.h"
#include "messageslist/uMessagesList.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/TabStrip.h"
#include "platform/widgets/ToolBar.h"

#include <QAction>
#include <QKeyEvent>
#include <QMenu>
#include <QTabBar>

namespace
{
const QString Stop = QStringLiteral("stop");
} // namespace

void uMessagesList::MakeListControls()
{
    MakeControls({"lblFind", "cmdNewMessage", "picMessages", "tbsMessages", "grdMessages", "picNoMessages",
                  MessagesListTexts::AllMessages, tr("Find in subjects"), tr("Folders"), tr("Messages"),
                  QStringLiteral("new"), QStringLiteral("New Message"), QStringLiteral("Loading Messages..."),
                  QStringLiteral("There are no matching messages to display.")});
    toolSearch_->AddButton(Stop, Icons::Get(Stop), tr("Stop"));
    // Nothing can be stopped by it, so it does not offer itself.
    toolSearch_->SetButtonVisible(Stop, false);
    tbsList_->setAccessibleName(tr("Which messages"));
    ConnectGridKeys();
    ConnectTree();
}

void uMessagesList::SetTabs(const QStringList& captions)
{
    QTabBar& tabs = tbsList_->Tabs();
    tabs.setAccessibleName(tbsList_->accessibleName());
    for (int i = 0; i < captions.size(); ++i) {
        if (i < tabs.count())
            tabs.setTabText(i, captions.at(i));
        else
            tabs.addTab(captions.at(i));
    }
}

QStringList uMessagesList::FindEntries() const
{
    return QStringList(MessagesListTexts::AllMessages) + comboFind_->History();
}

void uMessagesList::ConnectGridKeys()
{
    connect(grdList_, &FlexGrid::EnterCell, this,
            [this] { Handle("grdMessages_EnterCell", [this] { TakeSelection(); }); });
    connect(grdList_, &FlexGrid::KeyDown, this, &uMessagesList::TakeGridKey);
}

void uMessagesList::ConnectTree()
{
    // The rights are those of the host's directory.
    connect(treeCategories_, &CategoryTreeView::KeyDown, this,
            [this](QKeyEvent* event) { Handle("treeCategories_KeyDown", [&] { TakeTreeKey(event); }); });
    connect(treeCategories_, &CategoryTreeView::MouseDown, this, &uMessagesList::TakeTreeMouseDown);
    connect(treeCategories_, &CategoryTreeView::MouseMove, this,
            [this](Qt::MouseButtons buttons, const QPointF& twips) {
                Handle("treeCategories_MouseMove", [&] { TakeTreeMouseMove(buttons, twips); });
            });
    connect(treeCategories_, &CategoryTreeView::MouseUp, this, &uMessagesList::TakeTreeMouseUp);
    connect(treeCategories_, &CategoryTreeView::BeforeLabelEdit, this, &uMessagesList::BeforeRename);
    connect(treeCategories_, &CategoryTreeView::AfterLabelEdit, this, &uMessagesList::Rename);
    connect(treeCategories_, &CategoryTreeView::DragOver, this,
            [this](const QMimeData& dragged, const QPointF& twips, Qt::DropAction& effect) {
                Handle("treeCategories_OLEDragOver", [&] { TakeDragOver(dragged, twips, effect); });
            });
    connect(treeCategories_, &CategoryTreeView::DragLeft, this,
            [this] { treeCategories_->SetDropHighlight(QString()); });
    connect(treeCategories_, &CategoryTreeView::Dropped, this,
            [this](const QMimeData& dragged, const QPointF&, Qt::DropAction& effect) {
                Handle("treeCategories_OLEDragDrop", [&] { TakeDrop(dragged, effect); });
            });
    connect(treeCategories_, &CategoryTreeView::PopupKey, this, [this] {
        const QRect node = treeCategories_->visualRect(treeCategories_->currentIndex());
        PopUpCategoryMenu(treeCategories_->viewport()->mapToGlobal(node.bottomLeft()));
    });
}
