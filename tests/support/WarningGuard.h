// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

#include <gtest/gtest.h>

/// Collects what Qt and GLib warn of while a test runs and fails the test for it: a warning that nobody expected is a
/// fault that nobody looked at. Installed once by the test program's main.
class WarningGuard : public testing::EmptyTestEventListener
{
public:
    /// Routes Qt's message handler and GLib's log writer here, for the life of the process.
    static void Install();

    /// The next warning that contains this text is the test's own doing and does not fail it.
    static void Expect(const QString& text);
    /// Warnings that begin with this text say nothing about the program, in any test of this process.
    static void Ignore(const QString& beginning);

    void OnTestStart(const testing::TestInfo& test) override;
    void OnTestEnd(const testing::TestInfo& test) override;
};
