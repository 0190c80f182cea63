// SPDX-License-Identifier: Apache-2.0

// The query of the prizes list, and its filling.

#include "common/ClockHelper.h"
#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "platform/records/Recordset.h"
#include "platform/widgets/FlexGrid.h"
#include "prizes/PrizeQuery.h"
#include "prizes/controls/uPrizesList.h"

#include <algorithm>

namespace
{
const QString AllColumns = QStringLiteral("*");
/// What DrawChanges compares.
const QString LineColumns = QStringLiteral("[Reference], [Title], [NumberSupplied], [NumberWinners], [LastWonDate]");
} // namespace

void uPrizesList::UpdateDisplay()
{
    if (!RowsFollow_)
        Display(Reading::AllRows);
}

Date uPrizesList::StoredStamp() const
{
    return clsTolvaDatabase_->LastPrizeChanged();
}

void uPrizesList::TellDisplay(const RowsRead& read)
{
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
    const ListShown wanted{CurrentCategory_, FindText(), target.Opening};
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
    FillGrid(read, [&](int& filled) {
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
    });
}

void uPrizesList::FillRows(dao::Recordset& rows, int total, int& filled, RowsRead& read)
{
    for (; !rows.AtEOF(); rows.MoveNext()) {
        if (!GoesOnFilling(filled, total))
            return;
        const cPrizePtr prize = clsTolvaDatabase_->GetPrize(rows.Collect(QStringLiteral("Reference")).toInt(), false);
        if (!prize && clsTolvaDatabase_->LastErrorNumber() != 0) {
            if (read.Failures.Take({clsTolvaDatabase_->LastErrorNumber(), clsTolvaDatabase_->LastErrorDescription()}))
                continue;
            read.Failures.TakeRest(total - filled - read.Failures.Rows());
            return;
        }
        if (!prize)
            continue;
        AddRow(++filled);
        ShownRows_.emplace_back();
        DisplayPrize(filled, prize);
        if (read.ReferenceToRestore >= 1 && prize->Reference() == read.ReferenceToRestore)
            read.RowToRestore = filled;
    }
}

bool uPrizesList::RefreshDisplay(qint32 prizeReference)
{
    if (!clsTolvaDatabase_)
        return false;
    if (prizeReference >= 1) {
        const int row = RowOfReference_.value(prizeReference);
        if (row < 1 || row >= grdList_->Rows())
            return false;
        DisplayPrize(row, clsTolvaDatabase_->GetPrize(prizeReference, false));
        LastStamp_.Follow(clsTolvaDatabase_->ToldPrizeMove());
        // Last, for it may be news for the host, and then the list may be another one or none.
        grdList_->SetRow(row);
    } else {
        RefreshAllRows();
    }
    return true;
}

void uPrizesList::DrawStoredRow(int row)
{
    DisplayPrize(row, clsTolvaDatabase_->GetPrize(ReferenceOfRow(row), false));
}
