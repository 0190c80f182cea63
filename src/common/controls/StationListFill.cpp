// SPDX-License-Identifier: Apache-2.0

// The road of a list from its query to its rows.

#include "common/UserInterface.h"
#include "common/controls/StationList.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/ListPanes.h"
#include "platform/widgets/ListReading.h"
#include "platform/widgets/OverlayPanel.h"
#include "platform/widgets/TabStrip.h"

#include <QLocale>
#include <QScopeGuard>
#include <QTimer>

#include <utility>

namespace
{
constexpr int RowsBetweenYields = 25;
constexpr int RowsOfABlock = 500;
constexpr int MostRestarts = 5;
constexpr int KeyColumn = 0;
/// More than any screen shows.
constexpr int FirstRows = 125;
} // namespace

void StationList::Display(Reading reading)
{
    if (!IsReady_ || !HasDatabase() || IsBusy_)
        return;
    const QPointer<StationList> self(this);
    const ReadTarget target = Target();
    const auto isAbandoned = [&] { return !self || Target() != target; };
    // Not before the host knows the row: what it does then may take its time.
    const auto restartTimer = qScopeGuard([self] {
        if (self && !self->IsBusy_)
            self->ApplyTimer();
    });
    RowsRead read;
    {
        // Ends whatever ends this: an error, the end of the database or of the control itself.
        const ListReading busy(*this, *treeCategories_, *tbsList_, IsBusy_);
        timerUpdateList_->stop();

        read.RowToRestore = grdList_->Row();
        read.ReferenceToRestore = read.RowToRestore >= 1 ? SelectedReference_ : 0;
        const Place place = PlaceNow();
        LeftReference_ = 0;
        FindText_ = comboFind_->TakeText();
        // What is stored while the rows are read may be missing in them: the stamp of before says so at the next tick.
        // Until they are read, whatever ends this leaves a list that the next tick puts right.
        const Date stampBefore = StoredStamp();
        LastStamp_.Forget();
        ReadRows(reading, read);
        if (!isAbandoned()) {
            if (read.IsRead && read.Failures.Rows() == 0)
                LastStamp_.Take(stampBefore, target.Opening);
            if (SelectsByReference_)
                GoBackTo(place, read);
            SelectRow(read.RowToRestore);
            if (place.Several.size() > 1 && !read.IsOtherQuery && read.RowToRestore > 0)
                SelectSeveral(place.Several);
        }
    }
    if (isAbandoned()) {
        // Another kind or station was chosen meanwhile, so nobody wants to hear of these rows. A host that chooses
        // anew in each of its events waits for the next tick.
        if (self && Restarts_ < MostRestarts) {
            ++Restarts_;
            const auto ended = qScopeGuard([self] {
                if (self)
                    --self->Restarts_;
            });
            Display(Reading::AllRows);
        }
        return;
    }
    if (read.IsSelectionDrawn)
        TakeSelection();
    if (!self)
        return;
    if (reading == Reading::AllRows)
        SelectControlText(*comboFind_);
    TellDisplay(read);
}

StationList::Place StationList::PlaceNow() const
{
    Place place;
    place.Row = grdList_->Row();
    place.Selected = place.Row >= 1 ? SelectedReference_ : 0;
    place.Several = SelectedReferences();
    place.TopRow = grdList_->TopRow();
    place.AtTop = ReferenceOfRow(place.TopRow);
    return place;
}

/// Decides what is selected behind a reading, and what is at the top.
void StationList::GoBackTo(const Place& place, RowsRead& read)
{
    const int row = RowOfReference_.value(place.Selected);
    if (row >= 1 && row < grdList_->Rows()) {
        read.RowToRestore = row;
    } else if (read.IsOtherQuery) {
        read.RowToRestore = std::min(1, grdList_->Rows() - 1);
    } else if (place.Row < 1 || read.Failures.Rows() > 0) {
        // What could not be read may be there still.
        read.RowToRestore = 0;
        read.IsSelectionDrawn = false;
    } else if (WhenGone_ == WhenGone::SelectNone) {
        read.RowToRestore = 0;
        read.IsSelectionDrawn = true;
        LeftReference_ = place.Selected;
    }
    if (read.IsOtherQuery)
        grdList_->SetTopRow(std::max(1, row));
    else if (const int top = RowOfReference_.value(place.AtTop); read.IsFilled && place.TopRow > 1 && top >= 1)
        grdList_->SetTopRow(top);
}

void StationList::SelectSeveral(const QList<qint32>& references)
{
    QList<int> rows;
    for (const qint32 reference : references)
        rows.append(RowOfReference_.value(reference));
    grdList_->SetSelectedRows(rows);
}

