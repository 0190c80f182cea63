// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/FlexGrid.h"

#include "platform/widgets/FlexGridDelegate.h"
#include "platform/widgets/FlexGridModel.h"
#include "platform/widgets/Twips.h"

#include <QEvent>
#include <QHeaderView>
#include <QResizeEvent>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>

namespace
{
/// Above and below the line of text in a row of the default height.
constexpr int RowPadding = 4;
} // namespace

FlexGrid::FlexGrid(QWidget* parent) : QTableView(parent), Model_(new FlexGridModel(this))
{
    setModel(Model_);
    setItemDelegate(new FlexGridDelegate(this));
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setDragDropMode(NoDragDrop);
    setTabKeyNavigation(false);
    // Only the user's keys scroll to the current row, and they do so themselves.
    setAutoScroll(false);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    setShowGrid(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    PrepareHeaders();
}

void FlexGrid::PrepareHeaders()
{
    for (QHeaderView* header : {verticalHeader(), horizontalHeader()}) {
        header->setSectionResizeMode(QHeaderView::Fixed);
        header->setMinimumSectionSize(0);
        header->setHighlightSections(false);
        header->setSectionsMovable(false);
        header->setSectionsClickable(false);
    }
    verticalHeader()->hide();
    ShowDefaultHeight();
}

// ---- Rows, columns, texts

int FlexGrid::Rows() const
{
    return Model_->Rows();
}

void FlexGrid::SetRows(int rows)
{
    {
        const QScopedValueRollback<bool> guard(Synchronising_, true);
        Model_->SetRows(rows);
    }
    Selected_.erase(Selected_.lower_bound(Rows()), Selected_.end());
    if (Redraw())
        ShowHeights();
    if (Row_ >= Rows())
        MakeCurrent(Rows() - 1, Col_);
}

void FlexGrid::ArrangeRows(const std::vector<int>& sources)
{
    Model_->ArrangeRows(sources);
    std::set<int> selected;
    int anchor = 0;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const int row = static_cast<int>(i) + 1;
        if (Selected_.contains(sources[i] + 1))
            selected.insert(selected.end(), row);
        if (sources[i] + 1 == Anchor_ && Anchor_ > 0)
            anchor = row;
    }
    Selected_.swap(selected);
    Anchor_ = anchor;
    if (Row_ >= Rows())
        MakeCurrent(Rows() - 1, Col_);
}

int FlexGrid::Cols() const
{
    return Model_->Cols();
}

void FlexGrid::SetCols(int cols)
{
    const int present = Cols();
    {
        const QScopedValueRollback<bool> guard(Synchronising_, true);
        Model_->SetCols(cols);
    }
    ColWidths_.resize(static_cast<size_t>(Cols()), -1);
    for (int col = present; col < Cols(); ++col)
        setColumnHidden(col, false);
    if (Redraw())
        ShowCurrent();
    if (Col_ >= Cols())
        MakeCurrent(Row_, std::max(Cols() - 1, 0));
}

QString FlexGrid::TextMatrix(int row, int col) const
{
    return Model_->Text(row, col);
}

void FlexGrid::SetTextMatrix(int row, int col, const QString& text)
{
    Model_->SetText(row, col, text);
}

void FlexGrid::SetLateTexts(int row, int firstCol, std::unique_ptr<const LateTexts> texts)
{
    Model_->SetLateTexts(row, firstCol, std::move(texts));
}

bool FlexGrid::HasLateTexts(int row) const
{
    return Model_->HasLateTexts(row);
}

void FlexGrid::SetKeepsLateTexts(bool keeps)
{
    Model_->SetKeepsLateTexts(keeps);
}

const LateTexts* FlexGrid::LateTextsOf(int row) const
{
    return Model_->LateTextsOf(row);
}

void FlexGrid::RemakeLateTexts()
{
    Model_->RemakeLateTexts();
    viewport()->update();
}

// ---- Showing

bool FlexGrid::Redraw() const
{
    return !Model_->IsCollecting();
}

void FlexGrid::SetRedraw(bool redraw)
{
    if (redraw == Redraw())
        return;
    if (!redraw) {
        Model_->SetCollecting(true);
        viewport()->setUpdatesEnabled(false);
        return;
    }
    {
        const QScopedValueRollback<bool> guard(Synchronising_, true);
        Model_->SetCollecting(false);
    }
    ShowHeights();
    ShowCurrent();
    if (PendingTopRow_ > 0)
        SetTopRow(std::exchange(PendingTopRow_, 0));
    viewport()->setUpdatesEnabled(true);
}

int FlexGrid::TopRow() const
{
    if (PendingTopRow_ > 0)
        return PendingTopRow_;
    return std::max(1, verticalHeader()->logicalIndexAt(0) + 1);
}

void FlexGrid::SetTopRow(int row)
{
    if (row < 1 || row >= Rows())
        return;
    if (!Redraw()) {
        PendingTopRow_ = row;
        return;
    }
    executeDelayedItemsLayout();
    updateGeometries();
    verticalScrollBar()->setValue(verticalHeader()->sectionPosition(row - 1));
}

void FlexGrid::updateGeometries()
{
    QTableView::updateGeometries();
    // Without a bar the user could not get back from where the pointer's wheel or an arrow key took the view.
    if (horizontalScrollBarPolicy() == Qt::ScrollBarAlwaysOff)
        horizontalScrollBar()->setRange(0, 0);
}

void FlexGrid::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    // The rows may have changed since the scroll bar was last told.
    updateGeometries();
    QTableView::scrollTo(index, hint);
}

