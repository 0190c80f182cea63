// SPDX-License-Identifier: Apache-2.0
#include "ContactDesk.h"

#include "ContactHistory.h"
#include "ContactSaving.h"
#include "ContactsWindow.h"
#include "Words.h"
#include "contacts/SenderContact.h"
#include "platform/widgets/Icons.h"
#include "search/SearchService.h"
#include "station/DeskStation.h"

#include <QAction>
#include <QMainWindow>

ContactDesk::ContactDesk(DeskStation& station, QMainWindow& window) : QObject(&window), Station_(station), Main_(window)
{
    setObjectName(QStringLiteral("contactDesk"));
}

QAction* ContactDesk::MakeContactsAction()
{
    auto* action = new QAction(Icons::Get(QStringLiteral("users")), tr("&Contacts..."), &Main_);
    action->setObjectName(QStringLiteral("contactsAction"));
    action->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C));
    connect(action, &QAction::triggered, this, &ContactDesk::ShowContacts);
    return action;
}

QAction* ContactDesk::MakeSenderAction()
{
    auto* action = new QAction(tr("Sender's con&tact..."), &Main_);
    action->setObjectName(QStringLiteral("senderContact"));
    action->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_K));
    connect(action, &QAction::triggered, this, &ContactDesk::SenderWanted);
    return action;
}

ContactsWindow* ContactDesk::Window() const
{
    return Contacts_;
}

ContactsWindow& ContactDesk::OpenWindow()
{
    if (!Contacts_) {
        Contacts_ = new ContactsWindow(Station_);
        if (Search_)
            Contacts_->History().SetSearch(*Search_);
        connect(Contacts_, &ContactsWindow::MessageWanted, this, &ContactDesk::MessageWanted);
        connect(Contacts_, &ContactsWindow::PrizeWanted, this, &ContactDesk::PrizeWanted);
        connect(Contacts_, &ContactsWindow::WinnerWanted, this, &ContactDesk::WinnerWanted);
        Contacts_->setWindowIcon(Main_.windowIcon());
        Q_EMIT WindowOpened(Contacts_);
    }
    if (Contacts_->isMinimized())
        Contacts_->showNormal();
    Contacts_->show();
    Contacts_->raise();
    Contacts_->activateWindow();
    return *Contacts_;
}

void ContactDesk::ShowContacts()
{
    OpenWindow();
}

void ContactDesk::ShowOrStart(const clsKVContactPtr& contact, const clsKVContact& proposal)
{
    ContactsWindow& window = OpenWindow();
    if (contact)
        window.ShowContact(contact->Reference);
    else
        window.StartNew(proposal);
}

void ContactDesk::ShowSender(const cMessagePtr& message)
{
    if (!message)
        return;
    try {
        ShowOrStart(SenderContact::Find(Station_.Directory(), *message), SenderContact::FromMessage(*message));
    } catch (const dao::Error& error) {
        Words::Warn(ContactSaving::WordsOf(error));
    }
}

void ContactDesk::ShowAddress(const QString& name, const QString& address)
{
    clsKVContact proposal;
    const bool isEmail = address.contains(u'@');
    proposal.Name = name.isEmpty() && isEmail ? SenderContact::NameFromAddress(address) : name;
    (isEmail ? proposal.Email : proposal.Mobile) = address;
    try {
        ShowOrStart(isEmail ? SenderContact::FindByAddress(Station_.Directory(), address)
                            : SenderContact::FindByNumber(Station_.Directory(), address),
                    proposal);
    } catch (const dao::Error& error) {
        Words::Warn(ContactSaving::WordsOf(error));
    }
}
