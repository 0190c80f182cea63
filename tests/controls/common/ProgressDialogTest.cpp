// SPDX-License-Identifier: Apache-2.0

// The display of a long piece of work.

#include "common/dialogs/ProgressDialog.h"

#include "common/dialogs/DialogUserInterface.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

class ProgressDialogTest : public testing::Test
{
protected:
    static ProgressDialog* Shown()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* const dialog = qobject_cast<ProgressDialog*>(widget);
            if (dialog && dialog->isVisible())
                return dialog;
        }
        return nullptr;
    }
    /// Works on until the window is there.
    static ProgressDialog* WorkUntilShown(ProgressDisplay& display)
    {
        QElapsedTimer waiting;
        waiting.start();
        while (!Shown() && !waiting.hasExpired(10'000))
            EXPECT_TRUE(display.Advance(1, 4));
        return Shown();
    }

    DialogUserInterface Ui;
};

TEST_F(ProgressDialogTest, AppearsAfterThreeTenthsOfASecondAndLetsEventsRunTwentyTimesASecondAtMost)
{
    QElapsedTimer working;
    working.start();
    const auto display = Ui.Progress(QStringLiteral("Copying <b>Tolva.mdb</b>"));
    int events = 0;
    QTimer timer;
    timer.callOnTimeout([&] { ++events; });
    timer.start(0);
    ProgressDialog* const dialog = WorkUntilShown(*display);
    const qint64 elapsed = working.elapsed();
    ASSERT_NE(dialog, nullptr);
    EXPECT_GT(elapsed, 300);
    EXPECT_GT(events, 0);
    EXPECT_LE(events, elapsed / 50 + 1);
    EXPECT_EQ(dialog->findChild<QLabel*>(QStringLiteral("lblCaption"))->text(),
              QStringLiteral("Copying <b>Tolva.mdb</b>"));
    EXPECT_EQ(dialog->findChild<QLabel*>(QStringLiteral("lblCaption"))->textFormat(), Qt::PlainText);
    EXPECT_EQ(dialog->findChild<QProgressBar*>(QStringLiteral("Bar"))->text(), QStringLiteral("25%"));
}

TEST_F(ProgressDialogTest, ShortWorkShowsNothing)
{
    const auto display = Ui.Progress(QStringLiteral("Copying"));
    for (int i = 0; i <= 1000; ++i)
        EXPECT_TRUE(display->Advance(i, 1000));
    EXPECT_EQ(Shown(), nullptr);
}

TEST_F(ProgressDialogTest, ShowsThePercentageOfAnySize)
{
    const auto display = Ui.Progress(QStringLiteral("Copying"));
    ProgressDialog* const dialog = WorkUntilShown(*display);
    ASSERT_NE(dialog, nullptr);
    const auto* const bar = dialog->findChild<QProgressBar*>(QStringLiteral("Bar"));
    const qint64 huge = Q_INT64_C(9'000'000'000'000'000'000);
    EXPECT_TRUE(QTest::qWaitFor([&] { return display->Advance(huge / 2, huge) && bar->value() == 50; }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return display->Advance(12, 10) && bar->value() == 100; }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return display->Advance(0, 0) && bar->value() == 0; }));
}

TEST_F(ProgressDialogTest, GoesWithTheWork)
{
    auto display = Ui.Progress(QStringLiteral("Copying"));
    ASSERT_NE(WorkUntilShown(*display), nullptr);
    display.reset();
    EXPECT_EQ(Shown(), nullptr);
}

TEST_F(ProgressDialogTest, CancelEscapeAndTheCloseBoxStopTheWorkAndLeaveTheWindowUntilItEnds)
{
    const std::function<void(ProgressDialog&)> ways[] = {
        [](ProgressDialog& dialog) {
            QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
        },
        [](ProgressDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); },
        [](ProgressDialog& dialog) { dialog.close(); }};
    for (const auto& cancel : ways) {
        const auto display = Ui.Progress(QStringLiteral("Copying"));
        ProgressDialog* const dialog = WorkUntilShown(*display);
        ASSERT_NE(dialog, nullptr);
        cancel(*dialog);
        EXPECT_FALSE(display->Advance(2, 4));
        EXPECT_FALSE(display->Advance(3, 4));
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_FALSE(dialog->findChild<QPushButton*>(QStringLiteral("cmdCancel"))->isEnabled());
    }
}

TEST_F(ProgressDialogTest, EnterDoesNotStopTheWork)
{
    const auto display = Ui.Progress(QStringLiteral("Copying"));
    ProgressDialog* const dialog = WorkUntilShown(*display);
    ASSERT_NE(dialog, nullptr);
    QTest::keyClick(dialog, Qt::Key_Return);
    EXPECT_TRUE(display->Advance(2, 4));
}

TEST_F(ProgressDialogTest, OtherWindowsTakeNoInputWhileItShows)
{
    QWidget window;
    QPushButton button(QStringLiteral("Delete"), &window);
    int clicks = 0;
    QObject::connect(&button, &QPushButton::clicked, &window, [&] { ++clicks; });
    window.resize(200, 100);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const QPoint place = button.geometry().center();
    auto display = Ui.Progress(QStringLiteral("Copying"));
    ASSERT_NE(WorkUntilShown(*display), nullptr);
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
    EXPECT_EQ(clicks, 0);
    display.reset();
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
    EXPECT_EQ(clicks, 1);
    window.close();
}

TEST_F(ProgressDialogTest, AWindowThatGoesMeanwhileDoesNotEndTheWork)
{
    auto* window = new QWidget;
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    const auto display = Ui.Progress(QStringLiteral("Copying"));
    ASSERT_NE(WorkUntilShown(*display), nullptr);
    delete window;
    EXPECT_TRUE(display->Advance(2, 4));
}
