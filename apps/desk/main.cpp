// SPDX-License-Identifier: Apache-2.0
#include "Desk.h"
#include "DeskApplication.h"
#include "DeskUserInterface.h"
#include "Failure.h"
#include "common/HarmlessText.h"
#include "pictures/Pictures.h"
#include "window/Appearance.h"

#include <QApplication>
#include <QStyleFactory>

#include <cstdio>

namespace
{
int Say(FILE* stream, const QString& text, int code)
{
    std::fputs(HarmlessText::Lines(text).toUtf8().constData(), stream);
    return code;
}

/// Without one the toolkit would end the program in its own way.
bool HasDisplay()
{
#ifdef Q_OS_LINUX
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#else
    return true;
#endif
}
int Run(int argc, char** argv)
{
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words.append(QString::fromLocal8Bit(argv[i]));
    // What only prints needs no screen.
    const DeskOptions options = DeskOptions::Parse(words);
    if (!options.Problem.isEmpty())
        return Say(stderr, QStringLiteral("tolva-desk: %1 See: tolva-desk --help\n").arg(options.Problem), exitUsage);
    if (options.WantsHelp)
        return Say(stdout, DeskOptions::Help(), exitOK);
    if (options.WantsVersion)
        return Say(stdout, QStringLiteral("tolva-desk %1\n").arg(QStringLiteral(TOLVA_VERSION)), exitOK);

    const bool isPlatformNamed = !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
    if (!options.Pictures.isEmpty() && !isPlatformNamed)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    else if (!isPlatformNamed && !HasDisplay())
        return Say(stderr, QStringLiteral("tolva-desk: there is no display here.\n"), exitUnavailable);

    const DeskApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tolva-desk"));
    QApplication::setApplicationDisplayName(QStringLiteral("Tolva"));
    QApplication::setApplicationVersion(QStringLiteral(TOLVA_VERSION));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    if (!options.Pictures.isEmpty())
        return Pictures::Take(options);

    DeskSettings settings;
    Appearance::Apply(settings.Appearance());
    DeskUserInterface userInterface;
    QApplication::setQuitOnLastWindowClosed(false);
    Desk desk(settings, &userInterface);
    QObject::connect(&desk, &Desk::Finished, &application, &QApplication::quit);
    // Choosing no station is no failure; a named one that does not open is.
    if (!desk.Start(options))
        return options.Folder.isEmpty() ? exitOK : exitNoInput;
    return QApplication::exec();
}
} // namespace

int main(int argc, char** argv)
{
    try {
        return Run(argc, argv);
    } catch (...) {
        const Failure failure = UnexpectedFailure();
        return Say(stderr, QStringLiteral("tolva-desk: %1\n").arg(failure.Words()), failure.Code());
    }
}
