// SPDX-License-Identifier: Apache-2.0

// Renaming folders in the tree.

#include "messageslist/ErrorCatcher.h"
#include "messageslist/FolderTest.h"

class RenameTest : public FolderTest
{
protected:
    void SetUp() override
    {
        Inner = MakeFolder(QStringLiteral("Requests"), tmcSaved);
        Attach();
        Activate();
        Tree->Expand(Key(tmcSaved));
        ClickNode(Inner);
        TakeFills();
    }
    QString StoredName() const { return StoredFolders().value(0).section(QLatin1Char(' '), 2); }

    int Inner = 0;
};

TEST_F(RenameTest, F2RenamesAFolderForAllComputers)
{
    QTest::keyClick(Tree, Qt::Key_F2);
    ASSERT_NE(Editor(), nullptr);
    EXPECT_EQ(Editor()->text(), QStringLiteral("Requests"));
    TypeName(QStringLiteral("Wishes ä&b"));
    EXPECT_EQ(Tree->NodeText(Key(Inner)), QStringLiteral("Wishes ä&b"));
    EXPECT_EQ(StoredName(), QStringLiteral("Wishes ä&b"));
    EXPECT_EQ(OtherComputer().MessageCategories().FindCategory(Inner)->Description(), QStringLiteral("Wishes ä&b"));
    EXPECT_EQ(Station->MessageCategories().FindCategory(Inner)->Description(), QStringLiteral("Wishes ä&b"));
    List->UpdateCategories();
    EXPECT_EQ(Tree->NodeText(Key(Inner)), QStringLiteral("Wishes ä&b"));
    EXPECT_EQ(Tree->ParentKey(Key(Inner)), Key(tmcSaved));
}

TEST_F(RenameTest, TheMenuStartsTheSameEdit)
{
    ChooseAt(Inner, "mnuRenameFolder");
    TypeName(QStringLiteral("Wishes"));
    EXPECT_EQ(StoredName(), QStringLiteral("Wishes"));
}

TEST_F(RenameTest, AnEmptyNameKeepsTheOldOne)
{
    QTest::keyClick(Tree, Qt::Key_F2);
    TypeName(QString());
    EXPECT_EQ(Tree->NodeText(Key(Inner)), QStringLiteral("Requests"));
    EXPECT_EQ(StoredName(), QStringLiteral("Requests"));
}

TEST_F(RenameTest, EscapeKeepsTheOldName)
{
    QTest::keyClick(Tree, Qt::Key_F2);
    TypeName(QStringLiteral("Wishes"), Qt::Key_Escape);
    EXPECT_EQ(Tree->NodeText(Key(Inner)), QStringLiteral("Requests"));
    EXPECT_EQ(StoredName(), QStringLiteral("Requests"));
}

TEST_F(RenameTest, ATopLevelFolderKeepsItsName)
{
    ClickNode(tmcSaved);
    QTest::keyClick(Tree, Qt::Key_F2);
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_FALSE(Tree->IsEditingLabel());
}

TEST_F(RenameTest, F2NeedsTheRightToEditFolders)
{
    Directory.User.Rights = 31 & ~static_cast<int>(DirectoryRight::CanEditCategories);
    QTest::keyClick(Tree, Qt::Key_F2);
    EXPECT_EQ(Editor(), nullptr);
    Directory.User.Rights = static_cast<int>(DirectoryRight::CanEditCategories);
    QTest::keyClick(Tree, Qt::Key_F2);
    EXPECT_NE(Editor(), nullptr);
    TypeName(QString(), Qt::Key_Escape);
}

TEST_F(RenameTest, F2NeedsAStationAndAUser)
{
    List->SetTolvaDatabase(nullptr);
    QTest::keyClick(Tree, Qt::Key_F2);
    EXPECT_EQ(Editor(), nullptr);
    Directory.SignedIn = nullptr;
    List->SetTolvaDatabase(Station.get());
    Tree->SelectNode(Key(Inner));
    QTest::keyClick(Tree, Qt::Key_F2);
    EXPECT_EQ(Editor(), nullptr);
}

TEST_F(RenameTest, AFolderThatAnotherComputerDeletedMeanwhileIsNotBroughtBack)
{
    QTest::keyClick(Tree, Qt::Key_F2);
    ASSERT_TRUE(OtherComputer().DeleteMessageCategory(Inner));
    TypeName(QStringLiteral("Wishes"));
    EXPECT_EQ(StoredFolders(), QStringList());
    EXPECT_EQ(Tree->NodeText(Key(Inner)), QStringLiteral("Requests"));
}

