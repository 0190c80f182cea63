// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/UserInterface.h"
#include "platform/Export.h"

#include <QString>

/// The user at a command line. Boxes and questions go to the error stream as text. A question is asked only when both
/// streams are terminals; otherwise its text is written with the answer that it got: No, or cancelled. A running piece
/// of work shows one line with its caption, a bar and a percentage on a terminal, redrawn ten times a second at most
/// and erased at its end.
///
/// While any such work runs, an interrupt (Ctrl-C) does not end the program: ProgressDisplay::Advance returns false
/// from then on, so that the work ends cleanly. Without work on display an interrupt does what it always does.
///
/// Made by the program's main, which keeps it while it is in force; it outlives the displays it made.
class TOLVA_EXPORT TerminalUserInterface final : public UserInterface
{
public:
    /// File descriptors of the streams to use.
    explicit TerminalUserInterface(int input = 0, int error = 2);

    MessageBoxAnswer MessageBox(const MessageBoxRequest& request) override;
    int InputBox(const InputBoxRequest& request, QString& result) override;
    void PageSetupLabels(cPageSetup&) override {}
    /// Nothing: the line of the progress says it.
    void SetBusyPointer(bool busy) override;
    std::unique_ptr<ProgressDisplay> Progress(const QString& caption) override;
    void Yield() override;
    void RunTimeError(const dao::Error& error) override;

private:
    friend class TerminalProgress;

    bool CanAsk() const;
    void Write(const QString& text);
    void ShowText(const QString& title, const QString& text);
    bool ReadLine(QString& line);
    void DrawLine(const QString& line);
    void EraseLine();

    int Input_;
    int Error_;
    bool ErrorIsTerminal_;
    bool LineIsDrawn_ = false;
};
