// SPDX-License-Identifier: Apache-2.0

// The station of a list, its poll, and the properties.

#include "common/controls/StationList.h"

#include "common/controls/StationListHandler.h"
#include "common/controls/StationListKeys.h"
#include "database/watch/StationWatch.h"
#include "platform/directory/clsKVDirectory.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/ListPanes.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/TabStrip.h"

#include <QAction>
#include <QApplication>
#include <QPushButton>
#include <QScopeGuard>
#include <QTimer>

#include <algorithm>

namespace
{
constexpr float LongestInterval = 60;
constexpr int MillisecondsASecond = 1000;
} // namespace

StationList::StationList(const QString& source, int selectedColumn, QWidget* parent)
    : QWidget(parent), Source_(source), SelectedColumn_(selectedColumn)
{
}

StationList::~StationList()
{
    timerUpdateList_->stop();
}

// ---- The station

bool StationList::Attach(cTolvaDatabase* database)
{
    Detach();
    clsTolvaDatabase_ = database;
    ++Attachments_;
    LastStamp_.Forget();
    if (!database) {
        SetCurrentUser(nullptr);
        grdList_->SetRows(1);
        RowOfReference_.clear();
        ShownRows_.clear();
        ShowUnread(*lblUnread_, 0);
        SelectedReference_ = 0;
        return false;
    }
    ConnectDatabase();
    connect(&database->Watch(), &StationWatch::Polled, this, &StationList::TakePoll);
    const clsKVDirectory* directory = database->DirectoryDatabase();
    SetCurrentUser(directory ? directory->CurrentUser() : nullptr);
    return true;
}

void StationList::Detach()
{
    if (!clsTolvaDatabase_)
        return;
    clsTolvaDatabase_->disconnect(this);
    clsTolvaDatabase_->Watch().disconnect(this);
}

void StationList::SetCurrentUser(clsKVUser* user)
{
    if (clsCurrentUser_)
        clsCurrentUser_->disconnect(this);
    clsCurrentUser_ = user;
    if (user)
        connect(user, &clsKVUser::PreferencesChanged, this, &StationList::TakePreferencesChange);
}

bool StationList::ShowChosenByUser(bool rowsFollow, const std::function<void()>& choose)
{
    const QPointer<StationList> self(this);
    const QPointer<cTolvaDatabase> attached = clsTolvaDatabase_;
    {
        // The rows of the kind before would be read only to be replaced.
        RowsFollow_ = rowsFollow;
        const auto reset = qScopeGuard([self] {
            if (self)
                self->RowsFollow_ = false;
        });
        TakePreferencesChange(ListPreferencesFlag, QString());
    }
    const auto isAttached = [&] { return self && attached && clsTolvaDatabase_ == attached; };
    if (!isAttached())
        return false;
    choose();
    return isAttached();
}

bool StationList::HasDatabase() const
{
    return clsTolvaDatabase_ && !clsTolvaDatabase_->Location().isEmpty();
}

ReadTarget StationList::Target() const
{
    return {clsTolvaDatabase_, HasDatabase() ? clsTolvaDatabase_->Openings() : 0, Attachments_, CategoryOnShow()};
}

// ---- The poll

void StationList::Tick()
{
    if (HasDatabase())
        clsTolvaDatabase_->Watch().Poll(*this);
}

/// Some list of the station polls, perhaps this one.
void StationList::TakePoll(const QObject* asker)
{
    if (asker != this) {
        if (!timerUpdateList_->isActive())
            return;
        timerUpdateList_->start();
    }
    HandleReading("timerUpdateList", [this] {
        const QPointer<StationList> self(this);
        if (TakeChanges() && self)
            Q_EMIT Looked();
    });
}

bool StationList::IsBehind(Date stamp) const
{
    return stamp.IsNone() || !LastStamp_.IsStill(stamp, clsTolvaDatabase_->Openings());
}

// ---- Properties

void StationList::TellContainer(const QString& key)
{
    Q_EMIT PropertyChanged(key);
}

QAction* StationList::Entry(const char* name) const
{
    return findChild<QAction*>(QLatin1String(name));
}

