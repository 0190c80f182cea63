// SPDX-License-Identifier: Apache-2.0

// The desk's main window: what it is made of and what it does with the events of the list.

#include "MainWindow.h"

#include "DeskSettings.h"
#include "Failure.h"
#include "FocusRing.h"
#include "NoticeBar.h"
#include "RowRecovery.h"
#include "SavedNotice.h"
#include "StationPlace.h"
#include "Words.h"
#include "answering/AnsweringDesk.h"
#include "answering/ShortWait.h"
#include "common/UserPreferences.h"
#include "compose/ComposeWindow.h"
#include "contacts/ContactDesk.h"
#include "contacts/RowPeople.h"
#include "messages/ArrivalCue.h"
#include "messages/AttachmentList.h"
#include "messages/MessageCommands.h"
#include "messages/MessageUndo.h"
#include "messages/MessageWindow.h"
#include "messages/PreviewPane.h"
#include "messageslist/uMessagesList.h"
#include "onair/OnAirDesk.h"
#include "platform/records/LockPatience.h"
#include "platform/widgets/Icons.h"
#include "printing/PrintDialog.h"
#include "prizes/PrizeDesk.h"
#include "prizes/PrizesPage.h"
#include "prizes/controls/uPrizesList.h"
#include "search/SameMailNotice.h"
#include "search/SearchDesk.h"
#include "search/SearchService.h"
#include "sending/SendingDesk.h"
#include "sending/SendingNotice.h"
#include "song/SongDesk.h"
#include "spelling/Speller.h"

#include <QAction>
#include <QCloseEvent>
#include <QLabel>
#include <QMenu>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>

namespace
{
constexpr int CountDelay = 150;
constexpr int FillDelay = 200;
/// Of what a text message says, on its row.
constexpr int MostTextLines = 3;
constexpr float MessagesInterval = 3;

const QString WindowGeometry = QStringLiteral("MainWindow/Geometry");
const QString WindowSplitter = QStringLiteral("MainWindow/Splitter");

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

    for (const StationList* list :
         {static_cast<StationList*>(List_), static_cast<StationList*>(&Prizes_->Page().List())}) {
        connect(list, &StationList::Looked, this, [this, list] {
            if (list->isVisible())
                TakeLook();
        });
    }
    Run([this] { ShowTitle(); });
    TakeSelection(nullptr);
    TakePage(Prizes_->IsOnShow());
}

MainWindow::~MainWindow()
{
    for (const QPointer<QMainWindow>& window : std::as_const(Windows_))
        delete window;
    // The lists go before the station, and so does whoever reads it for the search.
    delete Search_;
    delete Prizes_;
    List_->SetTolvaDatabase(nullptr);
}

void MainWindow::MakeParts()
{
    Connection_ = new NoticeBar(QStringLiteral("warning"), QString(), this);
    Connection_->setObjectName(QStringLiteral("connectionNotice"));
    Filter_ = new NoticeBar(QStringLiteral("search"), tr("Sho&w all"), this);
    Filter_->setObjectName(QStringLiteral("filterNotice"));
    Exported_ = new SavedNotice(this);
    Exported_->setObjectName(QStringLiteral("exportNotice"));
    ReadOnly_ = new NoticeBar(QStringLiteral("warning"), QString(), this);
    ReadOnly_->setObjectName(QStringLiteral("readOnlyNotice"));
    Unsent_ = new NoticeBar(QStringLiteral("draft"), tr("Open &again"), this);
    Unsent_->setObjectName(QStringLiteral("unsentNotice"));
    connect(Unsent_, &NoticeBar::ButtonClicked, this, [this] { Run([this] { OpenUnsent(); }); });
    List_ = new uMessagesList(this);
    List_->setObjectName(QStringLiteral("list"));
    List_->SetAutoUpdateInterval(MessagesInterval);
    List_->SetSelectsByReference(true);
    List_->SetSelectsSeveral(true);
    List_->SetShowsFirstRows(true);
    List_->SetEditsTopFolders(true);
    List_->SetNewFolderName(tr("New Folder"));
    List_->SetShowsOtherYears(true);
    List_->SetTextLines(MostTextLines);
    List_->SetFillsWidth(true);
    new RowPeople(*Station_, *List_);
    Arrivals_ = new ArrivalCue(*List_, Settings_);
    Undo_ = new MessageUndo(*Station_, *this);
    Commands_ = new MessageCommands(*Station_, Settings_, *List_, *Undo_, *this);
    AddTabs();
    Preview_ = new PreviewPane(this);
    Preview_->SetReportsOnlyChosen(true);
    KeepTextSize(*Preview_);
    Preview_->SetDamageAdvice([this](qint32 reference) {
        return RowRecovery::Advice(Station_->Folder(), RowRecovery::Kind::Message, reference);
    });
    Sending_ = new SendingDesk(*Station_, *List_, *this);
    Search_ = new SearchDesk(*Station_, Settings_, *this);
    SameMail_ = new SameMailNotice(*Station_, Search_->Service(), SameMailNotice::Place::BesideList, *this);
    Song_ = new SongDesk(*Station_, *List_, *this);
    Answering_ = new AnsweringDesk(*Station_, *List_, *this);
    OnAir_ = new OnAirDesk(*Station_, Settings_, *this);
    MakeSpeller();
    ConnectOnAir();
    Splitter_ = new QSplitter(Qt::Horizontal, this);
    Splitter_->setObjectName(QStringLiteral("splitter"));
    Splitter_->addWidget(List_);
    Splitter_->addWidget(MakeMessageSide());
    Splitter_->setChildrenCollapsible(false);
    Splitter_->setStretchFactor(0, 3);
    Splitter_->setStretchFactor(1, 2);

    MakePages();
    MakeStatusBar();
    connect(Filter_, &NoticeBar::ButtonClicked, this, [this] { Run([this] { List_->ClearFind(); }); });
    connect(Preview_, &PreviewPane::WasRead, this, &MainWindow::MarkAsRead);
    connect(&Preview_->Attachments(), &AttachmentList::Saved, this,
            [this](const QString& words) { statusBar()->showMessage(words, MessageMilliseconds); });
}

