// SPDX-License-Identifier: Apache-2.0
#include "OnAirWindow.h"

#include "DeskSettings.h"
#include "DisplayText.h"
#include "OnAirEntries.h"
#include "Words.h"
#include "common/UserInterface.h"
#include "platform/directory/clsKVUser.h"
#include "platform/widgets/Icons.h"
#include "printing/PrintDialog.h"
#include "spelling/SpellingEdit.h"
#include "spelling/SpellingMarks.h"
#include "spelling/SpellingTools.h"
#include "station/DeskStation.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QCloseEvent>
#include <QLabel>
#include <QListWidget>
#include <QSplitter>
#include <QStatusBar>

#include <algorithm>

namespace
{
const QString GeometryState = QStringLiteral("OnAirWindow/Geometry");
const QString SplitterState = QStringLiteral("OnAirWindow/Splitter");
const QString SizeState = QStringLiteral("OnAirWindow/TextSize");
constexpr int UsualSize = 28;
constexpr int StatusMilliseconds = 8000;
constexpr double HeadShare = 0.6;
} // namespace

OnAirWindow::OnAirWindow(DeskStation& station, DeskSettings& settings, QWidget* parent)
    : QMainWindow(parent, Qt::Window),
      Station_(station),
      Settings_(settings),
      Size_(UsualSize),
      Notice_(new NoticeBar(QStringLiteral("warning"), QString(), this)),
      Head_(new QLabel(this)),
      Text_(new SpellingEdit(this)),
      List_(new QListWidget(this)),
      Splitter_(new QSplitter(Qt::Horizontal, this))
{
    setObjectName(QStringLiteral("onAirWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("On air"));
    setWindowIcon(Icons::Get(QStringLiteral("tolva")));
    MakeParts();
    MakeActions();
    statusBar()->setSizeGripEnabled(false);
    resize(960, 600);
    restoreGeometry(Settings_.State(GeometryState));
    Splitter_->restoreState(Settings_.State(SplitterState));
    const int kept = Settings_.State(SizeState).toInt();
    SetTextSize(kept == 0 ? UsualSize : kept);
    LookTimer_.setInterval(LookMilliseconds);
    connect(&LookTimer_, &QTimer::timeout, this, &OnAirWindow::Look);
    ShowCurrent();
}

void OnAirWindow::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    if (LookTimer_.isActive())
        return;
    LookTimer_.start();
    Look();
    // It begins where the reading goes on.
    const auto waiting = std::find_if(Order_.begin(), Order_.end(),
                                      [](const OnAirEntry& entry) { return entry.State == OnAirState::Waiting; });
    ShowEntry(waiting == Order_.end() ? 0 : static_cast<int>(waiting - Order_.begin()));
    List_->setFocus();
}

/// What was shortened is kept, as it is when another entry is looked at.
void OnAirWindow::closeEvent(QCloseEvent* event)
{
    if (IsEditing_ && !KeepText()) {
        event->ignore();
        return;
    }
    Settings_.SetState(GeometryState, saveGeometry());
    Settings_.SetState(SplitterState, Splitter_->saveState());
    LookTimer_.stop();
    QMainWindow::closeEvent(event);
}

void OnAirWindow::SetTextSize(int points)
{
    Size_ = std::clamp(points, SmallestText, LargestText);
    Settings_.SetState(SizeState, QByteArray::number(Size_));
    QFont text = font();
    text.setPointSize(Size_);
    Text_->setFont(text);
    QFont head = font();
    head.setPointSizeF(std::max(font().pointSizeF(), Size_ * HeadShare));
    head.setBold(true);
    Head_->setFont(head);
}

/// Runs a piece of work; its error becomes words. False when it failed.
template <typename Work>
bool OnAirWindow::Run(Work&& work)
{
    try {
        std::forward<Work>(work)();
        return true;
    } catch (const dao::Error& error) {
        Words::Warn(Station_.Words(error.Number(), error.Description()));
        return false;
    }
}

void OnAirWindow::Look()
{
    QList<OnAirEntry> order;
    QSet<qint32> gone;
    try {
        order = RunningOrder(Station_.Database().File()).Read();
        gone = OnAirEntries::Gone(order, Station_);
    } catch (const dao::Error& error) {
        // What was read stays on show, and it looks again.
        statusBar()->showMessage(OneLine(Station_.Words(error.Number(), error.Description())), StatusMilliseconds);
        return;
    }
    if (order == Order_ && gone == Gone_)
        return;
    Order_ = order;
    Gone_ = gone;
    const int place = PlaceOf(Current_.Reference);
    IsTakenOff_ = Current_.Reference != 0 && place < 0;
    if (place >= 0) {
        Place_ = place;
        Current_ = Order_.at(place);
    } else if (Current_.Reference == 0 && !Order_.isEmpty()) {
        Place_ = 0;
        Current_ = Order_.first();
    }
    ShowList();
    ShowCurrent();
}

int OnAirWindow::PlaceOf(qint32 reference) const
{
    for (int place = 0; place < Order_.size(); ++place) {
        if (Order_.at(place).Reference == reference)
            return place;
    }
    return -1;
}

void OnAirWindow::ShowList()
{
    IsShowing_ = true;
    while (List_->count() > Order_.size())
        delete List_->takeItem(List_->count() - 1);
    while (List_->count() < Order_.size())
        List_->addItem(QString());
    for (int place = 0; place < Order_.size(); ++place) {
        const OnAirEntry& entry = Order_.at(place);
        QListWidgetItem* item = List_->item(place);
        item->setText(OnAirEntries::LineOf(entry, place + 1));
        QFont font = List_->font();
        font.setStrikeOut(entry.State != OnAirState::Waiting);
        item->setFont(font);
    }
    List_->setCurrentRow(PlaceOf(Current_.Reference));
    IsShowing_ = false;
}

void OnAirWindow::ShowCurrent()
{
    Head_->setText(Current_.Reference == 0 ? tr("Nothing is on the running order.") : OnAirEntries::HeadOf(Current_));
    // Nothing that is being written is replaced.
    if (!IsEditing_ && Text_->toPlainText() != Current_.Text)
        Text_->setPlainText(Current_.Text);
    Notice_->Show(NoticeWords());
    EnableActions();
}

QString OnAirWindow::NoticeWords() const
{
    if (Current_.Reference == 0)
        return QString();
    QStringList words;
    if (IsTakenOff_)
        words.append(tr("Somebody has taken this off the running order."));
    if (Gone_.contains(Current_.Reference))
        words.append(Current_.Prize != 0 ? tr("The prize was deleted meanwhile.")
                                         : tr("The message was deleted meanwhile; this is its text for air."));
    if (const QString state = OnAirEntries::StateInWords(Current_); !state.isEmpty())
        words.append(state + u'.');
    if (Current_.IsShortened())
        words.append(tr("Changed for air; the original is kept."));
    return words.join(u' ');
}

void OnAirWindow::EnableActions()
{
    const bool isThere = Current_.Reference != 0 && !IsTakenOff_;
    const auto enable = [this](const char* name, bool isEnabled) {
        findChild<QAction*>(QLatin1String(name))->setEnabled(isEnabled);
    };
    for (const char* name : {"onAirUse", "onAirSkip", "onAirRemove", "onAirUp", "onAirDown", "onAirRestore"})
        enable(name, isThere && !IsEditing_);
    for (const char* name : {"onAirNext", "onAirBack"})
        enable(name, !Order_.isEmpty() && !IsEditing_);
    enable("onAirShorten", isThere || IsEditing_);
    for (const char* name : {"onAirPrint", "onAirEmpty"})
        enable(name, !Order_.isEmpty() && !IsEditing_);
    List_->setEnabled(!IsEditing_);
    findChild<QAction*>(QStringLiteral("onAirShorten"))->setChecked(IsEditing_);
    findChild<QAction*>(QStringLiteral("onAirUse"))
        ->setText(Current_.State == OnAirState::Waiting ? tr("&Used") : tr("&Used: not yet"));
}

void OnAirWindow::ShowEntry(int place)
{
    if (Order_.isEmpty())
        return;
    Place_ = std::clamp(place, 0, static_cast<int>(Order_.size()) - 1);
    Current_ = Order_.at(Place_);
    IsTakenOff_ = false;
    IsShowing_ = true;
    List_->setCurrentRow(Place_);
    IsShowing_ = false;
    ShowCurrent();
}

void OnAirWindow::GoOn(int step, bool onlyWaiting)
{
    // The next one has moved to the place of one that was taken off.
    int place = IsTakenOff_ && step > 0 ? Place_ : Place_ + step;
    while (onlyWaiting && place >= 0 && place < Order_.size() && Order_.at(place).State != OnAirState::Waiting)
        place += step;
    if (place >= 0 && place < Order_.size())
        ShowEntry(place);
    else if (step > 0)
        statusBar()->showMessage(tr("That was the last one."), StatusMilliseconds);
}

void OnAirWindow::Next()
{
    GoOn(1, false);
}

void OnAirWindow::Back()
{
    GoOn(-1, false);
}

/// What others did since this window looked is said, and nothing is written over it.
bool OnAirWindow::Do(const std::function<RunningOrder::Outcome(RunningOrder& order)>& change)
{
    auto outcome = RunningOrder::Outcome::Gone;
    const bool isDone = Run([&] {
        RunningOrder order(Station_.Database().File());
        outcome = change(order);
    });
    Look();
    if (!isDone)
        return false;
    if (outcome == RunningOrder::Outcome::Changed)
        statusBar()->showMessage(tr("Somebody has changed it meanwhile: see above."), StatusMilliseconds);
    Q_EMIT Changed();
    return outcome == RunningOrder::Outcome::Done;
}

void OnAirWindow::Mark(OnAirState state)
{
    if (Current_.Reference == 0 || IsTakenOff_ || IsEditing_)
        return;
    const OnAirState before = Current_.State;
    const OnAirState after = before == OnAirState::Waiting ? state : OnAirState::Waiting;
    const clsKVUser* user = Station_.Directory().CurrentUser();
    const qint32 reference = Current_.Reference;
    const QString who = user ? user->Name() : QString();
    if (Do([&](RunningOrder& order) { return order.SetState(reference, before, after, who); }) &&
        after != OnAirState::Waiting)
        GoOn(1, true);
}

void OnAirWindow::Use()
{
    Mark(OnAirState::Used);
}

void OnAirWindow::Skip()
{
    Mark(OnAirState::Skipped);
}

void OnAirWindow::MoveUp()
{
    const qint32 reference = Current_.Reference;
    Do([&](RunningOrder& order) { return order.MoveUp(reference); });
}

void OnAirWindow::MoveDown()
{
    const qint32 reference = Current_.Reference;
    Do([&](RunningOrder& order) { return order.MoveDown(reference); });
}

void OnAirWindow::Shorten()
{
    if (IsEditing_) {
        KeepText();
        return;
    }
    if (Current_.Reference == 0 || IsTakenOff_)
        return EnableActions();
    IsEditing_ = true;
    EditedFrom_ = Current_.Text;
    if (Spelling_)
        Spelling_->Marks().SetNames({Current_.From});
    Text_->setReadOnly(false);
    Text_->setFocus();
    statusBar()->showMessage(tr("F2 keeps the text for air, Esc leaves it as it was."));
    EnableActions();
}

void OnAirWindow::GiveUpShortening()
{
    IsEditing_ = false;
    Text_->setReadOnly(true);
    Text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    statusBar()->clearMessage();
    ShowCurrent();
    List_->setFocus();
}

/// False when nothing was stored, and the text stays to be edited.
bool OnAirWindow::KeepText()
{
    const QString text = Text_->toPlainText();
    const qint32 reference = Current_.Reference;
    for (;;) {
        auto outcome = RunningOrder::Outcome::Gone;
        if (!Run([&] { outcome = RunningOrder(Station_.Database().File()).SetText(reference, EditedFrom_, text); }))
            return false;
        if (outcome == RunningOrder::Outcome::Gone) {
            Words::Tell(tr("Somebody has taken this off the running order meanwhile. Your text was:\n\n%1").arg(text));
            break;
        }
        if (outcome == RunningOrder::Outcome::Done)
            break;
        Look();
        if (IsTakenOff_)
            continue;
        if (!UserInterface::Confirm(tr("Somebody has changed the text meanwhile. It is now:\n\n%1\n\nDo you want to "
                                       "store yours in its place?")
                                        .arg(Current_.Text)))
            return false;
        EditedFrom_ = Current_.Text;
    }
    GiveUpShortening();
    Look();
    Q_EMIT Changed();
    return true;
}

void OnAirWindow::Restore()
{
    const OnAirEntry entry = Current_;
    if (entry.IsShortened())
        Do([&](RunningOrder& order) { return order.SetText(entry.Reference, entry.Text, QString()); });
}

void OnAirWindow::Remove()
{
    if (Current_.Reference == 0 || IsTakenOff_)
        return;
    const qint32 reference = Current_.Reference;
    const int place = Place_;
    // The next one is on show when this one is gone.
    Current_ = OnAirEntry();
    Do([&](RunningOrder& order) { return order.Remove(reference); });
    ShowEntry(place);
}

void OnAirWindow::Empty()
{
    Look();
    const qsizetype count = Order_.size();
    const auto waiting = std::count_if(Order_.begin(), Order_.end(),
                                       [](const OnAirEntry& entry) { return entry.State == OnAirState::Waiting; });
    if (count == 0 ||
        !UserInterface::Confirm(tr("Take all %1 entries off the running order, for every desk? %2 of them have not "
                                   "been read out.")
                                    .arg(count)
                                    .arg(waiting)))
        return;
    Current_ = OnAirEntry();
    Run([&] { RunningOrder(Station_.Database().File()).Empty(); });
    Look();
    ShowCurrent();
    Q_EMIT Changed();
}

void OnAirWindow::Print()
{
    Look();
    if (Order_.isEmpty())
        return;
    PrintJob job;
    job.Order = Order_;
    Q_EMIT PrintWanted(job);
}
