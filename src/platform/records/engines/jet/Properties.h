// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/Octets.h"

#include <QHash>

#include <utility>
#include <vector>

namespace dao::jet
{

/// What the properties of a column say that the record store goes by; nothing where they say nothing.
struct ColumnProperties
{
    bool AllowsZeroLength = true;
    bool IsRequired = false;
};

/// Of each column, by its folded name, out of a table's property blob. Properties of other names are left out. Fault.
QHash<QString, ColumnProperties> ReadColumnProperties(const OctetView& blob);
/// A blob that says both of each column, by its name as it is spelt.
QByteArray WriteColumnProperties(const std::vector<std::pair<QString, ColumnProperties>>& columns);

/// The blob of a table with a column more; all else stays as it is. blob: empty for a table without properties. Fault.
QByteArray AddColumnProperties(const QByteArray& blob, const QString& name, const ColumnProperties& properties);

} // namespace dao::jet
