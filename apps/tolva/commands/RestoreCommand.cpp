// SPDX-License-Identifier: Apache-2.0

// tolva restore, tolva compact and tolva convert: putting another file in the place of a station's.

#include "CollectingUserInterface.h"
#include "Failure.h"
#include "Station.h"
#include "StationPlace.h"
#include "StationReplacing.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "commands/Confirmation.h"
#include "common/ClockHelper.h"
#include "common/FileHelper.h"
#include "database/BackupFolders.h"

#include <QJsonArray>

#include <functional>

namespace
{
BackupFolders::Backup NamedBackup(const QString& root, const QString& name)
{
    for (const BackupFolders::Backup& backup : BackupFolders::List(root)) {
        if (backup.Name == name)
            return backup;
    }
    throw Failure(exitData, QStringLiteral("There is no backup \"%1\" in %2. See: tolva backups").arg(name, root));
}

/// Why none is restored that was not named.
Failure NoNewest(const QString& root)
{
    const Date now = ClockHelper::CurrentTime();
    for (const BackupFolders::Backup& backup : BackupFolders::List(root)) {
        if (BackupFolders::IsFromTheFuture(backup, now))
            return Failure(exitNoInput, QStringLiteral("There is no sound backup in %1 from before now, which is %2 by "
                                                       "this computer's clock. \"%3\" was made later. Set the clock "
                                                       "right, or name the backup.")
                                            .arg(root, now.GeneralDate(), backup.Name));
    }
    return Failure(exitNoInput, QStringLiteral("There is no sound backup in %1.").arg(root));
}

/// The backup to restore, read whole. Failure when there is none that can be.
BackupFolders::Backup ChooseBackup(const Arguments& arguments, const QString& file)
{
    const QString root = BackupFolders::RootOf(file);
    const QString fileName = FileHelper::FileNameOf(file);
    if (arguments.Words().size() == 1) {
        const BackupFolders::Backup newest = BackupFolders::NewestSound(root, fileName);
        if (newest.Folder.isEmpty())
            throw NoNewest(root);
        return newest;
    }
    const BackupFolders::Backup named = NamedBackup(root, arguments.Words().at(1));
    if (!BackupFolders::IsSound(FileHelper::Join(named.Folder, fileName)))
        throw Failure(exitData, QStringLiteral("The backup \"%1\" is damaged; nothing was changed.").arg(named.Name));
    return named;
}

/// Does the work; an end by the user is one by Ctrl-C here.
template <typename Work>
StationReplacing::Result Replace(Work&& work)
{
    try {
        return work();
    } catch (const Failure& failure) {
        if (failure.Code() != exitInterrupted)
            throw;
        throw Failure(exitInterrupted, QStringLiteral("Ended early by Ctrl-C; nothing was changed."));
    }
}

void PrintResult(const Arguments& arguments, QJsonObject result, const StationReplacing::Result& done)
{
    const auto jsonOf = [](const std::optional<StationCounts>& counts) {
        return counts ? QJsonValue(counts->Json()) : QJsonValue();
    };
    const bool isKept = !done.KeepName.isEmpty();
    if (arguments.Has(JsonOption)) {
        result.insert(QStringLiteral("before"), jsonOf(done.Before));
        result.insert(QStringLiteral("after"), jsonOf(done.After));
        result.insert(QStringLiteral("kept"), isKept ? QJsonValue(done.KeepName) : QJsonValue());
        if (!done.Left.isEmpty())
            result.insert(QStringLiteral("left"), QJsonArray::fromStringList(done.Left));
        Terminal::PrintJson(result);
        return;
    }
    Terminal::PrintLine(
        QStringLiteral("before: %1").arg(done.Before ? done.Before->Words() : QStringLiteral("not readable")));
    Terminal::PrintLine(QStringLiteral("after: %1").arg(done.AfterWords()));
    if (isKept)
        Terminal::PrintLine(QStringLiteral("The old file is kept as %1").arg(done.KeepName));
    for (const QString& place : done.Left)
        Terminal::PrintLine(QStringLiteral("Left on the server, closed: %1").arg(place));
}

int Restore(const Arguments& arguments)
{
    TerminalUserInterface under;
    CollectingUserInterface terminal(under);
    const QString file = StationPlace::FileIn(arguments.Folder());
    const BackupFolders::Backup backup = ChooseBackup(arguments, file);
    const QString copy = FileHelper::Join(backup.Folder, FileHelper::FileNameOf(file));
    const StationCounts counts = StationCounts::Of(copy);
    if (!Confirmation::IsGiven(arguments,
                               QStringLiteral("Replace the station in %1 by the backup \"%2\" (%3)? What was filed "
                                              "since is then only in the file that is kept.")
                                   .arg(arguments.Folder(), backup.Name, counts.Words()))) {
        Terminal::Complain(QStringLiteral("Nothing was changed."));
        return exitDeclined;
    }
    PrintResult(arguments, {{QStringLiteral("name"), backup.Name}},
                Replace([&] { return StationReplacing::Restore(arguments.Folder(), backup); }));
    return exitOK;
}

/// A command that writes the station's file anew, once the question is answered; it contains %1 for the folder.
int WriteAnew(const Arguments& arguments, const QString& question,
              const std::function<StationReplacing::Result(const QString& folder)>& write)
{
    TerminalUserInterface under;
    CollectingUserInterface terminal(under);
    const QString& folder = arguments.Folder();
    if (!StationPlace::HoldsStation(folder))
        throw Failure(exitNoInput, QStringLiteral("There is no station in %1.").arg(folder));
    if (!Confirmation::IsGiven(arguments, question.arg(folder))) {
        Terminal::Complain(QStringLiteral("Nothing was changed."));
        return exitDeclined;
    }
    const StationReplacing::Result done = Replace([&] { return write(folder); });
    PrintResult(arguments,
                {{QStringLiteral("sizeBefore"), done.SizeBefore}, {QStringLiteral("sizeAfter"), done.SizeAfter}}, done);
    return exitOK;
}

int Compact(const Arguments& arguments)
{
    return WriteAnew(arguments, QStringLiteral("Compact the station in %1?"), StationReplacing::Compact);
}

int Convert(const Arguments& arguments)
{
    const bool isToServer = arguments.Value(ToOption) == QStringLiteral("server");
    if (isToServer != arguments.Has(ConnectOption))
        throw Failure(exitUsage, QStringLiteral("\"--to server\" and \"--connect STRING\" go together."));
    if (isToServer) {
        return WriteAnew(arguments, QStringLiteral("Move the station in %1 and its directory to the server?"),
                         [&](const QString& folder) {
                             return StationReplacing::MoveToServer(folder, arguments.Value(ConnectOption));
                         });
    }
    return WriteAnew(
        arguments, QStringLiteral("Write the station in %1 in another format?"),
        [&](const QString& folder) { return StationReplacing::Convert(folder, arguments.Value(ToOption)); });
}

const QString NotAskedText =
    QStringLiteral("Other programs may have the station open. One that works at that moment may end with 75: it has to "
                   "try again.\n"
                   "On a terminal you are asked first, unless --yes is given.\n"
                   "The old file stays beside the new one as Tolva-0001.BAK, or the next free number. What the station "
                   "held\n"
                   "before and holds after is printed. --user is taken for the sake of scripts and not used.");
} // namespace

