// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// The program's colours: those of the system, or its own light or dark ones.
namespace Appearance
{
/// appearance: "light", "dark", anything else for the system's. Takes effect in all windows at once.
void Apply(const QString& appearance);
} // namespace Appearance
