// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/records/Error.h"

#include <QString>

#include <memory>

class cPageSetup;

enum class MessageBoxButtons
{
    OK,
    YesNo
};
enum class MessageBoxIcon
{
    None,
    Information,
    Question,
    Exclamation,
    Stop
};
enum class MessageBoxAnswer
{
    OK,
    Yes,
    No
};

/// One message box. Confirmations are YesNo with the question icon and No as the default, warnings are OK with
/// the exclamation icon.
struct MessageBoxRequest
{
    QString Text;
    QString Title; ///< Empty: the program's name.
    MessageBoxButtons Buttons = MessageBoxButtons::OK;
    MessageBoxIcon Icon = MessageBoxIcon::None;
    MessageBoxAnswer DefaultAnswer = MessageBoxAnswer::OK;
};

/// A question for one line of text.
struct InputBoxRequest
{
    QString Prompt;
    QString Title;
    QString Default;
    int MaxLength = 0;    ///< Characters; 0 for no limit.
    QString PasswordChar; ///< When not empty its first character masks the text.
};

/// A long piece of work on display, from its making to its destruction.
class TOLVA_EXPORT ProgressDisplay
{
public:
    virtual ~ProgressDisplay() = default;
    /// Shows how much is done of the total. False when the user wants to stop; the work then ends cleanly.
    virtual bool Advance(qint64 done, qint64 total) = 0;
};

/// The only road from the logic to the user. The programs install their own at start: real dialogs, or the terminal,
/// which answers "no" where there is nobody to ask. The dialogs of a station are a matter of StationDialogs, from which
/// a class with such dialogs derives as well. Used on the user interface thread alone.
class TOLVA_EXPORT UserInterface
{
public:
    virtual ~UserInterface() = default;

    /// The interface in force: never null. Before SetCurrent it is one that shows nothing and answers No, or
    /// Cancel.
    static UserInterface& Current();
    /// Does not take ownership; null goes back to the silent one. The caller keeps the object alive while it is in
    /// force.
    static void SetCurrent(UserInterface* userInterface);
    /// Asks the one in force; true for Yes alone.
    static bool Confirm(const QString& question);
    /// Shows words of warning on the one in force.
    static void Warn(const QString& words);

    virtual MessageBoxAnswer MessageBox(const MessageBoxRequest& request) = 0;
    /// 0 with the text in result, or -1 with result empty when cancelled.
    virtual int InputBox(const InputBoxRequest& request, QString& result) = 0;
    /// The dialog of a sheet of labels, which changes it when the user confirms.
    virtual void PageSetupLabels(cPageSetup& pageSetup) = 0;

    /// Called by BusyPointer and DefaultPointer alone, true and false in turn.
    virtual void SetBusyPointer(bool busy) = 0;
    /// Never null.
    virtual std::unique_ptr<ProgressDisplay> Progress(const QString& caption) = 0;
    /// Lets pending window events run during long work.
    virtual void Yield() = 0;
    /// An error that has nowhere else to go, such as one that an event handler met. Its source names what raised it.
    virtual void RunTimeError(const dao::Error& error) = 0;
};

/// The busy pointer for the life of a scope; scopes nest.
class TOLVA_EXPORT BusyPointer
{
public:
    BusyPointer();
    ~BusyPointer();
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
};

/// The default pointer for the life of a scope within busy ones, such as a message box in the middle of long work; then
/// the busy one is back.
class TOLVA_EXPORT DefaultPointer
{
public:
    DefaultPointer();
    ~DefaultPointer();
    DefaultPointer(const DefaultPointer&) = delete;
    DefaultPointer& operator=(const DefaultPointer&) = delete;

private:
    int Depth_;
};
