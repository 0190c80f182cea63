// SPDX-License-Identifier: Apache-2.0

// Filling the messages list.

#include "database/cTolvaDatabase.h"
#include "messageslist/MessageLook.h"
#include "messageslist/uMessagesList.h"
#include "platform/records/Recordset.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/Icons.h"

namespace
{
const QString SentNode = QStringLiteral("c4");
} // namespace

void uMessagesList::UpdateDisplay()
{
    Display(Reading::AllRows);
}

Date uMessagesList::StoredStamp() const
{
    return clsTolvaDatabase_->LastMessageChanged();
}

void uMessagesList::ReadRows(Reading reading, RowsRead& read)
{
    const QPointer<uMessagesList> self(this);
    const ReadTarget target = Target();
    UpdateTrashImage();
    const Query query = MakeQuery();
    CurrentQuery_ = query.Condition + QLatin1Char(' ') + query.Order;
    Q_EMIT UpdateDisplay(CurrentQuery_);
    if (!self || Target() != target)
        return;
    read.IsOtherQuery = query != ShownQuery_ || ShownOpening_ != clsTolvaDatabase_->Openings();
    if (DisplayMessageList_ && !RowsFollow_ && (reading == Reading::AllRows || !DrawChanges(query, read)))
        Fill(query, read);
    read.IsRead = true;
}

void uMessagesList::TellDisplay(const RowsRead& read)
{
    const QList<qint32> came = std::exchange(Came_, {});
    if (read.Failures.IsUnanswered())
        throw dao::Error(read.Failures.Error());
    const QPointer<uMessagesList> self(this);
    if (!came.isEmpty())
        Q_EMIT MessagesCame(came);
    if (self)
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
    ShownQuery_ = query;
    ShownOpening_ = clsTolvaDatabase_->Openings();
    FillGrid(read, [&](int& filled) { FillRows(*rows, filled, read); });
}

void uMessagesList::FillRows(dao::Recordset& rows, int& filled, RowsRead& read)
{
    const int total = rows.RecordCount();
    const LightColumns light(rows, ComparedColumns());
    MessageLooks looks(*clsTolvaDatabase_, rows, Depth());
    MarkBits_.clear();
    RowOfReference_.reserve(total);
    for (; !rows.AtEOF(); rows.MoveNext()) {
        if (!GoesOnFilling(filled, total))
            return;
        std::optional<MessageLook> look;
        try {
            look = looks.Read();
        } catch (const dao::Error& error) {
            if (read.Failures.Take(error))
                continue;
            read.Failures.TakeRest(total - filled - read.Failures.Rows());
            return;
        }
        if (!look)
            continue;
        AddRow(++filled);
        ShownRows_.push_back(light.Read());
        DrawMessageRow(filled, *look);
        if (read.ReferenceToRestore >= 1 && look->Reference == read.ReferenceToRestore)
            read.RowToRestore = filled;
    }
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
    grdList_->SetRow(RowOfReference_.value(messageReference));
    return true;
}

/// Draws the row of a message as it is stored now, wherever the user is. False when there is no such row.
bool uMessagesList::RedrawRow(qint32 messageReference)
{
    const int row = RowOfReference_.value(messageReference);
    if (row < 1 || row >= grdList_->Rows())
        return false;
    ForgetRow(row);
    DrawMessageRow(row, clsTolvaDatabase_->ReadMessage(messageReference));
    LastStamp_.Follow(clsTolvaDatabase_->ToldMessageMove());
    return true;
}

/// What a row was read with is not what it shows from now on.
void uMessagesList::ForgetRow(int row)
{
    const auto place = static_cast<std::size_t>(row - 1);
    if (place < ShownRows_.size())
        ShownRows_[place].Signature = 0;
}

void uMessagesList::DrawStoredRow(int row)
{
    ForgetRow(row);
    DrawMessageRow(row, clsTolvaDatabase_->ReadMessage(ReferenceOfRow(row)));
}
