// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/PageLayout.h"
#include "platform/records/engines/jet/TableBuilder.h"
#include "platform/records/engines/jet/TextForm.h"

namespace dao::jet
{

namespace
{

constexpr quint32 TableMark = 1625;
constexpr quint32 IndexMark = 1923;

void AppendHead(QByteArray& octets, const TableDefinition& table)
{
    octets.append(DefinitionHeader, '\0');
    Append(octets, quint32(0)); // The length, once it is known.
    Append(octets, TableMark);
    Append(octets, table.RowCount);
    Append(octets, table.Counter);
    Append(octets, quint32(1));
    octets.append(12, '\0');
    Append(octets, table.IsSystem ? DefinitionLayout::SystemTable : DefinitionLayout::UserTable);
    Append(octets, table.ColumnsEver);
    Append(octets, table.VariableColumns);
    Append(octets, static_cast<quint16>(table.Columns.size()));
    Append(octets, static_cast<quint32>(table.IndexNames.size()));
    Append(octets, static_cast<quint32>(table.Indexes.size()));
    Append(octets, table.OwnedMap);
    Append(octets, table.FreeMap);
    for (const IndexDefinition& index : table.Indexes) {
        Append(octets, quint32(0));
        Append(octets, index.DistinctKeys);
        Append(octets, quint32(0));
    }
}

void AppendColumn(QByteArray& octets, const ColumnDefinition& column)
{
    Append(octets, column.Type);
    Append(octets, TableMark);
    Append(octets, column.Number);
    Append(octets, column.VariableIndex);
    Append(octets, column.Ordinal);
    Append(octets, column.SortOrder);
    Append(octets, quint8(0));
    Append(octets, column.SortVersion);
    Append(octets, column.Flags);
    Append(octets, column.FurtherFlags);
    Append(octets, quint32(0));
    Append(octets, column.FixedOffset);
    Append(octets, column.Length);
}

void AppendTree(QByteArray& octets, const IndexDefinition& index)
{
    Append(octets, IndexMark);
    for (std::size_t i = 0; i < std::size_t(IndexColumns); ++i) {
        const bool isUsed = i < index.Columns.size();
        Append(octets, isUsed ? index.Columns[i].Number : DefinitionLayout::NoColumn);
        Append(octets, static_cast<quint8>(isUsed && index.Columns[i].IsAscending));
    }
    Append(octets, index.Map);
    Append(octets, index.Root);
    Append(octets, quint32(0));
    Append(octets, static_cast<quint8>(index.Flags | AlwaysSet));
    octets.append(5, '\0');
}

void AppendIndexName(QByteArray& octets, const IndexName& name)
{
    Append(octets, TableMark);
    Append(octets, name.Number);
    Append(octets, name.Tree);
    Append(octets, name.Relation);
    Append(octets, name.OtherIndex);
    Append(octets, name.OtherTable);
    Append(octets, name.UpdateCascade);
    Append(octets, name.DeleteCascade);
    Append(octets, name.Kind);
    Append(octets, quint32(0));
}

QByteArray MakeDefinition(const TableDefinition& table)
{
    QByteArray octets;
    AppendHead(octets, table);
    for (const ColumnDefinition& column : table.Columns)
        AppendColumn(octets, column);
    for (const ColumnDefinition& column : table.Columns)
        AppendName(octets, column.Name);
    for (const IndexDefinition& index : table.Indexes)
        AppendTree(octets, index);
    for (const IndexName& name : table.IndexNames)
        AppendIndexName(octets, name);
    for (const IndexName& name : table.IndexNames)
        AppendName(octets, name.Name);
    for (const ColumnDefinition& column : table.Columns) {
        if (!column.IsLong())
            continue;
        Append(octets, column.Number);
        Append(octets, column.OwnedMap);
        Append(octets, column.FreeMap);
    }
    Append(octets, DefinitionLayout::NoColumn);
    Put(octets, DefinitionLayout::LengthAt, static_cast<quint32>(octets.size()));
    Put(octets, DefinitionSealAt, DefinitionSealMark);
    Put(octets, DefinitionSealAt + 4, SumOfDefinition(octets, table.Page()));
    return octets;
}

} // namespace

std::vector<QByteArray> MakeDefinitionPages(const TableDefinition& table,
                                            const std::function<quint32(std::size_t place)>& numberOf)
{
    const QByteArray octets = MakeDefinition(table);
    std::vector<QByteArray> pages;
    numberOf(0);
    for (qsizetype at = 0; at < octets.size();) {
        const qsizetype header = at == 0 ? 0 : DefinitionHeader;
        QByteArray page = QByteArray(header, '\0') + octets.mid(at, PageSize - header);
        at += page.size() - header;
        const quint32 next = at < octets.size() ? numberOf(pages.size() + 1) : 0;
        Put(page, 0, static_cast<quint8>(PageType::Definition));
        Put(page, 1, quint8(1));
        Put(page, 2, static_cast<quint16>(std::max<qsizetype>(0, PageSize - page.size() - DefinitionHeader)));
        Put(page, 4, next);
        pages.push_back(page.leftJustified(PageSize, '\0'));
    }
    return pages;
}

} // namespace dao::jet
