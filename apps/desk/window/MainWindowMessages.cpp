// SPDX-License-Identifier: Apache-2.0

// What the main window does with messages: windows that show one, and those in which one is written.

#include "DeskSettings.h"
#include "MainWindow.h"
#include "NoticeBar.h"
#include "answering/AnsweringDesk.h"
#include "compose/AnswerTemplates.h"
#include "compose/ComposeWindow.h"
#include "contacts/ContactDesk.h"
#include "messages/MessageWindow.h"
#include "messages/PreviewPane.h"
#include "messageslist/uMessagesList.h"
#include "printing/PrintDialog.h"
#include "prizes/PrizeDesk.h"
#include "search/SearchDesk.h"
#include "sending/SendingDesk.h"

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
    return ShowCompose(composition, draft, UnsentText(Settings_.UnsentFolder()));
}

ComposeWindow* MainWindow::ShowCompose(const Composition& composition, const cMessagePtr& draft, UnsentText file)
{
    auto* window = new ComposeWindow(*Station_, composition, draft);
    window->KeepIn(std::move(file));
    window->CheckSpelling(*Speller_);
    Answering_->Watch(*window);
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

/// What a desk of this account was writing when it ended without closing.
void MainWindow::OfferUnsent()
{
    for (UnsentText::Found& found : UnsentText::Abandoned(Settings_.UnsentFolder(), Station_->Folder()))
        UnsentTexts_.push_back(std::move(found));
    if (UnsentTexts_.empty())
        return Unsent_->Show(QString());
    const auto count = static_cast<int>(UnsentTexts_.size());
    Unsent_->Show(count == 1 ? tr("A message that was being written when the desk ended was kept.")
                             : tr("%1 messages that were being written when the desk ended were kept.").arg(count));
}

void MainWindow::OpenUnsent()
{
    Unsent_->Show(QString());
    for (UnsentText::Found& found : std::exchange(UnsentTexts_, {})) {
        const UnsentText::Content& kept = found.Kept;
        cMessagePtr draft = kept.Draft != 0 ? Station_->Database().ReadMessage(kept.Draft) : nullptr;
        // Where somebody else has changed the draft since, this is a message beside it.
        if (draft && UnsentText::DigestOf(Composing::Continue(*draft)) != kept.DraftDigest)
            draft = nullptr;
        const Composition text = kept.Text;
        Composition stored;
        stored.Type = text.Type;
        ComposeWindow* window = ShowCompose(draft ? Composing::Continue(*draft) : stored, draft, std::move(found.File));
        window->Recover(text);
        Answering_->Watch(*window);
    }
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
    auto* window = new MessageWindow(*Station_, Search_->Service(), message);
    window->setWindowIcon(windowIcon());
    window->SetShowsSentDate(SortOrder() != mlsoReceived);
    Windows_.removeAll(nullptr);
    Windows_.append(window);
    Answering_->Watch(*window);
    connect(window, &MessageWindow::ReplyWanted, this,
            [this](const cMessagePtr& original) { Run([&] { Answer(original, false); }); });
    connect(window, &MessageWindow::ReplyToAllWanted, this,
            [this](const cMessagePtr& original) { Run([&] { Answer(original, true); }); });
    connect(window, &MessageWindow::PrintWanted, this, [this, window](const cMessagePtr& original) {
        PrintMessages({{}, original}, window);
    });
    connect(window, &MessageWindow::ForwardWanted, this,
            [this](const cMessagePtr& original) { Run([&] { Compose(Composing::Forward(*original)); }); });
    connect(window, &MessageWindow::AwardToSenderWanted, this,
            [=, this](const cMessagePtr& original) { Run([&] { Prizes_->AwardToSender(original, window); }); });
    connect(window, &MessageWindow::SenderContactWanted, Contacts_, &ContactDesk::ShowSender);
    connect(window, &MessageWindow::WasRead, this, &MainWindow::MarkAsRead);
    connect(window, &MessageWindow::MessageWanted, this, &MainWindow::OpenFound);
    connect(window, &MessageWindow::SendingDecided, Sending_, &SendingDesk::CountUnsent);
    Search_->AddToMessageMenu(window->Menu(), [message] { return message; });
    KeepTextSize(window->View());
    window->show();
    window->activateWindow();
    return window;
}

/// The selected message as it is stored now. Where another computer has taken it away, the one that is on show still:
/// who reads it answers that one, and knows.
cMessagePtr MainWindow::SelectedMessage()
{
    const qint32 reference = List_->SelectedReference();
    const cMessagePtr shown = Preview_->IsLoaded() ? Preview_->Message() : nullptr;
    if (reference <= 0)
        return shown;
    cMessagePtr message = Station_->Database().ReadMessage(reference);
    if (message)
        return message;
    TakeGoneMessage();
    return shown && shown->Reference() == reference ? shown : nullptr;
}

void MainWindow::TakeGoneMessage()
{
    Say(tr("That message is not there any more: it was deleted on another computer."));
    Run([this] { List_->ShowChanges(); });
}

/// A signature that cannot be read keeps nobody from writing.
void MainWindow::ComposeSigned(const Composition& composition)
{
    QString problem;
    Compose(AnswerTemplates::WithSignature(*Station_, composition, problem));
    if (!problem.isEmpty())
        Say(problem);
}

/// Nothing where somebody else answers it already and the user leaves it to them.
void MainWindow::Answer(const cMessagePtr& original, bool toAll)
{
    if (!original || !Answering_->MayAnswer(*original))
        return;
    const Writer writer = Composing::WriterOf(Station_->Database());
    ComposeSigned(toAll ? Composing::ReplyToAll(*original, writer) : Composing::Reply(*original, writer));
}

void MainWindow::Reply()
{
    Run([this] { Answer(SelectedMessage(), false); });
}

void MainWindow::ReplyToAll()
{
    Run([this] { Answer(SelectedMessage(), true); });
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
    ComposeSigned(Composition());
}

void MainWindow::NewTextMessage()
{
    Composition text;
    text.Type = emtSMS;
    Compose(text);
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
