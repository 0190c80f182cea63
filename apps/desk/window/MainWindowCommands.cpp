// SPDX-License-Identifier: Apache-2.0

// What the main window does with the messages that are selected in its list.

#include "MainWindow.h"
#include "NoticeBar.h"
#include "answering/AnsweringDesk.h"
#include "database/watch/StationWatch.h"
#include "messages/MessageCommands.h"
#include "messages/PreviewPane.h"
#include "messages/StoredState.h"
#include "messageslist/uMessagesList.h"
#include "onair/OnAirDesk.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/RowMark.h"
#include "printing/PrintDialog.h"
#include "prizes/PrizeDesk.h"
#include "prizes/PrizesPage.h"
#include "prizes/controls/uPrizesList.h"

#include <QAction>
#include <QMenu>

/// The list hands over what it would do for one message alone.
void MainWindow::ConnectCommands()
{
    connect(List_, &uMessagesList::CommandWanted, this,
            [this](MessagesListCommand command, const QList<qint32>& references, bool& isTaken) {
                Run([&] {
                    if (command == MessagesListCommand::Print && references.size() > 1) {
                        isTaken = true;
                        PrintMessages({references, nullptr});
                    } else if (!references.isEmpty()) {
                        isTaken = Commands_->Do(command, references);
                    }
                });
            });
    connect(List_, &uMessagesList::MessagesDropped, this,
            [this](const QList<qint32>& references, enTolvaMessageCategories folder, bool& isTaken) {
                isTaken = true;
                Run([&] { Commands_->MoveTo(references, folder); });
            });
    connect(List_, &uMessagesList::FilesDropped, this,
            [this](const QStringList& files, enTolvaMessageCategories folder, bool& isTaken) {
                isTaken = true;
                Run([&] { Commands_->Import(files, folder); });
            });
    connect(Undo_, &MessageUndo::TakenBack, this, [this](const QList<qint32>& references) {
        Run([&] {
            List_->ShowChanges();
            List_->SelectMessage(references.last());
        });
    });
    connect(Undo_, &MessageUndo::Told, this, &MainWindow::Say);
    connect(Commands_, &MessageCommands::Told, this, &MainWindow::Say);
    connect(Commands_, &MessageCommands::Exported, this, &MainWindow::TakeExport);
}

/// It says for a while where the files lie.
void MainWindow::TakeExport(const QString& words, const QString& folder)
{
    Exported_->ShowIn(words, folder);
    QTimer::singleShot(MessageUndo::NoticeMilliseconds, Exported_, [this, words] {
        if (Exported_->Text() == words)
            Exported_->Show(QString());
    });
}

/// Somebody else took the message on show away. It stays, and says so: nothing is put under the hand of who reads it.
void MainWindow::TakeLeft(qint32 reference)
{
    const cMessagePtr shown = Preview_->Message();
    if (!shown || shown->Reference() != reference) {
        TakeSelection(nullptr);
        return;
    }
    Run([&] {
        const QString words = WhatBecameOf(*shown, *Station_);
        Preview_->Tell(words.isEmpty() ? tr("This message is not in this list any more.") : words);
    });
}

/// Mails out of files, and into them.
void MainWindow::MakeMessageFilesMenu(QMenu& menu)
{
    QAction* import = AddAction(&menu, "importFiles", QStringLiteral("open"), tr("&Import mail files..."));
    QAction* exported = AddAction(&menu, "exportMessages", QStringLiteral("save"), tr("&Export selected messages..."));
    connect(import, &QAction::triggered, this, [this] {
        const enTolvaMessageCategories folder = List_->Category() > 0 ? List_->Category() : tmcInbox;
        Run([&] { Commands_->ImportInto(folder); });
    });
    connect(exported, &QAction::triggered, this, [this] { Run([this] { Commands_->ExportSelected(); }); });
}

void MainWindow::MakeFolderCommands(QMenu& menu)
{
    QAction* move = AddAction(&menu, "moveToFolder", QStringLiteral("smallopenfolder"), tr("Mo&ve to folder..."),
                              QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_V));
    QAction* copy = AddAction(&menu, "copyToFolder", QString(), tr("Cop&y to folder..."),
                              QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Y));
    connect(move, &QAction::triggered, this, [this] { Run([this] { Commands_->MoveToFolder(); }); });
    connect(copy, &QAction::triggered, this, [this] { Run([this] { Commands_->CopyToFolder(); }); });
}

/// The key puts on the order what is selected on the page on show.
void MainWindow::ConnectOnAir()
{
    List_->SetRowNotes([this](qint32 message) { return Answering_->NoteOf(message); });
    List_->SetShowsMarks([this](qint32 message) { return RowMarksOf(message); });
    connect(OnAir_, &OnAirDesk::Changed, List_, &uMessagesList::ShowRowNotes);
    connect(OnAir_, &OnAirDesk::Told, this, &MainWindow::Say);
    connect(OnAir_, &OnAirDesk::WindowOpened, this, [this](QMainWindow* window) {
        Windows_.removeAll(nullptr);
        Windows_.append(window);
        OnAir_->Window()->CheckSpelling(*Speller_);
    });
    connect(OnAir_, &OnAirDesk::PrintWanted, this, &MainWindow::PrintMessages);
    connect(OnAir_, &OnAirDesk::Wanted, this, [this] {
        if (Prizes_->IsOnShow())
            OnAir_->PutPrize(Prizes_->Page().List().SelectedReference());
        else
            OnAir_->PutMessages(List_->SelectedReferences());
    });
    connect(&Station_->Database().Watch(), &StationWatch::Polled, OnAir_, &OnAirDesk::Look, Qt::QueuedConnection);
}

QList<RowMark> MainWindow::RowMarksOf(qint32 message) const
{
    QList<RowMark> marks;
    // Who answered, and when, stands beside it, and is what is spoken.
    if (Answering_->WasAnswered(message))
        marks.append({Icons::Get(QStringLiteral("answered")), QString()});
    if (const QString words = OnAir_->NoteOf(message); !words.isEmpty())
        marks.append({Icons::Get(QStringLiteral("onair")), words});
    return marks;
}
