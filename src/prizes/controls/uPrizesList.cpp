// SPDX-License-Identifier: Apache-2.0

// Making, wiring and properties of the prizes list.

#include "prizes/controls/uPrizesList.h"

#include "common/UserPreferences.h"
#include "database/watch/StationWatch.h"
#include "platform/directory/clsKVDirectory.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/ListPanes.h"
#include "platform/widgets/PropertyBag.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/TabStrip.h"
#include "prizes/controls/PrizesListHandler.h"
#include "prizes/controls/PrizesListNames.h"

#include <QAction>
#include <QApplication>
#include <QPushButton>
#include <QScopeGuard>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace
{
constexpr int PreferencesFlag = 32;
constexpr float DefaultInterval = 10;
constexpr float LongestInterval = 60;
constexpr int MillisecondsASecond = 1000;

namespace Key
{
const QString Font = QStringLiteral("Font");
const QString PrintVisible = QStringLiteral("PrintVisible");
const QString BackColour = QStringLiteral("BackColour");
const QString DoubleHeightRows = QStringLiteral("DoubleHeightRows");
const QString DisplayNewPrize = QStringLiteral("DisplayNewPrize");
const QString AutoUpdate = QStringLiteral("AutoUpdate");
const QString AutoUpdateInterval = QStringLiteral("AutoUpdateInterval");
} // namespace Key
} // namespace

uPrizesList::uPrizesList(QWidget* parent) : QWidget(parent)
{
    MakeControls();
    MakeMenu();
    MakeGridHeader();
    InitProperties();
}

uPrizesList::~uPrizesList()
{
    timerUpdateList_->stop();
}

void uPrizesList::SetTolvaDatabase(cTolvaDatabase* database)
{
    DisconnectDatabase();
    clsTolvaDatabase_ = database;
    ++Attachments_;
    LastPrizeStamp_.Forget();
    Shown_ = {};
    if (!database) {
        SetCurrentUser(nullptr);
        grdPrizes_->SetRows(1);
        ShownRows_.clear();
        ShowUnread(*lblUnread_, 0);
        RowOfReference_.clear();
        SelectedReference_ = 0;
        UpdateCategories();
        return;
    }
    ConnectDatabase();
    const clsKVDirectory* directory = database->DirectoryDatabase();
    SetCurrentUser(directory ? directory->CurrentUser() : nullptr);
    if (clsCurrentUser_ && !ShowCategoryOfUser())
        return;
    UpdateCategories();
}

/// Shows the kind that the user chose last. False when the host took this station, or the list, away meanwhile.
bool uPrizesList::ShowCategoryOfUser()
{
    const QPointer<uPrizesList> self(this);
    const QPointer<cTolvaDatabase> attached = clsTolvaDatabase_;
    const auto category = static_cast<enPrizeListCategory>(
        clsCurrentUser_->Preference(UserPreferences::PrizeKind.Name, UserPreferences::PrizeKind.Default).toInt());
    {
        // The rows of the kind before would be read only to be replaced.
        RowsFollow_ = category != CurrentCategory_ && category >= plcAvailable && category <= plcRecentlyWonPrizes;
        const auto reset = qScopeGuard([self] {
            if (self)
                self->RowsFollow_ = false;
        });
        TakePreferencesChange(PreferencesFlag, QString());
    }
    const auto isAttached = [&] { return self && attached && clsTolvaDatabase_ == attached; };
    if (!isAttached())
        return false;
    SetCategory(category);
    return isAttached();
}

void uPrizesList::ConnectDatabase()
{
    const auto take = [this](const char* handler) { Handle(handler, [this] { Display(Reading::ChangedRows); }); };
    connect(clsTolvaDatabase_, &cTolvaDatabase::PrizeSaved, this, [take](const cPrizePtr& prize) {
        if (prize)
            take("PrizeSaved");
    });
    connect(clsTolvaDatabase_, &cTolvaDatabase::PrizeDeleted, this, [take] { take("PrizeDeleted"); });
    connect(&clsTolvaDatabase_->Watch(), &StationWatch::Polled, this, &uPrizesList::TakePoll);
}

