// Filling the messages list and keeping it in step with what other computers change.

#include "common/ClockHelper.h"
#include "database/cTolvaDatabase.h"
#include "messageslist/MessagesListHandler.h"
#include "messageslist/uMessagesList.h"
#include "platform/records/Recordset.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/Icons.h"
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
const QString SentNode = QStringLiteral("c4");
} // namespace

void uMessagesList::UpdateDisplay()
{
    if (!Initialised_ || !HasDatabase() || DisplayBusy_)
        return;
    const QPointer<uMessagesList> self(this);
    const QPointer<cTolvaDatabase> shownDatabase = clsTolvaDatabase_;
    const enTolvaMessageCategories shownCategory = CurrentCategory_;
    const auto isAbandoned = [&] { return CurrentCategory_ != shownCategory || clsTolvaDatabase_ != shownDatabase; };
    // Not before the host knows the row: what it does then may take its time.
    const auto restartTimer = qScopeGuard([self] {
        if (self && !self->DisplayBusy_)
            self->ApplyTimer();
    });
    {
        // Ends whatever ends this: an error, the end of the database or of the control itself.
        const ListReading reading(*this, *treeCategories_, *tbsMessages_, DisplayBusy_);
        timerUpdateList_->stop();

        int rowToRestore = grdMessages_->Row();
        const qint32 referenceToRestore = rowToRestore >= 1 ? CurrentSelectedReference_ : 0;
        // What is stored while the rows are read may be missing in them: the stamp of before says so at the next tick.
        const Date stampBefore = clsTolvaDatabase_->LastMessageChanged();
        UpdateTrashImage();
        const Query query = MakeQuery();
        CurrentQuery_ = query.Condition + QLatin1Char(' ') + query.Order;
        Q_EMIT UpdateDisplay(CurrentQuery_);
        if (!self || !HasDatabase())
            return;
        if (DisplayMessageList_ && !RowsFollow_)
            Fill(query, rowToRestore, referenceToRestore);
        if (!self || !HasDatabase())
            return;
        LastChangedStamp_ = stampBefore;
        SelectRow(rowToRestore);
    }
    if (isAbandoned()) {
        // Another folder or station was chosen meanwhile, so nobody wants to hear of these rows.
        UpdateDisplay();
        return;
    }
    TakeCellChange();
    if (!self)
        return;
    SelectControlText(*comboFind_);
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

void uMessagesList::Fill(const Query& query, int& rowToRestore, qint32 referenceToRestore)
{
    QString text = query.Condition;
    if (!text.isEmpty())
        text.prepend(QStringLiteral(" WHERE "));
    if (!text.contains(QStringLiteral("ORDER BY"), Qt::CaseInsensitive))
        text += QLatin1Char(' ') + query.Order;
    const auto rows = clsTolvaDatabase_->OpenSnapshot(QStringLiteral("SELECT * FROM [Messages] ") + text);

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
    int filled = 0;
    const auto finish = qScopeGuard([&] {
        if (!self)
            return;
        Filling_ = false;
        // Rows of a station that went away meanwhile are nobody's.
        if (!HasDatabase())
            filled = 0;
        grdMessages_->SetRows(filled + 1);
        grdMessages_->SetRedraw(true);
        picLoading_->hide();
        grdMessages_->raise();
        picNoMessages_->setVisible(filled < 1);
        if (filled < 1)
            picNoMessages_->raise();
        if (rowToRestore < 2)
            rowToRestore = 1;
        if (rowToRestore >= grdMessages_->Rows())
            rowToRestore = grdMessages_->Rows() - 1;
    });
    FillRows(*rows, filled, rowToRestore, referenceToRestore);
}

void uMessagesList::FillRows(dao::Recordset& rows, int& filled, int& rowToRestore, qint32 referenceToRestore)
{
    const QPointer<uMessagesList> self(this);
    const QPointer<cTolvaDatabase> database = clsTolvaDatabase_;
    const enTolvaMessageCategories category = CurrentCategory_;
    const int total = rows.RecordCount();
    for (; !rows.AtEOF(); rows.MoveNext()) {
        if (filled % RowsBetweenYields == 1) {
            picLoading_->SetDetail(
                QStringLiteral("%1 of %2").arg(QLocale().toString(filled), QLocale().toString(total)));
            Q_EMIT FillProgress(filled, total);
            UserInterface::Current().Yield();
            if (!self || !HasDatabase() || clsTolvaDatabase_ != database || CurrentCategory_ != category)
                return;
        }
        const cMessagePtr message = clsTolvaDatabase_->GetMessage(rows);
        if (!message)
            continue;
        ++filled;
        if (filled + 1 > grdMessages_->Rows())
            grdMessages_->SetRows(grdMessages_->Rows() + RowsOfABlock);
        FillMessageRow(filled, message);
        if (referenceToRestore >= 1 && message->Reference() == referenceToRestore)
            rowToRestore = filled;
    }
}

bool uMessagesList::RefreshDisplay(qint32 messageReference)
{
    if (!clsTolvaDatabase_)
        return false;
    if (messageReference >= 1) {
        const int row = RowOfReference_.value(messageReference);
        if (row < 1 || row >= grdMessages_->Rows())
            return false;
        FillMessageRow(row, clsTolvaDatabase_->GetMessage(messageReference));
    } else {
        RefreshAllRows();
    }
    LastChangedStamp_ = clsTolvaDatabase_->LastMessageChanged();
    return true;
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
    for (int i = 1; i < grdMessages_->Rows(); ++i)
        FillMessageRow(i, clsTolvaDatabase_->GetMessage(ReferenceOfRow(i)));
}

void uMessagesList::Tick()
{
    // A fill would end the typing of a folder's name in the middle, take half a find text and select it under the
    // typing hand. It comes with the tick behind.
    if (!HasDatabase() || treeCategories_->IsEditingLabel() || comboFind_->IsBeingTyped())
        return;
    const Date stamp = clsTolvaDatabase_->LastMessageChanged();
    if (stamp.IsNone()) {
        // No stamp, or no answer: a station that cannot be reached must say so rather than be written to.
        clsTolvaDatabase_->OpenMessageRows({QStringLiteral("Reference")}, QStringLiteral("[Reference]=0"));
        clsTolvaDatabase_->SetLastMessageChanged(ClockHelper::CurrentTime());
    }
    if (stamp.IsNone() || stamp != LastChangedStamp_)
        UpdateDisplay();
}
