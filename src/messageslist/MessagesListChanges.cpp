// SPDX-License-Identifier: Apache-2.0

// Keeping the messages list in step with what other computers change: its rows and its folders.

#include "common/ClockHelper.h"
#include "database/RowCondition.h"
#include "database/cTolvaDatabase.h"
#include "database/watch/StationWatch.h"
#include "messageslist/CategoryTreeFill.h"
#include "messageslist/uMessagesList.h"
#include "platform/records/Recordset.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/ListPanes.h"

#include <QScopeGuard>

#include <algorithm>

namespace
{
/// Beyond this a fill is quicker to answer: it gives the window time between the rows.
constexpr std::size_t MostRowsDrawn = 500;
constexpr qsizetype MessagesOfARead = 100;
} // namespace
bool uMessagesList::TakeChanges()
{
    // It would end the typing of a folder's name in the middle, and take half a find text. It comes with the tick
    // behind.
    if (!HasDatabase() || treeCategories_->IsEditingLabel() || comboFind_->IsBeingTyped())
        return false;
    const QPointer<uMessagesList> self(this);
    const Date stamp = clsTolvaDatabase_->Watch().MessageStamp();
    if (stamp.IsNone()) {
        // No stamp, or no answer: a station that cannot be reached must say so rather than be written to.
        clsTolvaDatabase_->OpenMessageRows({QStringLiteral("Reference")}, QStringLiteral("[Reference]=0"));
        clsTolvaDatabase_->SetLastMessageChanged(ClockHelper::CurrentTime());
    }
    if (IsBehind(stamp))
        Display(Reading::ChangedRows);
    if (self && HasDatabase())
        TakeFolderChanges();
    return self && HasDatabase() && !IsBehind(stamp);
}

/// Folders have no stamp: they are few, and are compared with those in the tree.
void uMessagesList::TakeFolderChanges()
{
    // What is dragged or has its menu open stays where it is.
    if (IsBusy_ || !treeCategories_->DropHighlight().isEmpty())
        return;
    clsTolvaDatabase_->Watch().RefreshFolders();
    if (FolderSignature(clsTolvaDatabase_->MessageCategories()) == ShownFolders_)
        return;
    const QPointer<uMessagesList> self(this);
    UpdateCategories();
    // The folder on show is gone: it held nothing any more.
    if (self && HasDatabase() && CurrentCategory_ > 0 && treeCategories_->SelectedKey().isEmpty())
        SetCategory(tmcInbox);
}

/// Draws the rows that differ from what is stored, and leaves the others and the user's place as they are. False, with
/// nothing done, when all rows are to be read: for another query or station, and for so many changes.
bool uMessagesList::DrawChanges(const Query& query, RowsRead& read)
{
    if (query != ShownQuery_ || ShownOpening_ != clsTolvaDatabase_->Openings() ||
        static_cast<int>(ShownRows_.size()) != NumberItems())
        return false;
    const auto rows = clsTolvaDatabase_->OpenSnapshot(
        QStringLiteral("SELECT [%1] FROM [Messages] ").arg(ComparedColumns().join(QStringLiteral("], ["))) +
        ClausesOf(query));
    std::vector<ReadRow> now = ReadLightRows(*rows, ComparedColumns());
    RowChanges changes = CompareRows(ShownRows_, now);
    if (changes.Differing.size() > MostRowsDrawn)
        return false;
    QList<qint32> differing;
    for (const int place : changes.Differing)
        differing.append(now[static_cast<std::size_t>(place)].Reference);
    const QHash<qint32, cMessagePtr> messages = ReadMessages(differing, read);
    for (const int place : changes.Differing) {
        ReadRow& row = now[static_cast<std::size_t>(place)];
        if (!messages.contains(row.Reference))
            row.Signature = 0;
    }
    // What could not be read keeps its row where it has one, and gets none where it has none; it is tried again.
    const auto isRowless = [this](const ReadRow& row) {
        return row.Signature == 0 && !RowOfReference_.contains(row.Reference);
    };
    if (std::erase_if(now, isRowless) > 0)
        changes = CompareRows(ShownRows_, now);

    grdList_->SetRedraw(false);
    const auto redraw = qScopeGuard([this] { grdList_->SetRedraw(true); });
    ShownRows_ = std::move(now);
    if (changes.AreArranged) {
        Arrange(changes.Sources, read);
        for (std::size_t i = 0; i < changes.Sources.size(); ++i) {
            if (changes.Sources[i] < 0)
                Came_.append(ShownRows_[i].Reference);
        }
    }
    for (const int place : changes.Differing)
        DrawMessageRow(place + 1, messages.value(ShownRows_[static_cast<std::size_t>(place)].Reference));
    ShowRowsOrNone(read);
    ShowUnread(*lblUnread_, read.Failures.Rows());
    const qint32 selected = read.RowToRestore < 1 ? 0 : ReferenceOfRow(read.RowToRestore);
    read.IsSelectionDrawn = selected != SelectedReference_ || messages.contains(selected);
    return true;
}

/// By their references; those that are gone or cannot be read are left out.
QHash<qint32, cMessagePtr> uMessagesList::ReadMessages(const QList<qint32>& references, RowsRead& read)
{
    QHash<qint32, cMessagePtr> messages;
    for (qsizetype first = 0; first < references.size(); first += MessagesOfARead) {
        const auto rows =
            clsTolvaDatabase_->OpenSnapshot(QStringLiteral("SELECT * FROM [Messages] WHERE ") +
                                            RowCondition::HasOneOf(references.mid(first, MessagesOfARead)));
        for (; !rows->AtEOF(); rows->MoveNext()) {
            try {
                if (const cMessagePtr message = clsTolvaDatabase_->GetMessage(*rows))
                    messages.insert(message->Reference(), message);
            } catch (const dao::Error& error) {
                if (read.Failures.Take(error))
                    continue;
                const auto tried = static_cast<int>(messages.size()) + read.Failures.Rows();
                read.Failures.TakeRest(std::max(0, static_cast<int>(references.size()) - tried));
                return messages;
            }
        }
    }
    return messages;
}