void uPrizesList::DisconnectDatabase()
{
    if (!clsTolvaDatabase_)
        return;
    clsTolvaDatabase_->disconnect(this);
    clsTolvaDatabase_->Watch().disconnect(this);
}

void uPrizesList::SetCurrentUser(clsKVUser* user)
{
    if (clsCurrentUser_)
        clsCurrentUser_->disconnect(this);
    clsCurrentUser_ = user;
    if (user)
        connect(user, &clsKVUser::PreferencesChanged, this, &uPrizesList::TakePreferencesChange);
}

bool uPrizesList::HasDatabase() const
{
    return clsTolvaDatabase_ && !clsTolvaDatabase_->Location().isEmpty();
}

ReadTarget uPrizesList::Target() const
{
    return {clsTolvaDatabase_, HasDatabase() ? clsTolvaDatabase_->Openings() : 0, Attachments_, CurrentCategory_};
}

void uPrizesList::TakePreferencesChange(int flags, const QString& name)
{
    if ((flags & PreferencesFlag) == 0)
        return;
    const QPointer<uPrizesList> self(this);
    Handle("PreferencesChanged", [&] {
        if (name.isEmpty()) {
            UpdateCategories();
            if (self)
                UpdateDisplay();
        } else if (name.compare(UserPreferences::PrizeOrder.Name, Qt::CaseInsensitive) == 0) {
            UpdateDisplay();
        }
    });
}

void uPrizesList::ResetDisplay()
{
    const QString foundBefore = FindText_;
    const bool wasRefreshing = std::exchange(Refreshing_, true); // a fill may be under way
    if (comboFind_->count() > 0)
        comboFind_->setCurrentIndex(0);
    Refreshing_ = wasRefreshing;
    const bool wasAvailable = CurrentCategory_ == plcAvailable;
    const QPointer<uPrizesList> self(this);
    SetCategory(plcAvailable);
    // Choosing the kind that is on show does nothing, and the find text may be another one now.
    if (self && wasAvailable && comboFind_->FindText() != foundBefore)
        UpdateDisplay();
}

void uPrizesList::ClearFind()
{
    comboFind_->ShowEverything();
    UpdateDisplay();
}

void uPrizesList::TellContainer(const QString& key)
{
    Q_EMIT PropertyChanged(key);
}

void uPrizesList::SetDoubleHeightRows(bool twoLines)
{
    DoubleHeightRows_ = twoLines;
    grdPrizes_->setWordWrap(twoLines);
    SetGridRowHeights();
    SizeColumns();
    const QPointer<uPrizesList> self(this);
    UpdateDisplay();
    if (self)
        TellContainer(Key::DoubleHeightRows);
}

void uPrizesList::SetDisplayNewPrize(bool shown)
{
    DisplayNewPrize_ = shown;
    cmdNewPrize_->setVisible(shown);
    Entry("mnuPrizeNewPrize")->setVisible(shown);
    Entry("mnuPrizeNewPrizeSep")->setVisible(shown);
    LayOut();
    TellContainer(Key::DisplayNewPrize);
}

void uPrizesList::SetPrintVisible(bool shown)
{
    PrintVisible_ = shown;
    Entry("mnuPrint")->setVisible(shown);
    Entry("mnuPrintSep")->setVisible(shown);
    TellContainer(Key::PrintVisible);
}

void uPrizesList::SetAutoUpdate(bool on)
{
    AutoUpdate_ = on;
    ApplyTimer();
    TellContainer(Key::AutoUpdate);
}

float uPrizesList::AutoUpdateInterval() const
{
    return static_cast<float>(timerUpdateList_->interval()) / MillisecondsASecond;
}

