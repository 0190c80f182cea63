// tolva export: one message as a file.

#include "Commands.h"
#include "DisplayText.h"
#include "Station.h"
#include "Terminal.h"
#include "common/FileHelper.h"

#include <QFileInfo>
#include <QSaveFile>

namespace
{
const QString ForceOption = QStringLiteral("force");

constexpr int LongestName = 200; // octets; file systems take 255

/// The subject as a file's name, without what no file name can hold.
QString FileNameFor(const cMessage& message)
{
    QString name = OneLine(message.CDOMessage()->Subject());
    name.removeIf([](QChar character) {
        return character == QChar::ReplacementCharacter || QStringLiteral(":*?\\/\"<>|").contains(character);
    });
    name = name.simplified();
    while (name.toUtf8().size() > LongestName)
        name.chop(name.back().isLowSurrogate() ? 2 : 1);
    while (name.startsWith(u'.'))
        name.remove(0, 1);
    if (name.isEmpty())
        name = QStringLiteral("Message %1").arg(message.Reference());
    return name + QStringLiteral(".eml");
}

void Write(const QString& path, const QByteArray& octets)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw Failure(exitCannotCreate, QStringLiteral("%1 cannot be made: %2").arg(path, file.errorString()));
    if (file.write(octets) != octets.size() || !file.commit())
        throw Failure(exitInputOutput, QStringLiteral("%1 could not be written: %2").arg(path, file.errorString()));
}

int Run(const Arguments& arguments)
{
    QString path = arguments.Words().at(2);
    ToReference(arguments.Words().at(1)); // a wrong one is told before anything is opened
    Station station(arguments);
    const cMessagePtr message = station.Message(arguments.Words().at(1));
    const QByteArray octets = message->CDOMessage()->Octets();
    if (path == u"-") {
        Terminal::PrintOctets(octets);
        return exitOK;
    }
    const bool isFolder = QFileInfo(path).isDir();
    if (isFolder)
        path = FileHelper::Join(path, FileNameFor(*message));
    if (QFileInfo::exists(path) && !arguments.Has(ForceOption))
        throw Failure(exitCannotCreate, QStringLiteral("%1 exists; --force replaces it.").arg(path));
    Write(path, octets);
    if (isFolder)
        Terminal::PrintLine(path);
    return exitOK;
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
            "output, or a folder: then the file is named after the subject, and its path is printed."),
        {{ForceOption, QString(), QStringLiteral("Replaces a file that exists.")}, Station::UserOption()},
        QStringLiteral("tolva export /srv/station 27 answer.eml"),
        3,
        3,
        Run,
    };
}