CommandDefinition RestoreCommand()
{
    return {
        QStringLiteral("restore"),
        QStringLiteral("Puts a backup in the place of a station."),
        {QStringLiteral("restore FOLDER [NAME] [--yes] [--json]")},
        QStringLiteral("NAME is a backup as \"tolva backups\" names it; without it the newest one that is sound is "
                       "taken. A damaged\n"
                       "backup is refused.\n") +
            NotAskedText,
        {{Confirmation::YesOption(), QString(), QStringLiteral("Does not ask.")},
         {JsonOption, QString(), QStringLiteral("Prints one JSON object.")},
         Station::UserOption()},
        QStringLiteral("tolva restore /srv/station \"2026-11-21 14.05\""),
        1,
        2,
        Restore,
    };
}

CommandDefinition CompactCommand()
{
    return {
        QStringLiteral("compact"),
        QStringLiteral("Writes a station's file anew, smaller and with its indexes repaired."),
        {QStringLiteral("compact FOLDER [--yes] [--json]")},
        NotAskedText,
        {{Confirmation::YesOption(), QString(), QStringLiteral("Does not ask.")},
         {JsonOption, QString(), QStringLiteral("Prints one JSON object.")},
         Station::UserOption()},
        QStringLiteral("tolva compact /srv/station"),
        1,
        1,
        Compact,
    };
}

CommandDefinition ConvertCommand()
{
    return {
        QStringLiteral("convert"),
        QStringLiteral("Writes a station's file in another format."),
        {QStringLiteral("convert FOLDER [--to FORMAT] [--yes] [--json]"),
         QStringLiteral("convert FOLDER --to server --connect STRING [--yes] [--json]")},
        QStringLiteral(
            "Stations of older software lie in files of office programs (Jet 4), which hold 2 GB and have no "
            "check of\neach mail.\n"
            "Every value of the new file is compared with the old one before it takes the name.\n"
            "\"--to server\" moves the station and its directory to a PostgreSQL server in the same way, and\nany "
            "other "
            "FORMAT moves them back from there. What was on the server is left there, closed, and named.\n") +
            NotAskedText,
        {{ToOption, QStringLiteral("FORMAT"),
          QStringLiteral("sqlite, the usual one (also without this option), jet, or server.")},
         {ConnectOption, QStringLiteral("STRING"),
          QStringLiteral("The server, such as \"host=server dbname=radio schema=harbour\"; no password in it.")},
         {Confirmation::YesOption(), QString(), QStringLiteral("Does not ask.")},
         {JsonOption, QString(), QStringLiteral("Prints one JSON object.")},
         Station::UserOption()},
        QStringLiteral("tolva convert /srv/station"),
        1,
        1,
        Convert,
    };
}
