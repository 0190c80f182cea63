// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/controls/StationList.h"
#include "platform/Export.h"
#include "prizes/PrizeListCategory.h"

#include <memory>
#include <vector>

class PropertyBag;
class QKeyEvent;
class QMenu;

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
class TOLVA_EXPORT uPrizesList : public StationList
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

    /// The kind on show; 0 until one was chosen, which shows all prizes.
    enPrizeListCategory Category() const { return CurrentCategory_; }
    /// Shows another kind; a value that is none is ignored.
    void SetCategory(enPrizeListCategory category);
    bool DisplayNewPrize() const { return DisplayNewPrize_; }
    void SetDisplayNewPrize(bool shown);

    /// The defaults of a new instance on a form.
    void InitProperties();
    void ReadProperties(const PropertyBag& bag);
    void WriteProperties(PropertyBag& bag) const;

    /// The popup, for a host that shows it in its menu bar too. Its entries bear their names (mnuOpen, …) and are
    /// enabled afresh whenever the menu is about to show.
    QMenu* PrizeMenu() const { return mnuPopupPrize_; }

Q_SIGNALS:
    void NewPrize(const cPrizePtr& clsPrize);
    void OpenPrize(const cPrizePtr& clsPrize);
    /// Null when no prize is selected.
    void PrizeSelected(const cPrizePtr& clsPrize);
    void PrintPrize(const cPrizePtr& clsPrize);
    /// The query could not be opened, for this reason, and the rows on show are those of before; or the file ceased to
    /// answer in the middle of them.
    void DisplayFailed(int errorNumber, const QString& description);

private:
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

    // Making, wiring and properties; uPrizesList.cpp.
    void ConnectDatabase() override;
    bool ShowCategoryOfUser();
    void TakePreferencesChange(int flags, const QString& name) override;
    qint32 CategoryOnShow() const override { return CurrentCategory_; }

    // The query and the filling; PrizesListFill.cpp.
    Date StoredStamp() const override;
    void ReadRows(Reading reading, RowsRead& read) override;
    void TellDisplay(const RowsRead& read) override;
    std::unique_ptr<dao::Recordset> OpenQuery(const QString& columns);
    void Fill(dao::Recordset& rows, RowsRead& read);
    void FillRows(dao::Recordset& rows, int total, int& filled, RowsRead& read);
    void DrawStoredRow(int row) override;

    // What other computers change; PrizesListChanges.cpp.
    bool TakeChanges() override;
    bool DrawChanges(dao::Recordset& light, RowsRead& read);
    static std::vector<Line> ReadLines(dao::Recordset& light);

    // Rows; PrizesListRows.cpp.
    void MakeGridHeader();
    void SizeColumns() override;
    void SetGridRowHeights() override;
    static Line LineOf(const cPrize& prize);
    /// Rows of one kind with the same number show the same.
    ReadRow AsShown(const Line& line) const;
    void DisplayPrize(int row, const cPrizePtr& prize);
    void DrawLine(int row, const Line& line);
    QString SecondLine(const Line& line) const;
    void TakeSelection() override;

    // The tree; PrizesListTree.cpp.
    void TakeNodeClick(const QString& key) override;

    // The grid's keys, mouse and drag; PrizesListGrid.cpp.
    void TakeGridKey(QKeyEvent* event);
    void StartGridDrag() override;

    // The menu; PrizesListMenus.cpp.
    void MakeMenu();
    void EnableMenu();
    void PopUpListMenu(const QPoint& global) override;

    // Commands; PrizesListCommands.cpp.
    cPrizePtr SelectedPrize(bool withWinners) const;
    void NewCommand() override;
    void OpenCommand() override;
    void PrintCommand();
    void CopyCommand();
    void DeleteCommand();

    // The controls; PrizesListLayout.cpp.
    void MakeListControls();
    QStringList FindEntries() const override;

    enPrizeListCategory CurrentCategory_ = static_cast<enPrizeListCategory>(0);
    bool DisplayNewPrize_ = true;
    ListShown Shown_;
    QMenu* mnuPopupPrize_ = nullptr;
};
