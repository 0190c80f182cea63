// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/UserInterface.h"
#include "database/StationDialogs.h"

#include <QList>
#include <QStringList>

/// A user who gives every question the same answer, and takes note of what he is told. Where any number of failures may
/// be told. Put in force with UserInterface::SetCurrent.
class PatientUser final : public UserInterface, public StationDialogs
{
public:
    MessageBoxAnswer MessageBox(const MessageBoxRequest& request) override
    {
        Boxes.append(request.Text);
        return Answer;
    }
    int InputBox(const InputBoxRequest&, QString&) override { return -1; }
    void PageSetupLabels(cPageSetup&) override {}
    QString GetHotlist(qint32, dao::Recordset&, bool, QObject*) override { return QStringLiteral("HR.Morning"); }
    void SetBusyPointer(bool) override {}
    std::unique_ptr<ProgressDisplay> Progress(const QString&) override { return std::make_unique<NoDisplay>(); }
    void Yield() override {}
    void RunTimeError(const dao::Error& error) override { RunTimeErrors.append(error.Number()); }

    MessageBoxAnswer Answer = MessageBoxAnswer::No;
    QStringList Boxes;
    QList<int> RunTimeErrors;

private:
    class NoDisplay final : public ProgressDisplay
    {
    public:
        bool Advance(qint64, qint64) override { return true; }
    };
};
