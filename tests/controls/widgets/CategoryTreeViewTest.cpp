// SPDX-License-Identifier: Apache-2.0

// The tree whose nodes have keys.

#include "platform/widgets/CategoryTreeView.h"

#include "platform/widgets/Icons.h"
#include "platform/widgets/Twips.h"
#include "support/WarningGuard.h"

#include <QAbstractItemModelTester>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

class CategoryTreeViewTest : public testing::Test
{
protected:
    void SetUp() override
    {
        Tester = std::make_unique<QAbstractItemModelTester>(Tree.model(),
                                                            QAbstractItemModelTester::FailureReportingMode::Warning);
        Add(QString(), QStringLiteral("c1"), QStringLiteral("Inbox"));
        Add(QString(), QStringLiteral("c3"), QStringLiteral("Saved"));
        Add(QStringLiteral("c3"), QStringLiteral("c8"), QStringLiteral("Requests"));
        Add(QStringLiteral("c3"), QStringLiteral("c9"), QStringLiteral("Jazz"));
        Tree.resize(250, 300);
        Tree.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&Tree));
        QObject::connect(&Tree, &CategoryTreeView::NodeClick, &Tree,
                         [this](const QString& key) { Clicks.append(key); });
    }
    void TearDown() override { Tree.close(); }

    bool Add(const QString& parent, const QString& key, const QString& text)
    {
        return Tree.AddNode(parent, key, text, Closed, Open);
    }
    QTreeWidgetItem* Item(const QString& key)
    {
        for (QTreeWidgetItemIterator item(&Tree); *item; ++item) {
            if (Tree.KeyOfItem(**item) == key)
                return *item;
        }
        return nullptr;
    }
    QPoint At(const QString& key) { return Tree.visualItemRect(Item(key)).center(); }
    QImage PictureOf(const QString& key) { return Item(key)->icon(0).pixmap(16, 16).toImage(); }
    static QImage Picture(const QIcon& icon) { return icon.pixmap(16, 16).toImage(); }
    QLineEdit* Editor() const { return Tree.viewport()->findChild<QLineEdit*>(); }

    const QIcon Closed = Icons::Get(QStringLiteral("smallclosedfolder"));
    const QIcon Open = Icons::Get(QStringLiteral("smallopenfolder"));
    CategoryTreeView Tree;
    std::unique_ptr<QAbstractItemModelTester> Tester;
    QStringList Clicks;
};

TEST_F(CategoryTreeViewTest, NodesAreFoundByTheirKeys)
{
    EXPECT_EQ(Tree.NodeCount(), 4);
    EXPECT_TRUE(Tree.HasNode(QStringLiteral("c8")));
    EXPECT_EQ(Tree.NodeText(QStringLiteral("c8")), QStringLiteral("Requests"));
    EXPECT_EQ(Tree.ParentKey(QStringLiteral("c8")), QStringLiteral("c3"));
    EXPECT_EQ(Tree.ParentKey(QStringLiteral("c3")), QString());
}

TEST_F(CategoryTreeViewTest, AKeyIsAddedOnce)
{
    EXPECT_FALSE(Add(QString(), QStringLiteral("c8"), QStringLiteral("Other")));
    EXPECT_EQ(Tree.NodeCount(), 4);
    EXPECT_EQ(Tree.NodeText(QStringLiteral("c8")), QStringLiteral("Requests"));
}

TEST_F(CategoryTreeViewTest, AKeyThatIsNotThereDoesNothing)
{
    const QString absent = QStringLiteral("c99");
    EXPECT_FALSE(Tree.HasNode(absent));
    EXPECT_EQ(Tree.NodeText(absent), QString());
    EXPECT_EQ(Tree.ParentKey(absent), QString());
    EXPECT_FALSE(Tree.IsExpanded(absent));
    EXPECT_FALSE(Tree.SelectNode(absent));
    EXPECT_FALSE(Tree.SelectNode(QString()));
    Tree.Expand(absent);
    Tree.SortChildren(absent);
    Tree.EnsureVisible(absent);
    Tree.SetNodeIcons(absent, Closed, Open);
    EXPECT_EQ(Tree.SelectedKey(), QString());
    EXPECT_TRUE(Add(absent, QStringLiteral("c10"), QStringLiteral("Stray")));
    EXPECT_EQ(Tree.ParentKey(QStringLiteral("c10")), QString());
}

