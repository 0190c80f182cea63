// SPDX-License-Identifier: Apache-2.0
#include "MainWindowTest.h"

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
