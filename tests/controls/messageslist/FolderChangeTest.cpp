// SPDX-License-Identifier: Apache-2.0

// Making, deleting and emptying folders in the tree.

#include "messageslist/FolderTest.h"
#include "platform/records/DBEngine.h"

#include <QTreeWidgetItem>

namespace
{
const QString OnlyOne =
    QStringLiteral("You cannot delete this Category because there has to be at least one in the Database");
const QString HasFolders = QStringLiteral("You cannot delete a Category unless it has no Sub-Categories");
const QString HasMessages = QStringLiteral("You cannot delete a Category unless it is empty (i.e. no Messages)");

QString DeleteQuestion(const QString& name)
{
    return QStringLiteral("Are you sure you want to delete the Message's Category '%1'?").arg(name);
}

const QString EmptyQuestion =
    QStringLiteral("Are you sure you want to delete all the Messages in the 'Deleted Items' Category?");
} // namespace

class FolderChangeTest : public FolderTest
{
protected:
    /// A folder below Saved that is on show.
    int AttachWithFolder(const QString& name)
    {
        const int inner = MakeFolder(name, tmcSaved);
        Attach();
        Activate();
        Tree->Expand(Key(tmcSaved));
        ClickNode(inner);
        EXPECT_EQ(List->Category(), inner);
        TakeFills();
        return inner;
    }
};

TEST_F(FolderChangeTest, ANewFolderIsStoredBelowTheCurrentOneAndItsNameIsAskedFor)
{
    const int inner = AttachWithFolder(QStringLiteral("Requests"));
    ChooseAt(inner, "mnuNewFolder");
    EXPECT_EQ(StoredFolders().value(1), QStringLiteral("9 8 New Category"));
    EXPECT_TRUE(Tree->IsExpanded(Key(inner)));
    EXPECT_EQ(Tree->ParentKey(Key(9)), Key(inner));
    EXPECT_EQ(SelectedCategory(), 9);
    EXPECT_EQ(List->Category(), 9);
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(Directory.User.Preferences.value(QStringLiteral("SelectedMessageCategory")).toInt(), 9);
    ASSERT_NE(Editor(), nullptr);
    EXPECT_EQ(Editor()->text(), QStringLiteral("New Category"));
    EXPECT_TRUE(Tree->viewport()->rect().contains(NodePosition(9)));
    TypeName(QStringLiteral("Jazz"));
    EXPECT_EQ(StoredFolders().value(1), QStringLiteral("9 8 Jazz"));
    const clsCategory* seen = OtherComputer().MessageCategories().FindCategory(9);
    ASSERT_NE(seen, nullptr);
    EXPECT_EQ(seen->SortKey(), 0);
    EXPECT_EQ(seen->IconReference(), QString());
    EXPECT_FALSE(seen->IsFixed());
}

TEST_F(FolderChangeTest, ANewFolderKeepsItsNameWhenNoOtherIsTyped)
{
    AttachWithFolder(QStringLiteral("Requests"));
    ChooseAt(tmcSaved, "mnuNewFolder");
    TypeName(QString(), Qt::Key_Escape);
    EXPECT_EQ(StoredFolders().value(1), QStringLiteral("9 8 New Category"));
    EXPECT_EQ(Tree->NodeText(Key(9)), QStringLiteral("New Category"));
}

TEST_F(FolderChangeTest, ANewFolderBelongsToTheCurrentOneThoughItShowsAtTheSelectedOne)
{
    Attach();
    Activate();
    ChooseAt(tmcSaved, "mnuNewFolder"); // current: the Inbox
    TypeName(QStringLiteral("Jazz"));
    EXPECT_EQ(StoredFolders(), QStringList{QStringLiteral("8 1 Jazz")});
    EXPECT_EQ(Tree->ParentKey(Key(8)), Key(tmcSaved));
    QTest::keyClick(Tree, Qt::Key_F5);
    EXPECT_EQ(Tree->ParentKey(Key(8)), Key(tmcInbox));
}

TEST_F(FolderChangeTest, WithoutACurrentFolderANewOneStandsAtTheTop)
{
    OpenStation();
    Directory.User.Preferences.insert(QStringLiteral("SelectedMessageCategory"), 999);
    Attach();
    Activate();
    ASSERT_EQ(List->Category(), 0);
    ChooseAt(tmcSaved, "mnuNewFolder");
    TypeName(QStringLiteral("Jazz"));
    EXPECT_EQ(StoredFolders(), QStringList{QStringLiteral("8 0 Jazz")});
}

TEST_F(FolderChangeTest, ANewFolderComesAfterThoseThatAnotherComputerMadeMeanwhile)
{
    AttachWithFolder(QStringLiteral("Requests"));
    clsCategory added;
    added.SetDescription(QStringLiteral("Theirs"));
    added.SetParentReference(tmcSaved);
    ASSERT_TRUE(OtherComputer().SaveMessageCategory(added));
    ChooseAt(8, "mnuNewFolder");
    TypeName(QStringLiteral("Ours"));
    const QStringList expected = {QStringLiteral("8 3 Requests"), QStringLiteral("9 3 Theirs"),
                                  QStringLiteral("10 8 Ours")};
    EXPECT_EQ(StoredFolders(), expected);
}

