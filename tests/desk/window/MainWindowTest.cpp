// SPDX-License-Identifier: Apache-2.0
#include "MainWindowTest.h"

#include "HeldFile.h"
#include "database/watch/StationWatch.h"
#include "platform/records/LockPatience.h"
#include "support/FixedClock.h"

TEST_F(MainWindowTest, TheTitleNamesTheStation)
{
    OpenWindow();
    EXPECT_EQ(Window->windowTitle(), QStringLiteral("Harbour FM – Tolva"));
}

TEST_F(MainWindowTest, TheTabsSayWhoseMessagesTheyShow)
{
    OpenWindow();
    const QTabBar& tabs = List().findChild<TabStrip*>(QStringLiteral("tbsMessages"))->Tabs();
    ASSERT_EQ(tabs.count(), 3);
    EXPECT_EQ(tabs.tabText(0), QStringLiteral("General"));
    EXPECT_EQ(tabs.tabText(1), QStringLiteral("Personal"));
    EXPECT_EQ(tabs.tabText(2), QStringLiteral("All"));
}

TEST_F(MainWindowTest, TheStatusBarCountsTheFolder)
{
    FileMail(Mail("One"));
    FileMail(Mail("Two"), tmcInbox, mfRead);
    OpenWindow();
    EXPECT_TRUE(WaitUntil([this] { return Label("counts") == u"2 messages, 1 unread"; }))
        << Label("counts").toStdString();
    EXPECT_TRUE(Label("updated").startsWith(QStringLiteral("Updated ")));
    EXPECT_EQ(Label("user"), QStringLiteral("Technician"));
    Key(Qt::Key_6, Qt::ControlModifier);
    EXPECT_TRUE(WaitUntil([this] { return Label("counts") == u"0 messages, 0 unread"; }));
}

TEST_F(MainWindowTest, UpdatedIsWhenTheDeskLookedLastAndNeitherWhatFailedNorWhatWasLeftOutCounts)
{
    FixedClock now;
    OpenWindow();
    int looks = 0;
    QObject::connect(&Database().Watch(), &StationWatch::Polled, Window.get(), [&] { ++looks; });
    const auto waitForLooks = [&] {
        const int before = looks;
        EXPECT_TRUE(WaitUntil([&] { return looks >= before + 3; }));
    };
    List().SetAutoUpdateInterval(0.05F);
    EXPECT_TRUE(WaitUntil([&] { return Label("updated") == u"Updated 14:05:09"; })) << Label("updated").toStdString();
    now.Advance(60);
    EXPECT_TRUE(WaitUntil([&] { return Label("updated") == u"Updated 14:06:09"; })) << "nothing was new, and seen so";

    // While somebody types, the list does not look.
    now.Advance(60);
    auto* find = List().findChild<QComboBox*>(QStringLiteral("comboFind"))->lineEdit();
    find->setFocus();
    QTest::keyClicks(find, QStringLiteral("x"));
    const QString before = Label("updated");
    now.Advance(60);
    waitForLooks();
    EXPECT_EQ(Label("updated"), before);
    QTest::keyClick(find, Qt::Key_Backspace);
    QTest::keyClick(find, Qt::Key_Return);

    // A station that somebody holds locked is no look either, and the time goes on when it answers again.
    EXPECT_TRUE(WaitUntil([&] { return Label("updated") == u"Updated 14:08:09"; })) << Label("updated").toStdString();
    {
        const dao::LockPatience patience(5);
        const HeldFile held(StationPlace::FileIn(Folder()));
        now.Advance(60);
        waitForLooks();
        EXPECT_EQ(Label("updated"), QStringLiteral("Updated 14:08:09"));
        EXPECT_NE(Notice("connectionNotice").Text(), QString());
    }
    EXPECT_TRUE(WaitUntil([&] { return Label("updated") == u"Updated 14:09:09"; }));

    // Nor is one through the open file of a folder that is gone.
    ASSERT_TRUE(QDir().rename(Folder(), Folder() + QStringLiteral(".away")));
    Window->WatchStation();
    now.Advance(60);
    waitForLooks();
    EXPECT_EQ(Label("updated"), QStringLiteral("Updated 14:09:09"));
    ASSERT_TRUE(QDir().rename(Folder() + QStringLiteral(".away"), Folder()));
    EXPECT_TRUE(WaitUntil([&] { return Label("updated") == u"Updated 14:10:09"; }, 3 * MainWindow::WatchMilliseconds));
}

