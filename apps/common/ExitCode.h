// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What the program answers to whoever started it; the numbers are those of sysexits.h, which mail servers know.
/// docs/command-line.md describes them for their readers.
enum ExitCode : int
{
    exitOK = 0,
    exitDeclined = 1,      ///< The user answered No; nothing was changed.
    exitUsage = 64,        ///< The command line was not understood.
    exitData = 65,         ///< Input that is not what it is meant to be, a name nothing has, a damaged file.
    exitNoInput = 66,      ///< No such station or input file.
    exitNoUser = 67,       ///< Not a user of the directory.
    exitUnavailable = 69,  ///< The operation does not exist here.
    exitSoftware = 70,     ///< An error that nobody expected.
    exitCannotCreate = 73, ///< What was to be made stands already, or cannot be made.
    exitInputOutput = 74,  ///< Reading or writing failed, or the disk is full.
    exitTemporary = 75,    ///< Locked by another computer: try again.
    exitNoPermission = 77, ///< The user lacks the right, or the account the file permission.
    exitInterrupted = 130  ///< Ended early by Ctrl-C, as shells number it.
};
