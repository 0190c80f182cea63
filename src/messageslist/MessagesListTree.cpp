// SPDX-License-Identifier: Apache-2.0

// The tree of folders in the messages list: choosing, renaming, making, deleting and emptying folders.

#include "common/PendingError.h"
#include "common/UserPreferences.h"
#include "common/controls/StationListHandler.h"
#include "database/LastError.h"
#include "messageslist/CategoryTreeFill.h"
#include "messageslist/MessagesListTexts.h"
#include "messageslist/uMessagesList.h"
#include "platform/directory/clsKVUser.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/DragData.h"
#include "platform/widgets/Icons.h"

#include <QCursor>
#include <QKeyEvent>

namespace
{
} // namespace

void uMessagesList::UpdateCategories()
{
    if (!IsReady_ || !HasDatabase())
        return;
    FillTree(clsTolvaDatabase_->MessageCategories(), *treeCategories_, QStringLiteral("c"));
    for (const qint32 folder : UnreadCounts_.keys())
        ShowUnreadCount(folder);
    ShownFolders_ = FolderSignature(clsTolvaDatabase_->MessageCategories());
    if (treeCategories_->SelectedKey().isEmpty())
        SetCategory(CurrentCategory_);
}

void uMessagesList::SetUnreadCounts(const QHash<qint32, int>& counts)
{
    QList<qint32> folders = UnreadCounts_.keys() + counts.keys();
    UnreadCounts_ = counts;
    for (const qint32 folder : std::as_const(folders))
        ShowUnreadCount(folder);
}

void uMessagesList::ShowUnreadCount(qint32 folder)
{
    const int count = UnreadCounts_.value(folder);
    treeCategories_->SetNodeCount(CategoryKey(folder), count, tr("%1 unread").arg(count));
}

void uMessagesList::TakeNodeClick(const QString& key)
{
    const auto category = static_cast<enTolvaMessageCategories>(CategoryOfKey(key));
    if (category == CurrentCategory_)
        return;
    CurrentCategory_ = category;
    if (CurrentUser())
        CurrentUser()->SetPreference(UserPreferences::MessageFolder.Name, static_cast<qint32>(category));
    const QPointer<uMessagesList> self(this);
    UpdateDisplay();
    if (self && treeCategories_->isEnabled() && treeCategories_->SelectedKey() == key)
        treeCategories_->setFocus();
}

void uMessagesList::TakeTreeKey(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F5) {
        event->accept();
        // What other computers did to the folders shows here first.
        if (HasDatabase())
            clsTolvaDatabase_->UpdateCategoryTree();
        UpdateCategories();
    } else if (event->key() == Qt::Key_F2) {
        event->accept();
        if (MayEditCategories())
            treeCategories_->StartLabelEdit();
    }
}

void uMessagesList::BeforeRename(bool& cancel)
{
    const QString key = treeCategories_->SelectedKey();
    cancel = !MayChangeFolder(key);
}

/// Whether a folder is one of those that are renamed and deleted, whatever the user's rights are.
bool uMessagesList::MayChangeFolder(const QString& key) const
{
    if (key.isEmpty() || !treeCategories_->ParentKey(key).isEmpty())
        return !key.isEmpty();
    const clsCategory* folder = EditsTopFolders_ && clsTolvaDatabase_
                                    ? clsTolvaDatabase_->MessageCategories().FindCategory(CategoryOfKey(key))
                                    : nullptr;
    return folder && folder->Reference() > 0 && !folder->IsFixed();
}

void uMessagesList::Rename(bool& cancel, const QString& newText)
{
    if (newText.isEmpty()) {
        cancel = true;
        return;
    }
    cancel = true; // until it is stored
    Handle("treeCategories_AfterLabelEdit", [&] {
        const auto category = StoredCategory(CategoryOfKey(treeCategories_->EditedKey()));
        if (!category)
            return;
        category->SetDescription(newText);
        if (clsTolvaDatabase_->SaveMessageCategory(*category, true)) {
            clsTolvaDatabase_->UpdateCategoryTree();
            cancel = false;
        }
    });
}

