// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/JetSchema.h"

#include <algorithm>

namespace dao::jet
{

namespace
{

/// What shows a value that the record store has no type for.
constexpr int GuidCharacters = 38;
constexpr int NumericCharacters = 41;
constexpr QChar HiddenMark = u'.';

struct HeldAs
{
    DataTypeEnum Type;
    int Size;
};

HeldAs HeldAsOf(const ColumnDefinition& column)
{
    switch (static_cast<ColumnType>(column.Type)) {
    case ColumnType::Boolean:
        return {dbBoolean, 1};
    case ColumnType::Byte:
        return {dbByte, 1};
    case ColumnType::Integer:
        return {dbInteger, 2};
    case ColumnType::Long:
        return {dbLong, 4};
    case ColumnType::Single:
        return {dbSingle, 4};
    case ColumnType::Currency:
    case ColumnType::Double:
        return {dbDouble, 8};
    case ColumnType::Date:
        return {dbDate, 8};
    case ColumnType::Text:
        return {dbText, column.Length / 2};
    case ColumnType::Guid:
        return {dbText, GuidCharacters};
    case ColumnType::Numeric:
        return {dbText, NumericCharacters};
    case ColumnType::Memo:
    case ColumnType::Ole:
        return {dbMemo, 0};
    default:
        return {dbText, 2 + 2 * column.Length};
    }
}

void AddColumns(const TableDefinition& definition, const QHash<QString, ColumnProperties>& properties,
                engine::Table& table)
{
    std::vector<const ColumnDefinition*> columns;
    for (const ColumnDefinition& column : definition.Columns)
        columns.push_back(&column);
    std::stable_sort(columns.begin(), columns.end(), [](const ColumnDefinition* left, const ColumnDefinition* right) {
        return left->Ordinal < right->Ordinal;
    });
    for (const ColumnDefinition* column : columns) {
        const HeldAs held = HeldAsOf(*column);
        const bool isCounter = column->Is(ColumnType::Long) && (column->Flags & CounterColumn) != 0;
        table.Columns.push_back({column->Name, held.Type, held.Size, isCounter ? int(dbAutoIncrField) : 0,
                                 properties.value(column->Name.toCaseFolded()).AllowsZeroLength});
    }
}

void AddIndexes(const TableDefinition& definition, engine::Table& table)
{
    for (const IndexName& name : definition.IndexNames) {
        const IndexDefinition& tree = definition.Indexes[name.Tree];
        const bool isPrimary = name.Kind == IndexName::Primary;
        engine::IndexKey index{name.Name, isPrimary, isPrimary || (tree.Flags & UniqueIndex) != 0, {}};
        for (const IndexDefinition::KeyColumn& key : tree.Columns) {
            const ColumnDefinition* column = definition.ColumnOf(key.Number);
            if (column == nullptr)
                throw Fault(QStringLiteral("the index %1 of the table %2 is over a column that is not there")
                                .arg(name.Name, table.Name));
            index.Columns.push_back(table.FindColumn(column->Name));
        }
        if (!name.Name.startsWith(HiddenMark) && !index.Columns.empty())
            table.Indexes.push_back(std::move(index));
    }
}

} // namespace

namespace
{

/// What cannot be read of them says nothing: the table's rows are to be had, and an examination tells.
QHash<QString, ColumnProperties> ReadableProperties(PageFile& file, const CatalogueObject& object)
{
    try {
        return PropertiesOf(file, object);
    } catch (const Fault&) {
        return {};
    }
}

} // namespace

engine::SchemaPtr ReadSchema(PageFile& file)
{
    auto schema = std::make_shared<engine::Schema>();
    for (const CatalogueObject& object : ReadCatalogue(file)) {
        if (!object.IsTable() || object.IsSystem())
            continue;
        const TableDefinition definition = ReadTableDefinition(file, object.Definition());
        auto table = std::make_shared<engine::Table>();
        table->Id = definition.Page();
        table->Name = object.Name;
        AddColumns(definition, ReadableProperties(file, object), *table);
        table->Complete();
        AddIndexes(definition, *table);
        schema->Tables.push_back(std::move(table));
    }
    return schema;
}

} // namespace dao::jet
