// SPDX-License-Identifier: Apache-2.0

// Dragging a folder out of the tree.

#include "messageslist/FolderTest.h"
#include "platform/widgets/DragData.h"

class TreeDragTest : public FolderTest
{
protected:
    void SetUp() override
    {
        Inner = MakeFolder(QStringLiteral("Requests"), tmcSaved);
        SaveNew(QStringLiteral("In"));
        Attach();
        Tree->Expand(Key(tmcSaved));
        DragRunner::SetCurrent([this](QWidget& source, DragData* data, Qt::DropActions allowed) {
            EXPECT_EQ(&source, Tree);
            EXPECT_EQ(allowed, Qt::CopyAction | Qt::MoveAction);
            EXPECT_EQ(data->formats(), QStringList{QStringLiteral("text/plain")});
            Dragged.append(data->text());
            if (Target != 0)
                Result = Drop(*data, Target);
            delete data;
            return Result;
        });
        TakeFills();
    }
    void TearDown() override { DragRunner::SetCurrent({}); }

    /// Presses on a node, moves with the button down, and lets go.
    void DragNode(int category, QPoint by = QPoint(12, 0))
    {
        const QPoint from = NodePosition(category);
        QTest::mousePress(Tree->viewport(), Qt::LeftButton, {}, from);
        Move(from + by);
        QTest::mouseRelease(Tree->viewport(), Qt::LeftButton, {}, from + by);
    }
    void Move(QPoint to, Qt::MouseButtons buttons = Qt::LeftButton)
    {
        QMouseEvent move(QEvent::MouseMove, to, Tree->viewport()->mapToGlobal(to), Qt::NoButton, buttons,
                         Qt::NoModifier);
        QApplication::sendEvent(Tree->viewport(), &move);
    }

    int Inner = 0;
    int Target = 0;
    Qt::DropAction Result = Qt::IgnoreAction;
    QStringList Dragged;
};

TEST_F(TreeDragTest, AFolderIsDraggedByItsNumber)
{
    DragNode(Inner);
    EXPECT_EQ(Dragged, QStringList{QStringLiteral("!KVMessageCategory Reference=\"8\"")});
}

TEST_F(TreeDragTest, TheFolderBecomesCurrentWithoutAQuery)
{
    DragNode(Inner);
    EXPECT_EQ(SelectedCategory(), Inner);
    EXPECT_EQ(List->Category(), Inner);
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("In")});
}

TEST_F(TreeDragTest, UpToFivePixelsIsAClick)
{
    DragNode(Inner, QPoint(5, 5));
    EXPECT_EQ(Dragged, QStringList());
    EXPECT_EQ(TakeFills(), 1);
    DragNode(Inner, QPoint(6, 0));
    EXPECT_EQ(Dragged.size(), 1);
}

TEST_F(TreeDragTest, OnePressStartsOneDrag)
{
    const QPoint from = NodePosition(Inner);
    QTest::mousePress(Tree->viewport(), Qt::LeftButton, {}, from);
    Move(from + QPoint(10, 0));
    Move(from + QPoint(20, 0));
    Move(from + QPoint(30, 0));
    QTest::mouseRelease(Tree->viewport(), Qt::LeftButton, {}, from);
    EXPECT_EQ(Dragged.size(), 1);
    Move(from + QPoint(30, 0));
    EXPECT_EQ(Dragged.size(), 1);
    EXPECT_EQ(TakeFills(), 0) << "the end of a drag is no click";
}

TEST_F(TreeDragTest, ATopLevelFolderStaysButBecomesCurrent)
{
    DragNode(tmcSaved);
    EXPECT_EQ(Dragged, QStringList());
    EXPECT_EQ(List->Category(), tmcSaved);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(TreeDragTest, WithoutTheRightOrAUserNothingIsDragged)
{
    Directory.User.Rights = 31 & ~static_cast<int>(DirectoryRight::CanEditCategories);
    DragNode(Inner);
    EXPECT_EQ(Dragged, QStringList());
    EXPECT_EQ(List->Category(), Inner);
    Directory.User.Rights = 31;
    List->SetTolvaDatabase(nullptr);
    DragNode(Inner);
    EXPECT_EQ(Dragged, QStringList());
}

TEST_F(TreeDragTest, AMoveWithoutTheButtonOrFromTheEmptyPartDragsNothing)
{
    const QPoint from = NodePosition(Inner);
    Move(from, Qt::NoButton);
    Move(from + QPoint(20, 0), Qt::NoButton);
    const QPoint empty(10, Tree->viewport()->height() - 3);
    QTest::mousePress(Tree->viewport(), Qt::LeftButton, {}, empty);
    Move(from);
    QTest::mouseRelease(Tree->viewport(), Qt::LeftButton, {}, from);
    EXPECT_EQ(Dragged, QStringList());
    EXPECT_EQ(List->Category(), tmcInbox);
}

TEST_F(TreeDragTest, AFolderDraggedOntoAnotherMovesThere)
{
    Target = tmcSent;
    DragNode(Inner);
    EXPECT_EQ(Result, Qt::MoveAction);
    EXPECT_EQ(StoredFolders(), QStringList{QStringLiteral("8 4 Requests")});
    EXPECT_EQ(Tree->ParentKey(Key(Inner)), Key(tmcSent));
}
