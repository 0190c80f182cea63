// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

/// Runs the command that the arguments name; the exit code. Every failure is told on the error output.
int RunProgram(const QStringList& arguments);