void MainWindow::MakeSpeller()
{
    // Where somebody has the directory locked, the name as it was read last.
    const dao::LockPatience patience(ShortWait::Milliseconds);
    const clsKVUser* user = Station_->Directory().CurrentUser();
    Speller_ = new Speller(Settings_, user ? user->Name() : QString(), this);
}

/// The page of messages and that of prizes, below the notices for both.
void MainWindow::MakePages()
{
    auto* messages = new QWidget(this);
    auto* messagesLayout = new QVBoxLayout(messages);
    messagesLayout->setContentsMargins(0, 0, 0, 0);
    messagesLayout->setSpacing(0);
    messagesLayout->addWidget(&Undo_->Notice());
    messagesLayout->addWidget(Exported_);
    messagesLayout->addWidget(&Song_->Notice());
    messagesLayout->addWidget(Filter_);
    messagesLayout->addWidget(Splitter_, 1);
    Prizes_ = new PrizeDesk(*Station_, Settings_, *this);
    Contacts_ = new ContactDesk(*Station_, *this);
    ConnectContacts();
    ConnectSearch();
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
    layout->addWidget(ReadOnly_);
    layout->addWidget(Unsent_);
    layout->addWidget(&Prizes_->Notice());
    layout->addWidget(Prizes_->MakePages(messages), 1);
    setCentralWidget(page);
}

void MainWindow::MakeStatusBar()
{
    const auto addLabel = [this](const char* name) {
        auto* label = new QLabel(this);
        label->setObjectName(QLatin1String(name));
        label->setTextFormat(Qt::PlainText);
        label->setContentsMargins(6, 0, 6, 0);
        statusBar()->addPermanentWidget(label);
        return label;
    };
    statusBar()->addPermanentWidget(&Song_->Label());
    statusBar()->addPermanentWidget(&Sending_->Unsent());
    Counts_ = addLabel("counts");
    Updated_ = addLabel("updated");
    User_ = addLabel("user");
}

/// Whose messages: everybody's and one's own, one's own alone, or those personal to others too.
void MainWindow::AddTabs()
{
    List_->SetTabs({tr("General"), tr("Personal"), tr("All")});
}

void MainWindow::ConnectList()
{
    connect(List_, qOverload<QString&>(&uMessagesList::UpdateDisplay), this, [this](const QString& query) {
        ListCondition_ = ConditionOf(query);
        ListOrder_ = OrderOf(query);
    });
    connect(List_, &uMessagesList::MessageSelected, this, &MainWindow::TakeSelection);
    connect(List_, &uMessagesList::MessageChosen, Preview_, &PreviewPane::Choose);
    connect(List_, &uMessagesList::MessageLeft, this, &MainWindow::TakeLeft);
    ConnectCommands();
    connect(List_, &uMessagesList::NewMessage, this,
            [this](const cMessagePtr& message) { Run([&] { TakeNewMessage(message); }); });
    connect(List_, &uMessagesList::OpenMessage, this,
            [this](const cMessagePtr& message) { Run([&] { TakeOpenMessage(message); }); });
    connect(List_, &uMessagesList::PrintMessage, this, [this](const cMessagePtr& message) {
        PrintMessages({{message->Reference()}, nullptr});
    });
    connect(List_, &uMessagesList::DisplayUpdated, this, &MainWindow::TakeUpdate);
    connect(List_, &uMessagesList::MessageGone, this, &MainWindow::TakeGoneMessage);
    connect(List_, &uMessagesList::ReplyWanted, this, [this](const cMessagePtr&, bool& isTaken) {
        isTaken = true;
        Reply();
    });
    connect(List_, &StationList::ReadingFailed, this, &MainWindow::TakeFailedReading);
    connect(&Prizes_->Page().List(), &StationList::ReadingFailed, this, &MainWindow::TakeFailedReading);
}

