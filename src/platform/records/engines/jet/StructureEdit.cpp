// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/StructureEdit.h"

#include "platform/records/Error.h"
#include "platform/records/engines/jet/Catalogue.h"
#include "platform/records/engines/jet/DatabaseBuilder.h"
#include "platform/records/engines/jet/LongValue.h"
#include "platform/records/engines/jet/RowCells.h"
#include "platform/records/engines/jet/RowWriter.h"
#include "platform/records/engines/jet/SystemTables.h"
#include "platform/records/engines/jet/TableBuilder.h"
#include "platform/records/engines/jet/TableScan.h"
#include "platform/records/engines/jet/TableShape.h"

#include <QStringList>

#include <algorithm>

namespace dao::jet
{

namespace
{

constexpr quint32 RightsDefinition = CatalogueDefinition + 1;

std::size_t PlaceOf(const TableDefinition& table, const char* name)
{
    const ColumnDefinition* column = table.ColumnNamed(QString::fromLatin1(name));
    if (column == nullptr)
        throw Fault(QStringLiteral("one of the format's own tables has no column %1").arg(QLatin1String(name)));
    return static_cast<std::size_t>(column - table.Columns.data());
}

/// The cells of a row of one of the format's own tables, by the names of the columns.
class SystemRow
{
public:
    explicit SystemRow(const TableDefinition& table) : Table_(table), Cells_(table.Columns.size()) {}

