// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/RowForm.h"

#include "platform/records/Error.h"
#include "platform/records/TextCodec.h"
#include "platform/records/engines/jet/PageWriter.h"
#include "platform/records/engines/jet/RowSeal.h"
#include "platform/records/engines/jet/TextForm.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace dao::jet
{

namespace
{

constexpr qsizetype ShortestRow = 4;

qint64 WholeOf(const StoredValue& value)
{
    if (const qint64* whole = std::get_if<qint64>(&value))
        return *whole;
    if (const double* real = std::get_if<double>(&value))
        return std::llround(*real);
    throw Error(errTypeMismatch, QStringLiteral("A field of numbers cannot hold a text."));
}

double RequiredReal(const StoredValue& value)
{
    if (const double* real = std::get_if<double>(&value))
        return *real;
    return static_cast<double>(WholeOf(value));
}

template <typename Number>
QByteArray WholeOctets(const StoredValue& value)
{
    const qint64 whole = WholeOf(value);
    if (whole < std::numeric_limits<Number>::min() || whole > std::numeric_limits<Number>::max())
        throw Error(errOverflow, QStringLiteral("Overflow: a number is too large for its field."));
    QByteArray octets;
    Append(octets, static_cast<Number>(whole));
    return octets;
}

template <typename Real, typename Bits>
QByteArray RealOctets(double number)
{
    const Real real = static_cast<Real>(number);
    Bits bits = 0;
    std::memcpy(&bits, &real, sizeof(bits));
    QByteArray octets;
    Append(octets, bits);
    return octets;
}

QByteArray TextOctets(const ColumnDefinition& column, const StoredValue& value)
{
    const QByteArray* utf8 = std::get_if<QByteArray>(&value);
    if (utf8 == nullptr)
        throw Error(errTypeMismatch, QStringLiteral("A field of texts cannot hold a number."));
    const QString text = TextFromUtf8({utf8->constData(), static_cast<std::size_t>(utf8->size())});
    if (column.Is(ColumnType::Text) && 2 * text.size() > column.Length)
        throw Error(errFieldTooSmall, QStringLiteral("The field '%1' is too small for a text.").arg(column.Name));
    return StoredFromText(text, (column.FurtherFlags & CompressedColumn) != 0);
}

/// Columns that were deleted leave gaps.
void PutFixed(QByteArray& row, const ColumnDefinition& column, const std::optional<QByteArray>& octets)
{
    const qsizetype at = 2 + qsizetype(column.FixedOffset);
    if (row.size() < at + column.Length)
        row.append(at + column.Length - row.size(), '\0');
    if (octets)
        std::memcpy(row.data() + at, octets->constData(),
                    static_cast<std::size_t>(std::min<qsizetype>(octets->size(), column.Length)));
}

void RemapIndexes(TableDefinition& table, const std::vector<quint16>& before)
{
    for (IndexDefinition& index : table.Indexes) {
        for (IndexDefinition::KeyColumn& key : index.Columns) {
            const auto at = std::find(before.begin(), before.end(), key.Number);
            key.Number = static_cast<quint16>(at - before.begin());
        }
    }
}

} // namespace

NewCell CellOf(const ColumnDefinition& column, const StoredValue& value)
{
    if (std::holds_alternative<std::monostate>(value))
        return {};
    const auto octets = [&]() -> QByteArray {
        switch (static_cast<ColumnType>(column.Type)) {
        case ColumnType::Boolean:
            return {};
        case ColumnType::Byte:
            return WholeOctets<quint8>(value);
        case ColumnType::Integer:
            return WholeOctets<qint16>(value);
        case ColumnType::Long:
            return WholeOctets<qint32>(value);
        case ColumnType::Currency: {
            QByteArray units;
            Append(units, static_cast<qint64>(std::llround(RequiredReal(value) * CurrencyUnit)));
            return units;
        }
        case ColumnType::Single:
            return RealOctets<float, quint32>(RequiredReal(value));
        case ColumnType::Double:
        case ColumnType::Date:
            return RealOctets<double, quint64>(RequiredReal(value));
        case ColumnType::Text:
        case ColumnType::Memo:
            return TextOctets(column, value);
        default:
            throw Error(errTypeMismatch, QStringLiteral("The field '%1' cannot be written.").arg(column.Name));
        }
    };
    return {octets(), value};
}

void PlaceColumns(TableDefinition& table)
{
    std::vector<quint16> before;
    quint16 fixedEnd = 0;
    quint16 variables = 0;
    for (ColumnDefinition& column : table.Columns) {
        before.push_back(column.Number);
        column.Number = static_cast<quint16>(before.size() - 1);
        column.FixedOffset = fixedEnd;
        if (column.IsFixed() && !column.Is(ColumnType::Boolean))
            fixedEnd = static_cast<quint16>(fixedEnd + column.Length);
    }
    // Long values behind the others: what a list reads stands in front.
    for (const bool isLong : {false, true}) {
        for (ColumnDefinition& column : table.Columns) {
            if (!column.IsFixed() && column.IsLong() == isLong)
                column.VariableIndex = variables++;
        }
    }
    table.VariableColumns = variables;
    table.ColumnsEver = static_cast<quint16>(table.Columns.size());
    RemapIndexes(table, before);
}

namespace
{

/// Where each value of variable length begins, the last one first, behind the end of all and in front of their number.
void AppendVariable(QByteArray& row, const std::vector<const QByteArray*>& values)
{
    std::vector<quint16> starts;
    for (const QByteArray* value : values) {
        starts.push_back(static_cast<quint16>(row.size()));
        row += value == nullptr ? QByteArray() : *value;
    }
    Append(row, static_cast<quint16>(row.size()));
    // NOLINTNEXTLINE(modernize-loop-convert): reversed views do not compile with clang 14.
    for (auto start = starts.rbegin(); start != starts.rend(); ++start)
        Append(row, *start);
    Append(row, static_cast<quint16>(values.size()));
}

/// seal: empty for none.
QByteArray MakeSealedRow(const TableDefinition& table, std::span<const std::optional<QByteArray>> octets,
                         const QByteArray& seal)
{
    QByteArray row;
    Append(row, table.ColumnsEver);
    QByteArray mask((qsizetype(table.ColumnsEver) + 7) / 8, '\0');
    std::vector<const QByteArray*> variable(table.VariableColumns, nullptr);
    for (std::size_t i = 0; i < table.Columns.size(); ++i) {
        const ColumnDefinition& column = table.Columns[i];
        if (column.Number >= table.ColumnsEver || (!column.IsFixed() && column.VariableIndex >= table.VariableColumns))
            throw Fault(QStringLiteral("the definition on page %1 counts too few columns").arg(table.Page()));
        if (octets[i])
            mask[column.Number / 8] = static_cast<char>(mask[column.Number / 8] | 1 << (column.Number % 8));
        if (!column.IsFixed())
            variable[column.VariableIndex] = octets[i] ? &*octets[i] : nullptr;
        else if (!column.Is(ColumnType::Boolean))
            PutFixed(row, column, octets[i]);
    }
    const qsizetype sealAt = row.size();
    row += seal;
    // A place must hold a pointer, should the row ever move.
    if (row.size() + mask.size() < ShortestRow)
        row.append(ShortestRow - row.size() - mask.size(), '\0');
    if (table.VariableColumns > 0)
        AppendVariable(row, variable);
    row += mask;
    if (!seal.isEmpty())
        CloseSeal(row, sealAt, seal.size(), table);
    return row;
}

} // namespace

QByteArray MakeRow(const TableDefinition& table, std::span<const std::optional<QByteArray>> octets,
                   std::vector<quint32> longSums)
{
    QByteArray row = MakeSealedRow(table, octets, SealOctets({std::move(longSums), NewSealNumber()}));
    if (row.size() > LargestRow)
        row = MakeSealedRow(table, octets, {});
    if (row.size() > LargestRow)
        throw Error(errFieldTooSmall, QStringLiteral("A row is too long for a Jet file: its texts take more than %1 "
                                                     "octets together.")
                                          .arg(LargestRow));
    return row;
}

} // namespace dao::jet
