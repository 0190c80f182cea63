// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/KeyForm.h"

#include "platform/records/TextCodec.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace dao::jet
{

namespace
{

constexpr char AscendingValue = 0x7F;
constexpr char DescendingValue = '\x80';
constexpr char AscendingNull = 0;
constexpr char DescendingNull = '\xFF';
constexpr int GroupSize = 8;
constexpr char MoreGroups = 9;

void Complement(char* from, char* to)
{
    std::transform(from, to, from, [](char octet) { return static_cast<char>(~octet); });
}

template <typename Number>
void AppendWhole(Number number, QByteArray& key)
{
    using Unsigned = std::make_unsigned_t<Number>;
    constexpr Unsigned Sign = Unsigned(1) << (8 * sizeof(Number) - 1);
    const Unsigned big = qToBigEndian(static_cast<Unsigned>(static_cast<Unsigned>(number) ^ Sign));
    key.append(reinterpret_cast<const char*>(&big), sizeof(big));
}

template <typename Real, typename Bits>
void AppendReal(Real number, QByteArray& key)
{
    Bits bits = 0;
    std::memcpy(&bits, &number, sizeof(bits));
    constexpr Bits Sign = Bits(1) << (8 * sizeof(Bits) - 1);
    bits = (bits & Sign) != 0 ? ~bits : bits ^ Sign;
    const Bits big = qToBigEndian(bits);
    key.append(reinterpret_cast<const char*>(&big), sizeof(big));
}

template <typename Number>
bool AppendWholeOf(const StoredValue& value, QByteArray& key)
{
    const qint64* number = std::get_if<qint64>(&value);
    if (number == nullptr || *number < std::numeric_limits<Number>::min() ||
        *number > std::numeric_limits<Number>::max())
        return false;
    if constexpr (std::is_unsigned_v<Number>)
        key.append(static_cast<char>(*number));
    else
        AppendWhole(static_cast<Number>(*number), key);
    return true;
}

std::optional<double> RealOf(const StoredValue& value)
{
    if (const double* real = std::get_if<double>(&value))
        return *real;
    if (const qint64* whole = std::get_if<qint64>(&value))
        return static_cast<double>(*whole);
    return std::nullopt;
}

bool AppendRealOf(const StoredValue& value, ColumnType type, QByteArray& key)
{
    const std::optional<double> real = RealOf(value);
    if (!real)
        return false;
    if (type == ColumnType::Currency)
        AppendWhole(static_cast<qint64>(std::llround(*real * CurrencyUnit)), key);
    else if (type == ColumnType::Single)
        AppendReal<float, quint32>(static_cast<float>(*real), key);
    else
        AppendReal<double, quint64>(*real, key);
    return true;
}

/// In groups, each with the number of its octets behind it; a descending index keeps the mark that more follow.
bool AppendOctets(const StoredValue& value, bool isAscending, QByteArray& key)
{
    const QByteArray* text = std::get_if<QByteArray>(&value);
    if (text == nullptr || !text->startsWith("0x"))
        return false;
    const QByteArray octets = QByteArray::fromHex(text->mid(2));
    for (qsizetype at = 0; at == 0 || at < octets.size(); at += GroupSize) {
        QByteArray group = octets.mid(at, GroupSize);
        const char size = static_cast<char>(group.size());
        const bool isLast = at + GroupSize >= octets.size();
        group.append(QByteArray(GroupSize - group.size(), '\0'));
        group.append(isLast ? size : MoreGroups);
        if (!isAscending)
            Complement(group.data(), group.data() + GroupSize + static_cast<int>(isLast));
        key += group;
    }
    return true;
}

bool AppendText(const StoredValue& value, bool isAscending, TextOrder order, QByteArray& key)
{
    const QByteArray* utf8 = std::get_if<QByteArray>(&value);
    const qsizetype before = key.size();
    if (utf8 == nullptr ||
        !AppendTextKey(TextFromUtf8({utf8->constData(), static_cast<std::size_t>(utf8->size())}), order, key))
        return false;
    if (!isAscending) {
        key.append('\0');
        Complement(key.data() + before, key.data() + key.size());
        key.append('\0');
    }
    return true;
}

bool AppendNumber(ColumnType type, const StoredValue& value, QByteArray& key)
{
    switch (type) {
    case ColumnType::Byte:
        return AppendWholeOf<quint8>(value, key);
    case ColumnType::Integer:
        return AppendWholeOf<qint16>(value, key);
    case ColumnType::Long:
        return AppendWholeOf<qint32>(value, key);
    case ColumnType::Currency:
    case ColumnType::Single:
    case ColumnType::Double:
    case ColumnType::Date:
        return AppendRealOf(value, type, key);
    case ColumnType::Boolean: {
        const std::optional<double> truth = RealOf(value);
        key.append(truth && *truth != 0 ? '\0' : '\xFF');
        return truth.has_value();
    }
    default:
        return false;
    }
}

bool AppendValue(const ColumnDefinition& column, bool isAscending, const StoredValue& value, TextOrder order,
                 QByteArray& key)
{
    if (std::holds_alternative<std::monostate>(value)) {
        key.append(isAscending ? AscendingNull : DescendingNull);
        return true;
    }
    key.append(isAscending ? AscendingValue : DescendingValue);
    const auto type = static_cast<ColumnType>(column.Type);
    if (type == ColumnType::Text || type == ColumnType::Memo)
        return column.HasGeneralOrder() && AppendText(value, isAscending, order, key);
    if (type == ColumnType::Binary)
        return AppendOctets(value, isAscending, key);
    const qsizetype before = key.size();
    if (!AppendNumber(type, value, key))
        return false;
    if (!isAscending)
        Complement(key.data() + before, key.data() + key.size());
    return true;
}

} // namespace

std::optional<QByteArray> MakeKey(const TableDefinition& table, const IndexDefinition& index,
                                  std::span<const StoredValue> values, TextOrder order)
{
    QByteArray key;
    for (std::size_t i = 0; i < values.size() && i < index.Columns.size(); ++i) {
        const ColumnDefinition* column = table.ColumnOf(index.Columns[i].Number);
        if (column == nullptr || !AppendValue(*column, index.Columns[i].IsAscending, values[i], order, key))
            return std::nullopt;
    }
    return key;
}

} // namespace dao::jet
