// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/cTolvaDatabase.h"
#include "database/watch/ListReads.h"
#include "database/watch/RowChanges.h"
#include "platform/Export.h"
#include "platform/directory/clsKVUser.h"

#include <QAnyStringView>
#include <QHash>
#include <QPointF>
#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

class CategoryTreeView;
class FindBox;
class FlexGrid;
class OverlayPanel;
class QAction;
class QLabel;
class QPushButton;
class QTimer;
class TabStrip;
class ToolBar;
struct ListPanes;

/// What the lists of a station's messages and prizes are alike in: a tree of kinds, a find bar and a grid; the road
/// from a query to the rows, which yields; keeping them in step with what other computers change; properties and
/// layout. A list says what its rows are and what its commands do. Its first column is the hidden key of the row.
class TOLVA_EXPORT StationList : public QWidget
{
    Q_OBJECT

public:
    ~StationList() override;

    cTolvaDatabase* TolvaDatabase() const { return clsTolvaDatabase_; }
    void ScrollToTop();
    void ScrollToBottom();

    /// Of the selected row, 0 for none.
    qint32 SelectedReference() const { return SelectedReference_; }
    /// Two lines a row.
    bool DoubleHeightRows() const { return DoubleHeightRows_; }
    void SetDoubleHeightRows(bool twoLines);
    bool PrintVisible() const { return PrintVisible_; }
    void SetPrintVisible(bool shown);
    bool AutoUpdate() const { return AutoUpdate_; }
    void SetAutoUpdate(bool on);
    /// Seconds, 0 to 60; others are limited. 0 stops the polling.
    float AutoUpdateInterval() const;
    void SetAutoUpdateInterval(float seconds);
    /// Rows below the header.
    qint32 NumberItems() const;
    /// 32-bit colour.
    qint32 BackColour() const { return BackColour_; }
    void SetBackColour(qint32 colour);
    /// Of the tree and the grid.
    QFont Font() const { return font(); }
    void SetFont(const QFont& font);

    /// Off at first: what is selected is a place in the list. On: it is a message, or what else a row is. Where that
    /// one leaves the rows by somebody else's doing, none is selected; another kind, find text or tab begins at its
    /// first row; and the rows stay under the user's eyes.
    bool SelectsByReference() const { return SelectsByReference_; }
    void SetSelectsByReference(bool on) { SelectsByReference_ = on; }
    /// Whether the user may select several rows. Off at first.
    void SetSelectsSeveral(bool several);
    /// Of all selected rows in their order.
    QList<qint32> SelectedReferences() const;
    /// Off at first: a fill shows its rows when it has all of them. On: it shows the first as soon as it has a screen
    /// full of them.
    void SetShowsFirstRows(bool on) { ShowsFirstRows_ = on; }
    /// What becomes of the selection when the selected row is not there any more, where SelectsByReference.
    enum class WhenGone
    {
        SelectNone,
        SelectNext ///< The user took it away himself, and goes on with the next one.
    };
    /// Draws what differs from the rows on show, as the next poll would. Errors as dao::Error.
    void ShowChanges(WhenGone whenGone = WhenGone::SelectNone);

    /// The text that the rows on show must hold; empty for all rows.
    const QString& FindText() const { return FindText_; }
    bool IsFiltered() const { return !FindText_.isEmpty(); }
    /// Shows all rows again.
    void ClearFind();
    /// A fill is under way, and yields.
    bool IsFilling() const { return Filling_; }

