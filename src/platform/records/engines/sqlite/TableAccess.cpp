// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/TableAccess.h"

#include "platform/records/engines/sqlite/FileFormat.h"
#include "platform/records/engines/sqlite/SchemaTables.h"
#include "platform/records/engines/sqlite/SqlFunctions.h"
#include "platform/records/engines/sqlite/SqlRenderer.h"
#include "platform/records/query/StoredValues.h"

#include <QRandomGenerator>

#include <algorithm>

namespace dao::sqlite
{

using engine::Column;
using engine::Direction;
using engine::IndexKey;
using engine::MemoFetch;

namespace
{

/// The kinds of statement that are kept under a number; StretchKey's numbers lie above.
enum StatementKind : quint64
{
    RowById = 1,
    RowByIdWithMemos,
    RowExists,
    RowCount,
    RowInsert,
    RowDelete,
    HighestRow,
    FirstStretch = 1 << 16
};

/// Columns before the table's own in what is read.
constexpr int LeadingColumns = 3;

} // namespace

TableAccess::TableAccess(Connection& connection, engine::TablePtr table, bool hasChecks)
    : Connection_(connection),
      Table_(std::move(table)),
      Name_(QuoteName(Table_->Name)),
      HasChecks_(hasChecks),
      Memos_(connection, Table_, hasChecks)
{
    for (const Column& column : Table_->Columns)
        IsReadApart_.push_back(column.IsMemo());
    for (const IndexKey& index : Table_->Indexes) {
        for (const int column : index.Columns)
            IsReadApart_[static_cast<std::size_t>(column)] = false;
    }
}

template <typename MakeText>
const Statement& TableAccess::Prepared(quint64 key, const MakeText& makeText)
{
    const auto found = Statements_.find(key);
    if (found != Statements_.end())
        return found->second;
    return Statements_.emplace(key, Statement(Connection_, makeText())).first->second;
}

const IndexKey* TableAccess::IndexAt(int index) const
{
    return index < 0 ? nullptr : &Table_->Indexes[static_cast<std::size_t>(index)];
}

QByteArray TableAccess::ReadColumns(MemoFetch memos) const
{
    QByteArray columns = QByteArray(RowIdName) + ", " + VersionColumn + ", " + OctetsColumn;
    const QByteArray whenSmall =
        ", CASE WHEN " + QByteArray(OctetsColumn) + " <= " + QByteArray::number(SmallMemoOctets) + " THEN ";
    for (std::size_t i = 0; i < Table_->Columns.size(); ++i) {
        const Column& column = Table_->Columns[i];
        if (!IsReadApart_[i] && !column.IsMemo()) {
            columns += ", " + QuoteName(column.Name);
        } else if (!IsReadApart_[i]) {
            columns += ", " + QuoteName(column.Name);
            if (HasChecks_)
                columns += ", " + CheckColumn(column);
        } else if (memos == MemoFetch::SmallOnes) {
            columns += whenSmall + QuoteName(column.Name) + " END";
            if (HasChecks_)
                columns += whenSmall + CheckColumn(column) + " END";
        }
    }
    return columns;
}

void TableAccess::Take(const StatementUse& use, MemoFetch memos, Row& row) const
{
    row.Id = use.Integer(0);
    row.Version = use.Integer(1);
    row.Cells.clear();
    RowPacker packer(row.Cells);
    const bool hasMemos = memos == MemoFetch::SmallOnes && !use.IsNull(2) && use.Integer(2) <= SmallMemoOctets;
    const int memoPlaces = HasChecks_ ? 2 : 1;
    const auto isAsSaved = [&](int place) { return !HasChecks_ || IsMemoAsSaved(use, place, row.Id); };
    int place = LeadingColumns;
    for (std::size_t i = 0; i < IsReadApart_.size(); ++i) {
        const bool isMemo = Table_->Columns[i].IsMemo();
        if (!IsReadApart_[i] && isMemo && !isAsSaved(place)) {
            throw Error(errMemoDamaged,
                        QStringLiteral("The content of the field '%1' is damaged: it was changed on the "
                                       "disk since it was saved.")
                            .arg(Table_->Columns[i].Name));
        }
        // A memo that is not what was saved is left to whoever asks for it: the rest of its row is to be had.
        if (!IsReadApart_[i] || (hasMemos && isAsSaved(place)))
            use.PackCell(place, packer);
        else
            packer.AddDeferred();
        if (!IsReadApart_[i] || memos == MemoFetch::SmallOnes)
            place += isMemo ? memoPlaces : 1;
    }
}

QByteArray TableAccess::StretchText(int index, const Stretch& stretch, Direction direction,
                                    std::span<const StoredValue> keys, MemoFetch memos) const
{
    const IndexKey* key = IndexAt(index);
    QByteArray sql = "SELECT " + ReadColumns(memos) + " FROM " + Name_;
    std::vector<QByteArray> names;
    if (key != nullptr) {
        if (!IsRowIdOrder(*Table_, *key))
            sql += " INDEXED BY " + IndexName(*Table_, *key);
        for (const int column : key->Columns)
            names.push_back(QuoteName(Table_->Columns[static_cast<std::size_t>(column)].Name));
    }
    QList<QByteArray> conditions;
    for (std::size_t i = 0; i < stretch.Equal; ++i)
        conditions += names[i] + (query::IsNull(keys[i]) ? QByteArrayLiteral(" IS NULL")
                                                         : " = ?" + QByteArray::number(static_cast<int>(i) + 1));
    const QByteArray parameter = '?' + QByteArray::number(static_cast<int>(stretch.Equal) + 1);
    const QByteArray bounded = stretch.Equal < names.size() ? names[stretch.Equal] : QByteArray(RowIdName);
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
    case Bound::IsNotNull: {
        // Said as a comparison, which starts behind the Nulls instead of walking through them.
        const int column = key->Columns[stretch.Equal];
        const DataTypeEnum type = Table_->Columns[static_cast<std::size_t>(column)].Type;
        conditions += bounded + (type == dbText || type == dbMemo ? " >= ''" : " >= -9e999");
        break;
    }
    }
    if (!conditions.isEmpty())
        sql += " WHERE " + conditions.join(" AND ");
    const QByteArray order = direction == Direction::Backward ? QByteArrayLiteral(" DESC") : QByteArray();
    sql += " ORDER BY ";
    for (std::size_t i = stretch.Equal; i < names.size(); ++i)
        sql += names[i] + order + ", ";
    return sql + RowIdName + order + " LIMIT 1";
}

