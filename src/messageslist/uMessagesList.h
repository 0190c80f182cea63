// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/controls/StationList.h"
#include "platform/Export.h"

#include <QIcon>
#include <QTimer>

#include <functional>
#include <memory>

class PropertyBag;
class QKeyEvent;
class QMenu;
class QMimeData;
class RowFace;
enum class LookDepth;
struct MessageLook;
struct RowMark;

/// Which date a list sorts by and shows; a user's preference.
enum enMessagesListSortOrder : qint32
{
    mlsoSent = 0,
    mlsoReceived = 1
};

/// What the user wants done with messages, where a host may do it in the list's place.
enum class MessagesListCommand
{
    Delete,
    MarkRead,
    MarkUnread,
    MarkAllRead, ///< Of all rows on show; so is the next.
    MarkAllUnread,
    LowPriority, ///< The list itself changes no priority.
    NormalPriority,
    HighPriority,
    Print,
    Export
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
class TOLVA_EXPORT uMessagesList : public StationList
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

    /// The folder on show.
    enTolvaMessageCategories Category() const { return CurrentCategory_; }
    /// Shows another folder; one that is not in the tree is ignored.
    void SetCategory(enTolvaMessageCategories category);
    /// Selects the row of that message. False when it is not on show.
    bool SelectMessage(qint32 reference) { return Select(reference); }
    /// Off at first: folders at the top of the tree are neither renamed nor deleted here. On: those that are not fixed
    /// are, and NewTopFolder makes one.
    void SetEditsTopFolders(bool on) { EditsTopFolders_ = on; }
    void NewTopFolder();
    /// What a new folder is called until its maker types another name; "New Category" at first.
    void SetNewFolderName(const QString& name) { NewFolderName_ = name; }
    /// Off at first: dates show no year. On: those of another year than this one do, and those that are still to come
    /// say so.
    void SetShowsOtherYears(bool on) { ShowsOtherYears_ = on; }
    /// What a host knows of a message besides, in a few words: rows of two lines show it behind the date. Asked for
    /// when such a row is seen; empty for nothing. None at first.
    void SetDateNotes(std::function<QString(qint32 reference)> notes);
    /// The notes of these are others now; those of rows that nobody has seen are asked for later anyway.
    void RedrawDateNotes(const QList<qint32>& references);
    /// Off at first: rows of two lines show no sender. On: the second line begins with whom personOf makes of the From
    /// header, or of the To header in the folders of what the station writes; both decoded. It is called while rows are
    /// painted and answers from memory; an empty function switches it off. Counts from the next fill.
    void SetShowsPeople(std::function<QString(const QString& header)> personOf);
    /// Shows only what arrived at that moment (universal time) or after it; none, which it is at first, shows all.
    Date ArrivedSince() const { return ArrivedSince_; }
    void SetArrivedSince(Date moment);
    /// How many unread messages stand in each folder, by its number, for the tree to show behind the names. Those that
    /// are missing have none; so have all at first.
    void SetUnreadCounts(const QHash<qint32, int>& counts);
    /// Words at the end of a message's row, such as who is answering it: asked for by its reference whenever its row is
    /// painted, so that they cost nothing for the others. None at first.
    void SetRowNotes(std::function<QString(qint32 reference)> noteOf);
    /// They, or the marks, are others now.
    void ShowRowNotes();
    /// Off at first. Rows show small icons at the end of their last line, which a screen reader names: priority,
    /// attachments (of mails whose kind says that they hold some), what the host knows besides, and whether it is a
    /// mail or a text message. besides: asked for by the reference whenever a row is painted, answers from memory; may
    /// be empty. Counts from the next fill.
    void SetShowsMarks(std::function<QList<RowMark>(qint32 reference)> besides);
    /// 1 at first: of a text message a row of two lines shows what goes on one. More: up to so many, and rows are as
    /// high as they need to be, at every width of the list. Counts from the next fill.
    void SetTextLines(int most);
    /// Off at first: columns are as wide as they were meant for rows of one line, and what was cut stays cut. On: they
    /// take the width that there is, also when it changes, and nothing is to be scrolled to sideways.
    void SetFillsWidth(bool on);
    /// The tabs above the rows: everybody's messages and one's own, one's own alone, and all.
    void SetTabs(const QStringList& captions);
    bool DisplayNewMessage() const { return DisplayNewMessage_; }
    void SetDisplayNewMessage(bool shown);
    /// False leaves only the tree; the control then drives the host through its events alone.
    bool DisplayMessageList() const { return DisplayMessageList_; }
    void SetDisplayMessageList(bool shown);

