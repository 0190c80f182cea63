// SPDX-License-Identifier: Apache-2.0
#include "Program.h"

#include "Failure.h"
#include "Terminal.h"
#include "commands/Commands.h"

#include <QCoreApplication>

#include <algorithm>

namespace
{
const QString HelpWord = QStringLiteral("--help");

int RunCommand(const CommandDefinition& command, const QStringList& arguments)
{
    const Arguments parsed = ParseArguments(command, arguments);
    if (parsed.Has(QStringLiteral("help"))) {
        Terminal::Print(HelpOf(command));
        return exitOK;
    }
    return command.Run(parsed);
}

int RunNamed(const QStringList& arguments)
{
    const std::vector<CommandDefinition> commands = AllCommands();
    if (arguments.isEmpty())
        throw Failure(exitUsage, QStringLiteral("A command is missing. See: tolva --help"));
    const QString& name = arguments.first();
    if (name == HelpWord || name == u"-h" || name == u"help") {
        Terminal::Print(ProgramHelp(commands));
        return exitOK;
    }
    if (name == u"--version") {
        Terminal::PrintLine(QStringLiteral("tolva %1").arg(QCoreApplication::applicationVersion()));
        return exitOK;
    }
    const auto command = std::find_if(commands.begin(), commands.end(),
                                      [&](const CommandDefinition& candidate) { return candidate.Name == name; });
    if (command == commands.end())
        throw Failure(exitUsage, QStringLiteral("There is no command \"%1\". See: tolva --help").arg(name));
    return RunCommand(*command, arguments.mid(1));
}
} // namespace

std::vector<CommandDefinition> AllCommands()
{
    return {InitCommand(),     FileCommand(),    ListCommand(),    SearchCommand(), ShowCommand(),    ExportCommand(),
            PrintCommand(),    MoveCommand(),    CopyCommand(),    DeleteCommand(), MarkCommand(),    PendingCommand(),
            SendCommand(),     FoldersCommand(), PrizesCommand(),  PrizeCommand(),  SettingCommand(), UsersCommand(),
            ContactsCommand(), CheckCommand(),   DoctorCommand(),  BackupCommand(), BackupsCommand(), RestoreCommand(),
            RecoverCommand(),  CompactCommand(), ConvertCommand(), RepairCommand(), RekeyCommand(),   IndexCommand(),
            SetupCommand()};
}

int RunProgram(const QStringList& arguments)
{
    try {
        return RunNamed(arguments);
    } catch (...) {
        const Failure failure = UnexpectedFailure();
        Terminal::Complain(failure.Words());
        return failure.Code();
    }
}
