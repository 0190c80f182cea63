// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/clsKVUser.h"

#include <QString>

/// Where the programs look for a station's files, and for whom.
namespace StationPlace
{
/// The rights of a station's first user.
inline constexpr int AllRights =
    static_cast<int>(DirectoryRight::CanEditMessages) | static_cast<int>(DirectoryRight::CanEditPersonalMessages) |
    static_cast<int>(DirectoryRight::CanEditCategories) | static_cast<int>(DirectoryRight::ManagePrizes) |
    static_cast<int>(DirectoryRight::ChangeSettings);

/// The file of the station in a folder.
QString FileIn(const QString& folder);
/// The folder of the directory of a station.
QString DirectoryIn(const QString& folder);
/// The file in it.
QString DirectoryFileIn(const QString& folder);
/// Whether a station's file with something in it stands in the folder. Opening would make a missing one.
bool HoldsStation(const QString& folder);
/// The user where none is named: the environment variable TOLVA_USER, or "Technician".
QString DefaultUserName();
} // namespace StationPlace
