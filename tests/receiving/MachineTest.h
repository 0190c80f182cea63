// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Machine.h"

#include <gtest/gtest.h>

#include <memory>

/// A computer of its own with a station in /srv/station, on a disk of its own of 400 MB. Its /usr/bin/tolva is a script
/// in front of the real program: while /run/kill-at holds a number, the program is killed at that one of its writes,
/// and the number grows.
class MachineTest : public testing::Test
{
protected:
    static constexpr int MillisecondsBetweenLooks = 100;

    /// Skips the test where there can be no such computer, or the programs are not there. tree: of the mail programs;
    /// empty for none.
    void MakeMachine(const QString& tree);
    const Machine& Computer() const { return *Machine_; }

    /// Runs a text of bash as root, which must succeed.
    void Must(const QString& script) const;
    /// What it prints, which is a number.
    int NumberOf(const QString& script) const { return Computer().Run(script).Output.trimmed().toInt(); }
    /// What the page on hooking up says under a heading, as a text of bash.
    static QString InstructionsOf(const QString& heading);

private:
    void MakeStation() const;

    std::unique_ptr<Machine> Machine_;
};