TEST_F(MainWindowTest, TheCountsLeaveOutWhatIsPersonalToOthers)
{
    FileMail(Mail("For all"));
    const qint32 reference = FileMail(Mail("For somebody else"));
    const cMessagePtr personal = Station.Database().GetMessage(reference);
    personal->SetPersonalToContact(4711);
    ASSERT_TRUE(Station.Database().SaveMessage(personal));
    OpenWindow();
    EXPECT_TRUE(WaitUntil([this] { return Label("counts") == u"1 message, 1 unread"; }))
        << Label("counts").toStdString();
}

TEST_F(MainWindowTest, OtherDesksHearOfAnEmptiedFolder)
{
    FileMail(Mail("Old"), tmcDeleted);
    OpenWindow();
    Key(Qt::Key_5, Qt::ControlModifier);
    ASSERT_EQ(List().Category(), tmcDeleted);
    const Date stamp = Station.Database().LastMessageChanged();
    Ui.ExpectConfirmation(QStringLiteral("Are you sure you want to delete all the Messages in the 'Deleted Items' "
                                         "Category?"),
                          MessageBoxAnswer::Yes);
    List().findChild<QAction*>(QStringLiteral("mnuEmpty"))->trigger();
    EXPECT_TRUE(MessagesIn(tmcDeleted).isEmpty());
    EXPECT_NE(Station.Database().LastMessageChanged(), stamp);
}

TEST_F(MainWindowTest, OtherDesksHearOfADeletedMessage)
{
    const qint32 reference = FileMail(Mail("One"));
    OpenWindow();
    Select(reference);
    const Date stamp = Station.Database().LastMessageChanged();
    QTest::keyClick(&Grid(), Qt::Key_Delete);
    EXPECT_EQ(MessagesIn(tmcDeleted), QList<qint32>{reference});
    EXPECT_NE(Station.Database().LastMessageChanged(), stamp);
}

TEST_F(MainWindowTest, AMailFiledByTheOtherComputerShowsWithinSeconds)
{
    OpenWindow();
    EXPECT_EQ(List().NumberItems(), 0);
    OtherComputer("file", {Write(QStringLiteral("new.eml"), Mail("From elsewhere"))});
    EXPECT_TRUE(WaitUntil([this] { return List().NumberItems() == 1; }, 8000));
    EXPECT_TRUE(WaitUntil([this] { return Label("counts") == u"1 message, 1 unread"; }));
}

TEST_F(MainWindowTest, ThePreviewLoadsWhenTheSelectionRests)
{
    const qint32 first = FileMail(Mail("One", "First text"));
    const qint32 second = FileMail(Mail("Two", "Second text"));
    OpenWindow();
    Select(first);
    EXPECT_FALSE(Window->Preview().IsLoaded());
    Select(second);
    EXPECT_TRUE(WaitUntil([this] { return Window->Preview().IsLoaded(); }));
    EXPECT_EQ(Window->Preview().Message()->Reference(), second);
    EXPECT_EQ(Window->findChild<uMessageBasic*>(QStringLiteral("viewer"))->Message()->Reference(), second);
}