void StationList::ShowChanges(WhenGone whenGone)
{
    const QPointer<StationList> self(this);
    const WhenGone before = std::exchange(WhenGone_, whenGone);
    const auto restore = qScopeGuard([self, before] {
        if (self)
            self->WhenGone_ = before;
    });
    Display(Reading::ChangedRows);
}

void StationList::FillGrid(RowsRead& read, const std::function<void(int& filled)>& fill)
{
    const QPointer<StationList> self(this);
    picLoading_->SetDetail(QString());
    // What is on show stays there while the same rows are read again.
    if (!ShowsFirstRows_ || read.IsOtherQuery) {
        picLoading_->raise();
        picLoading_->show();
        repaint();
    }
    grdList_->SetRedraw(false);
    Filling_ = true;
    timerUpdateList_->stop(); // a host that heard of the query may have started it
    SelectedReference_ = 0;
    RowOfReference_.clear();
    ShownRows_.clear();
    read.IsFilled = true;
    int filled = 0;
    const auto finish = qScopeGuard([&] {
        if (!self)
            return;
        Filling_ = false;
        // Rows of a station that went away meanwhile are nobody's.
        if (!HasDatabase())
            filled = 0;
        grdList_->SetRows(filled + 1);
        ShownRows_.resize(static_cast<std::size_t>(filled));
        grdList_->SetRedraw(true);
        picLoading_->hide();
        ShowRowsOrNone(read);
        ShowUnread(*lblUnread_, read.Failures.Rows());
    });
    fill(filled);
}

bool StationList::GoesOnFilling(int filled, int total)
{
    if (filled % RowsBetweenYields != 1)
        return true;
    if (ShowsFirstRows_ && filled > FirstRows && picLoading_->isVisible())
        ShowFirstRows(filled);
    const QPointer<StationList> self(this);
    const ReadTarget target = Target();
    picLoading_->SetDetail(QStringLiteral("%1 of %2").arg(QLocale().toString(filled), QLocale().toString(total)));
    Q_EMIT FillProgress(filled, total);
    UserInterface::Current().Yield();
    return self && Target() == target;
}

void StationList::AddRow(int filled)
{
    if (filled + 1 > grdList_->Rows())
        grdList_->SetRows(grdList_->Rows() + RowsOfABlock);
}

/// The user reads while the others come.
void StationList::ShowFirstRows(int filled)
{
    grdList_->SetRows(filled + 1);
    SelectRow(1);
    grdList_->SetRedraw(true);
    grdList_->SetTopRow(1);
    picLoading_->hide();
    grdList_->raise();
    repaint();
    grdList_->SetRedraw(false);
}

/// Brings the grid, or the words that there is nothing in it, to the front, and keeps the row to restore within it.
void StationList::ShowRowsOrNone(RowsRead& read)
{
    grdList_->raise();
    const bool isEmpty = grdList_->Rows() < 2 && read.Failures.Rows() == 0;
    picNone_->setVisible(isEmpty);
    if (isEmpty)
        picNone_->raise();
    if (read.RowToRestore < 2)
        read.RowToRestore = 1;
    if (read.RowToRestore >= grdList_->Rows())
        read.RowToRestore = grdList_->Rows() - 1;
}

void StationList::RefreshAllRows()
{
    const bool wasBusy = std::exchange(IsBusy_, true);
    const int row = grdList_->Row();
    const bool redraw = grdList_->Redraw();
    grdList_->SetRedraw(false);
    const auto restore = qScopeGuard([&] {
        SelectRow(row);
        grdList_->SetRedraw(redraw);
        IsBusy_ = wasBusy;
    });
    for (int i = 1; i < grdList_->Rows(); ++i)
        DrawStoredRow(i);
}

void StationList::Arrange(const std::vector<int>& sources, RowsRead& read)
{
    const int topRow = grdList_->TopRow();
    const qint32 atTop = ReferenceOfRow(topRow);
    grdList_->ArrangeRows(sources);
    RowOfReference_.clear();
    for (std::size_t i = 0; i < ShownRows_.size(); ++i)
        RowOfReference_.insert(ShownRows_[i].Reference, static_cast<int>(i) + 1);
    read.RowToRestore = RowOfReference_.value(read.ReferenceToRestore, read.RowToRestore);
    if (topRow > 1 && RowOfReference_.value(atTop, topRow) != topRow)
        grdList_->SetTopRow(RowOfReference_.value(atTop));
}

void StationList::SelectRow(int row)
{
    grdList_->SetRow(row);
    grdList_->SetCol(SelectedColumn_);
}

qint32 StationList::ReferenceOfRow(int row) const
{
    return grdList_->TextMatrix(row, KeyColumn).toInt();
}
