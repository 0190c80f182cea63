// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/Properties.h"
#include "platform/records/engines/jet/TableDefinition.h"

namespace dao::jet
{

/// A row of the table of all objects.
struct CatalogueObject
{
    qint32 Id = 0; ///< Of a table: its definition's page, in the lower three octets.
    qint32 Parent = 0;
    QString Name;
    qint16 Type = 0; ///< An ObjectType, or another kind.
    quint32 Flags = 0;
    QByteArray PropertyReference; ///< The long value as it stands in the row; empty for none.

    bool IsTable() const { return Type == static_cast<qint16>(ObjectType::Table); }
    bool IsSystem() const { return (Flags & SystemObject) != 0; }
    quint32 Definition() const { return static_cast<quint32>(Id) & 0xFFFFFF; }
};

/// All objects, in order of entry. Fault.
std::vector<CatalogueObject> ReadCatalogue(PageFile& file);
/// Empty for an object without any. Fault.
QHash<QString, ColumnProperties> PropertiesOf(PageFile& file, const CatalogueObject& object);

} // namespace dao::jet
