// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "DeskSettings.h"
#include "DeskTest.h"
#include "messageslist/uMessagesList.h"
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

    std::unique_ptr<DeskSettings> Settings;
    std::unique_ptr<MainWindow> Window;
};
