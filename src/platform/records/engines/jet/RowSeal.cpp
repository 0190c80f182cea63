// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/RowSeal.h"

#include "platform/records/engines/MemoCheck.h"
#include "platform/records/engines/jet/PageWriter.h"

#include <QRandomGenerator>

#include <algorithm>

namespace dao::jet
{

namespace
{

constexpr qsizetype NumberSize = 4;
constexpr qsizetype SealSumSize = 4;

std::string_view ViewOf(const char* data, qsizetype size)
{
    return {data, static_cast<std::size_t>(size)};
}

qsizetype LongColumns(const TableDefinition& table, int columnCount)
{
    return std::count_if(table.Columns.begin(), table.Columns.end(), [&](const ColumnDefinition& column) {
        return column.IsLong() && column.Number < columnCount;
    });
}

/// The sum of a row of a table, with zeros where the sum itself stands.
quint32 SumOfRow(const OctetView& row, qsizetype sumAt, const TableDefinition& table)
{
    QByteArray owner;
    Append(owner, table.Page());
    const quint32 before =
        engine::Crc32c(ViewOf(row.Data(), sumAt), engine::Crc32c(ViewOf(owner.constData(), owner.size())));
    constexpr char zeros[SealSumSize] = {};
    const quint32 with = engine::Crc32c(ViewOf(zeros, SealSumSize), before);
    const qsizetype behind = sumAt + SealSumSize;
    return engine::Crc32c(ViewOf(row.Data() + behind, row.Size() - behind), with);
}

/// Where what follows the gap begins.
qsizetype GapEnd(const OctetView& row, const TableDefinition& table, int columnCount)
{
    const qsizetype maskSize = (columnCount + 7) / 8;
    if (table.VariableColumns == 0)
        return row.Size() - maskSize;
    const qsizetype countAt = row.Size() - maskSize - 2;
    const int count = row.U16(countAt);
    // The first value's place stands last.
    return count == 0 ? 0 : row.U16(countAt - 2);
}

} // namespace

quint32 SumOfLong(const QByteArray& octets)
{
    return std::max<quint32>(engine::Crc32c(ViewOf(octets.constData(), octets.size())), RowSeal::UnknownSum + 1);
}

qsizetype FixedEnd(const TableDefinition& table, int columnCount)
{
    qsizetype end = 2;
    for (const ColumnDefinition& column : table.Columns) {
        if (column.IsFixed() && !column.Is(ColumnType::Boolean) && column.Number < columnCount)
            end = std::max(end, 2 + qsizetype(column.FixedOffset) + column.Length);
    }
    return end;
}

qsizetype SealSize(const TableDefinition& table, int columnCount)
{
    return NumberSize + SealSumSize * LongColumns(table, columnCount) + SealSumSize;
}

QByteArray SealOctets(const RowSeal& seal)
{
    QByteArray octets;
    Append(octets, seal.Number);
    for (const quint32 sum : seal.LongSums)
        Append(octets, sum);
    Append(octets, quint32(0));
    return octets;
}

void CloseSeal(QByteArray& row, qsizetype at, qsizetype size, const TableDefinition& table)
{
    const qsizetype sumAt = at + size - SealSumSize;
    Put(row, sumAt, SumOfRow(OctetView(row), sumAt, table));
}

FoundSeal SealOf(const OctetView& row, const TableDefinition& table)
{
    const int columnCount = row.U16(0);
    const qsizetype at = FixedEnd(table, columnCount);
    const qsizetype size = SealSize(table, columnCount);
    // Where a column was deleted, the gap may be its.
    const bool hasSeal = table.ColumnsEver == table.Columns.size() && columnCount > 0 &&
                         columnCount <= table.ColumnsEver && GapEnd(row, table, columnCount) - at == size;
    FoundSeal found;
    if (!hasSeal)
        return found;
    const OctetView octets = row.Part(at, size);
    const qsizetype sumAt = size - SealSumSize;
    found.Sum = octets.U32(sumAt);
    found.What = SumOfRow(row, at + sumAt, table) == found.Sum ? FoundSeal::State::Holds : FoundSeal::State::Broken;
    found.Seal.Number = octets.U32(0);
    for (qsizetype place = NumberSize; place < sumAt; place += SealSumSize)
        found.Seal.LongSums.push_back(octets.U32(place));
    return found;
}

quint32 NewSealNumber()
{
    return QRandomGenerator::global()->generate();
}

} // namespace dao::jet
