// SPDX-License-Identifier: Apache-2.0

// Making, wiring and properties of the messages list.

#include "messageslist/uMessagesList.h"

#include "common/PendingError.h"
#include "common/UserPreferences.h"
#include "database/cTolvaDatabase.h"
#include "database/watch/StationWatch.h"
#include "messageslist/CategoryTreeFill.h"
#include "messageslist/MessagesListHandler.h"
#include "messageslist/MessagesListTexts.h"
#include "platform/directory/clsKVDirectory.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/ListPanes.h"
#include "platform/widgets/OverlayPanel.h"
#include "platform/widgets/PropertyBag.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/TabStrip.h"
#include "platform/widgets/ToolBar.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QMenu>
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
const QString DisplayNewMessage = QStringLiteral("DisplayNewMessage");
const QString DisplayMessageList = QStringLiteral("DisplayMessageList");
const QString AutoUpdate = QStringLiteral("AutoUpdate");
const QString AutoUpdateInterval = QStringLiteral("AutoUpdateInterval");
} // namespace Key
} // namespace

uMessagesList::uMessagesList(QWidget* parent) : QWidget(parent)
{
    MakeControls();
    MakeMenus();
    MakeGridHeader();
    InitProperties();
}

uMessagesList::~uMessagesList()
{
    timerUpdateList_->stop();
    for (const QString& file : std::as_const(PromisedFiles_))
        QFile::remove(file);
}

void uMessagesList::SetTolvaDatabase(cTolvaDatabase* database)
{
    DisconnectDatabase();
    clsTolvaDatabase_ = database;
    ++Attachments_;
    LastChangedStamp_.Forget();
    ShownOpening_ = 0;
    if (!database) {
        SetCurrentUser(nullptr);
        grdMessages_->SetRows(1);
        RowOfReference_.clear();
        ShownRows_.clear();
        ShowUnread(*lblUnread_, 0);
        CurrentSelectedReference_ = 0;
        return;
    }
    ConnectDatabase();
    Entry("mnuReadSep")->setVisible(false);
    const clsKVDirectory* directory = database->DirectoryDatabase();
    SetCurrentUser(directory ? directory->CurrentUser() : nullptr);
    if (clsCurrentUser_ && !ShowFolderOfUser())
        return;
    UpdateCategories();
}

/// Shows the folder that the user left last. False when the host took this station, or the list, away meanwhile.
bool uMessagesList::ShowFolderOfUser()
{
    const QPointer<uMessagesList> self(this);
    const QPointer<cTolvaDatabase> attached = clsTolvaDatabase_;
    const auto folder = static_cast<enTolvaMessageCategories>(
        clsCurrentUser_->Preference(UserPreferences::MessageFolder.Name, UserPreferences::MessageFolder.Default)
            .toInt());
    {
        // The rows of all folders would be read only to be replaced by those of one.
        RowsFollow_ = folder != CurrentCategory_ && attached->MessageCategories().FindCategory(folder) != nullptr;
        const auto reset = qScopeGuard([self] {
            if (self)
                self->RowsFollow_ = false;
        });
        TakePreferencesChange(PreferencesFlag, QString());
    }
    const auto isAttached = [&] { return self && attached && clsTolvaDatabase_ == attached; };
    if (!isAttached())
        return false;
    SetCategory(folder);
    if (!isAttached())
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
    connect(&clsTolvaDatabase_->Watch(), &StationWatch::Polled, this, &uMessagesList::TakePoll);
}

void uMessagesList::DisconnectDatabase()
{
    if (!clsTolvaDatabase_)
        return;
    clsTolvaDatabase_->disconnect(this);
    clsTolvaDatabase_->Watch().disconnect(this);
}

void uMessagesList::SetCurrentUser(clsKVUser* user)
{
    if (clsCurrentUser_)
        clsCurrentUser_->disconnect(this);
    clsCurrentUser_ = user;
    if (user)
        connect(user, &clsKVUser::PreferencesChanged, this, &uMessagesList::TakePreferencesChange);
}

bool uMessagesList::HasDatabase() const
{
    return clsTolvaDatabase_ && !clsTolvaDatabase_->Location().isEmpty();
}

ReadTarget uMessagesList::Target() const
{
    return {clsTolvaDatabase_, HasDatabase() ? clsTolvaDatabase_->Openings() : 0, Attachments_, CurrentCategory_};
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
    if ((flags & PreferencesFlag) == 0)
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
    const bool wasBusy = std::exchange(DisplayBusy_, true); // a fill may be under way
    if (comboFind_->count() > 0)
        comboFind_->setCurrentIndex(0);
    tbsMessages_->SetTab(0);
    DisplayBusy_ = wasBusy;
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
    Handle("Category", [&] {
        if (!HasDatabase() || category < 0 || category > clsTolvaDatabase_->LastMessageCategoryReference())
            return;
        const QString key = CategoryKey(category);
        if (!treeCategories_->SelectNode(key))
            return;
        treeCategories_->Expand(key);
        TakeNodeClick(key);
    });
}

void uMessagesList::TellContainer(const QString& key)
{
    Q_EMIT PropertyChanged(key);
}

void uMessagesList::SetDoubleHeightRows(bool twoLines)
{
    DoubleHeightRows_ = twoLines;
    grdMessages_->setWordWrap(twoLines);
    SetGridRowHeights();
    LayOutMessages();
    const QPointer<uMessagesList> self(this);
    Handle("DoubleHeightRows", [this] { UpdateDisplay(); });
    if (self)
        TellContainer(Key::DoubleHeightRows);
}

