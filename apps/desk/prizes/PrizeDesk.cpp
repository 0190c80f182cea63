// SPDX-License-Identifier: Apache-2.0
#include "PrizeDesk.h"

#include "DeskSettings.h"
#include "PrizeSheet.h"
#include "Words.h"
#include "database/LastError.h"
#include "platform/widgets/Icons.h"
#include "printing/PrintDialog.h"
#include "prizes/AwardFlow.h"
#include "prizes/PresenterView.h"
#include "prizes/PrizeSettingsDialog.h"
#include "prizes/PrizeWindow.h"
#include "prizes/PrizesPage.h"
#include "prizes/WinnerWindow.h"
#include "prizes/WinnersView.h"
#include "prizes/controls/uPrizesList.h"
#include "station/DeskStation.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QActionGroup>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>
#include <QTabWidget>

namespace
{
const QString PageState = QStringLiteral("MainWindow/Page");
const QByteArray PrizesName = QByteArrayLiteral("prizes");
constexpr int PrizesIndex = 1;
} // namespace

PrizeDesk::PrizeDesk(DeskStation& station, DeskSettings& settings, QMainWindow& window)
    : QObject(&window),
      Station_(station),
      Settings_(settings),
      Window_(window),
      Notice_(new NoticeBar(QStringLiteral("head"), tr("&Undo"), &window)),
      Page_(new PrizesPage(station, settings, &window)),
      Awards_(new AwardFlow(station, this))
{
    setObjectName(QStringLiteral("prizeDesk"));
    Notice_->setObjectName(QStringLiteral("awardNotice"));
    UndoTimer_.setSingleShot(true);
    UndoTimer_.setInterval(UndoMilliseconds);
    connect(&UndoTimer_, &QTimer::timeout, this, [this] {
        UndoWinner_ = 0;
        Notice_->Show(QString());
    });
    connect(Notice_, &NoticeBar::ButtonClicked, this, &PrizeDesk::Undo);
    connect(Page_, &PrizesPage::NewPrize, this, &PrizeDesk::NewPrize);
    connect(Page_, &PrizesPage::OpenPrize, this, &PrizeDesk::OpenPrize);
    connect(Page_, &PrizesPage::PrintPrize, this, [this](qint32 prize) { Print(prize); });
    connect(Page_, &PrizesPage::OpenWinner, this, &PrizeDesk::OpenWinner);
    connect(Page_, &PrizesPage::Award, this, &PrizeDesk::Award);
    connect(Page_, &PrizesPage::Updated, this, &PrizeDesk::CheckWindows);
    connect(Awards_, &AwardFlow::Awarded, this, &PrizeDesk::TakeAward);
    connect(Awards_, &AwardFlow::WinnersChanged, this, &PrizeDesk::CheckWindows);
}

PrizeDesk::~PrizeDesk()
{
    if (Pages_)
        Pages_->disconnect(this);
    for (const QPointer<QMainWindow>& window : std::as_const(Windows_))
        delete window;
    // The page belongs to the window, and its list must not outlive the station's file.
    delete Page_;
}

template <typename Work>
void PrizeDesk::Run(Work&& work)
{
    try {
        std::forward<Work>(work)();
    } catch (const dao::Error& error) {
        Words::Warn(Station_.Words(error.Number(), error.Description()));
    }
}

QWidget* PrizeDesk::MakePages(QWidget* messages)
{
    Pages_ = new QTabWidget(&Window_);
    Pages_->setObjectName(QStringLiteral("desk"));
    Pages_->setDocumentMode(true);
    Pages_->tabBar()->setAccessibleName(tr("Messages or prizes"));
    Pages_->addTab(messages, tr("Messages"));
    Pages_->addTab(Page_, tr("Prizes"));
    const bool isPrizes = Settings_.State(PageState) == PrizesName;
    Pages_->setCurrentIndex(isPrizes ? PrizesIndex : 0);
    connect(Pages_, &QTabWidget::currentChanged, this, [this](int index) {
        const bool prizes = index == PrizesIndex;
        Settings_.SetState(PageState, prizes ? PrizesName : QByteArray());
        if (prizes)
            Connect();
        if (Menu_)
            Menu_->menuAction()->setEnabled(prizes);
        Q_EMIT PageChanged(prizes);
    });
    return Pages_;
}

bool PrizeDesk::IsOnShow() const
{
    return Pages_ && Pages_->currentIndex() == PrizesIndex;
}