TEST_F(MainWindowTest, AHeldArrowKeyLoadsOnlyTheLastMessage)
{
    for (int i = 0; i < 30; ++i)
        FileMail(Mail("Many"));
    OpenWindow();
    auto* view = Window->findChild<uMessageBasic*>(QStringLiteral("viewer"));
    ASSERT_TRUE(WaitUntil([this] { return Window->Preview().IsLoaded(); }));
    const cMessagePtr before = view->Message();
    Grid().setFocus();
    for (int i = 0; i < 20; ++i) {
        QTest::keyClick(&Grid(), Qt::Key_Down);
        EXPECT_EQ(view->Message(), before);
    }
    ASSERT_TRUE(WaitUntil([this] { return Window->Preview().IsLoaded(); }));
    EXPECT_EQ(view->Message()->Reference(), List().SelectedReference());
}

TEST_F(MainWindowTest, AMessageOnShowIsMarkedReadAndKeepsWhatElseChanged)
{
    const qint32 reference = FileMail(Mail("One"));
    OpenWindow();
    Select(reference);
    ASSERT_TRUE(WaitUntil([this] { return Window->Preview().IsLoaded(); }));
    // Another computer gives it a priority and its own flag while it is being read.
    const cMessagePtr elsewhere = Station.Database().GetMessage(reference);
    elsewhere->SetFlags(mfAutomatic);
    elsewhere->SetPriority(1);
    ASSERT_TRUE(Station.Database().SaveMessage(elsewhere));
    EXPECT_TRUE(WaitUntil([&] { return FlagsOf(reference) == (mfAutomatic | mfRead); }));
    EXPECT_EQ(Station.Database().GetMessage(reference)->Priority(), 1);
    EXPECT_TRUE(WaitUntil([this] { return Label("counts") == u"1 message, 0 unread"; }));
}

TEST_F(MainWindowTest, BeingMarkedAsReadNeitherChangesTheMailNorLoadsItAgain)
{
    Station.Database().SetDatabaseSetting(QStringLiteral("Messages.HighlightWords"), QStringLiteral("lighthouse"),
                                          QString());
    Station.Database().ReadDatabaseSettings();
    const qint32 reference = FileMail("From: a@b.org\r\nSubject: x\r\nDate: Fri, 20 Nov 2026 08:00:00 +0000\r\n"
                                      "Content-Type: text/html\r\n\r\n<p>The lighthouse</p>");
    OpenWindow();
    Select(reference);
    ASSERT_TRUE(WaitUntil([this] { return Window->Preview().IsLoaded(); }));
    const auto* view = Window->findChild<uMessageBasic*>(QStringLiteral("viewer"));
    const cMessagePtr shown = view->Message();
    ASSERT_TRUE(WaitUntil([&] { return FlagsOf(reference) == mfRead; }));
    EXPECT_EQ(Station.Database().GetMessage(reference)->CDOMessage()->Octets(), shown->CDOMessage()->Octets())
        << "reading is no change of the mail";
    List().UpdateDisplay();
    EXPECT_NE(Window->Preview().Message()->Flags() & mfRead, 0);
    EXPECT_TRUE(Window->Preview().IsLoaded());
    EXPECT_EQ(view->Message(), shown);
}

TEST_F(MainWindowTest, AMessageThatIsPassedOverStaysUnread)
{
    const qint32 first = FileMail(Mail("One"));
    const qint32 second = FileMail(Mail("Two"));
    OpenWindow();
    Select(first);
    ASSERT_TRUE(WaitUntil([this] { return Window->Preview().IsLoaded(); }));
    Select(second);
    EXPECT_TRUE(WaitUntil([&] { return FlagsOf(second) == mfRead; }));
    EXPECT_EQ(FlagsOf(first), 0);
}

TEST_F(MainWindowTest, WithoutTheRightAMessageIsReadAndStaysUnread)
{
    AddUser(QStringLiteral("Guest"), 0);
    const qint32 reference = FileMail(Mail("One"));
    OpenWindow(QStringLiteral("Guest"));
    Select(reference);
    QSignalSpy read(&Window->Preview(), &PreviewPane::WasRead);
    ASSERT_TRUE(read.wait(5000));
    EXPECT_EQ(FlagsOf(reference), 0);
}

