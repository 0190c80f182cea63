// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/SystemTables.h"

#include <QStringList>

namespace dao::jet
{

namespace
{

constexpr int NameLength = 510;
constexpr quint8 MaskedContent = 0x20;

int LengthOf(ColumnType type, int length)
{
    switch (type) {
    case ColumnType::Boolean:
    case ColumnType::Byte:
        return 1;
    case ColumnType::Integer:
        return 2;
    case ColumnType::Long:
    case ColumnType::Single:
        return 4;
    case ColumnType::Currency:
    case ColumnType::Double:
    case ColumnType::Date:
        return 8;
    default:
        return length;
    }
}

bool IsOfFixedLength(ColumnType type)
{
    switch (type) {
    case ColumnType::Binary:
    case ColumnType::Text:
    case ColumnType::Ole:
    case ColumnType::Memo:
        return false;
    default:
        return true;
    }
}

struct ShapeColumn
{
    const char* Name;
    ColumnType Type;
};

TableDefinition SystemShape(std::initializer_list<ShapeColumn> columns)
{
    TableDefinition table;
    table.IsSystem = true;
    for (const ShapeColumn& each : columns) {
        ColumnDefinition column = MakeColumn(QString::fromLatin1(each.Name), each.Type, NameLength);
        column.Number = static_cast<quint16>(table.Columns.size());
        column.Flags |= SystemColumn;
        if (column.IsLong())
            column.Length = 0;
        if (column.Name == QLatin1String("SID") || column.Name == QLatin1String("Owner"))
            column.Flags |= MaskedContent;
        table.Columns.push_back(column);
    }
    return table;
}

QStringList Names(std::initializer_list<const char*> names)
{
    QStringList list;
    for (const char* name : names)
        list += QString::fromLatin1(name);
    return list;
}

} // namespace

ColumnDefinition MakeColumn(const QString& name, ColumnType type, int length)
{
    ColumnDefinition column;
    column.Name = name;
    column.Type = static_cast<quint8>(type);
    column.Flags = UpdatableColumn;
    if (IsOfFixedLength(type))
        column.Flags |= FixedColumn;
    column.Length = static_cast<quint16>(LengthOf(type, length));
    return column;
}

void AddIndexTo(TableDefinition& table, const QString& name, quint8 flags, const QStringList& columns, bool isPrimary)
{
    IndexDefinition index;
    index.Flags = flags;
    for (const QString& column : columns)
        index.Columns.push_back({table.ColumnNamed(column)->Number, true});
    IndexName entry;
    entry.Name = name;
    entry.Number = static_cast<quint32>(table.IndexNames.size());
    entry.Tree = static_cast<quint32>(table.Indexes.size());
    entry.Kind = isPrimary ? IndexName::Primary : quint8(0);
    table.Indexes.push_back(std::move(index));
    table.IndexNames.push_back(entry);
}

TableDefinition ObjectsShape()
{
    TableDefinition table = SystemShape({{"Id", ColumnType::Long},
                                         {"ParentId", ColumnType::Long},
                                         {"Name", ColumnType::Text},
                                         {"Type", ColumnType::Integer},
                                         {"DateCreate", ColumnType::Date},
                                         {"DateUpdate", ColumnType::Date},
                                         {"Owner", ColumnType::Binary},
                                         {"Flags", ColumnType::Long},
                                         {"Database", ColumnType::Memo},
                                         {"Connect", ColumnType::Memo},
                                         {"ForeignName", ColumnType::Text},
                                         {"RmtInfoShort", ColumnType::Binary},
                                         {"RmtInfoLong", ColumnType::Ole},
                                         {"Lv", ColumnType::Ole},
                                         {"LvProp", ColumnType::Ole},
                                         {"LvModule", ColumnType::Ole},
                                         {"LvExtra", ColumnType::Ole}});
    AddIndexTo(table, QStringLiteral("ParentIdName"), UniqueIndex, Names({"ParentId", "Name"}));
    AddIndexTo(table, QStringLiteral("Id"), UniqueIndex, Names({"Id"}), true);
    return table;
}

TableDefinition RightsShape()
{
    TableDefinition table = SystemShape({{"ObjectId", ColumnType::Long},
                                         {"SID", ColumnType::Binary},
                                         {"ACM", ColumnType::Long},
                                         {"FInheritable", ColumnType::Boolean}});
    AddIndexTo(table, QStringLiteral("ObjectId"), RequiredIndex, Names({"ObjectId"}));
    return table;
}

TableDefinition QueriesShape()
{
    TableDefinition table = SystemShape({{"ObjectId", ColumnType::Long},
                                         {"Attribute", ColumnType::Byte},
                                         {"Order", ColumnType::Binary},
                                         {"Name1", ColumnType::Text},
                                         {"Name2", ColumnType::Text},
                                         {"Expression", ColumnType::Memo},
                                         {"Flag", ColumnType::Integer},
                                         {"LvExtra", ColumnType::Long}});
    AddIndexTo(table, QStringLiteral("ObjectIdAttribute"), UniqueIndex, Names({"ObjectId", "Attribute", "Order"}),
               true);
    return table;
}

TableDefinition RelationsShape()
{
    TableDefinition table = SystemShape({{"szRelationship", ColumnType::Text},
                                         {"grbit", ColumnType::Long},
                                         {"ccolumn", ColumnType::Long},
                                         {"icolumn", ColumnType::Long},
                                         {"szObject", ColumnType::Text},
                                         {"szColumn", ColumnType::Text},
                                         {"szReferencedObject", ColumnType::Text},
                                         {"szReferencedColumn", ColumnType::Text}});
    for (const char* name : {"szRelationship", "szObject", "szReferencedObject"})
        AddIndexTo(table, QString::fromLatin1(name), IgnoresNulls, Names({name}));
    return table;
}

} // namespace dao::jet
