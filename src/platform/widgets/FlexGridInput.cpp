// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/Twips.h"

#include <QApplication>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPointer>

#include <algorithm>
#include <utility>

int FlexGrid::RowAt(double yTwips) const
{
    return RowAtPixel(Twips::ToPixels(*this, yTwips));
}

int FlexGrid::RowAtPixel(int y) const
{
    if (!Redraw() || y < 0 || y >= viewport()->height())
        return 0;
    return rowAt(y) + 1;
}

void SelectGridRowAt(FlexGrid& grid, double yTwips, bool /*extend*/)
{
    const int row = grid.RowAt(yTwips);
    if (row > 0)
        grid.SetRow(row);
}

// ---- Mouse

QPointF FlexGrid::InTwips(const QMouseEvent& event) const
{
    return {Twips::FromPixels(*this, event.position().x()), Twips::FromPixels(*this, event.position().y())};
}

bool FlexGrid::PressCellAt(const QPoint& position, Qt::KeyboardModifiers modifiers)
{
    const int row = RowAtPixel(position.y());
    if (row == 0)
        return false;
    const QPointer<FlexGrid> self(this);
    const int col = columnAt(position.x()) < 0 ? Col_ : columnAt(position.x());
    NarrowsOnRelease_ = false;
    if (SelectsSeveral_ && modifiers.testFlag(Qt::ShiftModifier)) {
        ExtendTo(row);
    } else if (SelectsSeveral_ && modifiers.testFlag(Qt::ControlModifier)) {
        Toggle(row);
    } else if (Selected_.size() > 1 && Selected_.contains(row)) {
        NarrowsOnRelease_ = true;
        MakeCurrent(row, col);
    } else {
        MakeOnly(row, col);
    }
    return !self.isNull();
}

void FlexGrid::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        PressedAt_ = event->position().toPoint();
        Tracking_ = true;
        Following_ = false;
        const QPointer<FlexGrid> self(this);
        PressCellAt(PressedAt_, event->modifiers());
        if (!self)
            return;
    }
    Q_EMIT MouseDown(event->button(), InTwips(*event));
}

void FlexGrid::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint position = event->position().toPoint();
    // A hand that trembles on the edge of a row means the row it pressed.
    if ((position - PressedAt_).manhattanLength() >= QApplication::startDragDistance())
        Following_ = true;
    if (Tracking_ && Following_ && !NarrowsOnRelease_ && event->buttons().testFlag(Qt::LeftButton)) {
        const QPointer<FlexGrid> self(this);
        const int row = RowAtPixel(position.y());
        if (row > 0)
            MakeCurrent(row, Col_);
        if (!self)
            return;
    }
    Q_EMIT MouseMove(event->buttons(), InTwips(*event));
}

void FlexGrid::mouseReleaseEvent(QMouseEvent* event)
{
    const QPointer<FlexGrid> self(this);
    if (event->button() == Qt::LeftButton) {
        const bool narrows = Tracking_ && std::exchange(NarrowsOnRelease_, false);
        EndMouseTracking();
        if (narrows)
            MakeOnly(Row_, Col_);
    }
    if (!self)
        return;
    Q_EMIT MouseUp(event->button(), InTwips(*event));
}

void FlexGrid::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && PressCellAt(event->position().toPoint(), Qt::NoModifier))
        Q_EMIT DblClick();
}

void FlexGrid::EndMouseTracking()
{
    Tracking_ = false;
}

// ---- Keyboard

/// A right click tells by its MouseUp.
void FlexGrid::contextMenuEvent(QContextMenuEvent* event)
{
    if (event->reason() == QContextMenuEvent::Keyboard)
        Q_EMIT PopupKey();
    event->accept();
}

void FlexGrid::keyPressEvent(QKeyEvent* event)
{
    event->ignore();
    const QPointer<FlexGrid> self(this);
    Q_EMIT KeyDown(event);
    if (self && !event->isAccepted() && Navigate(event->key(), event->modifiers()))
        event->accept();
}

void FlexGrid::keyboardSearch(const QString&)
{
    // The rows are found by the controls around the grid; the first column may be a key that nobody sees.
}

QModelIndex FlexGrid::moveCursor(CursorAction, Qt::KeyboardModifiers)
{
    // The view asks for this when it gets the focus with no row current, and then none is to become so.
    return {};
}

bool FlexGrid::Navigate(int key, Qt::KeyboardModifiers modifiers)
{
    switch (key) {
    case Qt::Key_Up:
        GoToRow(NextRow(Row_, -1), modifiers);
        return true;
    case Qt::Key_Down:
        GoToRow(NextRow(Row_, 1), modifiers);
        return true;
    case Qt::Key_PageUp:
        GoToRow(RowAPageFrom(Row_, -1), modifiers);
        return true;
    case Qt::Key_PageDown:
        GoToRow(RowAPageFrom(Row_, 1), modifiers);
        return true;
    case Qt::Key_Home:
        GoToRow(NextRow(0, 1), modifiers);
        return true;
    case Qt::Key_End:
        GoToRow(NextRow(Rows(), -1), modifiers);
        return true;
    case Qt::Key_Left:
        GoToColumn(isRightToLeft() ? 1 : -1);
        return true;
    case Qt::Key_Right:
        GoToColumn(isRightToLeft() ? -1 : 1);
        return true;
    case Qt::Key_A:
        if (!SelectsSeveral_ || !modifiers.testFlag(Qt::ControlModifier) || !Redraw() || Row_ < 1)
            return false;
        Anchor_ = 1;
        for (int row = 1; row < Rows(); ++row)
            Selected_.insert(Selected_.end(), row);
        ShowCurrent();
        return true;
    default:
        return false;
    }
}

void FlexGrid::GoToRow(int row, Qt::KeyboardModifiers modifiers)
{
    if (!Redraw() || row < 1 || row >= Rows())
        return;
    const QPointer<FlexGrid> self(this);
    if (SelectsSeveral_ && modifiers.testFlag(Qt::ShiftModifier))
        ExtendTo(row);
    else
        MakeOnly(row, Col_);
    if (self)
        scrollTo(currentIndex());
}

void FlexGrid::GoToColumn(int step)
{
    if (!Redraw() || Row_ == 0)
        return;
    int col = ViewColumn() + step;
    while (col >= 0 && col < Cols() && isColumnHidden(col))
        col += step;
    if (col < 0 || col >= Cols())
        return;
    const QPointer<FlexGrid> self(this);
    MakeCurrent(Row_, col);
    if (self)
        scrollTo(currentIndex());
}

int FlexGrid::NextRow(int row, int step) const
{
    for (int next = row + step; next >= 1 && next < Rows(); next += step) {
        if (PixelHeight(next) > 0)
            return next;
    }
    return row > 0 || step > 0 ? row : NextRow(0, 1);
}

int FlexGrid::RowAPageFrom(int row, int step) const
{
    if (!Redraw() || row < 1)
        return NextRow(0, 1);
    const QHeaderView* sections = verticalHeader();
    const int page = std::max(viewport()->height() - sections->sectionSize(row - 1), sections->sectionSize(row - 1));
    const int position = sections->sectionPosition(row - 1) + step * page;
    if (position < 0)
        return NextRow(0, 1);
    const int section = sections->logicalIndexAt(position - sections->offset());
    if (section < 0)
        return NextRow(Rows(), -1);
    // Up to the first row that is whole when the present one is the last, so that a page up undoes a page down.
    const bool cut = step < 0 && sections->sectionPosition(section) < position;
    return cut ? std::min(section + 2, NextRow(row, -1)) : section + 1;
}
