// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/TableDefinition.h"

#include "platform/records/engines/MemoCheck.h"
#include "platform/records/engines/jet/PageLayout.h"

#include <algorithm>
#include <array>

namespace dao::jet
{

namespace
{

constexpr int NextPageAt = 4;
constexpr int MostPages = 64; // 255 columns with the longest names take less than half of them.
constexpr int ColumnSize = 25;
constexpr int TreeSize = 52;
constexpr int IndexNameSize = 28;
constexpr int MostTrees = 255;
constexpr int MostIndexNames = 4096;
constexpr quint8 Ascending = 1;

/// The definition as one text: its first page whole, the next ones without their headers.
QByteArray ReadPages(PageFile& file, quint32 first, std::vector<quint32>& pages)
{
    QByteArray octets;
    for (quint32 number = first; number != 0;) {
        if (pages.size() == MostPages)
            throw Fault(QStringLiteral("the definition on page %1 does not end").arg(first));
        const QByteArray page = file.Page(number, PageType::Definition);
        pages.push_back(number);
        octets += pages.size() == 1 ? page : page.mid(DefinitionHeader);
        number = OctetView(page).U32(NextPageAt);
    }
    const quint32 length = OctetView(octets).U32(DefinitionLayout::LengthAt);
    if (length < DefinitionLayout::FixedPart || length > quint32(octets.size()))
        throw Fault(QStringLiteral("the definition on page %1 has a wrong length").arg(first));
    octets.truncate(length);
    return octets;
}

/// Reads one thing behind the other.
class Reader
{
public:
    explicit Reader(const OctetView& octets) : Octets_(octets) {}