TEST_F(FolderChangeTest, ANewFolderTakesThePlaceOfOneThatAnotherComputerDeletedMeanwhile)
{
    const int inner = AttachWithFolder(QStringLiteral("Requests"));
    ClickNode(tmcSaved);
    ASSERT_TRUE(OtherComputer().DeleteMessageCategory(inner));
    ChooseAt(tmcSaved, "mnuNewFolder");
    ASSERT_NE(Editor(), nullptr);
    EXPECT_EQ(Editor()->text(), QStringLiteral("New Category"));
    TypeName(QStringLiteral("Ours"));
    EXPECT_EQ(StoredFolders(), QStringList{QStringLiteral("8 3 Ours")});
    EXPECT_EQ(Tree->NodeText(Key(8)), QStringLiteral("Ours"));
    EXPECT_EQ(List->Category(), 8);
}

TEST_F(FolderChangeTest, AFolderThatCannotBeStoredDoesNotShow)
{
    AttachWithFolder(QStringLiteral("Requests"));
    clsCategory last;
    last.SetReference(32767);
    last.SetDescription(QStringLiteral("Last"));
    ASSERT_TRUE(OtherComputer().SaveMessageCategory(last));
    Ui.ExpectRunTimeError(dao::errOverflow, QStringLiteral("A folder's reference cannot be above 32767."));
    ChooseAt(8, "mnuNewFolder");
    List->UpdateCategories();
    EXPECT_EQ(Tree->NodeCount(), 8);
    EXPECT_FALSE(Tree->IsEditingLabel());
    QTest::keyClick(Tree, Qt::Key_F5);
    EXPECT_EQ(Tree->NodeCount(), 9); // with the one of the other computer
    EXPECT_EQ(Tree->NodeText(Key(32767)), QStringLiteral("Last"));
    EXPECT_EQ(StoredFolders().size(), 2);
}

TEST_F(FolderChangeTest, DeletingAFolderAsksAndShowsItsParent)
{
    const int inner = AttachWithFolder(QStringLiteral("Jim's & Joe's"));
    SaveNew(QStringLiteral("Kept"), tmcSaved);
    Ui.ExpectConfirmation(DeleteQuestion(QStringLiteral("Jim's & Joe's")), MessageBoxAnswer::Yes);
    ChooseAt(inner, "mnuDeleteFolder");
    EXPECT_EQ(StoredFolders(), QStringList());
    EXPECT_FALSE(HasNode(inner));
    EXPECT_EQ(List->Category(), tmcSaved);
    EXPECT_EQ(SelectedCategory(), tmcSaved);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Kept")});
    EXPECT_EQ(TakeFills(), 1);
}

TEST_F(FolderChangeTest, TheKeyboardDeletesAFolderThroughTheMenu)
{
    const int inner = AttachWithFolder(QStringLiteral("Requests"));
    Ui.ExpectConfirmation(DeleteQuestion(QStringLiteral("Requests")), MessageBoxAnswer::Yes);
    RightClickNode(inner);
    QTest::keyClick(List->CategoryMenu(), Qt::Key_D);
    EXPECT_FALSE(List->CategoryMenu()->isVisible());
    EXPECT_FALSE(HasNode(inner));
}

