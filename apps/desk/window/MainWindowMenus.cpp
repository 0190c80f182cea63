// SPDX-License-Identifier: Apache-2.0

// The main window's menus, keys and tool bar.

#include "Appearance.h"
#include "DeskSettings.h"
#include "MainWindow.h"
#include "ShortcutsDialog.h"
#include "answering/AnsweringDesk.h"
#include "common/UserPreferences.h"
#include "common/dialogs/frmDirectoryUsers.h"
#include "contacts/ContactDesk.h"
#include "messages/ArrivalCue.h"
#include "messages/MessageUndo.h"
#include "messages/MessageWindow.h"
#include "messages/PreviewPane.h"
#include "messageslist/uMessagesList.h"
#include "onair/OnAirDesk.h"
#include "platform/widgets/Icons.h"
#include "prizes/PrizeDesk.h"
#include "prizes/PrizesPage.h"
#include "prizes/controls/uPrizesList.h"
#include "search/SameMailNotice.h"
#include "search/SearchDesk.h"
#include "sending/SendingDesk.h"
#include "sending/SendingNotice.h"
#include "song/SongDesk.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QSplitter>
#include <QToolBar>
#include <QVBoxLayout>

namespace
{

/// An entry of the list's own menu shows the key that this window gives it. It gets no key itself: its entry may be
/// disabled since the menu was last open.
void ShowKey(QMenu& menu, const char* name, const QKeySequence& key)
{
    for (QAction* entry : menu.actions()) {
        if (entry->objectName() == QLatin1String(name))
            entry->setText(entry->text() + u'\t' + key.toString(QKeySequence::NativeText));
    }
}
} // namespace

QAction* MainWindow::AddAction(QMenu* menu, const char* name, const QString& icon, const QString& text,
                               const QKeySequence& key)
{
    auto* action = new QAction(Icons::Get(icon), text, this);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(key);
    if (menu)
        menu->addAction(action);
    else
        addAction(action);
    return action;
}

QAction* MainWindow::Action(const char* name) const
{
    return findChild<QAction*>(QLatin1String(name), Qt::FindDirectChildrenOnly);
}

void MainWindow::MakeFileMenu()
{
    auto* menu = menuBar()->addMenu(tr("&File"));
    QAction* create =
        AddAction(menu, "newMessage", QStringLiteral("new"), tr("&New message"), QKeySequence(Qt::CTRL | Qt::Key_N));
    QAction* text = AddAction(menu, "newTextMessage", QString(), tr("New &text message"),
                              QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N));
    menu->addSeparator();
    QAction* open = AddAction(menu, "openStation", QStringLiteral("open"), tr("&Open station..."),
                              QKeySequence(Qt::CTRL | Qt::Key_O));
    auto* recent = menu->addMenu(tr("&Recent stations"));
    recent->setObjectName(QStringLiteral("recentStations"));
    menu->addSeparator();
    MakeMessageFilesMenu(*menu);
    menu->addSeparator();
    MakePrintActions(menu);
    menu->addSeparator();
    menu->addAction(Contacts_->MakeContactsAction());
    QAction* users = AddAction(menu, "users", QStringLiteral("users"), tr("&Users..."));
    menu->addSeparator();
    QAction* user = AddAction(menu, "switchUser", QString(), tr("S&witch user..."));
    QAction* quit = AddAction(menu, "quit", QString(), tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q));

    connect(create, &QAction::triggered, this, &MainWindow::NewMessage);
    connect(text, &QAction::triggered, this, &MainWindow::NewTextMessage);
    connect(open, &QAction::triggered, this, [this] { Q_EMIT StationWanted(QString()); });
    connect(recent, &QMenu::aboutToShow, this, [this, recent] { FillRecentStations(*recent); });
    connect(users, &QAction::triggered, this, &MainWindow::EditUsers);
    connect(user, &QAction::triggered, this, &MainWindow::UserWanted);
    connect(menu, &QMenu::aboutToShow, this, [this, users] { users->setEnabled(MayChangeSettings()); });
    connect(quit, &QAction::triggered, this, &QWidget::close);
}

