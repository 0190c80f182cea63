// SPDX-License-Identifier: Apache-2.0

// Whatever is filed, deleted and moved, at this desk or elsewhere: the keyboard, the selection, the scroll position and
// the message on show stay with who works here, and nothing counts as read that nobody chose.

#include "window/MainWindowTest.h"

namespace
{
class KeepingPlaceTest : public MainWindowTest
{
protected:
    QString Pane() { return Window->findChild<NoticeBar*>(QStringLiteral("paneNotice"))->Text(); }
    bool HasTheKeyboard() { return QApplication::focusWidget() == &Grid(); }
    void FileMany(int count)
    {
        for (int i = 0; i < count; ++i)
            FileMail(Mail("Message " + QByteArray::number(i)));
    }
    void Refresh() { Key(Qt::Key_F5); }
    bool IsShown(qint32 reference)
    {
        return WaitUntil([&] {
            return Window->Preview().IsLoaded() && Window->Preview().Message() &&
                   Window->Preview().Message()->Reference() == reference;
        });
    }
};
} // namespace

TEST_F(KeepingPlaceTest, AtTheStartTheListHasTheKeyboardAndShowsTheInbox)
{
    FileMail(Mail("One"));
    OpenWindow();
    Key(Qt::Key_3, Qt::ControlModifier);
    ASSERT_EQ(List().Category(), tmcSaved);
    EXPECT_TRUE(HasTheKeyboard()) << "a folder that was gone to by its key";
    CloseWindow();
    OpenWindow();
    EXPECT_EQ(List().Category(), tmcInbox);
    EXPECT_TRUE(HasTheKeyboard());
}

TEST_F(KeepingPlaceTest, NothingCountsAsReadThatNobodyChose)
{
    const qint32 first = FileMail(Mail("One"));
    const qint32 saved = FileMail(Mail("Kept"), tmcSaved);
    OpenWindow();
    ASSERT_TRUE(IsShown(first)) << "the first one is shown all the same";
    QTest::qWait(PreviewPane::ReadMilliseconds + 300);
    EXPECT_EQ(FlagsOf(first), 0) << "nobody chose it at the start";
    Key(Qt::Key_3, Qt::ControlModifier);
    ASSERT_TRUE(IsShown(saved));
    QTest::qWait(PreviewPane::ReadMilliseconds + 300);
    EXPECT_EQ(FlagsOf(saved), 0) << "a folder was chosen, and no message";
    QTest::mouseClick(Grid().viewport(), Qt::LeftButton, {}, Grid().visualRect(Grid().model()->index(0, 2)).center());
    EXPECT_TRUE(WaitUntil([&] { return FlagsOf(saved) == mfRead; })) << "a click on the row that was selected before";
}

TEST_F(KeepingPlaceTest, ARefreshLeavesTheKeyboardInTheList)
{
    FileMany(3);
    OpenWindow();
    Select(List().References().at(1));
    Refresh();
    EXPECT_TRUE(HasTheKeyboard());
    OtherComputer("file", {Write(QStringLiteral("new.eml"), Mail("From elsewhere"))});
    EXPECT_TRUE(WaitUntil([this] { return List().NumberItems() == 4; }, 8000));
    EXPECT_TRUE(HasTheKeyboard()) << "after an arrival";
}

TEST_F(KeepingPlaceTest, TheKeyDeleteDeletesOneMessageAfterTheOther)
{
    FileMany(5);
    OpenWindow();
    const QList<qint32> before = List().References();
    Select(before.at(1));
    // What a key does by itself goes where the keyboard is.
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
    EXPECT_EQ(MessagesIn(tmcDeleted).size(), 2);
    EXPECT_EQ(List().References(), (QList<qint32>{before.at(0), before.at(3), before.at(4)}));
    EXPECT_EQ(List().SelectedReference(), before.at(3)) << "the next one follows";
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(List().SelectedReference(), before.at(2)) << "what came back is selected";
    EXPECT_TRUE(HasTheKeyboard());
}

TEST_F(KeepingPlaceTest, TheSelectionAndTheRowsUnderTheEyesStayWhereOthersFileAboveThem)
{
    FileMany(120);
    OpenWindow();
    List().ScrollToRow(60);
    const qint32 selected = List().References().at(64);
    const qint32 atTop = List().References().at(59);
    Grid().SetRow(65);
    ASSERT_EQ(List().SelectedReference(), selected);
    FileMail("From: a@b.org\r\nSubject: Newest\r\nDate: Sat, 21 Nov 2026 08:00:00 +0000\r\n\r\nx\r\n");
    Refresh();
    EXPECT_EQ(List().NumberItems(), 121);
    EXPECT_EQ(List().SelectedReference(), selected);
    EXPECT_EQ(List().References().at(Grid().TopRow() - 1), atTop);
}

TEST_F(KeepingPlaceTest, AMessageThatSomebodyElseDeletesStaysOnShowAndIsAnswered)
{
    const qint32 first = FileMail(Mail("One", "x", "Ann <ann@example.org>"));
    FileMail(Mail("Two", "y", "Ben <ben@example.org>"));
    OpenWindow();
    Select(first);
    ASSERT_TRUE(IsShown(first));
    OtherComputer("delete", {QString::number(first), QStringLiteral("--permanently"), QStringLiteral("--yes")});
    ASSERT_TRUE(WaitUntil([this] { return List().NumberItems() == 1; }, 8000));
    EXPECT_EQ(List().SelectedReference(), 0) << "no other message is put under the hand";
    EXPECT_TRUE(IsShown(first));
    EXPECT_EQ(Pane(),
              QStringLiteral("This message was deleted meanwhile. What you see is how it was when you opened it."));
    // Nothing that comes later takes it away.
    FileMail(Mail("Three"));
    Refresh();
    EXPECT_TRUE(IsShown(first));
    QTest::keyClick(&Grid(), Qt::Key_Delete);
    EXPECT_EQ(List().NumberItems(), 2) << "there is no selected message to delete";
    Key(Qt::Key_R, Qt::ControlModifier);
    ASSERT_TRUE(OnlyCompose());
    EXPECT_EQ(OnlyCompose()->Current().To, QStringLiteral("Ann <ann@example.org>"));
}

TEST_F(KeepingPlaceTest, AMessageThatSomebodyElseMovesStaysOnShowAndSaysWhere)
{
    const qint32 first = FileMail(Mail("One"));
    FileMail(Mail("Two"));
    OpenWindow();
    Select(first);
    ASSERT_TRUE(IsShown(first));
    OtherComputer("move", {QString::number(first), QStringLiteral("Saved")});
    ASSERT_TRUE(WaitUntil([this] { return List().NumberItems() == 1; }, 8000));
    EXPECT_EQ(Pane(), QStringLiteral("This message was moved to Saved meanwhile."));
    EXPECT_TRUE(IsShown(first));
    Grid().setFocus();
    QTest::keyClick(&Grid(), Qt::Key_Down);
    EXPECT_TRUE(IsShown(List().References().first())) << "the hand itself goes on";
    EXPECT_EQ(Pane(), QString());
}