    OctetView Take(qsizetype size)
    {
        const OctetView part = Octets_.Part(At_, size);
        At_ += size;
        return part;
    }
    quint16 TakeU16() { return Take(2).U16(0); }
    QString TakeName()
    {
        const OctetView name = Take(TakeU16());
        QString text(name.Size() / 2, Qt::Uninitialized);
        for (qsizetype i = 0; i < text.size(); ++i)
            text[i] = QChar(name.U16(2 * i));
        return text;
    }
    qsizetype Left() const { return Octets_.Size() - At_; }

private:
    OctetView Octets_;
    qsizetype At_ = 0;
};

TableDefinition::Seal SealIn(const QByteArray& octets, quint32 page)
{
    const OctetView view(octets);
    if (view.U32(DefinitionSealAt) != DefinitionSealMark)
        return TableDefinition::Seal::None;
    return view.U32(DefinitionSealAt + 4) == SumOfDefinition(octets, page) ? TableDefinition::Seal::Holds
                                                                           : TableDefinition::Seal::Broken;
}

ColumnDefinition ColumnFrom(const OctetView& octets)
{
    ColumnDefinition column;
    column.Type = octets.U8(0);
    column.Number = octets.U16(5);
    column.VariableIndex = octets.U16(7);
    column.Ordinal = octets.U16(9);
    column.SortOrder = octets.U16(11);
    column.SortVersion = octets.U8(14);
    column.Flags = octets.U8(15);
    column.FurtherFlags = octets.U8(16);
    column.FixedOffset = octets.U16(21);
    column.Length = octets.U16(23);
    return column;
}

IndexDefinition IndexFrom(const OctetView& octets)
{
    IndexDefinition index;
    for (int i = 0; i < IndexColumns; ++i) {
        const quint16 number = octets.U16(4 + 3 * i);
        if (number != DefinitionLayout::NoColumn)
            index.Columns.push_back({number, (octets.U8(6 + 3 * i) & Ascending) != 0});
    }
    index.Map = octets.U32(34);
    index.Root = octets.U32(38);
    index.Flags = octets.U8(46);
    return index;
}

IndexName IndexNameFrom(const OctetView& octets)
{
    IndexName name;
    name.Number = octets.U32(4);
    name.Tree = octets.U32(8);
    name.Relation = octets.U8(12);
    name.OtherIndex = octets.Read<qint32>(13);
    name.OtherTable = octets.U32(17);
    name.UpdateCascade = octets.U8(21);
    name.DeleteCascade = octets.U8(22);
    name.Kind = octets.U8(23);
    return name;
}

void ReadColumns(Reader& reader, int count, TableDefinition& table)
{
    for (int i = 0; i < count; ++i)
        table.Columns.push_back(ColumnFrom(reader.Take(ColumnSize)));
    for (ColumnDefinition& column : table.Columns)
        column.Name = reader.TakeName();
    std::sort(table.Columns.begin(), table.Columns.end(),
              [](const ColumnDefinition& left, const ColumnDefinition& right) { return left.Number < right.Number; });
    const auto same = std::adjacent_find(
        table.Columns.begin(), table.Columns.end(),
        [](const ColumnDefinition& left, const ColumnDefinition& right) { return left.Number == right.Number; });
    if (same != table.Columns.end())
        throw Fault(QStringLiteral("two columns of the definition on page %1 have the same number").arg(table.Page()));
}

void ReadIndexes(Reader& reader, int names, TableDefinition& table)
{
    for (IndexDefinition& index : table.Indexes) {
        const quint32 distinctKeys = index.DistinctKeys;
        index = IndexFrom(reader.Take(TreeSize));
        index.DistinctKeys = distinctKeys;
    }
    for (int i = 0; i < names; ++i)
        table.IndexNames.push_back(IndexNameFrom(reader.Take(IndexNameSize)));
    for (IndexName& name : table.IndexNames) {
        name.Name = reader.TakeName();
        if (name.Tree >= table.Indexes.size())
            throw Fault(QStringLiteral("an index of the definition on page %1 has no tree").arg(table.Page()));
    }
}

void ReadLongColumns(Reader& reader, TableDefinition& table)
{
    while (reader.Left() >= 2) {
        const quint16 number = reader.TakeU16();
        if (number == DefinitionLayout::NoColumn)
            return;
        const OctetView maps = reader.Take(8);
        const auto column = std::find_if(table.Columns.begin(), table.Columns.end(),
                                         [&](const ColumnDefinition& each) { return each.Number == number; });
        if (column == table.Columns.end())
            continue; // Of a column that was deleted.
        column->OwnedMap = maps.U32(0);
        column->FreeMap = maps.U32(4);
    }
}

} // namespace

const ColumnDefinition* TableDefinition::ColumnOf(quint16 number) const
{
    const auto found =
        std::lower_bound(Columns.begin(), Columns.end(), number,
                         [](const ColumnDefinition& column, quint16 wanted) { return column.Number < wanted; });
    return found != Columns.end() && found->Number == number ? &*found : nullptr;
}

const ColumnDefinition* TableDefinition::ColumnNamed(const QString& name) const
{
    const auto found = std::find_if(Columns.begin(), Columns.end(), [&](const ColumnDefinition& column) {
        return column.Name.compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == Columns.end() ? nullptr : &*found;
}

quint32 SumOfDefinition(const QByteArray& octets, quint32 page)
{
    constexpr int CountsEnd = DefinitionLayout::CounterAt + 4;
    constexpr int SealEnd = 40;
    constexpr int TreesAt = 51;
    std::array<char, sizeof(quint32)> number{};
    qToLittleEndian(page, number.data());
    quint32 sum = engine::Crc32c({number.data(), number.size()});
    const auto add = [&](qsizetype from, qsizetype end) {
        const OctetView part = OctetView(octets).Part(from, end - from);
        sum = engine::Crc32c({part.Data(), static_cast<std::size_t>(part.Size())}, sum);
    };
    add(DefinitionHeader, DefinitionLayout::RowCountAt);
    add(CountsEnd, DefinitionSealAt);
    add(SealEnd, DefinitionLayout::FixedPart);
    const quint32 trees = OctetView(octets).U32(TreesAt);
    const qint64 statisticsEnd = DefinitionLayout::FixedPart + qint64(DefinitionLayout::StatisticsOfTree) * trees;
    if (statisticsEnd > octets.size())
        throw Fault(QStringLiteral("the definition on page %1 names more indexes than it has").arg(page));
    add(statisticsEnd, octets.size());
    return sum;
}

TableDefinition ReadTableDefinition(PageFile& file, quint32 page)
{
    TableDefinition table;
    const QByteArray octets = ReadPages(file, page, table.Pages);
    Reader reader{OctetView(octets)};
    const OctetView fixed = reader.Take(DefinitionLayout::FixedPart);
    table.State = SealIn(octets, page);
    table.RowCount = fixed.U32(DefinitionLayout::RowCountAt);
    table.Counter = fixed.U32(DefinitionLayout::CounterAt);
    table.IsSystem = fixed.U8(DefinitionLayout::KindAt) == DefinitionLayout::SystemTable;
    table.ColumnsEver = fixed.U16(41);
    table.VariableColumns = fixed.U16(43);
    const int columns = fixed.U16(45);
    const quint32 names = fixed.U32(47);
    const quint32 trees = fixed.U32(51);
    table.OwnedMap = fixed.U32(55);
    table.FreeMap = fixed.U32(59);
    if (columns > MostColumns || trees > MostTrees || names > MostIndexNames)
        throw Fault(
            QStringLiteral("the definition on page %1 names more columns or indexes than there can be").arg(page));
    table.Indexes.resize(trees);
    for (IndexDefinition& index : table.Indexes)
        index.DistinctKeys = reader.Take(DefinitionLayout::StatisticsOfTree).U32(4);
    ReadColumns(reader, columns, table);
    ReadIndexes(reader, static_cast<int>(names), table);
    ReadLongColumns(reader, table);
    return table;
}

} // namespace dao::jet
