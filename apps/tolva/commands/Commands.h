// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ArgumentParser.h"

/// The commands of the program, each in a file of its own with the words of its help.
CommandDefinition InitCommand();
CommandDefinition FileCommand();
CommandDefinition ListCommand();
CommandDefinition SearchCommand();
CommandDefinition ShowCommand();
CommandDefinition ExportCommand();
CommandDefinition PrintCommand();
CommandDefinition MoveCommand();
CommandDefinition CopyCommand();
CommandDefinition DeleteCommand();
CommandDefinition MarkCommand();
CommandDefinition PendingCommand();
CommandDefinition SendCommand();
CommandDefinition FoldersCommand();
CommandDefinition PrizesCommand();
CommandDefinition PrizeCommand();
CommandDefinition SettingCommand();
CommandDefinition UsersCommand();
CommandDefinition ContactsCommand();
CommandDefinition CheckCommand();
CommandDefinition DoctorCommand();
CommandDefinition BackupCommand();
CommandDefinition BackupsCommand();
CommandDefinition RestoreCommand();
CommandDefinition RecoverCommand();
CommandDefinition CompactCommand();
CommandDefinition ConvertCommand();
CommandDefinition RepairCommand();
CommandDefinition RekeyCommand();
CommandDefinition IndexCommand();
CommandDefinition SetupCommand();

/// In the order of the help page.
std::vector<CommandDefinition> AllCommands();
