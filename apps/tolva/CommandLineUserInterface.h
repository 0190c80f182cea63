#pragma once

#include "common/TerminalUserInterface.h"

#include <QStringList>

#include <functional>

/// The terminal as this program uses it: boxes that only tell something are collected, so that a command decides
/// whether they matter, and the dialog of the station's settings is answered by the command line.
class CommandLineUserInterface final : public UserInterface
{
public:
    /// Puts itself in force for its life.
    CommandLineUserInterface();
    ~CommandLineUserInterface() override;
    CommandLineUserInterface(const CommandLineUserInterface&) = delete;
    CommandLineUserInterface& operator=(const CommandLineUserInterface&) = delete;

    /// What stands in for the settings dialog; without it the dialog counts as cancelled.
    void SetSettingsDialog(std::function<bool(cTolvaDatabase&)> dialog) { SettingsDialog_ = std::move(dialog); }
    /// The texts shown since the last call, oldest first.
    QStringList TakeProblems();

    MessageBoxAnswer MessageBox(const MessageBoxRequest& request) override;
    int InputBox(const InputBoxRequest& request, QString& result) override;
    bool DatabaseSettings(cTolvaDatabase& database) override;
    void SetBusyPointer(bool busy) override;
    std::unique_ptr<ProgressDisplay> Progress(const QString& caption) override;
    void Yield() override;
    void RunTimeError(const dao::Error& error) override;

private:
    TerminalUserInterface Terminal_;
    std::function<bool(cTolvaDatabase&)> SettingsDialog_;
    QStringList Problems_;
};

/// The error number of the record store that a reported problem ends with, 0 when it names none.
int ErrorNumberIn(const QString& problem);
