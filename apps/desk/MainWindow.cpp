// SPDX-License-Identifier: Apache-2.0

// The desk's main window: what it is made of and what it does with the events of the list.

#include "MainWindow.h"

#include "AttachmentList.h"
#include "ComposeWindow.h"
#include "DeskSettings.h"
#include "Failure.h"
#include "MessageWindow.h"
#include "MoveUndo.h"
#include "NoticeBar.h"
#include "PreviewPane.h"
#include "RowRecovery.h"
#include "StationPlace.h"
#include "Words.h"
#include "common/ClockHelper.h"
#include "contacts/ContactDesk.h"
#include "messageslist/uMessagesList.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/TabStrip.h"
#include "printing/PrintDialog.h"
#include "prizes/PrizeDesk.h"
#include "prizes/PrizesPage.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QSplitter>
#include <QStatusBar>
#include <QTabBar>
#include <QVBoxLayout>

namespace
{
constexpr int CountDelay = 150;
constexpr int FitDelay = 300;
constexpr int FillDelay = 200;
/// Beyond this, fitting the subjects of all rows to a new width takes longer than it is worth.
constexpr int MostRowsFitted = 3000;
constexpr int MessageMilliseconds = 8000;
constexpr float ListInterval = 3;

const QString GeometryState = QStringLiteral("MainWindow/Geometry");
const QString SplitterState = QStringLiteral("MainWindow/Splitter");

QString TimeNow()
{
    return ClockHelper::CurrentTime().Format(QStringLiteral("hh:nn:ss"));
}

const QString OrderClause = QStringLiteral(" ORDER BY ");

/// A query of the list without its order, and its order alone.
QString ConditionOf(const QString& query)
{
    return query.left(query.lastIndexOf(OrderClause)).trimmed();
}

QString OrderOf(const QString& query)
{
    const qsizetype order = query.lastIndexOf(OrderClause);
    return order < 0 ? QString() : query.mid(order + OrderClause.size()).trimmed();
}
} // namespace

MainWindow::MainWindow(std::unique_ptr<DeskStation> station, DeskSettings& settings)
    : Station_(std::move(station)), Settings_(settings)
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowIcon(Icons::Get(QStringLiteral("tolva")));
    MakeParts();
    ConnectList();
    MakeFileMenu();
    MakeMessageMenu();
    MakeViewMenu();
    MakeStationMenu();
    MakeHelpMenu();
    RestoreSizes();

    CountTimer_.setSingleShot(true);
    CountTimer_.setInterval(CountDelay);
    connect(&CountTimer_, &QTimer::timeout, this, &MainWindow::ShowCounts);
    WatchTimer_.setInterval(WatchMilliseconds);
    connect(&WatchTimer_, &QTimer::timeout, this, &MainWindow::WatchStation);
    WatchTimer_.start();
    BackupTimer_.setInterval(BackupMilliseconds);
    connect(&BackupTimer_, &QTimer::timeout, this, [this] {
        // Not in the middle of a fill, which yields to timers.
        if (!List_->IsFilling() && !MustReopen_)
            Station_->BackUpWhenDue();
    });
    BackupTimer_.start();
    connect(&Station_->Database(), &cTolvaDatabase::MessageSaved, this, [this] { CountTimer_.start(); });
    connect(&Station_->Database(), &cTolvaDatabase::MessageDeleted, this, [this] { CountTimer_.start(); });

    FitTimer_.setSingleShot(true);
    FitTimer_.setInterval(FitDelay);
    connect(&FitTimer_, &QTimer::timeout, this, &MainWindow::FitSubjects);
    connect(Splitter_, &QSplitter::splitterMoved, this, [this] { FitTimer_.start(); });
    Run([this] { setWindowTitle(tr("%1 \u2013 Tolva").arg(Station_->Name())); });
    TakeSelection(nullptr);
    TakePage(Prizes_->IsOnShow());
}

MainWindow::~MainWindow()
{
    for (const QPointer<QMainWindow>& window : std::as_const(Windows_))
        delete window;
    // The lists go before the station.
    delete Prizes_;
    List_->SetTolvaDatabase(nullptr);
}

