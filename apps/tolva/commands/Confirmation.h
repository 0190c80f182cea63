// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ArgumentParser.h"

/// The question in front of a command that replaces a station's file.
namespace Confirmation
{
QString YesOption();
/// True without a question where --yes is given, and where nobody can be asked.
bool IsGiven(const Arguments& arguments, const QString& question);
} // namespace Confirmation