void MainWindow::Say(const QString& words)
{
    statusBar()->showMessage(words, MessageMilliseconds);
}

void MainWindow::RestoreSizes()
{
    resize(1180, 720);
    restoreGeometry(Settings_.State(WindowGeometry));
    if (!Splitter_->restoreState(Settings_.State(WindowSplitter)))
        Splitter_->setSizes({680, 500});
}

void MainWindow::SaveSizes()
{
    Settings_.SetState(WindowGeometry, saveGeometry());
    Settings_.SetState(WindowSplitter, Splitter_->saveState());
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
    FocusRows();
    Run([this] {
        // The desk begins where the mail comes in, whatever folder was on show last.
        if (clsKVUser* user = Station_->Directory().CurrentUser())
            user->SetPreference(UserPreferences::MessageFolder.Name, static_cast<qint32>(tmcInbox));
        List_->SetTolvaDatabase(&Station_->Database());
    });
    FocusRows();
    if (Prizes_->IsOnShow())
        Prizes_->Connect();
    Search_->Service().StartIfThere();
    OfferUnsent();
    SayIfReadOnly();
}

/// The rows of messages take the keyboard.
void MainWindow::FocusRows()
{
    List_->FocusTargets().constLast()->setFocus();
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
    Search_->Leave();
    Answering_->Leave();
    // Ends a fill that is under way.
    WatchTimer_.stop();
    Station_->Database().CloseTolvaDatabase();
    event->accept();
    Q_EMIT Closed();
}

void MainWindow::TakeSelection(const cMessagePtr& message)
{
    Preview_->SetShowsSentDate(SortOrder() != mlsoReceived);
    Preview_->Select(message);
    Sending_->Notice().Show(message);
    SameMail_->Show(message);
    Answering_->Show(message);
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
    connect(Contacts_, &ContactDesk::MessageWanted, this, &MainWindow::OpenFound);
    connect(Contacts_, &ContactDesk::PrizeWanted, Prizes_, &PrizeDesk::OpenPrize);
    connect(Contacts_, &ContactDesk::WinnerWanted, Prizes_, &PrizeDesk::OpenWinner);
}

/// A message that is shown elsewhere than in the list.
void MainWindow::OpenFound(qint32 reference)
{
    Run([&] {
        if (const cMessagePtr message = Station_->Database().ReadMessage(reference))
            TakeOpenMessage(message);
        else
            Words::Tell(tr("That message is not there any more: it was deleted on another computer."));
    });
}

void MainWindow::ConnectSearch()
{
    Search_->Service().SetBusy([this] { return List_->IsFilling() || MustReopen_; });
    Contacts_->SetSearch(Search_->Service());
    connect(Search_, &SearchDesk::MessageWanted, this, &MainWindow::OpenFound);
    connect(Search_, &SearchDesk::WasRead, this, &MainWindow::MarkAsRead);
    connect(SameMail_, &SameMailNotice::MessageWanted, this, &MainWindow::OpenFound);
}

/// What works on the selected message works only while it is seen.
void MainWindow::TakePage(bool prizes)
{
    List_->MessageMenu()->menuAction()->setEnabled(!prizes);
    List_->CategoryMenu()->menuAction()->setEnabled(!prizes);
    TakePageForPrinting(prizes);
    Counts_->setVisible(!prizes);
    TakeSelection(Preview_->Message());
}

void MainWindow::TakeUpdate()
{
    TakeLook();
    Filter_->Show(List_->IsFiltered()
                      ? tr("Filter is on: only subjects with \u201C%1\u201D").arg(List_->FindText().simplified())
                      : QString());
    CountTimer_.start();
    Sending_->TakeUpdate();
    Answering_->TakeUpdate();
    for (MessageWindow* window : MessageWindows())
        window->CheckStored();
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
        List_->ShowChanges();
    });
}

void MainWindow::FocusNextPane(bool backwards)
{
    if (Prizes_->IsOnShow()) {
        Prizes_->Page().FocusNextPane(backwards);
        return;
    }
    FocusNext(List_->FocusTargets() << Preview_->FocusTarget(), backwards);
}
