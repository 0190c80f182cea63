// SPDX-License-Identifier: Apache-2.0

// Making, wiring and properties of the messages list.

#include "messageslist/uMessagesList.h"

#include "common/PendingError.h"
#include "common/UserPreferences.h"
#include "common/controls/StationListHandler.h"
#include "common/controls/StationListKeys.h"
#include "database/cTolvaDatabase.h"
#include "messageslist/CategoryTreeFill.h"
#include "messageslist/MessagesListColumns.h"
#include "messageslist/MessagesListTexts.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/PropertyBag.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/TabStrip.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QPushButton>

#include <utility>

namespace
{
const QString DisplayNewMessageKey = QStringLiteral("DisplayNewMessage");
const QString DisplayMessageListKey = QStringLiteral("DisplayMessageList");
} // namespace

uMessagesList::uMessagesList(QWidget* parent) : StationList(QStringLiteral("uMessagesList"), colReference, parent)
{
    MakeListControls();
    MakeMenus();
    MakeGridHeader();
    InitProperties();
}

uMessagesList::~uMessagesList()
{
    for (const QString& file : std::as_const(PromisedFiles_))
        QFile::remove(file);
}

void uMessagesList::SetTolvaDatabase(cTolvaDatabase* database)
{
    ShownOpening_ = 0;
    if (!Attach(database))
        return;
    Entry("mnuReadSep")->setVisible(false);
    if (CurrentUser() && !ShowFolderOfUser())
        return;
    UpdateCategories();
}

/// Shows the folder that the user left last. False when the host took this station, or the list, away meanwhile.
bool uMessagesList::ShowFolderOfUser()
{
    const auto folder = static_cast<enTolvaMessageCategories>(
        CurrentUser()->Preference(UserPreferences::MessageFolder.Name, UserPreferences::MessageFolder.Default).toInt());
    const bool rowsFollow =
        folder != CurrentCategory_ && clsTolvaDatabase_->MessageCategories().FindCategory(folder) != nullptr;
    if (!ShowChosenByUser(rowsFollow, [this, folder] { SetCategory(folder); }))
        return false;
    Entry("mnuReadSep")->setVisible(true);
    return true;
}

void uMessagesList::ConnectDatabase()
{
    const auto take = [this](const cMessagePtr& message) {
        Handle("MessageChanged", [&] { TakeDatabaseEvent(message); });
    };
    connect(clsTolvaDatabase_, &cTolvaDatabase::MessageSaved, this, take);
    connect(clsTolvaDatabase_, &cTolvaDatabase::MessageDeleted, this, take);
}

/// A message was saved or deleted by this process. The row that is selected stays so: it may have been saved by a
/// window of its own, or by a moment's delay.
void uMessagesList::TakeDatabaseEvent(const cMessagePtr& message)
{
    if (!message) {
        UpdateDisplay();
        return;
    }
    if (CurrentCategory_ != 0 && CurrentCategory_ != message->Category())
        return;
    if (!RedrawRow(message->Reference()))
        Display(Reading::ChangedRows);
}

void uMessagesList::TakePreferencesChange(int flags, const QString& name)
{
    if ((flags & ListPreferencesFlag) == 0)
        return;
    const QPointer<uMessagesList> self(this);
    // The next tick, or the user's next step, meets it again and tells it.
    PendingError ignored;
    ignored.Try([&] {
        if (name.isEmpty()) {
            UpdateCategories();
            if (self)
                UpdateDisplay();
        } else if (name.compare(UserPreferences::MessageOrder.Name, Qt::CaseInsensitive) == 0) {
            UpdateDisplay();
        }
    });
}