void MainWindow::FillRecentStations(QMenu& menu)
{
    menu.clear();
    for (const QString& folder : Settings_.RecentStations()) {
        // A folder's own ampersand is no access key.
        QString text = QDir::toNativeSeparators(folder);
        QAction* entry = menu.addAction(text.replace(u'&', QStringLiteral("&&")));
        entry->setEnabled(folder != Station_->Folder());
        connect(entry, &QAction::triggered, this, [this, folder] { Q_EMIT StationWanted(folder); });
    }
    if (menu.isEmpty())
        menu.addAction(tr("None yet"))->setEnabled(false);
}

void MainWindow::MakeMessageMenu()
{
    QMenu* menu = List_->MessageMenu();
    menu->setTitle(tr("&Message"));
    menuBar()->addMenu(menu);
    QMenu* folders = List_->CategoryMenu();
    folders->setTitle(tr("F&older"));
    menuBar()->addMenu(folders);
    QAction* top = AddAction(folders, "newTopFolder", QString(), tr("New folder at the &top"));
    connect(top, &QAction::triggered, List_, &uMessagesList::NewTopFolder);
    connect(folders, &QMenu::aboutToShow, this, [this, top] {
        const clsKVUser* user = Station_->Directory().CurrentUser();
        top->setEnabled(user && user->CanEditCategories());
    });

    const QKeySequence replyKey(Qt::CTRL | Qt::Key_R);
    const QKeySequence allKey(Qt::CTRL | Qt::SHIFT | Qt::Key_R);
    const QKeySequence forwardKey(Qt::CTRL | Qt::Key_L);
    QAction* reply = AddAction(nullptr, "reply", QStringLiteral("reply"), tr("Reply"), replyKey);
    QAction* all = AddAction(nullptr, "replyAll", QStringLiteral("replyall"), tr("Reply to &all"), allKey);
    QAction* forward = AddAction(nullptr, "forward", QStringLiteral("forward"), tr("Forward"), forwardKey);
    connect(reply, &QAction::triggered, this, &MainWindow::Reply);
    connect(all, &QAction::triggered, this, &MainWindow::ReplyToAll);
    connect(forward, &QAction::triggered, this, &MainWindow::Forward);
    MessageBar_->addActions({reply, all, forward});
    for (QAction* entry : menu->actions()) {
        if (entry->objectName() == u"mnuForwardMessage")
            menu->insertAction(entry, all);
    }
    MakeFolderCommands(*menu);
    menu->addSeparator();
    menu->addAction(Undo_->Action());
    menu->addAction(Sending_->Notice().Action());
    menu->addAction(Prizes_->MakeAwardToSenderAction());
    menu->addAction(Contacts_->MakeSenderAction());
    menu->addAction(OnAir_->PutAction());
    Search_->AddToMessageMenu(*menu, [this] {
        cMessagePtr message;
        Run([&] { message = SelectedMessage(); });
        return message;
    });
    // The key for what somebody wrote before, be he a contact or not.
    if (auto* earlier = menu->findChild<QAction*>(QStringLiteral("sameSender")))
        earlier->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_H));
    ShowKey(*menu, "mnuReplyMessage", replyKey);
    ShowKey(*menu, "mnuForwardMessage", forwardKey);
    ShowKey(*menu, "mnuPrint", QKeySequence(Qt::CTRL | Qt::Key_P));
    ShowKey(*menu, "mnuMessageNewMessage", QKeySequence(Qt::CTRL | Qt::Key_N));
}