bool TableAccess::ReadStretch(int index, const Stretch& stretch, Direction direction, std::span<const StoredValue> keys,
                              qint64 id, MemoFetch memos, Row& row)
{
    quint64 nulls = 0;
    for (std::size_t i = 0; i < stretch.Equal; ++i)
        nulls |= quint64{query::IsNull(keys[i])} << i;
    quint64 key = static_cast<quint64>(index) + 1;
    key = key << 16 | nulls;
    key = key << 8 | stretch.Equal;
    key = key << 4 | static_cast<quint64>(stretch.Limit);
    key = key << 1 | static_cast<quint64>(direction == Direction::Backward);
    key = key << 1 | static_cast<quint64>(memos == MemoFetch::SmallOnes);
    key = FirstStretch + (key << 17);
    const Statement& statement = Prepared(key, [&] { return StretchText(index, stretch, direction, keys, memos); });
    StatementUse use(statement);
    for (std::size_t i = 0; i < stretch.Equal; ++i) {
        if (!query::IsNull(keys[i]))
            use.Bind(static_cast<int>(i) + 1, keys[i]);
    }
    const int next = static_cast<int>(stretch.Equal) + 1;
    switch (stretch.Limit) {
    case Bound::Above:
    case Bound::Below:
        use.Bind(next, keys[stretch.Equal]);
        break;
    case Bound::RowAbove:
    case Bound::RowBelow:
        use.Bind(next, id);
        break;
    default:
        break;
    }
    if (!use.Step())
        return false;
    Take(use, memos, row);
    return true;
}

std::vector<StoredValue> TableAccess::KeysOf(int index, const Row& row) const
{
    std::vector<StoredValue> keys;
    if (const IndexKey* key = IndexAt(index)) {
        for (const int column : key->Columns)
            keys.push_back(query::Kept(query::ViewOf(RowReader::At(row.Cells.data(), column))));
    }
    return keys;
}

bool TableAccess::ReadEnd(int index, Direction direction, MemoFetch memos, Row& row)
{
    return ReadStretch(index, {0, Bound::None}, direction, {}, 0, memos, row);
}

bool TableAccess::ReadNext(int index, Direction direction, MemoFetch memos, Row& row)
{
    const std::vector<StoredValue> keys = KeysOf(index, row);
    const qint64 id = row.Id;
    if (!ReadBehind(index, direction, keys, id, memos, row))
        return false;
    RequireProgress(index, direction, keys, id, row);
    return true;
}

