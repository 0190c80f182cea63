// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "DeskSettings.h"
#include "DeskTest.h"
#include "messageslist/uMessagesList.h"
#include "platform/widgets/FlexGrid.h"
#include "window/MainWindow.h"

#include <QtTest>

#include <memory>

/// The desk's window on the station of the fixture, which is another computer then.
class WindowTest : public DeskTest
{
protected:
    void SetUp() override
    {
        DeskTest::SetUp();
        Settings = std::make_unique<DeskSettings>(Path(QStringLiteral("desk.ini")));
    }
    void TearDown() override
    {
        CloseWindow();
        DeskTest::TearDown();
    }
    void OpenWindow(const QString& user = QStringLiteral("Technician"))
    {
        auto station = std::make_unique<DeskStation>();
        station->Open(Folder(), user);
        Window = std::make_unique<MainWindow>(std::move(station), *Settings);
        Window->show();
        Window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Window.get()));
        ASSERT_TRUE(WaitUntil([this] { return Window->List().TolvaDatabase() && !Window->List().IsFilling(); }));
    }
    void CloseWindow()
    {
        if (Window) {
            EXPECT_TRUE(Window->close());
            Window.reset();
        }
    }

    /// Goes to the row of that message by the keys, as a user does.
    static void SelectByKeys(MainWindow& window, qint32 reference)
    {
        auto* grid = window.List().findChild<FlexGrid*>(QStringLiteral("grdMessages"));
        const auto row = static_cast<int>(window.List().References().indexOf(reference)) + 1;
        ASSERT_GT(row, 0) << "no row of " << reference;
        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_Home);
        for (int i = 1; i < row; ++i)
            QTest::keyClick(grid, Qt::Key_Down);
        ASSERT_EQ(window.List().SelectedReference(), reference);
    }

    std::unique_ptr<DeskSettings> Settings;
    std::unique_ptr<MainWindow> Window;
};
