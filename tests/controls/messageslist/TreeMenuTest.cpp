// SPDX-License-Identifier: Apache-2.0

// The popup menu of the folders: its entries, and which of them are offered when.

#include "common/ClockHelper.h"
#include "messageslist/FolderTest.h"

#include <QContextMenuEvent>

namespace
{
constexpr int CanEditMessages = static_cast<int>(DirectoryRight::CanEditMessages);
constexpr int CanEditCategories = static_cast<int>(DirectoryRight::CanEditCategories);

QStringList EntriesOf(const QMenu& menu)
{
    QStringList entries;
    for (const QAction* entry : menu.actions()) {
        entries.append(entry->isSeparator() ? entry->objectName() + QStringLiteral(" |")
                                            : entry->objectName() + QStringLiteral(" ") + entry->text());
    }
    return entries;
}
} // namespace

class TreeMenuTest : public FolderTest
{
protected:
    /// The menu at a node, read while it is on show.
    QString Offered(int category)
    {
        RightClickNode(category);
        QMenu& menu = *List->CategoryMenu();
        EXPECT_TRUE(menu.isVisible());
        QStringList offered;
        for (const char* name : {"mnuNew", "mnuNewFolder", "mnuNewMessage", "mnuDeleteFolder", "mnuRenameFolder"}) {
            if (Entry(name).isEnabled())
                offered.append(QString::fromLatin1(name).mid(3));
        }
        if (Entry("mnuEmpty").isVisible() && Entry("mnuEmptySep").isVisible())
            offered.append(QStringLiteral("Empty"));
        EXPECT_EQ(Entry("mnuEmpty").isVisible(), Entry("mnuEmptySep").isVisible());
        menu.close();
        return offered.join(QLatin1Char(' '));
    }
};

TEST_F(TreeMenuTest, TheEntriesStandInTheirOrderWithTheirCaptions)
{
    const QStringList expected = {
        QStringLiteral("mnuOpenFolder &Open Folder"),
        QStringLiteral("mnuCategoryReadSep |"),
        QStringLiteral("mnuCategoryAllRead Mark all as &Read"),
        QStringLiteral("mnuCategoryAllUnRead Mark all as &Unread"),
        QStringLiteral("mnuNewFolderSep |"),
        QStringLiteral("mnuNew &New"),
        QStringLiteral("mnuEmptySep |"),
        QStringLiteral("mnuEmpty &Empty Folder"),
        QStringLiteral("mnuDeleteFolderSep |"),
        QStringLiteral("mnuDeleteFolder &Delete Folder"),
        QStringLiteral("mnuRenameFolder Rename &Folder"),
    };
    EXPECT_EQ(EntriesOf(*List->CategoryMenu()), expected);
    const QStringList added = {QStringLiteral("mnuNewFolder New &Folder"), QStringLiteral("mnuNewMessageSep |"),
                               QStringLiteral("mnuNewMessage New &Message")};
    EXPECT_EQ(EntriesOf(*Entry("mnuNew").menu()), added);
    EXPECT_EQ(List->CategoryMenu()->defaultAction(), &Entry("mnuOpenFolder"));
    EXPECT_EQ(List->CategoryMenu()->objectName(), QStringLiteral("mnuPopupCategory"));
}

TEST_F(TreeMenuTest, TheRightButtonSelectsTheFolderUnderItAndLeavesTheCurrentOne)
{
    Attach();
    RightClickNode(tmcSaved);
    EXPECT_TRUE(List->CategoryMenu()->isVisible());
    List->CategoryMenu()->close();
    EXPECT_EQ(SelectedCategory(), tmcSaved);
    EXPECT_EQ(List->Category(), tmcInbox);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(TreeMenuTest, OnTheEmptyPartTheMenuIsThatOfTheSelectedFolder)
{
    Attach();
    QTest::mouseClick(Tree->viewport(), Qt::RightButton, {}, QPoint(10, Tree->viewport()->height() - 3));
    EXPECT_TRUE(List->CategoryMenu()->isVisible());
    List->CategoryMenu()->close();
    EXPECT_EQ(SelectedCategory(), tmcInbox);
}

TEST_F(TreeMenuTest, WithoutASelectedFolderThereIsNoMenu)
{
    List->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(List.get()));
    QTest::mouseClick(Tree->viewport(), Qt::RightButton, {}, QPoint(10, 10));
    EXPECT_FALSE(List->CategoryMenu()->isVisible());
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(5, 5), Tree->viewport()->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(Tree->viewport(), &key);
    EXPECT_FALSE(List->CategoryMenu()->isVisible());
}

TEST_F(TreeMenuTest, TheMenuKeyShowsTheMenuToo)
{
    Attach();
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(5, 5), Tree->viewport()->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(Tree->viewport(), &key);
    EXPECT_TRUE(List->CategoryMenu()->isVisible());
    List->CategoryMenu()->close();
}

