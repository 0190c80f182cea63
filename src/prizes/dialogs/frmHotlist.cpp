// SPDX-License-Identifier: Apache-2.0
#include "prizes/dialogs/frmHotlist.h"

#include "database/StationSettings.h"
#include "platform/records/Recordset.h"
#include "platform/widgets/DialogSize.h"
#include "platform/widgets/Named.h"
#include "platform/widgets/TextBoxes.h"
#include "platform/widgets/Twips.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QSignalBlocker>

namespace
{
constexpr qint32 HoursOfPrizes = 0;
const QString ItemField = QStringLiteral("Item");

// Twips.
constexpr double HotlistGap = 60;
constexpr double LeastHotlistWidth = 4500;
constexpr double LeastListHeight = 2400;
} // namespace

frmHotlist::frmHotlist(QWidget* owner) : QDialog(owner)
{
    setObjectName(QStringLiteral("frmHotlist"));
    setWindowTitle(QStringLiteral("Choose Hotlist"));
    MakeControls();
    MakeMenu();
    LayOut();
}

void frmHotlist::MakeControls()
{
    lblChooseHotlist_ =
        Named(new QLabel(QStringLiteral("Choose the hotlist (right click to delete):"), this), "lblChooseHotlist");
    txtHotlistName_ = Named(new TextBox(this), "txtHotlistName");
    txtHotlistName_->setAccessibleName(tr("Name of the hotlist"));
    txtHotlistName_->setPlaceholderText(tr("Name of the hotlist"));
    listBox_ = Named(new QListWidget(this), "listBox");
    listBox_->setAccessibleName(tr("Hotlists"));
    listBox_->installEventFilter(this);
    listBox_->viewport()->installEventFilter(this);
    cmdOK_ = Named(new QPushButton(QStringLiteral("OK"), this), "cmdOK");
    cmdOK_->setDefault(true);
    cmdCancel_ = Named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel");
    cmdCancel_->setAutoDefault(false);
    connect(cmdOK_, &QPushButton::clicked, this, &frmHotlist::OK);
    connect(cmdCancel_, &QPushButton::clicked, this, &frmHotlist::Cancel);
    connect(listBox_, &QListWidget::itemSelectionChanged, this, &frmHotlist::TakeSelection);
    connect(listBox_, &QListWidget::itemClicked, this, &frmHotlist::TakeSelection);
    connect(listBox_, &QListWidget::itemDoubleClicked, this, &frmHotlist::OK);
}

void frmHotlist::MakeMenu()
{
    mnupopup_ = Named(new QMenu(this), "mnupopup");
    mnuSelect_ = Named(mnupopup_->addAction(QStringLiteral("&Select")), "mnuSelect");
    Named(mnupopup_->addSeparator(), "mnupopsep");
    mnuDelete_ = Named(mnupopup_->addAction(QStringLiteral("&Delete")), "mnuDelete");
    connect(mnuSelect_, &QAction::triggered, this, [this] {
        TakeSelection();
        OK();
    });
    connect(mnuDelete_, &QAction::triggered, this, &frmHotlist::DeleteSelected);
}

void frmHotlist::LayOut()
{
    const int gap = Twips::ToPixels(*this, HotlistGap);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK_);
    buttons->addWidget(cmdCancel_);
    auto* column = new QVBoxLayout(this);
    column->setSpacing(gap);
    column->addWidget(lblChooseHotlist_);
    column->addWidget(txtHotlistName_);
    column->addWidget(listBox_, 1);
    column->addLayout(buttons);
    listBox_->setMinimumSize(Twips::ToPixels(*this, LeastHotlistWidth), Twips::ToPixels(*this, LeastListHeight));
}

QString frmHotlist::GetHotlist(qint32 hotListType, dao::Recordset* recordset, bool saveMode)
{
    if (!recordset)
        return {};
    Recordset_ = recordset;
    SaveMode_ = saveMode;
    Prefix_ = hotListType == HoursOfPrizes ? StationSettings::HotlistPrefix : QString();
    Error_ = nullptr;
    txtHotlistName_->clear();
    PrepareMode();
    Fill();
    if (listBox_->count() > 0 && !SaveMode_)
        listBox_->setCurrentRow(0);
    Cancelled_ = false;
    DialogSize::FitContents(*this);
    // The window below may go while the dialog waits, and takes it along, or the program may end, which leaves it up:
    // neither chooses anything.
    const QPointer<frmHotlist> self(this);
    exec();
    if (!self)
        return {};
    Recordset_ = nullptr;
    if (Error_)
        std::rethrow_exception(std::exchange(Error_, nullptr));
    return Cancelled_ || isVisible() ? QString() : Prefix_ + txtHotlistName_->text();
}

void frmHotlist::PrepareMode()
{
    txtHotlistName_->setVisible(SaveMode_);
    if (SaveMode_)
        setTabOrder(txtHotlistName_, listBox_);
    setTabOrder(listBox_, cmdOK_);
    setTabOrder(cmdOK_, cmdCancel_);
    lblChooseHotlist_->setBuddy(SaveMode_ ? static_cast<QWidget*>(txtHotlistName_) : listBox_);
    (SaveMode_ ? static_cast<QWidget*>(txtHotlistName_) : listBox_)->setFocus();
}