void uMessagesList::ResetDisplay()
{
    const bool wasBusy = std::exchange(IsBusy_, true); // a fill may be under way
    if (comboFind_->count() > 0)
        comboFind_->setCurrentIndex(0);
    tbsList_->SetTab(0);
    IsBusy_ = wasBusy;
    const bool wasInbox = CurrentCategory_ == tmcInbox;
    const QPointer<uMessagesList> self(this);
    SetCategory(tmcInbox);
    // Choosing the folder that is on show does nothing, and the find text may have changed.
    if (self && wasInbox)
        UpdateDisplay();
}

void uMessagesList::SetCategory(enTolvaMessageCategories category)
{
    // A property throws nothing at who sets it: a find text that is refused, or a station that is away, is told.
    HandleReading("Category", [&] {
        if (!HasDatabase() || category < 0 || category > clsTolvaDatabase_->LastMessageCategoryReference())
            return;
        const QString key = CategoryKey(category);
        if (!treeCategories_->SelectNode(key))
            return;
        treeCategories_->Expand(key);
        TakeNodeClick(key);
    });
}
void uMessagesList::SetDisplayNewMessage(bool shown)
{
    DisplayNewMessage_ = shown;
    ApplyNewMessageVisible();
    LayOut();
    TellContainer(DisplayNewMessageKey);
}

void uMessagesList::ApplyNewMessageVisible()
{
    cmdNew_->setVisible(DisplayNewMessage_);
    for (const char* name : {"mnuNewMessage", "mnuNewMessageSep", "mnuMessageNewMessage", "mnuMessageNewMessageSep"})
        Entry(name)->setVisible(DisplayNewMessage_);
}

void uMessagesList::SetDisplayMessageList(bool shown)
{
    DisplayMessageList_ = shown;
    picList_->setVisible(shown);
    LayOut();
    TellContainer(DisplayMessageListKey);
}
void uMessagesList::InitProperties()
{
    SetBackColour(SystemColour::ButtonFace);
    SetDoubleHeightRows(true);
    SetDisplayNewMessage(true);
    SetDisplayMessageList(true);
    SetAutoUpdateInterval(DefaultUpdateInterval);
    SetAutoUpdate(true);
    IsReady_ = true;
}

void uMessagesList::ReadProperties(const PropertyBag& bag)
{
    SetFont(bag.ReadProperty(StationListKey::Font, parentWidget() ? parentWidget()->font() : QApplication::font())
                .value<QFont>());
    SetPrintVisible(bag.ReadProperty(StationListKey::PrintVisible, true).toBool());
    SetBackColour(bag.ReadProperty(StationListKey::BackColour, SystemColour::ButtonFace).toInt());
    SetDoubleHeightRows(bag.ReadProperty(StationListKey::DoubleHeightRows, true).toBool());
    SetDisplayNewMessage(bag.ReadProperty(DisplayNewMessageKey, true).toBool());
    SetDisplayMessageList(bag.ReadProperty(DisplayMessageListKey, true).toBool());
    SetAutoUpdate(bag.ReadProperty(StationListKey::AutoUpdate, true).toBool());
    SetAutoUpdateInterval(bag.ReadProperty(StationListKey::AutoUpdateInterval, DefaultUpdateInterval).toFloat());
    IsReady_ = true;
}

void uMessagesList::WriteProperties(PropertyBag& bag) const
{
    bag.WriteProperty(StationListKey::BackColour, BackColour(), SystemColour::ButtonFace);
    bag.WriteProperty(StationListKey::PrintVisible, PrintVisible_, true);
    bag.WriteProperty(StationListKey::DoubleHeightRows, DoubleHeightRows_, true);
    bag.WriteProperty(DisplayNewMessageKey, DisplayNewMessage_, true);
    bag.WriteProperty(DisplayMessageListKey, DisplayMessageList_, true);
    bag.WriteProperty(StationListKey::AutoUpdate, AutoUpdate(), true);
    bag.WriteProperty(StationListKey::AutoUpdateInterval, AutoUpdateInterval(), DefaultUpdateInterval);
    bag.WriteProperty(StationListKey::Font, Font(), parentWidget() ? parentWidget()->font() : QApplication::font());
}
