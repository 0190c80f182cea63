// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/TableShape.h"

#include "platform/records/Error.h"
#include "platform/records/engines/jet/Properties.h"
#include "platform/records/engines/jet/SystemTables.h"

#include <QStringList>

namespace dao::jet
{

namespace
{

constexpr int MostIndexes = 32;
constexpr qsizetype LongestName = 64;

/// A name as the format takes it.
void RequireName(const QString& name)
{
    static const QString forbidden = QStringLiteral(".!`[]");
    bool isFit = !name.isEmpty() && name.size() <= LongestName && name.at(0) != u' ';
    for (const QChar character : name)
        isFit = isFit && character.unicode() >= u' ' && !forbidden.contains(character);
    if (!isFit)
        throw Error(errNotSupported,
                    QStringLiteral("A Jet file cannot have a table, field or index named '%1'.").arg(name));
}

ColumnType TypeOf(DataTypeEnum type)
{
    // The numbers are the same on purpose: the store's types come from this format.
    return static_cast<ColumnType>(type);
}

void RequireSize(const QString& table, std::size_t columns, std::size_t indexes)
{
    if (columns > MostColumns || indexes > MostIndexes)
        throw Error(errNotSupported, QStringLiteral("The table '%1' has more fields or indexes than a table of a Jet "
                                                    "file can.")
                                         .arg(table));
}

} // namespace

ColumnDefinition ShapeOf(const engine::Column& column)
{
    RequireName(column.Name);
    ColumnDefinition definition = MakeColumn(column.Name, TypeOf(column.Type), 0);
    if (column.Type == dbText || column.Type == dbMemo)
        definition.FurtherFlags |= CompressedColumn;
    if (column.Type == dbText)
        definition.Length = static_cast<quint16>(2 * column.Size);
    if (column.IsCounter())
        definition.Flags |= CounterColumn;
    return definition;
}

void AddShapeOf(const engine::IndexKey& index, const engine::Table& table, TableDefinition& shape)
{
    RequireName(index.Name);
    RequireSize(table.Name, 0, shape.Indexes.size() + 1);
    if (index.Columns.size() > std::size_t(IndexColumns))
        throw Error(errNotSupported,
                    QStringLiteral("The index '%1' has more fields than one of a Jet file can.").arg(index.Name));
    QStringList columns;
    for (const int column : index.Columns)
        columns += table.Columns[static_cast<std::size_t>(column)].Name;
    const int flags = (index.Unique || index.Primary ? UniqueIndex : 0) | (index.Primary ? RequiredIndex : 0);
    AddIndexTo(shape, index.Name, static_cast<quint8>(flags), columns, index.Primary);
}

TableDefinition ShapeOf(const engine::Table& table)
{
    RequireName(table.Name);
    RequireSize(table.Name, table.Columns.size(), table.Indexes.size());
    TableDefinition shape;
    for (const engine::Column& column : table.Columns) {
        shape.Columns.push_back(ShapeOf(column));
        shape.Columns.back().Number = static_cast<quint16>(shape.Columns.size() - 1);
        shape.Columns.back().Ordinal = shape.Columns.back().Number;
    }
    for (const engine::IndexKey& index : table.Indexes)
        AddShapeOf(index, table, shape);
    return shape;
}

QByteArray PropertiesOf(const engine::Table& table)
{
    std::vector<std::pair<QString, ColumnProperties>> columns;
    for (const engine::Column& column : table.Columns)
        columns.emplace_back(column.Name, ColumnProperties{column.AllowZeroLength, false});
    return WriteColumnProperties(columns);
}

} // namespace dao::jet
