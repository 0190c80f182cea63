// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QDateTime>
#include <QString>

/// The ".oar" file beside the database, in which the software that plays the station's music says what is on air.
/// Whoever writes it replaces the whole file.
namespace SongFile
{
/// Its path.
TOLVA_EXPORT QString PathOf(const QString& databasePath);
/// The song; empty where there is no file, or an empty one.
QString Read(const QString& databasePath);
void Write(const QString& databasePath, const QString& song);
} // namespace SongFile
