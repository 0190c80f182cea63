// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QTableView>

#include <functional>
#include <memory>
#include <set>
#include <vector>

class FlexGridModel;
class LateTexts;
struct RowMark;

/// A table that is filled cell by cell, with whole rows selected, one at a time unless SetSelectsSeveral. Row 0 is the
/// header: its texts are the headings above the columns, and Rows() counts it. Rows and columns outside the table read
/// as empty (0, false) and ignore being set. Lengths and positions are in twips, positions from the top left corner of
/// the viewport().
///
/// The cells are not edited, sorted, moved or searched by typing: the key of a row may stand in a column that is
/// hidden. It holds its own model (for setAccessibleName() and the like treat it as any widget; do not set another
/// model). One thread; made after the application object.
///
/// With the redraw switch off, what is on the screen stays as it was, what the rows hold changes behind it, and clicks
/// and arrow keys select nothing, since they would not meet what the user sees. Switching on shows all at once. So a
/// fill of any length costs one update of the view.
class FlexGrid : public QTableView
{
    Q_OBJECT

public:
    explicit FlexGrid(QWidget* parent = nullptr);

    /// At least 1. More rows are empty ones at the end, fewer drop the last ones. The scroll position stays where there
    /// are rows for it. A current row that is dropped gives way to the last one left.
    int Rows() const;
    void SetRows(int rows);
    /// Makes the rows those of sources: row i + 1 becomes what row sources[i] + 1 was, an empty one for -1. The current
    /// row stays the one of its number. With redraw off only.
    void ArrangeRows(const std::vector<int>& sources);
    int Cols() const;
    void SetCols(int cols);
    /// A carriage return or line feed begins a second line where setWordWrap is on, and is a blank where it is off.
    QString TextMatrix(int row, int col) const;
    void SetTextMatrix(int row, int col, const QString& text);
    /// Texts of the row's cells from that column on, the same one for all rows, which cost nothing until somebody asks
    /// for one of the row or sees it. Takes the place of texts that were set so before and that nobody has asked for.
    void SetLateTexts(int row, int firstCol, std::unique_ptr<const LateTexts> texts);
    /// Whether the row has such texts that nobody has asked for yet.
    bool HasLateTexts(int row) const;
    /// Off at first: late texts are forgotten when they have been made. On: they are kept, and RemakeLateTexts makes
    /// them anew of what they were made of, as for another width.
    void SetKeepsLateTexts(bool keeps);
    /// Those of a row, while they are kept or nobody has asked for them; null for none.
    const LateTexts* LateTextsOf(int row) const;
    void RemakeLateTexts();

    /// The current row, shown as selected whole; 0 when there is none. Setting never scrolls.
    int Row() const { return Row_; }
    void SetRow(int row);
    int Col() const { return Col_; }
    void SetCol(int col);
    /// Whether the user may select several rows: with Ctrl or Shift by the mouse, with Shift by the keys, all by
    /// Ctrl+A. Off at first. The current row is one of them.
    void SetSelectsSeveral(bool several);
    /// From the first to the last; the current one alone where no others are selected.
    QList<int> SelectedRows() const;
    /// Selects these besides the current row, which stays. Rows that are not there are passed over.
    void SetSelectedRows(const QList<int>& rows);
    /// The first row in view, even in part; 1 when there are none. Setting scrolls, as far down as there are rows; with
    /// redraw off it does so when it goes on.
    int TopRow() const;
    void SetTopRow(int row);
    bool Redraw() const;
    void SetRedraw(bool redraw);

    /// Row 0 is the header. A height of 0 hides the row; a negative one takes its own height away.
    double RowHeight(int row) const;
    void SetRowHeight(int row, double twips);
    /// The height of every row but the header, now and later; takes the heights away that rows have of their own.
    /// Before it is first set, rows are as high as a line of the font needs.
    void SetDefaultRowHeight(double twips);
    /// 0 hides the column.
    double ColWidth(int col) const;
    void SetColWidth(int col, double twips);
    /// Of the column's cells and its heading.
    void SetColAlignment(int col, Qt::Alignment alignment);

