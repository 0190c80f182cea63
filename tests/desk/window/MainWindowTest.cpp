// SPDX-License-Identifier: Apache-2.0
#include "window/MainWindow.h"

#include "DeskSettings.h"
#include "DeskTest.h"
#include "StationPlace.h"
#include "WindowTest.h"
#include "compose/ComposeWindow.h"
#include "messages/AttachmentList.h"
#include "messages/MessageWindow.h"
#include "messages/PreviewPane.h"
#include "messages/controls/uMessageBasic.h"
#include "messageslist/uMessagesList.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/TabStrip.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QSplitter>
#include <QStatusBar>
#include <QTabBar>
#include <QtTest>

namespace
{
class MainWindowTest : public WindowTest
{
protected:
    cTolvaDatabase& Database() { return Window->Station().Database(); }
    uMessagesList& List() { return Window->List(); }
    FlexGrid& Grid() { return *List().findChild<FlexGrid*>(QStringLiteral("grdMessages")); }
    QString Label(const char* name) { return Window->findChild<QLabel*>(QLatin1String(name))->text(); }
    NoticeBar& Notice(const char* name) { return *Window->findChild<NoticeBar*>(QLatin1String(name)); }
    /// Selects as the arrow keys do.
    void Select(qint32 reference)
    {
        Grid().setFocus();
        for (int row = 1; row < Grid().Rows(); ++row) {
            if (Grid().TextMatrix(row, 0).toInt() == reference) {
                Grid().SetRow(row);
                Grid().SetCol(0);
            }
        }
        ASSERT_EQ(List().SelectedReference(), reference);
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(Window.get(), key, modifiers);
    }
    ComposeWindow* OnlyCompose()
    {
        EXPECT_EQ(Window->ComposeWindows().size(), 1);
        return Window->ComposeWindows().value(0);
    }
    qint32 FlagsOf(qint32 reference) { return Station.Database().GetMessage(reference)->Flags(); }
};
} // namespace

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

