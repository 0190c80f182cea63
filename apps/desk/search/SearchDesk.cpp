// SPDX-License-Identifier: Apache-2.0
#include "SearchDesk.h"

#include "DisplayText.h"
#include "SearchService.h"
#include "SearchWindow.h"
#include "messages/OwnFolders.h"
#include "messages/search/SearchText.h"
#include "platform/mail/MessageReader.h"
#include "platform/widgets/Icons.h"
#include "station/DeskStation.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>

SearchDesk::SearchDesk(DeskStation& station, DeskSettings& settings, QMainWindow& window)
    : QObject(&window),
      Station_(station),
      Settings_(settings),
      Main_(window),
      Service_(std::make_unique<SearchService>(station))
{
    setObjectName(QStringLiteral("searchDesk"));
}

SearchDesk::~SearchDesk() = default;

SearchWindow& SearchDesk::Window()
{
    if (!Window_) {
        Window_ = std::make_unique<SearchWindow>(Station_, *Service_, Settings_);
        Window_->setWindowIcon(Main_.windowIcon());
        connect(Window_.get(), &SearchWindow::MessageWanted, this, &SearchDesk::MessageWanted);
        connect(Window_.get(), &SearchWindow::WasRead, this, &SearchDesk::WasRead);
        connect(Window_.get(), &SearchWindow::Left, &Main_, &QWidget::activateWindow);
    }
    return *Window_;
}

void SearchDesk::AddToViewMenu(QMenu& menu)
{
    QAction* search =
        menu.addAction(Icons::Get(QStringLiteral("search")), tr("Search all messages..."),
                       QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F), this, [this] { Window().Begin(); });
    search->setObjectName(QStringLiteral("searchAll"));
    auto* saved = menu.addMenu(tr("Sa&ved searches"));
    saved->setObjectName(QStringLiteral("savedSearches"));
    connect(saved, &QMenu::aboutToShow, this, [this, saved] { FillSaved(*saved); });
}

void SearchDesk::Leave()
{
    if (Window_)
        Window_->close();
}

void SearchDesk::FillSaved(QMenu& menu)
{
    menu.clear();
    for (const QString& typed : Window().Saved()) {
        QString text = typed;
        menu.addAction(text.replace(u'&', QStringLiteral("&&")), this, [this, typed] { Window().Search(typed); });
    }
    if (menu.isEmpty())
        menu.addAction(tr("None yet"))->setEnabled(false);
}

void SearchDesk::AddToMessageMenu(QMenu& menu, std::function<cMessagePtr()> selected)
{
    auto* related = menu.addMenu(tr("Find related"));
    related->setObjectName(QStringLiteral("findRelated"));
    const auto add = [&](const char* name, const QString& text, Relation relation) {
        QAction* action =
            related->addAction(text, this, [this, selected, relation] { ShowRelated(selected(), relation); });
        action->setObjectName(QLatin1String(name));
    };
    add("sameSender", tr("Same &sender"), Relation::Sender);
    add("sameConversation", tr("Same &conversation"), Relation::Conversation);
    add("sameSubject", tr("Same s&ubject"), Relation::Subject);
}

void SearchDesk::ShowRelated(const cMessagePtr& message, Relation relation)
{
    if (!message)
        return;
    const Kinship kinship = KinshipOf(message->CDOMessage()->Octets());
    const QString from = OneLine(cdo::HeaderBeginning(*message->CDOMessage(), "From", 100));
    const QString subject = OneLine(cdo::HeaderBeginning(*message->CDOMessage(), "Subject", 100));
    QList<QByteArray> terms;
    QString words;
    switch (relation) {
    case Relation::Sender:
        terms = {kinship.Sender};
        words = tr("Only messages with the sender %1.").arg(from);
        break;
    case Relation::Conversation:
        // Texts refer to none before them: what was written to and from the number is one.
        terms = message->MessageType() == emtSMS
                    ? QList<QByteArray>{IsOwnFolder(message->Category()) ? kinship.Recipient : kinship.Sender}
                    : kinship.Mails;
        words = tr("Only the conversation of \"%1\".").arg(subject);
        break;
    case Relation::Subject:
        terms = {kinship.Subject};
        words = tr("Only messages with the subject \"%1\".").arg(subject);
        break;
    }
    terms.removeAll(QByteArray());
    Window().SearchRelated(terms, terms.isEmpty() ? tr("This message does not tell what it belongs to.") : words);
}
