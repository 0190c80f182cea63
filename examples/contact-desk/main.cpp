// SPDX-License-Identifier: Apache-2.0

// The messages of a station beside the one that is selected: contact-desk FOLDER USER

#include <QApplication>
#include <QDir>
#include <QSplitter>

#include <common/dialogs/DialogUserInterface.h>
#include <common/dialogs/QtFileDialog.h>
#include <cstdio>
#include <database/cTolvaDatabase.h>
#include <messages/controls/uMessageBasic.h>
#include <messageslist/uMessagesList.h>
#include <platform/directory/EmbeddedDirectory.h>

int main(int argc, char** argv)
try {
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("Usage: contact-desk FOLDER USER\n", stderr);
        return 2;
    }

    // Who asks the user, and for file names.
    DialogUserInterface dialogs;
    UserInterface::SetCurrent(&dialogs);
    FileDialog::SetFactory([] { return std::make_unique<QtFileDialog>(); });

    // Who is at the desk, and the station.
    EmbeddedDirectory directory;
    directory.Open(QDir(arguments[1]).filePath(QStringLiteral("Directory")));
    if (!directory.SignIn(arguments[2])) {
        std::fprintf(stderr, "There is no user %s here.\n", qPrintable(arguments[2]));
        return 1;
    }
    cTolvaDatabase station;
    station.SetDirectoryDatabase(&directory);
    if (station.OpenTolvaDatabase(arguments[1]) != 0)
        return 1; // The user knows why.

    int result = 0;
    {
        QSplitter window;
        auto* list = new uMessagesList(&window);
        auto* message = new uMessageBasic(&window);
        QObject::connect(list, &uMessagesList::MessageSelected, message, &uMessageBasic::SetMessage);
        list->SetTolvaDatabase(&station);
        window.setWindowTitle(station.StationName());
        window.resize(1100, 700);
        window.show();
        result = QApplication::exec();
        list->SetTolvaDatabase(nullptr);
    }
    UserInterface::SetCurrent(nullptr);
    return result;
} catch (const dao::Error& error) {
    std::fprintf(stderr, "%s (%d)\n", qPrintable(error.Description()), error.Number());
    return 1;
}
