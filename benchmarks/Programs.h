// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QList>

#include <sys/resource.h>

/// Programs as whole processes: the measure where a peer or the command itself does the work.

/// Runs a program to its good end, with its output thrown away; what it used. input: a file for its standard input. The
/// run ends when the program fails.
rusage RunProgram(const QByteArray& program, const QList<QByteArray>& arguments,
                  const QByteArray& input = QByteArrayLiteral("/dev/null"));
/// The same for one that wants a terminal: it gets one of 24 lines, whose output is thrown away.
void RunOnTerminal(const QByteArray& program, const QList<QByteArray>& arguments);

/// A station with a user, as the command makes it. format: of its file.
void MakeStationIn(const QByteArray& folder, const QByteArray& format = QByteArrayLiteral("sqlite"));

/// The path of an installed program; empty, with words on the error output, where there is none.
QByteArray FindProgram(const QByteArray& name, const char* whatIsNotCompared);
