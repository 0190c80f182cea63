// SPDX-License-Identifier: Apache-2.0

// Filling the messages list.

#include "database/cTolvaDatabase.h"
#include "messageslist/MessageLook.h"
#include "messageslist/MessagesListHandler.h"
#include "messageslist/uMessagesList.h"
#include "platform/records/Recordset.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/ListPanes.h"
#include "platform/widgets/ListReading.h"
#include "platform/widgets/OverlayPanel.h"
#include "platform/widgets/TabStrip.h"

#include <QLocale>
#include <QScopeGuard>
#include <QTimer>

#include <algorithm>

namespace
{
constexpr int RowsBetweenYields = 25;
constexpr int RowsOfABlock = 500;
constexpr int MostRestarts = 5;
const QString SentNode = QStringLiteral("c4");
} // namespace

void uMessagesList::UpdateDisplay()
{
    Display(Reading::AllRows);
}

void uMessagesList::Display(Reading reading)
{
    if (!Initialised_ || !HasDatabase() || DisplayBusy_)
        return;
    const QPointer<uMessagesList> self(this);
    const ReadTarget target = Target();
    const auto isAbandoned = [&] { return !self || Target() != target; };
    // Not before the host knows the row: what it does then may take its time.
    const auto restartTimer = qScopeGuard([self] {
        if (self && !self->DisplayBusy_)
            self->ApplyTimer();
    });
    RowsRead read;
    {
        // Ends whatever ends this: an error, the end of the database or of the control itself.
        const ListReading busy(*this, *treeCategories_, *tbsMessages_, DisplayBusy_);
        timerUpdateList_->stop();

        read.RowToRestore = grdMessages_->Row();
        read.ReferenceToRestore = read.RowToRestore >= 1 ? CurrentSelectedReference_ : 0;
        // What is stored while the rows are read may be missing in them: the stamp of before says so at the next tick.
        // Until they are read, whatever ends this leaves a list that the next tick puts right.
        const Date stampBefore = clsTolvaDatabase_->LastMessageChanged();
        LastChangedStamp_.Forget();
        UpdateTrashImage();
        const Query query = MakeQuery();
        CurrentQuery_ = query.Condition + QLatin1Char(' ') + query.Order;
        Q_EMIT UpdateDisplay(CurrentQuery_);
        if (!isAbandoned() && DisplayMessageList_ && !RowsFollow_ &&
            (reading == Reading::AllRows || !DrawChanges(query, read)))
            Fill(query, read);
        if (!isAbandoned()) {
            if (read.Failures.Rows() == 0)
                LastChangedStamp_.Take(stampBefore, target.Opening);
            SelectRow(read.RowToRestore);
        }
    }
    if (isAbandoned()) {
        // Another folder or station was chosen meanwhile, so nobody wants to hear of these rows. A host that chooses
        // anew in each of its events waits for the next tick.
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
    if (read.IsSelectionDrawn)
        TakeCellChange();
    if (!self)
        return;
    if (reading == Reading::AllRows)
        SelectControlText(*comboFind_);
    if (read.Failures.IsUnanswered())
        throw dao::Error(read.Failures.Error());
    Q_EMIT DisplayUpdated();
}

/// The picture of the bin stands at the folder of sent messages, and tells whether that one holds any: one is enough.
void uMessagesList::UpdateTrashImage()
{
    const auto sent =
        clsTolvaDatabase_->OpenSnapshot(QStringLiteral("SELECT TOP 1 [Reference] FROM [Messages] WHERE [Category]=4"));
    const QIcon icon = Icons::Get(sent->RecordCount() < 1 ? QStringLiteral("trash") : QStringLiteral("trashfull"));
    treeCategories_->SetNodeIcons(SentNode, icon, icon);
}

void uMessagesList::Fill(const Query& query, RowsRead& read)
{
    const auto rows = clsTolvaDatabase_->OpenSnapshot(QStringLiteral("SELECT * FROM [Messages] ") + ClausesOf(query));

    const QPointer<uMessagesList> self(this);
    picLoading_->SetDetail(QString());
    picLoading_->raise();
    picLoading_->show();
    repaint();
    grdMessages_->SetRedraw(false);
    Filling_ = true;
    timerUpdateList_->stop(); // a host that heard of the query may have started it
    CurrentSelectedReference_ = 0;
    RowOfReference_.clear();
    ShownRows_.clear();
    ShownQuery_ = query;
    ShownOpening_ = clsTolvaDatabase_->Openings();
    int filled = 0;
    const auto finish = qScopeGuard([&] {
        if (!self)
            return;
        Filling_ = false;
        // Rows of a station that went away meanwhile are nobody's.
        if (!HasDatabase())
            filled = 0;
        grdMessages_->SetRows(filled + 1);
        ShownRows_.resize(static_cast<std::size_t>(filled));
        grdMessages_->SetRedraw(true);
        picLoading_->hide();
        ShowRowsOrNone(read);
    });
    filled = FillRows(*rows, read);
}

/// Brings the grid, or the words that there is nothing in it, to the front, and keeps the row to restore within it.
void uMessagesList::ShowRowsOrNone(RowsRead& read)
{
    grdMessages_->raise();
    const bool isEmpty = grdMessages_->Rows() < 2 && read.Failures.Rows() == 0;
    picNoMessages_->setVisible(isEmpty);
    if (isEmpty)
        picNoMessages_->raise();
    ShowUnread(*lblUnread_, read.Failures.Rows());
    if (read.RowToRestore < 2)
        read.RowToRestore = 1;
    if (read.RowToRestore >= grdMessages_->Rows())
        read.RowToRestore = grdMessages_->Rows() - 1;
}

/// The number of rows filled.
int uMessagesList::FillRows(dao::Recordset& rows, RowsRead& read)
{
    const QPointer<uMessagesList> self(this);
    const ReadTarget target = Target();
    const int total = rows.RecordCount();
    const LightColumns light(rows, ComparedColumns());
    MessageLooks looks(*clsTolvaDatabase_, rows);
    RowOfReference_.reserve(total);
    int filled = 0;
    for (; !rows.AtEOF(); rows.MoveNext()) {
        if (filled % RowsBetweenYields == 1) {
            picLoading_->SetDetail(
                QStringLiteral("%1 of %2").arg(QLocale().toString(filled), QLocale().toString(total)));
            Q_EMIT FillProgress(filled, total);
            UserInterface::Current().Yield();
            if (!self || Target() != target)
                return filled;
        }
        std::optional<MessageLook> look;
        try {
            look = looks.Read();
        } catch (const dao::Error& error) {
            if (read.Failures.Take(error))
                continue;
            read.Failures.TakeRest(total - filled - read.Failures.Rows());
            return filled;
        }
        if (!look)
            continue;
        ++filled;
        if (filled + 1 > grdMessages_->Rows())
            grdMessages_->SetRows(grdMessages_->Rows() + RowsOfABlock);
        ShownRows_.push_back(light.Read());
        DrawMessageRow(filled, *look);
        if (read.ReferenceToRestore >= 1 && look->Reference == read.ReferenceToRestore)
            read.RowToRestore = filled;
    }
    return filled;
}

bool uMessagesList::RefreshDisplay(qint32 messageReference)
{
    if (!clsTolvaDatabase_)
        return false;
    if (messageReference < 1) {
        RefreshAllRows();
        return true;
    }
    if (!RedrawRow(messageReference))
        return false;
    // Last, for it is told, and then the list may be another one or none.
    grdMessages_->SetRow(RowOfReference_.value(messageReference));
    return true;
}

/// Draws the row of a message as it is stored now, wherever the user is. False when there is no such row.
bool uMessagesList::RedrawRow(qint32 messageReference)
{
    const int row = RowOfReference_.value(messageReference);
    if (row < 1 || row >= grdMessages_->Rows())
        return false;
    ForgetRow(row);
    DrawMessageRow(row, clsTolvaDatabase_->ReadMessage(messageReference));
    LastChangedStamp_.Follow(clsTolvaDatabase_->ToldMessageMove());
    return true;
}

/// What a row was read with is not what it shows from now on.
void uMessagesList::ForgetRow(int row)
{
    const auto place = static_cast<std::size_t>(row - 1);
    if (place < ShownRows_.size())
        ShownRows_[place].Signature = 0;
}

void uMessagesList::RefreshAllRows()
{
    const bool wasBusy = std::exchange(DisplayBusy_, true);
    const int row = grdMessages_->Row();
    grdMessages_->SetRedraw(false);
    const auto restore = qScopeGuard([&] {
        SelectRow(row);
        grdMessages_->SetRedraw(true);
        DisplayBusy_ = wasBusy;
    });
    for (int i = 1; i < grdMessages_->Rows(); ++i) {
        ForgetRow(i);
        DrawMessageRow(i, clsTolvaDatabase_->ReadMessage(ReferenceOfRow(i)));
    }
}
