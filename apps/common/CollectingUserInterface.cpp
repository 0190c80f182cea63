// SPDX-License-Identifier: Apache-2.0
#include "CollectingUserInterface.h"

#include <QRegularExpression>

CollectingUserInterface::CollectingUserInterface(UserInterface& under)
    : Before_(UserInterface::Current()), Under_(under)
{
    UserInterface::SetCurrent(this);
}

CollectingUserInterface::~CollectingUserInterface()
{
    UserInterface::SetCurrent(&Before_);
}

QStringList CollectingUserInterface::TakeProblems()
{
    return std::exchange(Problems_, {});
}

MessageBoxAnswer CollectingUserInterface::MessageBox(const MessageBoxRequest& request)
{
    if (request.Buttons != MessageBoxButtons::OK) {
        const MessageBoxAnswer answer = Under_.MessageBox(request);
        if (answer == MessageBoxAnswer::Yes)
            Confirmed_.append(request.Text);
        return answer;
    }
    Problems_.append(request.Text.simplified());
    return MessageBoxAnswer::OK;
}

int CollectingUserInterface::InputBox(const InputBoxRequest& request, QString& result)
{
    return Under_.InputBox(request, result);
}

void CollectingUserInterface::PageSetupLabels(cPageSetup& pageSetup)
{
    Under_.PageSetupLabels(pageSetup);
}

QString CollectingUserInterface::GetHotlist(qint32 hotListType, dao::Recordset& settings, bool saveMode,
                                            QObject* parentForm)
{
    return StationDialogs::Of(Under_).GetHotlist(hotListType, settings, saveMode, parentForm);
}

bool CollectingUserInterface::DatabaseSettings(cTolvaDatabase& database)
{
    return SettingsDialog_ && SettingsDialog_(database);
}

void CollectingUserInterface::SetBusyPointer(bool busy)
{
    Under_.SetBusyPointer(busy);
}

void CollectingUserInterface::SetBackupNotice(bool shown)
{
    StationDialogs::Of(Under_).SetBackupNotice(shown);
}

std::unique_ptr<ProgressDisplay> CollectingUserInterface::Progress(const QString& caption)
{
    return Under_.Progress(caption);
}

void CollectingUserInterface::Yield()
{
    Under_.Yield();
}

void CollectingUserInterface::RunTimeError(const dao::Error& error)
{
    Problems_.append(QStringLiteral("%1 (%2)").arg(error.Description().simplified()).arg(error.Number()));
}

int ErrorNumberIn(const QString& problem)
{
    static const QRegularExpression pattern(QStringLiteral("\\((\\d+)\\)\"?$"));
    return pattern.match(problem).captured(1).toInt();
}