    void Set(const char* name, const StoredValue& value)
    {
        const std::size_t place = PlaceOf(Table_, name);
        Cells_[place] = CellOf(Table_.Columns[place], value);
    }
    void SetOctets(const char* name, const std::optional<QByteArray>& octets)
    {
        Cells_[PlaceOf(Table_, name)].Octets = octets;
    }
    std::span<const NewCell> Cells() const { return Cells_; }

private:
    const TableDefinition& Table_;
    std::vector<NewCell> Cells_;
};

template <typename Visit>
void ForEachRow(PageFile& file, const TableDefinition& table, const Visit& visit)
{
    TableScan scan(file, table);
    for (auto place = scan.Next({}); place; place = scan.Next(place)) {
        const std::optional<FoundRow> row = FindRow(file, table, *place);
        if (row)
            visit(*place, RowCells(row->Octets(), table));
    }
}

qint64 NumberIn(const RowCells& row, const TableDefinition& table, const char* name)
{
    const StoredValue value = row.Value(table.Columns[PlaceOf(table, name)]);
    const qint64* number = std::get_if<qint64>(&value);
    return number == nullptr ? 0 : *number;
}

std::optional<QByteArray> OctetsIn(const RowCells& row, const TableDefinition& table, const char* name)
{
    const auto octets = row.Octets(table.Columns[PlaceOf(table, name)]);
    return octets ? std::optional(octets->Copy()) : std::nullopt;
}

/// Where the maps of the newest table stand: those of the next one go there as long as there is room.
quint32 LastMap(PageFile& file)
{
    quint32 map = 0;
    for (const CatalogueObject& object : ReadCatalogue(file)) {
        if (object.IsTable())
            map = ReadTableDefinition(file, object.Definition()).FreeMap;
    }
    return map;
}

} // namespace

void StructureEdit::PlaceLongs(ColumnDefinition& column, quint32 beside)
{
    if (!column.IsLong())
        return;
    column.OwnedMap = Pages_.AddMap(beside);
    column.FreeMap = Pages_.AddMap(column.OwnedMap);
}

void StructureEdit::PlaceTrees(TableDefinition& table, std::size_t first, quint32 beside)
{
    for (std::size_t i = first; i < table.Indexes.size(); ++i) {
        IndexDefinition& index = table.Indexes[i];
        index.Map = Pages_.AddMap(beside);
        index.Root = IndexEdit::MakeRoot(File_, Pages_, table.Page(), index.Map);
        beside = index.Map;
    }
}

void StructureEdit::WriteDefinition(TableDefinition& table)
{
    const std::vector<QByteArray> pages = MakeDefinitionPages(table, [&](std::size_t place) {
        if (place == table.Pages.size())
            table.Pages.push_back(Pages_.Allocate());
        return table.Pages[place];
    });
    for (std::size_t i = 0; i < pages.size(); ++i)
        File_.Change(table.Pages[i], pages[i]);
}

void StructureEdit::AddTable(const engine::Table& table)
{
    TableDefinition definition = ShapeOf(table);
    PlaceColumns(definition);
    const quint32 beside = LastMap(File_);
    definition.Pages = {Pages_.Allocate()};
    definition.OwnedMap = Pages_.AddMap(beside);
    definition.FreeMap = Pages_.AddMap(definition.OwnedMap);
    for (ColumnDefinition& column : definition.Columns)
        PlaceLongs(column, definition.FreeMap);
    PlaceTrees(definition, 0, definition.FreeMap);
    WriteDefinition(definition);
    AddObject(definition.Page(), table.Name, PropertiesOf(table));
}

void StructureEdit::AddObject(quint32 definition, const QString& name, const QByteArray& properties)
{
    const TableDefinition objects = ReadTableDefinition(File_, CatalogueDefinition);
    std::optional<QByteArray> owner;
    ForEachRow(File_, objects, [&](RowPlace, const RowCells& row) {
        if (NumberIn(row, objects, "ParentId") == TablesContainer)
            owner = OctetsIn(row, objects, "Owner");
    });
    SystemRow row(objects);
    row.Set("Id", qint64(definition));
    row.Set("ParentId", qint64(TablesContainer));
    row.Set("Name", name.toUtf8());
    row.Set("Type", qint64(ObjectType::Table));
    row.Set("DateCreate", DayNumberNow());
    row.Set("DateUpdate", DayNumberNow());
    row.SetOctets("Owner", owner);
    row.Set("Flags", qint64(0));
    row.SetOctets("LvProp", properties);
    RowWriter(File_, Pages_, objects, QStringLiteral("MSysObjects")).Insert(row.Cells());
    AddRights(static_cast<qint32>(definition));
}

/// Whoever has rights on all tables has them on the new one.
void StructureEdit::AddRights(qint32 object)
{
    const TableDefinition rights = ReadTableDefinition(File_, RightsDefinition);
    std::vector<std::optional<QByteArray>> holders;
    ForEachRow(File_, rights, [&](RowPlace, const RowCells& row) {
        if (NumberIn(row, rights, "ObjectId") == TablesContainer)
            holders.push_back(OctetsIn(row, rights, "SID"));
    });
    for (const std::optional<QByteArray>& holder : holders) {
        SystemRow row(rights);
        row.Set("ObjectId", qint64(object));
        row.SetOctets("SID", holder);
        row.Set("ACM", AllRights);
        row.Set("FInheritable", qint64(0));
        RowWriter(File_, Pages_, rights, QStringLiteral("MSysACEs")).Insert(row.Cells());
    }
}

void StructureEdit::AddColumn(const engine::Table& table, const engine::Column& column)
{
    const TableDefinition before = ReadTableDefinition(File_, static_cast<quint32>(table.Id));
    TableDefinition definition = before;
    ColumnDefinition added = ShapeOf(column);
    if (definition.ColumnsEver >= MostColumns)
        throw Error(errNotSupported,
                    QStringLiteral("The table '%1' has more fields than a table of a Jet file can.").arg(table.Name));
    added.Number = definition.ColumnsEver++;
    for (const ColumnDefinition& each : definition.Columns) {
        added.Ordinal = std::max<quint16>(added.Ordinal, static_cast<quint16>(each.Ordinal + 1));
        if (each.IsFixed() && !each.Is(ColumnType::Boolean))
            added.FixedOffset =
                std::max<quint16>(added.FixedOffset, static_cast<quint16>(each.FixedOffset + each.Length));
    }
    added.VariableIndex = definition.VariableColumns;
    if (!added.IsFixed())
        ++definition.VariableColumns;
    PlaceLongs(added, definition.FreeMap);
    definition.Columns.push_back(added);
    WriteDefinition(definition);
    // Rows without any value of variable length lack what tells where such values are.
    if (before.VariableColumns == 0 && definition.VariableColumns > 0)
        RewriteRows(before, definition);
    AddProperties(table, column);
    if (column.IsCounter())
        NumberRows(definition, column, table.Name);
}

void StructureEdit::RewriteRows(const TableDefinition& before, const TableDefinition& behind)
{
    RowHeap heap(File_, Pages_, behind);
    const auto longs = static_cast<std::size_t>(std::count_if(behind.Columns.begin(), behind.Columns.end(),
                                                              [](const auto& column) { return column.IsLong(); }));
    ForEachRow(File_, before, [&](RowPlace place, const RowCells& row) {
        std::vector<std::optional<QByteArray>> octets;
        for (const ColumnDefinition& column : behind.Columns) {
            const ColumnDefinition* old = before.ColumnOf(column.Number);
            const auto stored = old == nullptr || old->Is(ColumnType::Boolean) ? std::nullopt : row.Octets(*old);
            octets.push_back(stored ? std::optional(stored->Copy()) : std::nullopt);
            if (old != nullptr && old->Is(ColumnType::Boolean) && row.Truth(*old))
                octets.back() = QByteArray();
        }
        // Nothing but Null is in a long column that is new.
        heap.Replace(place, MakeRow(behind, octets, std::vector<quint32>(longs, RowSeal::UnknownSum)));
    });
}

void StructureEdit::NumberRows(const TableDefinition& table, const engine::Column& counter, const QString& name)
{
    const ColumnDefinition* column = table.ColumnNamed(counter.Name);
    std::vector<RowPlace> places;
    ForEachRow(File_, table, [&](RowPlace place, const RowCells&) { places.push_back(place); });
    RowWriter writer(File_, Pages_, table, name);
    qint64 number = 0;
    for (const RowPlace& place : places) {
        std::vector<std::optional<NewCell>> cells(table.Columns.size());
        cells[static_cast<std::size_t>(column - table.Columns.data())] = CellOf(*column, ++number);
        writer.Update(place, cells);
    }
    SetCounterIn(File_, table.Page(), static_cast<quint32>(number));
}

void StructureEdit::AddProperties(const engine::Table& table, const engine::Column& column)
{
    const TableDefinition objects = ReadTableDefinition(File_, CatalogueDefinition);
    std::optional<RowPlace> object;
    QByteArray blob;
    ForEachRow(File_, objects, [&](RowPlace place, const RowCells& row) {
        const bool isTable = NumberIn(row, objects, "Type") == qint64(ObjectType::Table) &&
                             (NumberIn(row, objects, "Id") & 0xFFFFFF) == table.Id;
        if (!isTable)
            return;
        object = place;
        if (const auto reference = OctetsIn(row, objects, "LvProp"))
            blob = ReadLongValue(File_, OctetView(*reference));
    });
    if (!object)
        throw Fault(QStringLiteral("the list of tables lacks the table %1").arg(table.Name));
    std::vector<std::optional<NewCell>> cells(objects.Columns.size());
    cells[PlaceOf(objects, "LvProp")] =
        NewCell{AddColumnProperties(blob, column.Name, {column.AllowZeroLength, false}), {}};
    RowWriter(File_, Pages_, objects, QStringLiteral("MSysObjects")).Update(*object, cells);
}

void StructureEdit::AddIndex(const engine::Table& table, const engine::IndexKey& index)
{
    TableDefinition definition = ReadTableDefinition(File_, static_cast<quint32>(table.Id));
    quint32 number = 0;
    for (const IndexName& name : definition.IndexNames)
        number = std::max(number, name.Number + 1);
    AddShapeOf(index, table, definition);
    definition.IndexNames.back().Number = number;
    const std::size_t place = definition.Indexes.size() - 1;
    PlaceTrees(definition, place, definition.FreeMap);
    WriteDefinition(definition);
    RowWriter(File_, Pages_, definition, table.Name).FillIndex(place);
}

} // namespace dao::jet
