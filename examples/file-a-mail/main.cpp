// SPDX-License-Identifier: Apache-2.0

// Files the mail on standard input into a station and says how many wait there unread: file-a-mail FOLDER USER

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <common/TerminalUserInterface.h>
#include <cstdio>
#include <database/cTolvaDatabase.h>
#include <platform/directory/EmbeddedDirectory.h>
#include <platform/mail/Message.h>
#include <platform/records/Error.h>
#include <platform/records/Recordset.h>

int main(int argc, char** argv)
try {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("Usage: file-a-mail FOLDER USER\n", stderr);
        return 2;
    }
    TerminalUserInterface terminal;
    UserInterface::SetCurrent(&terminal);

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

    QObject::connect(&station, &cTolvaDatabase::MessageSaved, [](const cMessagePtr& message, bool) {
        std::printf("Stored \"%s\".\n", qPrintable(message->CDOMessage()->Subject()));
    });

    QFile input;
    input.open(stdin, QIODevice::ReadOnly);
    auto message = std::make_shared<cMessage>();
    message->SetCDOMessage(std::make_shared<cdo::Message>(input.readAll())); // Reads its dates from the header.
    message->SetCategory(tmcInbox);
    if (!station.SaveMessage(message)) {
        std::fprintf(stderr, "%s (%d)\n", qPrintable(station.LastErrorDescription()), station.LastErrorNumber());
        return 1;
    }
    std::printf("It is on the disk as message %d.\n", message->Reference()); // Not earlier.

    int unread = 0;
    auto rows = station.OpenMessageRows({QStringLiteral("Flags")}, QStringLiteral("[Category]=1"));
    for (; !rows->AtEOF(); rows->MoveNext())
        unread += (rows->Collect(QStringLiteral("Flags")).toInt() & mfRead) == 0 ? 1 : 0;
    std::printf("%d unread in the Inbox.\n", unread);
    UserInterface::SetCurrent(nullptr);
    return 0;
} catch (const dao::Error& error) {
    std::fprintf(stderr, "%s (%d)\n", qPrintable(error.Description()), error.Number());
    return 1;
}
