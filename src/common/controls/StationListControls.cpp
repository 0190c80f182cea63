// SPDX-License-Identifier: Apache-2.0

// The controls of a list, where they lie, and the grid's mouse.

#include "common/controls/StationListHandler.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/DragData.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/ListPanes.h"
#include "platform/widgets/Named.h"
#include "platform/widgets/OverlayPanel.h"
#include "platform/widgets/TabStrip.h"
#include "platform/widgets/ToolBar.h"

#include <QCursor>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

namespace
{
const QString FindHolder = QStringLiteral("findholder");
const QString Search = QStringLiteral("search");
} // namespace

void StationList::MakeControls(const Parts& parts)
{
    ListPanes{this}.SetLeastSize();
    setAutoFillBackground(true);
    MakeFindBar(parts);
    tbsCategories_ = Named(new TabStrip(this), "tbsCategories");
    treeCategories_ = Named(new CategoryTreeView(&tbsCategories_->Page()), "treeCategories");
    treeCategories_->setAccessibleName(parts.TreeName);
    treeCategories_->setFrameShape(QFrame::StyledPanel);
    picList_ = Named(new QWidget(this), parts.List);
    tbsList_ = Named(new TabStrip(picList_), parts.Tabs);
    grdList_ = Named(new FlexGrid(&tbsList_->Page()), parts.Grid);
    grdList_->setAccessibleName(parts.GridName);
    picLoading_ = Named(new OverlayPanel(parts.LoadingWords, &tbsList_->Page()), "picLoading");
    picNone_ = Named(new OverlayPanel(parts.NothingWords, &tbsList_->Page()), parts.Nothing);
    picLoading_->hide();
    picNone_->hide();
    lblUnread_ = ListPanes::MakeUnread(tbsList_->Page());
    timerUpdateList_ = Named(new QTimer(this), "timerUpdateList");
    setTabOrder(comboFind_, cmdNew_);
    setTabOrder(cmdNew_, treeCategories_);
    setTabOrder(treeCategories_, grdList_);
    ConnectControls();
    ConnectGrid();
}

void StationList::MakeFindBar(const Parts& parts)
{
    toolSearch_ = Named(new ToolBar(this), "toolSearch");
    toolSearch_->AddButton(Search, Icons::Get(Search), tr("Find"));
    toolSearch_->AddPlaceholder(FindHolder);
    picFind_ = Named(new QWidget(toolSearch_), "picFind");
    lblFind_ = Named(new QLabel(QStringLiteral("F&ind:"), picFind_), parts.FindCaption);
    comboFind_ = Named(new FindBox(parts.Everything, picFind_), "comboFind");
    comboFind_->setAccessibleName(parts.FindName);
    lblFind_->setBuddy(comboFind_);
    cmdNew_ = Named(new QPushButton(Icons::Get(parts.NewIcon), parts.NewWords, this), parts.New);
    cmdNew_->setAutoDefault(false);
}

/// What errors of a control's event are told to come from.
QString StationList::EventOf(const QObject& control, const char* event) const
{
    return control.objectName() + QLatin1Char('_') + QLatin1String(event);
}

void StationList::ConnectControls()
{
    const auto display = [this](const QString& handler) { Handle(handler, [this] { Display(Reading::AllRows); }); };
    connect(comboFind_, &FindBox::Click, this, [this, display] {
        SelectControlText(*comboFind_);
        display(EventOf(*comboFind_, "Click"));
    });
    connect(comboFind_, &FindBox::DropDown, this, [this] { comboFind_->SetEntries(FindEntries()); });
    connect(toolSearch_, &ToolBar::ButtonClick, this, [this, display](const QString& key) {
        if (key.compare(Search, Qt::CaseInsensitive) == 0)
            display(EventOf(*toolSearch_, "ButtonClick"));
    });
    connect(cmdNew_, &QPushButton::clicked, this,
            [this] { Handle(EventOf(*cmdNew_, "Click"), [this] { NewCommand(); }); });
    connect(tbsList_, &TabStrip::TabClick, this, [this, display] { display(EventOf(*tbsList_, "Click")); });
    connect(tbsCategories_, &TabStrip::PageResized, this, [this] { Panes().LayOutTree(); });
    connect(tbsList_, &TabStrip::PageResized, this, &StationList::LayOutList);
    connect(timerUpdateList_, &QTimer::timeout, this, [this] { HandleReading("timerUpdateList", [this] { Tick(); }); });
    connect(treeCategories_, &CategoryTreeView::NodeClick, this,
            [this](const QString& key) { Handle("treeCategories_NodeClick", [&] { TakeNodeClick(key); }); });
}

