// SPDX-License-Identifier: Apache-2.0
#include "Station.h"

#include "RowRecovery.h"
#include "StationOpening.h"
#include "StationPlace.h"
#include "Terminal.h"
#include "common/FileHelper.h"
#include "common/kvGeneral.h"
#include "platform/directory/clsKVUser.h"

QString Station::UserName(const Arguments& arguments)
{
    return arguments.Value(QStringLiteral("user"), StationPlace::DefaultUserName());
}

OptionDefinition Station::UserOption()
{
    return {QStringLiteral("user"), QStringLiteral("NAME"),
            QStringLiteral("Acts as this user of the directory (else $TOLVA_USER, else Technician).")};
}

Station::Station(const Arguments& arguments, AutomaticBackups automatic) : Folder_(arguments.Folder())
{
    // Opening makes what is missing, which is for init alone.
    if (!StationPlace::HoldsStation(Folder_)) {
        throw Failure(
            exitNoInput,
            QStringLiteral("There is no station in %1. Make one with: tolva init %1 --name NAME --phone NUMBER")
                .arg(Folder_));
    }
    Try([&] { SignIn(UserName(arguments)); });
    Database_.SetDirectoryDatabase(&Directory_);
    Database_.SetMakesAutomaticBackups(automatic == AutomaticBackups::On);
    Try([&] { StationOpening::Open(Database_, Folder_, UserInterface_); });
}

void Station::SignIn(const QString& name)
{
    const QString folder = StationPlace::DirectoryIn(Folder_);
    const QString file = StationPlace::DirectoryFileIn(Folder_);
    if (!FileHelper::FileExists(file)) {
        throw Failure(exitNoUser, QStringLiteral("The station in %1 has no directory, so nobody is a user of it. "
                                                 "Its directory belongs into %2.")
                                      .arg(Folder_, folder));
    }
    try {
        Directory_.Open(folder);
        // One commit for what a command leaves in the user log.
        Directory_.SetCollectsLog(true);
        Directory_.SetLogProblemHandler([](const QString& problem) { WriteDebugLog(problem); });
        if (Directory_.SignIn(name))
            return;
    } catch (const dao::Error& error) {
        throw FailureOf(QStringLiteral("The directory in %1").arg(folder), file, error.Number(), error.Description());
    }
    throw Failure(exitNoUser,
                  QStringLiteral("\"%1\" is not a user of the directory in %2. Name a user with --user or in "
                                 "the environment variable TOLVA_USER.")
                      .arg(name, folder));
}

Failure Station::FailureOfStation(int errorNumber, const QString& description) const
{
    return StationOpening::FailureOf(Folder_, errorNumber, description);
}

cMessagePtr Station::Message(const QString& words)
{
    const qint32 reference = ToReference(words);
    const cMessagePtr message = Try([&] { return Database_.ReadMessage(reference); });
    if (!message)
        throw Failure(exitData, QStringLiteral("There is no message %1 in the station in %2.").arg(words, Folder_));
    return message;
}

ExitCode Station::TellDamage(const cMessage& message) const
{
    if (!message.IsDamaged())
        return exitOK;
    Terminal::Complain(QStringLiteral("Message %1 is damaged: its mail is not what was saved. %2")
                           .arg(message.Reference())
                           .arg(RowRecovery::Advice(Folder_, RowRecovery::Kind::Message, message.Reference())));
    return exitData;
}

void Station::Require(DirectoryRight right, const QString& words)
{
    const clsKVUser* user = Directory_.CurrentUser();
    if (!user || !user->HasRight(right)) {
        throw Failure(
            exitNoPermission,
            QStringLiteral("%1 has no right to %2 here.").arg(user ? user->Name() : QStringLiteral("Nobody"), words));
    }
}

Failure Station::WhyNot(qint32 reference, const QString& words)
{
    if (Database_.LastErrorNumber() != 0)
        return FailureOfStation(Database_.LastErrorNumber(), Database_.LastErrorDescription());
    try {
        const cMessagePtr message = Try([&] { return Database_.ReadMessage(reference); });
        if (!message) {
            return Failure(exitData,
                           QStringLiteral("There is no message %1 in the station in %2.").arg(reference).arg(Folder_));
        }
        const clsKVUser* user = Directory_.CurrentUser();
        const bool isOwn = user && message->PersonalToContact() == user->Reference();
        Require(isOwn ? DirectoryRight::CanEditPersonalMessages : DirectoryRight::CanEditMessages, words);
    } catch (const Failure& failure) {
        return failure;
    }
    return Failure(
        exitTemporary,
        QStringLiteral("Message %1 changed or went while it was being worked on. Try again.").arg(reference));
}

qint32 ToReference(const QString& words, const QString& kind)
{
    bool isNumber = false;
    const int reference = words.toInt(&isNumber);
    if (!isNumber || reference <= 0)
        throw Failure(exitUsage, QStringLiteral("\"%1\" is not a %2's number.").arg(words, kind));
    return reference;
}
