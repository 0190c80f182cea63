// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Failure.h"
#include "StationReplacing.h"
#include "Words.h"
#include "compose/Composition.h"
#include "compose/UnsentText.h"
#include "station/DeskStation.h"

#include <QDeadlineTimer>
#include <QList>
#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class AnsweringDesk;
class ArrivalCue;
class ComposeWindow;
class ContactDesk;
class DeskSettings;
class MessageCommands;
class MessageWindow;
class MessageUndo;
class NoticeBar;
class OnAirDesk;
class PreviewPane;
class PrizeDesk;
class SameMailNotice;
class SavedNotice;
class SearchDesk;
class SendingDesk;
class SongDesk;
class Speller;
class QLabel;
class QMenu;
class QSplitter;
class QToolBar;
class uMessagesList;
struct PrintJob;
struct RowMark;

/// The desk: folders, messages and the message that is selected, over one open station. It owns the station and the
/// windows that work on it, and closes only when they do. The settings outlive it.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow(std::unique_ptr<DeskStation> station, DeskSettings& settings);
    ~MainWindow() override;

    DeskStation& Station() { return *Station_; }
    uMessagesList& List() { return *List_; }
    PreviewPane& Preview() { return *Preview_; }
    PrizeDesk& Prizes() { return *Prizes_; }
    ContactDesk& Contacts() { return *Contacts_; }
    SearchDesk& Search() { return *Search_; }
    OnAirDesk& OnAir() { return *OnAir_; }

    /// A run-time error of a control; true when this window has met it: that the station was put back from a backup.
    bool TakeRunTimeError(const dao::Error& error);

    /// The windows in which something is written, and those that show one message.
    QList<ComposeWindow*> ComposeWindows() const;
    QList<MessageWindow*> MessageWindows() const;
    ComposeWindow* Compose(const Composition& composition, const cMessagePtr& draft = nullptr);
    MessageWindow* OpenInWindow(const cMessagePtr& message);

    /// How often it looks whether the station is still there.
    static constexpr int WatchMilliseconds = 3000;
    /// How long a message stands in the status bar.
    static constexpr int MessageMilliseconds = 8000;
    /// How often it looks whether the automatic backup of the day or hour is due.
    static constexpr int BackupMilliseconds = 15 * 60 * 1000;

public Q_SLOTS:
    void Reply();
    void ReplyToAll();
    void Forward();
    void NewMessage();
    void NewTextMessage();
    void RefreshAll();
    void FocusNextPane(bool backwards = false);
    /// Looks whether the station can be reached, and says so when that has changed.
    void WatchStation();