// ---- Lengths

double FlexGrid::DefaultRowHeight() const
{
    return DefaultRowHeight_ >= 0 ? DefaultRowHeight_
                                  : Twips::FromPixels(*this, fontMetrics().lineSpacing() + 2 * RowPadding);
}

double FlexGrid::RowHeight(int row) const
{
    if (row < 0 || row >= Rows())
        return 0;
    const float own = Model_->RowHeight(row);
    if (own >= 0)
        return static_cast<double>(own);
    return row == 0 ? Twips::FromPixels(*this, horizontalHeader()->sizeHint().height()) : DefaultRowHeight();
}

void FlexGrid::SetRowHeight(int row, double twips)
{
    Model_->SetRowHeight(row, static_cast<float>(twips));
    if (row == 0)
        ShowHeaderHeight();
    else if (Redraw())
        ShowHeights();
}

void FlexGrid::ShowHeaderHeight()
{
    const float own = Model_->RowHeight(0);
    const int pixels = Twips::ToPixels(*this, static_cast<double>(own));
    horizontalHeader()->setMinimumHeight(own < 0 ? 0 : pixels);
    horizontalHeader()->setMaximumHeight(own < 0 ? QWIDGETSIZE_MAX : pixels);
    updateGeometries();
}

void FlexGrid::SetDefaultRowHeight(double twips)
{
    DefaultRowHeight_ = twips;
    Model_->ClearRowHeights();
    ShowDefaultHeight();
}

void FlexGrid::ShowDefaultHeight()
{
    // This makes all sections alike, those of rows with a height of their own too.
    verticalHeader()->setDefaultSectionSize(Twips::ToPixels(*this, DefaultRowHeight()));
    Model_->MarkRowHeights();
    if (Redraw())
        ShowHeights();
}

int FlexGrid::PixelHeight(int row) const
{
    return Twips::ToPixels(*this, RowHeight(row));
}

void FlexGrid::ShowHeights()
{
    const RowRange changed = Model_->TakeChangedHeights();
    if (changed.IsEmpty())
        return;
    QHeaderView* sections = verticalHeader();
    // A header that may draw looks up each section's position as it is resized, and that goes through all of them.
    sections->setUpdatesEnabled(false);
    for (int row = changed.First; row <= changed.Last; ++row)
        sections->resizeSection(row - 1, PixelHeight(row));
    sections->setUpdatesEnabled(true);
}

double FlexGrid::ColWidth(int col) const
{
    if (col < 0 || col >= Cols())
        return 0;
    const double own = ColWidths_[static_cast<size_t>(col)];
    return own >= 0 ? own : Twips::FromPixels(*this, horizontalHeader()->defaultSectionSize());
}

void FlexGrid::SetColWidth(int col, double twips)
{
    if (col < 0 || col >= Cols() || twips < 0)
        return;
    ColWidths_[static_cast<size_t>(col)] = twips;
    const int pixels = Twips::ToPixels(*this, twips);
    setColumnHidden(col, pixels == 0);
    if (pixels > 0)
        setColumnWidth(col, pixels);
    if (Redraw())
        ShowCurrent();
}

void FlexGrid::SetColAlignment(int col, Qt::Alignment alignment)
{
    Model_->SetAlignment(col, alignment);
}

void FlexGrid::changeEvent(QEvent* event)
{
    QTableView::changeEvent(event);
    if ((event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) && DefaultRowHeight_ < 0)
        ShowDefaultHeight();
}

/// Of the viewport, as with every scroll area.
void FlexGrid::resizeEvent(QResizeEvent* event)
{
    QTableView::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        Q_EMIT WidthChanged();
}

// ---- Cells

void FlexGrid::SetCellBackColour(int row, int firstCol, int lastCol, qint32 colour)
{
    Model_->SetBackColour(row, firstCol, lastCol, colour);
}

qint32 FlexGrid::CellBackColour(int row, int col) const
{
    return Model_->Style(row, col).BackColour;
}

void FlexGrid::SetCellForeColour(int row, int firstCol, int lastCol, qint32 colour)
{
    Model_->SetForeColour(row, firstCol, lastCol, colour);
}

qint32 FlexGrid::CellForeColour(int row, int col) const
{
    return Model_->Style(row, col).ForeColour;
}

void FlexGrid::SetCellFontBold(int row, int firstCol, int lastCol, bool bold)
{
    Model_->SetBold(row, firstCol, lastCol, bold);
}

bool FlexGrid::CellFontBold(int row, int col) const
{
    return Model_->Style(row, col).Bold;
}

void FlexGrid::SetCellPicture(int row, int col, const QIcon& picture)
{
    Model_->SetPicture(row, col, picture);
}

bool FlexGrid::HasCellPicture(int row, int col) const
{
    return Model_->Style(row, col).Picture >= 0;
}

void FlexGrid::SetRowAccessibleText(int row, const QString& text)
{
    Model_->SetRowAccessibleText(row, text);
}

QString FlexGrid::RowAccessibleText(int row) const
{
    return Model_->RowAccessibleText(row);
}

void FlexGrid::SetRowNotes(int col, std::function<QString(int row)> noteOf)
{
    Model_->SetNotes(col, std::move(noteOf));
    ShowNotes();
}

void FlexGrid::SetRowMarks(int col, std::function<QList<RowMark>(int row)> marksOf)
{
    Model_->SetMarks(col, std::move(marksOf));
    ShowNotes();
}

void FlexGrid::ShowNotes()
{
    viewport()->update();
}
