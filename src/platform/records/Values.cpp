// SPDX-License-Identifier: Apache-2.0
#include "platform/records/Values.h"

#include "platform/records/Error.h"
#include "platform/records/TextCodec.h"

#include <QDateTime>
#include <QLocale>

#include <cfloat>
#include <cmath>
#include <limits>
#include <optional>

namespace dao
{

namespace
{

constexpr double FirstDate = -657434.0;      ///< 1 January 100.
constexpr double BehindLastDate = 2958466.0; ///< 1 January 10000.

[[noreturn]] void RaiseConversion(const engine::Column& column)
{
    throw Error(errDataTypeConversion, QStringLiteral("Data type conversion error in field '%1'.").arg(column.Name));
}

[[noreturn]] void RaiseOverflow(const engine::Column& column)
{
    throw Error(errOverflow, QStringLiteral("Overflow: the value does not fit field '%1'.").arg(column.Name));
}

double DayNumber(const QDateTime& when)
{
    const QDate zero(1899, 12, 30);
    const QDateTime local = when.timeSpec() == Qt::LocalTime || when.timeSpec() == Qt::UTC ? when : when.toUTC();
    return static_cast<double>(zero.daysTo(local.date())) + local.time().msecsSinceStartOfDay() / 86400000.0;
}

std::optional<double> NumberOfText(const QString& text)
{
    bool isNumber = false;
    const double number = QLocale::c().toDouble(text.trimmed(), &isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

/// A whole number exactly, where the value is one; doubles hold only 53 bits.
std::optional<qint64> WholeNumber(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? -1 : 0;
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::UChar:
    case QMetaType::SChar:
        return value.toLongLong();
    default:
        return std::nullopt;
    }
}

double Number(const QVariant& value, const engine::Column& column)
{
    if (const auto whole = WholeNumber(value))
        return static_cast<double>(*whole);
    switch (value.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return value.toDouble();
    case QMetaType::QString: {
        const auto number = NumberOfText(value.toString());
        if (!number)
            RaiseConversion(column);
        return *number;
    }
    case QMetaType::QDateTime:
        return DayNumber(value.toDateTime());
    case QMetaType::QDate:
        return DayNumber(QDateTime(value.toDate(), QTime(0, 0), Qt::UTC));
    case QMetaType::QTime:
        return value.toTime().msecsSinceStartOfDay() / 86400000.0;
    default:
        RaiseConversion(column);
    }
}

qint64 Integer(const QVariant& value, const engine::Column& column, qint64 lowest, qint64 highest)
{
    qint64 whole = 0;
    if (const auto exact = WholeNumber(value)) {
        whole = *exact;
    } else {
        const double number = std::nearbyint(Number(value, column));
        if (!(number >= static_cast<double>(lowest) && number <= static_cast<double>(highest)))
            RaiseOverflow(column);
        whole = static_cast<qint64>(number);
    }
    if (whole < lowest || whole > highest)
        RaiseOverflow(column);
    return whole;
}

qint64 Truth(const QVariant& value, const engine::Column& column)
{
    if (value.typeId() == QMetaType::QString) {
        const QString text = value.toString().trimmed();
        if (text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
            return -1;
        if (text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
            return 0;
    }
    return Number(value, column) != 0 ? -1 : 0;
}

double Real(const QVariant& value, const engine::Column& column)
{
    double number = Number(value, column);
    if (!std::isfinite(number))
        RaiseOverflow(column);
    if (column.Type == dbSingle) {
        if (std::abs(number) > static_cast<double>(FLT_MAX))
            RaiseOverflow(column);
        number = static_cast<double>(static_cast<float>(number));
    }
    if (column.Type == dbDate && !IsStorableDate(number))
        RaiseOverflow(column);
    return number;
}

QString Text(const QVariant& value, const engine::Column& column)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::QChar:
        return QString(value.toChar());
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::Double:
    case QMetaType::Float:
        return QLocale::c().toString(value.toDouble(), 'g', 15);
    case QMetaType::ULongLong:
    case QMetaType::ULong:
        return QString::number(value.toULongLong());
    default:
        break;
    }
    if (const auto whole = WholeNumber(value))
        return QString::number(*whole);
    RaiseConversion(column);
}

StoredValue Convert(const QVariant& value, const engine::Column& column, bool isKey)
{
    if (!value.isValid() || value.typeId() == QMetaType::Nullptr)
        return {};
    switch (column.Type) {
    case dbBoolean:
        return Truth(value, column);
    case dbByte:
        // True is all bits set, in an octet as well.
        if (value.typeId() == QMetaType::Bool)
            return value.toBool() ? qint64{255} : qint64{0};
        return Integer(value, column, 0, 255);
    case dbInteger:
        return Integer(value, column, std::numeric_limits<qint16>::min(), std::numeric_limits<qint16>::max());
    case dbLong:
        return Integer(value, column, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max());
    case dbSingle:
    case dbDouble:
    case dbDate:
        return Real(value, column);
    case dbText:
    case dbMemo:
        break;
    }
    const QString text = Text(value, column);
    if (!isKey) {
        if (column.Type == dbText && text.size() > column.Size) {
            throw Error(
                errFieldTooSmall,
                QStringLiteral("The field '%1' is too small for %2 characters.").arg(column.Name).arg(text.size()));
        }
        if (text.isEmpty() && !column.AllowZeroLength)
            return {};
    }
    // An empty text has to stay apart from Null.
    return text.isEmpty() ? QByteArrayLiteral("") : TextToUtf8(text);
}

} // namespace

StoredValue ToStoredValue(const QVariant& value, const engine::Column& column)
{
    return Convert(value, column, false);
}

StoredValue ToStoredKey(const QVariant& value, const engine::Column& column)
{
    return Convert(value, column, true);
}

QVariant FromStoredValue(const StoredValue& value, DataTypeEnum type)
{
    CellView cell;
    if (const auto* integer = std::get_if<qint64>(&value)) {
        cell.CellKind = CellView::Kind::Integer;
        cell.Integer = *integer;
    } else if (const auto* real = std::get_if<double>(&value)) {
        cell.CellKind = CellView::Kind::Real;
        cell.Real = *real;
    } else if (const auto* text = std::get_if<QByteArray>(&value)) {
        cell.CellKind = CellView::Kind::Text;
        cell.Text = {text->constData(), static_cast<std::size_t>(text->size())};
    }
    return FromCell(cell, type);
}

QVariant FromCell(const CellView& cell, DataTypeEnum type)
{
    if (cell.CellKind == CellView::Kind::Null || cell.CellKind == CellView::Kind::Deferred)
        return {};
    if (cell.CellKind == CellView::Kind::Text)
        return TextFromUtf8(cell.Text);
    const double real = cell.CellKind == CellView::Kind::Real ? cell.Real : static_cast<double>(cell.Integer);
    switch (type) {
    case dbSingle:
    case dbDouble:
    case dbDate:
        return real;
    case dbBoolean:
        return real != 0;
    default:
        break;
    }
    if (cell.CellKind == CellView::Kind::Real)
        return cell.Real;
    if (cell.Integer >= std::numeric_limits<qint32>::min() && cell.Integer <= std::numeric_limits<qint32>::max())
        return static_cast<int>(cell.Integer);
    return cell.Integer;
}

bool IsStorableDate(double day)
{
    return day >= FirstDate && day < BehindLastDate;
}

int OctetsOfType(DataTypeEnum type)
{
    switch (type) {
    case dbBoolean:
    case dbByte:
        return 1;
    case dbInteger:
        return 2;
    case dbLong:
    case dbSingle:
        return 4;
    case dbDouble:
    case dbDate:
        return 8;
    default:
        return 0;
    }
}

} // namespace dao
