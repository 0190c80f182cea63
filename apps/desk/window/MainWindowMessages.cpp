// SPDX-License-Identifier: Apache-2.0

// What the main window does with messages: windows that show one, and those in which one is written.

#include "MainWindow.h"
#include "compose/ComposeWindow.h"
#include "contacts/ContactDesk.h"
#include "messages/MessageWindow.h"
#include "messageslist/uMessagesList.h"
#include "printing/PrintDialog.h"
#include "prizes/PrizeDesk.h"

#include <QStatusBar>

QList<ComposeWindow*> MainWindow::ComposeWindows() const
{
    QList<ComposeWindow*> result;
    for (const QPointer<QMainWindow>& window : Windows_) {
        if (auto* compose = qobject_cast<ComposeWindow*>(window.data()))
            result.append(compose);
    }
    return result;
}

QList<MessageWindow*> MainWindow::MessageWindows() const
{
    QList<MessageWindow*> result;
    for (const QPointer<QMainWindow>& window : Windows_) {
        if (auto* message = qobject_cast<MessageWindow*>(window.data()))
            result.append(message);
    }
    return result;
}

ComposeWindow* MainWindow::Compose(const Composition& composition, const cMessagePtr& draft)
{
    for (ComposeWindow* open : ComposeWindows()) {
        if (draft && open->Reference() == draft->Reference() && open->isVisible()) {
            open->raise();
            open->activateWindow();
            return open;
        }
    }
    auto* window = new ComposeWindow(*Station_, composition, draft);
    window->setWindowIcon(windowIcon());
    Windows_.removeAll(nullptr);
    Windows_.append(window);
    connect(window, &ComposeWindow::Filed, this, [this](const QString& words) {
        statusBar()->showMessage(words, MessageMilliseconds);
        CountTimer_.start();
    });
    connect(window, &ComposeWindow::ContactWanted, Contacts_, &ContactDesk::ShowAddress);
    window->show();
    window->activateWindow();
    return window;
}

MessageWindow* MainWindow::OpenInWindow(const cMessagePtr& message)
{
    for (MessageWindow* open : MessageWindows()) {
        if (open->Reference() == message->Reference() && open->isVisible()) {
            open->raise();
            open->activateWindow();
            return open;
        }
    }
    auto* window = new MessageWindow(*Station_, message);
    window->setWindowIcon(windowIcon());
    Windows_.removeAll(nullptr);
    Windows_.append(window);
    const auto writer = [this] { return Composing::WriterOf(Station_->Database()); };
    connect(window, &MessageWindow::ReplyWanted, this,
            [=, this](const cMessagePtr& original) { Run([&] { Compose(Composing::Reply(*original, writer())); }); });
    connect(window, &MessageWindow::ReplyToAllWanted, this, [=, this](const cMessagePtr& original) {
        Run([&] { Compose(Composing::ReplyToAll(*original, writer())); });
    });
    connect(window, &MessageWindow::PrintWanted, this, [this, window](const cMessagePtr& original) {
        PrintMessages({{}, original}, window);
    });
    connect(window, &MessageWindow::ForwardWanted, this,
            [=, this](const cMessagePtr& original) { Run([&] { Compose(Composing::Forward(*original)); }); });
    connect(window, &MessageWindow::AwardToSenderWanted, this,
            [=, this](const cMessagePtr& original) { Run([&] { Prizes_->AwardToSender(original, window); }); });
    connect(window, &MessageWindow::SenderContactWanted, Contacts_, &ContactDesk::ShowSender);
    connect(window, &MessageWindow::WasRead, this, &MainWindow::MarkAsRead);
    window->show();
    window->activateWindow();
    return window;
}

/// The selected message as it is stored now; null, with words, when another computer has taken it away.
cMessagePtr MainWindow::SelectedMessage()
{
    const qint32 reference = List_->SelectedReference();
    cMessagePtr message = reference > 0 ? Station_->Database().ReadMessage(reference) : nullptr;
    if (!message && reference > 0)
        TakeGoneMessage();
    return message;
}

void MainWindow::TakeGoneMessage()
{
    statusBar()->showMessage(tr("That message is not there any more: it was deleted on another computer."),
                             MessageMilliseconds);
    Run([this] { List_->UpdateDisplay(); });
}

void MainWindow::Reply()
{
    Run([this] {
        if (const cMessagePtr original = SelectedMessage())
            Compose(Composing::Reply(*original, Composing::WriterOf(Station_->Database())));
    });
}

void MainWindow::ReplyToAll()
{
    Run([this] {
        if (const cMessagePtr original = SelectedMessage())
            Compose(Composing::ReplyToAll(*original, Composing::WriterOf(Station_->Database())));
    });
}

void MainWindow::Forward()
{
    Run([this] {
        if (const cMessagePtr original = SelectedMessage())
            Compose(Composing::Forward(*original));
    });
}

void MainWindow::NewMessage()
{
    Compose(Composition());
}

/// The list's record says what was wanted: nothing in it is a new message, a bare subject a forward of the selected
/// one, and anything else a copy.
void MainWindow::TakeNewMessage(const cMessagePtr& message)
{
    const cdo::Message& mail = *message->CDOMessage();
    if (mail.Octets().isEmpty()) {
        NewMessage();
    } else if (mail.From().isEmpty() && mail.TextBody().isEmpty() && mail.HTMLBody().isEmpty() &&
               mail.Subject().startsWith(QStringLiteral("FW: "))) {
        Forward();
    } else {
        Compose(Composing::Copy(*message));
    }
}

void MainWindow::TakeOpenMessage(const cMessagePtr& message)
{
    if (message->Category() == tmcDrafts)
        Compose(Composing::Continue(*message), message);
    else
        OpenInWindow(message);
}
