// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"
#include "platform/directory/clsKVContact.h"

#include <QObject>
#include <QPointer>

class ContactsWindow;
class DeskStation;
class QAction;
class QMainWindow;
class SearchService;

/// All that the desk's main window has to do with contacts: their window, and the way to it from a message or an
/// address. Owned by the main window, whose station outlives it.
class ContactDesk : public QObject
{
    Q_OBJECT

public:
    ContactDesk(DeskStation& station, QMainWindow& window);

    /// "Contacts...", and "Sender's contact..." for a menu of messages, which only asks.
    QAction* MakeContactsAction();
    QAction* MakeSenderAction();

    /// The index that shows a contact's messages sooner.
    void SetSearch(SearchService& search) { Search_ = &search; }

    /// Null while it is closed.
    ContactsWindow* Window() const;

public Q_SLOTS:
    void ShowContacts();
    /// The contact who wrote the message, or a new one with what the message tells of its writer. Null: nothing.
    void ShowSender(const cMessagePtr& message);
    /// The contact with that e-mail address or number, or a new one with both; without a name one made of the address.
    void ShowAddress(const QString& name, const QString& address);

Q_SIGNALS:
    /// The main window closes it with the others.
    void WindowOpened(QMainWindow* window);
    void SenderWanted();
    void MessageWanted(qint32 reference);
    void PrizeWanted(qint32 reference);
    void WinnerWanted(qint32 reference);

private:
    ContactsWindow& OpenWindow();
    void ShowOrStart(const clsKVContactPtr& contact, const clsKVContact& proposal);

    DeskStation& Station_;
    QMainWindow& Main_;
    QPointer<ContactsWindow> Contacts_;
    SearchService* Search_ = nullptr; ///< The main window's.
};
