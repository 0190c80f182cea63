// SPDX-License-Identifier: Apache-2.0

// Folders at the top of the tree, and the order and dates of the list.

#include "MainWindowTest.h"
#include "messages/PreviewPane.h"
#include "search/SearchDesk.h"
#include "search/SearchWindow.h"

#include <QLabel>
#include <QLineEdit>

namespace
{
class FoldersAndOrderTest : public MainWindowTest
{
protected:
    CategoryTreeView& Tree() { return *List().findChild<CategoryTreeView*>(QStringLiteral("treeCategories")); }
    QAction& Entry(const char* name) { return *Window->findChild<QAction*>(QLatin1String(name)); }
    void TypeName(const QString& name)
    {
        auto* editor = Tree().findChild<QLineEdit*>();
        ASSERT_TRUE(editor);
        editor->selectAll();
        QTest::keyClicks(editor, name);
        QTest::keyClick(editor, Qt::Key_Return);
        EXPECT_TRUE(WaitUntil([this] { return !Tree().IsEditingLabel(); })); // the editor takes its time
    }
    static QByteArray Dated(const QByteArray& subject, const QByteArray& sent, const QByteArray& received)
    {
        return "Received: from a by b; " + received + "\r\nFrom: a@b.org\r\nSubject: " + subject + "\r\nDate: " + sent +
               "\r\n\r\nx\r\n";
    }
};
} // namespace

TEST_F(FoldersAndOrderTest, AFolderAtTheTopIsMadeRenamedAndDeleted)
{
    OpenWindow();
    Entry("newTopFolder").trigger();
    EXPECT_EQ(Tree().NodeText(Tree().SelectedKey()), QStringLiteral("New Folder")) << "until it is named";
    TypeName(QStringLiteral("Competitions"));
    const QString key = Tree().SelectedKey();
    EXPECT_EQ(Tree().NodeText(key), QStringLiteral("Competitions"));
    EXPECT_EQ(Tree().ParentKey(key), QString());
    Tree().setFocus();
    QTest::keyClick(&Tree(), Qt::Key_F2);
    TypeName(QStringLiteral("Quizzes"));
    Station.Database().UpdateCategoryTree();
    const auto stored = Station.Database().GetMessageCategory(key.mid(1).toInt());
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->Description(), QStringLiteral("Quizzes"));
    EXPECT_EQ(stored->ParentReference(), 0);
    Q_EMIT List().CategoryMenu()->aboutToShow();
    EXPECT_TRUE(Entry("mnuDeleteFolder").isEnabled());
    Ui.ExpectConfirmation(QStringLiteral("Are you sure you want to delete the Message's Category 'Quizzes'?"),
                          MessageBoxAnswer::Yes);
    Entry("mnuDeleteFolder").trigger();
    EXPECT_FALSE(Tree().HasNode(key));
}

TEST_F(FoldersAndOrderTest, TheFixedFoldersStay)
{
    OpenWindow();
    Tree().setFocus();
    QTest::keyClick(&Tree(), Qt::Key_F2);
    EXPECT_FALSE(Tree().IsEditingLabel());
    Q_EMIT List().CategoryMenu()->aboutToShow();
    EXPECT_FALSE(Entry("mnuDeleteFolder").isEnabled());
}

TEST_F(FoldersAndOrderTest, TheListIsSortedByArrivalWhereTheUserLikesThat)
{
    const qint32 early =
        FileMail(Dated("Slow clock", "Fri, 20 Nov 2026 08:00:00 +0000", "Fri, 20 Nov 2026 12:00:00 +0000"));
    const qint32 late =
        FileMail(Dated("Fast clock", "Sat, 21 Nov 2026 08:00:00 +0000", "Fri, 20 Nov 2026 09:00:00 +0000"));
    OpenWindow();
    EXPECT_EQ(List().References(), (QList<qint32>{late, early}));
    Entry("sort_1").trigger();
    EXPECT_EQ(List().References(), (QList<qint32>{early, late}));
    CloseWindow();
    OpenWindow();
    EXPECT_EQ(List().References(), (QList<qint32>{early, late})) << "it is remembered";
    Entry("sort_0").trigger();
    EXPECT_EQ(List().References(), (QList<qint32>{late, early}));
}