TEST_F(TreeMenuTest, WhatIsOfferedFollowsTheRightsTheCurrentFolderAndTheParent)
{
    const int inner = MakeFolder(QStringLiteral("Inner"), tmcSaved);
    Attach();
    Tree->Expand(Key(tmcSaved));
    const struct
    {
        int Rights;
        int Current;
        int At;
        const char* Offered;
    } cases[] = {
        {CanEditCategories | CanEditMessages, tmcInbox, tmcInbox, "New NewFolder NewMessage"},
        {CanEditCategories | CanEditMessages, tmcInbox, inner, "New NewFolder NewMessage DeleteFolder RenameFolder"},
        {CanEditCategories | CanEditMessages, inner, inner, "New NewFolder NewMessage DeleteFolder RenameFolder"},
        {CanEditCategories | CanEditMessages, inner, tmcSaved, "New NewFolder NewMessage"},
        {CanEditCategories | CanEditMessages, tmcDeleted, tmcDeleted, "New NewFolder NewMessage Empty"},
        {CanEditCategories | CanEditMessages, tmcInbox, tmcDeleted, "New NewFolder NewMessage"},
        {CanEditCategories | CanEditMessages, tmcDeleted, inner,
         "New NewFolder NewMessage DeleteFolder RenameFolder Empty"},
        {CanEditCategories, inner, inner, "New NewFolder DeleteFolder RenameFolder"},
        {CanEditCategories, tmcDeleted, tmcDeleted, "New NewFolder"},
        {CanEditMessages, inner, inner, "New NewMessage"},
        {CanEditMessages, tmcDeleted, tmcDeleted, "New NewMessage Empty"},
        {0, inner, inner, ""},
        {0, tmcDeleted, tmcDeleted, ""},
    };
    for (const auto& one : cases) {
        Directory.User.Rights = one.Rights;
        List->SetCategory(static_cast<enTolvaMessageCategories>(one.Current));
        ASSERT_EQ(List->Category(), one.Current);
        EXPECT_EQ(Offered(one.At), QLatin1String(one.Offered))
            << "rights " << one.Rights << ", current " << one.Current << ", at " << one.At;
    }
}

TEST_F(TreeMenuTest, WithoutACurrentFolderNothingOfAFolderIsOffered)
{
    const int inner = MakeFolder(QStringLiteral("Inner"), tmcSaved);
    // Nobody's folder of choice is in the tree, so none becomes current.
    Directory.User.Preferences.insert(QStringLiteral("SelectedMessageCategory"), 999);
    Attach();
    ASSERT_EQ(List->Category(), 0);
    Tree->Expand(Key(tmcSaved));
    EXPECT_EQ(Offered(inner), QStringLiteral("New NewFolder"));
}

TEST_F(TreeMenuTest, NobodyIsOfferedAChange)
{
    const int inner = MakeFolder(QStringLiteral("Inner"), tmcSaved);
    Directory.SignedIn = nullptr;
    Attach();
    Tree->Expand(Key(tmcSaved));
    List->SetCategory(tmcDeleted);
    EXPECT_EQ(Offered(inner), QString());
}

TEST_F(TreeMenuTest, EmptyingNamesTheFolderWhateverItsName)
{
    const int inner = MakeFolder(QStringLiteral("Rock & Roll"), tmcDeleted);
    Attach();
    ClickNode(tmcDeleted);
    RightClickNode(tmcDeleted);
    EXPECT_EQ(Entry("mnuEmpty").text(), QStringLiteral("Empty 'Deleted Items'"));
    List->CategoryMenu()->close();
    Tree->Expand(Key(tmcDeleted));
    RightClickNode(inner);
    // Two of them are shown as one, and none becomes an access key.
    EXPECT_EQ(Entry("mnuEmpty").text(), QStringLiteral("Empty 'Rock && Roll'"));
    List->CategoryMenu()->close();
}

TEST_F(TreeMenuTest, TheHostThatShowsNoNewMessagesHidesTheEntry)
{
    Attach();
    List->SetDisplayNewMessage(false);
    RightClickNode(tmcInbox);
    EXPECT_FALSE(Entry("mnuNewMessage").isVisible());
    EXPECT_FALSE(Entry("mnuNewMessageSep").isVisible());
    EXPECT_TRUE(Entry("mnuNewFolder").isEnabled());
    List->CategoryMenu()->close();
}

TEST_F(TreeMenuTest, OpeningTheFolderDoesNothing)
{
    Attach();
    ChooseAt(tmcSaved, "mnuOpenFolder");
    EXPECT_EQ(List->Category(), tmcInbox);
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(TreeMenuTest, ANewMessageIsHandedToTheHostAndTheListIsReadAgain)
{
    Attach();
    QList<cMessagePtr> handed;
    int fillsBefore = -1;
    QObject::connect(List.get(), &uMessagesList::NewMessage, List.get(), [&](const cMessagePtr& message) {
        handed.append(message);
        fillsBefore = TakeFills();
    });
    ChooseAt(tmcInbox, "mnuNewMessage");
    ASSERT_EQ(handed.size(), 1);
    EXPECT_EQ(handed.first()->Reference(), 0);
    EXPECT_EQ(handed.first()->CDOMessage()->Octets(), QByteArray());
    EXPECT_EQ(fillsBefore, 0);
    EXPECT_EQ(TakeFills(), 1);
}

TEST_F(TreeMenuTest, AllOfTheListIsMarkedFromTheFoldersMenu)
{
    OpenStation();
    qint32 references[2] = {};
    for (qint32& reference : references) {
        const cMessagePtr message = MakeMessage(QStringLiteral("Dated"));
        message->SetCategory(tmcInbox);
        message->SetSent(ClockHelper::CurrentTime());
        ASSERT_TRUE(Station->SaveMessage(message));
        reference = message->Reference();
    }
    const auto [first, second] = references;
    Attach();
    ChooseAt(tmcInbox, "mnuCategoryAllRead");
    EXPECT_EQ(Station->GetMessage(first)->Flags(), mfRead);
    EXPECT_EQ(Station->GetMessage(second)->Flags(), mfRead);
    ChooseAt(tmcInbox, "mnuCategoryAllUnRead");
    EXPECT_EQ(Station->GetMessage(first)->Flags(), 0);
    EXPECT_EQ(Station->GetMessage(second)->Flags(), 0);
}
