// SPDX-License-Identifier: Apache-2.0

// The controls of the prizes list and where they lie.

#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/ListPanes.h"
#include "platform/widgets/OverlayPanel.h"
#include "platform/widgets/TabStrip.h"
#include "platform/widgets/ToolBar.h"
#include "prizes/controls/PrizesListHandler.h"
#include "prizes/controls/PrizesListNames.h"

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

template <typename Control>
Control* Named(Control* control, const char* name)
{
    control->setObjectName(QLatin1String(name));
    return control;
}
} // namespace

void uPrizesList::MakeControls()
{
    ListPanes{this}.SetLeastSize();
    setAutoFillBackground(true);
    MakeFindBar();
    tbsCategories_ = Named(new TabStrip(this), "tbsCategories");
    tbsCategories_->ShowSingleTab(QStringLiteral("Categories"));
    treeCategories_ = Named(new CategoryTreeView(&tbsCategories_->Page()), "treeCategories");
    treeCategories_->setAccessibleName(tr("Kinds of prizes"));
    treeCategories_->setFrameShape(QFrame::StyledPanel);
    treeCategories_->setRootIsDecorated(false); // no kind has kinds of its own
    picPrizes_ = Named(new QWidget(this), "picPrizes");
    tbsPrizes_ = Named(new TabStrip(picPrizes_), "tbsPrizes");
    tbsPrizes_->ShowSingleTab(QStringLiteral("Prizes"));
    grdPrizes_ = Named(new FlexGrid(&tbsPrizes_->Page()), "grdPrizes");
    grdPrizes_->setAccessibleName(tr("Prizes"));
    grdPrizes_->setToolTip(QStringLiteral("Click and Drag to move this Prize"));
    picLoading_ = Named(new OverlayPanel(QStringLiteral("Loading Prizes..."), &tbsPrizes_->Page()), "picLoading");
    picNoPrizes_ =
        Named(new OverlayPanel(QStringLiteral("There are no matching prizes to display."), &tbsPrizes_->Page()),
              "picNoPrizes");
    picLoading_->hide();
    picNoPrizes_->hide();
    lblUnread_ = ListPanes::MakeUnread(tbsPrizes_->Page());
    timerUpdateList_ = Named(new QTimer(this), "timerUpdateList");
    setTabOrder(comboFind_, cmdNewPrize_);
    setTabOrder(cmdNewPrize_, treeCategories_);
    setTabOrder(treeCategories_, grdPrizes_);
    ConnectControls();
}

void uPrizesList::MakeFindBar()
{
    toolSearch_ = Named(new ToolBar(this), "toolSearch");
    toolSearch_->AddButton(Search, Icons::Get(Search), tr("Find"));
    toolSearch_->AddPlaceholder(FindHolder);
    picFind_ = Named(new QWidget(toolSearch_), "picFind");
    lblFindDesc_ = Named(new QLabel(QStringLiteral("F&ind:"), picFind_), "lblFindDesc");
    comboFind_ = Named(new FindBox(PrizesListNames::AllPrizes, picFind_), "comboFind");
    // They would end the pattern within the query.
    comboFind_->SetSwallowed(QStringLiteral("'\""));
    comboFind_->setAccessibleName(tr("Find in titles and notes"));
    lblFindDesc_->setBuddy(comboFind_);
    cmdNewPrize_ = Named(new QPushButton(Icons::Get(QStringLiteral("newprize")), QStringLiteral("New Prize"), this),
                         "cmdNewPrize");
    cmdNewPrize_->setAutoDefault(false);
}

void uPrizesList::ConnectControls()
{
    connect(comboFind_, &FindBox::Click, this, [this] {
        SelectControlText(*comboFind_);
        Handle("comboFind_Click", [this] { UpdateDisplay(); });
    });
    connect(comboFind_, &FindBox::DropDown, this, [this] { comboFind_->SetEntries(comboFind_->History()); });
    connect(toolSearch_, &ToolBar::ButtonClick, this, [this](const QString& key) {
        if (key.toLower() == Search)
            Handle("toolSearch_ButtonClick", [this] { UpdateDisplay(); });
    });
    connect(cmdNewPrize_, &QPushButton::clicked, this,
            [this] { Handle("cmdNewPrize_Click", [this] { NewCommand(); }); });
    connect(tbsPrizes_, &TabStrip::TabClick, this, [this] { Handle("tbsPrizes_Click", [this] { UpdateDisplay(); }); });
    connect(tbsCategories_, &TabStrip::PageResized, this, [this] { Panes().LayOutTree(); });
    connect(tbsPrizes_, &TabStrip::PageResized, this, &uPrizesList::LayOutList);
    connect(timerUpdateList_, &QTimer::timeout, this, [this] { Handle("timerUpdateList", [this] { Tick(); }); });
    connect(treeCategories_, &CategoryTreeView::NodeClick, this,
            [this](const QString& key) { Handle("treeCategories_NodeClick", [&] { TakeNodeClick(key); }); });
    connect(treeCategories_, &CategoryTreeView::KeyDown, this, [this](QKeyEvent* event) {
        if (event->key() != Qt::Key_F5)
            return;
        event->accept();
        Handle("treeCategories_KeyDown", [this] { UpdateCategories(); });
    });
    ConnectGrid();
}

void uPrizesList::ConnectGrid()
{
    connect(grdPrizes_, &FlexGrid::EnterCell, this,
            [this] { Handle("grdPrizes_SelChange", [this] { TakeSelectionChange(); }); });
    connect(grdPrizes_, &FlexGrid::KeyDown, this, &uPrizesList::TakeGridKey);
    connect(grdPrizes_, &FlexGrid::MouseDown, this, &uPrizesList::TakeGridMouseDown);
    connect(grdPrizes_, &FlexGrid::MouseMove, this, &uPrizesList::TakeGridMouseMove);
    connect(grdPrizes_, &FlexGrid::MouseUp, this, &uPrizesList::TakeGridMouseUp);
    connect(picNoPrizes_, &OverlayPanel::MouseUp, this, &uPrizesList::TakeGridMouseUp);
    connect(grdPrizes_, &FlexGrid::DblClick, this, [this] { Handle("grdPrizes_DblClick", [this] { OpenCommand(); }); });
    connect(grdPrizes_, &FlexGrid::PopupKey, this, [this] {
        const QRect row = grdPrizes_->visualRect(grdPrizes_->currentIndex());
        PopUpMenu(grdPrizes_->viewport()->mapToGlobal(row.isValid() ? row.bottomLeft() : QPoint()));
    });
}

void uPrizesList::resizeEvent(QResizeEvent*)
{
    LayOut();
}

void uPrizesList::changeEvent(QEvent* event)
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
        SetGridRowHeights();
        LayOut();
        break;
    case QEvent::LayoutDirectionChange:
        LayOut();
        break;
    default:
        break;
    }
}

void uPrizesList::LayOut()
{
    if (!timerUpdateList_)
        return; // still being made
    Panes().LayOut();
    SizeColumns();
}

void uPrizesList::LayOutList()
{
    Panes().LayOutList();
    SizeColumns();
}

ListPanes uPrizesList::Panes()
{
    return {this,         toolSearch_,    picFind_,        lblFindDesc_, comboFind_,
            cmdNewPrize_, tbsCategories_, treeCategories_, picPrizes_,   tbsPrizes_,
            grdPrizes_,   picLoading_,    picNoPrizes_,    lblUnread_};
}
