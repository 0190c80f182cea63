// SPDX-License-Identifier: Apache-2.0

// tolva recover: one damaged message, prize or winner back from a backup.

#include "RowRecovery.h"
#include "Station.h"
#include "StationPlace.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "common/ClockHelper.h"
#include "platform/directory/clsKVUser.h"
#include "platform/records/DBEngine.h"

#include <QJsonArray>
#include <QJsonObject>

namespace
{
using RowRecovery::Kind;

const QString AsStoredOption = QStringLiteral("as-stored");

/// Writing into a file whose pages do not hold together may take from other rows what is theirs.
void RequireSoundStructure(const Station& station)
{
    const dao::FileReport report =
        station.Try([&] { return dao::DBEngine::ExamineDatabase(StationPlace::FileIn(station.Folder())); });
    if (!report.IsStructureSound) {
        throw Failure(exitData, QStringLiteral("More than single texts of the station in %1 is damaged, so that "
                                               "nothing may be written to it: put a whole backup in its place with "
                                               "\"tolva restore\". (%2)")
                                    .arg(station.Folder(), report.Faults.value(0)));
    }
}

void RequireMessageRight(Station& station, const QString& words)
{
    const cMessagePtr message = station.Message(words);
    const clsKVUser* user = station.Directory().CurrentUser();
    const bool isOwn = user && message->PersonalToContact() == user->Reference();
    station.Require(isOwn ? DirectoryRight::CanEditPersonalMessages : DirectoryRight::CanEditMessages,
                    QStringLiteral("change this message"));
}

/// What is to be fetched.
struct Subject
{
    Kind Of;
    qint32 Reference;
    /// "message 27".
    QString Name() const { return QStringLiteral("%1 %2").arg(RowRecovery::NameOf(Of)).arg(Reference); }
    /// "Message 27".
    QString NameInFront() const
    {
        const QString name = Name();
        return name.at(0).toUpper() + name.mid(1);
    }
};

/// REF, prize REF or winner REF, behind the folder.
Subject SubjectOf(const QStringList& words)
{
    if (words.size() == 2)
        return {Kind::Message, ToReference(words.at(1))};
    for (const Kind kind : {Kind::Prize, Kind::Winner}) {
        if (words.at(1) == RowRecovery::NameOf(kind))
            return {kind, ToReference(words.at(2), RowRecovery::NameOf(kind))};
    }
    throw Failure(
        exitUsage,
        QStringLiteral("\"%1\" is not understood here. See: tolva recover --help").arg(words.mid(1).join(u' ')));
}

void RequireRight(Station& station, const Subject& subject)
{
    if (subject.Of == Kind::Message)
        RequireMessageRight(station, QString::number(subject.Reference));
    else
        station.Require(DirectoryRight::ManagePrizes, QStringLiteral("manage prizes"));
}

void RequireDamage(const Station& station, const Subject& subject, bool isForced)
{
    switch (station.Try([&] { return RowRecovery::StateOf(station.Folder(), subject.Of, subject.Reference); })) {
    case RowRecovery::State::NotThere:
        throw Failure(exitData,
                      QStringLiteral("There is no %1 in the station in %2.").arg(subject.Name(), station.Folder()));
    case RowRecovery::State::Sound:
        if (!isForced) {
            throw Failure(exitData,
                          QStringLiteral("%1 is not damaged; nothing was changed. --force puts the backup's "
                                         "%2 in its place all the same.")
                              .arg(subject.NameInFront(),
                                   subject.Of == Kind::Message ? QStringLiteral("mail") : QStringLiteral("texts")));
        }
        break;
    case RowRecovery::State::Damaged:
        break;
    }
}

RowRecovery::Source SourceOf(const Station& station, const Subject& subject, const QString& from)
{
    const auto source =
        station.Try([&] { return RowRecovery::Find(station.Folder(), subject.Of, subject.Reference, from); });
    if (source)
        return *source;
    throw Failure(exitData,
                  from.isEmpty()
                      ? QStringLiteral("No backup has %1 sound; nothing was changed.").arg(subject.Name())
                      : QStringLiteral("There is no backup \"%1\" that has %2 sound; nothing was changed. See: tolva "
                                       "backups")
                            .arg(from, subject.Name()));
}

/// What is left in the station, which is taken for right.
RowRecovery::Source LeftOf(const Station& station, const Subject& subject)
{
    const auto left =
        station.Try([&] { return RowRecovery::AsStored(station.Folder(), subject.Of, subject.Reference); });
    if (!left)
        throw Failure(exitData, QStringLiteral("%1 is not damaged; nothing was changed.").arg(subject.NameInFront()));
    return *left;
}

void RequireFitting(const Arguments& arguments, const Subject& subject)
{
    if (!arguments.Has(AsStoredOption))
        return;
    if (subject.Of == Kind::Message)
        throw Failure(exitUsage, QStringLiteral("A mail is not taken as it stands: what is left of it can be exported, "
                                                "and the message deleted. See: tolva recover --help"));
    if (arguments.Has(FromOption) || arguments.Has(ForceOption))
        throw Failure(exitUsage, QStringLiteral("--as-stored takes nothing from a backup, so that --from and --force "
                                                "do not go with it. See: tolva recover --help"));
}

/// The words for the end.
QString DoneWords(const Subject& subject, const RowRecovery::Source& source, const QString& texts)
{
    if (source.Backup.Name.isEmpty())
        return QStringLiteral("%1 is taken as it stands: %2. Read it, and mend what is wrong.")
            .arg(subject.NameInFront(), texts);
    const QString what = subject.Of == Kind::Message ? QString() : QStringLiteral(": ") + texts;
    return QStringLiteral("%1 is back from the backup \"%2\"%3.").arg(subject.NameInFront(), source.Backup.Name, what);
}

void Tell(const Subject& subject, const RowRecovery::Source& source, bool asJson)
{
    QStringList texts;
    for (const QString& column : source.Texts.keys())
        texts.append(RowRecovery::TextName(column));
    if (asJson) {
        const QJsonObject result{{QStringLiteral("kind"), RowRecovery::NameOf(subject.Of)},
                                 {QStringLiteral("reference"), subject.Reference},
                                 {QStringLiteral("texts"), QJsonArray::fromStringList(texts)},
                                 {QStringLiteral("from"), source.Backup.Name},
                                 {QStringLiteral("created"), source.Backup.Created}};
        Terminal::PrintJson(result);
        return;
    }
    Terminal::PrintLine(DoneWords(subject, source, texts.join(QStringLiteral(", "))));
}

int RunRecover(const Arguments& arguments)
{
    const Subject subject = SubjectOf(arguments.Words());
    RequireFitting(arguments, subject);
    Station station(arguments, Station::AutomaticBackups::Off);
    RequireRight(station, subject);
    RequireDamage(station, subject, arguments.Has(ForceOption));
    const RowRecovery::Source source = arguments.Has(AsStoredOption)
                                           ? LeftOf(station, subject)
                                           : SourceOf(station, subject, arguments.Value(FromOption));
    RequireSoundStructure(station);
    station.Try([&] { RowRecovery::PutBack(station.Folder(), subject.Of, subject.Reference, source); });
    if (subject.Of == Kind::Message)
        station.Database().SetLastMessageChanged(ClockHelper::NowUTC());
    else
        station.Database().SetLastPrizeChanged(ClockHelper::NowUTC());
    Tell(subject, source, arguments.Has(JsonOption));
    return exitOK;
}
} // namespace

