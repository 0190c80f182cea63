// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/DatabaseBuilder.h"

#include "platform/records/engines/jet/Properties.h"
#include "platform/records/engines/jet/SystemTables.h"
#include "platform/records/engines/jet/TableShape.h"
#include "platform/records/query/StoredValues.h"
#include "platform/records/query/TableRows.h"

#include <QDateTime>

namespace dao::jet
{

namespace
{

constexpr qint32 RootContainer = 0x0F000000;
constexpr qint32 DatabasesContainer = 0x0F000002;
constexpr qint32 RelationsContainer = 0x0F000003;
constexpr qint32 DatabaseObject = 0x10000000;
constexpr qint64 SystemFlag = -0x7FFFFFFF - 1;
/// Who owns everything: readers take any octets.
constexpr char OwnerOctets[] = "\x64\x8b";
constexpr int OwnerSize = 2;

struct SystemObjectRow
{
    qint32 Id;
    qint32 Parent;
    const char* Name;
    ObjectType Type;
};

constexpr SystemObjectRow SystemObjects[] = {
    {TablesContainer, RootContainer, "Tables", ObjectType::Container},
    {DatabasesContainer, RootContainer, "Databases", ObjectType::Container},
    {RelationsContainer, RootContainer, "Relationships", ObjectType::Container},
    {DatabaseObject, DatabasesContainer, "MSysDb", ObjectType::Database},
    {2, TablesContainer, "MSysObjects", ObjectType::Table},
    {3, TablesContainer, "MSysACEs", ObjectType::Table},
    {4, TablesContainer, "MSysQueries", ObjectType::Table},
    {5, TablesContainer, "MSysRelationships", ObjectType::Table},
};

QString NameOf(const SystemObjectRow& object)
{
    return QString::fromLatin1(object.Name);
}

StoredValue TextValue(const QString& text)
{
    return text.toUtf8();
}

} // namespace

DatabaseBuilder::DatabaseBuilder(const QString& fileName, double created) : Pages_(fileName), Created_(created) {}

TableBuilder& DatabaseBuilder::AddTable(const engine::Table& table)
{
    return AddTable(table.Name, ShapeOf(table), PropertiesOf(table));
}

TableBuilder& DatabaseBuilder::AddTable(const QString& name, const TableDefinition& shape, const QByteArray& properties)
{
    const quint32 page = Pages_.Allocate();
    Tables_.push_back({std::make_unique<TableBuilder>(Pages_, page, name, shape), properties});
    return *Tables_.back().Builder;
}

void DatabaseBuilder::WriteObjects()
{
    TableBuilder objects(Pages_, CatalogueDefinition, NameOf(SystemObjects[4]), ObjectsShape());
    const std::vector<ColumnDefinition>& columns = objects.Definition().Columns;
    const auto add = [&](qint32 id, qint32 parent, const QString& name, ObjectType type, qint64 flags,
                         const QByteArray& properties) {
        std::vector<NewCell> cells(columns.size());
        cells[0] = CellOf(columns[0], qint64(id));
        cells[1] = CellOf(columns[1], qint64(parent));
        cells[2] = CellOf(columns[2], TextValue(name));
        cells[3] = CellOf(columns[3], qint64(type));
        cells[4] = CellOf(columns[4], Created_);
        cells[5] = CellOf(columns[5], Created_);
        cells[6].Octets = QByteArray(OwnerOctets, OwnerSize);
        cells[7] = CellOf(columns[7], flags);
        if (!properties.isEmpty())
            cells[14].Octets = properties;
        objects.AddRow(cells);
    };
    for (const SystemObjectRow& object : SystemObjects)
        add(object.Id, object.Parent, NameOf(object), object.Type, SystemFlag, {});
    for (const UserTable& table : Tables_)
        add(static_cast<qint32>(table.Builder->Definition().Page()), TablesContainer, table.Builder->Name(),
            ObjectType::Table, 0, table.Properties);
    objects.FinishRows();
    objects.WriteDefinition();
}

void DatabaseBuilder::WriteRights()
{
    TableBuilder rights(Pages_, CatalogueDefinition + 1, NameOf(SystemObjects[5]), RightsShape());
    const std::vector<ColumnDefinition>& columns = rights.Definition().Columns;
    const auto add = [&](qint32 id) {
        std::vector<NewCell> cells(columns.size());
        cells[0] = CellOf(columns[0], qint64(id));
        cells[1].Octets = QByteArray(OwnerOctets, OwnerSize);
        cells[2] = CellOf(columns[2], AllRights);
        cells[3] = CellOf(columns[3], qint64(0));
        rights.AddRow(cells);
    };
    for (const SystemObjectRow& object : SystemObjects)
        add(object.Id);
    for (const UserTable& table : Tables_)
        add(static_cast<qint32>(table.Builder->Definition().Page()));
    rights.FinishRows();
    rights.WriteDefinition();
}

void DatabaseBuilder::WriteEmpty(quint32 page, const QString& name, TableDefinition shape)
{
    TableBuilder table(Pages_, page, name, std::move(shape));
    table.FinishRows();
    table.WriteDefinition();
}

void DatabaseBuilder::Finish()
{
    for (const UserTable& table : Tables_)
        table.Builder->WriteDefinition();
    WriteObjects();
    WriteRights();
    WriteEmpty(CatalogueDefinition + 2, NameOf(SystemObjects[6]), QueriesShape());
    WriteEmpty(CatalogueDefinition + 3, NameOf(SystemObjects[7]), RelationsShape());
    Pages_.Finish(MakeFirstPage(Created_));
}

double DayNumberNow()
{
    const QDateTime first(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC);
    QDateTime now = QDateTime::currentDateTime();
    now.setTimeSpec(Qt::UTC); // The wall's time, of no zone.
    return static_cast<double>(first.secsTo(now)) / 86400.0;
}

namespace
{

void CopyRows(engine::Store& store, const engine::TablePtr& table, TableBuilder& builder)
{
    const std::vector<ColumnDefinition>& columns = builder.Definition().Columns;
    Row row;
    using engine::Direction;
    using engine::MemoFetch;
    bool isThere = store.ReadEnd(table, -1, Direction::Forward, MemoFetch::SmallOnes, row);
    for (; isThere; isThere = store.ReadNext(table, -1, Direction::Forward, MemoFetch::SmallOnes, row)) {
        RowReader reader(row.Cells.data());
        std::vector<NewCell> cells;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const CellView cell = reader.Next();
            const bool isDeferred = cell.CellKind == CellView::Kind::Deferred;
            cells.push_back(CellOf(columns[i], isDeferred ? query::WholeMemo(store, table, static_cast<int>(i), row.Id)
                                                          : query::ViewOf(cell)));
        }
        builder.AddRow(cells);
    }
}

} // namespace

void WriteWholeStore(engine::Store& store, const QString& fileName)
{
    DatabaseBuilder builder(fileName, DayNumberNow());
    const engine::SchemaPtr schema = store.CurrentSchema();
    for (const engine::TablePtr& table : schema->Tables) {
        TableBuilder& target = builder.AddTable(*table);
        CopyRows(store, table, target);
        target.RaiseCounter(static_cast<quint32>(store.LastCounter(table)));
        target.FinishRows();
    }
    builder.Finish();
}

} // namespace dao::jet
