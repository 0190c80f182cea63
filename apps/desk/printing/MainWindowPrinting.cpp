// SPDX-License-Identifier: Apache-2.0

// Printing messages and prizes from the desk's main window.

#include "DeskSettings.h"
#include "common/UserInterface.h"
#include "messageslist/uMessagesList.h"
#include "printing/PrintDialog.h"
#include "prizes/PrizeDesk.h"
#include "window/MainWindow.h"

#include <QAction>
#include <QMenu>
#include <QStatusBar>

namespace
{
constexpr int MessageMilliseconds = 8000;
const QKeySequence PrintKey(Qt::CTRL | Qt::Key_P);
} // namespace

void MainWindow::MakePrintActions(QMenu* menu)
{
    QAction* message = AddAction(menu, "printMessage", QStringLiteral("print"), tr("&Print message..."));
    QAction* list = AddAction(menu, "printList", QString(), tr("Print all messages on &show..."),
                              QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_P));
    QAction* prize = AddAction(menu, "printPrize", QStringLiteral("print"), tr("&Print prize..."));
    connect(message, &QAction::triggered, this, &MainWindow::PrintSelected);
    connect(list, &QAction::triggered, this, &MainWindow::PrintList);
    connect(prize, &QAction::triggered, Prizes_, &PrizeDesk::PrintSelected);
    connect(menu, &QMenu::aboutToShow, this, [this, message, list, prize] {
        message->setEnabled(List_->SelectedReference() != 0);
        list->setEnabled(List_->NumberItems() > 0);
        prize->setEnabled(Prizes_->HasSelection());
    });
    // The keys work whatever the menu said when it was open last.
    connect(menu, &QMenu::aboutToHide, this, [message, list, prize] {
        for (QAction* action : {message, list, prize})
            action->setEnabled(true);
    });
}

/// The menu offers what the page on show holds, and the key prints that. A hidden entry's key does nothing.
void MainWindow::TakePageForPrinting(bool prizes)
{
    for (const char* name : {"printMessage", "printList"})
        Action(name)->setVisible(!prizes);
    Action("printPrize")->setVisible(prizes);
    Action("printMessage")->setShortcut(prizes ? QKeySequence() : PrintKey);
    Action("printPrize")->setShortcut(prizes ? PrintKey : QKeySequence());
}

void MainWindow::PrintMessages(PrintJob job, QWidget* over)
{
    Run([&] {
        PrintDialog dialog(*Station_, Settings_, std::move(job), over ? over : this);
        dialog.exec();
    });
}

void MainWindow::PrintSelected()
{
    if (List_->SelectedReference() == 0) {
        statusBar()->showMessage(tr("Select the message to print first."), MessageMilliseconds);
        return;
    }
    PrintMessages({List_->SelectedReferences(), nullptr});
}

/// Those that the list's query finds now, in the list's order.
void MainWindow::PrintList()
{
    PrintJob job;
    Run([&] {
        const BusyPointer busy;
        const auto rows =
            Station_->Database().OpenMessageRows({QStringLiteral("Reference")}, ListCondition_, ListOrder_);
        for (; !rows->AtEOF(); rows->MoveNext())
            job.References.append(rows->Collect(QStringLiteral("Reference")).toInt());
    });
    if (job.References.isEmpty()) {
        statusBar()->showMessage(tr("There is no message on show to print."), MessageMilliseconds);
        return;
    }
    PrintMessages(std::move(job));
}