TEST_F(RenameTest, WhatAnotherComputerPutIntoTheFolderMeanwhileStays)
{
    QTest::keyClick(Tree, Qt::Key_F2);
    clsCategory added;
    added.SetDescription(QStringLiteral("Jazz"));
    added.SetParentReference(Inner);
    ASSERT_TRUE(OtherComputer().SaveMessageCategory(added));
    TypeName(QStringLiteral("Wishes"));
    const QStringList expected = {QStringLiteral("8 3 Wishes"), QStringLiteral("9 8 Jazz")};
    EXPECT_EQ(StoredFolders(), expected);
}

TEST_F(RenameTest, TheFolderThatIsRenamedNeedNotBeTheCurrentOne)
{
    ClickNode(tmcInbox);
    TakeFills();
    ChooseAt(Inner, "mnuRenameFolder");
    TypeName(QStringLiteral("Wishes"));
    EXPECT_EQ(StoredName(), QStringLiteral("Wishes"));
    EXPECT_EQ(List->Category(), tmcInbox);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(RenameTest, KeysOfTheTreeAreKeysOfTheTextWhileANameIsTyped)
{
    QTest::keyClick(Tree, Qt::Key_F2);
    QLineEdit* editor = Editor();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, QStringLiteral("Wis"));
    QTest::keyClick(editor, Qt::Key_F5);
    QTest::keyClick(editor, Qt::Key_F2);
    ASSERT_EQ(Editor(), editor);
    QTest::keyClicks(editor, QStringLiteral("hes"));
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !Tree->IsEditingLabel(); }));
    EXPECT_EQ(StoredName(), QStringLiteral("Wishes"));
}

TEST_F(RenameTest, AMessageThatComesInDoesNotEndTheTyping)
{
    QTest::keyClick(Tree, Qt::Key_F2);
    QLineEdit* editor = Editor();
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("Wis"));
    SaveNew(QStringLiteral("Comes in"), static_cast<enTolvaMessageCategories>(Inner));
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Comes in")});
    ASSERT_EQ(Editor(), editor);
    EXPECT_TRUE(editor->hasFocus());
    EXPECT_EQ(StoredName(), QStringLiteral("Requests"));
    QTest::keyClicks(editor, QStringLiteral("hes"));
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !Tree->IsEditingLabel(); }));
    EXPECT_EQ(StoredName(), QStringLiteral("Wishes"));
}

TEST_F(RenameTest, AHostThatChoosesAnotherFolderMeanwhileDoesNotGetItRenamed)
{
    QTest::keyClick(Tree, Qt::Key_F2);
    ASSERT_NE(Editor(), nullptr);
    Editor()->selectAll();
    QTest::keyClicks(Editor(), QStringLiteral("Wishes"));
    ASSERT_EQ(Editor()->text(), QStringLiteral("Wishes"));
    List->SetCategory(tmcInbox);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !Tree->IsEditingLabel(); }));
    EXPECT_EQ(Tree->NodeText(Key(tmcInbox)), QStringLiteral("Inbox"));
    EXPECT_EQ(OtherComputer().MessageCategories().FindCategory(tmcInbox)->Description(), QStringLiteral("Inbox"));
    EXPECT_EQ(StoredName(), QStringLiteral("Requests")); // the typing was not finished
    EXPECT_EQ(List->Category(), tmcInbox);
}

TEST_F(RenameTest, AStationThatWasClosedMeanwhileKeepsTheOldName)
{
    QTest::keyClick(Tree, Qt::Key_F2);
    Station->CloseTolvaDatabase();
    TypeName(QStringLiteral("Wishes"));
    EXPECT_EQ(Tree->NodeText(Key(Inner)), QStringLiteral("Requests"));
}

TEST_F(RenameTest, AStationThatCannotStoreTheNameSaysSoAndTheOldOneStays)
{
    const ErrorCatcher errors;
    QTest::keyClick(Tree, Qt::Key_F2);
    DamageStation();
    TypeName(QStringLiteral("Wishes"));
    EXPECT_EQ(errors.Sources(), QStringList{QStringLiteral("uMessagesList.treeCategories_AfterLabelEdit")});
    EXPECT_EQ(Tree->NodeText(Key(Inner)), QStringLiteral("Requests"));
}