    /// The look of the cells firstCol to lastCol of a row other than the header. Colours as SystemColour has them; they
    /// follow the theme when drawn. The text colour is shaded where it could not be read on its background.
    void SetCellBackColour(int row, int firstCol, int lastCol, qint32 colour);
    qint32 CellBackColour(int row, int col) const;
    void SetCellForeColour(int row, int firstCol, int lastCol, qint32 colour);
    qint32 CellForeColour(int row, int col) const;
    void SetCellFontBold(int row, int firstCol, int lastCol, bool bold);
    bool CellFontBold(int row, int col) const;
    /// Drawn in the middle of a cell without text, before the text of another. Use one icon again and again: it is then
    /// kept once. A null icon takes the picture away.
    void SetCellPicture(int row, int col, const QIcon& picture);
    bool HasCellPicture(int row, int col) const;
    /// What a screen reader says of each cell of the row before the cell's own text, such as "unread, urgent".
    void SetRowAccessibleText(int row, const QString& text);
    QString RowAccessibleText(int row) const;
    /// Words that stand at the end of the last line of the row's cell in that column, and that a screen reader says:
    /// asked for whenever a row is seen, and by ShowNotes for those on the screen. The line's own text ends before
    /// them. What it holds between the marks of a first strong isolate is shortened for that, and all else is not: for
    /// as long as a few of the note's words have room, the note is. Null takes them away.
    void SetRowNotes(int col, std::function<QString(int row)> noteOf);
    /// Icons at the end of that line, behind the note; the same holds for them.
    void SetRowMarks(int col, std::function<QList<RowMark>(int row)> marksOf);
    void ShowNotes();

    /// The row under a vertical position; 0 where there is none, and while redraw is off.
    int RowAt(double yTwips) const;
    int RowAtPixel(int y) const;
    /// Ends what a press of the left button began, as its release would, without MouseUp: from then on the pointer
    /// selects nothing until the next press. For a drag of data that starts under a held button.
    void EndMouseTracking();

    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

Q_SIGNALS:
    /// The current cell is another one now, by the user's doing or by code, also while redraw is off.
    void EnterCell();
    /// The user pointed at the current row alone, by mouse, keys or an assistive tool; also at the one that was current
    /// before. After EnterCell.
    void RowChosen(int row);
    /// After the grid has done its part: a press of the left button has made the row under it current; other buttons do
    /// not change the row. Moves are told while a button is down.
    void MouseDown(Qt::MouseButton button, const QPointF& twips);
    void MouseMove(Qt::MouseButtons buttons, const QPointF& twips);
    void MouseUp(Qt::MouseButton button, const QPointF& twips);
    /// Of the left button on a row. A MouseUp follows it, no second MouseDown comes before it.
    void DblClick();
    /// Before the grid handles the key, with the event not accepted. Accepting it keeps the key from the grid and its
    /// parents. The grid itself takes the keys that move the row: arrows, Page Up and Down, Home and End.
    void KeyDown(QKeyEvent* event);
    /// The menu key was pressed.
    void PopupKey();
    /// The place for the rows has another width now, as when a scroll bar came.
    void WidthChanged();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyboardSearch(const QString& search) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event = nullptr) const override;
    void updateGeometries() override;

private:
    void PrepareHeaders();
    void MakeCurrent(int row, int col);
    /// The user's doing: also ends the selection of other rows, or makes them those from the anchor to this one.
    void MakeOnly(int row, int col);
    void ExtendTo(int row);
    void Toggle(int row);
    void ShowCurrent();
    /// The column that stands for the current one in the view, which cannot have a hidden one as its current.
    int ViewColumn() const;
    /// Brings the view's sections in line with the rows' heights that changed.
    void ShowHeights();
    void ShowDefaultHeight();
    void ShowHeaderHeight();
    int PixelHeight(int row) const;
    double DefaultRowHeight() const;
    /// The cell under a position of the viewport becomes current. False when there is none, or this object is gone.
    bool PressCellAt(const QPoint& position, Qt::KeyboardModifiers modifiers);
    QPointF InTwips(const QMouseEvent& event) const;
    /// false: not one of the keys that move the current cell.
    bool Navigate(int key, Qt::KeyboardModifiers modifiers);
    void GoToRow(int row, Qt::KeyboardModifiers modifiers);
    void GoToColumn(int step);
    /// The next row in direction step that has a height, or row itself.
    int NextRow(int row, int step) const;
    int RowAPageFrom(int row, int step) const;

    FlexGridModel* Model_ = nullptr;
    int Row_ = 0;
    int Col_ = 0;
    std::set<int> Selected_; ///< Rows; the current one is taken for selected whether it stands here or not.
    int Anchor_ = 0;
    bool SelectsSeveral_ = false;
    bool NarrowsOnRelease_ = false; ///< The press may begin a drag of all selected rows.
    int PendingTopRow_ = 0;
    double DefaultRowHeight_ = -1;
    std::vector<double> ColWidths_;
    QPoint PressedAt_;
    bool Tracking_ = false;
    bool Following_ = false;
    bool Synchronising_ = false;
};

/// Makes the row under a vertical position current; nothing happens where there is none. extend asks for the rows from
/// the current one on, where a grid can select several: this one selects a single row either way.
void SelectGridRowAt(FlexGrid& grid, double yTwips, bool extend);
