// SPDX-License-Identifier: Apache-2.0

// Taking back what was deleted or moved at this desk.

#include "messages/MessageUndo.h"

#include "WindowTest.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/DragData.h"
#include "platform/widgets/FlexGrid.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QPushButton>
#include <QStatusBar>

namespace
{
class MessageUndoTest : public WindowTest
{
protected:
    FlexGrid& Grid() { return *Window->List().findChild<FlexGrid*>(QStringLiteral("grdMessages")); }
    NoticeBar& Notice() { return *Window->findChild<NoticeBar*>(QStringLiteral("moveNotice")); }
    QAction& UndoAction() { return *Window->findChild<QAction*>(QStringLiteral("undoMove")); }
    QString Status() { return Window->statusBar()->currentMessage(); }
    void Select(qint32 reference) { SelectByKeys(*Window, reference); }
    void Delete(qint32 reference)
    {
        Select(reference);
        QTest::keyClick(&Grid(), Qt::Key_Delete);
    }
    void PressUndo() { QTest::keyClick(Window.get(), Qt::Key_Z, Qt::ControlModifier); }
};
} // namespace

TEST_F(MessageUndoTest, ADeletedMessageComesBackToItsFolderByTheKey)
{
    const qint32 reference = FileMail(Mail("Do not lose me"), tmcSaved);
    OpenWindow();
    Window->List().SetCategory(tmcSaved);
    EXPECT_FALSE(UndoAction().isEnabled());
    Delete(reference);
    EXPECT_EQ(MessagesIn(tmcDeleted), QList<qint32>{reference});
    EXPECT_EQ(Notice().Text(), QStringLiteral("“Do not lose me” was moved to Deleted Items."));
    EXPECT_TRUE(UndoAction().isEnabled());
    const Date stamp = Station.Database().LastMessageChanged();
    PressUndo();
    EXPECT_EQ(MessagesIn(tmcSaved), QList<qint32>{reference});
    EXPECT_EQ(Window->List().NumberItems(), 1);
    EXPECT_EQ(Window->List().SelectedReference(), reference);
    EXPECT_EQ(Notice().Text(), QString());
    EXPECT_EQ(Status(), QStringLiteral("“Do not lose me” is in Saved again."));
    EXPECT_FALSE(UndoAction().isEnabled());
    // Other desks follow.
    EXPECT_NE(Station.Database().LastMessageChanged(), stamp);
}

TEST_F(MessageUndoTest, SeveralAreTakenBackTheLastFirst)
{
    const qint32 first = FileMail(Mail("One"));
    const qint32 second = FileMail(Mail("Two"));
    OpenWindow();
    Delete(first);
    Delete(second);
    QTest::mouseClick(Notice().findChild<QPushButton*>(QStringLiteral("noticeButton")), Qt::LeftButton);
    EXPECT_EQ(MessagesIn(tmcInbox), QList<qint32>{second});
    PressUndo();
    EXPECT_EQ(MessagesIn(tmcInbox), (QList<qint32>{first, second}));
}

TEST_F(MessageUndoTest, AMessageThatWasDraggedToAFolderGoesBack)
{
    const qint32 reference = FileMail(Mail("Dragged"));
    OpenWindow();
    auto* tree = Window->List().findChild<CategoryTreeView*>(QStringLiteral("treeCategories"));
    const auto data = std::make_unique<QMimeData>();
    data->setText(QStringLiteral("!KVMessage Reference=%1 ").arg(reference));
    Qt::DropAction effect = Qt::MoveAction;
    tree->SetDropHighlight(QStringLiteral("c%1").arg(static_cast<int>(tmcSaved)));
    Q_EMIT tree->Dropped(*data, QPointF(), effect);
    ASSERT_EQ(MessagesIn(tmcSaved), QList<qint32>{reference});
    EXPECT_EQ(Notice().Text(), QStringLiteral("“Dragged” was moved to Saved."));
    PressUndo();
    EXPECT_EQ(MessagesIn(tmcInbox), QList<qint32>{reference});
}

TEST_F(MessageUndoTest, WhatWasDeletedForEverIsNotOffered)
{
    const qint32 reference = FileMail(Mail("Gone"), tmcDeleted);
    OpenWindow();
    Window->List().SetCategory(tmcDeleted);
    Ui.ExpectConfirmation(QStringLiteral("Are you sure you want to permanently delete 'Gone'?"), MessageBoxAnswer::Yes);
    Delete(reference);
    EXPECT_TRUE(MessagesIn(tmcDeleted).isEmpty());
    EXPECT_EQ(Notice().Text(), QString());
    EXPECT_FALSE(UndoAction().isEnabled());
}

TEST_F(MessageUndoTest, WhatSomebodyElseMovedOnStaysThere)
{
    const qint32 reference = FileMail(Mail("Wanted"));
    OpenWindow();
    Delete(reference);
    OtherComputer("move", {QString::number(reference), QStringLiteral("Saved")});
    PressUndo();
    EXPECT_EQ(MessagesIn(tmcSaved), QList<qint32>{reference});
    EXPECT_EQ(Status(), QStringLiteral("“Wanted” stays where it is: somebody moved it to Saved meanwhile."));
    EXPECT_FALSE(UndoAction().isEnabled());
}

TEST_F(MessageUndoTest, WhatSomebodyElseDeletedForEverIsSaid)
{
    const qint32 reference = FileMail(Mail("Wanted"));
    OpenWindow();
    Delete(reference);
    OtherComputer("delete", {QString::number(reference), QStringLiteral("--permanently"), QStringLiteral("--yes")});
    PressUndo();
    EXPECT_EQ(Status(), QStringLiteral("“Wanted” cannot be taken back: it was deleted for ever meanwhile."));
    EXPECT_FALSE(UndoAction().isEnabled());
}

TEST_F(MessageUndoTest, ALongSubjectIsShortenedAndAMissingOneNamed)
{
    const qint32 longOne = FileMail(Mail(QByteArray(200, 'a')));
    const qint32 none = FileMail(Mail(""));
    OpenWindow();
    Delete(longOne);
    EXPECT_EQ(Notice().Text(), u'“' + QString(60, u'a') + QStringLiteral("…” was moved to Deleted Items."));
    Delete(none);
    EXPECT_EQ(Notice().Text(), QStringLiteral("The message was moved to Deleted Items."));
}