    /// The defaults of a new instance on a form.
    void InitProperties();
    void ReadProperties(const PropertyBag& bag);
    void WriteProperties(PropertyBag& bag) const;

    /// The two popups, for a host that shows them in its menu bar too. Their entries bear their names (mnuOpen, …) and
    /// are enabled afresh whenever the menu is about to show.
    QMenu* MessageMenu() const { return mnuPopupMessage_; }
    QMenu* CategoryMenu() const { return mnuPopupCategory_; }

Q_SIGNALS:
    void NewMessage(const cMessagePtr& Message);
    void OpenMessage(const cMessagePtr& Message);
    /// Null when no message is selected.
    void MessageSelected(const cMessagePtr& Message);
    void PrintMessage(const cMessagePtr& Message);
    /// The selected message was to be opened and is not stored any more.
    void MessageGone();
    /// The user wants to answer. A host that begins the answer by itself sets IsTaken; otherwise the command ends in an
    /// error (13).
    void ReplyWanted(const cMessagePtr& Message, bool& IsTaken);
    /// The user deleted or dragged a message to another folder, where it is now; not one that was deleted for ever.
    void MessageMoved(const cMessagePtr& Message, enTolvaMessageCategories From);
    /// The query's condition and order changed. What the host writes there is what marking all takes while the list is
    /// hidden.
    void UpdateDisplay(QString& SQLQuery);
    /// A dropped file holds no mail that could be filed.
    void ImportRefused(const QString& FileName);
    /// The user pointed at the selected message, by mouse, keys or an assistive tool, be it the one that was selected
    /// before: it is not only on show because a folder was opened. After MessageSelected.
    void MessageChosen(qint32 Reference);
    /// Rows that somebody else stored came between those on show; not by a fill. After they are drawn.
    void MessagesCame(const QList<qint32>& References);
    /// Where SelectsByReference: the selected message is not among the rows any more, by somebody else's doing, and
    /// none is selected instead. In place of MessageSelected.
    void MessageLeft(qint32 Reference);
    /// Before a command of the menu or the keys; References are of the selected messages. A host that does it by itself
    /// sets IsTaken, otherwise the list does it, for the current message alone.
    void CommandWanted(MessagesListCommand Command, const QList<qint32>& References, bool& IsTaken);
    /// The same of messages that were dropped on a folder,
    void MessagesDropped(const QList<qint32>& References, enTolvaMessageCategories Folder, bool& IsTaken);
    /// and of files. A list whose host does not take them files the first mail among them.
    void FilesDropped(const QStringList& Files, enTolvaMessageCategories Folder, bool& IsTaken);

private:
    /// What UpdateDisplay makes its query of.
    struct Query
    {
        QString Condition;
        QString Order;

        friend bool operator==(const Query&, const Query&) = default;
    };

    // Making and wiring; uMessagesList.cpp.
    void ConnectDatabase() override;
    bool ShowFolderOfUser();
    void TakeDatabaseEvent(const cMessagePtr& message);
    void TakePreferencesChange(int flags, const QString& name) override;
    qint32 CategoryOnShow() const override { return CurrentCategory_; }
    void ApplyNewMessageVisible();

    // The query; MessagesListQuery.cpp.
    Query MakeQuery();
    QString PersonalCondition() const;
    static QString ClausesOf(const Query& query);
    static const QStringList& ComparedColumns();
    void ReadSortOrder();

    // Filling; MessagesListFill.cpp.
    Date StoredStamp() const override;
    void ReadRows(Reading reading, RowsRead& read) override;
    void TellDisplay(const RowsRead& read) override;
    void Fill(const Query& query, RowsRead& read);
    void FillRows(dao::Recordset& rows, int& filled, RowsRead& read);
    void DrawStoredRow(int row) override;
    bool RedrawRow(qint32 messageReference);
    void ForgetRow(int row);
    void UpdateTrashImage();

    // What other computers change; MessagesListChanges.cpp.
    bool TakeChanges() override;
    void TakeFolderChanges();
    bool DrawChanges(const Query& query, RowsRead& read);
    QHash<qint32, cMessagePtr> ReadMessages(const QList<qint32>& references, RowsRead& read);

