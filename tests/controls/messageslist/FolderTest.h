// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messageslist/MessagesListTest.h"

#include <QLineEdit>
#include <QMimeData>

#include <memory>

/// A messages list whose folders are changed: by its user, and by another computer that has the same station open.
class FolderTest : public MessagesListTest
{
protected:
    /// Opens the station if need be and stores a folder; the list does not know yet.
    int MakeFolder(const QString& name, int parent = 0);
    /// The station as another computer has it open.
    cTolvaDatabase& OtherComputer();
    /// "REFERENCE PARENT DESCRIPTION" of the users' folders, as the file holds them.
    QStringList StoredFolders() const;
    /// The folder of a stored message; -1 when there is none.
    int StoredCategory(qint32 reference) const;
    int StoredMessages() const;
    /// Makes the file unreadable for every computer.
    void DamageStation() const;
    bool HasNode(int category) const { return Tree->HasNode(Key(category)); }
    static QString Key(int category) { return QStringLiteral("c%1").arg(category); }
    int SelectedCategory() const { return QStringView(Tree->SelectedKey()).mid(1).toInt(); }
    /// Makes the list's window the active one, so that it has a focus.
    void Activate();

    /// Selects a node and shows the popup menu, as the right button does.
    void RightClickNode(int category);
    /// Chooses an entry of the popup menu that is on show, by the keyboard.
    void Choose(const char* entry);
    /// Shows the folders' menu at a node, chooses and lets the menu close.
    void ChooseAt(int category, const char* entry);

    /// Where a node's text is being typed; null when nobody types.
    QLineEdit* Editor() const { return Tree->viewport()->findChild<QLineEdit*>(); }
    /// Types a node's new text and ends with this key.
    void TypeName(const QString& name, int key = Qt::Key_Return);

    /// Moves dragged data over a node (0: over the empty part of the tree); what a drop there would do.
    Qt::DropAction DragOver(const QMimeData& data, int category, Qt::DropActions offered = Both);
    void DragLeave();
    /// Drops on a node after moving there; what was done.
    Qt::DropAction Drop(const QMimeData& data, int category, Qt::DropActions offered = Both);
    static std::unique_ptr<QMimeData> Text(const QString& text);
    static std::unique_ptr<QMimeData> MessageData(qint32 reference);
    static std::unique_ptr<QMimeData> FolderData(int category);
    static std::unique_ptr<QMimeData> Files(const QStringList& paths);

    static constexpr Qt::DropActions Both = Qt::CopyAction | Qt::MoveAction;

private:
    QPoint DropPosition(int category) const;

    FakeDirectory OtherDirectory_;
    std::unique_ptr<cTolvaDatabase> Other_;
};