void MainWindow::MakeParts()
{
    Connection_ = new NoticeBar(QStringLiteral("warning"), QString(), this);
    Connection_->setObjectName(QStringLiteral("connectionNotice"));
    Filter_ = new NoticeBar(QStringLiteral("search"), tr("Sho&w all"), this);
    Filter_->setObjectName(QStringLiteral("filterNotice"));
    List_ = new uMessagesList(this);
    List_->setObjectName(QStringLiteral("list"));
    List_->SetAutoUpdateInterval(ListInterval);
    Undo_ = new MoveUndo(*Station_, *this);
    AddTabs();
    Preview_ = new PreviewPane(this);
    Preview_->SetDamageAdvice([this](qint32 reference) {
        return RowRecovery::Advice(Station_->Folder(), RowRecovery::Kind::Message, reference);
    });
    Splitter_ = new QSplitter(Qt::Horizontal, this);
    Splitter_->setObjectName(QStringLiteral("splitter"));
    Splitter_->addWidget(List_);
    Splitter_->addWidget(MakeMessageSide());
    Splitter_->setChildrenCollapsible(false);
    Splitter_->setStretchFactor(0, 3);
    Splitter_->setStretchFactor(1, 2);

    auto* messages = new QWidget(this);
    auto* messagesLayout = new QVBoxLayout(messages);
    messagesLayout->setContentsMargins(0, 0, 0, 0);
    messagesLayout->setSpacing(0);
    messagesLayout->addWidget(&Undo_->Notice());
    messagesLayout->addWidget(Filter_);
    messagesLayout->addWidget(Splitter_, 1);
    Prizes_ = new PrizeDesk(*Station_, Settings_, *this);
    Contacts_ = new ContactDesk(*Station_, *this);
    ConnectContacts();
    connect(Prizes_, &PrizeDesk::WindowOpened, this, [this](QMainWindow* window) { Windows_.append(window); });
    connect(Prizes_, &PrizeDesk::PageChanged, this, &MainWindow::TakePage);
    connect(Prizes_, &PrizeDesk::AwardToSenderWanted, this,
            [this] { Run([this] { Prizes_->AwardToSender(SelectedMessage()); }); });
    connect(Prizes_, &PrizeDesk::Told, this,
            [this](const QString& words) { statusBar()->showMessage(words, MessageMilliseconds); });
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Connection_);
    layout->addWidget(&Prizes_->Notice());
    layout->addWidget(Prizes_->MakePages(messages), 1);
    setCentralWidget(page);

    const auto addLabel = [this](const char* name) {
        auto* label = new QLabel(this);
        label->setObjectName(QLatin1String(name));
        label->setTextFormat(Qt::PlainText);
        label->setContentsMargins(6, 0, 6, 0);
        statusBar()->addPermanentWidget(label);
        return label;
    };
    Counts_ = addLabel("counts");
    Updated_ = addLabel("updated");
    User_ = addLabel("user");
    connect(Filter_, &NoticeBar::ButtonClicked, this, [this] { Run([this] { List_->ClearFind(); }); });
    connect(Preview_, &PreviewPane::WasRead, this, &MainWindow::MarkAsRead);
    connect(&Preview_->Attachments(), &AttachmentList::Saved, this,
            [this](const QString& words) { statusBar()->showMessage(words, MessageMilliseconds); });
}

/// Whose messages: everybody's and one's own, one's own alone, or those personal to others too.
void MainWindow::AddTabs()
{
    auto* strip = List_->findChild<TabStrip*>(QStringLiteral("tbsMessages"));
    QTabBar& tabs = strip->Tabs();
    tabs.setAccessibleName(strip->accessibleName());
    const QStringList captions = {tr("General"), tr("Personal"), tr("All")};
    for (int i = 0; i < captions.size(); ++i) {
        if (i < tabs.count())
            tabs.setTabText(i, captions.at(i));
        else
            tabs.addTab(captions.at(i));
    }
}