    /// The keys of the rows on show, in their order.
    QList<qint32> References() const;
    /// Selects the row of that key. False when it is not on show.
    bool Select(qint32 reference);
    /// Scrolls so far that this row, counted from 1, is the first in view, where there are rows enough.
    void ScrollToRow(int row);
    /// What takes the focus, for a host that moves it between its panes: the tree, and the rows.
    QList<QWidget*> FocusTargets() const;
    /// Moves the focus to the find box, whose text is selected.
    void FocusFind();
    /// Searches for a text, as if it was typed.
    void Find(const QString& text);
    /// What a press of the button for a new entry does.
    void MakeNew();

Q_SIGNALS:
    /// A property changed by its setter; for the form that stores it.
    void PropertyChanged(const QString& Key);
    /// Rows filled so far, of all that the query found.
    void FillProgress(int done, int total);
    /// The rows on show are those of the database, as of now.
    void DisplayUpdated();
    /// A tick has looked whether others changed something, and the rows on show are those of the database.
    void Looked();
    /// A tick, or the kind that was chosen, could not be read. A host that says so in its own words sets IsTold;
    /// otherwise it goes to UserInterface::RunTimeError.
    void ReadingFailed(int ErrorNumber, bool& IsTold);

protected:
    /// The names of a list's controls, which hosts and settings know, and its words.
    struct Parts
    {
        const char* FindCaption;
        const char* New;
        const char* List;
        const char* Tabs;
        const char* Grid;
        const char* Nothing;
        QString Everything; ///< What the find box shows when nothing is searched for.
        QString FindName;   ///< For a screen reader, as the other names.
        QString TreeName;
        QString GridName;
        QString NewIcon;
        QString NewWords;
        QString LoadingWords;
        QString NothingWords;
    };
    /// How a display comes to its rows.
    enum class Reading
    {
        AllRows,    ///< Every row is read.
        ChangedRows ///< Only those that differ from what is on show, when that is the same query.
    };
    /// What a reading of rows found, and what is to be selected behind it.
    struct RowsRead
    {
        bool IsOtherQuery = false; ///< Not that of the rows on show before.
        bool IsFilled = false;     ///< Every row was written.
        int RowToRestore = 1;
        qint32 ReferenceToRestore = 0;
        bool IsRead = false;          ///< The query was opened, and the file answered to its end.
        bool IsSelectionDrawn = true; ///< The host is to hear of the selected row.
        ReadFailures Failures;
    };

    /// source: what errors of events are told to come from. selectedColumn: the one that is current in a selected row.
    StationList(const QString& source, int selectedColumn, QWidget* parent);

    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

    // What a list is. None is called before the list itself is being made.
    virtual qint32 CategoryOnShow() const = 0;
    /// The change stamp of what the list shows.
    virtual Date StoredStamp() const = 0;
    /// Brings the rows on show up to date or fills the grid.
    virtual void ReadRows(Reading reading, RowsRead& read) = 0;
    /// Tells the host what was read. Last: it may destroy the list.
    virtual void TellDisplay(const RowsRead& read) = 0;
    /// Draws a row as it is stored now.
    virtual void DrawStoredRow(int row) = 0;
    /// The current row is another one, or shows something else.
    virtual void TakeSelection() = 0;
    /// Some list of the station polls. True when the rows on show are those of the database behind that.
    virtual bool TakeChanges() = 0;
    virtual void TakePreferencesChange(int flags, const QString& name) = 0;
    virtual void TakeNodeClick(const QString& key) = 0;
    /// What the find box drops down.
    virtual QStringList FindEntries() const = 0;
    virtual void NewCommand() = 0;
    virtual void OpenCommand() = 0;
    virtual void PopUpListMenu(const QPoint& global) = 0;
    virtual void StartGridDrag() = 0;
    virtual bool IsDragStart(const QPointF&) const { return true; }
    virtual void SizeColumns() = 0;
    virtual void SetGridRowHeights() = 0;

    // The station and its user; StationList.cpp.
    /// Shows a station from now on. False for none, which clears the list.
    bool Attach(cTolvaDatabase* database);
    virtual void ConnectDatabase() = 0;
    /// Shows what the user chose last. rowsFollow: another kind than the one on show, so that the rows before it need
    /// not be read. False when the host took this station, or the list, away meanwhile.
    bool ShowChosenByUser(bool rowsFollow, const std::function<void()>& choose);
    clsKVUser* CurrentUser() const { return clsCurrentUser_; }
    bool HasDatabase() const;
    ReadTarget Target() const;
    /// Whether the rows on show are not those of this stamp.
    bool IsBehind(Date stamp) const;
    template <typename Work>
    void Handle(QAnyStringView handler, Work&& work);
    /// The same for what reads rows by itself, which a host may tell in its own way.
    template <typename Work>
    void HandleReading(QAnyStringView handler, Work&& work);
    void TellContainer(const QString& key);
    QAction* Entry(const char* name) const;

