// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ArgumentParser.h"
#include "platform/html/SafeDocument.h"

/// The file that a command makes of a page: HTML, or PDF by the program tolva-pdf.
namespace PageOutput
{

/// The options of such a command: --output (-o), --paper and --force.
OptionDefinition FileOption();
OptionDefinition PaperOption();
OptionDefinition ForceOption();

/// Failure (usage) for a missing file, another ending and other paper. command: whose help page it names.
void CheckUsage(const Arguments& arguments, const QString& command);
/// Failure when the file exists and --force is not given, and for a PDF file without the program that makes it. Behind
/// everything that is usage.
void CheckFile(const Arguments& arguments);
/// Writes the file, whole or not at all, or to standard output. Says when the page holds its text alone. Failure.
void Write(const Arguments& arguments, const SafeDocument& document);

} // namespace PageOutput
