// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/Naming.h"

#include "platform/records/jetsql/CaseFolding.h"

#include <algorithm>

namespace dao::postgres
{

namespace
{

void AppendUtf8(QByteArray& octets, char32_t character)
{
    const auto trailing = [character](unsigned shift) {
        return static_cast<char>(0x80U | ((character >> shift) & 0x3FU));
    };
    if (character < 0x80) {
        octets.append(static_cast<char>(character));
    } else if (character < 0x800) {
        octets.append(static_cast<char>(0xC0U | (character >> 6U)));
        octets.append(trailing(0));
    } else if (character < 0x10000) {
        octets.append(static_cast<char>(0xE0U | (character >> 12U)));
        octets.append(trailing(6));
        octets.append(trailing(0));
    } else if (character < jetsql::firstInvalid) {
        octets.append(static_cast<char>(0xF0U | (character >> 18U)));
        octets.append(trailing(12));
        octets.append(trailing(6));
        octets.append(trailing(0));
    } else {
        // Behind all characters, and apart from each other.
        octets.append(static_cast<char>(0xFF));
        octets.append(static_cast<char>(character - jetsql::firstInvalid));
    }
}

} // namespace

QByteArray QuotedName(const QString& name)
{
    return '"' + name.toUtf8().replace('"', "\"\"") + '"';
}

QByteArray RowsTable(const QByteArray& quotedSchema, qint64 table)
{
    return quotedSchema + ".rows_" + QByteArray::number(table);
}

QByteArray IdSequence(const QByteArray& quotedSchema, qint64 table)
{
    return quotedSchema + ".ids_" + QByteArray::number(table);
}

QByteArray ColumnName(const engine::Table& table, int column)
{
    return column == table.CounterColumn() ? QByteArray(IdColumn) : 'c' + QByteArray::number(column);
}

QByteArray FoldedName(int column)
{
    return 'c' + QByteArray::number(column) + "_folded";
}

QByteArray EntriesOf(const QByteArray& octets)
{
    // Octets beyond ASCII become three digits, whatever the encoding of the database: an index takes the longest text.
    return "pg_catalog.string_to_array(pg_catalog.translate(pg_catalog.encode(" + octets +
           ", 'escape'), E'\\\\', ''), '|')";
}

QByteArray CheckName(int column)
{
    return 'c' + QByteArray::number(column) + "_check";
}

QByteArray KeyName(const engine::Table& table, int column)
{
    const engine::Column& definition = table.Columns[static_cast<std::size_t>(column)];
    return IsTextType(definition.Type) ? FoldedName(column) : ColumnName(table, column);
}

bool IsIndexedMemo(const engine::Table& table, int column)
{
    if (!table.Columns[static_cast<std::size_t>(column)].IsMemo())
        return false;
    return std::any_of(table.Indexes.begin(), table.Indexes.end(), [column](const engine::IndexKey& index) {
        return std::find(index.Columns.begin(), index.Columns.end(), column) != index.Columns.end();
    });
}

bool HasTwin(const engine::Table& table, int column)
{
    return table.Columns[static_cast<std::size_t>(column)].Type == dbText || IsIndexedMemo(table, column);
}

Kind KindOf(DataTypeEnum type)
{
    switch (type) {
    case dbText:
    case dbMemo:
        return Kind::Octets;
    case dbSingle:
    case dbDouble:
    case dbDate:
        return Kind::Real;
    default:
        return Kind::Integer;
    }
}

QByteArray Folded(std::string_view utf8)
{
    QByteArray folded;
    folded.reserve(static_cast<qsizetype>(utf8.size()) + 1);
    for (jetsql::Utf8Reader reader(utf8); !reader.AtEnd();)
        AppendUtf8(folded, jetsql::Fold(reader.Next()));
    // An empty text is no Null.
    return folded.isNull() ? QByteArrayLiteral("") : folded;
}

StoredValue KeyValue(const engine::Column& column, const StoredValue& value)
{
    const auto* text = std::get_if<QByteArray>(&value);
    if (text == nullptr || !IsTextType(column.Type))
        return value;
    return Folded({text->constData(), static_cast<std::size_t>(text->size())});
}

} // namespace dao::postgres
