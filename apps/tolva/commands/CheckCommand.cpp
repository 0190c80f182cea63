// SPDX-License-Identifier: Apache-2.0

// tolva check: reads a whole station and says what is wrong with it.

#include "CollectingUserInterface.h"
#include "Failure.h"
#include "Station.h"
#include "StationCheck.h"
#include "StationPlace.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "platform/records/FileConversion.h"

#include <QFileInfo>

namespace
{
int RunCheck(const Arguments& arguments)
{
    const QString& folder = arguments.Folder();
    const QString file = StationPlace::FileIn(folder);
    if (!QFileInfo::exists(file)) {
        throw Failure(
            exitNoInput,
            QStringLiteral("There is no station in %1. Make one with: tolva init %1 --name NAME --phone NUMBER")
                .arg(folder));
    }
    TerminalUserInterface under;
    CollectingUserInterface terminal(under);
    const StationCheck::Report report =
        StationCheck::Run(folder, [](const QString& words) { Terminal::Complain(words); });
    if (!report.IsWhole) {
        Terminal::Complain(QStringLiteral("Ended early by Ctrl-C; the rest was not checked."));
        return exitInterrupted;
    }
    for (const StationCheck::FolderCount& count : report.Folders)
        Terminal::PrintLine(QStringLiteral("%1  %2").arg(count.Messages, 8).arg(count.Path));
    // A file that could not be opened has no folders to tell of, not none in them.
    if (report.IsRead) {
        Terminal::PrintLine(QStringLiteral("%1  messages in all").arg(report.Messages(), 8));
        Terminal::PrintLine(QStringLiteral("The format is %1.").arg(dao::FormatOf(file)));
    }
    if (report.IsSound()) {
        Terminal::PrintLine(QStringLiteral("The station is sound."));
        return exitOK;
    }
    Terminal::PrintLine(QStringLiteral("The station is not sound: %1.").arg(report.Summary));
    return exitData;
}
} // namespace

CommandDefinition CheckCommand()
{
    return {
        QStringLiteral("check"),
        QStringLiteral("Reads a whole station and says what is wrong with it."),
        {QStringLiteral("check FOLDER")},
        QStringLiteral("Nothing is written. Every value of the station and of its directory of users is read once. "
                       "Problems are named\n"
                       "on standard error; the exit code is 0 for a sound station and 65 for one that is not. --user "
                       "is taken for\n"
                       "the sake of scripts and not used."),
        {Station::UserOption()},
        QStringLiteral("tolva check /srv/station"),
        1,
        1,
        RunCheck,
    };
}
