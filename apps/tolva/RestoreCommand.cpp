// tolva restore and tolva compact: putting another file in the place of a station's.

#include "CollectingUserInterface.h"
#include "Commands.h"
#include "Failure.h"
#include "Station.h"
#include "StationCounts.h"
#include "StationOpening.h"
#include "StationPlace.h"
#include "Terminal.h"
#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "database/BackupFolders.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/RestoreBackup.h"
#include "platform/records/DBEngine.h"

#include <QJsonDocument>

namespace
{
const QString JsonOption = QStringLiteral("json");
const QString YesOption = QStringLiteral("yes");

std::optional<StationCounts> CountsOf(const QString& file)
{
    try {
        return StationCounts::Of(file);
    } catch (const dao::Error&) {
        return std::nullopt;
    }
}

bool IsConfirmed(const Arguments& arguments, const QString& question)
{
    if (arguments.Has(YesOption) || !Terminal::CanAsk())
        return true;
    MessageBoxRequest request;
    request.Text = question;
    request.Buttons = MessageBoxButtons::YesNo;
    request.Icon = MessageBoxIcon::Question;
    request.DefaultAnswer = MessageBoxAnswer::No;
    return UserInterface::Current().MessageBox(request) == MessageBoxAnswer::Yes;
}

BackupFolders::Backup NamedBackup(const QString& root, const QString& name)
{
    for (const BackupFolders::Backup& backup : BackupFolders::List(root)) {
        if (backup.Name == name)
            return backup;
    }
    throw Failure(exitData, QStringLiteral("There is no backup \"%1\" in %2. See: tolva backups").arg(name, root));
}

/// The backup to restore, read whole. Failure when there is none that can be.
BackupFolders::Backup ChooseBackup(const Arguments& arguments, const QString& file)
{
    const QString root = BackupFolders::RootOf(file);
    const QString fileName = FileHelper::FileNameOf(file);
    if (arguments.Words().size() == 1) {
        const BackupFolders::Backup newest = BackupFolders::NewestSound(root, fileName);
        if (newest.Folder.isEmpty())
            throw Failure(exitNoInput, QStringLiteral("There is no sound backup in %1.").arg(root));
        return newest;
    }
    const BackupFolders::Backup named = NamedBackup(root, arguments.Words().at(1));
    if (!BackupFolders::IsSound(FileHelper::Join(named.Folder, fileName)))
        throw Failure(exitData, QStringLiteral("The backup \"%1\" is damaged; nothing was changed.").arg(named.Name));
    return named;
}

void PutInPlace(const QString& file, const QString& copy, const QString& keepName)
{
    PendingError failure;
    const RestoreBackup::Outcome outcome = RestoreBackup::Replace(file, copy, keepName, failure);
    if (outcome == RestoreBackup::Outcome::Done)
        return;
    if (failure.Number() == dao::errCancelled)
        throw Failure(exitInterrupted, QStringLiteral("Ended early by Ctrl-C; nothing was changed."));
    if (failure)
        throw FailureOf(QStringLiteral("The backup"), copy, failure.Number(), failure.Description());
    throw Failure(
        exitInputOutput,
        QStringLiteral("The backup could not be put into %1; nothing was changed.").arg(FileHelper::FolderOf(file)));
}

void PrintResult(const Arguments& arguments, QJsonObject result, const std::optional<StationCounts>& before,
                 const StationCounts& after, const QString& keepName)
{
    const bool isKept = FileHelper::FileExists(keepName);
    if (arguments.Has(JsonOption)) {
        result.insert(QStringLiteral("before"), before ? QJsonValue(before->Json()) : QJsonValue());
        result.insert(QStringLiteral("after"), after.Json());
        result.insert(QStringLiteral("kept"), isKept ? QJsonValue(keepName) : QJsonValue());
        Terminal::PrintOctets(QJsonDocument(result).toJson(QJsonDocument::Compact) + '\n');
        return;
    }
    Terminal::PrintLine(QStringLiteral("before: %1").arg(before ? before->Words() : QStringLiteral("not readable")));
    Terminal::PrintLine(QStringLiteral("after: %1").arg(after.Words()));
    if (isKept)
        Terminal::PrintLine(QStringLiteral("The old file is kept as %1").arg(keepName));
}

int Restore(const Arguments& arguments)
{
    TerminalUserInterface under;
    CollectingUserInterface terminal(under);
    const QString file = StationPlace::FileIn(arguments.Folder());
    const BackupFolders::Backup backup = ChooseBackup(arguments, file);
    const QString copy = FileHelper::Join(backup.Folder, FileHelper::FileNameOf(file));
    const StationCounts counts = StationCounts::Of(copy);
    if (!IsConfirmed(arguments, QStringLiteral("Replace the station in %1 by the backup \"%2\" (%3)? All programs on "
                                               "all computers must have closed it.")
                                    .arg(arguments.Folder(), backup.Name, counts.Words()))) {
        Terminal::Complain(QStringLiteral("Nothing was changed."));
        return exitDeclined;
    }
    const std::optional<StationCounts> before = CountsOf(file);
    const QString keepName = DAO_DatabaseFunctions::FreeKeepName(file);
    PutInPlace(file, copy, keepName);
    const std::optional<StationCounts> after = CountsOf(file);
    if (after != counts)
        throw Failure(exitData, QStringLiteral("The restored station does not hold what the backup \"%1\" holds. The "
                                               "old file is kept as %2.")
                                    .arg(backup.Name, keepName));
    PrintResult(arguments, {{QStringLiteral("name"), backup.Name}}, before, *after, keepName);
    return exitOK;
}

/// Says why the record store cannot write another file of it.
Failure WhyNotCompacted(const QString& folder, const QString& file)
{
    try {
        dao::DBEngine::CheckDatabase(file);
    } catch (const dao::Error& error) {
        return StationOpening::FailureOf(folder, error.Number(), error.Description());
    }
    return Failure(
        exitInputOutput,
        QStringLiteral("The station in %1 could not be compacted; nothing was changed. Its folder needs room "
                       "for a second copy of the file.")
            .arg(folder));
}

int Compact(const Arguments& arguments)
{
    TerminalUserInterface under;
    CollectingUserInterface terminal(under);
    const QString& folder = arguments.Folder();
    const QString file = StationPlace::FileIn(folder);
    if (!StationPlace::HoldsStation(folder))
        throw Failure(exitNoInput, QStringLiteral("There is no station in %1.").arg(folder));
    if (!IsConfirmed(arguments, QStringLiteral("Compact the station in %1? All programs on all computers must have "
                                               "closed it.")
                                    .arg(folder))) {
        Terminal::Complain(QStringLiteral("Nothing was changed."));
        return exitDeclined;
    }
    const std::optional<StationCounts> before = CountsOf(file);
    const qint64 size = FileHelper::FileSize(file);
    const QString keepName = DAO_DatabaseFunctions::FreeKeepName(file);
    if (!DAO_DatabaseFunctions::CompactRepairDatabase(file, nullptr, QString(), true))
        throw WhyNotCompacted(folder, file);
    const std::optional<StationCounts> after = CountsOf(file);
    if (!after || (before && after != before))
        throw Failure(exitData, QStringLiteral("The compacted station does not hold what it held before. The old file "
                                               "is kept as %1.")
                                    .arg(keepName));
    PrintResult(arguments,
                {{QStringLiteral("sizeBefore"), size}, {QStringLiteral("sizeAfter"), FileHelper::FileSize(file)}},
                before, *after, keepName);
    return exitOK;
}

const QString NotAskedText =
    QStringLiteral("No program on any computer may have the station open. On a terminal you are asked first, unless "
                   "--yes is given.\n"
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
        {{YesOption, QString(), QStringLiteral("Does not ask.")},
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
        {{YesOption, QString(), QStringLiteral("Does not ask.")},
         {JsonOption, QString(), QStringLiteral("Prints one JSON object.")},
         Station::UserOption()},
        QStringLiteral("tolva compact /srv/station"),
        1,
        1,
        Compact,
    };
}
