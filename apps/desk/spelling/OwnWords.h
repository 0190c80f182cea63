// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

/// The words that the user has added to the dictionaries: one a line, in a file beside the desk's own settings, which
/// several desks of the account may share.
namespace OwnWords
{
/// problem: why they could not be read, in words; empty when they were, and where there is no file yet.
QStringList In(const QString& file, QString& problem);
/// Adds the word to what stands in the file by then. What cannot be read whole is not replaced. Why it could not be
/// kept, in words; empty when it is.
QString Add(const QString& file, const QString& word);
} // namespace OwnWords
