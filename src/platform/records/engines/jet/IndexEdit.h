// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/IndexFiller.h"
#include "platform/records/engines/jet/PageAllocation.h"
#include "platform/records/engines/jet/TableDefinition.h"

#include <functional>
#include <optional>

namespace dao::jet
{

/// Changes the tree of one index in the file's transaction. The root keeps its page. Fault when the tree is not as it
/// should be.
class IndexEdit
{
public:
    /// owner: the page that defines the table. index: must live as long as this.
    IndexEdit(PageFile& file, PageAllocation& pages, const IndexDefinition& index)
        : File_(file), Pages_(pages), Index_(index)
    {
    }

    /// Errors: 3251 a key that is too long.
    void Add(const QByteArray& key, RowPlace row);
    /// Fault when there is no such entry.
    void Delete(const QByteArray& key, RowPlace row);
    /// The tree of an index without rows: its page, which is put into its map.
    static quint32 MakeRoot(PageFile& file, PageAllocation& pages, quint32 owner, quint32 map);

private:
    using Entry = IndexPage::Entry;
    using Entries = std::vector<Entry>;

    /// A page taken apart. Of a branch the last of the entries is the last child, whose key is not known.
    struct Node
    {
        quint32 Number = 0;
        bool IsLeaf = true; ///< Not every program that writes such files keeps the level right.
        bool IsChanged = false;
        IndexHead Head{};
        Entries All{};
    };
    /// What became of a page, for the branch above it.
    struct Outcome
    {
        Entries Before;            ///< Pages that were made in front of it, with the last entry of each.
        bool IsGone = false;       ///< It was given back.
        bool IsLonely = false;     ///< A branch of one child.
        std::optional<Entry> Last; ///< The last entry below it, where it is another than before.
    };
    using ChangeLeaf = std::function<void(Node& leaf, Outcome& outcome)>;

    Node Load(quint32 number) const;
    void Write(const Node& node);
    static bool Fits(const Node& node, std::size_t from, std::size_t to);
    static void Cut(const Node& node, std::size_t from, std::size_t to, std::vector<std::size_t>& ends);

    void Change(const Entry& entry, const ChangeLeaf& change);
    Outcome ChangeBelow(quint32 number, int depth, const Entry& entry, const ChangeLeaf& change);
    void TakeOver(Node& branch, std::size_t place, const Outcome& below, Outcome& outcome);
    void JoinLonely(Node& branch, std::size_t place);
    void Store(Node& node, Outcome& outcome);
    void StoreRoot(Node& node);
    Node WithoutFewChildren(Node root);
    Entries SplitOff(Node& node);
    void Unlink(const Node& leaf);
    void SetLinks(quint32 number, std::optional<quint32> previous, std::optional<quint32> next);
    void LinkChildren(const Node& branch);
    quint32 Allocate();
    void Free(quint32 page);

    PageFile& File_;
    PageAllocation& Pages_;
    const IndexDefinition& Index_;
};

} // namespace dao::jet
