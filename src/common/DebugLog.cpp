// SPDX-License-Identifier: Apache-2.0
#include "common/DebugLog.h"

#include "common/ClockHelper.h"
#include "common/FileHelper.h"
#include "common/GeneralHelper.h"
#include "common/MachineSettings.h"
#include "common/ProcessMemory.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace
{
constexpr int LevelOfMinusOne = 5;
constexpr int LevelWithMemory = 10;
constexpr int BlanksPerIndent = 4;

DebugLog* currentLog = nullptr;

bool IsWanted(int level)
{
    const int mode = GeneralHelper::DebugMode();
    if (mode == -1)
        return true;
    return mode != 0 && (level == -1 ? LevelOfMinusOne : level) <= mode;
}

/// Where the log goes when nobody has said: beside the user's other state, or on the system's drive.
QString DefaultFolder()
{
#ifdef Q_OS_WIN
    return qEnvironmentVariable("SystemDrive") + QStringLiteral("\\DebugFiles\\");
#else
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (!QDir::isAbsolutePath(state))
        state = FileHelper::Join(QDir::homePath(), QStringLiteral(".local/state"));
    return FileHelper::Join(state, QStringLiteral("Tolva/DebugFiles/"));
#endif
}

QString Folder(DebugLog& log)
{
    if (GeneralHelper::DebugPath().isEmpty() && !log.DebugPathChecked) {
        log.DebugPathChecked = true;
        GeneralHelper::SetDebugPath(MachineSettings::DebugPath());
    }
    return GeneralHelper::DebugPath().isEmpty() ? DefaultFolder() : GeneralHelper::DebugPath();
}

/// The box may run an event loop whose timers log in turn: without the guard each of them would put up one more.
void ReportFolderFailure(DebugLog& log, const QString& folder)
{
    if (log.ReportsFolderFailure)
        return;
    log.ReportsFolderFailure = true;
    UserInterface::Current().MessageBox(
        {QStringLiteral("The Debug Files folder could not be created in '") + folder + QStringLiteral("'!"), QString(),
         MessageBoxButtons::OK, MessageBoxIcon::Exclamation, MessageBoxAnswer::OK});
    log.ReportsFolderFailure = false;
}

/// The program's file as the system names it; empty while the program has not said what it is.
QString ProgramName()
{
    return QCoreApplication::instance() ? FileHelper::FileNameOf(QCoreApplication::applicationFilePath()) : QString();
}

/// Figures are aligned at their last digit.
QString MemoryFigures()
{
    if (GeneralHelper::DebugMode() < LevelWithMemory)
        return {};
    const auto memory = ProcessMemory::Current();
    if (!memory)
        return {};
    return QStringLiteral(" %1 %2").arg(memory->WorkingSet, 10).arg(memory->PageFile, 10);
}

void AppendLine(const QString& fileName, const QString& line)
{
    QFile file(fileName);
    if (file.open(QIODevice::Append | QIODevice::Text))
        file.write(line.toUtf8() + '\n');
}
} // namespace

DebugLog& DebugLog::Current()
{
    static DebugLog own;
    return currentLog ? *currentLog : own;
}

void DebugLog::SetCurrent(DebugLog* debugLog)
{
    currentLog = debugLog;
}

void WriteDebugLog(const QString& text, int level, IndentAction action)
{
    if (!IsWanted(level))
        return;
    DebugLog& log = DebugLog::Current();
    if (action == IndentAction::LowerBefore)
        log.SetIndent(log.Indent() - 1);
    else if (action == IndentAction::ResetBefore)
        log.SetIndent(0);

    const QString folder = Folder(log);
    if (!FileHelper::CreateFolder(folder)) {
        ReportFolderFailure(log, folder);
        return;
    }
    const QString program = ProgramName();
    if (program.isEmpty())
        return;
    const Date now = ClockHelper::CurrentTime(); // asked for once: the line's time belongs to the file's day
    AppendLine(folder + program + now.Format(QStringLiteral(".yyyymmdd")) + QStringLiteral(".log"),
               now.Format(QStringLiteral("hh:nn:ss")) + MemoryFigures() +
                   QString(BlanksPerIndent * log.Indent() + 1, u' ') + text);
    if (action == IndentAction::RaiseAfter)
        log.SetIndent(log.Indent() + 1);
}
