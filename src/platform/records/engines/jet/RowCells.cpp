// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/RowCells.h"

#include "platform/records/engines/jet/TextForm.h"

#include <QUuid>

#include <array>
#include <cmath>

namespace dao::jet
{

namespace
{

constexpr int NumericSize = 17;
constexpr int GuidSize = 16;

int FixedSize(const ColumnDefinition& column)
{
    switch (static_cast<ColumnType>(column.Type)) {
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
    case ColumnType::Guid:
        return GuidSize;
    case ColumnType::Numeric:
        return NumericSize;
    default:
        return column.Length;
    }
}

QByteArray OctetsAsText(const OctetView& octets)
{
    return "0x" + QByteArray::fromRawData(octets.Data(), octets.Size()).toHex();
}

QByteArray GuidAsText(const OctetView& octets)
{
    QUuid guid;
    guid.data1 = octets.U32(0);
    guid.data2 = octets.U16(4);
    guid.data3 = octets.U16(6);
    for (int i = 0; i < 8; ++i)
        guid.data4[i] = octets.U8(8 + i);
    return guid.toByteArray().toUpper();
}

/// A sign and 16 octets of a whole number, in four groups with the highest first, each little-endian.
QByteArray NumericAsText(const OctetView& octets, int scale)
{
    std::array<quint32, 4> groups{};
    for (std::size_t i = 0; i < groups.size(); ++i)
        groups[i] = octets.U32(1 + 4 * qsizetype(i));
    QByteArray digits;
    while (digits.size() <= scale || groups != std::array<quint32, 4>{}) {
        quint64 rest = 0;
        for (quint32& group : groups) {
            rest = rest << 32 | group;
            group = static_cast<quint32>(rest / 10);
            rest %= 10;
        }
        digits.prepend(static_cast<char>('0' + rest));
    }
    if (scale > 0)
        digits.insert(digits.size() - scale, '.');
    return octets.U8(0) != 0 ? '-' + digits : digits;
}

/// A number of which nothing is compared or shown: what is none is Null to the record store.
StoredValue RealOrNull(double number)
{
    return std::isfinite(number) ? StoredValue(number) : StoredValue();
}

} // namespace

RowCells::RowCells(const OctetView& row, const TableDefinition& table) : Row_(row), ColumnCount_(row.U16(0))
{
    const qsizetype maskSize = (ColumnCount_ + 7) / 8;
    Mask_ = row.Part(row.Size() - maskSize, maskSize);
    if (table.VariableColumns == 0)
        return;
    const qsizetype countAt = row.Size() - maskSize - 2;
    VariableCount_ = row.U16(countAt);
    VariableTableAt_ = countAt - 2 * (qsizetype(VariableCount_) + 1);
    if (VariableTableAt_ < 2)
        throw Fault(QStringLiteral("a row names more values than it has"));
}

bool RowCells::HasBit(quint16 number) const
{
    return number < ColumnCount_ && (Mask_.U8(number / 8) >> (number % 8) & 1) != 0;
}

std::optional<OctetView> RowCells::Octets(const ColumnDefinition& column) const
{
    if (!HasBit(column.Number))
        return std::nullopt;
    if (column.IsFixed())
        return Row_.Part(2 + qsizetype(column.FixedOffset), FixedSize(column));
    if (column.VariableIndex >= VariableCount_)
        return std::nullopt;
    const qsizetype place = VariableTableAt_ + 2 * (VariableCount_ - qsizetype(column.VariableIndex));
    const qsizetype start = Row_.U16(place);
    const qsizetype end = Row_.U16(place - 2);
    if (end > VariableTableAt_)
        throw Fault(QStringLiteral("a value of a row reaches beyond it"));
    return Row_.Part(start, end - start);
}

StoredValue RowCells::Value(const ColumnDefinition& column) const
{
    if (column.Is(ColumnType::Boolean))
        return qint64(Truth(column) ? -1 : 0);
    const std::optional<OctetView> octets = Octets(column);
    if (!octets)
        return {};
    switch (static_cast<ColumnType>(column.Type)) {
    case ColumnType::Byte:
        return qint64(octets->U8(0));
    case ColumnType::Integer:
        return qint64(octets->Read<qint16>(0));
    case ColumnType::Long:
        return qint64(octets->Read<qint32>(0));
    case ColumnType::Currency:
        return static_cast<double>(octets->Read<qint64>(0)) / CurrencyUnit;
    case ColumnType::Single:
        return RealOrNull(static_cast<double>(octets->Read<float>(0)));
    case ColumnType::Double:
    case ColumnType::Date:
        return RealOrNull(octets->Read<double>(0));
    case ColumnType::Text:
        return Utf8FromStored(*octets);
    case ColumnType::Guid:
        return GuidAsText(*octets);
    case ColumnType::Numeric:
        return NumericAsText(*octets, column.Scale());
    case ColumnType::Memo:
    case ColumnType::Ole:
        return QByteArrayLiteral("");
    default:
        return OctetsAsText(*octets);
    }
}

qint64 VersionOf(const OctetView& row)
{
    return static_cast<qint64>(qHashBits(row.Data(), static_cast<std::size_t>(row.Size())));
}

QByteArray ShownLongValue(const ColumnDefinition& column, const QByteArray& octets)
{
    return column.Is(ColumnType::Memo) ? Utf8FromStored(OctetView(octets)) : OctetsAsText(OctetView(octets));
}

} // namespace dao::jet