void uPrizesList::SetAutoUpdateInterval(float seconds)
{
    const float limited = std::clamp(seconds, 0.0F, LongestInterval);
    timerUpdateList_->setInterval(qRound(limited * MillisecondsASecond));
    ApplyTimer();
    TellContainer(Key::AutoUpdateInterval);
}

/// A timer without an interval never fires.
void uPrizesList::ApplyTimer()
{
    if (!AutoUpdate_ || timerUpdateList_->interval() <= 0)
        timerUpdateList_->stop();
    else if (!timerUpdateList_->isActive() && !Refreshing_)
        timerUpdateList_->start();
}

qint32 uPrizesList::NumberItems() const
{
    return std::max(0, grdPrizes_->Rows() - 1);
}

void uPrizesList::ScrollToTop()
{
    if (grdPrizes_->Rows() >= 2)
        grdPrizes_->SetTopRow(1);
}

void uPrizesList::ScrollToBottom()
{
    if (grdPrizes_->Rows() >= 2)
        grdPrizes_->SetTopRow(grdPrizes_->Rows() - 1);
}

void uPrizesList::SetBackColour(qint32 colour)
{
    BackColour_ = colour;
    ApplyBackColour();
    TellContainer(Key::BackColour);
}

void uPrizesList::ApplyBackColour()
{
    QPalette own = palette();
    own.setColor(QPalette::Window, SystemColour::ToColour(BackColour_, QApplication::palette()));
    if (own != palette())
        setPalette(own);
    tbsCategories_->SetBackColour(BackColour_);
    tbsPrizes_->SetBackColour(BackColour_);
}

void uPrizesList::SetFont(const QFont& font)
{
    setFont(font);
    treeCategories_->setFont(font);
    grdPrizes_->setFont(font);
    SetGridRowHeights();
    LayOut();
    TellContainer(Key::Font);
}

void uPrizesList::InitProperties()
{
    SetBackColour(SystemColour::ButtonFace);
    SetDoubleHeightRows(true);
    SetDisplayNewPrize(true);
    SetPrintVisible(true);
    SetAutoUpdateInterval(DefaultInterval);
    SetAutoUpdate(true);
    Ready_ = true;
}

void uPrizesList::ReadProperties(const PropertyBag& bag)
{
    SetFont(bag.ReadProperty(Key::Font, parentWidget() ? parentWidget()->font() : QApplication::font()).value<QFont>());
    SetPrintVisible(bag.ReadProperty(Key::PrintVisible, true).toBool());
    SetBackColour(bag.ReadProperty(Key::BackColour, SystemColour::ButtonFace).toInt());
    SetDoubleHeightRows(bag.ReadProperty(Key::DoubleHeightRows, true).toBool());
    SetDisplayNewPrize(bag.ReadProperty(Key::DisplayNewPrize, true).toBool());
    SetAutoUpdate(bag.ReadProperty(Key::AutoUpdate, true).toBool());
    SetAutoUpdateInterval(bag.ReadProperty(Key::AutoUpdateInterval, DefaultInterval).toFloat());
    Ready_ = true;
}

void uPrizesList::WriteProperties(PropertyBag& bag) const
{
    bag.WriteProperty(Key::Font, Font(), parentWidget() ? parentWidget()->font() : QApplication::font());
    bag.WriteProperty(Key::PrintVisible, PrintVisible_, true);
    bag.WriteProperty(Key::BackColour, BackColour_, SystemColour::ButtonFace);
    bag.WriteProperty(Key::DoubleHeightRows, DoubleHeightRows_, true);
    bag.WriteProperty(Key::DisplayNewPrize, DisplayNewPrize_, true);
    bag.WriteProperty(Key::AutoUpdate, AutoUpdate_, true);
    bag.WriteProperty(Key::AutoUpdateInterval, AutoUpdateInterval(), DefaultInterval);
}
