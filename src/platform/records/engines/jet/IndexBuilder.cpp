// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/IndexBuilder.h"

#include "platform/records/Error.h"

#include <algorithm>

namespace dao::jet
{

void IndexBuilder::Add(const QByteArray& key, RowPlace row, bool isNull)
{
    if (key.size() > LargestKey)
        throw Error(errNotSupported, QStringLiteral("The values of an index of a Jet file are too long together."));
    if (!isNull || (Flags_ & IgnoresNulls) == 0)
        Entries_.push_back({{key, row, 0}, isNull});
}

quint32 IndexBuilder::CountDistinct(bool& repeats) const
{
    quint32 distinct = 0;
    for (std::size_t i = 0; i < Entries_.size(); ++i) {
        const bool isSame = i > 0 && Entries_[i].Stored.Key == Entries_[i - 1].Stored.Key;
        repeats = repeats || (isSame && !Entries_[i].IsNull);
        distinct += static_cast<quint32>(!isSame);
    }
    return distinct;
}

std::vector<IndexBuilder::Node> IndexBuilder::MakeLeaves()
{
    std::vector<Node> leaves;
    for (std::size_t at = 0; leaves.empty() || at < Entries_.size();) {
        IndexFiller filler(IndexFiller::Kind::Leaf);
        while (at < Entries_.size() && filler.Add(Entries_[at].Stored))
            ++at;
        Owned_.push_back(Pages_.Allocate());
        leaves.push_back(
            {Owned_.back(), filler, {.Owner = Owner_}, at == 0 ? IndexPage::Entry() : Entries_[at - 1].Stored});
        leaves.back().Last.Child = Owned_.back();
    }
    Link(leaves, 0, leaves.size());
    return leaves;
}

std::vector<IndexBuilder::Node> IndexBuilder::MakeBranches(std::vector<Node>& children)
{
    const bool areLeaves = children.front().Head.Level == 0;
    std::vector<Node> branches;
    for (std::size_t from = 0; from < children.size();) {
        IndexFiller filler(IndexFiller::Kind::Branch);
        std::size_t tail = from;
        // The last child of a branch has no entry.
        while (tail + 1 < children.size() && filler.Add(children[tail].Last))
            ++tail;
        // A last branch of one child would have no entry at all: it gets a second one.
        if (tail + 2 == children.size() && tail > from + 1) {
            filler.DropLast();
            --tail;
        }
        if (!areLeaves)
            Link(children, from, tail + 1);
        Owned_.push_back(Pages_.Allocate());
        IndexHead head{.Owner = Owner_, .TailChild = children[tail].Number};
        head.Level = static_cast<quint8>(children.front().Head.Level + 1);
        branches.push_back({Owned_.back(), filler, head, children[tail].Last});
        branches.back().Last.Child = Owned_.back();
        from = tail + 1;
    }
    return branches;
}

void IndexBuilder::Link(std::vector<Node>& nodes, std::size_t from, std::size_t to)
{
    for (std::size_t i = from; i < to; ++i) {
        nodes[i].Head.Previous = i == from ? 0 : nodes[i - 1].Number;
        nodes[i].Head.Next = i + 1 == to ? 0 : nodes[i + 1].Number;
    }
}

void IndexBuilder::Write(const std::vector<Node>& nodes)
{
    for (const Node& node : nodes)
        Pages_.Write(node.Number, node.Content.Page(node.Head));
}

bool IndexBuilder::Finish(IndexDefinition& index)
{
    std::sort(Entries_.begin(), Entries_.end(), [](const Entry& left, const Entry& right) {
        const int order = left.Stored.Key.compare(right.Stored.Key);
        return order != 0 ? order < 0 : left.Stored.Row < right.Stored.Row;
    });
    bool repeats = false;
    index.DistinctKeys = CountDistinct(repeats);
    if (repeats && (Flags_ & UniqueIndex) != 0)
        return false;
    // A branch goes by the entries of its children until it is written.
    std::vector<std::vector<Node>> levels;
    levels.push_back(MakeLeaves());
    while (levels.back().size() > 1)
        levels.push_back(MakeBranches(levels.back()));
    for (const std::vector<Node>& level : levels)
        Write(level);
    index.Root = levels.back().front().Number;
    index.Map = Pages_.AddMap();
    for (const quint32 page : Owned_)
        Pages_.AddToMap(index.Map, page);
    return true;
}

} // namespace dao::jet
