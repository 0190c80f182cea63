// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileStatus.h"

#include <QStringList>

/// The words that the user has added to the dictionaries: one a line, in a file beside the desk's own settings, which
/// several desks of the account may share.
namespace OwnWords
{
/// status: why they could not be read; done where there is no file yet.
QStringList In(const QString& file, FileStatus& status);
/// Adds the word to what stands in the file by then. What cannot be read is not replaced.
FileStatus Add(const QString& file, const QString& word);
} // namespace OwnWords
