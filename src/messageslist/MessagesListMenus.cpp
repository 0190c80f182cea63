// SPDX-License-Identifier: Apache-2.0

// The two popup menus of the messages list and the enabling of their entries.

#include "common/controls/StationListHandler.h"
#include "database/cTolvaDatabase.h"
#include "messageslist/CategoryTreeFill.h"
#include "messageslist/uMessagesList.h"
#include "platform/directory/clsKVUser.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/TabStrip.h"

#include <QMenu>

namespace
{
QAction* AddEntry(QMenu& menu, const char* name, const char* caption)
{
    QAction* entry = menu.addAction(QLatin1String(caption));
    entry->setObjectName(QLatin1String(name));
    return entry;
}

void AddSeparator(QMenu& menu, const char* name)
{
    menu.addSeparator()->setObjectName(QLatin1String(name));
}

QMenu& AddSubMenu(QMenu& menu, const char* name, const char* caption)
{
    QMenu* sub = menu.addMenu(QLatin1String(caption));
    sub->menuAction()->setObjectName(QLatin1String(name));
    return *sub;
}
} // namespace

void uMessagesList::MakeMenus()
{
    mnuPopupMessage_ = new QMenu(this);
    mnuPopupMessage_->setObjectName(QStringLiteral("mnuPopupMessage"));
    MakeMessageMenu();
    connect(mnuPopupMessage_, &QMenu::aboutToShow, this,
            [this] { Handle("mnuPopupMessage", [this] { EnableMessageMenu(); }); });
    mnuPopupCategory_ = new QMenu(this);
    mnuPopupCategory_->setObjectName(QStringLiteral("mnuPopupCategory"));
    MakeCategoryMenu();
    connect(mnuPopupCategory_, &QMenu::aboutToShow, this,
            [this] { Handle("mnuPopupCategory", [this] { EnableCategoryMenu(); }); });
}

void uMessagesList::MakeMessageMenu()
{
    QMenu& menu = *mnuPopupMessage_;
    const auto add = [this](QMenu& into, const char* name, const char* caption, void (uMessagesList::*command)()) {
        connect(AddEntry(into, name, caption), &QAction::triggered, this,
                [this, name, command] { Handle(name, [this, command] { (this->*command)(); }); });
    };
    const auto addMark = [this](QMenu& into, const char* name, const char* caption,
                                void (uMessagesList::*command)(bool), bool read) {
        QAction* entry = AddEntry(into, name, caption);
        connect(entry, &QAction::triggered, this,
                [this, name, command, read] { Handle(name, [this, command, read] { (this->*command)(read); }); });
        return entry;
    };
    add(menu, "mnuOpen", "&Open Message", &uMessagesList::OpenCommand);
    AddSeparator(menu, "mnuReadSep");
    addMark(menu, "mnuMarkAsRead", "Mark as &Read", &uMessagesList::MarkCommand, true);
    addMark(menu, "mnuMarkasUnread", "Mark as Un&read", &uMessagesList::MarkCommand, false);
    AddSeparator(menu, "mnuMarkAllSep");
    addMark(menu, "mnuMarkAllRead1", "Mark a&ll as Read", &uMessagesList::MarkAllCommand, true);
    addMark(menu, "mnuMarkAllRead2", "Mark all as &Unread", &uMessagesList::MarkAllCommand, false);
    AddSeparator(menu, "mnuPrioritySep");
    QMenu& priority = AddSubMenu(menu, "mnuChangePriority", "Change Message Priority");
    const auto addPriority = [&](const char* name, const char* caption, MessagesListCommand command) {
        connect(AddEntry(priority, name, caption), &QAction::triggered, this,
                [this, name, command] { Handle(name, [this, command] { PriorityCommand(command); }); });
    };
    addPriority("mnuPriority0", "Low Priority", MessagesListCommand::LowPriority);
    addPriority("mnuPriority1", "&Normal Priority", MessagesListCommand::NormalPriority);
    addPriority("mnuPriority2", "&High Priority", MessagesListCommand::HighPriority);
    AddSeparator(menu, "mnuPrintSep");
    add(menu, "mnuCopy", "&Copy", &uMessagesList::CopyCommand);
    add(menu, "mnuPrint", "&Print Message", &uMessagesList::PrintCommand);
    AddSeparator(menu, "mnuEmailSep");
    add(menu, "mnuReplyMessage", "&Reply to Message", &uMessagesList::ReplyCommand);
    add(menu, "mnuForwardMessage", "&Forward Message", &uMessagesList::ForwardCommand);
    AddSeparator(menu, "mnuExportSep");
    add(menu, "mnuExportMessage", "Export to &File", &uMessagesList::ExportCommand);
    AddSeparator(menu, "mnuMessageNewMessageSep");
    add(menu, "mnuMessageNewMessage", "&New Message", &uMessagesList::NewCommand);
    AddSeparator(menu, "mnuDeleteSep");
    add(menu, "mnuDelete", "&Delete Message", &uMessagesList::DeleteCommand);
    menu.setDefaultAction(Entry("mnuOpen"));
}

