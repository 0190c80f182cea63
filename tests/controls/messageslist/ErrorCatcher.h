// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/UserInterface.h"
#include "database/StationDialogs.h"

#include <QList>
#include <QStringList>

/// Takes the run-time errors that event handlers meet, with what raised them, and leaves everything else to the
/// interface that was in force before. In force from its making to its destruction.
class ErrorCatcher final : public UserInterface, public StationDialogs
{
public:
    ErrorCatcher() : Before_(Current()) { SetCurrent(this); }
    ~ErrorCatcher() override { SetCurrent(&Before_); }
    ErrorCatcher(const ErrorCatcher&) = delete;
    ErrorCatcher& operator=(const ErrorCatcher&) = delete;

    const QList<int>& Numbers() const { return Numbers_; }
    const QStringList& Descriptions() const { return Descriptions_; }
    const QStringList& Sources() const { return Sources_; }

    MessageBoxAnswer MessageBox(const MessageBoxRequest& request) override { return Before_.MessageBox(request); }
    int InputBox(const InputBoxRequest& request, QString& result) override { return Before_.InputBox(request, result); }
    void PageSetupLabels(cPageSetup& pageSetup) override { Before_.PageSetupLabels(pageSetup); }
    QString GetHotlist(qint32 hotListType, dao::Recordset& settings, bool saveMode, QObject* parentForm) override
    {
        return StationDialogs::Of(Before_).GetHotlist(hotListType, settings, saveMode, parentForm);
    }
    bool DatabaseSettings(cTolvaDatabase& database) override
    {
        return StationDialogs::Of(Before_).DatabaseSettings(database);
    }
    void SetBackupNotice(bool shown) override { StationDialogs::Of(Before_).SetBackupNotice(shown); }
    void SetBusyPointer(bool busy) override { Before_.SetBusyPointer(busy); }
    std::unique_ptr<ProgressDisplay> Progress(const QString& caption) override { return Before_.Progress(caption); }
    void Yield() override { Before_.Yield(); }
    void RunTimeError(const dao::Error& error) override
    {
        Numbers_.append(error.Number());
        Descriptions_.append(error.Description());
        Sources_.append(error.Source());
    }

private:
    UserInterface& Before_;
    QList<int> Numbers_;
    QStringList Descriptions_;
    QStringList Sources_;
};
