// SPDX-License-Identifier: Apache-2.0

// The tree of folders in the messages list: what it shows, choosing by mouse and keys, refreshing.

#include "messageslist/FolderTest.h"
#include "platform/widgets/Icons.h"

#include <QElapsedTimer>
#include <QScrollBar>
#include <QTreeWidget>

namespace
{
QImage Picture(const QIcon& icon)
{
    return icon.pixmap(16, 16).toImage();
}
} // namespace

class TreeTest : public FolderTest
{
protected:
    /// "TEXT" of all nodes, each indented by its depth.
    QStringList Shown() const
    {
        QStringList lines;
        for (QTreeWidgetItemIterator item(Tree); *item; ++item) {
            QString indent;
            for (const QTreeWidgetItem* parent = (*item)->parent(); parent; parent = parent->parent())
                indent += QLatin1Char('-');
            lines.append(indent + (*item)->text(0));
        }
        return lines;
    }
    QIcon IconOf(int category) const
    {
        for (QTreeWidgetItemIterator item(Tree); *item; ++item) {
            if (Tree->KeyOfItem(**item) == Key(category))
                return (*item)->icon(0);
        }
        return {};
    }
};

TEST_F(TreeTest, ShowsTheFixedFoldersAndTheUsersOwnBelowTheirParents)
{
    const int requests = MakeFolder(QStringLiteral("Requests"), tmcSaved);
    MakeFolder(QStringLiteral("Jazz"), requests);
    MakeFolder(QStringLiteral("Ads"));
    Attach();
    const QStringList expected = {QStringLiteral("Inbox"),         QStringLiteral("Outbox"),
                                  QStringLiteral("Saved"),         QStringLiteral("-Requests"),
                                  QStringLiteral("--Jazz"),        QStringLiteral("Sent"),
                                  QStringLiteral("Deleted Items"), QStringLiteral("Draft Messages"),
                                  QStringLiteral("Auto-Messages"), QStringLiteral("Ads")};
    EXPECT_EQ(Shown(), expected);
    EXPECT_EQ(Tree->ParentKey(Key(requests)), QStringLiteral("c3"));
    EXPECT_EQ(Tree->ParentKey(QStringLiteral("c3")), QString());
    EXPECT_EQ(Tree->NodeText(QStringLiteral("c5")), QStringLiteral("Deleted Items"));
}

TEST_F(TreeTest, AFolderWithoutAPictureOfItsOwnIsClosedUntilItIsSelected)
{
    Attach();
    EXPECT_EQ(SelectedCategory(), tmcInbox);
    EXPECT_EQ(Picture(IconOf(tmcInbox)), Picture(Icons::Get(QStringLiteral("smallopenfolder"))));
    EXPECT_EQ(Picture(IconOf(tmcSaved)), Picture(Icons::Get(QStringLiteral("foldersaved"))));
    ClickNode(tmcSaved);
    EXPECT_EQ(Picture(IconOf(tmcInbox)), Picture(Icons::Get(QStringLiteral("smallclosedfolder"))));
    EXPECT_EQ(Picture(IconOf(tmcSaved)), Picture(Icons::Get(QStringLiteral("foldersaved"))));
}

TEST_F(TreeTest, WithoutAnOpenStationThereIsNothingToShow)
{
    List->UpdateCategories();
    EXPECT_EQ(Tree->NodeCount(), 0);
    List->SetTolvaDatabase(Station.get()); // not opened
    List->UpdateCategories();
    EXPECT_EQ(Tree->NodeCount(), 0);
}

TEST_F(TreeTest, AClickOnAFolderShowsItAndStoresItAsTheUsersChoice)
{
    OpenStation();
    SaveNew(QStringLiteral("Kept"), tmcSaved);
    Attach();
    Activate();
    ClickNode(tmcSaved);
    EXPECT_EQ(List->Category(), tmcSaved);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Kept")});
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Directory.User.Preferences.value(QStringLiteral("SelectedMessageCategory")).toInt(), 3);
    EXPECT_TRUE(Tree->hasFocus());
    EXPECT_TRUE(Tree->isEnabled());
}

TEST_F(TreeTest, AFolderChosenByTheHostTakesTheFocusToTheTreeAsAClickDoes)
{
    Attach();
    Activate();
    Grid->setFocus();
    List->SetCategory(tmcSaved);
    EXPECT_EQ(SelectedCategory(), tmcSaved);
    EXPECT_TRUE(Tree->hasFocus());
}