TEST_F(CategoryTreeViewTest, ASelectedNodeBearsItsOtherPicture)
{
    EXPECT_EQ(PictureOf(QStringLiteral("c1")), Picture(Closed));
    Tree.SelectNode(QStringLiteral("c1"));
    EXPECT_EQ(PictureOf(QStringLiteral("c1")), Picture(Open));
    Tree.SelectNode(QStringLiteral("c3"));
    EXPECT_EQ(PictureOf(QStringLiteral("c1")), Picture(Closed));
    const QIcon trash = Icons::Get(QStringLiteral("trash"));
    Tree.SetNodeIcons(QStringLiteral("c3"), Closed, trash);
    EXPECT_EQ(PictureOf(QStringLiteral("c3")), Picture(trash));
    EXPECT_TRUE(Clicks.isEmpty()) << "selecting by code raises no event";
}

TEST_F(CategoryTreeViewTest, ChildrenAreOrderedByTheirTexts)
{
    Tree.SortChildren(QStringLiteral("c3"));
    EXPECT_EQ(Item(QStringLiteral("c3"))->child(0)->text(0), QStringLiteral("Jazz"));
    EXPECT_EQ(Item(QStringLiteral("c3"))->child(1)->text(0), QStringLiteral("Requests"));
}

TEST_F(CategoryTreeViewTest, ClearingForgetsAllOfIt)
{
    Tree.SelectNode(QStringLiteral("c1"));
    Tree.SetDropHighlight(QStringLiteral("c3"));
    Tree.ClearNodes();
    EXPECT_EQ(Tree.NodeCount(), 0);
    EXPECT_EQ(Tree.SelectedKey(), QString());
    EXPECT_EQ(Tree.DropHighlight(), QString());
    EXPECT_TRUE(Add(QString(), QStringLiteral("c1"), QStringLiteral("Again")));
    EXPECT_EQ(Tree.SelectedKey(), QString());
}

TEST_F(CategoryTreeViewTest, PositionsAreTwipsOfTheViewport)
{
    const QPoint pixels = At(QStringLiteral("c3"));
    const QPointF twips(Twips::FromPixels(Tree, pixels.x()), Twips::FromPixels(Tree, pixels.y()));
    EXPECT_EQ(Tree.HitTest(twips), QStringLiteral("c3"));
    EXPECT_EQ(Tree.HitTest(QPointF(10, Twips::FromPixels(Tree, 290))), QString());
    QSignalSpy pressed(&Tree, &CategoryTreeView::MouseDown);
    QTest::mouseClick(Tree.viewport(), Qt::LeftButton, {}, pixels);
    ASSERT_EQ(pressed.size(), 1);
    EXPECT_EQ(pressed.first().at(1).toPointF(), twips);
}

TEST_F(CategoryTreeViewTest, AClickIsToldOnceAndAtTheRelease)
{
    QTest::mousePress(Tree.viewport(), Qt::LeftButton, {}, At(QStringLiteral("c3")));
    EXPECT_TRUE(Clicks.isEmpty());
    QTest::mouseRelease(Tree.viewport(), Qt::LeftButton, {}, At(QStringLiteral("c3")));
    EXPECT_EQ(Clicks, QStringList{QStringLiteral("c3")});
    QTest::mouseClick(Tree.viewport(), Qt::LeftButton, {}, QPoint(10, 290));
    EXPECT_EQ(Clicks.size(), 1);
}

TEST_F(CategoryTreeViewTest, OpeningANodeByItsArrowChoosesNothing)
{
    const QRect node = Tree.visualItemRect(Item(QStringLiteral("c3")));
    QTest::mouseClick(Tree.viewport(), Qt::LeftButton, {}, QPoint(node.left() - 8, node.center().y()));
    EXPECT_TRUE(Tree.IsExpanded(QStringLiteral("c3")));
    EXPECT_TRUE(Clicks.isEmpty());
}

TEST_F(CategoryTreeViewTest, TheRightButtonIsToldAndSelectsNothingByItself)
{
    QSignalSpy pressed(&Tree, &CategoryTreeView::MouseDown);
    QSignalSpy released(&Tree, &CategoryTreeView::MouseUp);
    QTest::mouseClick(Tree.viewport(), Qt::RightButton, {}, At(QStringLiteral("c3")));
    EXPECT_EQ(pressed.size(), 1);
    EXPECT_EQ(released.size(), 1);
    EXPECT_EQ(Tree.SelectedKey(), QString());
    EXPECT_TRUE(Clicks.isEmpty());
}

