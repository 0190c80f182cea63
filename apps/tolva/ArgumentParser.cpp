// SPDX-License-Identifier: Apache-2.0
#include "ArgumentParser.h"

#include "Failure.h"

#include <QCommandLineParser>

namespace
{
constexpr int OptionColumn = 24;

QCommandLineOption ToOption(const OptionDefinition& definition)
{
    QStringList names(definition.Name);
    if (!definition.ShortName.isEmpty())
        names.append(definition.ShortName);
    return QCommandLineOption(names, definition.Description, definition.ValueName);
}

Failure UsageFailure(const CommandDefinition& command, const QString& words)
{
    return Failure(exitUsage, QStringLiteral("%1 See: tolva %2 --help").arg(words, command.Name));
}

QString OptionLine(const QString& option, const QString& description)
{
    return QStringLiteral("  %1  %2\n").arg(option.leftJustified(OptionColumn), description);
}

OptionDefinition HelpOption()
{
    return {QStringLiteral("help"), QString(), QStringLiteral("Shows this page.")};
}
} // namespace

Arguments ParseArguments(const CommandDefinition& command, const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    std::vector<OptionDefinition> definitions = command.Options;
    definitions.push_back(HelpOption());
    for (const OptionDefinition& definition : definitions)
        parser.addOption(ToOption(definition));
    // The parser takes the first word for the program's name.
    if (!parser.parse(QStringList(command.Name) + arguments))
        throw UsageFailure(command, parser.errorText());

    Arguments result;
    result.Words_ = parser.positionalArguments();
    for (const OptionDefinition& definition : definitions) {
        if (parser.isSet(definition.Name))
            result.Options_.insert(definition.Name, parser.value(definition.Name));
    }
    if (result.Has(QStringLiteral("help")))
        return result;
    if (result.Words_.isEmpty() || result.Folder().isEmpty())
        throw UsageFailure(command, QStringLiteral("The station's folder is missing."));
    if (result.Words_.size() < command.LeastWords)
        throw UsageFailure(command, QStringLiteral("Something is missing behind \"%1\".").arg(result.Words_.last()));
    if (command.MostWords >= 0 && result.Words_.size() > command.MostWords)
        throw UsageFailure(command, QStringLiteral("\"%1\" is too much.").arg(result.Words_.at(command.MostWords)));
    return result;
}

QString HelpOf(const CommandDefinition& command)
{
    QString text = command.Summary + QStringLiteral("\n\nUsage:\n");
    for (const QString& form : command.Usage)
        text += QStringLiteral("  tolva ") + form + u'\n';
    if (!command.Details.isEmpty())
        text += u'\n' + command.Details + u'\n';
    text += QStringLiteral("\nOptions:\n");
    std::vector<OptionDefinition> definitions = command.Options;
    definitions.push_back(HelpOption());
    for (const OptionDefinition& definition : definitions) {
        const QString value = definition.ValueName.isEmpty() ? QString() : u' ' + definition.ValueName;
        text += OptionLine(QStringLiteral("--") + definition.Name + value, definition.Description);
    }
    return text + QStringLiteral("\nExample:\n  ") + command.Example + u'\n';
}

QString ProgramHelp(const std::vector<CommandDefinition>& commands)
{
    QString text = QStringLiteral("Files, lists and keeps the messages of a radio station.\n\n"
                                  "Usage:\n  tolva COMMAND FOLDER ...\n\n"
                                  "FOLDER holds the station's database, Tolva.mdb.\n\nCommands:\n");
    for (const CommandDefinition& command : commands)
        text += OptionLine(command.Name, command.Summary);
    return text + QStringLiteral("\nOptions:\n") +
           OptionLine(QStringLiteral("--version"), QStringLiteral("Shows the version.")) +
           OptionLine(QStringLiteral("--help"),
                      QStringLiteral("Shows this page, and behind a command the page of that command.")) +
           QStringLiteral("\nExample:\n  tolva list /srv/station --category Inbox\n");
}
