// SPDX-License-Identifier: Apache-2.0
#include "platform/records/Field.h"

#include "platform/records/Error.h"
#include "platform/records/Recordset.h"
#include "platform/records/Values.h"

namespace dao
{

namespace
{

constexpr int DefaultTextSize = 255;

int SizeOf(DataTypeEnum type, int size)
{
    if (type == dbText)
        return size > 0 ? size : DefaultTextSize;
    return OctetsOfType(type);
}

Recordset& Require(Recordset* recordset)
{
    if (recordset == nullptr)
        throw Error(errObjectInvalid, QStringLiteral("Object invalid or no longer set: the field is a definition."));
    return *recordset;
}

} // namespace

Field::Field(const QString& name, DataTypeEnum type, int size) : Name_(name), Type_(type), Size_(SizeOf(type, size)) {}

QVariant Field::Value() const
{
    return Require(Recordset_).ValueOf(Ordinal_);
}

void Field::SetValue(const QVariant& value)
{
    Require(Recordset_).SetValueOf(Ordinal_, value);
}

QByteArray Field::Octets(MemoTrust trust) const
{
    return Require(Recordset_).OctetsOf(Ordinal_, trust);
}

MemoBeginning Field::Beginning(qsizetype mostOctets) const
{
    return Require(Recordset_).BeginningOf(Ordinal_, mostOctets);
}

quint64 Field::Hash() const
{
    return Require(Recordset_).HashOf(Ordinal_);
}

void Field::SetOctets(const QByteArray& octets)
{
    Require(Recordset_).SetOctetsOf(Ordinal_, octets);
}

void Recordset::Bind(Field& field, int ordinal)
{
    field.Recordset_ = this;
    field.Ordinal_ = ordinal;
}

} // namespace dao
