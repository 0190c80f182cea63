// SPDX-License-Identifier: Apache-2.0

// tolva backup and tolva backups: making backups, and listing them.

#include "Station.h"
#include "StationBackup.h"
#include "StationPlace.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "common/ClockHelper.h"
#include "common/FileHelper.h"
#include "common/ProfileHelper.h"
#include "database/BackupFolders.h"

#include <algorithm>

namespace
{
const QString CheckOption = QStringLiteral("check");

void PrintJson(const QJsonObject& object)
{
    Terminal::PrintJson(object);
}

int Backup(const Arguments& arguments)
{
    Station station(arguments, Station::AutomaticBackups::Off);
    const StationBackup::Result made = [&] {
        try {
            return StationBackup::Make(station.Database(), station.Folder());
        } catch (const Failure& failure) {
            if (failure.Code() != exitInterrupted)
                throw;
            throw Failure(exitInterrupted, QStringLiteral("Ended early by Ctrl-C; no backup was made."));
        }
    }();
    if (arguments.Has(JsonOption)) {
        PrintJson({{QStringLiteral("name"), made.Name},
                   {QStringLiteral("folder"), made.Folder},
                   {QStringLiteral("size"), made.Size},
                   {QStringLiteral("before"), made.Before.Json()},
                   {QStringLiteral("backup"), made.Copy.Json()},
                   {QStringLiteral("after"), made.After.Json()}});
    } else {
        Terminal::PrintLine(made.Folder);
        Terminal::PrintLine(made.Copy.Words());
    }
    return exitOK;
}

/// A line of the list.
struct Entry
{
    QString Name;
    QString Created;
    QString By;
    qint64 Size = -1;
    QString State; ///< "complete", "sound", "repairable", "damaged" or "unfinished".
    bool IsFromTheFuture = false;
};

QString WordOf(dao::FileReport::State state)
{
    switch (state) {
    case dao::FileReport::State::Sound:
        return QStringLiteral("sound");
    case dao::FileReport::State::Repairable:
        return QStringLiteral("repairable");
    default:
        return QStringLiteral("damaged");
    }
}

Entry EntryOf(const BackupFolders::Backup& backup, const QString& fileName, bool isChecked)
{
    const QString copy = FileHelper::Join(backup.Folder, fileName);
    Entry entry{
        backup.Name, backup.Created,
        ProfileHelper::ReadIniString(QStringLiteral("Details"), QStringLiteral("By"), QString(), backup.Details),
        FileHelper::FileSize(copy), QStringLiteral("complete")};
    if (isChecked)
        entry.State = WordOf(BackupFolders::StateOf(copy));
    else if (entry.Size <= 0)
        entry.State = QStringLiteral("damaged");
    entry.IsFromTheFuture = BackupFolders::IsFromTheFuture(backup, ClockHelper::CurrentTime());
    return entry;
}

QList<Entry> EntriesOf(const QString& file, bool isChecked)
{
    const QString root = BackupFolders::RootOf(file);
    QList<Entry> entries;
    for (const BackupFolders::Backup& backup : BackupFolders::List(root))
        entries.append(EntryOf(backup, FileHelper::FileNameOf(file), isChecked));
    for (const QString& name : BackupFolders::Unfinished(root)) {
        const QString copy = FileHelper::Join(FileHelper::Join(root, name), FileHelper::FileNameOf(file));
        entries.append({name, QString(), QString(), FileHelper::FileSize(copy), QStringLiteral("unfinished")});
    }
    std::stable_sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.Name < b.Name; });
    return entries;
}

void Print(const Entry& entry, bool asJson)
{
    if (!asJson) {
        const QString line = QStringLiteral("%1  %2  %3  %4")
                                 .arg(entry.Name, -16)
                                 .arg(entry.State, -10)
                                 .arg(qMax<qint64>(0, entry.Size), 12)
                                 .arg(entry.By)
                                 .trimmed();
        Terminal::PrintLine(entry.IsFromTheFuture ? line + QStringLiteral("  (from the future)") : line);
        return;
    }
    PrintJson({{QStringLiteral("name"), entry.Name},
               {QStringLiteral("state"), entry.State},
               {QStringLiteral("created"), entry.Created},
               {QStringLiteral("by"), entry.By},
               {QStringLiteral("size"), entry.Size},
               {QStringLiteral("fromTheFuture"), entry.IsFromTheFuture}});
}

int Backups(const Arguments& arguments)
{
    const QString file = StationPlace::FileIn(arguments.Folder());
    // A station whose file is lost is what backups are for.
    if (!FileHelper::FileExists(file) && !FileHelper::FolderExists(BackupFolders::RootOf(file))) {
        throw Failure(exitNoInput,
                      QStringLiteral("There is no station in %1, and no backup of one.").arg(arguments.Folder()));
    }
    bool isAllSound = true;
    for (const Entry& entry : EntriesOf(file, arguments.Has(CheckOption))) {
        Print(entry, arguments.Has(JsonOption));
        isAllSound = isAllSound && entry.State != u"damaged";
    }
    if (isAllSound)
        return exitOK;
    Terminal::Complain(QStringLiteral("A backup is damaged."));
    return exitData;
}
} // namespace

CommandDefinition BackupCommand()
{
    return {
        QStringLiteral("backup"),
        QStringLiteral("Makes a backup of a station now."),
        {QStringLiteral("backup FOLDER [--json]")},
        QStringLiteral(
            "The copy goes into a folder of its own, FOLDER/Backups/Tolva/YYYY-MM-DD HH.MM. Others may go on working "
            "meanwhile.\n"
            "It is read whole before it counts; only then go the backups that are older than the setting\n"
            "Backups.ExpiryDays says. Its folder and what it holds are printed. Nothing is asked, so that a timer can "
            "run it."),
        {{JsonOption, QString(), QStringLiteral("Prints one JSON object.")}, Station::UserOption()},
        QStringLiteral("tolva backup /srv/station"),
        1,
        1,
        Backup,
    };
}

CommandDefinition BackupsCommand()
{
    return {
        QStringLiteral("backups"),
        QStringLiteral("Lists the backups of a station, oldest first."),
        {QStringLiteral("backups FOLDER [--check] [--json]")},
        QStringLiteral(
            "A line is the backup's name, its state, the octets of its database and the computer that made "
            "it. \"unfinished\"\n"
            "is what a backup leaves that failed or was ended; it is never restored and never expires. \"(from "
            "the future)\"\n"
            "is one made later than this computer's clock says it is. The exit code is\n"
            "65 when a backup is damaged, which --check finds out by reading them whole; \"repairable\" is one that "
            "loses\n"
            "nothing but has indexes for \"tolva compact\" to repair. --user is taken for the sake of scripts and not "
            "used."),
        {{CheckOption, QString(), QStringLiteral("Reads every backup to its end.")},
         {JsonOption, QString(), QStringLiteral("Prints one JSON object a line.")},
         Station::UserOption()},
        QStringLiteral("tolva backups /srv/station --check"),
        1,
        1,
        Backups,
    };
}
