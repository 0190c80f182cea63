// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/Properties.h"

#include "platform/records/TextCodec.h"
#include "platform/records/engines/jet/FileFormat.h"
#include "platform/records/engines/jet/TextForm.h"

#include <QStringList>

#include <cstring>

namespace dao::jet
{

namespace
{

constexpr char PropertiesMark[] = "MR2"; // With the closing zero.
constexpr quint16 NamesBlock = 0x80;
constexpr quint16 ColumnBlock = 1;
constexpr int BlockHeader = 6;
constexpr int ValueHeader = 8;
constexpr quint8 OfTheDefinition = 1;

QString RequiredName()
{
    return QStringLiteral("Required");
}

QString ZeroLengthName()
{
    return QStringLiteral("AllowZeroLength");
}

QString NameAt(const OctetView& octets, qsizetype at)
{
    return TextFromUtf8(Utf8FromStored(octets.Part(at + 2, octets.U16(at))).toStdString());
}

QStringList NamesIn(const OctetView& block)
{
    QStringList names;
    for (qsizetype at = 0; at < block.Size(); at += 2 + qsizetype(block.U16(at)))
        names += NameAt(block, at);
    return names;
}

void ReadColumn(const OctetView& block, const QStringList& names, QHash<QString, ColumnProperties>& columns)
{
    ColumnProperties& column = columns[NameAt(block, 4).toCaseFolded()];
    for (qsizetype at = block.U32(0); at < block.Size();) {
        const OctetView value = block.Part(at, block.U16(at));
        const OctetView data = value.Part(ValueHeader, value.U16(6));
        const bool isTruth = value.U8(3) == static_cast<quint8>(ColumnType::Boolean) && data.Size() > 0;
        const QString name = names.value(value.U16(4));
        if (isTruth && name == RequiredName())
            column.IsRequired = data.U8(0) != 0;
        else if (isTruth && name == ZeroLengthName())
            column.AllowsZeroLength = data.U8(0) != 0;
        at += value.Size();
    }
}

void AppendBlock(QByteArray& blob, quint16 kind, const QByteArray& content)
{
    Append(blob, static_cast<quint32>(BlockHeader + content.size()));
    Append(blob, kind);
    blob += content;
}

void AppendTruth(QByteArray& block, quint16 name, bool isTrue)
{
    Append(block, static_cast<quint16>(ValueHeader + 1));
    Append(block, OfTheDefinition);
    Append(block, static_cast<quint8>(ColumnType::Boolean));
    Append(block, name);
    Append(block, quint16(1));
    Append(block, static_cast<quint8>(isTrue));
}

/// names: the places of the two properties in the list of names.
void AppendColumn(QByteArray& blob, const QString& name, const ColumnProperties& properties, quint16 required,
                  quint16 zeroLength)
{
    QByteArray part;
    AppendName(part, name);
    QByteArray block;
    Append(block, static_cast<quint32>(4 + part.size()));
    block += part;
    AppendTruth(block, required, properties.IsRequired);
    AppendTruth(block, zeroLength, properties.AllowsZeroLength);
    AppendBlock(blob, ColumnBlock, block);
}

quint16 PlaceOfName(QStringList& names, const QString& name)
{
    if (!names.contains(name))
        names += name;
    return static_cast<quint16>(names.indexOf(name));
}

} // namespace

QHash<QString, ColumnProperties> ReadColumnProperties(const OctetView& blob)
{
    QHash<QString, ColumnProperties> columns;
    if (blob.Size() < qsizetype(sizeof(PropertiesMark)) ||
        std::memcmp(blob.Data(), PropertiesMark, sizeof(PropertiesMark)) != 0)
        return columns;
    QStringList names;
    for (qsizetype at = sizeof(PropertiesMark); at < blob.Size();) {
        const OctetView block = blob.Part(at, blob.U32(at));
        const quint16 kind = block.U16(4);
        const OctetView content = block.From(BlockHeader);
        if (kind == NamesBlock)
            names = NamesIn(content);
        else if (kind == ColumnBlock)
            ReadColumn(content, names, columns);
        at += block.Size();
    }
    return columns;
}

QByteArray WriteColumnProperties(const std::vector<std::pair<QString, ColumnProperties>>& columns)
{
    QByteArray blob(PropertiesMark, sizeof(PropertiesMark));
    QByteArray names;
    AppendName(names, RequiredName());
    AppendName(names, ZeroLengthName());
    AppendBlock(blob, NamesBlock, names);
    for (const auto& [name, properties] : columns)
        AppendColumn(blob, name, properties, 0, 1);
    return blob;
}

QByteArray AddColumnProperties(const QByteArray& blob, const QString& name, const ColumnProperties& properties)
{
    if (blob.isEmpty())
        return WriteColumnProperties({{name, properties}});
    const OctetView all(blob);
    if (blob.size() < qsizetype(sizeof(PropertiesMark)) ||
        std::memcmp(blob.constData(), PropertiesMark, sizeof(PropertiesMark)) != 0)
        return blob; // Of a kind that nobody reads here.
    QStringList names;
    QByteArray rest;
    for (qsizetype at = sizeof(PropertiesMark); at < all.Size();) {
        const OctetView block = all.Part(at, all.U32(at));
        if (block.Size() < BlockHeader)
            throw Fault(QStringLiteral("the properties of a table do not fit together"));
        if (block.U16(4) == NamesBlock)
            names = NamesIn(block.From(BlockHeader));
        else
            rest += block.Copy();
        at += block.Size();
    }
    const quint16 required = PlaceOfName(names, RequiredName());
    const quint16 zeroLength = PlaceOfName(names, ZeroLengthName());
    QByteArray stored;
    for (const QString& each : names)
        AppendName(stored, each);
    QByteArray result(PropertiesMark, sizeof(PropertiesMark));
    AppendBlock(result, NamesBlock, stored);
    result += rest;
    AppendColumn(result, name, properties, required, zeroLength);
    return result;
}

} // namespace dao::jet
