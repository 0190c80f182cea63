// SPDX-License-Identifier: Apache-2.0

// tolva recover: one damaged message back from a backup.

#include "MessageRecovery.h"
#include "Station.h"
#include "StationPlace.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "common/ClockHelper.h"
#include "platform/directory/clsKVUser.h"
#include "platform/records/DBEngine.h"

#include <QJsonObject>

namespace
{
const QString FromOption = QStringLiteral("from");
const QString ForceOption = QStringLiteral("force");
const QString JsonOption = QStringLiteral("json");

/// Writing into a file whose pages do not hold together may take from other rows what is theirs.
void RequireSoundStructure(const Station& station)
{
    const dao::FileReport report =
        station.Try([&] { return dao::DBEngine::ExamineDatabase(StationPlace::FileIn(station.Folder())); });
    if (!report.IsStructureSound) {
        throw Failure(exitData, QStringLiteral("More than single messages of the station in %1 is damaged, so that "
                                               "nothing may be written to it: put a whole backup in its place with "
                                               "\"tolva restore\". (%2)")
                                    .arg(station.Folder(), report.Faults.value(0)));
    }
}

void RequireRight(Station& station, const cMessage& message)
{
    const clsKVUser* user = station.Directory().CurrentUser();
    const bool isOwn = user && message.PersonalToContact() == user->Reference();
    station.Require(isOwn ? DirectoryRight::CanEditPersonalMessages : DirectoryRight::CanEditMessages,
                    QStringLiteral("change this message"));
}

int Run(const Arguments& arguments)
{
    const QString& words = arguments.Words().at(1);
    const qint32 reference = ToReference(words);
    Station station(arguments, Station::AutomaticBackups::Off);
    const cMessagePtr message = station.Message(words);
    RequireRight(station, *message);
    if (!message->IsDamaged() && !arguments.Has(ForceOption)) {
        throw Failure(exitData, QStringLiteral("Message %1 is not damaged; nothing was changed. --force puts the "
                                               "backup's mail in its place all the same.")
                                    .arg(reference));
    }
    const QString from = arguments.Value(FromOption);
    const std::optional<MessageRecovery::Source> source =
        station.Try([&] { return MessageRecovery::Find(station.Folder(), reference, from); });
    if (!source) {
        throw Failure(exitData, from.isEmpty()
                                    ? QStringLiteral("No backup has message %1 sound; nothing was changed.").arg(words)
                                    : QStringLiteral("There is no backup \"%1\" that has message %2 sound; nothing was "
                                                     "changed. See: tolva backups")
                                          .arg(from, words));
    }
    RequireSoundStructure(station);
    station.Try([&] { MessageRecovery::PutBack(station.Folder(), reference, *source); });
    station.Database().SetLastMessageChanged(ClockHelper::NowUTC());
    if (arguments.Has(JsonOption)) {
        const QJsonObject result{{QStringLiteral("reference"), reference},
                                 {QStringLiteral("from"), source->Backup.Name},
                                 {QStringLiteral("created"), source->Backup.Created}};
        Terminal::PrintJson(result);
    } else {
        Terminal::PrintLine(
            QStringLiteral("Message %1 is back from the backup \"%2\".").arg(reference).arg(source->Backup.Name));
    }
    return exitOK;
}
} // namespace

CommandDefinition RecoverCommand()
{
    return {
        QStringLiteral("recover"),
        QStringLiteral("Fetches one damaged message back from a backup."),
        {QStringLiteral("recover FOLDER REF [--from NAME] [--force] [--json]")},
        QStringLiteral(
            "The mail of message REF is taken from the newest backup that has it sound: the same number, received at\n"
            "the same moment from the same sender with the same subject. Its folder and flags stay as they are now.\n"
            "\"tolva check\" names the messages that are damaged. The user needs the right to edit messages. Nothing\n"
            "is changed (65) when the message is not damaged, no backup has it, or more of the station is damaged."),
        {{FromOption, QStringLiteral("NAME"), QStringLiteral("Takes it from this backup.")},
         {ForceOption, QString(), QStringLiteral("Replaces a mail that is not damaged.")},
         {JsonOption, QString(), QStringLiteral("Prints one JSON object.")},
         Station::UserOption()},
        QStringLiteral("tolva recover /srv/station 27"),
        2,
        2,
        Run,
    };
}
