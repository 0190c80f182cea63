// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/Arithmetic.h"

#include "platform/records/query/StoredValues.h"

#include <QtNumeric>

#include <cmath>
#include <limits>

namespace dao::query
{

namespace
{

constexpr double BehindWhole = 9223372036854775808.0;    ///< 2^63.
constexpr double BeginOfWholeReals = 4503599627370496.0; ///< 2^52: no floating-point number beyond has a fraction.

StoredValue RealResult(double number)
{
    return std::isnan(number) ? StoredValue() : number;
}

/// exact: whether it overflows, and the result. Beyond 64 bits the numbers count as floating-point ones.
template <typename Exact, typename Rounded>
StoredValue Combine(const StoredValue& left, const StoredValue& right, Exact exact, Rounded rounded)
{
    if (IsNull(left) || IsNull(right))
        return {};
    const auto* leftWhole = std::get_if<qint64>(&left);
    const auto* rightWhole = std::get_if<qint64>(&right);
    qint64 whole = 0;
    if (leftWhole != nullptr && rightWhole != nullptr && !exact(*leftWhole, *rightWhole, &whole))
        return whole;
    return RealResult(rounded(RealIn(left), RealIn(right)));
}

qint64 Rounded(const StoredValue& value)
{
    double number = RealIn(value);
    if (number > -BeginOfWholeReals && number < BeginOfWholeReals)
        number = std::trunc(number + (number < 0 ? -0.5 : 0.5));
    if (number >= BehindWhole)
        return std::numeric_limits<qint64>::max();
    if (number <= -BehindWhole)
        return std::numeric_limits<qint64>::min();
    return static_cast<qint64>(number);
}

} // namespace

StoredValue Sum(const StoredValue& left, const StoredValue& right)
{
    return Combine(
        left, right, [](qint64 a, qint64 b, qint64* result) { return qAddOverflow(a, b, result); },
        [](double a, double b) { return a + b; });
}

StoredValue Difference(const StoredValue& left, const StoredValue& right)
{
    return Combine(
        left, right, [](qint64 a, qint64 b, qint64* result) { return qSubOverflow(a, b, result); },
        [](double a, double b) { return a - b; });
}

StoredValue Product(const StoredValue& left, const StoredValue& right)
{
    return Combine(
        left, right, [](qint64 a, qint64 b, qint64* result) { return qMulOverflow(a, b, result); },
        [](double a, double b) { return a * b; });
}

StoredValue Quotient(const StoredValue& left, const StoredValue& right)
{
    if (IsNull(left) || IsNull(right) || RealIn(right) == 0)
        return {};
    return RealResult(RealIn(left) / RealIn(right));
}

StoredValue Remainder(const StoredValue& left, const StoredValue& right)
{
    if (IsNull(left) || IsNull(right))
        return {};
    const qint64 divisor = Rounded(right);
    if (divisor == 0)
        return {};
    // The lowest whole number has no counterpart to be divided by -1 into.
    return divisor == -1 ? qint64{0} : Rounded(left) % divisor;
}

StoredValue Concatenation(const StoredValue& left, const StoredValue& right)
{
    if (IsNull(left) && IsNull(right))
        return {};
    const StoredValue leftText = AsText(left);
    const StoredValue rightText = AsText(right);
    const std::string_view first = TextIn(leftText);
    const std::string_view second = TextIn(rightText);
    QByteArray joined;
    joined.reserve(static_cast<qsizetype>(first.size()) + static_cast<qsizetype>(second.size()));
    joined.append(first.data(), static_cast<qsizetype>(first.size()));
    joined.append(second.data(), static_cast<qsizetype>(second.size()));
    return joined;
}

std::optional<bool> IsLike(const jetsql::LikePattern& pattern, const StoredValue& text)
{
    if (IsNull(text))
        return std::nullopt;
    if (!IsNumber(text))
        return pattern.MatchesUtf8(TextIn(text));
    const StoredValue asText = AsText(text);
    return pattern.MatchesUtf8(TextIn(asText));
}

} // namespace dao::query
