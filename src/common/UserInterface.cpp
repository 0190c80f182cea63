// SPDX-License-Identifier: Apache-2.0
#include "common/UserInterface.h"

#include "common/kvGeneral.h"

namespace
{
class SilentProgress final : public ProgressDisplay
{
public:
    bool Advance(qint64, qint64) override { return true; }
};

/// For a host that has installed nothing: no question is ever answered with yes.
class SilentUserInterface final : public UserInterface
{
public:
    MessageBoxAnswer MessageBox(const MessageBoxRequest& request) override
    {
        return request.Buttons == MessageBoxButtons::YesNo ? MessageBoxAnswer::No : MessageBoxAnswer::OK;
    }

    int InputBox(const InputBoxRequest&, QString& result) override
    {
        result.clear();
        return -1;
    }

    void PageSetupLabels(cPageSetup&) override {}
    void SetBusyPointer(bool) override {}
    std::unique_ptr<ProgressDisplay> Progress(const QString&) override { return std::make_unique<SilentProgress>(); }
    void Yield() override {}

    void RunTimeError(const dao::Error& error) override
    {
        WriteDebugLog(QStringLiteral("Run-time error '%1': %2").arg(error.Number()).arg(error.Description()));
    }
};

UserInterface* currentInterface = nullptr;
int busyDepth = 0;

void ChangeBusyDepth(int depth)
{
    const bool was = busyDepth > 0;
    busyDepth = depth;
    if (was != (depth > 0))
        UserInterface::Current().SetBusyPointer(depth > 0);
}
} // namespace

UserInterface& UserInterface::Current()
{
    static SilentUserInterface silent;
    return currentInterface ? *currentInterface : silent;
}

bool UserInterface::Confirm(const QString& question)
{
    return Current().MessageBox({question, QString(), MessageBoxButtons::YesNo, MessageBoxIcon::Question,
                                 MessageBoxAnswer::No}) == MessageBoxAnswer::Yes;
}

void UserInterface::Warn(const QString& words)
{
    Current().MessageBox({words, QString(), MessageBoxButtons::OK, MessageBoxIcon::Exclamation, MessageBoxAnswer::OK});
}

void UserInterface::SetCurrent(UserInterface* userInterface)
{
    currentInterface = userInterface;
}

BusyPointer::BusyPointer()
{
    ChangeBusyDepth(busyDepth + 1);
}

BusyPointer::~BusyPointer()
{
    ChangeBusyDepth(busyDepth - 1);
}

DefaultPointer::DefaultPointer() : Depth_(busyDepth)
{
    ChangeBusyDepth(0);
}

DefaultPointer::~DefaultPointer()
{
    ChangeBusyDepth(Depth_ + busyDepth);
}
