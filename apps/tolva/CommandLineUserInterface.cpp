#include "CommandLineUserInterface.h"

#include <QRegularExpression>

CommandLineUserInterface::CommandLineUserInterface()
{
    UserInterface::SetCurrent(this);
}

CommandLineUserInterface::~CommandLineUserInterface()
{
    UserInterface::SetCurrent(nullptr);
}

QStringList CommandLineUserInterface::TakeProblems()
{
    return std::exchange(Problems_, {});
}

MessageBoxAnswer CommandLineUserInterface::MessageBox(const MessageBoxRequest& request)
{
    if (request.Buttons != MessageBoxButtons::OK)
        return Terminal_.MessageBox(request);
    Problems_.append(request.Text.simplified());
    return MessageBoxAnswer::OK;
}

int CommandLineUserInterface::InputBox(const InputBoxRequest& request, QString& result)
{
    return Terminal_.InputBox(request, result);
}

bool CommandLineUserInterface::DatabaseSettings(cTolvaDatabase& database)
{
    return SettingsDialog_ && SettingsDialog_(database);
}

void CommandLineUserInterface::SetBusyPointer(bool busy)
{
    Terminal_.SetBusyPointer(busy);
}

std::unique_ptr<ProgressDisplay> CommandLineUserInterface::Progress(const QString& caption)
{
    return Terminal_.Progress(caption);
}

void CommandLineUserInterface::Yield()
{
    Terminal_.Yield();
}

void CommandLineUserInterface::RunTimeError(const dao::Error& error)
{
    Problems_.append(QStringLiteral("%1 (%2)").arg(error.Description().simplified()).arg(error.Number()));
}

int ErrorNumberIn(const QString& problem)
{
    static const QRegularExpression pattern(QStringLiteral("\\((\\d+)\\)\"?$"));
    return pattern.match(problem).captured(1).toInt();
}
