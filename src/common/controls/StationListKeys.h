// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// The properties that every list has, by the keys under which forms store them, and their defaults.
namespace StationListKey
{
inline const QString Font = QStringLiteral("Font");
inline const QString PrintVisible = QStringLiteral("PrintVisible");
inline const QString BackColour = QStringLiteral("BackColour");
inline const QString DoubleHeightRows = QStringLiteral("DoubleHeightRows");
inline const QString AutoUpdate = QStringLiteral("AutoUpdate");
inline const QString AutoUpdateInterval = QStringLiteral("AutoUpdateInterval");
} // namespace StationListKey

inline constexpr float DefaultUpdateInterval = 10;
/// The flag of a user's preferences that concern the lists.
inline constexpr int ListPreferencesFlag = 32;
