// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// One message or prize on the terminal, a field a line.
namespace FieldLines
{
inline const QString DateFormat = QStringLiteral("ddd dd mmm yyyy hh:nn:ss");
/// Nothing for an empty value.
void Print(const QString& name, const QString& value);
} // namespace FieldLines