void MainWindow::MakeViewMenu()
{
    Prizes_->MakePrizeMenu(*menuBar());
    ShowKey(*Prizes_->Page().List().PrizeMenu(), "mnuPrint", QKeySequence(Qt::CTRL | Qt::Key_P));
    auto* menu = menuBar()->addMenu(tr("&View"));
    QAction* refresh = AddAction(menu, "refresh", QStringLiteral("refresh"), tr("&Refresh"), QKeySequence(Qt::Key_F5));
    QAction* find =
        AddAction(menu, "find", QStringLiteral("search"), tr("&Find in subjects"), QKeySequence(Qt::CTRL | Qt::Key_F));
    QAction* all =
        AddAction(menu, "showAll", QString(), tr("Show &all messages"), QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_F));
    menu->addAction(Song_->Action());
    Song_->Action()->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_B));
    Search_->AddToViewMenu(*menu);
    menu->addAction(OnAir_->ShowAction());
    menu->addSeparator();
    QAction* next = AddAction(menu, "nextPane", QString(), tr("&Next part of the window"), QKeySequence(Qt::Key_F6));
    QAction* previous = AddAction(menu, "previousPane", QString(), tr("&Previous part of the window"),
                                  QKeySequence(Qt::SHIFT | Qt::Key_F6));
    Prizes_->AddToViewMenu(*menu);
    menu->addSeparator();
    MakeGoMenu(*menu);
    MakeSortMenu(*menu);
    menu->addAction(Arrivals_->SoundAction());
    MakeColoursMenu(*menu);
    connect(refresh, &QAction::triggered, this, &MainWindow::RefreshAll);
    connect(all, &QAction::triggered, this, [this] {
        if (Prizes_->IsOnShow())
            Prizes_->Page().ShowAll();
        else
            ShowAllMessages();
    });
    connect(next, &QAction::triggered, this, [this] { FocusNextPane(); });
    connect(previous, &QAction::triggered, this, [this] { FocusNextPane(true); });
    connect(find, &QAction::triggered, this, [this] {
        if (Prizes_->IsOnShow()) {
            Prizes_->Page().Find();
            return;
        }
        List_->FocusFind();
    });
}

/// One size for every message that is read here, from now on and after the next start.
void MainWindow::KeepTextSize(PreviewPane& view)
{
    view.SetTextSize(Settings_.TextSize());
    connect(&view, &PreviewPane::TextSizeChanged, this, [this](int steps) {
        Settings_.SetTextSize(steps);
        Preview_->SetTextSize(steps);
        for (MessageWindow* window : MessageWindows())
            window->View().SetTextSize(steps);
    });
}

void MainWindow::ShowAllMessages()
{
    Song_->ShowAll();
    Run([this] { List_->ClearFind(); });
}

void MainWindow::MakeGoMenu(QMenu& menu)
{
    auto* go = menu.addMenu(tr("&Go to"));
    const QStringList names = {tr("Inbox"),         tr("Outbox"),         tr("Saved"),        tr("Sent"),
                               tr("Deleted Items"), tr("Draft Messages"), tr("Auto-Messages")};
    for (int i = 0; i < names.size(); ++i) {
        const auto category = static_cast<enTolvaMessageCategories>(i + 1);
        QAction* folder = AddAction(go, "goTo", QString(), names.at(i), QKeySequence(Qt::CTRL | (Qt::Key_1 + i)));
        folder->setObjectName(QStringLiteral("goTo%1").arg(i + 1));
        connect(folder, &QAction::triggered, this, [this, category] {
            Prizes_->ShowPage(false);
            Run([&] { List_->SetCategory(category); });
            FocusRows();
        });
    }
}

/// The order is the user's, at every desk.
void MainWindow::MakeSortMenu(QMenu& menu)
{
    auto* orders = menu.addMenu(tr("Sor&t by"));
    auto* group = new QActionGroup(this);
    const std::pair<qint32, QString> choices[] = {{mlsoSent, tr("Sender's &clock")}, {mlsoReceived, tr("&Arrival")}};
    for (const auto& [order, text] : choices) {
        QAction* choice = AddAction(orders, "sort", QString(), text);
        choice->setObjectName(QStringLiteral("sort_%1").arg(order));
        choice->setCheckable(true);
        group->addAction(choice);
        connect(choice, &QAction::triggered, this, [this, order = order] { SetSortOrder(order); });
    }
    connect(orders, &QMenu::aboutToShow, this, [this] {
        if (QAction* choice = Action(qPrintable(QStringLiteral("sort_%1").arg(SortOrder()))))
            choice->setChecked(true);
    });
}