TEST_F(TreeTest, TheStoredChoiceIsShownAtTheNextStart)
{
    Directory.User.Preferences.insert(QStringLiteral("SelectedMessageCategory"), QStringLiteral("6"));
    Attach();
    EXPECT_EQ(List->Category(), tmcDrafts);
    EXPECT_EQ(SelectedCategory(), tmcDrafts);
}

TEST_F(TreeTest, NoChoiceIsStoredForNobody)
{
    Directory.SignedIn = nullptr;
    Attach();
    ClickNode(tmcSaved);
    EXPECT_EQ(List->Category(), tmcSaved);
    EXPECT_TRUE(Directory.User.Preferences.isEmpty());
}

TEST_F(TreeTest, AClickOnTheCurrentFolderRunsNoQueryNotEvenAfterTheFindTextChanged)
{
    Attach();
    ClickNode(tmcInbox);
    EXPECT_EQ(TakeFills(), 0);
    Box->SetText(QStringLiteral("lighthouse"));
    ClickNode(tmcInbox);
    EXPECT_EQ(TakeFills(), 0);
    ClickNode(tmcSaved);
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_TRUE(LastQuery().contains(QStringLiteral("lighthouse")));
}

TEST_F(TreeTest, ThePointerMustBeReleasedOnTheFolderThatItPressed)
{
    Attach();
    QTest::mousePress(Tree->viewport(), Qt::LeftButton, {}, NodePosition(tmcSaved));
    QTest::mouseRelease(Tree->viewport(), Qt::LeftButton, {}, NodePosition(tmcDeleted));
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_EQ(List->Category(), tmcInbox);
}

TEST_F(TreeTest, ArrowKeysChooseAFolderOnlyWhenTheyRest)
{
    Attach();
    Activate();
    Tree->setFocus();
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(Tree, Qt::Key_Down);
    EXPECT_EQ(SelectedCategory(), tmcSent);
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_EQ(List->Category(), tmcInbox);
    ASSERT_TRUE(QTest::qWaitFor([this] { return List->Category() == tmcSent; }));
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_TRUE(Tree->hasFocus());
}

