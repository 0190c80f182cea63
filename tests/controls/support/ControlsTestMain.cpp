// SPDX-License-Identifier: Apache-2.0
#include "support/WarningGuard.h"

#include <QApplication>
#include <QLocale>
#include <QStandardPaths>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QWidget>

namespace
{
/// No window outlives the test that opened it.
class WindowCloser : public testing::EmptyTestEventListener
{
    void OnTestEnd(const testing::TestInfo&) override
    {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible()) {
                ADD_FAILURE() << "a window was left open: " << window->metaObject()->className();
                window->close();
            }
        }
    }
};
} // namespace

int main(int argc, char** argv)
{
    // The same on every machine, whoever starts the program and how.
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("TZ", "Europe/London");
    qputenv("QT_HASH_SEED", "0");
    const QTemporaryDir runtimeFolder;
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        qputenv("XDG_RUNTIME_DIR", runtimeFolder.path().toLocal8Bit());
    testing::InitGoogleTest(&argc, argv);
    // The list is asked for while building, where there may be no screen.
    if (GTEST_FLAG_GET(list_tests))
        return RUN_ALL_TESTS();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    QStandardPaths::setTestModeEnabled(true);
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tolvaTests"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    WarningGuard::Install();
    // The offscreen platform has no window manager to tell of sizes, and no order of windows.
    WarningGuard::Ignore(QStringLiteral("This plugin does not support "));
    testing::UnitTest::GetInstance()->listeners().Append(new WindowCloser);
    return RUN_ALL_TESTS();
}