Q_SIGNALS:
    /// An empty folder: the user wants to choose.
    void StationWanted(const QString& folder);
    /// Somebody else sits down here.
    void UserWanted();
    void Closed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Runs a command; its error becomes words, for no exception may reach the event loop.
    template <typename Work>
    void Run(Work&& work);

    void MakeParts();
    void MakeSpeller();
    void MakePages();
    void MakeStatusBar();
    void ConnectList();
    void AddTabs();
    void MakeFileMenu();
    void MakeMessageMenu();
    void MakeViewMenu();
    void MakeGoMenu(QMenu& menu);
    void MakeColoursMenu(QMenu& menu);
    void MakeStationMenu();
    void MakeHelpMenu();
    QWidget* MakeMessageSide();
    void FillList();
    QAction* AddAction(QMenu* menu, const char* name, const QString& icon, const QString& text,
                       const QKeySequence& key = {});
    QAction* Action(const char* name) const;
    void FillRecentStations(QMenu& menu);
    void RestoreSizes();
    void SaveSizes();

    cMessagePtr SelectedMessage();
    void TakeSelection(const cMessagePtr& message);
    void TakeLeft(qint32 reference);
    void ConnectCommands();
    void MakeMessageFilesMenu(QMenu& menu);
    void MakeFolderCommands(QMenu& menu);
    void TakeNewMessage(const cMessagePtr& message);
    void OfferUnsent();
    void OpenUnsent();
    void Answer(const cMessagePtr& original, bool toAll);
    void ComposeSigned(const Composition& composition);
    ComposeWindow* ShowCompose(const Composition& composition, const cMessagePtr& draft, UnsentText file);
    void TakeOpenMessage(const cMessagePtr& message);
    void ConnectOnAir();
    QList<RowMark> RowMarksOf(qint32 message) const;
    void ConnectContacts();
    void ConnectSearch();
    void OpenFound(qint32 reference);
    void TakeUpdate();
    void TakeLook();
    void ShowTitle();
    void TakeExport(const QString& words, const QString& folder);
    void TakePage(bool prizes);
    void TakeGoneMessage();
    void TakeFailedReading(int errorNumber, bool& isTold);
    void MarkAsRead(qint32 reference);
    void FocusRows();
    void Say(const QString& words);
    void ShowCounts();
    void ShowUser();
    void ShowUnreadCounts();
    void ShowConnectionProblem(int errorNumber);
    void TakePutBack();
    void ReopenStation();
    void SayIfReadOnly();
    void MakeSortMenu(QMenu& menu);
    qint32 SortOrder() const;
    void SetSortOrder(qint32 order);
    void ShowAllMessages();
    void KeepTextSize(PreviewPane& view);
    bool OpenAgain(enTolvaMessageCategories category);
    void EditUsers();

    bool MayChangeSettings() const;
    void ChangeSettings();
    void ChangeMailAddress();
    void ChangeHighlightWords();
    void ChangeLabels();
    void BackUpNow();
    void ShowBackups();
    void Restore(const BackupFolders::Backup& backup);
    void CheckFile();
    void CompactFile();
    void PrintLabels();
    // Printing messages and prizes, in printing/MainWindowPrinting.cpp.
    void MakePrintActions(QMenu* menu);
    void TakePageForPrinting(bool prizes);
    void PrintMessages(PrintJob job, QWidget* over = nullptr);
    void PrintSelected();
    void PrintList();
    /// Closes every window and the file, lets the work replace it, and opens it again. Nothing when something that is
    /// being written wants to stay, or the work failed, which is said.
    std::optional<StationReplacing::Result> ReplaceFile(const std::function<StationReplacing::Result()>& work);
    void ShowShortcuts();
    void ShowAbout();

    std::unique_ptr<DeskStation> Station_;
    DeskSettings& Settings_;
    QSplitter* Splitter_ = nullptr;
    uMessagesList* List_ = nullptr;
    PreviewPane* Preview_ = nullptr;
    PrizeDesk* Prizes_ = nullptr;
    ContactDesk* Contacts_ = nullptr;
    SearchDesk* Search_ = nullptr;
    SameMailNotice* SameMail_ = nullptr;
    SendingDesk* Sending_ = nullptr;
    SongDesk* Song_ = nullptr;
    AnsweringDesk* Answering_ = nullptr;
    OnAirDesk* OnAir_ = nullptr;
    Speller* Speller_ = nullptr;
    QToolBar* MessageBar_ = nullptr;
    NoticeBar* Connection_ = nullptr;
    NoticeBar* ReadOnly_ = nullptr;
    SavedNotice* Exported_ = nullptr;
    NoticeBar* Filter_ = nullptr;
    NoticeBar* Unsent_ = nullptr;
    std::vector<UnsentText::Found> UnsentTexts_; ///< Of desks that ended without closing.
    MessageUndo* Undo_ = nullptr;
    MessageCommands* Commands_ = nullptr;
    ArrivalCue* Arrivals_ = nullptr;
    QLabel* Counts_ = nullptr;
    QLabel* Updated_ = nullptr;
    QLabel* User_ = nullptr;
    QTimer CountTimer_;
    QTimer WatchTimer_;
    QTimer BackupTimer_;
    int UnreadInInbox_ = 0;
    QString ListCondition_; ///< Of the rows on show.
    QString ListOrder_;
    bool MustReopen_ = false;
    bool WasPutBack_ = false;     ///< Why it must.
    QDeadlineTimer PutBackWords_; ///< Until then the notice says so.
    QList<QPointer<QMainWindow>> Windows_;
};

template <typename Work>
void MainWindow::Run(Work&& work)
{
    try {
        std::forward<Work>(work)();
    } catch (const dao::Error& error) {
        Words::Warn(Station_->Words(error.Number(), error.Description()));
    } catch (const Failure& failure) {
        Words::Warn(failure.Words());
    }
}
