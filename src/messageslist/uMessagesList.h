// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/cTolvaDatabase.h"
#include "database/watch/ListReads.h"
#include "database/watch/RowChanges.h"
#include "platform/Export.h"
#include "platform/directory/clsKVDirectory.h"

#include <QHash>
#include <QIcon>
#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class CategoryTreeView;
class FindBox;
class FlexGrid;
struct ListPanes;
struct MessageLook;
class OverlayPanel;
class PropertyBag;
class QAction;
class QLabel;
class QMenu;
class QMimeData;
class QPushButton;
class QTimer;
class TabStrip;
class ToolBar;

/// Which date a list sorts by and shows; a user's preference.
enum enMessagesListSortOrder : qint32
{
    mlsoSent = 0,
    mlsoReceived = 1
};

/// The contact desk's messages: a tree of folders, a find bar and a grid of messages. A host places it on a form, sets
/// TolvaDatabase and takes the events; it opens no editor by itself. It holds no message: a row shows one that was
/// fetched, and every command fetches it anew. All on the user interface thread.
///
/// What other computers change shows within AutoUpdateInterval, sooner where another list of the station polls more
/// often: of the messages the rows that differ are drawn, where
/// the user is stays, and folders come and go. While a long fill runs the window answers: the tree and the tabs wait,
/// setting another Category abandons the fill. Rows that could not be read are counted below the others and tried again
/// at each tick.
///
/// In each of its events a host may close the station and open it again, detach and attach it, or destroy the list.
///
/// Events meet their errors by handing them to UserInterface::RunTimeError with the handler's name ("uMessagesList.…")
/// as their source; operations that a host calls throw them (dao::Error).
class TOLVA_EXPORT uMessagesList : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool PrintVisible READ PrintVisible WRITE SetPrintVisible)
    Q_PROPERTY(qint32 BackColour READ BackColour WRITE SetBackColour)
    Q_PROPERTY(bool DoubleHeightRows READ DoubleHeightRows WRITE SetDoubleHeightRows)
    Q_PROPERTY(bool DisplayNewMessage READ DisplayNewMessage WRITE SetDisplayNewMessage)
    Q_PROPERTY(bool DisplayMessageList READ DisplayMessageList WRITE SetDisplayMessageList)
    Q_PROPERTY(bool AutoUpdate READ AutoUpdate WRITE SetAutoUpdate)
    Q_PROPERTY(float AutoUpdateInterval READ AutoUpdateInterval WRITE SetAutoUpdateInterval)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont)

public:
    /// Ready for use, with the defaults of all properties.
    explicit uMessagesList(QWidget* parent = nullptr);
    ~uMessagesList() override;

    cTolvaDatabase* TolvaDatabase() const { return clsTolvaDatabase_; }
    /// The host owns the database and keeps it while it is set; null clears the list.
    void SetTolvaDatabase(cTolvaDatabase* database);

    /// Reads the list again. Does nothing without an open database and while it is busy.
    void UpdateDisplay();
    /// Draws the row of one message again and makes it the current one, or draws all rows for 0, without a new query.
    /// False when there is no such row.
    /// Afterwards the list still takes notice of what others stored before.
    bool RefreshDisplay(qint32 messageReference = 0);
    /// Fills the tree of folders again.
    void UpdateCategories();
    /// Back to the start view: the first find text, the first tab, the Inbox.
    void ResetDisplay();
    void ScrollToTop();
    void ScrollToBottom();

    /// The folder on show.
    enTolvaMessageCategories Category() const { return CurrentCategory_; }
    /// Shows another folder; one that is not in the tree is ignored.
    void SetCategory(enTolvaMessageCategories category);
    /// Of the selected message, 0 for none.
    qint32 SelectedReference() const { return CurrentSelectedReference_; }
    /// Selects the row of that message. False when it is not on show.
    bool SelectMessage(qint32 reference);
    bool DoubleHeightRows() const { return DoubleHeightRows_; }
    void SetDoubleHeightRows(bool twoLines);
    bool DisplayNewMessage() const { return DisplayNewMessage_; }
    void SetDisplayNewMessage(bool shown);
    /// False leaves only the tree; the control then drives the host through its events alone.
    bool DisplayMessageList() const { return DisplayMessageList_; }
    void SetDisplayMessageList(bool shown);
    bool PrintVisible() const { return PrintVisible_; }
    void SetPrintVisible(bool shown);
    bool AutoUpdate() const { return AutoUpdate_; }
    void SetAutoUpdate(bool on);
    /// Seconds, 0 to 60; others are limited. 0 stops the polling.
    float AutoUpdateInterval() const;
    void SetAutoUpdateInterval(float seconds);
    /// Message rows.
    qint32 NumberItems() const;
    /// 32-bit colour.
    qint32 BackColour() const { return BackColour_; }
    void SetBackColour(qint32 colour);
    /// Of the tree and the grid.
    QFont Font() const { return font(); }
    void SetFont(const QFont& font);

    /// The defaults of a new instance on a form.
    void InitProperties();
    void ReadProperties(const PropertyBag& bag);
    void WriteProperties(PropertyBag& bag) const;

    /// The two popups, for a host that shows them in its menu bar too. Their entries bear their names (mnuOpen, …) and
    /// are enabled afresh whenever the menu is about to show.
    QMenu* MessageMenu() const { return mnuPopupMessage_; }
    QMenu* CategoryMenu() const { return mnuPopupCategory_; }
    /// The words that the subjects on show must hold; empty for all messages.
    const QString& FindText() const { return FindText_; }
    bool IsFiltered() const { return !FindText_.isEmpty(); }
    /// Shows all messages again.
    void ClearFind();
    /// A fill is under way, and yields.
    bool IsFilling() const { return Filling_; }

