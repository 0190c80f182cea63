// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/UserInterface.h"
#include "database/StationDialogs.h"

#include <QList>
#include <QStringList>

#include <functional>
#include <optional>
#include <utility>
#include <variant>

/// A user who answers what the test wrote down beforehand, in that order, and fails the test for any box, question or
/// run-time error that was not written down, for one that differs in its text, buttons, icon, default or title, for one
/// that did not come, and for a busy pointer that was left on. In force from its making to its destruction; the
/// interface that was in force before is back then.
class ScriptedUserInterface final : public UserInterface, public StationDialogs
{
public:
    ScriptedUserInterface();
    ~ScriptedUserInterface() override;
    ScriptedUserInterface(const ScriptedUserInterface&) = delete;
    ScriptedUserInterface& operator=(const ScriptedUserInterface&) = delete;

    /// An OK box with the exclamation icon.
    void ExpectWarning(const QString& text, const QString& title = QString());
    /// A yes/no box with the question icon and No as its default.
    void ExpectConfirmation(const QString& text, MessageBoxAnswer answer, const QString& title = QString());
    /// Any box.
    void ExpectMessageBox(const MessageBoxRequest& request, MessageBoxAnswer answer = MessageBoxAnswer::OK);
    void ExpectInputBox(const InputBoxRequest& request, const QString& answer);
    void ExpectInputBoxCancelled(const InputBoxRequest& request);
    /// What the user does in the dialog, and whether the settings are complete then.
    void ExpectDatabaseSettings(std::function<bool(cTolvaDatabase&)> dialog);
    /// What the user does in the dialog of a sheet of labels.
    void ExpectPageSetupLabels(std::function<void(cPageSetup&)> dialog);
    /// What the user does in the dialog of the hotlists; it gives the whole Item, or empty.
    void ExpectHotlist(std::function<QString(dao::Recordset& settings, bool saveMode)> dialog);
    void ExpectRunTimeError(int number, const QString& description);
    /// The user stops the next piece of work on display at this call of Advance, 1 for the first.
    void CancelProgressAt(int call) { CancelAt_ = call; }
    /// What happens while long work yields to the event loop.
    void DoAtYields(std::function<void()> action) { AtYields_ = std::move(action); }

    /// What came, in order, whether it was expected or not.
    const QList<MessageBoxRequest>& MessageBoxes() const { return MessageBoxes_; }
    const QList<InputBoxRequest>& InputBoxes() const { return InputBoxes_; }
    /// True for each time the notice of a backup was shown, false for each time it was hidden.
    const QList<bool>& BackupNotices() const { return BackupNotices_; }
    const QStringList& ProgressCaptions() const { return ProgressCaptions_; }
    /// Calls of Advance on all displays together.
    int Advances() const { return Advances_; }
    const QList<std::pair<int, QString>>& RunTimeErrors() const { return RunTimeErrors_; }
    int Yields() const { return Yields_; }
    bool IsBusy() const { return BusyDepth_ > 0; }
    int BusyDepth() const { return BusyDepth_; }
    /// How often the pointer went from the default to busy.
    int BusyCount() const { return BusyCount_; }
    /// Whether the pointer was busy while the message box of that index was up.
    bool WasBusyAtMessageBox(qsizetype index) const { return BusyAtMessageBox_.at(index); }

    MessageBoxAnswer MessageBox(const MessageBoxRequest& request) override;
    int InputBox(const InputBoxRequest& request, QString& result) override;
    void PageSetupLabels(cPageSetup& pageSetup) override;
    QString GetHotlist(qint32 hotListType, dao::Recordset& settings, bool saveMode, QObject* parentForm) override;
    bool DatabaseSettings(cTolvaDatabase& database) override;
    void SetBackupNotice(bool shown) override { BackupNotices_.append(shown); }
    void SetBusyPointer(bool busy) override;
    std::unique_ptr<ProgressDisplay> Progress(const QString& caption) override;
    void Yield() override;
    void RunTimeError(const dao::Error& error) override;

private:
    friend class ScriptedProgress;

    struct ExpectedMessageBox
    {
        MessageBoxRequest Request;
        MessageBoxAnswer Answer;
    };
    struct ExpectedInputBox
    {
        InputBoxRequest Request;
        bool Cancelled;
        QString Answer;
    };
    struct ExpectedSettings
    {
        std::function<bool(cTolvaDatabase&)> Dialog;
    };
    struct ExpectedPageSetup
    {
        std::function<void(cPageSetup&)> Dialog;
    };
    struct ExpectedHotlist
    {
        std::function<QString(dao::Recordset&, bool)> Dialog;
    };
    struct ExpectedError
    {
        int Number;
        QString Description;
    };
    using Expectation = std::variant<ExpectedMessageBox, ExpectedInputBox, ExpectedSettings, ExpectedPageSetup,
                                     ExpectedHotlist, ExpectedError>;

    template <class T>
    std::optional<T> Take(const QString& what);

    UserInterface& Before_;
    QList<Expectation> Expected_;
    QList<MessageBoxRequest> MessageBoxes_;
    QList<bool> BusyAtMessageBox_;
    QList<InputBoxRequest> InputBoxes_;
    QList<bool> BackupNotices_;
    QStringList ProgressCaptions_;
    QList<std::pair<int, QString>> RunTimeErrors_;
    int Advances_ = 0;
    int CancelAt_ = 0;
    int Yields_ = 0;
    std::function<void()> AtYields_;
    int BusyDepth_ = 0;
    int BusyCount_ = 0;
};