void TableAccess::RequireProgress(int index, Direction direction, std::span<const StoredValue> keys, qint64 id,
                                  const Row& found) const
{
    int order = 0;
    const std::vector<StoredValue> foundKeys = KeysOf(index, found);
    for (std::size_t i = 0; i < keys.size() && order == 0; ++i)
        order = query::CompareStored(foundKeys[i], keys[i]);
    if (order == 0)
        order = found.Id < id ? -1 : static_cast<int>(found.Id > id);
    if (direction == Direction::Forward ? order > 0 : order < 0)
        return;
    throw Error(errFileDamaged, QStringLiteral("The database '%1' is damaged: the rows of the table '%2' do not stand "
                                               "in their order.")
                                    .arg(Connection_.FileName(), Table_->Name));
}

bool TableAccess::ReadBehind(int index, Direction direction, std::span<const StoredValue> keys, qint64 id,
                             MemoFetch memos, Row& row)
{
    const IndexKey* key = IndexAt(index);
    const bool isForward = direction == Direction::Forward;
    if (key != nullptr && IsRowIdOrder(*Table_, *key))
        return ReadStretch(-1, {0, isForward ? Bound::RowAbove : Bound::RowBelow}, direction, {}, id, memos, row);
    // A unique key without Nulls has no second row.
    const bool mayRepeat = key == nullptr || !key->Unique || std::any_of(keys.begin(), keys.end(), query::IsNull);
    const Bound rowBound = isForward ? Bound::RowAbove : Bound::RowBelow;
    if (mayRepeat && ReadStretch(index, {keys.size(), rowBound}, direction, keys, id, memos, row))
        return true;
    for (std::size_t equal = keys.size(); equal-- > 0;) {
        const bool isNull = query::IsNull(keys[equal]);
        if (isForward) {
            if (ReadStretch(index, {equal, isNull ? Bound::IsNotNull : Bound::Above}, direction, keys, id, memos, row))
                return true;
        } else if (!isNull) {
            if (ReadStretch(index, {equal, Bound::Below}, direction, keys, id, memos, row) ||
                ReadStretch(index, {equal, Bound::IsNull}, direction, keys, id, memos, row))
                return true;
        }
    }
    return false;
}

bool TableAccess::Seek(int index, SeekComparison comparison, std::span<const StoredValue> keys, MemoFetch memos,
                       Row& row)
{
    const bool isForward = comparison == SeekComparison::Equal || comparison == SeekComparison::GreaterOrEqual ||
                           comparison == SeekComparison::Greater;
    const Direction direction = isForward ? Direction::Forward : Direction::Backward;
    const bool meetsEqual = comparison != SeekComparison::Greater && comparison != SeekComparison::Less;
    if (meetsEqual && ReadStretch(index, {keys.size(), Bound::None}, direction, keys, 0, memos, row))
        return true;
    if (comparison == SeekComparison::Equal)
        return false;
    for (std::size_t equal = keys.size(); equal-- > 0;) {
        const bool isNull = query::IsNull(keys[equal]);
        if (isForward) {
            if (ReadStretch(index, {equal, isNull ? Bound::IsNotNull : Bound::Above}, direction, keys, 0, memos, row))
                return true;
        } else if (!isNull) {
            if (ReadStretch(index, {equal, Bound::Below}, direction, keys, 0, memos, row) ||
                ReadStretch(index, {equal, Bound::IsNull}, direction, keys, 0, memos, row))
                return true;
        }
    }
    return false;
}

bool TableAccess::ReadRow(qint64 id, MemoFetch memos, Row& row)
{
    const quint64 kind = memos == MemoFetch::SmallOnes ? RowByIdWithMemos : RowById;
    const Statement& statement = Prepared(
        kind, [&] { return "SELECT " + ReadColumns(memos) + " FROM " + Name_ + " WHERE " + RowIdName + " = ?"; });
    StatementUse use(statement);
    use.Bind(1, id);
    if (!use.Step())
        return false;
    Take(use, memos, row);
    return true;
}

qint64 TableAccess::CountRows()
{
    StatementUse use(Prepared(RowCount, [&] { return "SELECT count(*) FROM " + Name_; }));
    return use.Step() ? use.Integer(0) : 0;
}

bool TableAccess::Exists(qint64 id)
{
    StatementUse use(
        Prepared(RowExists, [&] { return "SELECT 1 FROM " + Name_ + " WHERE " + QByteArray(RowIdName) + " = ?"; }));
    use.Bind(1, id);
    return use.Step();
}

qint64 TableAccess::NextRowId()
{
    StatementUse use(Prepared(
        HighestRow, [&] { return "SELECT coalesce(max(" + QByteArray(RowIdName) + "), 0) + 1 FROM " + Name_; }));
    return use.Step() ? use.Integer(0) : 1;
}