void MainWindow::ConnectList()
{
    connect(List_, qOverload<QString&>(&uMessagesList::UpdateDisplay), this, [this](const QString& query) {
        ListCondition_ = ConditionOf(query);
        ListOrder_ = OrderOf(query);
    });
    connect(List_, &uMessagesList::MessageSelected, this, &MainWindow::TakeSelection);
    connect(List_, &uMessagesList::NewMessage, this,
            [this](const cMessagePtr& message) { Run([&] { TakeNewMessage(message); }); });
    connect(List_, &uMessagesList::OpenMessage, this,
            [this](const cMessagePtr& message) { Run([&] { TakeOpenMessage(message); }); });
    connect(List_, &uMessagesList::PrintMessage, this, [this](const cMessagePtr& message) {
        PrintMessages({{message->Reference()}, nullptr});
    });
    connect(List_, &uMessagesList::MessageMoved, Undo_, &MoveUndo::Take);
    connect(Undo_, &MoveUndo::MovedBack, this, [this](qint32 reference) {
        Run([&] {
            List_->UpdateDisplay();
            List_->SelectMessage(reference);
        });
    });
    connect(Undo_, &MoveUndo::Told, this,
            [this](const QString& words) { statusBar()->showMessage(words, MessageMilliseconds); });
    connect(List_, &uMessagesList::DisplayUpdated, this, &MainWindow::TakeUpdate);
    connect(List_, &uMessagesList::ImportRefused, this, [this](const QString& file) {
        statusBar()->showMessage(tr("%1 holds no mail that could be filed.").arg(file), MessageMilliseconds);
    });
    // After the list's own handlers, which open nothing for a message that is gone.
    auto* grid = List_->findChild<FlexGrid*>(QStringLiteral("grdMessages"));
    connect(grid, &FlexGrid::DblClick, this, &MainWindow::CheckSelectedIsThere);
    connect(grid, &FlexGrid::KeyDown, this, [this](const QKeyEvent* event) {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            CheckSelectedIsThere();
    });
}

void MainWindow::RestoreSizes()
{
    resize(1180, 720);
    restoreGeometry(Settings_.State(GeometryState));
    if (!Splitter_->restoreState(Settings_.State(SplitterState)))
        Splitter_->setSizes({680, 500});
}

void MainWindow::SaveSizes()
{
    Settings_.SetState(GeometryState, saveGeometry());
    Settings_.SetState(SplitterState, Splitter_->saveState());
    Prizes_->SaveSizes();
}

/// The list cuts subjects to the width that it has when it is filled, so it is filled when the window has its size; and
/// from the event loop, so that a long fill can be left by closing the window. The window is painted first: reading the
/// messages of a large folder takes its time. One that is covered need not wait for that.
void MainWindow::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    if (!List_->TolvaDatabase())
        QTimer::singleShot(FillDelay, this, &MainWindow::FillList);
}

void MainWindow::paintEvent(QPaintEvent* event)
{
    QMainWindow::paintEvent(event);
    if (!List_->TolvaDatabase())
        QTimer::singleShot(0, this, &MainWindow::FillList);
}

void MainWindow::FillList()
{
    if (List_->TolvaDatabase() || !isVisible() || !Station_->Database().IsOpen())
        return;
    FittedWidth_ = List_->width();
    Run([this] { List_->SetTolvaDatabase(&Station_->Database()); });
    if (Prizes_->IsOnShow())
        Prizes_->Connect();
}

void MainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    FitTimer_.start();
}

void MainWindow::FitSubjects()
{
    if (FittedWidth_ == List_->width() || !List_->TolvaDatabase() || List_->IsFilling())
        return;
    FittedWidth_ = List_->width();
    if (List_->NumberItems() > 0 && List_->NumberItems() <= MostRowsFitted)
        Run([this] { List_->RefreshDisplay(); });
}

/// The controls hold colours of their own; those of the desktop are looked up anew.
void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::PaletteChange)
        List_->SetBackColour(List_->BackColour());
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    // What is being written comes first: any of these windows may want to stay.
    for (const QPointer<QMainWindow>& window : QList<QPointer<QMainWindow>>(Windows_)) {
        if (window && !window->close()) {
            event->ignore();
            return;
        }
    }
    SaveSizes();
    // Ends a fill that is under way.
    WatchTimer_.stop();
    Station_->Database().CloseTolvaDatabase();
    event->accept();
    Q_EMIT Closed();
}

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
        CheckSelectedIsThere();
    return message;
}