    // Reading rows; StationListFill.cpp.
    void Display(Reading reading);
    /// fill counts the rows that it filled.
    void FillGrid(RowsRead& read, const std::function<void(int& filled)>& fill);
    /// Between the rows of a fill. False when they are nobody's any more, or the list itself is gone.
    bool GoesOnFilling(int filled, int total);
    /// Makes room for one row more.
    void AddRow(int filled);
    void ShowRowsOrNone(RowsRead& read);
    void RefreshAllRows();
    /// The user pointed at the selected row. Last: a host may destroy the list.
    virtual void TakeChoice() {}
    /// Puts the rows into the order of ShownRows_. The user keeps his place: at the first row he sees what is new above
    /// it, elsewhere the rows stay under his eyes.
    void Arrange(const std::vector<int>& sources, RowsRead& read);
    /// Tells nobody while the list is busy.
    void SelectRow(int row);
    qint32 ReferenceOfRow(int row) const;

    // The controls; StationListControls.cpp.
    void MakeControls(const Parts& parts);
    void LayOut();
    void LayOutList();

    bool IsReady_ = false; ///< Has its properties.
    bool IsBusy_ = false;  ///< No display begins, and the selection is told to nobody.
    bool RowsFollow_ = false;
    ReadStamp LastStamp_;
    std::vector<ReadRow> ShownRows_; ///< As they were read; one for each row.
    QHash<qint32, int> RowOfReference_;
    qint32 SelectedReference_ = 0;
    qint32 LeftReference_ = 0; ///< Selected until it left the rows, and not told yet.
    bool DoubleHeightRows_ = true;
    bool PrintVisible_ = true;
    QString FindText_; ///< Of the query on show.
    QPointer<cTolvaDatabase> clsTolvaDatabase_;
    QPointer<clsKVUser> clsCurrentUser_;
    bool GridDragging_ = false;

    ToolBar* toolSearch_ = nullptr;
    QWidget* picFind_ = nullptr;
    QLabel* lblFind_ = nullptr;
    FindBox* comboFind_ = nullptr;
    QPushButton* cmdNew_ = nullptr;
    TabStrip* tbsCategories_ = nullptr;
    CategoryTreeView* treeCategories_ = nullptr;
    QWidget* picList_ = nullptr;
    TabStrip* tbsList_ = nullptr;
    FlexGrid* grdList_ = nullptr;
    OverlayPanel* picLoading_ = nullptr;
    OverlayPanel* picNone_ = nullptr;
    QLabel* lblUnread_ = nullptr;
    QTimer* timerUpdateList_ = nullptr; ///< The last of the controls.

private:
    /// Where the user is, by references.
    struct Place
    {
        int Row = 0;
        qint32 Selected = 0;
        QList<qint32> Several;
        int TopRow = 1;
        qint32 AtTop = 0;
    };

    Place PlaceNow() const;
    void GoBackTo(const Place& place, RowsRead& read);
    void SelectSeveral(const QList<qint32>& references);
    void ShowFirstRows(int filled);
    void Detach();
    void SetCurrentUser(clsKVUser* user);
    void Tick();
    void TakePoll(const QObject* asker);
    void ApplyBackColour();
    void ApplyTimer();
    void MakeFindBar(const Parts& parts);
    void ConnectControls();
    void ConnectGrid();
    ListPanes Panes();
    QString EventOf(const QObject& control, const char* event) const;
    void TakeGridMouseDown(Qt::MouseButton button, const QPointF& twips);
    void TakeGridMouseMove(Qt::MouseButtons buttons, const QPointF& twips);
    void TakeGridMouseUp(Qt::MouseButton button);

    QString Source_;
    int SelectedColumn_;
    int Attachments_ = 0; ///< How often the station was set.
    int Restarts_ = 0;    ///< Of a display whose host chose something else in it, one in the other.
    bool Filling_ = false;
    bool SelectsByReference_ = false;
    bool ShowsFirstRows_ = false;
    WhenGone WhenGone_ = WhenGone::SelectNone;
    bool AutoUpdate_ = true;
    qint32 BackColour_ = 0;
    std::optional<QPointF> GridDragStart_; ///< Twips.
};
