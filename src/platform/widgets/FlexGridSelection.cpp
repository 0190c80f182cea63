// SPDX-License-Identifier: Apache-2.0

// The current row of a grid, and the other rows that are selected with it.

#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/FlexGridModel.h"

#include <QPointer>
#include <QScopedValueRollback>

#include <algorithm>

void FlexGrid::SetRow(int row)
{
    if (row >= 0 && row < Rows())
        MakeCurrent(row, Col_);
}

void FlexGrid::SetCol(int col)
{
    if (col >= 0 && col < Cols())
        MakeCurrent(Row_, col);
}

void FlexGrid::MakeCurrent(int row, int col)
{
    if (row == Row_ && col == Col_)
        return;
    // Code that goes to one of the selected rows, such as that which restores the place, leaves the others selected.
    if (!Selected_.contains(row)) {
        Selected_.clear();
        Anchor_ = row;
    }
    Row_ = row;
    Col_ = col;
    if (Redraw())
        ShowCurrent();
    Q_EMIT EnterCell();
}

void FlexGrid::MakeOnly(int row, int col)
{
    const bool hadOthers = !Selected_.empty();
    Selected_.clear();
    Anchor_ = row;
    const QPointer<FlexGrid> self(this);
    MakeCurrent(row, col);
    if (!self)
        return;
    if (hadOthers && Redraw())
        ShowCurrent();
    if (Row_ > 0)
        Q_EMIT RowChosen(Row_);
}

void FlexGrid::ExtendTo(int row)
{
    if (Anchor_ < 1)
        Anchor_ = std::max(Row_, 1);
    Selected_.clear();
    for (int each = std::min(Anchor_, row); each <= std::max(Anchor_, row); ++each)
        Selected_.insert(Selected_.end(), each);
    Row_ == row ? ShowCurrent() : MakeCurrent(row, Col_);
}

/// The current row is always among the selected ones: where it is taken out, the nearest of them becomes current.
void FlexGrid::Toggle(int row)
{
    Selected_.insert(Row_ > 0 ? Row_ : row);
    const bool isTakenOut = row == Row_ || !Selected_.insert(row).second;
    Anchor_ = row;
    if (!isTakenOut || Selected_.size() == 1) {
        Row_ == row ? ShowCurrent() : MakeCurrent(row, Col_);
        return;
    }
    Selected_.erase(row);
    if (row != Row_)
        return ShowCurrent();
    const auto next = Selected_.lower_bound(row);
    MakeCurrent(next == Selected_.end() ? *Selected_.rbegin() : *next, Col_);
}

void FlexGrid::SetSelectsSeveral(bool several)
{
    SelectsSeveral_ = several;
    Selected_.clear();
    setSelectionMode(several ? ExtendedSelection : SingleSelection);
    ShowCurrent();
}

QList<int> FlexGrid::SelectedRows() const
{
    std::set<int> rows = Selected_;
    if (Row_ > 0)
        rows.insert(Row_);
    return {rows.begin(), rows.end()};
}

void FlexGrid::SetSelectedRows(const QList<int>& rows)
{
    if (!SelectsSeveral_)
        return;
    Selected_.clear();
    for (const int row : rows) {
        if (row >= 1 && row < Rows())
            Selected_.insert(row);
    }
    if (Row_ > 0)
        Selected_.insert(Row_);
    if (Redraw())
        ShowCurrent();
}

void FlexGrid::ShowCurrent()
{
    const QScopedValueRollback<bool> guard(Synchronising_, true);
    const QModelIndex index = Row_ > 0 ? Model_->index(Row_ - 1, ViewColumn()) : QModelIndex();
    if (!index.isValid()) {
        selectionModel()->clear();
        return;
    }
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (!SelectsSeveral_ || Selected_.empty())
        return;
    QItemSelection others;
    const QList<int> rows = SelectedRows();
    for (qsizetype first = 0, last = 0; first < rows.size(); first = last + 1) {
        last = first;
        while (last + 1 < rows.size() && rows.at(last + 1) == rows.at(last) + 1)
            ++last;
        others.append(
            QItemSelectionRange(Model_->index(rows.at(first) - 1, 0), Model_->index(rows.at(last) - 1, Cols() - 1)));
    }
    selectionModel()->select(others, QItemSelectionModel::Select);
}

int FlexGrid::ViewColumn() const
{
    if (!isColumnHidden(Col_))
        return Col_;
    int visible = -1;
    for (int col = Cols() - 1; col >= 0; --col) {
        // A column with a heading has something to say to a screen reader.
        if (!isColumnHidden(col) && (visible < 0 || !TextMatrix(0, col).isEmpty() || TextMatrix(0, visible).isEmpty()))
            visible = col;
    }
    return visible < 0 ? Col_ : visible;
}

void FlexGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QTableView::currentChanged(current, previous);
    if (!Synchronising_ && current.isValid() && current.row() + 1 < Rows())
        MakeCurrent(current.row() + 1, current.column());
}

void FlexGrid::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QTableView::selectionChanged(selected, deselected);
    // An assistive tool selects a row without making it current.
    if (Synchronising_ || selected.isEmpty())
        return;
    const QPointer<FlexGrid> self(this);
    SetRow(selected.first().top() + 1);
    if (self)
        Q_EMIT RowChosen(Row_);
}

QItemSelectionModel::SelectionFlags FlexGrid::selectionCommand(const QModelIndex& index, const QEvent*) const
{
    return index.isValid() ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows
                           : QItemSelectionModel::SelectionFlags(QItemSelectionModel::NoUpdate);
}