qint64 TableAccess::Insert(std::span<const engine::Assignment> values)
{
    const Statement& statement = Prepared(RowInsert, [&] {
        QByteArray columns = QByteArray(RowIdName) + ", " + VersionColumn + ", " + OctetsColumn;
        QByteArray places = "?1, ?2, ?3";
        int place = 4;
        for (const Column& column : Table_->Columns) {
            const QByteArray parameter = '?' + QByteArray::number(place++);
            if (column.IsCounter())
                continue; // the row id itself
            columns += ", " + QuoteName(column.Name);
            places += ", " + parameter;
            if (HasChecks_ && column.IsMemo()) {
                columns += ", " + CheckColumn(column);
                places += ", jet_check(" + parameter + ", ?1)";
            }
        }
        return "INSERT INTO " + Name_ + " (" + columns + ") VALUES (" + places + ")";
    });
    // The check of a memo is told by the row's id, so that the id is chosen here and not by SQLite.
    qint64 id = -1;
    StatementUse use(statement);
    qint64 memoOctets = 0;
    for (const engine::Assignment& assignment : values) {
        const auto column = static_cast<std::size_t>(assignment.Column);
        if (Table_->Columns[column].IsCounter()) {
            const auto* number = std::get_if<qint64>(assignment.Value);
            id = number != nullptr ? *number : id;
            continue;
        }
        use.Bind(4 + assignment.Column, *assignment.Value);
        if (const auto* text = std::get_if<QByteArray>(assignment.Value);
            text != nullptr && Table_->Columns[column].IsMemo())
            memoOctets += text->size();
    }
    if (id < 0)
        id = NextRowId();
    use.Bind(1, id);
    // A row that later takes the id of a deleted one must not pass for it.
    use.Bind(2, static_cast<qint64>(QRandomGenerator::global()->generate() >> 1));
    use.Bind(3, memoOctets);
    use.Run();
    return id;
}

QByteArray TableAccess::UpdateText(const std::string& changed, bool changesMemos) const
{
    QByteArray sql = "UPDATE " + Name_ + " SET " + VersionColumn + " = " + VersionColumn + " + 1";
    if (changesMemos)
        sql += QByteArrayLiteral(", ") + OctetsColumn + " = ?3";
    int place = 4;
    for (std::size_t i = 0; i < changed.size(); ++i) {
        if (changed[i] != '+')
            continue;
        const Column& column = Table_->Columns[i];
        const QByteArray parameter = '?' + QByteArray::number(place++);
        sql += ", " + QuoteName(column.Name) + " = " + parameter;
        if (HasChecks_ && column.IsMemo())
            sql += ", " + CheckColumn(column) + " = jet_check(" + parameter + ", ?1)";
    }
    return sql + " WHERE " + RowIdName + " = ?1 AND " + VersionColumn + " = ?2";
}

bool TableAccess::Update(qint64 id, qint64 version, std::span<const engine::Assignment> values)
{
    std::string key(Table_->Columns.size(), '-');
    std::vector<const StoredValue*> given(key.size(), nullptr);
    qint64 memoOctets = 0;
    for (const engine::Assignment& assignment : values) {
        const auto column = static_cast<std::size_t>(assignment.Column);
        key[column] = '+';
        given[column] = assignment.Value;
        if (const auto* text = std::get_if<QByteArray>(assignment.Value);
            text != nullptr && Table_->Columns[column].IsMemo())
            memoOctets += text->size();
    }
    std::size_t memos = 0;
    std::size_t changedMemos = 0;
    for (std::size_t i = 0; i < key.size(); ++i) {
        memos += Table_->Columns[i].IsMemo();
        changedMemos += Table_->Columns[i].IsMemo() && key[i] == '+';
    }
    auto found = Updates_.find(key);
    if (found == Updates_.end())
        found = Updates_.emplace(key, Statement(Connection_, UpdateText(key, changedMemos > 0))).first;
    StatementUse use(found->second);
    use.Bind(1, id);
    use.Bind(2, version);
    // With some memos left as they are the sum is not known.
    if (changedMemos > 0 && changedMemos == memos)
        use.Bind(3, memoOctets);
    int place = 4;
    for (const StoredValue* value : given) {
        if (value != nullptr)
            use.Bind(place++, *value);
    }
    use.Run();
    return Connection_.Changes() > 0;
}

bool TableAccess::Delete(qint64 id)
{
    StatementUse use(
        Prepared(RowDelete, [&] { return "DELETE FROM " + Name_ + " WHERE " + QByteArray(RowIdName) + " = ?"; }));
    use.Bind(1, id);
    use.Run();
    return Connection_.Changes() > 0;
}

} // namespace dao::sqlite
