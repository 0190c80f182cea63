// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/TableRows.h"

#include "platform/records/TextCodec.h"
#include "platform/records/query/StoredValues.h"

#include <algorithm>
#include <limits>

namespace dao::query
{

namespace
{
constexpr int OrderOfEntry = -1;

/// The index of that column alone: its rows of one value are in order of entry. -1 for none.
int IndexOver(const engine::Table& table, int column)
{
    const std::vector<int> wanted{column};
    const auto found = std::find_if(table.Indexes.begin(), table.Indexes.end(),
                                    [&](const engine::IndexKey& index) { return index.Columns == wanted; });
    return found == table.Indexes.end() ? -1 : static_cast<int>(found - table.Indexes.begin());
}
} // namespace

StoredValue KeyFor(const engine::Column& column, const StoredValue& number)
{
    try {
        StoredValue held = AsHeldBy(column, number);
        return CompareStored(held, number) == 0 ? held : StoredValue();
    } catch (const Error&) {
        return {};
    }
}
StoredValue TextOf(const engine::StoredMemo& memo)
{
    if (!memo.Octets.isEmpty())
        return OctetsToUtf8(memo.Octets);
    if (memo.Utf8.isNull())
        return {};
    return memo.Utf8;
}

StoredValue WholeMemo(engine::Store& store, const engine::TablePtr& table, int column, qint64 id)
{
    const std::vector<engine::StoredMemo> memos =
        store.ReadMemos(table, column, std::span(&id, 1), std::numeric_limits<qint64>::max());
    if (memos.front().IsDamaged)
        throw Error(errMemoDamaged, QStringLiteral("The content of the field '%1' of the table '%2' is damaged.")
                                        .arg(table->Columns[static_cast<std::size_t>(column)].Name, table->Name));
    return TextOf(memos.front());
}

void StoreRows::ForEachRow(const engine::TablePtr& table, const Visitor& visit)
{
    using engine::Direction;
    using engine::MemoFetch;
    Row row;
    bool isThere = Store_.ReadEnd(table, OrderOfEntry, Direction::Forward, MemoFetch::Deferred, row);
    while (isThere && visit(row))
        isThere = Store_.ReadNext(table, OrderOfEntry, Direction::Forward, MemoFetch::Deferred, row);
}

bool StoreRows::ForEachRowWith(const engine::TablePtr& table, int column, const StoredValue& value,
                               const Visitor& visit)
{
    const int index = IndexOver(*table, column);
    const engine::Column& definition = table->Columns[static_cast<std::size_t>(column)];
    const bool isText = definition.Type == dbText || definition.Type == dbMemo;
    if (index < 0 || isText != std::holds_alternative<QByteArray>(value))
        return false;
    const StoredValue key = isText ? value : KeyFor(definition, value);
    Row row;
    bool isThere = !IsNull(key) && Store_.Seek(table, index, SeekComparison::Equal, std::span(&key, 1),
                                               engine::MemoFetch::Deferred, row);
    while (isThere && visit(row)) {
        isThere = Store_.ReadNext(table, index, engine::Direction::Forward, engine::MemoFetch::Deferred, row) &&
                  CompareStored(ViewOf(RowReader::At(row.Cells.data(), column)), key) == 0;
    }
    return true;
}

StoredValue StoreRows::Memo(const engine::TablePtr& table, int column, qint64 id)
{
    const std::vector<engine::StoredMemo> memos =
        Store_.ReadMemos(table, column, std::span(&id, 1), std::numeric_limits<qint64>::max());
    return TextOf(memos.front());
}

} // namespace dao::query
