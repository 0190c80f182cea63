// SPDX-License-Identifier: Apache-2.0

// The controls of the messages list and where they lie.

#include "messageslist/MessagesListHandler.h"
#include "messageslist/MessagesListTexts.h"
#include "messageslist/uMessagesList.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/ListPanes.h"
#include "platform/widgets/OverlayPanel.h"
#include "platform/widgets/TabStrip.h"
#include "platform/widgets/ToolBar.h"

#include <QAction>
#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTimer>

namespace
{
const QString FindHolder = QStringLiteral("findholder");
const QString Search = QStringLiteral("search");
const QString Stop = QStringLiteral("stop");

template <typename Control>
Control* Named(Control* control, const char* name)
{
    control->setObjectName(QLatin1String(name));
    return control;
}
} // namespace

void uMessagesList::MakeControls()
{
    ListPanes{this}.SetLeastSize();
    setAutoFillBackground(true);

    toolSearch_ = Named(new ToolBar(this), "toolSearch");
    toolSearch_->AddButton(Search, Icons::Get(Search), tr("Find"));
    toolSearch_->AddButton(Stop, Icons::Get(Stop), tr("Stop"));
    // Nothing can be stopped by it, so it does not offer itself.
    toolSearch_->SetButtonVisible(Stop, false);
    toolSearch_->AddPlaceholder(FindHolder);
    picFind_ = Named(new QWidget(toolSearch_), "picFind");
    lblFind_ = Named(new QLabel(QStringLiteral("F&ind:"), picFind_), "lblFind");
    comboFind_ = Named(new FindBox(MessagesListTexts::AllMessages, picFind_), "comboFind");
    comboFind_->setAccessibleName(tr("Find in subjects"));
    lblFind_->setBuddy(comboFind_);
    cmdNewMessage_ =
        Named(new QPushButton(Icons::Get(QStringLiteral("new")), QStringLiteral("New Message"), this), "cmdNewMessage");
    cmdNewMessage_->setAutoDefault(false);

    tbsCategories_ = Named(new TabStrip(this), "tbsCategories");
    treeCategories_ = Named(new CategoryTreeView(&tbsCategories_->Page()), "treeCategories");
    treeCategories_->setAccessibleName(tr("Folders"));
    treeCategories_->setFrameShape(QFrame::StyledPanel);
    picMessages_ = Named(new QWidget(this), "picMessages");
    tbsMessages_ = Named(new TabStrip(picMessages_), "tbsMessages");
    tbsMessages_->setAccessibleName(tr("Which messages"));
    grdMessages_ = Named(new FlexGrid(&tbsMessages_->Page()), "grdMessages");
    grdMessages_->setAccessibleName(tr("Messages"));
    picLoading_ = Named(new OverlayPanel(QStringLiteral("Loading Messages..."), &tbsMessages_->Page()), "picLoading");
    picNoMessages_ =
        Named(new OverlayPanel(QStringLiteral("There are no matching messages to display."), &tbsMessages_->Page()),
              "picNoMessages");
    picLoading_->hide();
    picNoMessages_->hide();
    lblUnread_ = ListPanes::MakeUnread(tbsMessages_->Page());
    timerUpdateList_ = Named(new QTimer(this), "timerUpdateList");
    setTabOrder(comboFind_, cmdNewMessage_);
    setTabOrder(cmdNewMessage_, treeCategories_);
    setTabOrder(treeCategories_, grdMessages_);
    ConnectControls();
}

void uMessagesList::ConnectControls()
{
    connect(comboFind_, &FindBox::Click, this, [this] {
        SelectControlText(*comboFind_);
        Handle("comboFind_Click", [this] { UpdateDisplay(); });
    });
    connect(comboFind_, &FindBox::DropDown, this,
            [this] { comboFind_->SetEntries(QStringList(MessagesListTexts::AllMessages) + comboFind_->History()); });
    connect(toolSearch_, &ToolBar::ButtonClick, this, [this](const QString& key) {
        if (key.compare(Search, Qt::CaseInsensitive) == 0)
            Handle("toolSearch_ButtonClick", [this] { UpdateDisplay(); });
    });
    connect(cmdNewMessage_, &QPushButton::clicked, this,
            [this] { Handle("cmdNewMessage_Click", [this] { NewMessageCommand(); }); });
    connect(tbsMessages_, &TabStrip::TabClick, this,
            [this] { Handle("tbsMessages_Click", [this] { UpdateDisplay(); }); });
    connect(tbsCategories_, &TabStrip::PageResized, this, &uMessagesList::LayOutTree);
    connect(tbsMessages_, &TabStrip::PageResized, this, &uMessagesList::LayOutMessages);
    connect(timerUpdateList_, &QTimer::timeout, this, [this] { Handle("timerUpdateList", [this] { Tick(); }); });
    ConnectGrid();
    ConnectTree();
}

void uMessagesList::ConnectGrid()
{
    connect(grdMessages_, &FlexGrid::EnterCell, this,
            [this] { Handle("grdMessages_EnterCell", [this] { TakeCellChange(); }); });
    connect(grdMessages_, &FlexGrid::KeyDown, this, &uMessagesList::TakeGridKey);
    connect(grdMessages_, &FlexGrid::MouseDown, this, &uMessagesList::TakeGridMouseDown);
    connect(grdMessages_, &FlexGrid::MouseMove, this, &uMessagesList::TakeGridMouseMove);
    connect(grdMessages_, &FlexGrid::MouseUp, this, &uMessagesList::TakeGridMouseUp);
    connect(picNoMessages_, &OverlayPanel::MouseUp, this, &uMessagesList::TakeGridMouseUp);
    connect(grdMessages_, &FlexGrid::DblClick, this,
            [this] { Handle("grdMessages_DblClick", [this] { OpenCommand(); }); });
    connect(grdMessages_, &FlexGrid::PopupKey, this, [this] {
        const QRect row = grdMessages_->visualRect(grdMessages_->currentIndex());
        PopUpMessageMenu(grdMessages_->viewport()->mapToGlobal(row.isValid() ? row.bottomLeft() : QPoint()));
    });
}

void uMessagesList::ConnectTree()
{
    connect(treeCategories_, &CategoryTreeView::NodeClick, this,
            [this](const QString& key) { Handle("treeCategories_NodeClick", [&] { TakeNodeClick(key); }); });
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

void uMessagesList::resizeEvent(QResizeEvent*)
{
    LayOut();
}

void uMessagesList::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (!timerUpdateList_)
        return; // still being made
    if (event->type() == QEvent::ApplicationPaletteChange)
        ApplyBackColour();
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange ||
        event->type() == QEvent::LayoutDirectionChange) {
        SetGridRowHeights();
        LayOut();
    }
}

void uMessagesList::LayOut()
{
    if (!timerUpdateList_)
        return; // still being made
    Panes().LayOut();
    SetGridColumnWidths();
}

void uMessagesList::LayOutTree()
{
    Panes().LayOutTree();
}

void uMessagesList::LayOutMessages()
{
    Panes().LayOutList();
    SetGridColumnWidths();
}

ListPanes uMessagesList::Panes()
{
    return {this,           toolSearch_,    picFind_,        lblFind_,     comboFind_,
            cmdNewMessage_, tbsCategories_, treeCategories_, picMessages_, tbsMessages_,
            grdMessages_,   picLoading_,    picNoMessages_,  lblUnread_};
}
