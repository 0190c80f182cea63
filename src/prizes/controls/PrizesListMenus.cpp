// SPDX-License-Identifier: Apache-2.0

// The popup menu of the prizes list and the enabling of its entries.

#include "common/controls/StationListHandler.h"
#include "platform/widgets/FlexGrid.h"
#include "prizes/controls/uPrizesList.h"

#include <QMenu>

void uPrizesList::MakeMenu()
{
    mnuPopupPrize_ = new QMenu(this);
    mnuPopupPrize_->setObjectName(QStringLiteral("mnuPopupPrize"));
    const auto add = [this](const char* name, const char* caption, void (uPrizesList::*command)()) {
        QAction* entry = mnuPopupPrize_->addAction(QLatin1String(caption));
        entry->setObjectName(QLatin1String(name));
        connect(entry, &QAction::triggered, this,
                [this, name, command] { Handle(name, [this, command] { (this->*command)(); }); });
        return entry;
    };
    const auto separate = [this](const char* name) {
        mnuPopupPrize_->addSeparator()->setObjectName(QLatin1String(name));
    };
    mnuPopupPrize_->setDefaultAction(add("mnuOpen", "&Open Prize", &uPrizesList::OpenCommand));
    separate("mnuPrintSep");
    add("mnuCopy", "&Copy", &uPrizesList::CopyCommand);
    add("mnuPrint", "&Print Prize", &uPrizesList::PrintCommand);
    separate("mnuPrizeNewPrizeSep");
    add("mnuPrizeNewPrize", "&New Prize", &uPrizesList::NewCommand);
    separate("mnuDeleteSep");
    add("mnuDelete", "&Delete Prize", &uPrizesList::DeleteCommand);
    connect(mnuPopupPrize_, &QMenu::aboutToShow, this, [this] { Handle("mnuPopupPrize", [this] { EnableMenu(); }); });
}
void uPrizesList::EnableMenu()
{
    const bool hasPrize = SelectedReference_ > 0 && SelectedPrize(false);
    const bool mayManage = clsTolvaDatabase_ && clsCurrentUser_ && clsCurrentUser_->ManagePrizes();
    Entry("mnuOpen")->setEnabled(hasPrize);
    Entry("mnuPrint")->setEnabled(hasPrize);
    Entry("mnuCopy")->setEnabled(hasPrize && mayManage);
    Entry("mnuDelete")->setEnabled(hasPrize && mayManage);
    Entry("mnuPrizeNewPrize")->setEnabled(mayManage);
}

void uPrizesList::PopUpListMenu(const QPoint& global)
{
    mnuPopupPrize_->popup(global);
}
