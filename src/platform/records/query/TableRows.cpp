// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/TableRows.h"

#include "platform/records/TextCodec.h"

#include <limits>

namespace dao::query
{

namespace
{
constexpr int OrderOfEntry = -1;
} // namespace

void StoreRows::ForEachRow(const engine::TablePtr& table, const Visitor& visit)
{
    using engine::Direction;
    using engine::MemoFetch;
    Row row;
    bool isThere = Store_.ReadEnd(table, OrderOfEntry, Direction::Forward, MemoFetch::Deferred, row);
    while (isThere && visit(row))
        isThere = Store_.ReadNext(table, OrderOfEntry, Direction::Forward, MemoFetch::Deferred, row);
}

StoredValue StoreRows::Memo(const engine::TablePtr& table, int column, qint64 id)
{
    const std::vector<engine::StoredMemo> memos =
        Store_.ReadMemos(table, column, std::span(&id, 1), std::numeric_limits<qint64>::max());
    const engine::StoredMemo& memo = memos.front();
    if (!memo.Octets.isEmpty())
        return OctetsToUtf8(memo.Octets);
    if (memo.Utf8.isNull())
        return {};
    return memo.Utf8;
}

} // namespace dao::query
