// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/TableDefinition.h"

namespace dao::jet
{

inline constexpr qint32 TablesContainer = 0x0F000001; ///< The object above all tables.
inline constexpr qint64 AllRights = 0xFFFFF;

/// The shapes of the tables that the format has in every file, and of a user's table.
TableDefinition ObjectsShape();
TableDefinition RightsShape();
TableDefinition QueriesShape();
TableDefinition RelationsShape();

/// A column of a type; length in octets, for texts and blobs of bounded length.
ColumnDefinition MakeColumn(const QString& name, ColumnType type, int length = 0);
/// Adds an index over columns, by their names, each ascending.
void AddIndexTo(TableDefinition& table, const QString& name, quint8 flags, const QStringList& columns,
                bool isPrimary = false);

} // namespace dao::jet