void uMessagesList::MakeCategoryMenu()
{
    QMenu& menu = *mnuPopupCategory_;
    const auto add = [this](QMenu& into, const char* name, const char* caption, auto command) {
        connect(AddEntry(into, name, caption), &QAction::triggered, this,
                [this, name, command] { Handle(name, [this, command] { command(*this); }); });
    };
    AddEntry(menu, "mnuOpenFolder", "&Open Folder");
    AddSeparator(menu, "mnuCategoryReadSep");
    add(menu, "mnuCategoryAllRead", "Mark all as &Read", [](uMessagesList& list) { list.MarkAllCommand(true); });
    add(menu, "mnuCategoryAllUnRead", "Mark all as &Unread", [](uMessagesList& list) { list.MarkAllCommand(false); });
    AddSeparator(menu, "mnuNewFolderSep");
    QMenu& added = AddSubMenu(menu, "mnuNew", "&New");
    add(added, "mnuNewFolder", "New &Folder", [](uMessagesList& list) { list.NewFolder(); });
    AddSeparator(added, "mnuNewMessageSep");
    add(added, "mnuNewMessage", "New &Message", [](uMessagesList& list) { list.NewCommand(); });
    AddSeparator(menu, "mnuEmptySep");
    add(menu, "mnuEmpty", "&Empty Folder", [](uMessagesList& list) { list.EmptyFolder(); });
    AddSeparator(menu, "mnuDeleteFolderSep");
    add(menu, "mnuDeleteFolder", "&Delete Folder", [](uMessagesList& list) { list.DeleteFolder(); });
    add(menu, "mnuRenameFolder", "Rename &Folder", [](uMessagesList& list) { list.treeCategories_->StartLabelEdit(); });
    menu.setDefaultAction(Entry("mnuOpenFolder"));
}
void uMessagesList::EnableMessageMenu()
{
    const cMessagePtr message = SelectedReference_ > 0 ? SelectedMessage() : nullptr;
    const clsKVUser* user = clsTolvaDatabase_ ? CurrentUser() : nullptr;
    const bool canChange = user && (tbsList_->Tab() == 0 ? user->CanEditMessages() : user->CanEditPersonalMessages());
    const auto enable = [this](std::initializer_list<const char*> names, bool enabled) {
        for (const char* name : names)
            Entry(name)->setEnabled(enabled);
    };
    const auto show = [this](std::initializer_list<const char*> names, bool shown) {
        for (const char* name : names)
            Entry(name)->setVisible(shown);
    };
    enable({"mnuMarkAllRead1", "mnuMarkAllRead2", "mnuMarkasUnread"}, grdList_->Rows() >= 2);
    if (!message) {
        enable({"mnuOpen", "mnuPrint", "mnuForwardMessage", "mnuReplyMessage", "mnuExportMessage", "mnuMarkAsRead",
                "mnuChangePriority", "mnuCopy", "mnuDelete"},
               false);
        enable({"mnuMessageNewMessage"}, canChange);
        return;
    }
    enable({"mnuOpen", "mnuPrint", "mnuForwardMessage", "mnuMarkAsRead"}, true);
    enable({"mnuCopy", "mnuDelete", "mnuMessageNewMessage", "mnuChangePriority", "mnuExportMessage"}, canChange);
    enable({"mnuReplyMessage"}, !message->CDOMessage()->Sender().isEmpty());
    const bool isRead = (message->Flags() & mfRead) != 0;
    show({"mnuMarkAsRead"}, CurrentUser() && !isRead);
    show({"mnuMarkasUnread"}, CurrentUser() && isRead);
    show({"mnuMarkAllRead1", "mnuMarkAllRead2"}, CurrentUser());
}

void uMessagesList::EnableCategoryMenu()
{
    const QString selected = treeCategories_->SelectedKey();
    const bool canEditCategories = MayEditCategories();
    const bool canEditMessages = MayEditMessages();
    const bool isOwn = canEditCategories && CurrentCategory_ > 0 && MayChangeFolder(selected);
    Entry("mnuDeleteFolder")->setEnabled(isOwn);
    Entry("mnuRenameFolder")->setEnabled(isOwn);
    // A folder's own ampersand is no access key.
    QString title = treeCategories_->NodeText(selected);
    Entry("mnuEmpty")->setText(QStringLiteral("Empty '%1'").arg(title.replace(QLatin1Char('&'), QLatin1String("&&"))));
    const bool canEmpty = canEditMessages && CurrentCategory_ == tmcDeleted;
    Entry("mnuEmpty")->setVisible(canEmpty);
    Entry("mnuEmptySep")->setVisible(canEmpty);
    Entry("mnuNewFolder")->setEnabled(canEditCategories);
    Entry("mnuNewMessage")->setEnabled(canEditMessages && CurrentCategory_ >= 1);
    Entry("mnuNew")->setEnabled(Entry("mnuNewFolder")->isEnabled() || Entry("mnuNewMessage")->isEnabled());
}

void uMessagesList::PopUpListMenu(const QPoint& global)
{
    mnuPopupMessage_->popup(global);
}

void uMessagesList::PopUpCategoryMenu(const QPoint& global)
{
    if (!treeCategories_->SelectedKey().isEmpty())
        mnuPopupCategory_->popup(global);
}
