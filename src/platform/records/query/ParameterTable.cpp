// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/ParameterTable.h"

#include "platform/records/Error.h"
#include "platform/records/TextCodec.h"
#include "platform/records/Values.h"
#include "platform/records/query/StoredValues.h"

namespace dao::query
{

namespace
{

/// A parameter's value as what it is.
StoredValue ToStored(const QVariant& value)
{
    engine::Column column;
    column.Name = QStringLiteral("of the query");
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return {};
    case QMetaType::Bool:
        return value.toBool() ? qint64{-1} : qint64{0};
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        return static_cast<qint64>(value.toLongLong());
    case QMetaType::QString:
        return TextToUtf8(value.toString());
    case QMetaType::QDateTime:
    case QMetaType::QDate:
    case QMetaType::QTime:
        column.Type = dbDate;
        return ToStoredValue(value, column);
    default:
        column.Type = dbDouble;
        return ToStoredValue(value, column);
    }
}

const QVariant& ValueOf(const QString& name, const engine::ParameterValues& values)
{
    for (const engine::ParameterValue& value : values) {
        if (value.Name.compare(name, Qt::CaseInsensitive) == 0)
            return value.Value;
    }
    throw Error(errTooFewParameters, QStringLiteral("Too few parameters. There is no field or value '%1'.").arg(name));
}

} // namespace

ParameterTable::ParameterTable(const BoundParameters& parameters, const engine::ParameterValues& values)
{
    Values_.reserve(static_cast<std::size_t>(parameters.Names.size()));
    for (const QString& name : parameters.Names) {
        const std::size_t place = Values_.size();
        Forms& forms = Values_.emplace_back();
        forms.AsIs = ToStored(ValueOf(name, values));
        if (parameters.AreNumbers[place])
            forms.AsNumber = AsNumber(forms.AsIs);
        if (parameters.AreTexts[place])
            forms.AsText = AsText(forms.AsIs);
    }
}

const StoredValue& ParameterTable::At(const BoundParameter& parameter) const
{
    const Forms& forms = Values_[static_cast<std::size_t>(parameter.Index)];
    switch (parameter.Use) {
    case ParameterUse::AsNumber:
        return forms.AsNumber;
    case ParameterUse::AsText:
        return forms.AsText;
    default:
        return forms.AsIs;
    }
}

} // namespace dao::query
