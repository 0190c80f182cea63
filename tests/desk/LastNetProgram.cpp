// SPDX-License-Identifier: Apache-2.0

// A program whose event handlers throw, below the desk's application: prints what the user would be shown.

#include "DeskApplication.h"
#include "common/UserInterface.h"
#include "platform/records/Error.h"

#include <QTimer>

#include <cstdio>
#include <stdexcept>

namespace
{
class PrintingUserInterface final : public UserInterface
{
public:
    PrintingUserInterface() { SetCurrent(this); }

    MessageBoxAnswer MessageBox(const MessageBoxRequest&) override { return MessageBoxAnswer::OK; }
    int InputBox(const InputBoxRequest&, QString&) override { return -1; }
    void PageSetupLabels(cPageSetup&) override {}
    void SetBusyPointer(bool) override {}
    std::unique_ptr<ProgressDisplay> Progress(const QString&) override { return nullptr; }
    void Yield() override {}
    void RunTimeError(const dao::Error& error) override
    {
        std::printf("%s\n", qPrintable(error.Description()));
        // A box runs an event loop of its own, in which the same thing may happen again.
        QTimer::singleShot(0, [] { throw std::runtime_error("while it was told"); });
        QCoreApplication::processEvents();
    }
};
} // namespace

int main(int argc, char** argv)
{
    DeskApplication application(argc, argv);
    PrintingUserInterface userInterface;
    QTimer::singleShot(0, [] { throw std::runtime_error("the handler failed"); });
    QTimer::singleShot(0, [] { throw dao::Error(dao::errDiskFull, QStringLiteral("no room")); });
    QTimer::singleShot(0, [] { throw 7; });
    QTimer::singleShot(100, &application, &QCoreApplication::quit);
    return QApplication::exec();
}
