// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/RowAccess.h"

#include "platform/records/engines/MemoCheck.h"
#include "platform/records/engines/postgres/Naming.h"
#include "platform/records/query/StoredValues.h"

#include <algorithm>

/// Reading by index.
namespace dao::postgres
{

using engine::Direction;
using engine::IndexKey;
using engine::MemoFetch;

namespace
{

/// Octets of all memos of a row; larger ones are read when they are asked for.
constexpr int SmallMemoOctets = 65536;
/// In front of the fields: id, version, whether the memos are small.
constexpr int LeadingColumns = 3;

bool IsAsSaved(const Result& result, int row, int place, qint64 id)
{
    if (result.IsNull(row, place) || result.IsNull(row, place + 1))
        return result.IsNull(row, place) && result.IsNull(row, place + 1);
    return result.Integer(row, place + 1) == engine::MemoCheck(id, result.Octets(row, place));
}

} // namespace

RowAccess::RowAccess(ServerConnection& connection, const QByteArray& quotedSchema, const engine::Table& table)
    : Connection_(connection), Schema_(quotedSchema), Table_(table), Rows_(RowsTable(quotedSchema, table.Id))
{
}

const IndexKey* RowAccess::IndexAt(int index) const
{
    return index < 0 ? nullptr : &Table_.Indexes[static_cast<std::size_t>(index)];
}

bool RowAccess::IsReadApart(int column) const
{
    return Table_.Columns[static_cast<std::size_t>(column)].IsMemo() && !IsIndexedMemo(Table_, column);
}

QByteArray RowAccess::ReadColumns(MemoFetch memos) const
{
    QList<QByteArray> sizes;
    for (int i = 0; i < static_cast<int>(Table_.Columns.size()); ++i) {
        if (IsReadApart(i))
            sizes += "COALESCE(pg_catalog.octet_length(" + ColumnName(Table_, i) + "), 0)";
    }
    const bool withMemos = memos == MemoFetch::SmallOnes && !sizes.isEmpty();
    // The server knows the size of a memo without reading it.
    const QByteArray isSmall =
        withMemos ? sizes.join(" + ") + " <= " + QByteArray::number(SmallMemoOctets) : QByteArrayLiteral("FALSE");
    QByteArray columns = QByteArrayLiteral("id, version, ") + isSmall;
    for (int i = 0; i < static_cast<int>(Table_.Columns.size()); ++i) {
        const QByteArray name = ColumnName(Table_, i);
        if (!IsReadApart(i))
            columns += ", " + name;
        else if (withMemos)
            columns += ", CASE WHEN " + isSmall + " THEN " + name + " END";
        if (Table_.Columns[static_cast<std::size_t>(i)].IsMemo() && (withMemos || !IsReadApart(i)))
            columns += ", " + CheckName(i);
    }
    return columns;
}

void RowAccess::Take(const Result& result, int at, MemoFetch memos, Row& row) const
{
    row.Id = result.Integer(at, 0);
    row.Version = result.Integer(at, 1);
    row.Cells.clear();
    RowPacker packer(row.Cells);
    const bool hasMemos = result.Truth(at, 2);
    int place = LeadingColumns;
    for (int i = 0; i < static_cast<int>(Table_.Columns.size()); ++i) {
        const engine::Column& column = Table_.Columns[static_cast<std::size_t>(i)];
        const bool isApart = IsReadApart(i);
        const bool isThere = !isApart || memos == MemoFetch::SmallOnes;
        const bool isAsSaved = !column.IsMemo() || (isApart && !hasMemos) || IsAsSaved(result, at, place, row.Id);
        if (!isApart && !isAsSaved) {
            throw Error(errMemoDamaged, QStringLiteral("The content of the field '%1' is damaged: it was changed on "
                                                       "the disk since it was saved.")
                                            .arg(column.Name));
        }
        // A memo that is not what was saved is left to whoever asks for it: the rest of its row is to be had.
        if (isApart && !(hasMemos && isAsSaved))
            packer.AddDeferred();
        else if (result.IsNull(at, place))
            packer.AddNull();
        else if (KindOf(column.Type) == Kind::Octets)
            packer.AddText(result.Octets(at, place));
        else if (KindOf(column.Type) == Kind::Real)
            packer.AddReal(result.Real(at, place));
        else
            packer.AddInteger(result.Integer(at, place));
        if (isThere)
            place += column.IsMemo() ? 2 : 1;
    }
}

QByteArray RowAccess::StretchText(int index, const Stretch& stretch, Direction direction,
                                  std::span<const StoredValue> keys, MemoFetch memos) const
{
    std::vector<QByteArray> names;
    if (const IndexKey* key = IndexAt(index)) {
        for (const int column : key->Columns)
            names.push_back(KeyName(Table_, column));
    }
    QList<QByteArray> conditions;
    for (std::size_t i = 0; i < stretch.Equal; ++i)
        conditions += names[i] + (query::IsNull(keys[i]) ? QByteArrayLiteral(" IS NULL")
                                                         : " = $" + QByteArray::number(static_cast<int>(i) + 2));
    const bool isRowBound = stretch.Limit == Bound::RowAbove || stretch.Limit == Bound::RowBelow;
    const QByteArray parameter =
        isRowBound ? QByteArrayLiteral("$1") : '$' + QByteArray::number(static_cast<int>(stretch.Equal) + 2);
    const QByteArray bounded = isRowBound      ? QByteArray(IdColumn)
                               : names.empty() ? QByteArray()
                                               : names[std::min(stretch.Equal, names.size() - 1)];
    switch (stretch.Limit) {
    case Bound::None:
        break;
    case Bound::Above:
    case Bound::RowAbove:
        conditions += bounded + " > " + parameter;
        break;
    case Bound::Below:
    case Bound::RowBelow:
        conditions += bounded + " < " + parameter;
        break;
    case Bound::IsNull:
        conditions += bounded + " IS NULL";
        break;
    case Bound::IsNotNull:
        conditions += bounded + " IS NOT NULL";
        break;
    }
    QByteArray sql = "SELECT " + ReadColumns(memos) + " FROM " + Rows_;
    if (!conditions.isEmpty())
        sql += " WHERE " + conditions.join(" AND ");
    const bool isForward = direction == Direction::Forward;
    sql += " ORDER BY ";
    for (std::size_t i = stretch.Equal; i < names.size(); ++i)
        sql += names[i] + (isForward ? " NULLS FIRST, " : " DESC NULLS LAST, ");
    return sql + IdColumn + (isForward ? "" : " DESC") + " LIMIT 1";
}

bool RowAccess::ReadFirst(int index, const std::vector<Stretch>& stretches, Direction direction,
                          std::span<const StoredValue> keys, qint64 id, MemoFetch memos, Row& row)
{
    if (stretches.empty())
        return false;
    Command command;
    if (stretches.size() == 1) {
        command.Text = StretchText(index, stretches.front(), direction, keys, memos);
    } else {
        QList<QByteArray> texts;
        for (const Stretch& stretch : stretches)
            texts += '(' + StretchText(index, stretch, direction, keys, memos) + ')';
        // One is tried behind the other, up to the first that has a row.
        command.Text = texts.join(" UNION ALL ") + " LIMIT 1";
    }
    command.Values.AddInteger(id);
    if (const IndexKey* key = IndexAt(index)) {
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const engine::Column& column = Table_.Columns[static_cast<std::size_t>(key->Columns[i])];
            command.Values.Add(KeyValue(column, keys[i]), KindOf(column.Type));
        }
    }
    const Result result = Connection_.Run(command);
    if (result.Rows() == 0)
        return false;
    Take(result, 0, memos, row);
    return true;
}