CommandDefinition RecoverCommand()
{
    return {
        QStringLiteral("recover"),
        QStringLiteral("Fetches one damaged message, prize or winner back from a backup."),
        {QStringLiteral("recover FOLDER REF [--from NAME] [--force] [--json]"),
         QStringLiteral("recover FOLDER prize REF [--from NAME] [--force] [--as-stored] [--json]"),
         QStringLiteral("recover FOLDER winner WINNER [--from NAME] [--force] [--as-stored] [--json]")},
        QStringLiteral(
            "The mail of message REF is taken from the newest backup that has it sound: the same number, received at\n"
            "the same moment from the same sender with the same subject. Its folder and flags stay as they are now.\n"
            "Of a prize it is what is damaged of its script and notes, as they were in the backup; it is the same one\n"
            "when it was added at the same moment by the same user. Of a winner it is the notes; the prize, the "
            "contact\n"
            "and the moment of winning are the same. \"tolva check\" names what is damaged. The user needs the right "
            "to\n"
            "edit messages, or to manage prizes. Nothing is changed (65) when it is not damaged, no backup has it, or\n"
            "more of the station is damaged."),
        {{FromOption, QStringLiteral("NAME"), QStringLiteral("Takes it from this backup.")},
         {ForceOption, QString(), QStringLiteral("Replaces what is not damaged, too.")},
         {AsStoredOption, QString(), QStringLiteral("Takes what is left of a prize or winner for right.")},
         {JsonOption, QString(), QStringLiteral("Prints one JSON object.")},
         Station::UserOption()},
        QStringLiteral("tolva recover /srv/station 27"),
        2,
        3,
        RunRecover,
    };
}
