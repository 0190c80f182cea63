// SPDX-License-Identifier: Apache-2.0

// tolva export: one message as a file.

#include "DisplayText.h"
#include "FileOutput.h"
#include "Station.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "common/FileHelper.h"
#include "platform/mail/MessageReader.h"

#include <QFileInfo>

namespace
{
constexpr int LongestFileName = 200; // octets; file systems take 255

/// The subject as a file's name, without what no file name can hold.
QString FileNameFor(const cMessage& message)
{
    QString name = OneLine(cdo::HeaderBeginning(*message.CDOMessage(), "Subject", qsizetype{4} * LongestFileName));
    name.removeIf([](QChar character) {
        return character == QChar::ReplacementCharacter || QStringLiteral(":*?\\/\"<>|").contains(character);
    });
    name = name.simplified();
    while (name.toUtf8().size() > LongestFileName)
        name.chop(name.back().isLowSurrogate() ? 2 : 1);
    while (name.startsWith(u'.'))
        name.remove(0, 1);
    if (name.isEmpty())
        name = QStringLiteral("Message %1").arg(message.Reference());
    return name + QStringLiteral(".eml");
}

int RunExport(const Arguments& arguments)
{
    QString path = arguments.Words().at(2);
    ToReference(arguments.Words().at(1)); // a wrong one is told before anything is opened
    Station station(arguments);
    const cMessagePtr message = station.Message(arguments.Words().at(1));
    const QByteArray octets = message->CDOMessage()->Octets();
    if (path == u"-") {
        Terminal::PrintOctets(octets);
        return station.TellDamage(*message);
    }
    const bool isFolder = QFileInfo(path).isDir();
    if (isFolder)
        path = FileHelper::Join(path, FileNameFor(*message));
    FileOutput::Write(path, octets, arguments.Has(ForceOption) ? IfThere::Replace : IfThere::Refuse);
    if (isFolder)
        Terminal::PrintLine(path);
    return station.TellDamage(*message);
}
} // namespace

CommandDefinition ExportCommand()
{
    return {
        QStringLiteral("export"),
        QStringLiteral("Writes one message to a file."),
        {QStringLiteral("export FOLDER REF FILE [--force]")},
        QStringLiteral(
            "The file is the message octet by octet; it appears when it is whole. FILE may be \"-\" for standard\n"
            "output, or a folder: then the file is named after the subject, and its path is printed. Of a damaged "
            "message\n"
            "what there is of it is written, and what to do is told; the exit code is 65."),
        {{ForceOption, QString(), QStringLiteral("Replaces a file that exists.")}, Station::UserOption()},
        QStringLiteral("tolva export /srv/station 27 answer.eml"),
        3,
        3,
        RunExport,
    };
}
