// SPDX-License-Identifier: Apache-2.0
#include "messageslist/FolderTest.h"

#include <QDropEvent>
#include <QFile>
#include <QUrl>

int FolderTest::MakeFolder(const QString& name, int parent)
{
    if (!Station->IsOpen())
        OpenStation();
    clsCategory category;
    category.SetDescription(name);
    category.SetParentReference(parent);
    EXPECT_TRUE(Station->SaveMessageCategory(category, false));
    Station->UpdateCategoryTree();
    return category.Reference();
}

cTolvaDatabase& FolderTest::OtherComputer()
{
    if (!Other_) {
        Other_ = std::make_unique<cTolvaDatabase>();
        Other_->SetDirectoryDatabase(&OtherDirectory_);
        EXPECT_EQ(Other_->OpenTolvaDatabase(Folder.path()), 0);
    }
    Other_->UpdateCategoryTree();
    return *Other_;
}

QStringList FolderTest::StoredFolders() const
{
    QStringList rows;
    const auto recordset = OpenTable(QStringLiteral("MessageCategories"));
    recordset->SetIndex(QStringLiteral("Main"));
    for (; !recordset->AtEOF(); recordset->MoveNext()) {
        if (const int reference = recordset->Collect(QStringLiteral("Reference")).toInt(); reference > tmcAutomatic) {
            rows.append(QStringLiteral("%1 %2 %3")
                            .arg(QString::number(reference),
                                 recordset->Collect(QStringLiteral("ParentReference")).toString(),
                                 recordset->Collect(QStringLiteral("Description")).toString()));
        }
    }
    return rows;
}

int FolderTest::StoredCategory(qint32 reference) const
{
    const auto recordset = OpenTable(QStringLiteral("Messages"));
    recordset->SetIndex(QStringLiteral("Main"));
    recordset->Seek(dao::SeekComparison::Equal, {reference});
    return recordset->NoMatch() ? -1 : recordset->Collect(QStringLiteral("Category")).toInt();
}

int FolderTest::StoredMessages() const
{
    return OpenTable(QStringLiteral("Messages"))->RecordCount();
}

void FolderTest::DamageStation() const
{
    QFile file(FileName());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_GT(file.write(QByteArray(4096, 'x')), 0);
}

void FolderTest::Activate()
{
    List->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(List.get()));
}

void FolderTest::RightClickNode(int category)
{
    QTest::mouseClick(Tree->viewport(), Qt::RightButton, {}, NodePosition(category));
}

void FolderTest::Choose(const char* entry)
{
    QMenu& menu = *List->CategoryMenu();
    QAction& action = Entry(entry);
    ASSERT_TRUE(menu.isVisible());
    ASSERT_TRUE(action.isEnabled()) << entry;
    QMenu* added = Entry("mnuNew").menu();
    if (added->actions().contains(&action)) {
        menu.setActiveAction(&Entry("mnuNew"));
        QTest::keyClick(&menu, Qt::Key_Right);
        ASSERT_TRUE(added->isVisible());
        added->setActiveAction(&action);
        QTest::keyClick(added, Qt::Key_Return);
    } else {
        menu.setActiveAction(&action);
        QTest::keyClick(&menu, Qt::Key_Return);
    }
    EXPECT_FALSE(menu.isVisible());
}

void FolderTest::ChooseAt(int category, const char* entry)
{
    RightClickNode(category);
    Choose(entry);
}

void FolderTest::TypeName(const QString& name, int key)
{
    QLineEdit* editor = Editor();
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    if (name.isEmpty())
        QTest::keyClick(editor, Qt::Key_Delete);
    // As an input method does: the test keyboard has ASCII keys only.
    QInputMethodEvent typed;
    typed.setCommitString(name);
    QApplication::sendEvent(editor, &typed);
    QTest::keyClick(editor, static_cast<Qt::Key>(key));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !Tree->IsEditingLabel(); }));
}

QPoint FolderTest::DropPosition(int category) const
{
    return category != 0 ? NodePosition(category) : QPoint(10, Tree->viewport()->height() - 3);
}

Qt::DropAction FolderTest::DragOver(const QMimeData& data, int category, Qt::DropActions offered)
{
    const QPoint position = DropPosition(category);
    QDragEnterEvent enter(position, offered, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Tree->viewport(), &enter);
    EXPECT_TRUE(enter.isAccepted()) << "moves would not arrive";
    QDragMoveEvent move(position, offered, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Tree->viewport(), &move);
    return move.isAccepted() ? move.dropAction() : Qt::IgnoreAction;
}

void FolderTest::DragLeave()
{
    QDragLeaveEvent leave;
    QApplication::sendEvent(Tree->viewport(), &leave);
}

Qt::DropAction FolderTest::Drop(const QMimeData& data, int category, Qt::DropActions offered)
{
    DragOver(data, category, offered);
    QDropEvent drop(DropPosition(category), offered, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(Tree->viewport(), &drop);
    EXPECT_EQ(Tree->DropHighlight(), QString());
    return drop.isAccepted() ? drop.dropAction() : Qt::IgnoreAction;
}

std::unique_ptr<QMimeData> FolderTest::Text(const QString& text)
{
    auto data = std::make_unique<QMimeData>();
    data->setText(text);
    return data;
}

std::unique_ptr<QMimeData> FolderTest::MessageData(qint32 reference)
{
    return Text(QStringLiteral("!KVMessage Reference=\"%1\"").arg(reference));
}

std::unique_ptr<QMimeData> FolderTest::FolderData(int category)
{
    return Text(QStringLiteral("!KVMessageCategory Reference=\"%1\"").arg(category));
}

std::unique_ptr<QMimeData> FolderTest::Files(const QStringList& paths)
{
    auto data = std::make_unique<QMimeData>();
    QList<QUrl> urls;
    for (const QString& path : paths)
        urls.append(QUrl::fromLocalFile(path));
    data->setUrls(urls);
    return data;
}
