// SPDX-License-Identifier: Apache-2.0

// What the desk does with several messages at once, and with files of mail.

#include "messages/FolderChoice.h"
#include "support/ScriptedFileDialog.h"
#include "window/FileChoice.h"
#include "window/MainWindowTest.h"

#include <QLineEdit>
#include <QMimeData>
#include <QUrl>

namespace
{
class MessageCommandsTest : public MainWindowTest
{
protected:
    CategoryTreeView& Tree() { return *List().findChild<CategoryTreeView*>(QStringLiteral("treeCategories")); }
    QString Status() { return Window->statusBar()->currentMessage(); }
    void Trigger(const char* name) { Window->findChild<QAction*>(QLatin1String(name))->trigger(); }
    void TriggerOfList(const char* name) { List().findChild<QAction*>(QLatin1String(name))->trigger(); }
    /// As a real drag and drop arrives at the tree, over the node of a folder.
    void Drop(const QMimeData& data, enTolvaMessageCategories folder)
    {
        const QString key = QStringLiteral("c%1").arg(static_cast<int>(folder));
        const QTreeWidgetItem* node = Tree().findItems(Tree().NodeText(key), Qt::MatchExactly).value(0);
        ASSERT_TRUE(node);
        const QPoint place = Tree().visualItemRect(node).center();
        QDragEnterEvent enter(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(Tree().viewport(), &enter);
        QDragMoveEvent move(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(Tree().viewport(), &move);
        QDropEvent drop(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(Tree().viewport(), &drop);
    }
    QStringList MailFiles(int count)
    {
        QStringList files;
        for (int i = 0; i < count; ++i)
            files.append(Write(QStringLiteral("dropped %1.eml").arg(i), Mail("Dropped " + QByteArray::number(i))));
        return files;
    }
    static void SetFiles(QMimeData& data, const QStringList& files)
    {
        QList<QUrl> urls;
        for (const QString& file : files)
            urls.append(QUrl::fromLocalFile(file));
        data.setUrls(urls);
    }
    /// Selects all rows by the keys.
    void SelectAll()
    {
        Grid().setFocus();
        QTest::keyClick(&Grid(), Qt::Key_Home);
        QTest::keyClick(&Grid(), Qt::Key_End, Qt::ShiftModifier);
    }
    qint32 PriorityOf(qint32 reference) { return Station.Database().GetMessage(reference)->Priority(); }
};
} // namespace

TEST_F(MessageCommandsTest, AllFilesThatAreDroppedTogetherAreFiledAndWhatIsNoMailIsNamed)
{
    OpenWindow();
    QStringList files = MailFiles(3);
    QByteArray picture(600, '\0');
    files.insert(1, Write(QStringLiteral("picture.eml"), picture));
    QMimeData data;
    SetFiles(data, files);
    Ui.ExpectWarning(QStringLiteral("These files hold no mail that could be filed:\n\npicture.eml"));
    Drop(data, tmcSaved);
    EXPECT_EQ(MessagesIn(tmcSaved).size(), 3);
    EXPECT_EQ(List().Category(), tmcInbox) << "dropping takes nobody to another folder";
    EXPECT_EQ(Status(), QStringLiteral("3 messages were filed in Saved."));
    EXPECT_TRUE(Ui.ProgressCaptions().contains(QStringLiteral("Importing mail files")));
}

TEST_F(MessageCommandsTest, SeveralFilesAreImportedFromTheMenuIntoTheFolderOnShow)
{
    OpenWindow();
    ScriptedFileDialog dialogs;
    dialogs.ExpectOpenSeveral(MailFiles(4));
    Trigger("importFiles");
    EXPECT_EQ(MessagesIn(tmcInbox).size(), 4);
    EXPECT_EQ(List().NumberItems(), 4);
}

TEST_F(MessageCommandsTest, AnImportThatIsStoppedKeepsWhatIsFiledAndSaysHowMuch)
{
    OpenWindow();
    ScriptedFileDialog dialogs;
    dialogs.ExpectOpenSeveral(MailFiles(4));
    Ui.CancelProgressAt(2);
    Trigger("importFiles");
    EXPECT_EQ(MessagesIn(tmcInbox).size(), 2);
    EXPECT_EQ(Status(), QStringLiteral("2 messages were filed in Inbox."));
}

TEST_F(MessageCommandsTest, UrgentMailThatIsImportedIsMarkedSo)
{
    OpenWindow();
    ScriptedFileDialog dialogs;
    dialogs.ExpectOpenSeveral({Write(QStringLiteral("urgent.eml"), "X-Priority: 1\r\n" + Mail("Urgent"))});
    Trigger("importFiles");
    ASSERT_EQ(MessagesIn(tmcInbox).size(), 1);
    EXPECT_EQ(PriorityOf(MessagesIn(tmcInbox).first()), 1);
}

TEST_F(MessageCommandsTest, SelectedMessagesAreExportedUnderNamesOfTheirOwn)
{
    for (int i = 0; i < 3; ++i)
        FileMail(Mail("The same subject"));
    OpenWindow();
    SelectAll();
    ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("out"))));
    FileChoice::SetFolderChooser([this](const QString&) { return Path(QStringLiteral("out")); });
    Trigger("exportMessages");
    FileChoice::SetFolderChooser({});
    const QStringList files = QDir(Path(QStringLiteral("out"))).entryList(QDir::Files);
    EXPECT_EQ(files, (QStringList{QStringLiteral("The same subject (2).eml"),
                                  QStringLiteral("The same subject (3).eml"), QStringLiteral("The same subject.eml")}));
    EXPECT_EQ(Notice("exportNotice").Text(),
              QStringLiteral("3 messages were exported to %1.").arg(Path(QStringLiteral("out"))));
}

