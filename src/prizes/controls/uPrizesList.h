// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/cTolvaDatabase.h"
#include "database/watch/ListReads.h"
#include "database/watch/RowChanges.h"
#include "platform/Export.h"
#include "platform/directory/clsKVUser.h"
#include "prizes/PrizeListCategory.h"

#include <QHash>
#include <QPointF>
#include <QPointer>
#include <QWidget>

#include <optional>
#include <vector>

class CategoryTreeView;
class FindBox;
class FlexGrid;
class OverlayPanel;
class PropertyBag;
class QAction;
class QKeyEvent;
class QLabel;
class QMenu;
class QPushButton;
class QTimer;
class TabStrip;
class ToolBar;
struct ListPanes;

/// The station's prizes: a tree of five kinds of lists, a find bar and a grid of the prizes of the chosen kind, above
/// all those that may go out in this hour. A host places it on a form, sets TolvaDatabase and takes the events; it
/// edits nothing by itself. It holds no prize: a row shows one that was fetched, and every command fetches it anew. All
/// on the user interface thread.
///
/// What other computers change shows within AutoUpdateInterval, sooner where another list of the station polls more
/// often: the rows that differ are drawn, and where the user is stays. While a long fill runs the window answers: the
/// tree and the tab wait, another UpdateDisplay is dropped, setting another Category begins the fill again.
///
/// A query that cannot be opened leaves the list as it was; DisplayFailed tells it. Rows that could not be read are
/// counted below the others and tried again at each tick. Otherwise events meet their errors
/// by handing them to UserInterface::RunTimeError with the handler's name ("uPrizesList.…") as their source, and
/// operations that a host calls throw nothing.
class TOLVA_EXPORT uPrizesList : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool PrintVisible READ PrintVisible WRITE SetPrintVisible)
    Q_PROPERTY(qint32 BackColour READ BackColour WRITE SetBackColour)
    Q_PROPERTY(bool DoubleHeightRows READ DoubleHeightRows WRITE SetDoubleHeightRows)
    Q_PROPERTY(bool DisplayNewPrize READ DisplayNewPrize WRITE SetDisplayNewPrize)
    Q_PROPERTY(bool AutoUpdate READ AutoUpdate WRITE SetAutoUpdate)
    Q_PROPERTY(float AutoUpdateInterval READ AutoUpdateInterval WRITE SetAutoUpdateInterval)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont)

public:
    /// Ready for use, with the defaults of all properties.
    explicit uPrizesList(QWidget* parent = nullptr);
    ~uPrizesList() override;

    cTolvaDatabase* TolvaDatabase() const { return clsTolvaDatabase_; }
    /// The host owns the database and keeps it while it is set; null clears the list.
    void SetTolvaDatabase(cTolvaDatabase* database);

    /// Reads the list again. Does nothing without an open database and while it is busy.
    void UpdateDisplay();
    /// Draws the row of one prize again and makes it the current one, or draws all rows for 0, without a new query.
    /// False when there is no such row.
    bool RefreshDisplay(qint32 prizeReference = 0);
    /// Fills the tree of kinds again.
    void UpdateCategories();
    /// Back to the start view: the first find text of the box's list, "Available this hour".
    void ResetDisplay();
    void ScrollToTop();
    void ScrollToBottom();

    /// The kind on show; 0 until one was chosen, which shows all prizes.
    enPrizeListCategory Category() const { return CurrentCategory_; }
    /// Shows another kind; a value that is none is ignored.
    void SetCategory(enPrizeListCategory category);
    /// Of the selected prize, 0 for none.
    qint32 SelectedReference() const { return SelectedReference_; }
    /// Two lines a row: the title, and how many are left, or when it was won.
    bool DoubleHeightRows() const { return DoubleHeightRows_; }
    void SetDoubleHeightRows(bool twoLines);
    bool DisplayNewPrize() const { return DisplayNewPrize_; }
    void SetDisplayNewPrize(bool shown);
    bool PrintVisible() const { return PrintVisible_; }
    void SetPrintVisible(bool shown);
    bool AutoUpdate() const { return AutoUpdate_; }
    void SetAutoUpdate(bool on);
    /// Seconds, 0 to 60; others are limited. 0 stops the polling.
    float AutoUpdateInterval() const;
    void SetAutoUpdateInterval(float seconds);
    /// Prize rows.
    qint32 NumberItems() const;
    /// 32-bit colour.
    qint32 BackColour() const { return BackColour_; }
    void SetBackColour(qint32 colour);
    QFont Font() const { return font(); }
    void SetFont(const QFont& font);

    /// The defaults of a new instance on a form.
    void InitProperties();
    void ReadProperties(const PropertyBag& bag);
    void WriteProperties(PropertyBag& bag) const;

    /// The popup, for a host that shows it in its menu bar too. Its entries bear their names (mnuOpen, …) and are
    /// enabled afresh whenever the menu is about to show.
    QMenu* PrizeMenu() const { return mnuPopupPrize_; }
    /// The text that the titles or notes on show must hold; empty for all prizes.
    const QString& FindText() const { return FindText_; }
    bool IsFiltered() const { return !FindText_.isEmpty(); }
    /// Shows all prizes of the kind again.
    void ClearFind();
    /// A fill is under way, and yields.
    bool IsFilling() const { return Filling_; }