TEST_F(MainWindowTest, AFilterIsSaidAndCleared)
{
    FileMail(Mail("Lighthouse"));
    FileMail(Mail("Bridge"));
    OpenWindow();
    Key(Qt::Key_F, Qt::ControlModifier);
    auto* find = List().findChild<QComboBox*>(QStringLiteral("comboFind"));
    ASSERT_TRUE(find->hasFocus() || find->isAncestorOf(QApplication::focusWidget()));
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("light"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    ASSERT_TRUE(WaitUntil([this] { return List().NumberItems() == 1; }));
    EXPECT_EQ(Notice("filterNotice").Text(), QStringLiteral("Filter is on: only subjects with “light”"));
    QTest::mouseClick(Notice("filterNotice").findChild<QPushButton*>(QStringLiteral("noticeButton")), Qt::LeftButton);
    EXPECT_EQ(List().NumberItems(), 2);
    EXPECT_EQ(Notice("filterNotice").Text(), QString());
}

TEST_F(MainWindowTest, CtrlAndANumberGoToTheFixedFolders)
{
    OpenWindow();
    for (int i = 7; i >= 1; --i) {
        Key(static_cast<Qt::Key>(Qt::Key_0 + i), Qt::ControlModifier);
        EXPECT_EQ(List().Category(), i);
    }
}

TEST_F(MainWindowTest, F6GoesThroughTheParts)
{
    FileMail(Mail("Lighthouse"));
    OpenWindow();
    auto* tree = List().findChild<CategoryTreeView*>(QStringLiteral("treeCategories"));
    tree->setFocus();
    Key(Qt::Key_F6);
    EXPECT_TRUE(Grid().hasFocus());
    Key(Qt::Key_F6);
    EXPECT_TRUE(Window->Preview().isAncestorOf(QApplication::focusWidget()));
    Key(Qt::Key_F6);
    EXPECT_TRUE(tree->hasFocus());
    Key(Qt::Key_F6, Qt::ShiftModifier);
    EXPECT_TRUE(Window->Preview().isAncestorOf(QApplication::focusWidget()));
}

TEST_F(MainWindowTest, NoShortcutIsASingleLetter)
{
    OpenWindow();
    for (const QAction* action : Window->findChildren<QAction*>()) {
        for (const QKeySequence& sequence : action->shortcuts()) {
            const QKeyCombination keys = sequence[0];
            const bool isFunctionKey = keys.key() >= Qt::Key_F1 && keys.key() <= Qt::Key_F35;
            // Alt with a letter opens menus.
            const bool isAltDigit =
                keys.keyboardModifiers() == Qt::AltModifier && keys.key() >= Qt::Key_0 && keys.key() <= Qt::Key_9;
            EXPECT_TRUE(isFunctionKey || isAltDigit || (keys.keyboardModifiers() & Qt::ControlModifier) != 0)
                << action->text().toStdString() << ' ' << sequence.toString().toStdString();
        }
    }
}

TEST_F(MainWindowTest, NoTwoShortcutsAreTheSame)
{
    OpenWindow();
    QStringList seen;
    for (const QAction* action : Window->findChildren<QAction*>()) {
        for (const QKeySequence& sequence : action->shortcuts()) {
            EXPECT_FALSE(seen.contains(sequence.toString())) << sequence.toString().toStdString();
            seen.append(sequence.toString());
        }
    }
    EXPECT_GT(seen.size(), 15);
}

TEST_F(MainWindowTest, SizesAreRemembered)
{
    OpenWindow();
    Window->resize(900, 600);
    Window->findChild<QSplitter*>(QStringLiteral("splitter"))->setSizes({400, 500});
    const QList<int> sizes = Window->findChild<QSplitter*>(QStringLiteral("splitter"))->sizes();
    const QSize size = Window->size();
    CloseWindow();
    OpenWindow();
    EXPECT_EQ(Window->size(), size);
    EXPECT_EQ(Window->findChild<QSplitter*>(QStringLiteral("splitter"))->sizes(), sizes);
}

TEST_F(MainWindowTest, TheWindowStaysWhileSomethingUnsavedStays)
{
    OpenWindow();
    Key(Qt::Key_N, Qt::ControlModifier);
    ComposeWindow* compose = OnlyCompose();
    ASSERT_TRUE(QTest::qWaitForWindowActive(compose));
    QTest::keyClicks(compose->focusWidget(), QStringLiteral("ann@example.org"));
    ASSERT_TRUE(compose->IsChanged());
    {
        const BoxAnswer answer(QStringLiteral("Cancel"));
        EXPECT_FALSE(Window->close());
    }
    EXPECT_TRUE(Window->isVisible());
    EXPECT_TRUE(compose->isVisible());
    const BoxAnswer answer(QStringLiteral("Save draft"));
    EXPECT_TRUE(Window->close());
    EXPECT_EQ(MessagesIn(tmcDrafts).size(), 1);
}

TEST_F(MainWindowTest, AStationOutOfReachIsSaidAndRecovers)
{
    FileMail(Mail("Lighthouse"));
    OpenWindow();
    Station.Close();
    ASSERT_TRUE(QDir().rename(Folder(), Folder() + QStringLiteral(".away")));
    EXPECT_TRUE(WaitUntil(
        [this] {
            return Notice("connectionNotice").Text() == u"The station's folder cannot be reached; trying again.";
        },
        2 * MainWindow::WatchMilliseconds));
    // What is written meanwhile is not lost, and not stored into a file that is gone.
    ASSERT_TRUE(QDir().rename(Folder() + QStringLiteral(".away"), Folder()));
    EXPECT_TRUE(
        WaitUntil([this] { return Notice("connectionNotice").Text().isEmpty(); }, 3 * MainWindow::WatchMilliseconds));
    EXPECT_EQ(List().NumberItems(), 1);
    EXPECT_EQ(List().Category(), tmcInbox);
}

TEST_F(MainWindowTest, AStationThatWasPutBackFromABackupIsOpenedAnewAndWhatIsWrittenStays)
{
    FileMail(Mail("Lighthouse"));
    OtherComputer("backup");
    FileMail(Mail("Taken back"));
    OpenWindow();
    ASSERT_EQ(List().NumberItems(), 2);
    Composition composition;
    composition.Subject = QStringLiteral("Being written");
    QPointer<ComposeWindow> compose = Window->Compose(composition);
    // Here nobody hands the list's errors to the window, as the program does; its watch finds out by itself.
    List().SetAutoUpdateInterval(0);
    OtherComputer("restore", {QStringLiteral("--yes")});
    EXPECT_TRUE(WaitUntil(
        [this] {
            return Notice("connectionNotice").Text().startsWith(u"The station was put back from a backup and has been");
        },
        3 * MainWindow::WatchMilliseconds));
    EXPECT_EQ(List().NumberItems(), 1);
    ASSERT_TRUE(compose);
    EXPECT_TRUE(compose->isVisible());
    EXPECT_TRUE(compose->windowTitle().contains(u"Being written"));
    // It works on the new state by itself.
    List().SetAutoUpdateInterval(1);
    OtherComputer("file", {Write(QStringLiteral("afterwards.eml"), Mail("Afterwards"))});
    EXPECT_TRUE(WaitUntil([this] { return List().NumberItems() == 2; }, 20000));
}

TEST_F(MainWindowTest, AnErrorOfThePollingBecomesANoticeAndNoBox)
{
    OpenWindow();
    const auto isFailureTold = [this](int error) {
        bool isTold = false;
        Q_EMIT List().ReadingFailed(error, isTold);
        return isTold;
    };
    EXPECT_TRUE(isFailureTold(dao::errLocked));
    EXPECT_EQ(Notice("connectionNotice").Text(),
              QStringLiteral("The station is busy on another computer; trying again."));
    Window->WatchStation();
    EXPECT_EQ(Notice("connectionNotice").Text(), QString());
    EXPECT_TRUE(isFailureTold(dao::errFileDamaged));
    EXPECT_EQ(Notice("connectionNotice").Text(),
              QStringLiteral("The station's file is damaged. Please tell your technician; nothing is written to it."));
    EXPECT_TRUE(isFailureTold(dao::errSyntax));
    EXPECT_EQ(Notice("connectionNotice").Text(),
              QStringLiteral("The text to find cannot be used: it cannot hold a double quote, and a [ needs its ]."))
        << "a typed text is no lost folder";
}

TEST_F(MainWindowTest, OnlyTheTechnicianMayEditUsers)
{
    AddUser(QStringLiteral("Guest"), 1);
    OpenWindow(QStringLiteral("Guest"));
    Q_EMIT Window->menuBar()->actions().first()->menu()->aboutToShow();
    EXPECT_FALSE(Window->findChild<QAction*>(QStringLiteral("users"))->isEnabled());
    CloseWindow();
    OpenWindow();
    Q_EMIT Window->menuBar()->actions().first()->menu()->aboutToShow();
    EXPECT_TRUE(Window->findChild<QAction*>(QStringLiteral("users"))->isEnabled());
}

TEST_F(MainWindowTest, EveryPartThatTakesTheKeyboardHasAName)
{
    FileMail(Sample("press-02-players-pdf.eml"));
    OpenWindow();
    ASSERT_TRUE(WaitUntil([this] { return Window->Preview().Attachments().isVisible(); }));
    for (const QWidget* widget : Window->findChildren<QWidget*>()) {
        const bool isReached = (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isVisible() &&
                               !widget->focusProxy() && !widget->inherits("QToolButton") &&
                               !widget->inherits("QComboBoxPrivateContainer");
        const auto* button = qobject_cast<const QPushButton*>(widget);
        if (isReached && !(button && !button->text().isEmpty())) {
            EXPECT_FALSE(widget->accessibleName().isEmpty())
                << widget->metaObject()->className() << ' ' << widget->objectName().toStdString();
        }
    }
}

TEST_F(MainWindowTest, TheColoursAreTheUsersChoice)
{
    OpenWindow();
    Window->findChild<QAction*>(QStringLiteral("colours_dark"))->trigger();
    EXPECT_LT(QApplication::palette().color(QPalette::Window).lightness(), 80);
    EXPECT_EQ(Settings->Appearance(), QStringLiteral("dark"));
    QApplication::processEvents();
    EXPECT_LT(List().palette().color(QPalette::Window).lightness(), 80);
    Window->findChild<QAction*>(QStringLiteral("colours_"))->trigger();
    EXPECT_EQ(Settings->Appearance(), QString());
}