TEST_F(MessageCommandsTest, SeveralMessagesAreDeletedAndComeBackTogether)
{
    for (int i = 0; i < 4; ++i)
        FileMail(Mail("One of four"));
    OpenWindow();
    const QList<qint32> before = List().References();
    Grid().setFocus();
    QTest::keyClick(&Grid(), Qt::Key_Home);
    QTest::keyClick(&Grid(), Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&Grid(), Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&Grid(), Qt::Key_Delete);
    EXPECT_EQ(MessagesIn(tmcDeleted).size(), 3);
    EXPECT_EQ(List().References(), QList<qint32>{before.at(3)});
    EXPECT_EQ(Notice("moveNotice").Text(), QStringLiteral("3 messages were moved to Deleted Items."));
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(List().References(), before);
    EXPECT_EQ(Status(), QStringLiteral("Back where they were: 3 messages."));
}

TEST_F(MessageCommandsTest, SeveralMessagesAreDeletedForEverAfterOneQuestion)
{
    for (int i = 0; i < 3; ++i)
        FileMail(Mail("Old"), tmcDeleted);
    OpenWindow();
    Key(Qt::Key_5, Qt::ControlModifier);
    SelectAll();
    Ui.ExpectConfirmation(QStringLiteral("Are you sure you want to permanently delete 3 messages?"),
                          MessageBoxAnswer::Yes);
    QTest::keyClick(&Grid(), Qt::Key_Delete);
    EXPECT_TRUE(MessagesIn(tmcDeleted).isEmpty());
}

TEST_F(MessageCommandsTest, SeveralMessagesAreMarkedAndUnmarkedTogether)
{
    const qint32 read = FileMail(Mail("Read"), tmcInbox, mfRead);
    const qint32 one = FileMail(Mail("One"));
    const qint32 two = FileMail(Mail("Two"));
    OpenWindow();
    SelectAll();
    TriggerOfList("mnuMarkAsRead");
    for (const qint32 reference : {read, one, two})
        EXPECT_EQ(FlagsOf(reference), mfRead);
    EXPECT_EQ(List().SelectedReferences().size(), 3) << "they stay selected";
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(FlagsOf(one), 0);
    EXPECT_EQ(FlagsOf(two), 0);
    EXPECT_EQ(FlagsOf(read), mfRead) << "it was read before";
}

TEST_F(MessageCommandsTest, MarkingAllAsksWithTheNumberAndIsUndone)
{
    const qint32 one = FileMail(Mail("One"));
    FileMail(Mail("Two"));
    FileMail(Mail("Three"), tmcInbox, mfRead);
    OpenWindow();
    Ui.ExpectConfirmation(QStringLiteral("Do you want to mark 2 messages as read?"), MessageBoxAnswer::No);
    TriggerOfList("mnuMarkAllRead1");
    EXPECT_EQ(FlagsOf(one), 0);
    Ui.ExpectConfirmation(QStringLiteral("Do you want to mark 2 messages as read?"), MessageBoxAnswer::Yes);
    TriggerOfList("mnuMarkAllRead1");
    EXPECT_EQ(FlagsOf(one), mfRead);
    EXPECT_EQ(Notice("moveNotice").Text(), QStringLiteral("2 messages were marked as read."));
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(FlagsOf(one), 0);
}

