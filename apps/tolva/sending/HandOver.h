// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

/// What a program that was handed a message made of it.
struct HandOverResult
{
    enum class Kind
    {
        Accepted,
        Later,      ///< Nobody took it this time.
        Refused,    ///< Nobody takes it as it is.
        SetUp,      ///< Nobody took it, and the next one would fare no better: something is set up wrongly.
        NotStarted, ///< The program could not even be started.
        Unknown     ///< Whether it was taken cannot be told.
    };
    Kind What = Kind::Unknown;
    QString Words; ///< What the program said, on one line; what happened to it, where it said nothing.
};

/// What that exit code means as sysexits.h has it, with these words of the program; where it is one of refusal, the
/// reply of a mail server among the words counts (RFC 5321, 4.2.1).
HandOverResult::Kind MeaningOfExitCode(int code, const QString& words);

/// What is particular about a program.
struct ProgramHabits
{
    bool SaysOnOutput = false; ///< Its words stand on standard output as well.
    QString Locale;            ///< In which it runs; empty for this program's own.
    std::function<HandOverResult::Kind(int code, const QString& words)> Meaning = MeaningOfExitCode;
};

/// Starts a program with these words, without a shell, gives it the input and waits for its end, as long as the time
/// limit says; then it is ended, with what it has started. The first word is the program.
HandOverResult HandOver(const QStringList& command, const QByteArray& input, int seconds,
                        const ProgramHabits& habits = {});
