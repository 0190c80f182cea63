// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/Engine.h"

#include "platform/records/RowMark.h"
#include "platform/records/TextCodec.h"

namespace dao::engine
{

MemoBeginning BeginningOf(const StoredMemo& memo, qsizetype mostOctets)
{
    const QByteArray utf8 =
        memo.Octets.isNull() ? memo.Utf8 : OctetsToUtf8(memo.Octets.first(qMin(memo.Octets.size(), mostOctets)));
    if (utf8.size() > mostOctets)
        return {utf8.first(mostOctets), false};
    return {utf8, memo.Size() <= utf8.size()};
}

std::vector<std::optional<MemoBeginning>> Store::ReadMemoBeginnings(const TablePtr& table, int column,
                                                                    std::span<const qint64> ids, qsizetype mostOctets)
{
    // One at a time: memos may be large, and little of them is kept.
    const StoredMemo memo = ReadMemos(table, column, ids.first(1), 0).front();
    if (!memo.HasRow)
        return {std::nullopt};
    return {BeginningOf(memo, mostOctets)};
}

quint64 Store::MarkOf(const jetsql::SelectStatement& select)
{
    const std::size_t columns = Describe(select).Columns.size();
    RowMark mark;
    Select(select, {}, ResultPart::Values, [&](std::span<const qint64>, std::string_view cells) {
        RowReader reader(cells.data());
        RowMark row;
        for (std::size_t i = 0; i < columns; ++i)
            row.Add(HashOf(reader.Next()));
        mark.Add(row.Number());
    });
    return mark.Number();
}

} // namespace dao::engine