TEST_F(MessageCommandsTest, ThePriorityOfMessagesIsChangedAndTakenBack)
{
    const qint32 one = FileMail(Mail("One"));
    const qint32 two = FileMail(Mail("Two"));
    OpenWindow();
    SelectAll();
    TriggerOfList("mnuPriority2");
    EXPECT_EQ(PriorityOf(one), 1);
    EXPECT_EQ(PriorityOf(two), 1);
    EXPECT_EQ(Grid().CellBackColour(1, 2), 255) << "urgent mail is marked";
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(PriorityOf(one), 0);
}

TEST_F(MessageCommandsTest, AFolderIsFoundByTypingAndTheLastOneStandsFirst)
{
    const qint32 one = FileMail(Mail("One"));
    const qint32 two = FileMail(Mail("Two"));
    OpenWindow();
    Select(one);
    {
        const DialogVisitor visitor("folderChoice", [](QDialog& dialog) {
            QTest::keyClicks(dialog.findChild<QLineEdit*>(), QStringLiteral("sav"));
            QTest::keyClick(dialog.findChild<QLineEdit*>(), Qt::Key_Return);
        });
        Key(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
    }
    EXPECT_EQ(MessagesIn(tmcSaved), QList<qint32>{one});
    EXPECT_EQ(Notice("moveNotice").Text(), QStringLiteral("“One” was moved to Saved."));
    EXPECT_EQ(List().SelectedReference(), two);
    Window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window.get()));
    {
        const DialogVisitor visitor(
            "folderChoice", [](QDialog& dialog) { QTest::keyClick(dialog.findChild<QLineEdit*>(), Qt::Key_Return); });
        Key(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
    }
    EXPECT_EQ(MessagesIn(tmcSaved), (QList<qint32>{one, two})) << "the folder of the last time is proposed";
}

TEST_F(MessageCommandsTest, MessagesAreCopiedToAFolder)
{
    FileMail(Mail("One"));
    FileMail(Mail("Two"));
    OpenWindow();
    SelectAll();
    const DialogVisitor visitor("folderChoice", [](QDialog& dialog) {
        QTest::keyClicks(dialog.findChild<QLineEdit*>(), QStringLiteral("saved"));
        QTest::keyClick(dialog.findChild<QLineEdit*>(), Qt::Key_Return);
    });
    Key(Qt::Key_Y, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(MessagesIn(tmcInbox).size(), 2);
    EXPECT_EQ(MessagesIn(tmcSaved).size(), 2);
    EXPECT_EQ(Status(), QStringLiteral("Copied to Saved: 2 messages."));
}

TEST_F(MessageCommandsTest, AllSelectedMessagesAreDraggedAndTheFolderOnShowStays)
{
    QList<qint32> references;
    for (int i = 0; i < 3; ++i)
        references.append(FileMail(Mail("Dragged")));
    OpenWindow();
    QMimeData data;
    data.setText(
        QStringLiteral("!KVMessage Reference=\"%1\" All=\"%1,%2\"").arg(references.at(0)).arg(references.at(1)));
    Drop(data, tmcSaved);
    EXPECT_EQ(MessagesIn(tmcSaved), references.mid(0, 2));
    EXPECT_EQ(List().Category(), tmcInbox);
    EXPECT_EQ(List().References(), references.mid(2));
}

TEST_F(MessageCommandsTest, WhatTheUserMayNotDoIsSaid)
{
    AddUser(QStringLiteral("Guest"), 0);
    const qint32 reference = FileMail(Mail("One"));
    OpenWindow(QStringLiteral("Guest"));
    Select(reference);
    Ui.ExpectWarning(QStringLiteral("You have no right to delete this message. A technician can give it to you."));
    QTest::keyClick(&Grid(), Qt::Key_Delete);
    EXPECT_EQ(MessagesIn(tmcInbox), QList<qint32>{reference});
}
