// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/Catalogue.h"

#include "platform/records/TextCodec.h"
#include "platform/records/engines/jet/LongValue.h"
#include "platform/records/engines/jet/RowCells.h"
#include "platform/records/engines/jet/TableScan.h"

namespace dao::jet
{

namespace
{

const ColumnDefinition& Required(const TableDefinition& table, const char* name)
{
    const ColumnDefinition* column = table.ColumnNamed(QString::fromLatin1(name));
    if (column == nullptr)
        throw Fault(QStringLiteral("the list of tables has no column %1").arg(QLatin1String(name)));
    return *column;
}

/// The catalogue's columns, looked up once.
struct CatalogueColumns
{
    explicit CatalogueColumns(const TableDefinition& table)
        : Id(Required(table, "Id")),
          Parent(Required(table, "ParentId")),
          Name(Required(table, "Name")),
          Type(Required(table, "Type")),
          Flags(Required(table, "Flags")),
          Properties(Required(table, "LvProp"))
    {
    }

    const ColumnDefinition& Id;
    const ColumnDefinition& Parent;
    const ColumnDefinition& Name;
    const ColumnDefinition& Type;
    const ColumnDefinition& Flags;
    const ColumnDefinition& Properties;
};

qint64 NumberIn(const RowCells& cells, const ColumnDefinition& column)
{
    const StoredValue value = cells.Value(column);
    const qint64* number = std::get_if<qint64>(&value);
    return number == nullptr ? 0 : *number;
}

CatalogueObject ObjectIn(const RowCells& cells, const CatalogueColumns& columns)
{
    CatalogueObject object;
    object.Id = static_cast<qint32>(NumberIn(cells, columns.Id));
    object.Parent = static_cast<qint32>(NumberIn(cells, columns.Parent));
    object.Type = static_cast<qint16>(NumberIn(cells, columns.Type));
    object.Flags = static_cast<quint32>(NumberIn(cells, columns.Flags));
    const StoredValue name = cells.Value(columns.Name);
    if (const QByteArray* text = std::get_if<QByteArray>(&name))
        object.Name = TextFromUtf8({text->constData(), static_cast<std::size_t>(text->size())});
    if (const auto properties = cells.Octets(columns.Properties))
        object.PropertyReference = properties->Copy();
    return object;
}

} // namespace

std::vector<CatalogueObject> ReadCatalogue(PageFile& file)
{
    const TableDefinition table = ReadTableDefinition(file, CatalogueDefinition);
    const CatalogueColumns columns(table);
    std::vector<CatalogueObject> objects;
    TableScan scan(file, table);
    for (auto place = scan.Next({}); place; place = scan.Next(place)) {
        const std::optional<FoundRow> row = FindRow(file, table, *place);
        if (row)
            objects.push_back(ObjectIn(RowCells(row->Octets(), table), columns));
    }
    return objects;
}

QHash<QString, ColumnProperties> PropertiesOf(PageFile& file, const CatalogueObject& object)
{
    if (object.PropertyReference.isEmpty())
        return {};
    const QByteArray blob = ReadLongValue(file, OctetView(object.PropertyReference));
    return ReadColumnProperties(OctetView(blob));
}

} // namespace dao::jet