TEST_F(FoldersAndOrderTest, TheDateInThePaneIsTheOneInTheList)
{
    const qint32 reference =
        FileMail(Dated("Slow clock", "Fri, 20 Nov 2026 08:00:00 +0000", "Fri, 20 Nov 2026 12:34:00 +0000"));
    OpenWindow();
    List().SelectMessage(reference);
    const auto shows = [this](const QString& time) {
        return WaitUntil([&] {
            const auto* pane = Window->findChild<PreviewPane*>();
            return pane->IsLoaded() && pane->findChild<QLabel*>(QStringLiteral("lblDate"))->text().contains(time);
        });
    };
    EXPECT_TRUE(shows(QStringLiteral("08:00:00")));
    Entry("sort_1").trigger();
    EXPECT_TRUE(shows(QStringLiteral("12:34:00")));
    Entry("sort_0").trigger();
    EXPECT_TRUE(shows(QStringLiteral("08:00:00")));
}

TEST_F(FoldersAndOrderTest, ADateOfAnotherYearShowsIt)
{
    FileMail(Dated("Old", "Fri, 20 Nov 2020 08:00:00 +0000", "Fri, 20 Nov 2020 08:00:00 +0000"));
    OpenWindow();
    EXPECT_TRUE(Grid().TextMatrix(1, 2).contains(QStringLiteral("2020"))) << Grid().TextMatrix(1, 2).toStdString();
}

TEST_F(FoldersAndOrderTest, ADateInTheFutureIsSaidToBeOne)
{
    FileMail(Dated("Ahead", "Fri, 20 Nov 2099 08:00:00 +0000", "Fri, 20 Nov 2026 08:00:00 +0000"));
    OpenWindow();
    EXPECT_TRUE(Grid().TextMatrix(1, 2).contains(QStringLiteral("2099"))) << Grid().TextMatrix(1, 2).toStdString();
    EXPECT_TRUE(Grid().TextMatrix(1, 2).endsWith(QStringLiteral(", a date in the future")));
}

TEST_F(FoldersAndOrderTest, OneKeyShowsWhatCameFromASenderWithoutAContact)
{
    const qint32 reference = FileMail(Mail("Song", "Hello.\r\n", "Nobody Known <nobody@example.org>"));
    FileMail(Mail("Another", "Hello.\r\n", "Nobody Known <nobody@example.org>"));
    OpenWindow();
    Select(reference);
    Key(Qt::Key_H, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(Window->Search().Window().isVisible());
    EXPECT_TRUE(Station.Directory().Contacts().isEmpty()) << "nobody was made a contact for it";
}

TEST_F(FoldersAndOrderTest, FoldersAndTheTitleSayHowManyMessagesAreUnread)
{
    FileMail(Mail("One"));
    FileMail(Mail("Two"));
    FileMail(Mail("Read"), tmcInbox, mfRead);
    FileMail(Mail("Kept"), tmcSaved);
    FileMail(Mail("Thrown away"), tmcDeleted);
    OpenWindow();
    ASSERT_TRUE(WaitUntil([this] { return Window->windowTitle() == u"(2) Harbour FM – Tolva"; }))
        << Window->windowTitle().toStdString();
    const auto spoken = [this](const char* key) {
        const QTreeWidgetItem* node = Tree().findItems(Tree().NodeText(QLatin1String(key)), Qt::MatchExactly).value(0);
        return node ? node->data(0, Qt::AccessibleTextRole).toString() : QStringLiteral("no node");
    };
    EXPECT_EQ(spoken("c1"), QStringLiteral("Inbox, 2 unread"));
    EXPECT_EQ(spoken("c3"), QStringLiteral("Saved, 1 unread"));
    EXPECT_EQ(spoken("c5"), QString()) << "what was thrown away is nobody's to read";
    OtherComputer("file", {Write(QStringLiteral("new.eml"), Mail("From elsewhere"))});
    EXPECT_TRUE(WaitUntil([this] { return Window->windowTitle().startsWith(u"(3) "); }, 8000));
    Tree().setFocus();
    List().UpdateCategories();
    EXPECT_EQ(spoken("c1"), QStringLiteral("Inbox, 3 unread")) << "a tree that was filled anew";
}