TEST_F(CategoryTreeViewTest, AGestureThatBecameADragIsNoClick)
{
    QTest::mousePress(Tree.viewport(), Qt::LeftButton, {}, At(QStringLiteral("c3")));
    Tree.EndMouseTracking();
    QTest::mouseRelease(Tree.viewport(), Qt::LeftButton, {}, At(QStringLiteral("c3")));
    EXPECT_TRUE(Clicks.isEmpty());
}

TEST_F(CategoryTreeViewTest, HeldArrowKeysTellTheLastNodeOnly)
{
    Tree.SelectNode(QStringLiteral("c1"));
    Tree.expandAll();
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(&Tree, Qt::Key_Down);
    EXPECT_TRUE(Clicks.isEmpty());
    ASSERT_TRUE(QTest::qWaitFor([this] { return !Clicks.isEmpty(); }));
    EXPECT_EQ(Clicks, QStringList{QStringLiteral("c9")});
}

TEST_F(CategoryTreeViewTest, ASelectionByCodeEndsTheRestOfTheKeys)
{
    Tree.SelectNode(QStringLiteral("c1"));
    QTest::keyClick(&Tree, Qt::Key_Down);
    Tree.SelectNode(QStringLiteral("c1"));
    QTest::qWait(250); // longer than keys rest
    EXPECT_TRUE(Clicks.isEmpty());
}

TEST_F(CategoryTreeViewTest, EnterAndSpaceTellTheNodeAtOnce)
{
    Tree.SelectNode(QStringLiteral("c3"));
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space})
        QTest::keyClick(&Tree, key);
    EXPECT_EQ(Clicks, QStringList(3, QStringLiteral("c3")));
}

TEST_F(CategoryTreeViewTest, AKeyThatIsTakenDoesNotMoveTheSelection)
{
    Tree.SelectNode(QStringLiteral("c1"));
    QObject::connect(&Tree, &CategoryTreeView::KeyDown, &Tree, [](QKeyEvent* event) { event->accept(); });
    QTest::keyClick(&Tree, Qt::Key_Down);
    EXPECT_EQ(Tree.SelectedKey(), QStringLiteral("c1"));
}

TEST_F(CategoryTreeViewTest, ALabelIsEditedOnlyWhenItIsAllowed)
{
    bool allowed = false;
    QObject::connect(&Tree, &CategoryTreeView::BeforeLabelEdit, &Tree, [&](bool& cancel) { cancel = !allowed; });
    Tree.StartLabelEdit(); // nothing is selected
    Tree.SelectNode(QStringLiteral("c8"));
    Tree.StartLabelEdit();
    EXPECT_FALSE(Tree.IsEditingLabel());
    allowed = true;
    Tree.StartLabelEdit();
    EXPECT_TRUE(Tree.IsEditingLabel());
    ASSERT_NE(Editor(), nullptr);
    EXPECT_EQ(Editor()->text(), QStringLiteral("Requests"));
    QTest::keyClick(Editor(), Qt::Key_Escape);
    EXPECT_FALSE(Tree.IsEditingLabel());
}

TEST_F(CategoryTreeViewTest, ATypedLabelStandsUnlessItIsRefused)
{
    bool refuse = true;
    QStringList typed;
    QObject::connect(&Tree, &CategoryTreeView::AfterLabelEdit, &Tree, [&](bool& cancel, const QString& text) {
        typed.append(text);
        cancel = refuse;
    });
    for (const bool refused : {true, false}) {
        refuse = refused;
        Tree.SelectNode(QStringLiteral("c8"));
        Tree.StartLabelEdit();
        ASSERT_NE(Editor(), nullptr);
        Editor()->selectAll();
        QTest::keyClicks(Editor(), QStringLiteral("Wishes"));
        QTest::keyClick(Editor(), Qt::Key_Return);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !Tree.IsEditingLabel(); }));
        EXPECT_EQ(Tree.NodeText(QStringLiteral("c8")), refused ? QStringLiteral("Requests") : QStringLiteral("Wishes"));
    }
    EXPECT_EQ(typed, QStringList(2, QStringLiteral("Wishes")));
    EXPECT_TRUE(Clicks.isEmpty()) << "the Enter was the label's";
}