Q_SIGNALS:
    void NewMessage(const cMessagePtr& Message);
    void OpenMessage(const cMessagePtr& Message);
    /// Null when no message is selected.
    void MessageSelected(const cMessagePtr& Message);
    void PrintMessage(const cMessagePtr& Message);
    /// The user deleted or dragged a message to another folder, where it is now; not one that was deleted for ever.
    void MessageMoved(const cMessagePtr& Message, enTolvaMessageCategories From);
    /// The query's condition and order changed. What the host writes there is what marking all takes while the list is
    /// hidden.
    void UpdateDisplay(QString& SQLQuery);
    /// A property changed by its setter; for the form that stores it.
    void PropertyChanged(const QString& Key);
    /// Rows filled so far, of all that the query found.
    void FillProgress(int done, int total);
    /// A dropped file holds no mail that could be filed.
    void ImportRefused(const QString& FileName);
    /// The rows on show are those of the database, as of now.
    void DisplayUpdated();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// What UpdateDisplay makes its query of.
    struct Query
    {
        QString Condition;
        QString Order;

        friend bool operator==(const Query&, const Query&) = default;
    };
    /// How a display comes to its rows.
    enum class Reading
    {
        AllRows,    ///< Every message is read.
        ChangedRows ///< Only those that differ from what is on show, when that is the same query.
    };
    /// What a reading of rows found, and what is to be selected behind it.
    struct RowsRead
    {
        int RowToRestore = 1;
        qint32 ReferenceToRestore = 0;
        bool IsSelectionDrawn = true; ///< The host is to hear of the selected message.
        ReadFailures Failures;
    };

    /// What cuts subjects to a width, and for which surface.
    struct Fitting
    {
        QFont Surface;
        double Width = 0;
        std::shared_ptr<const std::function<QString(const QString&)>> Fit;
    };

    // Making and wiring; uMessagesList.cpp.
    void ConnectDatabase();
    void DisconnectDatabase();
    bool ShowFolderOfUser();
    void SetCurrentUser(clsKVUser* user);
    clsKVUser* CurrentUser() const { return clsCurrentUser_; }
    bool HasDatabase() const;
    ReadTarget Target() const;
    void TakeDatabaseEvent(const cMessagePtr& message);
    void TakePreferencesChange(int flags, const QString& name);
    template <typename Work>
    void Handle(const char* handler, Work&& work);

    // Properties.
    void TellContainer(const QString& key);
    void ApplyBackColour();
    void ApplyNewMessageVisible();
    void ApplyPrintVisible();
    void ApplyTimer();

    // The query; MessagesListQuery.cpp.
    Query MakeQuery();
    QString PersonalCondition() const;
    static QString ClausesOf(const Query& query);
    static const QStringList& ComparedColumns();
    void ReadSortOrder();

    // Filling; MessagesListFill.cpp.
    void Display(Reading reading);
    void Fill(const Query& query, RowsRead& read);
    int FillRows(dao::Recordset& rows, RowsRead& read);
    void ShowRowsOrNone(RowsRead& read);
    bool RedrawRow(qint32 messageReference);
    void ForgetRow(int row);
    void RefreshAllRows();
    void UpdateTrashImage();

    // What other computers change; MessagesListChanges.cpp.
    void Tick();
    void TakePoll(const QObject* asker);
    void TakeChanges();
    void TakeFolderChanges();
    bool DrawChanges(const Query& query, RowsRead& read);
    QHash<qint32, cMessagePtr> ReadMessages(const QList<qint32>& references, RowsRead& read);
    void Arrange(const std::vector<int>& sources, RowsRead& read);

    // Rows; MessagesListRows.cpp.
    void MakeGridHeader();
    void SetGridColumnWidths();
    void SetGridRowHeights();
    void DrawMessageRow(int row, const cMessagePtr& message);
    void DrawMessageRow(int row, const MessageLook& look);
    void DrawTexts(int row, const MessageLook& look, Date stamp, bool bold);
    std::shared_ptr<const std::function<QString(const QString&)>> SubjectFitting(bool bold);
    void UpdateRowBold(const cMessagePtr& message);
    qint32 ReferenceOfRow(int row) const;
    void SelectRow(int row);
    void TakeCellChange();

    // The grid's keys, mouse and drag; MessagesListGrid.cpp.
    void TakeGridKey(QKeyEvent* event);
    void TakeGridMouseDown(Qt::MouseButton button, const QPointF& twips);
    void TakeGridMouseMove(Qt::MouseButtons buttons, const QPointF& twips);
    void TakeGridMouseUp(Qt::MouseButton button);
    void StartGridDrag();
    QStringList WritePromisedFile(qint32 reference);

    // The tree; MessagesListTree.cpp.
    void TakeNodeClick(const QString& key);
    void TakeTreeKey(QKeyEvent* event);
    void TakeTreeMouseDown(Qt::MouseButton button, const QPointF& twips);
    void TakeTreeMouseMove(Qt::MouseButtons buttons, const QPointF& twips);
    void TakeTreeMouseUp(Qt::MouseButton button);
    void StartTreeDrag();
    void BeforeRename(bool& cancel);
    void Rename(bool& cancel, const QString& newText);
    void NewFolder();
    void DeleteFolder();
    void EmptyFolder();
    std::unique_ptr<clsCategory> StoredCategory(qint32 reference);
    bool MayEditCategories() const;
    bool MayEditMessages() const;

    // What is dragged to the tree; MessagesListDrop.cpp.
    void TakeDragOver(const QMimeData& dragged, const QPointF& twips, Qt::DropAction& effect);
    Qt::DropAction EffectOver(const QString& node, const QMimeData& dragged, Qt::DropAction proposed) const;
    void TakeDrop(const QMimeData& dragged, Qt::DropAction& effect);
    void DropMessage(const QString& text, const QString& node, Qt::DropAction& effect);
    void DropCategory(const QString& text, const QString& node, Qt::DropAction& effect);
    void DropFiles(const QStringList& files, const QString& node, Qt::DropAction& effect);

    // Menus; MessagesListMenus.cpp.
    void MakeMenus();
    void MakeMessageMenu();
    void MakeCategoryMenu();
    void EnableMessageMenu();
    void EnableCategoryMenu();
    void PopUpMessageMenu(const QPoint& global);
    void PopUpCategoryMenu(const QPoint& global);
    QAction* Entry(const char* name) const;

    // Commands; MessagesListCommands.cpp.
    cMessagePtr SelectedMessage() const;
    void NewMessageCommand();
    void OpenCommand();
    void PrintCommand();
    void ReplyCommand();
    void ForwardCommand();
    void CopyCommand();
    void ExportCommand();
    void DeleteCommand();
    void MarkCommand(bool read);
    void MarkAllCommand(bool read);
    void MarkAllRows(bool read);
    void MarkAllOfQuery(bool read);

    // The controls and their layout; MessagesListLayout.cpp.
    void MakeControls();
    void ConnectControls();
    void ConnectGrid();
    void ConnectTree();
    void LayOut();
    void LayOutTree();
    void LayOutMessages();
    ListPanes Panes();

    bool Initialised_ = false;
    bool DisplayBusy_ = false;
    bool Filling_ = false;
    bool RowsFollow_ = false; ///< A fill of another folder comes at once, so that this one need not be read.
    int Attachments_ = 0;     ///< How often TolvaDatabase was set.
    ReadStamp LastChangedStamp_;
    Query ShownQuery_; ///< Of the rows on show.
    int ShownOpening_ = 0;
    int Restarts_ = 0;               ///< Of a display whose host chose something else in it, one in the other.
    std::vector<ReadRow> ShownRows_; ///< As they were read; one for each row.
    quint64 ShownFolders_ = 0;       ///< Signature of the tree.
    QPointF GridDragStart_;          ///< Twips; none for x 0.
    QPointF TreeDragStart_;
    bool DoubleHeightRows_ = true;
    qint32 BackColour_ = 0;
    bool DisplayNewMessage_ = true;
    bool DisplayMessageList_ = true;
    bool PrintVisible_ = true;
    qint32 SortOrder_ = mlsoSent;
    enTolvaMessageCategories CurrentCategory_ = static_cast<enTolvaMessageCategories>(0);
    qint32 CurrentSelectedReference_ = 0;
    bool GridDragging_ = false;
    bool AutoUpdate_ = true;
    QString CurrentQuery_;
    QString FindText_; ///< Of the query on show.
    QHash<qint32, int> RowOfReference_;
    QPointer<cTolvaDatabase> clsTolvaDatabase_;
    QPointer<clsKVUser> clsCurrentUser_;
    QStringList PromisedFiles_; ///< Written for drags; removed with the control.

    QIcon HeadPicture_;
    Fitting Fittings_[2]; ///< For plain and for bold rows.

    ToolBar* toolSearch_;
    QWidget* picFind_;
    QLabel* lblFind_;
    FindBox* comboFind_;
    QPushButton* cmdNewMessage_;
    TabStrip* tbsCategories_;
    CategoryTreeView* treeCategories_;
    QWidget* picMessages_;
    TabStrip* tbsMessages_;
    FlexGrid* grdMessages_;
    OverlayPanel* picLoading_;
    OverlayPanel* picNoMessages_;
    QLabel* lblUnread_;
    QTimer* timerUpdateList_ = nullptr; ///< The last of the controls.
    QMenu* mnuPopupMessage_;
    QMenu* mnuPopupCategory_;
};