/// The folder as it is stored now, null when it is not there, on whatever computer it was deleted.
std::unique_ptr<clsCategory> uMessagesList::StoredCategory(qint32 reference)
{
    if (!HasDatabase())
        return nullptr;
    clsTolvaDatabase_->UpdateCategoryTree();
    if (!clsTolvaDatabase_->MessageCategories().FindCategory(reference))
        return nullptr;
    return clsTolvaDatabase_->GetMessageCategory(reference);
}

bool uMessagesList::MayEditCategories() const
{
    return clsTolvaDatabase_ && CurrentUser() && CurrentUser()->CanEditCategories();
}

bool uMessagesList::MayEditMessages() const
{
    return clsTolvaDatabase_ && CurrentUser() && CurrentUser()->CanEditMessages();
}

void uMessagesList::TakeTreeMouseDown(Qt::MouseButton button, const QPointF& twips)
{
    if (button == Qt::LeftButton)
        TreeDragStart_ = twips;
    else if (button == Qt::RightButton)
        treeCategories_->SelectNode(treeCategories_->HitTest(twips));
}

void uMessagesList::TakeTreeMouseMove(Qt::MouseButtons buttons, const QPointF& twips)
{
    if ((buttons & Qt::LeftButton) == 0 || !(TreeDragStart_.x() > 0))
        return;
    if (!DragRunner::IsDrag(*treeCategories_, TreeDragStart_, twips))
        return;
    const QString key = treeCategories_->HitTest(TreeDragStart_);
    if (key.isEmpty())
        return;
    treeCategories_->SelectNode(key);
    CurrentCategory_ = static_cast<enTolvaMessageCategories>(CategoryOfKey(key));
    TreeDragStart_ = QPointF();
    treeCategories_->EndMouseTracking();
    if (MayEditCategories() && !treeCategories_->ParentKey(key).isEmpty() && CurrentCategory_ > 0)
        StartTreeDrag();
}

void uMessagesList::TakeTreeMouseUp(Qt::MouseButton button)
{
    if (button == Qt::LeftButton)
        TreeDragStart_ = QPointF();
    else if (button == Qt::RightButton)
        PopUpCategoryMenu(QCursor::pos());
}

void uMessagesList::StartTreeDrag()
{
    auto* dragged = new DragData; // the drag destroys it
    dragged->SetText(QStringLiteral("%1 Reference=\"%2\"")
                         .arg(MessagesListTexts::CategoryWord, treeCategories_->SelectedKey().mid(1)));
    DragRunner::Run(*treeCategories_, dragged, Qt::CopyAction | Qt::MoveAction);
}

void uMessagesList::NewFolder()
{
    const QString selected = treeCategories_->SelectedKey();
    if (!selected.isEmpty() && HasDatabase())
        MakeFolder(selected, CurrentCategory_);
}

void uMessagesList::NewTopFolder()
{
    Handle("NewTopFolder", [this] {
        if (HasDatabase() && EditsTopFolders_ && MayEditCategories())
            MakeFolder(QString(), 0);
    });
}

