// SPDX-License-Identifier: Apache-2.0
#include "Failure.h"
#include "Program.h"
#include "StandardStreams.h"
#include "Terminal.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    StandardStreams::HoldPlaces();
    // Before the application, which may have something to tell itself.
    QCoreApplication::setApplicationName(QStringLiteral("tolva"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TOLVA_VERSION));
    Terminal::TakeMessagesOfQt();
    const QCoreApplication application(argc, argv);
    const int code = RunProgram(QCoreApplication::arguments().mid(1));
    if (!Terminal::Flush() && code == exitOK) {
        Terminal::Complain(QStringLiteral("The output could not be written."));
        return exitInputOutput;
    }
    return code;
}