void StationList::SetDoubleHeightRows(bool twoLines)
{
    DoubleHeightRows_ = twoLines;
    grdList_->setWordWrap(twoLines);
    SetGridRowHeights();
    LayOutList();
    const QPointer<StationList> self(this);
    Handle("DoubleHeightRows", [this] { Display(Reading::AllRows); });
    if (self)
        TellContainer(StationListKey::DoubleHeightRows);
}

void StationList::SetPrintVisible(bool shown)
{
    PrintVisible_ = shown;
    Entry("mnuPrint")->setVisible(shown);
    Entry("mnuPrintSep")->setVisible(shown);
    TellContainer(StationListKey::PrintVisible);
}

void StationList::SetAutoUpdate(bool on)
{
    AutoUpdate_ = on;
    ApplyTimer();
    TellContainer(StationListKey::AutoUpdate);
}

float StationList::AutoUpdateInterval() const
{
    return static_cast<float>(timerUpdateList_->interval()) / MillisecondsASecond;
}

void StationList::SetAutoUpdateInterval(float seconds)
{
    const float limited = std::clamp(seconds, 0.0F, LongestInterval);
    timerUpdateList_->setInterval(qRound(limited * MillisecondsASecond));
    ApplyTimer();
    TellContainer(StationListKey::AutoUpdateInterval);
}

/// A timer without an interval never fires.
void StationList::ApplyTimer()
{
    if (!AutoUpdate_ || timerUpdateList_->interval() <= 0)
        timerUpdateList_->stop();
    else if (!timerUpdateList_->isActive() && !Filling_)
        timerUpdateList_->start();
}

qint32 StationList::NumberItems() const
{
    return std::max(0, grdList_->Rows() - 1);
}

void StationList::ScrollToTop()
{
    if (grdList_->Rows() >= 2)
        grdList_->SetTopRow(1);
}

void StationList::ScrollToBottom()
{
    if (grdList_->Rows() >= 2)
        grdList_->SetTopRow(grdList_->Rows() - 1);
}

void StationList::SetBackColour(qint32 colour)
{
    BackColour_ = colour;
    ApplyBackColour();
    TellContainer(StationListKey::BackColour);
}

void StationList::ApplyBackColour()
{
    QPalette own = palette();
    own.setColor(QPalette::Window, SystemColour::ToColour(BackColour_, QApplication::palette()));
    if (own != palette())
        setPalette(own);
    tbsCategories_->SetBackColour(BackColour_);
    tbsList_->SetBackColour(BackColour_);
}

void StationList::SetFont(const QFont& font)
{
    setFont(font);
    treeCategories_->setFont(font);
    grdList_->setFont(font);
    SetGridRowHeights();
    LayOut();
    TellContainer(StationListKey::Font);
}

void StationList::ClearFind()
{
    comboFind_->ShowEverything();
    Display(Reading::AllRows);
}

void StationList::FocusFind()
{
    comboFind_->setFocus(Qt::ShortcutFocusReason);
    SelectControlText(*comboFind_);
}

void StationList::Find(const QString& text)
{
    comboFind_->SetText(text);
    Display(Reading::AllRows);
}

void StationList::MakeNew()
{
    cmdNew_->click();
}

QList<QWidget*> StationList::FocusTargets() const
{
    return {treeCategories_, grdList_};
}

QList<qint32> StationList::References() const
{
    QList<qint32> references;
    for (int row = 1; row < grdList_->Rows(); ++row)
        references.append(ReferenceOfRow(row));
    return references;
}

QList<qint32> StationList::SelectedReferences() const
{
    QList<qint32> references;
    for (const int row : grdList_->SelectedRows())
        references.append(ReferenceOfRow(row));
    return references;
}

void StationList::SetSelectsSeveral(bool several)
{
    grdList_->SetSelectsSeveral(several);
}

bool StationList::Select(qint32 reference)
{
    const int row = RowOfReference_.value(reference);
    if (row < 1 || row >= grdList_->Rows())
        return false;
    SelectRow(row);
    return true;
}

void StationList::ScrollToRow(int row)
{
    grdList_->SetTopRow(row);
}
