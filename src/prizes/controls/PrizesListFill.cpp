// SPDX-License-Identifier: Apache-2.0

// The query of the prizes list, its filling, and keeping it in step with what other computers change.

#include "common/ClockHelper.h"
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
const QString AllOfTable = QStringLiteral("SELECT * FROM [Prizes] ");
const QString NoneOfTable = QStringLiteral("SELECT [Reference] FROM [Prizes] WHERE ([Reference]=0) ");
} // namespace

void uPrizesList::UpdateDisplay()
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
    bool isRead = false;
    ReadFailures failures;
    {
        // Ends whatever ends this: an error, the end of the database or of the control itself.
        const ListReading reading(*this, *treeCategories_, *tbsPrizes_, Refreshing_);
        timerUpdateList_->stop();

        int rowToRestore = grdPrizes_->Row();
        const qint32 referenceToRestore = rowToRestore >= 1 ? SelectedReference_ : 0;
        SelectedReference_ = 0;
        FindText_ = comboFind_->TakeText();
        // What is stored while the rows are read may be missing in them: the stamp of before says so at the next tick.
        // Until they are read, whatever ends this leaves a list that the next tick puts right.
        const Date stampBefore = clsTolvaDatabase_->LastPrizeChanged();
        LastPrizeStamp_.Forget();
        if (const auto rows = OpenQuery()) {
            Fill(*rows, rowToRestore, referenceToRestore, failures);
            isRead = !failures.IsUnanswered();
        } else if (!isAbandoned()) {
            ShowRows(rowToRestore);
        }
        if (!isAbandoned()) {
            if (isRead && failures.Rows() == 0)
                LastPrizeStamp_.Take(stampBefore, target.Opening);
            SelectRow(rowToRestore);
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
    SelectControlText(*comboFind_);
    if (isRead)
        Q_EMIT DisplayUpdated();
    else if (failures.IsUnanswered())
        Q_EMIT DisplayFailed(failures.Error().Number(), failures.Error().Description());
}

/// Null when the query cannot be opened.
std::unique_ptr<dao::Recordset> uPrizesList::OpenQuery()
{
    const QString condition = PrizeQuery::Condition(CurrentCategory_, FindText_, ClockHelper::NowUTC());
    try {
        return clsTolvaDatabase_->OpenSnapshot(AllOfTable + condition);
    } catch (const dao::Error& error) {
        WriteDebugLog(QStringLiteral("uPrizesList: the list cannot be read - ") + error.Description());
        Q_EMIT DisplayFailed(error.Number(), error.Description());
        return nullptr;
    }
}

void uPrizesList::Fill(dao::Recordset& rows, int& rowToRestore, qint32 referenceToRestore, ReadFailures& failures)
{
    const QPointer<uPrizesList> self(this);
    picLoading_->SetDetail(QString());
    picLoading_->raise();
    picLoading_->show();
    repaint();
    grdPrizes_->SetRedraw(false);
    Filling_ = true;
    RowOfReference_.clear();
    int filled = 0;
    const auto finish = qScopeGuard([&] {
        if (!self)
            return;
        Filling_ = false;
        // Rows of a station that went away meanwhile are nobody's.
        if (!HasDatabase())
            filled = 0;
        grdPrizes_->SetRows(filled + 1);
        grdPrizes_->SetRedraw(true);
        picLoading_->hide();
        ShowRows(rowToRestore);
        ShowUnread(*lblUnread_, failures.Rows());
    });
    FillRows(rows, filled, rowToRestore, referenceToRestore, failures);
}

void uPrizesList::FillRows(dao::Recordset& rows, int& filled, int& rowToRestore, qint32 referenceToRestore,
                           ReadFailures& failures)
{
    const QPointer<uPrizesList> self(this);
    const ReadTarget target = Target();
    const int total = rows.RecordCount();
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
            if (failures.Take({clsTolvaDatabase_->LastErrorNumber(), clsTolvaDatabase_->LastErrorDescription()}))
                continue;
            failures.TakeRest(total - filled - failures.Rows());
            return;
        }
        if (!prize)
            continue;
        ++filled;
        if (filled + 1 > grdPrizes_->Rows())
            grdPrizes_->SetRows(grdPrizes_->Rows() + RowsOfABlock);
        DisplayPrize(filled, prize);
        if (referenceToRestore >= 1 && prize->Reference() == referenceToRestore)
            rowToRestore = filled;
    }
}

/// Brings the grid, or the words that there is nothing in it, to the front, and keeps the row to restore within it.
void uPrizesList::ShowRows(int& rowToRestore)
{
    grdPrizes_->raise();
    const bool isEmpty = grdPrizes_->Rows() < 2;
    picNoPrizes_->setVisible(isEmpty);
    if (isEmpty)
        picNoPrizes_->raise();
    if (rowToRestore < 2)
        rowToRestore = 1;
    if (rowToRestore >= grdPrizes_->Rows())
        rowToRestore = grdPrizes_->Rows() - 1;
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

void uPrizesList::Tick()
{
    // A fill would take half a find text and select it under the typing hand. It comes with the tick behind.
    if (!HasDatabase() || comboFind_->IsBeingTyped())
        return;
    const Date stamp = clsTolvaDatabase_->LastPrizeChanged();
    if (stamp.IsNone()) {
        // No stamp, or no answer: a station that cannot be reached must say so rather than be written to.
        clsTolvaDatabase_->OpenSnapshot(NoneOfTable);
        clsTolvaDatabase_->SetLastPrizeChanged(ClockHelper::CurrentTime());
    }
    if (stamp.IsNone() || !LastPrizeStamp_.IsStill(stamp, clsTolvaDatabase_->Openings()))
        UpdateDisplay();
}
