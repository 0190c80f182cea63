// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/UserInterface.h"
#include "database/StationDialogs.h"
#include "platform/Export.h"

#include <QSet>

#include <memory>

class frmHandler;

/// The user at a window: every request becomes a real dialog over the active window. Texts are shown as plain text,
/// for they may quote what a listener wrote; one that is too long for any screen is cut with an ellipsis.
///
/// Made by the program's main after its QApplication, put in force by UserInterface::SetCurrent, and alive while it is.
/// A host derives from it to meet run-time errors itself.
class TOLVA_EXPORT DialogUserInterface : public UserInterface, public StationDialogs
{
public:
    DialogUserInterface();
    ~DialogUserInterface() override;
    MessageBoxAnswer MessageBox(const MessageBoxRequest& request) override;
    int InputBox(const InputBoxRequest& request, QString& result) override;
    void PageSetupLabels(cPageSetup& pageSetup) override;
    QString GetHotlist(qint32 hotListType, dao::Recordset& settings, bool saveMode, QObject* parentForm) override;
    bool DatabaseSettings(cTolvaDatabase& database) override;
    /// Returns when the notice is to be seen, so that the work behind it may begin.
    void SetBackupNotice(bool shown) override;
    void SetBusyPointer(bool busy) override;
    std::unique_ptr<ProgressDisplay> Progress(const QString& caption) override;
    void Yield() override;
    /// Shows the error in words and logs it. While the box for an error is up, further ones with its number are logged
    /// only: a timer that meets a lost share every few seconds must not pile up boxes.
    void RunTimeError(const dao::Error& error) final;

protected:
    /// Called for each run-time error before anything is shown. True: the host has met it, and no box comes.
    virtual bool HandleRunTimeError(const dao::Error& error);

private:
    std::unique_ptr<frmHandler> Notice_;
    QSet<int> ErrorsOnDisplay_;
    bool IsBusy_ = false;
};
