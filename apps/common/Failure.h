// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ExitCode.h"
#include "platform/records/Error.h"

#include <QString>

#include <exception>

/// What ends a command: the exit code and the words for the error stream. Thrown by the commands and what serves them,
/// caught by main alone.
class Failure : public std::exception
{
public:
    Failure(ExitCode code, const QString& words) : Code_(code), Words_(words), What_(words.toUtf8()) {}

    ExitCode Code() const { return Code_; }
    const QString& Words() const { return Words_; }
    const char* what() const noexcept override { return What_.constData(); }

private:
    ExitCode Code_;
    QString Words_;
    QByteArray What_;
};

/// What ended a program that nobody expected to end, within the handler of an exception: too little memory, or an error
/// of the system or of the program itself, with its words.
Failure UnexpectedFailure();

/// The exit code for an error number of the record store.
ExitCode ExitCodeOf(int errorNumber);

/// An error of the record store as the user reads it: what is wrong and what to do. subject: "The station in /srv/fm".
/// file: the database file that it is about, where one is known. The store has one error for a file in use and for one
/// without permission; a file that this account may read and write is in use.
Failure FailureOf(const QString& subject, const QString& file, int errorNumber, const QString& description);