void MainWindow::CheckSelectedIsThere()
{
    Run([this] {
        const qint32 reference = List_->SelectedReference();
        if (reference <= 0 || Station_->Database().ReadMessage(reference))
            return;
        statusBar()->showMessage(tr("That message is not there any more: it was deleted on another computer."),
                                 MessageMilliseconds);
        List_->UpdateDisplay();
    });
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

void MainWindow::TakeSelection(const cMessagePtr& message)
{
    Preview_->Select(message);
    for (const char* name : {"reply", "replyAll", "forward", "awardToSender", "senderContact"})
        Action(name)->setEnabled(message != nullptr && !Prizes_->IsOnShow());
}

void MainWindow::ConnectContacts()
{
    connect(Contacts_, &ContactDesk::WindowOpened, this, [this](QMainWindow* window) {
        Windows_.removeAll(nullptr);
        Windows_.append(window);
    });
    connect(Contacts_, &ContactDesk::SenderWanted, this,
            [this] { Run([this] { Contacts_->ShowSender(SelectedMessage()); }); });
    connect(Contacts_, &ContactDesk::MessageWanted, this, [this](qint32 reference) {
        Run([&] {
            if (const cMessagePtr message = Station_->Database().ReadMessage(reference))
                TakeOpenMessage(message);
            else
                Words::Tell(tr("That message is not there any more: it was deleted on another computer."));
        });
    });
    connect(Contacts_, &ContactDesk::PrizeWanted, Prizes_, &PrizeDesk::OpenPrize);
    connect(Contacts_, &ContactDesk::WinnerWanted, Prizes_, &PrizeDesk::OpenWinner);
}

/// What works on the selected message works only while it is seen.
void MainWindow::TakePage(bool prizes)
{
    List_->MessageMenu()->menuAction()->setEnabled(!prizes);
    List_->CategoryMenu()->menuAction()->setEnabled(!prizes);
    TakePageForPrinting(prizes);
    Counts_->setVisible(!prizes);
    TakeSelection(Preview_->Message());
    FitTimer_.start();
}

void MainWindow::TakeUpdate()
{
    Updated_->setText(tr("Updated %1").arg(TimeNow()));
    Filter_->Show(List_->IsFiltered()
                      ? tr("Filter is on: only subjects with \u201C%1\u201D").arg(List_->FindText().simplified())
                      : QString());
    CountTimer_.start();
    for (MessageWindow* window : MessageWindows())
        window->CheckStored();
}

/// The counts of the folder on show. Only the unread ones are asked of the file; the others are the rows of the list.
void MainWindow::ShowCounts()
{
    if (!Station_->Database().IsOpen())
        return;
    try {
        // Odd numbers are read: the lowest bit of the flags says so.
        QString condition = ListCondition_;
        condition += condition.isEmpty() ? QString() : QStringLiteral(" AND ");
        const auto unread = Station_->Database().OpenMessageRows({QStringLiteral("Reference")},
                                                                 condition + QStringLiteral("[Flags] IN (0,2,4,6)"));
        const QLocale locale;
        const int all = List_->NumberItems();
        const QString messages = all == 1 ? tr("1 message") : tr("%1 messages").arg(locale.toString(all));
        Counts_->setText(List_->IsFiltered() || List_->IsFilling()
                             ? messages
                             : tr("%1, %2 unread").arg(messages, locale.toString(unread->RecordCount())));
        const clsKVUser* user = Station_->Directory().CurrentUser();
        User_->setText(user ? user->Name() : QString());
        setWindowTitle(tr("%1 \u2013 Tolva").arg(Station_->Name()));
    } catch (const dao::Error& error) {
        ShowConnectionProblem(error.Number());
    }
}

void MainWindow::MarkAsRead(qint32 reference)
{
    const QString problem = Station_->MarkAsRead(reference);
    if (!problem.isEmpty())
        statusBar()->showMessage(problem, MessageMilliseconds);
}

void MainWindow::RefreshAll()
{
    Run([this] {
        if (Prizes_->IsOnShow()) {
            Prizes_->Page().Refresh();
            return;
        }
        // What other computers did to the folders.
        Station_->Database().UpdateCategoryTree();
        List_->UpdateCategories();
        List_->UpdateDisplay();
    });
}

void MainWindow::FocusNextPane(bool backwards)
{
    if (Prizes_->IsOnShow()) {
        Prizes_->Page().FocusNextPane(backwards);
        return;
    }
    const QList<QWidget*> panes = {List_->findChild<QWidget*>(QStringLiteral("treeCategories")),
                                   List_->findChild<QWidget*>(QStringLiteral("grdMessages")), Preview_->FocusTarget()};
    qsizetype current = -1;
    for (qsizetype i = 0; i < panes.size(); ++i) {
        const QWidget* focus = QApplication::focusWidget();
        if (focus && (panes.at(i) == focus || panes.at(i)->isAncestorOf(focus)))
            current = i;
    }
    const qsizetype count = panes.size();
    const qsizetype next = current < 0 ? 1 : (current + (backwards ? count - 1 : 1)) % count;
    panes.at(next)->setFocus(Qt::ShortcutFocusReason);
}
