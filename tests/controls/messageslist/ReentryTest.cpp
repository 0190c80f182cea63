// SPDX-License-Identifier: Apache-2.0

// What a host does to the list and its station within the list's events, and a file that does not answer for a while.

#include "common/ClockHelper.h"
#include "messageslist/FilledListTest.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>

#include <sqlite3.h>

class ReentryTest : public FilledListTest
{
protected:
    QLabel& Unread() const { return Child<QLabel>("lblUnread"); }
    void Reopen()
    {
        Station->CloseTolvaDatabase();
        EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    }
    void Reattach()
    {
        List->SetTolvaDatabase(nullptr);
        List->SetTolvaDatabase(Station.get());
    }
    /// Chooses an entry of the folders' menu, as if it had been clicked, in a list of its own that its host destroys
    /// in this event.
    static void Choose(uMessagesList& list, const char* entry)
    {
        list.findChild<QAction*>(QLatin1String(entry))->trigger();
    }
};

TEST_F(ReentryTest, AStationClosedAndOpenedAgainDuringAFillIsShownWhole)
{
    SaveMany(60);
    Attach();
    AtYield(2, [&] { Reopen(); });
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 60);
    EXPECT_EQ(Subjects().last(), QStringLiteral("Message 60"));
}

TEST_F(ReentryTest, AStationDetachedAndAttachedAgainDuringAFillIsShownWhole)
{
    SaveMany(60);
    Attach();
    AtYield(2, [&] { Reattach(); });
    List->UpdateDisplay();
    EXPECT_EQ(List->NumberItems(), 60);
    EXPECT_FALSE(Column(0).contains(QString()));
    EXPECT_EQ(Subjects().last(), QStringLiteral("Message 60"));
}

TEST_F(ReentryTest, AListThatLostItsRowsToAClosedStationIsFilledByTheTickAfterItsReopening)
{
    SaveMany(60);
    Attach();
    AtYield(2, [&] { Station->CloseTolvaDatabase(); });
    List->UpdateDisplay();
    ASSERT_EQ(List->NumberItems(), 0);
    OpenStation();
    Tick();
    EXPECT_EQ(List->NumberItems(), 60);
}

TEST_F(ReentryTest, WhatAHostDoesInTheQueryEventLeavesAWholeList)
{
    SaveMany(60);
    Attach();
    std::function<void()> action;
    bool isDone = false;
    QObject::connect(List.get(), qOverload<QString&>(&uMessagesList::UpdateDisplay), List.get(), [&](QString&) {
        if (!std::exchange(isDone, true))
            action();
    });
    const std::function<void()> actions[] = {[this] { Reopen(); }, [this] { Reattach(); },
                                             [this] { List->SetCategory(tmcSaved), List->SetCategory(tmcInbox); }};
    for (const auto& next : actions) {
        action = next;
        isDone = false;
        List->UpdateDisplay();
        EXPECT_EQ(List->NumberItems(), 60);
        EXPECT_TRUE(Tree->isEnabled());
    }
}

TEST_F(ReentryTest, AHostThatAttachesAnewInEachQueryEventDoesNotHangTheProgram)
{
    SaveMany(3);
    Attach();
    QObject::connect(List.get(), qOverload<QString&>(&uMessagesList::UpdateDisplay), List.get(),
                     [this](QString&) { Reattach(); });
    List->UpdateDisplay();
    EXPECT_LT(TakeFills(), 20);
    EXPECT_TRUE(Tree->isEnabled());
}

