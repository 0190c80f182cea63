// SPDX-License-Identifier: Apache-2.0

// The query of the prizes list, and its filling.

#include "common/ClockHelper.h"
#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "platform/records/Recordset.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/ListPanes.h"
#include "platform/widgets/ListReading.h"
#include "platform/widgets/OverlayPanel.h"
#include "platform/widgets/TabStrip.h"
#include "prizes/PrizeQuery.h"
#include "prizes/controls/PrizesListHandler.h"

#include <QLocale>
#include <QScopeGuard>
#include <QTimer>

#include <algorithm>

namespace
{
constexpr int RowsBetweenYields = 25;
constexpr int RowsOfABlock = 500;
constexpr int MostRestarts = 5;
const QString AllColumns = QStringLiteral("*");
/// What DrawChanges compares.
const QString LineColumns = QStringLiteral("[Reference], [Title], [NumberSupplied], [NumberWinners], [LastWonDate]");
} // namespace

void uPrizesList::UpdateDisplay()
{
    Display(Reading::AllRows);
}

void uPrizesList::Display(Reading reading)
{
    if (!Ready_ || !HasDatabase() || Refreshing_ || RowsFollow_)
        return;
    const QPointer<uPrizesList> self(this);
    const ReadTarget target = Target();
    const auto isAbandoned = [&] { return !self || Target() != target; };
    // Not before the host knows the row: what it does then may take its time.
    const auto restartTimer = qScopeGuard([self] {
        if (self && !self->Refreshing_)
            self->ApplyTimer();
    });
    RowsRead read;
    {
        // Ends whatever ends this: an error, the end of the database or of the control itself.
        const ListReading busy(*this, *treeCategories_, *tbsPrizes_, Refreshing_);
        timerUpdateList_->stop();

        read.RowToRestore = grdPrizes_->Row();
        read.ReferenceToRestore = read.RowToRestore >= 1 ? SelectedReference_ : 0;
        FindText_ = comboFind_->TakeText();
        // What is stored while the rows are read may be missing in them: the stamp of before says so at the next tick.
        // Until they are read, whatever ends this leaves a list that the next tick puts right.
        const Date stampBefore = clsTolvaDatabase_->LastPrizeChanged();
        LastPrizeStamp_.Forget();
        ReadRows(reading, read);
        if (!isAbandoned()) {
            if (read.IsRead && read.Failures.Rows() == 0)
                LastPrizeStamp_.Take(stampBefore, target.Opening);
            SelectRow(read.RowToRestore);
        }
    }
    if (isAbandoned()) {
        // Another kind or station was chosen meanwhile, so nobody wants to hear of these rows.
        // A host that chooses anew in each of its events waits for the next tick.
        if (self && Restarts_ < MostRestarts) {
            ++Restarts_;
            const auto ended = qScopeGuard([self] {
                if (self)
                    --self->Restarts_;
            });
            UpdateDisplay();
        }
        return;
    }
    TakeSelectionChange();
    if (!self)
        return;
    if (reading == Reading::AllRows)
        SelectControlText(*comboFind_);
    if (read.IsRead)
        Q_EMIT DisplayUpdated();
    else if (read.Failures.IsUnanswered())
        Q_EMIT DisplayFailed(read.Failures.Error().Number(), read.Failures.Error().Description());
}

/// Brings the rows on show up to date, or fills the list. Where the query cannot be opened they stay.
void uPrizesList::ReadRows(Reading reading, RowsRead& read)
{
    const QPointer<uPrizesList> self(this);
    const ReadTarget target = Target();
    const ListShown wanted{CurrentCategory_, FindText_, target.Opening};
    const bool isOnShow = wanted == Shown_ && static_cast<int>(ShownRows_.size()) == NumberItems();
    const bool compares = reading == Reading::ChangedRows && isOnShow;
    std::unique_ptr<dao::Recordset> rows = OpenQuery(compares ? LineColumns : AllColumns);
    if (rows && compares) {
        if (DrawChanges(*rows, read))
            return;
        rows = OpenQuery(AllColumns);
    }
    if (!self || Target() != target)
        return;
    if (!rows) {
        ShowRowsOrNone(read);
        return;
    }
    Shown_ = wanted;
    Fill(*rows, read);
}

/// Null when the query cannot be opened.
std::unique_ptr<dao::Recordset> uPrizesList::OpenQuery(const QString& columns)
{
    const QString condition = PrizeQuery::Condition(CurrentCategory_, FindText_, ClockHelper::NowUTC());
    try {
        return clsTolvaDatabase_->OpenSnapshot(QStringLiteral("SELECT %1 FROM [Prizes] ").arg(columns) + condition);
    } catch (const dao::Error& error) {
        WriteDebugLog(QStringLiteral("uPrizesList: the list cannot be read - ") + error.Description());
        Q_EMIT DisplayFailed(error.Number(), error.Description());
        return nullptr;
    }
}

