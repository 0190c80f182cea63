// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Failure.h"
#include "platform/files/WholeFile.h"

/// Files that a command writes where its user says.
namespace FileOutput
{
/// Writes the file whole or not at all; a device or a pipe gets the content as it comes. Failure in words, with the old
/// file untouched: exitInputOutput for a full or failing disk, exitCannotCreate for all else.
void Write(const QString& name, const QByteArray& content, IfThere ifThere);

/// The failure for a file that could not be written.
Failure FailureOf(const QString& name, const FileStatus& status);
} // namespace FileOutput
