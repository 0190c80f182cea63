// SPDX-License-Identifier: Apache-2.0

// tolva move, copy, delete and mark: changes of messages.

#include "DisplayText.h"
#include "FolderPaths.h"
#include "Station.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "platform/mail/MessageReader.h"

namespace
{
const QString PermanentlyOption = QStringLiteral("permanently");
const QString YesOption = QStringLiteral("yes");

using Relocation = bool (cTolvaDatabase::*)(qint32 reference, enTolvaMessageCategories newCategory);

int Relocate(const Arguments& arguments, Relocation operation, const QString& words)
{
    const qint32 reference = ToReference(arguments.Words().at(1));
    Station station(arguments);
    const qint32 folder = FindFolder(station.Folders(), arguments.Words().at(2));
    const bool isDone = station.Try(
        [&] { return (station.Database().*operation)(reference, static_cast<enTolvaMessageCategories>(folder)); });
    if (!isDone)
        throw station.WhyNot(reference, words);
    return exitOK;
}

int Move(const Arguments& arguments)
{
    return Relocate(arguments, &cTolvaDatabase::MoveMessage, QStringLiteral("move this message"));
}

int Copy(const Arguments& arguments)
{
    return Relocate(arguments, &cTolvaDatabase::CopyMessage, QStringLiteral("copy this message"));
}

bool IsConfirmed(const cMessage& message)
{
    return UserInterface::Confirm(QStringLiteral("Are you sure you want to permanently delete '%1'?")
                                      .arg(OneLine(cdo::HeaderBeginning(*message.CDOMessage(), "Subject"))));
}

int Delete(const Arguments& arguments)
{
    const qint32 reference = ToReference(arguments.Words().at(1));
    const bool isPermanent = arguments.Has(PermanentlyOption);
    Station station(arguments);
    const cMessagePtr message = station.Message(arguments.Words().at(1));
    if (!isPermanent && message->Category() == tmcDeleted) {
        Terminal::Complain(QStringLiteral("Message %1 is in %2 already; --permanently erases it.")
                               .arg(reference)
                               .arg(FolderPath(FolderPaths(station.Folders()), tmcDeleted)));
        return exitOK;
    }
    if (isPermanent && !arguments.Has(YesOption) && Terminal::CanAsk() && !IsConfirmed(*message)) {
        Terminal::Complain(QStringLiteral("Nothing was deleted."));
        return exitDeclined;
    }
    if (!station.Try([&] { return station.Database().DeleteMessage(reference, isPermanent); }))
        throw station.WhyNot(reference, QStringLiteral("delete this message"));
    return exitOK;
}

void MarkOne(Station& station, qint32 reference, bool isRead)
{
    const cMessagePtr message = station.Message(QString::number(reference));
    const qint32 flags = isRead ? message->Flags() | mfRead : message->Flags() & ~mfRead;
    if (flags == message->Flags())
        return;
    message->SetFlags(flags);
    if (!station.Try([&] { return station.Database().SaveMessage(message); }))
        throw station.WhyNot(reference, QStringLiteral("mark this message"));
}

int Mark(const Arguments& arguments)
{
    const QString& state = arguments.Words().last();
    if (state != u"read" && state != u"unread")
        throw Failure(exitUsage, QStringLiteral("A message is marked \"read\" or \"unread\", not \"%1\".").arg(state));
    QList<qint32> references;
    for (const QString& words : arguments.Words().mid(1, arguments.Words().size() - 2))
        references.append(ToReference(words));
    Station station(arguments);
    for (const qint32 reference : references)
        MarkOne(station, reference, state == u"read");
    return exitOK;
}

CommandDefinition Relocating(const QString& name, const QString& summary, int (*run)(const Arguments&),
                             const QString& example)
{
    return {name,
            summary,
            {QStringLiteral("%1 FOLDER REF C").arg(name)},
            QStringLiteral(
                "REF is the message's number in the list, C the folder: its number, its name, or its path such as\n"
                "\"Competitions/November Hamper\". The user needs the right to edit messages."),
            {Station::UserOption()},
            example,
            3,
            3,
            run};
}
} // namespace

CommandDefinition MoveCommand()
{
    return Relocating(QStringLiteral("move"), QStringLiteral("Moves a message to another folder."), Move,
                      QStringLiteral("tolva move /srv/station 27 Saved"));
}

CommandDefinition CopyCommand()
{
    return Relocating(QStringLiteral("copy"), QStringLiteral("Copies a message to another folder."), Copy,
                      QStringLiteral("tolva copy /srv/station 27 \"Competitions/November Hamper\""));
}

CommandDefinition DeleteCommand()
{
    return {
        QStringLiteral("delete"),
        QStringLiteral("Deletes a message."),
        {QStringLiteral("delete FOLDER REF [--permanently]")},
        QStringLiteral(
            "The message goes to Deleted Items, with --permanently for good. On a terminal the latter is asked about."),
        {{PermanentlyOption, QString(), QStringLiteral("Erases the message.")},
         {YesOption, QString(), QStringLiteral("Does not ask.")},
         Station::UserOption()},
        QStringLiteral("tolva delete /srv/station 27"),
        2,
        2,
        Delete,
    };
}

CommandDefinition MarkCommand()
{
    return {
        QStringLiteral("mark"),
        QStringLiteral("Marks messages as read or unread."),
        {QStringLiteral("mark FOLDER REF... read|unread")},
        QStringLiteral(
            "REF is a message's number in the list. The first message that cannot be marked ends the command."),
        {Station::UserOption()},
        QStringLiteral("tolva mark /srv/station 27 28 read"),
        3,
        -1,
        Mark,
    };
}