std::vector<StoredValue> RowAccess::KeysOf(int index, const Row& row) const
{
    std::vector<StoredValue> keys;
    if (const IndexKey* key = IndexAt(index)) {
        for (const int column : key->Columns)
            keys.push_back(query::Kept(query::ViewOf(RowReader::At(row.Cells.data(), column))));
    }
    return keys;
}

void RowAccess::AddBehind(std::vector<Stretch>& stretches, std::size_t columns, bool isForward,
                          std::span<const StoredValue> keys) const
{
    for (std::size_t equal = columns; equal-- > 0;) {
        const bool isNull = query::IsNull(keys[equal]);
        if (isForward) {
            stretches.push_back({equal, isNull ? Bound::IsNotNull : Bound::Above});
        } else if (!isNull) {
            stretches.push_back({equal, Bound::Below});
            stretches.push_back({equal, Bound::IsNull});
        }
    }
}

bool RowAccess::ReadEnd(int index, Direction direction, MemoFetch memos, Row& row)
{
    return ReadFirst(index, {{0, Bound::None}}, direction, {}, 0, memos, row);
}

bool RowAccess::ReadNext(int index, Direction direction, MemoFetch memos, Row& row)
{
    const std::vector<StoredValue> keys = KeysOf(index, row);
    const IndexKey* key = IndexAt(index);
    const bool isForward = direction == Direction::Forward;
    const bool mayRepeat = key == nullptr || !key->Unique || std::any_of(keys.begin(), keys.end(), query::IsNull);
    std::vector<Stretch> stretches;
    if (mayRepeat)
        stretches.push_back({keys.size(), isForward ? Bound::RowAbove : Bound::RowBelow});
    AddBehind(stretches, keys.size(), isForward, keys);
    return ReadFirst(index, stretches, direction, keys, row.Id, memos, row);
}

bool RowAccess::Seek(int index, SeekComparison comparison, std::span<const StoredValue> keys, MemoFetch memos, Row& row)
{
    const bool isForward = comparison == SeekComparison::Equal || comparison == SeekComparison::GreaterOrEqual ||
                           comparison == SeekComparison::Greater;
    std::vector<Stretch> stretches;
    if (comparison != SeekComparison::Greater && comparison != SeekComparison::Less)
        stretches.push_back({keys.size(), Bound::None});
    if (comparison != SeekComparison::Equal)
        AddBehind(stretches, keys.size(), isForward, keys);
    return ReadFirst(index, stretches, isForward ? Direction::Forward : Direction::Backward, keys, 0, memos, row);
}

} // namespace dao::postgres
