// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/UserInterface.h"
#include "database/StationDialogs.h"

#include <QStringList>

#include <functional>

/// Stands in front of another user interface: boxes that only tell something are collected, so that the program
/// decides whether they matter and says it in its own words; questions go through. The dialog of the station's settings
/// is answered by the program.
class CollectingUserInterface final : public UserInterface, public StationDialogs
{
public:
    /// Puts itself in force for its life; what was in force is back afterwards. under: asked the questions, outlives
    /// this object.
    explicit CollectingUserInterface(UserInterface& under);
    ~CollectingUserInterface() override;
    CollectingUserInterface(const CollectingUserInterface&) = delete;
    CollectingUserInterface& operator=(const CollectingUserInterface&) = delete;

    /// What stands in for the settings dialog; without it the dialog counts as cancelled.
    void SetSettingsDialog(std::function<bool(cTolvaDatabase&)> dialog) { SettingsDialog_ = std::move(dialog); }
    /// The texts shown since the last call, oldest first.
    QStringList TakeProblems();
    /// The questions that were answered with Yes, oldest first.
    const QStringList& Confirmed() const { return Confirmed_; }

    MessageBoxAnswer MessageBox(const MessageBoxRequest& request) override;
    int InputBox(const InputBoxRequest& request, QString& result) override;
    void PageSetupLabels(cPageSetup& pageSetup) override;
    QString GetHotlist(qint32 hotListType, dao::Recordset& settings, bool saveMode, QObject* parentForm) override;
    bool DatabaseSettings(cTolvaDatabase& database) override;
    void SetBackupNotice(bool shown) override;
    void SetBusyPointer(bool busy) override;
    std::unique_ptr<ProgressDisplay> Progress(const QString& caption) override;
    void Yield() override;
    void RunTimeError(const dao::Error& error) override;

private:
    UserInterface& Before_;
    UserInterface& Under_;
    std::function<bool(cTolvaDatabase&)> SettingsDialog_;
    QStringList Problems_;
    QStringList Confirmed_;
};

/// The error number of the record store that a reported problem ends with, 0 when it names none.
int ErrorNumberIn(const QString& problem);