/// The index keeps the names in order.
void frmHotlist::Fill()
{
    const QSignalBlocker quiet(listBox_);
    listBox_->clear();
    Recordset_->Seek(dao::SeekComparison::GreaterOrEqual, {Prefix_});
    if (Recordset_->NoMatch())
        return;
    for (; !Recordset_->AtEOF(); Recordset_->MoveNext()) {
        const QString item = Recordset_->Collect(ItemField).toString();
        if (!item.startsWith(Prefix_, Qt::CaseInsensitive))
            return;
        listBox_->addItem(item.mid(Prefix_.size()));
    }
}

bool frmHotlist::HasSelection() const
{
    return !listBox_->selectedItems().isEmpty();
}

QString frmHotlist::SelectedEntry() const
{
    return HasSelection() ? listBox_->selectedItems().constFirst()->text() : QString();
}

/// The box carries the choice, also where it is hidden.
void frmHotlist::TakeSelection()
{
    if (HasSelection())
        txtHotlistName_->setText(SelectedEntry());
}

/// False when the user keeps the hotlist that has this name. What is overwritten keeps its name, blanks around what was
/// typed do not make another one beside it.
bool frmHotlist::MayOverwrite()
{
    const QString name = txtHotlistName_->text();
    for (int row = 0; row < listBox_->count(); ++row) {
        const QString entry = listBox_->item(row)->text();
        if (entry.trimmed().toLower() != name.trimmed().toLower())
            continue;
        if (!UserInterface::Confirm(QStringLiteral("Are you sure you want to overwrite the current hotlist?")))
            return false;
        if (entry.toLower() != name.toLower())
            txtHotlistName_->setText(entry);
        return true;
    }
    return true;
}

void frmHotlist::OK()
{
    if (!SaveMode_ && txtHotlistName_->text().isEmpty()) {
        UserInterface::Warn(QStringLiteral("You must select a Hotlist to load!"));
        return;
    }
    if (SaveMode_ && !MayOverwrite())
        return;
    if (SaveMode_ && txtHotlistName_->text().isEmpty()) {
        UserInterface::Warn(QStringLiteral("You must enter a name for this Hotlist!"));
        return;
    }
    hide();
}

void frmHotlist::Cancel()
{
    Cancelled_ = true;
    hide();
}

void frmHotlist::reject()
{
    Cancel();
}

void frmHotlist::closeEvent(QCloseEvent* event)
{
    event->ignore();
    Cancel();
}

void frmHotlist::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (!event->spontaneous())
        Pointer_.emplace();
}

void frmHotlist::hideEvent(QHideEvent* event)
{
    QDialog::hideEvent(event);
    if (!event->spontaneous())
        Pointer_.reset();
}

void frmHotlist::DeleteSelected()
{
    if (!HasSelection() || !UserInterface::Confirm(QStringLiteral("Are you sure you want to delete this Hotlist?")))
        return;
    const QString name = SelectedEntry();
    try {
        DeleteRow(name);
    } catch (...) {
        // No exception crosses the event loop: the caller of GetHotlist gets it.
        Error_ = std::current_exception();
        Cancel();
        return;
    }
    const int row = listBox_->row(listBox_->selectedItems().constFirst());
    {
        const QSignalBlocker quiet(listBox_);
        delete listBox_->takeItem(row);
        if (SaveMode_)
            listBox_->clearSelection();
    }
    // To load, the hidden box must not carry the one that is gone; to save, its name may be used again.
    if (!SaveMode_)
        txtHotlistName_->setText(SelectedEntry());
}

void frmHotlist::DeleteRow(const QString& name)
{
    if (!Recordset_)
        return;
    Recordset_->Seek(dao::SeekComparison::Equal, {Prefix_ + name});
    if (Recordset_->NoMatch())
        return;
    Recordset_->Delete();
    if (!Recordset_->AtEOF())
        Recordset_->MoveNext();
}

void frmHotlist::PopUpMenu(const QPoint& global)
{
    if (HasSelection())
        mnupopup_->popup(global);
}

bool frmHotlist::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == listBox_->viewport() && event->type() == QEvent::MouseButtonPress) {
        const auto* press = static_cast<QMouseEvent*>(event);
        if (press->button() == Qt::RightButton) {
            if (QListWidgetItem* entry = listBox_->itemAt(press->position().toPoint()))
                listBox_->setCurrentItem(entry);
            PopUpMenu(press->globalPosition().toPoint());
            return true;
        }
    }
    if (event->type() == QEvent::ContextMenu) {
        // The mouse has had its menu when it was pressed.
        const auto* request = static_cast<QContextMenuEvent*>(event);
        if (request->reason() == QContextMenuEvent::Keyboard && HasSelection()) {
            const QRect entry = listBox_->visualItemRect(listBox_->selectedItems().constFirst());
            PopUpMenu(listBox_->viewport()->mapToGlobal(entry.bottomLeft()));
        }
        return true;
    }
    if (watched == listBox_ && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Delete) {
        DeleteSelected();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}