TEST_F(MainWindowTest, AMessageMarkedUnreadByHandStaysSoWhileItIsOnShow)
{
    const qint32 reference = FileMail(Mail("One"));
    OpenWindow();
    Select(reference);
    ASSERT_TRUE(WaitUntil([&] { return FlagsOf(reference) == mfRead; }));
    OtherComputer("mark", {QString::number(reference), QStringLiteral("unread")});
    QSignalSpy updated(&List(), &uMessagesList::DisplayUpdated);
    ASSERT_TRUE(updated.wait(8000));
    QSignalSpy read(&Window->Preview(), &PreviewPane::WasRead);
    EXPECT_FALSE(read.wait(PreviewPane::ReadMilliseconds + 500));
    EXPECT_EQ(FlagsOf(reference), 0);
}

TEST_F(MainWindowTest, AttachmentsOfTheSelectedMessageAreListed)
{
    FileMail(Sample("press-02-players-pdf.eml"));
    OpenWindow();
    EXPECT_TRUE(WaitUntil([this] { return Window->Preview().Attachments().isVisible(); }));
}

TEST_F(MainWindowTest, CtrlRAnswersTheSelectedMessage)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    Select(reference);
    Key(Qt::Key_R, Qt::ControlModifier);
    ComposeWindow* compose = OnlyCompose();
    ASSERT_TRUE(compose);
    EXPECT_EQ(compose->Current().To, QStringLiteral("Loveday Tregenza <loveday@example.org>"));
    EXPECT_EQ(compose->Current().Subject, QStringLiteral("RE: Lighthouse"));
    EXPECT_TRUE(compose->Current().Body.contains(QStringLiteral("> Hello.")));
}

TEST_F(MainWindowTest, TheListsOwnReplyIsBegunByTheDeskAndEndsInNoError)
{
    FileMail(Mail("Lighthouse"));
    OpenWindow();
    Q_EMIT List().MessageMenu()->aboutToShow();
    List().findChild<QAction*>(QStringLiteral("mnuReplyMessage"))->trigger();
    ASSERT_TRUE(OnlyCompose());
    EXPECT_EQ(OnlyCompose()->Current().Subject, QStringLiteral("RE: Lighthouse"));
    EXPECT_FALSE(Window->TakeRunTimeError(
        dao::Error(dao::errTypeMismatch, QStringLiteral("Type mismatch"), QStringLiteral("uMessagesList.Reply"))));
}

TEST_F(MainWindowTest, ForwardFromTheListsMenuQuotesTheOriginalAndCarriesItsFiles)
{
    FileMail(Sample("press-02-players-pdf.eml"));
    OpenWindow();
    Q_EMIT List().MessageMenu()->aboutToShow();
    List().findChild<QAction*>(QStringLiteral("mnuForwardMessage"))->trigger();
    const Composition forward = OnlyCompose()->Current();
    EXPECT_TRUE(forward.Subject.startsWith(QStringLiteral("FW: ")));
    EXPECT_TRUE(forward.Body.contains(QStringLiteral("---- Forwarded message ----")));
    EXPECT_FALSE(forward.Files.isEmpty());
}

TEST_F(MainWindowTest, CopyFromTheListsMenuOpensANewMessageWithTheSameText)
{
    FileMail(Mail("Lighthouse", "The text.\r\n"));
    OpenWindow();
    Q_EMIT List().MessageMenu()->aboutToShow();
    List().findChild<QAction*>(QStringLiteral("mnuCopy"))->trigger();
    EXPECT_EQ(OnlyCompose()->Current().Subject, QStringLiteral("Copy of Lighthouse"));
    EXPECT_EQ(OnlyCompose()->Current().Body, QStringLiteral("The text.\n"));
    EXPECT_EQ(OnlyCompose()->Reference(), 0);
}