/// parentKey: the node that it is shown below; empty for the top.
void uMessagesList::MakeFolder(const QString& parentKey, qint32 parentReference)
{
    clsCategory& root = clsTolvaDatabase_->MessageCategories();
    clsCategory* parent = parentReference != 0 ? root.FindCategory(parentReference) : &root;
    if (!parent)
        return;
    auto added = std::make_unique<clsCategory>();
    added->SetParentReference(parentReference);
    added->SetReference(static_cast<qint16>(clsTolvaDatabase_->LastMessageCategoryReference() + 1));
    added->SetDescription(NewFolderName_);
    // The tree in memory takes it only when it is stored: whatever fails leaves no folder there that is none.
    if (!clsTolvaDatabase_->SaveMessageCategory(*added, true))
        return;
    const QString key = CategoryKey(added->Reference());
    const QString name = added->Description();
    if (treeCategories_->HasNode(key)) {
        // Another computer deleted the folder that had this number, and the tree shows it still.
        clsTolvaDatabase_->UpdateCategoryTree();
        UpdateCategories();
    } else {
        parent->AddSubCategory(std::move(added));
    }
    treeCategories_->Expand(parentKey);
    treeCategories_->AddNode(parentKey, key, name, Icons::Get(QStringLiteral("smallclosedfolder")),
                             Icons::Get(QStringLiteral("smallopenfolder")));
    treeCategories_->SortChildren(key);
    treeCategories_->EnsureVisible(key);
    treeCategories_->SelectNode(key);
    const QPointer<uMessagesList> self(this);
    TakeNodeClick(key);
    // What the host did when it heard of the new folder's messages may have taken the folder, or the list, away.
    if (self && treeCategories_->SelectedKey() == key)
        treeCategories_->StartLabelEdit();
}

void uMessagesList::DeleteFolder()
{
    const QString selected = treeCategories_->SelectedKey();
    if (selected.isEmpty())
        return;
    const QString parentKey = treeCategories_->ParentKey(selected);
    const auto category = StoredCategory(CurrentCategory_);
    if (!category)
        return;
    if (clsTolvaDatabase_->MessageCategories().SubCategoryCount() < 2 && category->ParentReference() == 0) {
        UserInterface::Warn(
            QStringLiteral("You cannot delete this Category because there has to be at least one in the Database"));
        return;
    }
    if (category->SubCategoryCount() >= 1) {
        UserInterface::Warn(QStringLiteral("You cannot delete a Category unless it has no Sub-Categories"));
        return;
    }
    const auto messages = clsTolvaDatabase_->OpenMessageRows(
        {QStringLiteral("Reference")}, QStringLiteral("[Category]=%1").arg(static_cast<int>(CurrentCategory_)));
    if (messages->RecordCount() != 0) {
        UserInterface::Warn(QStringLiteral("You cannot delete a Category unless it is empty (i.e. no Messages)"));
        return;
    }
    // The box runs window events: the folder, the station or the list itself may be another one after it.
    const QPointer<uMessagesList> self(this);
    const ReadTarget target = Target();
    if (!UserInterface::Confirm(QStringLiteral("Are you sure you want to delete the Message's Category '%1'?")
                                    .arg(category->Description())))
        return;
    if (!self || Target() != target)
        return;
    if (!clsTolvaDatabase_->DeleteMessageCategory(CurrentCategory_)) {
        RaiseLastError(*clsTolvaDatabase_);
        return;
    }
    if (CategoryOfKey(parentKey) > 0)
        CurrentCategory_ = static_cast<enTolvaMessageCategories>(CategoryOfKey(parentKey));
    UpdateCategories();
    if (self)
        UpdateDisplay();
}

void uMessagesList::EmptyFolder()
{
    if (treeCategories_->SelectedKey().isEmpty())
        return;
    const auto category = StoredCategory(CurrentCategory_);
    const QPointer<uMessagesList> self(this);
    const ReadTarget target = Target();
    if (!category ||
        !UserInterface::Confirm(QStringLiteral("Are you sure you want to delete all the Messages in the '%1' Category?")
                                    .arg(category->Description())))
        return;
    if (!self || Target() != target)
        return;
    PendingError failure;
    failure.Try([this] {
        if (!clsTolvaDatabase_->DeleteMessagesOfCategory(CurrentCategory_))
            RaiseLastError(*clsTolvaDatabase_);
    });
    // The rows are what is stored, whatever came of it.
    UpdateDisplay();
    if (failure)
        throw dao::Error(failure.Number(), failure.Description());
}