Q_SIGNALS:
    void NewPrize(const cPrizePtr& clsPrize);
    void OpenPrize(const cPrizePtr& clsPrize);
    /// Null when no prize is selected.
    void PrizeSelected(const cPrizePtr& clsPrize);
    void PrintPrize(const cPrizePtr& clsPrize);
    /// A property changed by its setter; for the form that stores it.
    void PropertyChanged(const QString& Key);
    /// Rows filled so far, of all that the query found.
    void FillProgress(int done, int total);
    /// The rows on show are those of the database, as of now.
    void DisplayUpdated();
    /// The query could not be opened, for this reason, and the rows on show are those of before; or the file ceased to
    /// answer in the middle of them.
    void DisplayFailed(int errorNumber, const QString& description);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// How a display comes to its rows.
    enum class Reading
    {
        AllRows,    ///< Every prize is read.
        ChangedRows ///< Only those that differ from what is on show, when that is the same list.
    };
    /// What the rows on show are rows of.
    struct ListShown
    {
        enPrizeListCategory Category = static_cast<enPrizeListCategory>(0);
        QString FindText;
        int Opening = 0;

        friend bool operator==(const ListShown&, const ListShown&) = default;
    };
    /// What a row shows of its prize; it stands in columns that are no memos.
    struct Line
    {
        qint32 Reference = 0;
        QString Title;
        qint32 NumberSupplied = 0;
        qint32 NumberWinners = 0;
        Date LastWon;
    };
    /// What a reading of rows found, and what is to be selected behind it.
    struct RowsRead
    {
        int RowToRestore = 1;
        qint32 ReferenceToRestore = 0;
        bool IsRead = false; ///< The query was opened, and the file answered to its end.
        ReadFailures Failures;
    };

    // Making, wiring and properties; uPrizesList.cpp.
    void ConnectDatabase();
    void DisconnectDatabase();
    bool ShowCategoryOfUser();
    void SetCurrentUser(clsKVUser* user);
    bool HasDatabase() const;
    ReadTarget Target() const;
    void TakePreferencesChange(int flags, const QString& name);
    template <typename Work>
    void Handle(const char* handler, Work&& work);
    void TellContainer(const QString& key);
    void ApplyBackColour();
    void ApplyTimer();

    // The query and the filling; PrizesListFill.cpp.
    void Display(Reading reading);
    void ReadRows(Reading reading, RowsRead& read);
    std::unique_ptr<dao::Recordset> OpenQuery(const QString& columns);
    void Fill(dao::Recordset& rows, RowsRead& read);
    void FillRows(dao::Recordset& rows, int total, int& filled, RowsRead& read);
    void ShowRowsOrNone(RowsRead& read);
    void RefreshAllRows();

    // What other computers change; PrizesListChanges.cpp.
    void Tick();
    void TakePoll(const QObject* asker);
    void TakeChanges();
    bool DrawChanges(dao::Recordset& light, RowsRead& read);
    static std::vector<Line> ReadLines(dao::Recordset& light);
    void Arrange(const std::vector<int>& sources, RowsRead& read);

    // Rows; PrizesListRows.cpp.
    void MakeGridHeader();
    void SizeColumns();
    void SetGridRowHeights();
    static Line LineOf(const cPrize& prize);
    /// Rows of one kind with the same number show the same.
    ReadRow AsShown(const Line& line) const;
    void DisplayPrize(int row, const cPrizePtr& prize);
    void DrawLine(int row, const Line& line);
    QString SecondLine(const Line& line) const;
    qint32 ReferenceOfRow(int row) const;
    void SelectRow(int row);
    void TakeSelectionChange();

    // The tree; PrizesListTree.cpp.
    void TakeNodeClick(const QString& key);

    // The grid's keys, mouse and drag; PrizesListGrid.cpp.
    void TakeGridKey(QKeyEvent* event);
    void TakeGridMouseDown(Qt::MouseButton button, const QPointF& twips);
    void TakeGridMouseMove(Qt::MouseButtons buttons, const QPointF& twips);
    void TakeGridMouseUp(Qt::MouseButton button);
    void StartGridDrag();

    // The menu; PrizesListMenus.cpp.
    void MakeMenu();
    void EnableMenu();
    void PopUpMenu(const QPoint& global);
    QAction* Entry(const char* name) const;

    // Commands; PrizesListCommands.cpp.
    cPrizePtr SelectedPrize(bool withWinners) const;
    void NewCommand();
    void OpenCommand();
    void PrintCommand();
    void CopyCommand();
    void DeleteCommand();

    // The controls and their layout; PrizesListLayout.cpp.
    void MakeControls();
    void MakeFindBar();
    void ConnectControls();
    void ConnectGrid();
    void LayOut();
    void LayOutList();
    ListPanes Panes();

    bool Ready_ = false;
    bool Refreshing_ = false;
    bool Filling_ = false;
    bool RowsFollow_ = false; ///< A fill of another kind comes at once, so that this one need not be read.
    bool GridDragging_ = false;
    std::optional<QPointF> GridDragStart_; ///< Twips.
    int Attachments_ = 0;                  ///< How often TolvaDatabase was set.
    int Restarts_ = 0;                     ///< Of a display whose host chose something else in it, one in the other.
    ReadStamp LastPrizeStamp_;
    enPrizeListCategory CurrentCategory_ = static_cast<enPrizeListCategory>(0);
    qint32 SelectedReference_ = 0;
    bool DoubleHeightRows_ = true;
    bool DisplayNewPrize_ = true;
    bool PrintVisible_ = true;
    bool AutoUpdate_ = true;
    qint32 BackColour_ = 0;
    QString FindText_; ///< Of the query on show.
    QHash<qint32, int> RowOfReference_;
    ListShown Shown_;
    std::vector<ReadRow> ShownRows_; ///< As they were read; one for each row.
    QPointer<cTolvaDatabase> clsTolvaDatabase_;
    QPointer<clsKVUser> clsCurrentUser_;

    ToolBar* toolSearch_;
    QWidget* picFind_;
    QLabel* lblFindDesc_;
    FindBox* comboFind_;
    QPushButton* cmdNewPrize_;
    TabStrip* tbsCategories_;
    CategoryTreeView* treeCategories_;
    QWidget* picPrizes_;
    TabStrip* tbsPrizes_;
    FlexGrid* grdPrizes_;
    OverlayPanel* picLoading_;
    OverlayPanel* picNoPrizes_;
    QLabel* lblUnread_;
    QMenu* mnuPopupPrize_ = nullptr;
    QTimer* timerUpdateList_ = nullptr; ///< The last of the controls.
};