TEST_F(MainWindowTest, ReplyToAllStandsInTheListsMenu)
{
    FileMail(Mail("Lighthouse"));
    OpenWindow();
    QStringList texts;
    for (const QAction* entry : List().MessageMenu()->actions())
        texts.append(entry->text());
    const qsizetype reply = texts.indexOf(QStringLiteral("&Reply to Message\tCtrl+R"));
    ASSERT_GE(reply, 0) << texts.join(u'|').toStdString();
    EXPECT_EQ(texts.at(reply + 1), QStringLiteral("Reply to &all"));
}

TEST_F(MainWindowTest, ADraftOpensInTheComposeWindowAndOnlyOnce)
{
    const qint32 reference = FileMail(Mail("Unfinished"), tmcDrafts, mfRead);
    OpenWindow();
    Key(Qt::Key_6, Qt::ControlModifier);
    Select(reference);
    QTest::keyClick(&Grid(), Qt::Key_Return);
    EXPECT_EQ(OnlyCompose()->Reference(), reference);
    QTest::keyClick(&Grid(), Qt::Key_Return);
    EXPECT_EQ(Window->ComposeWindows().size(), 1);
}

TEST_F(MainWindowTest, AnyOtherMessageOpensInAWindowThatNoticesWhatHappensToIt)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    Select(reference);
    QTest::keyClick(&Grid(), Qt::Key_Return);
    ASSERT_EQ(Window->MessageWindows().size(), 1);
    MessageWindow* message = Window->MessageWindows().first();
    EXPECT_EQ(message->windowTitle(), QStringLiteral("Lighthouse"));
    auto* notice = message->findChild<NoticeBar*>(QStringLiteral("storedNotice"));
    OtherComputer("move", {QString::number(reference), QStringLiteral("Saved")});
    message->CheckStored();
    EXPECT_EQ(notice->Text(), QStringLiteral("This message was moved to Saved meanwhile."));
    OtherComputer("delete", {QString::number(reference), QStringLiteral("--permanently"), QStringLiteral("--yes")});
    message->CheckStored();
    EXPECT_EQ(notice->Text(),
              QStringLiteral("This message was deleted meanwhile. What you see is how it was when you opened it."));
    message->findChild<QAction*>(QStringLiteral("reply"))->trigger();
    EXPECT_EQ(OnlyCompose()->Current().Subject, QStringLiteral("RE: Lighthouse"));
}

TEST_F(MainWindowTest, AnsweringAMessageThatIsGoneGivesWordsAndNoWindow)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    List().SetAutoUpdate(false);
    Select(reference);
    OtherComputer("delete", {QString::number(reference), QStringLiteral("--permanently"), QStringLiteral("--yes")});
    Key(Qt::Key_R, Qt::ControlModifier);
    EXPECT_TRUE(Window->ComposeWindows().isEmpty());
    EXPECT_EQ(Window->statusBar()->currentMessage(),
              QStringLiteral("That message is not there any more: it was deleted on another computer."));
    EXPECT_EQ(List().NumberItems(), 0);
}

TEST_F(MainWindowTest, OpeningAMessageThatIsGoneGivesWordsAndNoWindow)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    List().SetAutoUpdate(false);
    Select(reference);
    OtherComputer("delete", {QString::number(reference), QStringLiteral("--permanently"), QStringLiteral("--yes")});
    QTest::keyClick(&Grid(), Qt::Key_Return);
    EXPECT_TRUE(Window->MessageWindows().isEmpty());
    EXPECT_EQ(Window->statusBar()->currentMessage(),
              QStringLiteral("That message is not there any more: it was deleted on another computer."));
}

TEST_F(MainWindowTest, AKeyBeginsATextMessage)
{
    OpenWindow();
    Key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    ComposeWindow* const compose = OnlyCompose();
    ASSERT_TRUE(compose);
    EXPECT_EQ(compose->Current().Type, emtSMS);
}
