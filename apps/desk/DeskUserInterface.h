// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/FileDialog.h"
#include "common/dialogs/DialogUserInterface.h"

#include <functional>

/// The user at this desk: real dialogs, and run-time errors first to the window that can say more about them. In force
/// from its making to its destruction; what was in force before is back afterwards.
class DeskUserInterface final : public DialogUserInterface
{
public:
    DeskUserInterface();
    ~DeskUserInterface() override;

    /// Called with each run-time error; true when it has met it. Empty for nobody.
    void SetErrorHandler(std::function<bool(const dao::Error&)> handler) { Handler_ = std::move(handler); }

protected:
    bool HandleRunTimeError(const dao::Error& error) override { return Handler_ && Handler_(error); }

private:
    UserInterface& Before_;
    FileDialog::Factory FactoryBefore_;
    std::function<bool(const dao::Error&)> Handler_;
};