qint32 MainWindow::SortOrder() const
{
    const clsKVUser* user = Station_->Directory().CurrentUser();
    const UserPreferences::Preference& kept = UserPreferences::MessageOrder;
    return user ? user->Preference(kept.Name, kept.Default).toInt() : mlsoSent;
}

void MainWindow::SetSortOrder(qint32 order)
{
    Run([&] {
        if (clsKVUser* user = Station_->Directory().CurrentUser())
            user->SetPreference(UserPreferences::MessageOrder.Name, order); // the list hears of it
        Preview_->SetShowsSentDate(order != mlsoReceived);
    });
}

void MainWindow::MakeColoursMenu(QMenu& menu)
{
    auto* looks = menu.addMenu(tr("Colour&s"));
    auto* group = new QActionGroup(this);
    const QList<std::pair<QString, QString>> choices = {{QString(), tr("As the &system")},
                                                        {QStringLiteral("light"), tr("&Light")},
                                                        {QStringLiteral("dark"), tr("&Dark")}};
    for (const auto& [key, text] : choices) {
        QAction* choice = AddAction(looks, "colours", QString(), text);
        choice->setObjectName(QStringLiteral("colours_") + key);
        choice->setCheckable(true);
        choice->setChecked(Settings_.Appearance() == key);
        group->addAction(choice);
        connect(choice, &QAction::triggered, this, [this, key = key] {
            Settings_.SetAppearance(key);
            Appearance::Apply(key);
        });
    }
}

void MainWindow::MakeHelpMenu()
{
    auto* menu = menuBar()->addMenu(tr("&Help"));
    QAction* keys = AddAction(menu, "shortcuts", QString(), tr("&Keyboard shortcuts"), QKeySequence(Qt::Key_F1));
    QAction* about = AddAction(menu, "about", QStringLiteral("tolva"), tr("&About Tolva"));
    connect(keys, &QAction::triggered, this, &MainWindow::ShowShortcuts);
    connect(about, &QAction::triggered, this, &MainWindow::ShowAbout);
}

/// The selected message, and above it what can be done with it.
QWidget* MainWindow::MakeMessageSide()
{
    auto* side = new QWidget(this);
    MessageBar_ = new QToolBar(tr("Message"), side);
    MessageBar_->setObjectName(QStringLiteral("messageBar"));
    MessageBar_->setIconSize(QSize(Icons::SmallSide, Icons::SmallSide));
    MessageBar_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    auto* layout = new QVBoxLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(MessageBar_);
    layout->addWidget(&Sending_->Notice().Bar());
    layout->addWidget(&SameMail_->Bar());
    layout->addWidget(&Answering_->Notice());
    layout->addWidget(Preview_, 1);
    return side;
}

void MainWindow::ShowShortcuts()
{
    ShortcutsDialog dialog(this);
    dialog.exec();
}

void MainWindow::ShowAbout()
{
    QMessageBox box(this);
    box.setObjectName(QStringLiteral("aboutBox"));
    box.setWindowTitle(tr("About Tolva"));
    box.setIconPixmap(windowIcon().pixmap(QSize(48, 48), devicePixelRatioF()));
    box.setText(tr("Tolva %1").arg(QStringLiteral(TOLVA_VERSION)));
    box.setInformativeText(
        tr("The contact desk of a radio station. It files what listeners write and what is written to "
           "them; sending is the work of the mailer beside it."));
    box.exec();
}

void MainWindow::EditUsers()
{
    Run([this] {
        frmDirectoryUsers dialog(Station_->Directory(), this);
        dialog.exec();
    });
    CountTimer_.start();
}