TEST_F(CategoryTreeViewTest, ATreeThatIsRebuiltWhileALabelEndsIsNotHarmed)
{
    QObject::connect(&Tree, &CategoryTreeView::AfterLabelEdit, &Tree, [&] {
        Tree.ClearNodes();
        Add(QString(), QStringLiteral("c1"), QStringLiteral("Inbox"));
    });
    WarningGuard::Expect(QStringLiteral("an editor that does not belong to this view")); // it went with its node
    Tree.SelectNode(QStringLiteral("c8"));
    Tree.StartLabelEdit();
    QTest::keyClicks(Editor(), QStringLiteral("Wishes"));
    QTest::keyClick(Editor(), Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !Tree.IsEditingLabel(); }));
    EXPECT_EQ(Tree.NodeCount(), 1);
    EXPECT_EQ(Tree.NodeText(QStringLiteral("c1")), QStringLiteral("Inbox"));
}

TEST_F(CategoryTreeViewTest, NodesAreNotEditedByClicking)
{
    QTest::mouseClick(Tree.viewport(), Qt::LeftButton, {}, At(QStringLiteral("c1")));
    QTest::mouseDClick(Tree.viewport(), Qt::LeftButton, {}, At(QStringLiteral("c1")));
    EXPECT_FALSE(Tree.IsEditingLabel());
}

TEST_F(CategoryTreeViewTest, TheMenuKeyIsToldAndTheMouseIsNotTakenForIt)
{
    QSignalSpy popup(&Tree, &CategoryTreeView::PopupKey);
    QContextMenuEvent mouse(QContextMenuEvent::Mouse, QPoint(5, 5), Tree.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(Tree.viewport(), &mouse);
    EXPECT_EQ(popup.size(), 0);
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(5, 5), Tree.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(Tree.viewport(), &key);
    EXPECT_EQ(popup.size(), 1);
}

TEST_F(CategoryTreeViewTest, ADragIsAskedAboutAtEachMoveAndTheAnswerIsTheEffect)
{
    QMimeData data;
    data.setText(QStringLiteral("text"));
    Qt::DropAction answer = Qt::CopyAction;
    Qt::DropAction proposed = Qt::IgnoreAction;
    QObject::connect(&Tree, &CategoryTreeView::DragOver, &Tree,
                     [&](const QMimeData& dragged, QPointF twips, Qt::DropAction& effect) {
                         EXPECT_EQ(&dragged, &data);
                         EXPECT_EQ(Tree.HitTest(twips), QStringLiteral("c3"));
                         proposed = effect;
                         effect = answer;
                     });
    const QPoint at = At(QStringLiteral("c3"));
    QDragEnterEvent enter(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(Tree.viewport(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDragMoveEvent move(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(Tree.viewport(), &move);
    EXPECT_EQ(proposed, move.proposedAction());
    EXPECT_TRUE(move.isAccepted());
    EXPECT_EQ(move.dropAction(), Qt::CopyAction);
    answer = Qt::IgnoreAction;
    QDragMoveEvent refused(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(Tree.viewport(), &refused);
    EXPECT_FALSE(refused.isAccepted());
    QSignalSpy left(&Tree, &CategoryTreeView::DragLeft);
    QDragLeaveEvent leave;
    QApplication::sendEvent(Tree.viewport(), &leave);
    EXPECT_EQ(left.size(), 1);
}

TEST_F(CategoryTreeViewTest, ADropIsIgnoredUnlessSomethingWasDone)
{
    QMimeData data;
    Qt::DropAction done = Qt::IgnoreAction;
    Qt::DropAction before = Qt::CopyAction;
    QObject::connect(&Tree, &CategoryTreeView::Dropped, &Tree,
                     [&](const QMimeData&, QPointF, Qt::DropAction& effect) { before = std::exchange(effect, done); });
    for (const Qt::DropAction action : {Qt::IgnoreAction, Qt::MoveAction, Qt::CopyAction}) {
        done = action;
        QDragEnterEvent enter(At(QStringLiteral("c3")), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(Tree.viewport(), &enter);
        QDropEvent drop(At(QStringLiteral("c3")), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(Tree.viewport(), &drop);
        EXPECT_EQ(before, Qt::IgnoreAction);
        EXPECT_EQ(drop.isAccepted(), action != Qt::IgnoreAction);
        if (drop.isAccepted()) {
            EXPECT_EQ(drop.dropAction(), action);
        }
    }
    EXPECT_EQ(Tree.NodeCount(), 4) << "the view itself moves nothing";
}
