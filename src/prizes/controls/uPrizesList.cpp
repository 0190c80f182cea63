// SPDX-License-Identifier: Apache-2.0

// Making, wiring and properties of the prizes list.

#include "prizes/controls/uPrizesList.h"

#include "common/UserPreferences.h"
#include "common/controls/StationListHandler.h"
#include "common/controls/StationListKeys.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/PropertyBag.h"
#include "platform/widgets/SystemColour.h"
#include "prizes/controls/PrizesListNames.h"

#include <QAction>
#include <QApplication>
#include <QPushButton>

#include <utility>

namespace
{
const QString DisplayNewPrizeKey = QStringLiteral("DisplayNewPrize");
} // namespace

uPrizesList::uPrizesList(QWidget* parent) : StationList(QStringLiteral("uPrizesList"), colTitle, parent)
{
    MakeListControls();
    MakeMenu();
    MakeGridHeader();
    InitProperties();
}

void uPrizesList::SetTolvaDatabase(cTolvaDatabase* database)
{
    Shown_ = {};
    if (!Attach(database) || (CurrentUser() && !ShowCategoryOfUser()))
        return;
    UpdateCategories();
}

/// Shows the kind that the user chose last. False when the host took this station, or the list, away meanwhile.
bool uPrizesList::ShowCategoryOfUser()
{
    const auto category = static_cast<enPrizeListCategory>(
        CurrentUser()->Preference(UserPreferences::PrizeKind.Name, UserPreferences::PrizeKind.Default).toInt());
    const bool rowsFollow =
        category != CurrentCategory_ && category >= plcAvailable && category <= plcRecentlyWonPrizes;
    return ShowChosenByUser(rowsFollow, [this, category] { SetCategory(category); });
}

void uPrizesList::ConnectDatabase()
{
    const auto take = [this](const char* handler) { Handle(handler, [this] { Display(Reading::ChangedRows); }); };
    connect(clsTolvaDatabase_, &cTolvaDatabase::PrizeSaved, this, [take](const cPrizePtr& prize) {
        if (prize)
            take("PrizeSaved");
    });
    connect(clsTolvaDatabase_, &cTolvaDatabase::PrizeDeleted, this, [take] { take("PrizeDeleted"); });
}

void uPrizesList::TakePreferencesChange(int flags, const QString& name)
{
    if ((flags & ListPreferencesFlag) == 0)
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
    const bool wasRefreshing = std::exchange(IsBusy_, true); // a fill may be under way
    if (comboFind_->count() > 0)
        comboFind_->setCurrentIndex(0);
    IsBusy_ = wasRefreshing;
    const bool wasAvailable = CurrentCategory_ == plcAvailable;
    const QPointer<uPrizesList> self(this);
    SetCategory(plcAvailable);
    // Choosing the kind that is on show does nothing, and the find text may be another one now.
    if (self && wasAvailable && comboFind_->FindText() != foundBefore)
        UpdateDisplay();
}
void uPrizesList::SetDisplayNewPrize(bool shown)
{
    DisplayNewPrize_ = shown;
    cmdNew_->setVisible(shown);
    Entry("mnuPrizeNewPrize")->setVisible(shown);
    Entry("mnuPrizeNewPrizeSep")->setVisible(shown);
    LayOut();
    TellContainer(DisplayNewPrizeKey);
}
void uPrizesList::InitProperties()
{
    SetBackColour(SystemColour::ButtonFace);
    SetDoubleHeightRows(true);
    SetDisplayNewPrize(true);
    SetPrintVisible(true);
    SetAutoUpdateInterval(DefaultUpdateInterval);
    SetAutoUpdate(true);
    IsReady_ = true;
}

void uPrizesList::ReadProperties(const PropertyBag& bag)
{
    SetFont(bag.ReadProperty(StationListKey::Font, parentWidget() ? parentWidget()->font() : QApplication::font())
                .value<QFont>());
    SetPrintVisible(bag.ReadProperty(StationListKey::PrintVisible, true).toBool());
    SetBackColour(bag.ReadProperty(StationListKey::BackColour, SystemColour::ButtonFace).toInt());
    SetDoubleHeightRows(bag.ReadProperty(StationListKey::DoubleHeightRows, true).toBool());
    SetDisplayNewPrize(bag.ReadProperty(DisplayNewPrizeKey, true).toBool());
    SetAutoUpdate(bag.ReadProperty(StationListKey::AutoUpdate, true).toBool());
    SetAutoUpdateInterval(bag.ReadProperty(StationListKey::AutoUpdateInterval, DefaultUpdateInterval).toFloat());
    IsReady_ = true;
}

void uPrizesList::WriteProperties(PropertyBag& bag) const
{
    bag.WriteProperty(StationListKey::Font, Font(), parentWidget() ? parentWidget()->font() : QApplication::font());
    bag.WriteProperty(StationListKey::PrintVisible, PrintVisible_, true);
    bag.WriteProperty(StationListKey::BackColour, BackColour(), SystemColour::ButtonFace);
    bag.WriteProperty(StationListKey::DoubleHeightRows, DoubleHeightRows_, true);
    bag.WriteProperty(DisplayNewPrizeKey, DisplayNewPrize_, true);
    bag.WriteProperty(StationListKey::AutoUpdate, AutoUpdate(), true);
    bag.WriteProperty(StationListKey::AutoUpdateInterval, AutoUpdateInterval(), DefaultUpdateInterval);
}