    // Rows; MessagesListRows.cpp.
    void MakeGridHeader();
    void SizeColumns() override;
    void SetGridRowHeights() override;
    void DrawMessageRow(int row, const cMessagePtr& message);
    void DrawMessageRow(int row, const MessageLook& look);
    void DrawTexts(int row, const MessageLook& look, Date stamp, bool bold);
    double TextWidth() const;
    std::shared_ptr<const RowFace> FaceOfNow();
    void MakeFace();
    void UpdateRowBold(const cMessagePtr& message);
    void TakeSelection() override;
    void TakeChoice() override;

    // Marks, and rows of several heights; MessagesListMarks.cpp.
    LookDepth Depth() const;
    void TakeMarks(const MessageLook& look);
    bool FollowsWidth() const { return FillsWidth_ || TextLines_ > 1; }
    void FollowWidth();
    void Reflow();
    void ShowRowHeights();
    double HeightOfRow(int row) const;

    // The grid's keys, mouse and drag; MessagesListGrid.cpp.
    void TakeGridKey(QKeyEvent* event);
    bool IsDragStart(const QPointF& twips) const override;
    void StartGridDrag() override;
    QStringList WritePromisedFiles(const QList<qint32>& references);
    QString WritePromisedFile(qint32 reference);

    // The tree; MessagesListTree.cpp.
    void TakeNodeClick(const QString& key) override;
    void TakeTreeKey(QKeyEvent* event);
    void TakeTreeMouseDown(Qt::MouseButton button, const QPointF& twips);
    void TakeTreeMouseMove(Qt::MouseButtons buttons, const QPointF& twips);
    void TakeTreeMouseUp(Qt::MouseButton button);
    void StartTreeDrag();
    void BeforeRename(bool& cancel);
    void Rename(bool& cancel, const QString& newText);
    void NewFolder();
    void MakeFolder(const QString& parentKey, qint32 parentReference);
    void ShowUnreadCount(qint32 folder);
    bool MayChangeFolder(const QString& key) const;
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
    void PopUpListMenu(const QPoint& global) override;
    void PopUpCategoryMenu(const QPoint& global);

    // Commands; MessagesListCommands.cpp.
    cMessagePtr SelectedMessage() const;
    bool IsTakenByHost(MessagesListCommand command);
    void PriorityCommand(MessagesListCommand command);
    void NewCommand() override;
    void OpenCommand() override;
    void PrintCommand();
    void ReplyCommand();
    void ForwardCommand();
    void CopyCommand();
    void ExportCommand();
    void DeleteCommand();
    void DeleteMessage();
    void MarkCommand(bool read);
    void MarkAllCommand(bool read);
    void MarkAllRows(bool read);
    void MarkAllOfQuery(bool read);

    // The controls; MessagesListLayout.cpp.
    void MakeListControls();
    void ConnectGridKeys();
    void ConnectTree();
    QStringList FindEntries() const override;

    Query ShownQuery_; ///< Of the rows on show.
    int ShownOpening_ = 0;
    QList<qint32> Came_;       ///< Not told yet.
    quint64 ShownFolders_ = 0; ///< Signature of the tree.
    QHash<qint32, int> UnreadCounts_;
    QPointF TreeDragStart_;
    bool DisplayNewMessage_ = true;
    bool DisplayMessageList_ = true;
    bool EditsTopFolders_ = false;
    bool ShowsOtherYears_ = false;
    QString NewFolderName_ = QStringLiteral("New Category");
    qint32 SortOrder_ = mlsoSent;
    Date ArrivedSince_;
    enTolvaMessageCategories CurrentCategory_ = static_cast<enTolvaMessageCategories>(0);
    QString CurrentQuery_;
    QStringList PromisedFiles_; ///< Written for drags; removed with the control.

    QIcon HeadPicture_;
    bool ShowsMarks_ = false;
    bool FillsWidth_ = false;
    int TextLines_ = 1;
    QHash<qint32, quint8> MarkBits_; ///< Of the rows on show, by reference.
    QTimer ReflowTimer_;
    std::shared_ptr<RowFace> Face_;                                                 ///< Of the rows drawn last.
    std::shared_ptr<const std::function<QString(const QString& header)>> PersonOf_; ///< Null while rows show nobody.
    std::shared_ptr<const std::function<QString(qint32)>> DateNotes_;               ///< Null for none.

    QMenu* mnuPopupMessage_;
    QMenu* mnuPopupCategory_;
};