TEST_F(FolderChangeTest, NoKeepsTheFolder)
{
    const int inner = AttachWithFolder(QStringLiteral("Requests"));
    Ui.ExpectConfirmation(DeleteQuestion(QStringLiteral("Requests")), MessageBoxAnswer::No);
    ChooseAt(inner, "mnuDeleteFolder");
    EXPECT_TRUE(HasNode(inner));
    EXPECT_EQ(List->Category(), inner);
    EXPECT_EQ(StoredFolders().size(), 1);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(FolderChangeTest, AFolderWithFoldersIsNotDeleted)
{
    const int inner = AttachWithFolder(QStringLiteral("Requests"));
    clsCategory added; // of another computer; this one does not show it yet
    added.SetDescription(QStringLiteral("Jazz"));
    added.SetParentReference(inner);
    ASSERT_TRUE(OtherComputer().SaveMessageCategory(added));
    Ui.ExpectWarning(HasFolders);
    ChooseAt(inner, "mnuDeleteFolder");
    EXPECT_EQ(StoredFolders().size(), 2);
}

TEST_F(FolderChangeTest, AFolderWithMessagesIsNotDeleted)
{
    const int inner = AttachWithFolder(QStringLiteral("Requests"));
    const cMessagePtr message = MakeMessage(QStringLiteral("Theirs"));
    message->SetCategory(static_cast<enTolvaMessageCategories>(inner));
    ASSERT_TRUE(OtherComputer().SaveMessage(message));
    Ui.ExpectWarning(HasMessages);
    ChooseAt(inner, "mnuDeleteFolder");
    EXPECT_EQ(StoredFolders().size(), 1);
}

TEST_F(FolderChangeTest, TheOnlyTopLevelFolderIsNotDeleted)
{
    const int inner = AttachWithFolder(QStringLiteral("Requests"));
    // Nothing but one top-level folder is left; the menu of a folder below it acts on the current one.
    for (int fixed = tmcInbox; fixed <= tmcAutomatic; ++fixed) {
        if (fixed != tmcSaved) {
            ASSERT_TRUE(OtherComputer().DeleteMessageCategory(fixed));
        }
    }
    ClickNode(tmcSaved);
    Ui.ExpectWarning(OnlyOne);
    ChooseAt(inner, "mnuDeleteFolder");
    EXPECT_EQ(StoredFolders().size(), 1);
}

TEST_F(FolderChangeTest, DeletingActsOnTheCurrentFolderAlsoWhenAnotherIsSelected)
{
    const int inner = AttachWithFolder(QStringLiteral("Requests"));
    const int other = MakeFolder(QStringLiteral("Jazz"), tmcSent);
    QTest::keyClick(Tree, Qt::Key_F5);
    Tree->Expand(Key(tmcSent));
    Ui.ExpectConfirmation(DeleteQuestion(QStringLiteral("Requests")), MessageBoxAnswer::Yes);
    ChooseAt(other, "mnuDeleteFolder");
    EXPECT_FALSE(HasNode(inner));
    EXPECT_EQ(List->Category(), tmcSent); // the parent of the selected one
    EXPECT_EQ(StoredFolders(), QStringList{QStringLiteral("9 4 Jazz")});
}

TEST_F(FolderChangeTest, AFolderThatAnotherComputerDeletedIsLeftAlone)
{
    const int inner = AttachWithFolder(QStringLiteral("Requests"));
    ASSERT_TRUE(OtherComputer().DeleteMessageCategory(inner));
    ChooseAt(inner, "mnuDeleteFolder");
    EXPECT_TRUE(Ui.MessageBoxes().size() <= 1); // that of the station's making
    EXPECT_EQ(StoredFolders(), QStringList());
}

TEST_F(FolderChangeTest, EmptyingErasesAllMessagesOfTheFolderAndNothingElse)
{
    OpenStation();
    for (int i = 0; i < 40; ++i)
        SaveNew(QStringLiteral("Old %1").arg(i), tmcDeleted);
    const qint32 kept = SaveNew(QStringLiteral("Kept"), tmcSaved);
    Attach();
    ClickNode(tmcDeleted);
    ASSERT_EQ(List->NumberItems(), 40);
    TakeFills();
    Now.Advance(60);
    const Date stamp = Station->LastMessageChanged();
    int events = 0;
    QObject::connect(Station.get(), &cTolvaDatabase::MessageDeleted, List.get(), [&] { ++events; });
    QObject::connect(Station.get(), &cTolvaDatabase::MessageSaved, List.get(), [&] { ++events; });
    Directory.User.Log.clear();
    Ui.ExpectConfirmation(EmptyQuestion, MessageBoxAnswer::Yes);
    ChooseAt(tmcDeleted, "mnuEmpty");
    EXPECT_EQ(StoredMessages(), 1);
    EXPECT_EQ(StoredCategory(kept), tmcSaved);
    EXPECT_EQ(events, 0);
    EXPECT_EQ(Station->LastMessageChanged(), stamp);
    EXPECT_TRUE(Directory.User.Log.isEmpty());
    EXPECT_EQ(TakeFills(), 1);
    EXPECT_EQ(List->NumberItems(), 0);
    EXPECT_EQ(List->SelectedReference(), 0);
}

TEST_F(FolderChangeTest, NoKeepsTheMessages)
{
    OpenStation();
    SaveNew(QStringLiteral("Old"), tmcDeleted);
    Attach();
    ClickNode(tmcDeleted);
    TakeFills();
    Ui.ExpectConfirmation(EmptyQuestion, MessageBoxAnswer::No);
    ChooseAt(tmcDeleted, "mnuEmpty");
    EXPECT_EQ(StoredMessages(), 1);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(FolderChangeTest, AnEmptyFolderIsEmptiedWithoutHarm)
{
    Attach();
    ClickNode(tmcDeleted);
    Ui.ExpectConfirmation(EmptyQuestion, MessageBoxAnswer::Yes);
    ChooseAt(tmcDeleted, "mnuEmpty");
    EXPECT_EQ(List->NumberItems(), 0);
}

TEST_F(FolderChangeTest, EmptyingTakesAlsoWhatTheListDoesNotShow)
{
    OpenStation();
    SaveNew(QStringLiteral("lighthouse"), tmcDeleted);
    SaveNew(QStringLiteral("other"), tmcDeleted);
    Attach();
    ClickNode(tmcDeleted);
    Find(QStringLiteral("lighthouse"));
    ASSERT_EQ(List->NumberItems(), 1);
    Ui.ExpectConfirmation(EmptyQuestion, MessageBoxAnswer::Yes);
    ChooseAt(tmcDeleted, "mnuEmpty");
    EXPECT_EQ(StoredMessages(), 0);
}