TEST_F(TreeTest, EnterChoosesAFolderAtOnce)
{
    Attach();
    Activate();
    Tree->setFocus();
    QTest::keyClick(Tree, Qt::Key_Down);
    QTest::keyClick(Tree, Qt::Key_Return);
    EXPECT_EQ(List->Category(), tmcOutbox);
    EXPECT_EQ(TakeFills(), 1);
    QTest::qWait(250); // longer than arrow keys rest
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(TreeTest, EnterInTheTreeStaysThere)
{
    Attach();
    Tree->setFocus();
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(Tree, &enter);
    EXPECT_TRUE(enter.isAccepted()) << "a dialog around it would take its default button";
}

TEST_F(TreeTest, F5ShowsWhatAnotherComputerDidToTheFoldersWithoutAQuery)
{
    const int gone = MakeFolder(QStringLiteral("Gone"));
    Attach();
    clsCategory added;
    added.SetDescription(QStringLiteral("Added"));
    added.SetParentReference(tmcSaved);
    ASSERT_TRUE(OtherComputer().SaveMessageCategory(added));
    ASSERT_TRUE(OtherComputer().DeleteMessageCategory(gone));
    QTest::keyClick(Tree, Qt::Key_F5);
    EXPECT_FALSE(HasNode(gone));
    EXPECT_TRUE(HasNode(added.Reference()));
    EXPECT_EQ(TakeFills(), 0);
    EXPECT_EQ(SelectedCategory(), tmcInbox);
}

TEST_F(TreeTest, RefreshingSelectsTheCurrentFolderWhenTheSelectedOneIsGone)
{
    const int gone = MakeFolder(QStringLiteral("Gone"), tmcSaved);
    Attach();
    Tree->Expand(Key(tmcSaved));
    RightClickNode(gone);
    List->CategoryMenu()->close();
    EXPECT_EQ(SelectedCategory(), gone);
    EXPECT_EQ(List->Category(), tmcInbox);
    ASSERT_TRUE(OtherComputer().DeleteMessageCategory(gone));
    QTest::keyClick(Tree, Qt::Key_F5);
    EXPECT_EQ(SelectedCategory(), tmcInbox);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(TreeTest, RefreshingKeepsWhatIsOpenAndSelectedAndScrolled)
{
    for (int i = 0; i < 60; ++i)
        MakeFolder(QStringLiteral("Folder %1").arg(i, 2, 10, QLatin1Char('0')), tmcSaved);
    const int inner = MakeFolder(QStringLiteral("Inner"), tmcSent);
    Attach();
    Tree->Expand(Key(tmcSaved));
    Tree->Expand(Key(tmcSent));
    RightClickNode(tmcSaved);
    List->CategoryMenu()->close();
    Tree->verticalScrollBar()->setValue(20);
    List->UpdateCategories();
    EXPECT_TRUE(Tree->IsExpanded(Key(tmcSaved)));
    EXPECT_TRUE(Tree->IsExpanded(Key(tmcSent)));
    EXPECT_FALSE(Tree->IsExpanded(Key(inner)));
    EXPECT_EQ(SelectedCategory(), tmcSaved);
    EXPECT_EQ(Tree->verticalScrollBar()->value(), 20);
}

TEST_F(TreeTest, TheTreeWaitsWhileTheListFills)
{
    OpenStation();
    for (int i = 0; i < 30; ++i)
        SaveNew(QStringLiteral("Message"));
    Attach();
    int looked = 0;
    Ui.DoAtYields([&] {
        ++looked;
        EXPECT_FALSE(Tree->isEnabled());
    });
    List->UpdateDisplay();
    EXPECT_GT(looked, 0);
    EXPECT_TRUE(Tree->isEnabled());
    Ui.DoAtYields({});
}

TEST_F(TreeTest, AFolderChosenWhileTheListFillsIsShownAtTheEnd)
{
    OpenStation();
    for (int i = 0; i < 60; ++i)
        SaveNew(QStringLiteral("Message"));
    SaveNew(QStringLiteral("Kept"), tmcSaved);
    Attach();
    bool done = false;
    Ui.DoAtYields([&] {
        if (!std::exchange(done, true))
            List->SetCategory(tmcSaved);
    });
    List->UpdateDisplay();
    Ui.DoAtYields({});
    EXPECT_TRUE(done);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Kept")});
}

TEST_F(TreeTest, ThreeThousandFoldersAreShownWithinASecond)
{
    OpenStation();
    clsCategory top;
    top.SetDescription(QStringLiteral("Archive"));
    for (int year = 0; year < 30; ++year) {
        auto folder = std::make_unique<clsCategory>();
        folder->SetDescription(QStringLiteral("Year %1").arg(year));
        for (int day = 0; day < 99; ++day) {
            auto leaf = std::make_unique<clsCategory>();
            leaf->SetDescription(QStringLiteral("Day %1").arg(day));
            folder->AddSubCategory(std::move(leaf));
        }
        top.AddSubCategory(std::move(folder));
    }
    ASSERT_TRUE(Station->SaveMessageCategory(top));
    Station->UpdateCategoryTree();
    Attach();
    ASSERT_EQ(Tree->NodeCount(), 7 + 1 + 30 + 30 * 99);
    Tree->expandAll();
    QElapsedTimer timer;
    timer.start();
    List->UpdateCategories();
    EXPECT_LT(timer.elapsed(), 1000);
    EXPECT_TRUE(Tree->IsExpanded(Key(top.Reference())));
    EXPECT_EQ(SelectedCategory(), tmcInbox);
}

TEST_F(TreeTest, AChainOfFiveHundredFoldersOpensToItsEnd)
{
    OpenStation();
    auto chain = std::make_unique<clsCategory>();
    chain->SetDescription(QStringLiteral("Deepest"));
    for (int i = 1; i < 500; ++i) {
        auto outer = std::make_unique<clsCategory>();
        outer->SetDescription(QStringLiteral("Level %1").arg(i));
        outer->AddSubCategory(std::move(chain));
        chain = std::move(outer);
    }
    ASSERT_TRUE(Station->SaveMessageCategory(*chain));
    Station->UpdateCategoryTree();
    Attach();
    ASSERT_EQ(Tree->NodeCount(), 507);
    Tree->expandAll();
    const int deepest = Station->LastMessageCategoryReference();
    QElapsedTimer timer;
    timer.start();
    List->SetCategory(static_cast<enTolvaMessageCategories>(deepest));
    List->UpdateCategories();
    EXPECT_LT(timer.elapsed(), 2000);
    EXPECT_EQ(SelectedCategory(), deepest);
    EXPECT_EQ(Tree->NodeText(Key(deepest)), QStringLiteral("Deepest"));
}