bool PrizeDesk::HasSelection() const
{
    return Page_->Presenter().Reference() > 0;
}

void PrizeDesk::ShowPage(bool prizes)
{
    Pages_->setCurrentIndex(prizes ? PrizesIndex : 0);
}

QAction* PrizeDesk::MakeAction(const char* name, const QString& text, const QKeySequence& key)
{
    auto* action = new QAction(text, &Window_);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(key);
    return action;
}

void PrizeDesk::MakePrizeMenu(QMenuBar& bar)
{
    Menu_ = Page_->List().PrizeMenu();
    Menu_->setTitle(tr("Pri&zes"));
    AwardAction_ = MakeAction("awardPrize", tr("A&ward..."), QKeySequence(Qt::CTRL | Qt::Key_Return));
    AwardAction_->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Return), QKeySequence(Qt::CTRL | Qt::Key_Enter)});
    connect(AwardAction_, &QAction::triggered, this, [this] {
        if (Page_->Presenter().Reference() > 0)
            Award(Page_->Presenter().Reference());
    });
    const QList<QAction*> entries = Menu_->actions();
    Menu_->insertAction(entries.size() > 1 ? entries.at(1) : nullptr, AwardAction_);
    connect(Menu_, &QMenu::aboutToShow, this, [this] { AwardAction_->setEnabled(Page_->Presenter().Reference() > 0); });
    connect(Menu_, &QMenu::aboutToHide, this, [this] { AwardAction_->setEnabled(true); });
    // The key works on the page alone.
    AwardAction_->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    Page_->addAction(AwardAction_);
    bar.addMenu(Menu_);
    Menu_->menuAction()->setEnabled(IsOnShow());
}

void PrizeDesk::AddToViewMenu(QMenu& menu)
{
    auto* group = new QActionGroup(&Window_);
    const auto add = [&](const char* name, const QString& text, Qt::Key key, bool prizes) {
        QAction* action = MakeAction(name, text, QKeySequence(Qt::ALT | key));
        action->setCheckable(true);
        action->setChecked(IsOnShow() == prizes);
        group->addAction(action);
        menu.addAction(action);
        connect(action, &QAction::triggered, this, [this, prizes] { ShowPage(prizes); });
        connect(this, &PrizeDesk::PageChanged, action,
                [action, prizes](bool now) { action->setChecked(now == prizes); });
    };
    menu.addSeparator();
    add("showMessages", tr("&Messages"), Qt::Key_1, false);
    add("showPrizes", tr("Pri&zes"), Qt::Key_2, true);
}

QAction* PrizeDesk::MakeSettingsAction()
{
    QAction* action = MakeAction("prizeSettings", tr("P&rizes..."), {});
    action->setStatusTip(tr("How long a winner waits, and who may award"));
    connect(action, &QAction::triggered, this, &PrizeDesk::ChangeSettings);
    return action;
}

QAction* PrizeDesk::MakeAwardToSenderAction()
{
    QAction* action = MakeAction("awardToSender", tr("A&ward a prize to the sender..."),
                                 QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));
    connect(action, &QAction::triggered, this, &PrizeDesk::AwardToSenderWanted);
    return action;
}

void PrizeDesk::ChangeSettings()
{
    Run([this] {
        PrizeSettingsDialog dialog(Station_, &Window_);
        dialog.exec();
    });
}

void PrizeDesk::Connect()
{
    Run([this] { Page_->Connect(); });
}

void PrizeDesk::Disconnect()
{
    Page_->Disconnect();
}

void PrizeDesk::SaveSizes()
{
    Page_->SaveSizes();
}

QList<PrizeWindow*> PrizeDesk::PrizeWindows() const
{
    QList<PrizeWindow*> result;
    for (const QPointer<QMainWindow>& window : Windows_) {
        if (auto* prize = qobject_cast<PrizeWindow*>(window.data()))
            result.append(prize);
    }
    return result;
}

QList<WinnerWindow*> PrizeDesk::WinnerWindows() const
{
    QList<WinnerWindow*> result;
    for (const QPointer<QMainWindow>& window : Windows_) {
        if (auto* winner = qobject_cast<WinnerWindow*>(window.data()))
            result.append(winner);
    }
    return result;
}

void PrizeDesk::NewPrize(const cPrizePtr& prize)
{
    // One that nothing is known of yet. None supplied, as the record begins, would leave it out of each list.
    if (prize->Title().isEmpty() && prize->NumberSupplied() == 0)
        prize->SetNumberSupplied(1);
    Run([&] { Open(*prize); });
}