void StationList::ConnectGrid()
{
    connect(grdList_, &FlexGrid::RowChosen, this, &StationList::TakeChoice);
    connect(grdList_, &FlexGrid::MouseDown, this, &StationList::TakeGridMouseDown);
    connect(grdList_, &FlexGrid::MouseMove, this, &StationList::TakeGridMouseMove);
    connect(grdList_, &FlexGrid::MouseUp, this, &StationList::TakeGridMouseUp);
    connect(picNone_, &OverlayPanel::MouseUp, this, &StationList::TakeGridMouseUp);
    connect(grdList_, &FlexGrid::DblClick, this,
            [this] { Handle(EventOf(*grdList_, "DblClick"), [this] { OpenCommand(); }); });
    connect(grdList_, &FlexGrid::PopupKey, this, [this] {
        const QRect row = grdList_->visualRect(grdList_->currentIndex());
        PopUpListMenu(grdList_->viewport()->mapToGlobal(row.isValid() ? row.bottomLeft() : QPoint()));
    });
}

// ---- The mouse

void StationList::TakeGridMouseDown(Qt::MouseButton button, const QPointF& twips)
{
    if (button == Qt::LeftButton) {
        GridDragStart_ = twips;
    } else if (button == Qt::RightButton) {
        grdList_->setFocus();
        const QPointer<StationList> self(this);
        SelectGridRowAt(*grdList_, twips.y(), false);
        if (self)
            Handle(EventOf(*grdList_, "MouseDown"), [this] { TakeSelection(); });
        if (self)
            TakeChoice();
    }
}

void StationList::TakeGridMouseMove(Qt::MouseButtons buttons, const QPointF& twips)
{
    if ((buttons & Qt::LeftButton) == 0 || !GridDragStart_ || !IsDragStart(*GridDragStart_))
        return;
    if (!DragRunner::IsDrag(*grdList_, *GridDragStart_, twips))
        return;
    const QPointer<StationList> self(this);
    SelectGridRowAt(*grdList_, GridDragStart_->y(), false);
    if (!self)
        return;
    grdList_->EndMouseTracking();
    GridDragStart_.reset();
    if (GridDragging_ || SelectedReference_ <= 0)
        return;
    GridDragging_ = true;
    Handle(EventOf(*grdList_, "OLEStartDrag"), [this] { StartGridDrag(); });
}

void StationList::TakeGridMouseUp(Qt::MouseButton button)
{
    if (button == Qt::LeftButton)
        GridDragStart_.reset();
    else if (button == Qt::RightButton)
        PopUpListMenu(QCursor::pos());
}

// ---- The layout

void StationList::resizeEvent(QResizeEvent*)
{
    LayOut();
}

void StationList::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (!timerUpdateList_)
        return; // still being made
    switch (event->type()) {
    case QEvent::ApplicationPaletteChange:
        ApplyBackColour();
        break;
    case QEvent::FontChange:
    case QEvent::StyleChange:
    case QEvent::LayoutDirectionChange:
        SetGridRowHeights();
        LayOut();
        break;
    default:
        break;
    }
}

void StationList::LayOut()
{
    if (!timerUpdateList_)
        return; // still being made
    Panes().LayOut();
    SizeColumns();
}

void StationList::LayOutList()
{
    Panes().LayOutList();
    SizeColumns();
}

ListPanes StationList::Panes()
{
    return {this,     toolSearch_, picFind_, lblFind_,    comboFind_, cmdNew_,   tbsCategories_, treeCategories_,
            picList_, tbsList_,    grdList_, picLoading_, picNone_,   lblUnread_};
}