void uMessagesList::SetDisplayNewMessage(bool shown)
{
    DisplayNewMessage_ = shown;
    ApplyNewMessageVisible();
    LayOut();
    TellContainer(Key::DisplayNewMessage);
}

void uMessagesList::ApplyNewMessageVisible()
{
    cmdNewMessage_->setVisible(DisplayNewMessage_);
    for (const char* name : {"mnuNewMessage", "mnuNewMessageSep", "mnuMessageNewMessage", "mnuMessageNewMessageSep"})
        Entry(name)->setVisible(DisplayNewMessage_);
}

void uMessagesList::SetDisplayMessageList(bool shown)
{
    DisplayMessageList_ = shown;
    picMessages_->setVisible(shown);
    LayOut();
    TellContainer(Key::DisplayMessageList);
}

void uMessagesList::SetPrintVisible(bool shown)
{
    PrintVisible_ = shown;
    ApplyPrintVisible();
    TellContainer(Key::PrintVisible);
}

void uMessagesList::ApplyPrintVisible()
{
    Entry("mnuPrint")->setVisible(PrintVisible_);
    Entry("mnuPrintSep")->setVisible(PrintVisible_);
}

void uMessagesList::SetAutoUpdate(bool on)
{
    AutoUpdate_ = on;
    ApplyTimer();
    TellContainer(Key::AutoUpdate);
}

float uMessagesList::AutoUpdateInterval() const
{
    return static_cast<float>(timerUpdateList_->interval()) / MillisecondsASecond;
}

void uMessagesList::SetAutoUpdateInterval(float seconds)
{
    const float limited = std::clamp(seconds, 0.0F, LongestInterval);
    timerUpdateList_->setInterval(qRound(limited * MillisecondsASecond));
    ApplyTimer();
    TellContainer(Key::AutoUpdateInterval);
}

/// A timer without an interval never fires.
void uMessagesList::ApplyTimer()
{
    if (!AutoUpdate_ || timerUpdateList_->interval() <= 0)
        timerUpdateList_->stop();
    else if (!timerUpdateList_->isActive() && !Filling_)
        timerUpdateList_->start();
}

qint32 uMessagesList::NumberItems() const
{
    return std::max(0, grdMessages_->Rows() - 1);
}

void uMessagesList::ScrollToTop()
{
    if (grdMessages_->Rows() >= 2)
        grdMessages_->SetTopRow(1);
}

void uMessagesList::ScrollToBottom()
{
    if (grdMessages_->Rows() >= 2)
        grdMessages_->SetTopRow(grdMessages_->Rows() - 1);
}

void uMessagesList::SetBackColour(qint32 colour)
{
    BackColour_ = colour;
    ApplyBackColour();
    TellContainer(Key::BackColour);
}

void uMessagesList::ApplyBackColour()
{
    QPalette own = palette();
    own.setColor(QPalette::Window, SystemColour::ToColour(BackColour_, QApplication::palette()));
    if (own != palette())
        setPalette(own);
    tbsCategories_->SetBackColour(BackColour_);
    tbsMessages_->SetBackColour(BackColour_);
}

void uMessagesList::SetFont(const QFont& font)
{
    setFont(font);
    treeCategories_->setFont(font);
    grdMessages_->setFont(font);
    SetGridRowHeights();
    LayOut();
    TellContainer(Key::Font);
}

void uMessagesList::InitProperties()
{
    SetBackColour(SystemColour::ButtonFace);
    SetDoubleHeightRows(true);
    SetDisplayNewMessage(true);
    SetDisplayMessageList(true);
    SetAutoUpdateInterval(DefaultInterval);
    SetAutoUpdate(true);
    Initialised_ = true;
}

void uMessagesList::ReadProperties(const PropertyBag& bag)
{
    SetFont(bag.ReadProperty(Key::Font, parentWidget() ? parentWidget()->font() : QApplication::font()).value<QFont>());
    SetPrintVisible(bag.ReadProperty(Key::PrintVisible, true).toBool());
    SetBackColour(bag.ReadProperty(Key::BackColour, SystemColour::ButtonFace).toInt());
    SetDoubleHeightRows(bag.ReadProperty(Key::DoubleHeightRows, true).toBool());
    SetDisplayNewMessage(bag.ReadProperty(Key::DisplayNewMessage, true).toBool());
    SetDisplayMessageList(bag.ReadProperty(Key::DisplayMessageList, true).toBool());
    SetAutoUpdate(bag.ReadProperty(Key::AutoUpdate, true).toBool());
    SetAutoUpdateInterval(bag.ReadProperty(Key::AutoUpdateInterval, DefaultInterval).toFloat());
    Initialised_ = true;
}

void uMessagesList::WriteProperties(PropertyBag& bag) const
{
    bag.WriteProperty(Key::BackColour, BackColour_, SystemColour::ButtonFace);
    bag.WriteProperty(Key::PrintVisible, PrintVisible_, true);
    bag.WriteProperty(Key::DoubleHeightRows, DoubleHeightRows_, true);
    bag.WriteProperty(Key::DisplayNewMessage, DisplayNewMessage_, true);
    bag.WriteProperty(Key::DisplayMessageList, DisplayMessageList_, true);
    bag.WriteProperty(Key::AutoUpdate, AutoUpdate_, true);
    bag.WriteProperty(Key::AutoUpdateInterval, AutoUpdateInterval(), DefaultInterval);
    bag.WriteProperty(Key::Font, Font(), parentWidget() ? parentWidget()->font() : QApplication::font());
}
