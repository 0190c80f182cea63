// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/StoredValues.h"

#include "platform/records/Error.h"
#include "platform/records/Values.h"
#include "platform/records/jetsql/CaseFolding.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace dao::query
{

namespace
{

constexpr double BehindIntegers = 9223372036854775808.0; ///< 2^63.

template <typename Number>
int Order(Number left, Number right)
{
    return left < right ? -1 : static_cast<int>(left > right);
}

/// Without rounding the whole number, which a double may not hold.
int Order(qint64 left, double right)
{
    if (right >= BehindIntegers)
        return -1;
    if (right < -BehindIntegers)
        return 1;
    const double whole = std::trunc(right);
    const int order = Order(left, static_cast<qint64>(whole));
    return order != 0 ? order : Order(whole, right);
}

int CompareNumbers(const StoredValue& left, const StoredValue& right)
{
    const auto* leftWhole = std::get_if<qint64>(&left);
    const auto* rightWhole = std::get_if<qint64>(&right);
    if (leftWhole != nullptr && rightWhole != nullptr)
        return Order(*leftWhole, *rightWhole);
    if (leftWhole != nullptr)
        return Order(*leftWhole, std::get<double>(right));
    if (rightWhole != nullptr)
        return -Order(*rightWhole, std::get<double>(left));
    return Order(std::get<double>(left), std::get<double>(right));
}

int Rank(const StoredValue& value)
{
    return std::holds_alternative<QByteArray>(value) ? 2 : static_cast<int>(!IsNull(value));
}

qsizetype Utf16Size(std::string_view text)
{
    qsizetype units = 0;
    for (jetsql::Utf8Reader reader(text); !reader.AtEnd(); ++units) {
        const char32_t character = reader.Next();
        units += character > 0xFFFF && character < jetsql::firstInvalid ? 1 : 0;
    }
    return units;
}

[[noreturn]] void RaiseOverflow()
{
    throw Error(errOverflow, QStringLiteral("The number is too large for the field."));
}

/// Rounding goes to the even neighbour.
template <typename Whole>
StoredValue WholeWithin(double value)
{
    const double rounded = std::nearbyint(value);
    if (!(rounded >= std::numeric_limits<Whole>::min() && rounded <= std::numeric_limits<Whole>::max()))
        RaiseOverflow();
    return static_cast<qint64>(rounded);
}

StoredValue NumberHeldBy(DataTypeEnum type, double value)
{
    switch (type) {
    case dbBoolean:
        return value != 0 ? qint64{-1} : qint64{0};
    case dbByte:
        return WholeWithin<quint8>(value);
    case dbInteger:
        return WholeWithin<qint16>(value);
    case dbLong:
        return WholeWithin<qint32>(value);
    default:
        break;
    }
    if (!std::isfinite(value) || (type == dbDate && !IsStorableDate(value)))
        RaiseOverflow();
    if (type != dbSingle)
        return value;
    if (std::abs(value) > static_cast<double>(std::numeric_limits<float>::max()))
        RaiseOverflow();
    return static_cast<double>(static_cast<float>(value));
}

StoredValue TextHeldBy(const engine::Column& column, StoredValue text)
{
    const std::string_view octets = TextIn(text);
    if (octets.empty() && !column.AllowZeroLength)
        return {};
    if (column.Type == dbText && column.Size > 0 && Utf16Size(octets) > column.Size)
        throw Error(errFieldTooSmall, QStringLiteral("The text is too long for the field."));
    return text;
}

} // namespace

std::string_view TextIn(const StoredValue& value)
{
    const auto* text = std::get_if<QByteArray>(&value);
    return text == nullptr ? std::string_view()
                           : std::string_view(text->constData(), static_cast<std::size_t>(text->size()));
}

StoredValue TextView(std::string_view utf8)
{
    // An empty text has to stay apart from Null, and from octets that are nowhere.
    return utf8.empty() ? QByteArrayLiteral("")
                        : QByteArray::fromRawData(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

StoredValue ViewOf(const CellView& cell)
{
    switch (cell.CellKind) {
    case CellView::Kind::Integer:
        return cell.Integer;
    case CellView::Kind::Real:
        return cell.Real;
    case CellView::Kind::Text:
        return TextView(cell.Text);
    default:
        return {};
    }
}

StoredValue Kept(StoredValue value)
{
    if (auto* text = std::get_if<QByteArray>(&value))
        text->detach();
    return value;
}

double RealIn(const StoredValue& value)
{
    if (const auto* whole = std::get_if<qint64>(&value))
        return static_cast<double>(*whole);
    const auto* real = std::get_if<double>(&value);
    return real == nullptr ? 0 : *real;
}

int CompareText(std::string_view left, std::string_view right)
{
    const std::size_t common = std::min(left.size(), right.size());
    std::size_t same = 0;
    for (; same < common; ++same) {
        const unsigned char leftOctet = static_cast<unsigned char>(left[same]);
        const unsigned char rightOctet = static_cast<unsigned char>(right[same]);
        if ((leftOctet | rightOctet) >= 0x80)
            break;
        const int difference = jetsql::FoldAscii(leftOctet) - jetsql::FoldAscii(rightOctet);
        if (difference != 0)
            return difference;
    }
    jetsql::Utf8Reader leftReader(left.substr(same));
    jetsql::Utf8Reader rightReader(right.substr(same));
    while (!leftReader.AtEnd() && !rightReader.AtEnd()) {
        const char32_t leftCharacter = jetsql::Fold(leftReader.Next());
        const char32_t rightCharacter = jetsql::Fold(rightReader.Next());
        if (leftCharacter != rightCharacter)
            return leftCharacter < rightCharacter ? -1 : 1;
    }
    return static_cast<int>(rightReader.AtEnd()) - static_cast<int>(leftReader.AtEnd());
}

int CompareStored(const StoredValue& left, const StoredValue& right)
{
    const int rank = Rank(left);
    if (rank != Rank(right))
        return rank - Rank(right);
    switch (rank) {
    case 2:
        return CompareText(TextIn(left), TextIn(right));
    case 1:
        return CompareNumbers(left, right);
    default:
        return 0;
    }
}

StoredValue AsText(const StoredValue& value)
{
    if (!IsNumber(value))
        return value;
    char buffer[40];
    char* const end = buffer + sizeof buffer;
    const auto* whole = std::get_if<qint64>(&value);
    const std::to_chars_result result =
        whole != nullptr ? std::to_chars(buffer, end, *whole)
                         : std::to_chars(buffer, end, std::get<double>(value), std::chars_format::general, 15);
    return QByteArray(buffer, result.ptr - buffer);
}

std::optional<double> NumberIn(std::string_view text)
{
    const auto isBlank = [](char octet) { return octet == ' ' || (octet >= '\t' && octet <= '\r'); };
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    double number = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || !std::isfinite(number))
        return std::nullopt;
    return number;
}

StoredValue AsNumber(const StoredValue& value)
{
    if (IsNull(value))
        return {};
    if (IsNumber(value))
        return RealIn(value);
    const std::optional<double> number = NumberIn(TextIn(value));
    if (!number)
        throw Error(errDataTypeConversion, QStringLiteral("The text cannot be converted to the field's type."));
    return *number;
}

StoredValue AsHeldBy(const engine::Column& column, const StoredValue& value)
{
    if (IsNull(value))
        return {};
    if (column.Type == dbText || column.Type == dbMemo)
        return TextHeldBy(column, AsText(value));
    return NumberHeldBy(column.Type, RealIn(AsNumber(value)));
}

} // namespace dao::query