TEST_F(ReentryTest, AListDestroyedInAnyOfItsEventsEndsCleanly)
{
    SaveMany(3);
    const auto destroyIn = [this](const char* what, auto signal, const std::function<void(uMessagesList&)>& act) {
        Directory.User.SetPreference(QStringLiteral("SelectedMessageCategory"), tmcInbox);
        QPointer<uMessagesList> list(new uMessagesList);
        list->resize(900, 600);
        list->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(list));
        list->SetTolvaDatabase(Station.get());
        QObject::connect(list, signal, qApp, [list] { delete list.data(); });
        act(*list);
        EXPECT_TRUE(list.isNull()) << what;
        delete list.data();
    };
    const auto grid = [](uMessagesList& list) { return list.findChild<FlexGrid*>(QStringLiteral("grdMessages")); };
    const auto query = qOverload<QString&>(&uMessagesList::UpdateDisplay);
    destroyIn("new message", &uMessagesList::NewMessage, [](uMessagesList& list) {
        QTest::mouseClick(list.findChild<QPushButton*>(QStringLiteral("cmdNewMessage")), Qt::LeftButton);
    });
    destroyIn("new folder, query", query, [](uMessagesList& list) { Choose(list, "mnuNewFolder"); });
    destroyIn("new folder, selected", &uMessagesList::MessageSelected,
              [](uMessagesList& list) { Choose(list, "mnuNewFolder"); });
    destroyIn("new folder, updated", &uMessagesList::DisplayUpdated,
              [](uMessagesList& list) { Choose(list, "mnuNewFolder"); });
    destroyIn("arrow key", &uMessagesList::MessageSelected,
              [&](uMessagesList& list) { QTest::keyClick(grid(list), Qt::Key_Down); });
    destroyIn("F5", &uMessagesList::MessageSelected,
              [&](uMessagesList& list) { QTest::keyClick(grid(list), Qt::Key_F5); });
    destroyIn("click", &uMessagesList::MessageSelected, [&](uMessagesList& list) {
        const QRect row = grid(list)->visualRect(grid(list)->model()->index(1, 2));
        QTest::mousePress(grid(list)->viewport(), Qt::LeftButton, {}, row.center());
    });
    destroyIn("Enter", &uMessagesList::OpenMessage,
              [&](uMessagesList& list) { QTest::keyClick(grid(list), Qt::Key_Return); });
    destroyIn("refresh", &uMessagesList::MessageSelected, [](uMessagesList& list) { list.RefreshDisplay(2); });
    destroyIn("two lines", &uMessagesList::MessageSelected,
              [](uMessagesList& list) { list.SetDoubleHeightRows(false); });
    destroyIn("reset", query, [](uMessagesList& list) { list.ResetDisplay(); });
    destroyIn("preferences", query,
              [this](uMessagesList&) { Q_EMIT Directory.User.PreferencesChanged(32, QString()); });
    destroyIn("delete", &uMessagesList::MessageMoved, [](uMessagesList& list) { Choose(list, "mnuDelete"); });
}

TEST_F(ReentryTest, AListDestroyedWhenAMarkedMessageIsToldEndsCleanly)
{
    SaveMany(3);
    for (const char* entry : {"mnuMarkAsRead", "mnuMarkAllRead2"}) {
        QPointer<uMessagesList> list(new uMessagesList);
        list->SetTolvaDatabase(Station.get());
        const auto connection =
            QObject::connect(Station.get(), &cTolvaDatabase::MessageSaved, qApp, [list] { delete list.data(); });
        Choose(*list, entry);
        EXPECT_TRUE(list.isNull()) << entry;
        QObject::disconnect(connection);
        delete list.data();
    }
}

// ---- A file that does not answer

TEST_F(ReentryTest, RowsThatCouldNotBeReadAreToldAtOnceAndComeWithTheTickBehind)
{
    SaveMany(200);
    Attach();
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(FileName().toUtf8().constData(), &other), SQLITE_OK);
    AtYield(2, [&] { ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK); });
    QElapsedTimer waited;
    waited.start();
    EXPECT_THROW(List->UpdateDisplay(), dao::Error);
    EXPECT_LT(waited.elapsed(), 20'000) << "it waited for each row";
    const int shown = List->NumberItems();
    EXPECT_LT(shown, 200);
    EXPECT_GT(shown, 25);
    EXPECT_TRUE(Unread().isVisible());
    EXPECT_EQ(Unread().text(), QStringLiteral("%1 rows could not be read. Trying again.").arg(200 - shown));
    EXPECT_TRUE(Timer().isActive());
    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(other);
    Tick();
    EXPECT_EQ(List->NumberItems(), 200);
    EXPECT_EQ(Subjects().last(), QStringLiteral("Message 200"));
    EXPECT_FALSE(Unread().isVisible());
}
