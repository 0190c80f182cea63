// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/IndexPage.h"

#include <functional>
#include <optional>

namespace dao::jet
{

/// An entry of an index and where it stands, as long as the file is not changed.
struct IndexPlace
{
    quint32 Leaf = 0;
    int Entry = 0;
    RowPlace Row;
};

/// Reads the tree of one index. Every walk ends: the entries that it passes rise, or it is a Fault.
class IndexTree
{
public:
    IndexTree(PageFile& file, quint32 root) : File_(file), Root_(root) {}

    /// Nothing when the index is empty.
    std::optional<IndexPlace> First();
    std::optional<IndexPlace> Last();
    /// The first entry that begins with the key or stands behind those that do; behind them all if isBehind. row: where
    /// the key is whole, entries of it count by their rows.
    std::optional<IndexPlace> FirstFrom(const QByteArray& key, bool isBehind, std::optional<RowPlace> row = {});
    std::optional<IndexPlace> Next(const IndexPlace& place);
    std::optional<IndexPlace> Previous(const IndexPlace& place);
    /// The entry of a row, by looking at all of them.
    std::optional<IndexPlace> EntryOf(RowPlace row);
    /// Whether the entry begins with the key.
    bool BeginsWith(const IndexPlace& place, const QByteArray& key);

private:
    using ChooseChild = std::function<quint32(const IndexPage&)>;
    IndexPage Descend(const ChooseChild& choose);
    /// A leaf, as it stands now. Good until the next call.
    const IndexPage& LeafAt(quint32 number);
    std::optional<IndexPlace> FirstOnOrBehind(const IndexPage& start, int entry);
    std::optional<IndexPlace> LastOnOrBefore(const IndexPage& start, int entry);
    void RequireRise(const IndexPage& leaf, int entry) const;
    void RequireRise(const IndexPage& left, const IndexPage& right) const;
    [[noreturn]] void RaiseDisorder(quint32 number) const;

    PageFile& File_;
    quint32 Root_;
    std::optional<IndexPage> Leaf_; ///< The last one that was looked at: a walk looks at it for each entry.
};

} // namespace dao::jet