void uPrizesList::Fill(dao::Recordset& rows, RowsRead& read)
{
    const QPointer<uPrizesList> self(this);
    picLoading_->SetDetail(QString());
    picLoading_->raise();
    picLoading_->show();
    repaint();
    grdPrizes_->SetRedraw(false);
    Filling_ = true;
    SelectedReference_ = 0;
    RowOfReference_.clear();
    ShownRows_.clear();
    int filled = 0;
    const auto finish = qScopeGuard([&] {
        if (!self)
            return;
        Filling_ = false;
        // Rows of a station that went away meanwhile are nobody's.
        if (!HasDatabase())
            filled = 0;
        grdPrizes_->SetRows(filled + 1);
        ShownRows_.resize(static_cast<std::size_t>(filled));
        grdPrizes_->SetRedraw(true);
        picLoading_->hide();
        ShowRowsOrNone(read);
        ShowUnread(*lblUnread_, read.Failures.Rows());
    });
    // The query's own rows may fail as the prizes may: what was not read is counted.
    PendingError failure;
    int total = 0;
    failure.Try([&] {
        total = rows.RecordCount();
        FillRows(rows, total, filled, read);
    });
    if (failure) {
        read.Failures.Take({failure.Number(), failure.Description()});
        read.Failures.TakeRest(std::max(0, total - filled - read.Failures.Rows()));
    }
    read.IsRead = !read.Failures.IsUnanswered();
}

void uPrizesList::FillRows(dao::Recordset& rows, int total, int& filled, RowsRead& read)
{
    const QPointer<uPrizesList> self(this);
    const ReadTarget target = Target();
    for (; !rows.AtEOF(); rows.MoveNext()) {
        if (filled % RowsBetweenYields == 1) {
            picLoading_->SetDetail(
                QStringLiteral("%1 of %2").arg(QLocale().toString(filled), QLocale().toString(total)));
            Q_EMIT FillProgress(filled, total);
            UserInterface::Current().Yield();
            if (!self || Target() != target)
                return;
        }
        const cPrizePtr prize = clsTolvaDatabase_->GetPrize(rows.Collect(QStringLiteral("Reference")).toInt(), false);
        if (!prize && clsTolvaDatabase_->LastErrorNumber() != 0) {
            if (read.Failures.Take({clsTolvaDatabase_->LastErrorNumber(), clsTolvaDatabase_->LastErrorDescription()}))
                continue;
            read.Failures.TakeRest(total - filled - read.Failures.Rows());
            return;
        }
        if (!prize)
            continue;
        ++filled;
        if (filled + 1 > grdPrizes_->Rows())
            grdPrizes_->SetRows(grdPrizes_->Rows() + RowsOfABlock);
        ShownRows_.emplace_back();
        DisplayPrize(filled, prize);
        if (read.ReferenceToRestore >= 1 && prize->Reference() == read.ReferenceToRestore)
            read.RowToRestore = filled;
    }
}

/// Brings the grid, or the words that there is nothing in it, to the front, and keeps the row to restore within it.
void uPrizesList::ShowRowsOrNone(RowsRead& read)
{
    grdPrizes_->raise();
    const bool isEmpty = grdPrizes_->Rows() < 2;
    picNoPrizes_->setVisible(isEmpty);
    if (isEmpty)
        picNoPrizes_->raise();
    if (read.RowToRestore < 2)
        read.RowToRestore = 1;
    if (read.RowToRestore >= grdPrizes_->Rows())
        read.RowToRestore = grdPrizes_->Rows() - 1;
}

bool uPrizesList::RefreshDisplay(qint32 prizeReference)
{
    if (!clsTolvaDatabase_)
        return false;
    if (prizeReference >= 1) {
        const int row = RowOfReference_.value(prizeReference);
        if (row < 1 || row >= grdPrizes_->Rows())
            return false;
        DisplayPrize(row, clsTolvaDatabase_->GetPrize(prizeReference, false));
        LastPrizeStamp_.Follow(clsTolvaDatabase_->ToldPrizeMove());
        // Last, for it may be news for the host, and then the list may be another one or none.
        grdPrizes_->SetRow(row);
    } else {
        RefreshAllRows();
    }
    return true;
}

void uPrizesList::RefreshAllRows()
{
    const bool wasRefreshing = std::exchange(Refreshing_, true);
    const int row = grdPrizes_->Row();
    const bool redraw = grdPrizes_->Redraw();
    grdPrizes_->SetRedraw(false);
    const auto restore = qScopeGuard([&] {
        SelectRow(row);
        grdPrizes_->SetRedraw(redraw);
        Refreshing_ = wasRefreshing;
    });
    for (int i = 1; i < grdPrizes_->Rows(); ++i)
        DisplayPrize(i, clsTolvaDatabase_->GetPrize(ReferenceOfRow(i), false));
}