void PrizeDesk::OpenPrize(qint32 prize)
{
    Run([&] {
        for (PrizeWindow* open : PrizeWindows()) {
            if (open->Reference() == prize && open->isVisible()) {
                open->raise();
                open->activateWindow();
                return;
            }
        }
        const cPrizePtr stored = Station_.Database().GetPrize(prize, false);
        if (!stored)
            RaiseLastError(Station_.Database());
        if (stored)
            Open(*stored);
        else
            Words::Warn(tr("That prize is not there any more: it was deleted on another computer."));
    });
}

PrizeWindow* PrizeDesk::Open(const cPrize& prize)
{
    // The list tells the windows what other computers change.
    Page_->Connect();
    auto* window = new PrizeWindow(Station_, prize);
    window->setWindowIcon(Window_.windowIcon());
    Windows_.removeAll(nullptr);
    Windows_.append(window);
    connect(window, &PrizeWindow::AwardWanted, this, [this, window](qint32 wanted) { Awards_->Award(wanted, window); });
    connect(window, &PrizeWindow::PrintWanted, this, [this, window](qint32 wanted) { Print(wanted, window); });
    connect(window, &PrizeWindow::WinnerWanted, this, &PrizeDesk::OpenWinner);
    connect(window, &PrizeWindow::Saved, this, &PrizeDesk::Told);
    Q_EMIT WindowOpened(window);
    window->show();
    window->activateWindow();
    return window;
}

void PrizeDesk::OpenWinner(qint32 winner)
{
    Run([&] {
        for (WinnerWindow* open : WinnerWindows()) {
            if (open->Reference() == winner && open->isVisible()) {
                open->raise();
                open->activateWindow();
                return;
            }
        }
        const cPrizeWinnerPtr stored = Station_.Database().GetPrizeWinner(winner);
        if (!stored) {
            RaiseLastError(Station_.Database());
            Words::Warn(tr("That award is not there any more: it was taken back on another computer."));
            CheckWindows();
            return;
        }
        Page_->Connect();
        auto* window = new WinnerWindow(Station_, *stored);
        window->setWindowIcon(Window_.windowIcon());
        Windows_.removeAll(nullptr);
        Windows_.append(window);
        connect(window, &WinnerWindow::WinnersChanged, this, &PrizeDesk::CheckWindows);
        connect(window, &WinnerWindow::Saved, this, &PrizeDesk::Told);
        Q_EMIT WindowOpened(window);
        window->show();
        window->activateWindow();
    });
}

void PrizeDesk::Print(qint32 prize, QWidget* over)
{
    Run([&] {
        auto stored = PrizeSheet::Read(Station_.Database(), Station_.Directory(), prize);
        if (!stored) {
            RaiseLastError(Station_.Database());
            Words::Warn(tr("That prize is not there any more: it was deleted on another computer."));
            return;
        }
        PrintJob job;
        job.Prize = std::move(stored);
        PrintDialog dialog(Station_, Settings_, std::move(job), over ? over : &Window_);
        dialog.exec();
    });
}

void PrizeDesk::PrintSelected()
{
    if (Page_->Presenter().Reference() > 0)
        Print(Page_->Presenter().Reference());
    else
        Q_EMIT Told(tr("Select the prize to print first."));
}

void PrizeDesk::Award(qint32 prize)
{
    Awards_->Award(prize, &Window_);
}

void PrizeDesk::AwardToSender(const cMessagePtr& message, QWidget* parent)
{
    Awards_->AwardToSender(message, parent ? parent : &Window_);
}

void PrizeDesk::TakeAward(qint32, qint32 winner, const QString& words)
{
    UndoWinner_ = winner;
    UndoWords_ = words;
    Notice_->Show(words);
    UndoTimer_.start();
    Q_EMIT Told(words);
}

void PrizeDesk::Undo()
{
    const qint32 winner = std::exchange(UndoWinner_, 0);
    UndoTimer_.stop();
    Notice_->Show(QString());
    if (winner != 0 && Awards_->TakeBack(winner))
        Q_EMIT Told(tr("Taken back: %1").arg(UndoWords_));
}

void PrizeDesk::CheckWindows()
{
    Page_->Presenter().Winners().Refresh();
    for (PrizeWindow* window : PrizeWindows())
        window->CheckStored();
    for (WinnerWindow* window : WinnerWindows())
        window->CheckStored();
}
