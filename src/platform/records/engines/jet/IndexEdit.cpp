// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/IndexEdit.h"

#include "platform/records/Error.h"
#include "platform/records/engines/jet/PageLayout.h"
#include "platform/records/engines/jet/PageWriter.h"

#include <algorithm>

namespace dao::jet
{

namespace
{

bool IsBefore(const IndexPage::Entry& left, const IndexPage::Entry& right)
{
    const int order = left.Key.compare(right.Key);
    return order != 0 ? order < 0 : left.Row < right.Row;
}

} // namespace

quint32 IndexEdit::MakeRoot(PageFile& file, PageAllocation& pages, quint32 owner, quint32 map)
{
    const quint32 root = pages.Allocate();
    pages.AddTo(map, root);
    file.Change(root, IndexFiller(IndexFiller::Kind::Leaf).Page({.Owner = owner}));
    return root;
}

quint32 IndexEdit::Allocate()
{
    const quint32 page = Pages_.Allocate();
    Pages_.AddTo(Index_.Map, page);
    return page;
}

void IndexEdit::Free(quint32 page)
{
    Pages_.TakeFrom(Index_.Map, page);
    Pages_.Free(page);
}

IndexEdit::Node IndexEdit::Load(quint32 number) const
{
    const IndexPage page(File_, number);
    Node node{.Number = number, .IsLeaf = page.IsLeaf()};
    node.Head = {.Owner = page.Owner(),
                 .Previous = page.Previous(),
                 .Next = page.Next(),
                 .Level = OctetView(File_.Page(number)).U8(IndexLayout::LevelAt)};
    for (int i = 0; i < page.Count(); ++i)
        node.All.push_back(page.At(i));
    if (!node.IsLeaf && page.TailChild() != 0)
        node.All.push_back({{}, {}, page.TailChild()});
    if (!node.IsLeaf && node.All.empty())
        throw Fault(QStringLiteral("the branch of an index on page %1 has no children").arg(number));
    return node;
}

bool IndexEdit::Fits(const Node& node, std::size_t from, std::size_t to)
{
    IndexFiller filler(node.IsLeaf ? IndexFiller::Kind::Leaf : IndexFiller::Kind::Branch);
    const std::size_t end = node.IsLeaf ? to : to - 1; // The last child has no entry.
    for (std::size_t i = from; i < end; ++i) {
        if (!filler.Add(node.All[i]))
            return false;
    }
    return true;
}

void IndexEdit::Write(const Node& node)
{
    IndexFiller filler(node.IsLeaf ? IndexFiller::Kind::Leaf : IndexFiller::Kind::Branch);
    IndexHead head = node.Head;
    head.TailChild = node.IsLeaf || node.All.empty() ? 0 : node.All.back().Child;
    const std::size_t count = node.IsLeaf || node.All.empty() ? node.All.size() : node.All.size() - 1;
    for (std::size_t i = 0; i < count; ++i)
        filler.Add(node.All[i]);
    File_.Change(node.Number, filler.Page(head));
}

/// Cuts entries where each part fits on a page: the ends of the parts but the last.
void IndexEdit::Cut(const Node& node, std::size_t from, std::size_t to, std::vector<std::size_t>& ends)
{
    if (Fits(node, from, to))
        return;
    const std::size_t least = node.IsLeaf ? 1 : 2;
    const qsizetype trailer = node.IsLeaf ? IndexLayout::RowSize : IndexLayout::RowSize + IndexLayout::ChildSize;
    qsizetype octets = 0;
    for (std::size_t i = from; i < to; ++i)
        octets += node.All[i].Key.size() + trailer;
    std::size_t middle = from;
    for (qsizetype half = 0; half < octets / 2; ++middle)
        half += node.All[middle].Key.size() + trailer;
    middle = std::clamp(middle, from + least, to - least);
    Cut(node, from, middle, ends);
    ends.push_back(middle);
    Cut(node, middle, to, ends);
}

void IndexEdit::Add(const QByteArray& key, RowPlace row)
{
    if (key.size() > LargestKey)
        throw Error(errNotSupported, QStringLiteral("The values of an index of a Jet file are too long together."));
    const Entry added{key, row, 0};
    Change(added, [&](Node& leaf, Outcome&) {
        const auto place = std::lower_bound(leaf.All.begin(), leaf.All.end(), added, IsBefore);
        if (place != leaf.All.end() && !IsBefore(added, *place))
            throw Fault(QStringLiteral("the index on page %1 has an entry already").arg(leaf.Number));
        leaf.All.insert(place, added);
    });
}

void IndexEdit::Delete(const QByteArray& key, RowPlace row)
{
    const Entry deleted{key, row, 0};
    Change(deleted, [&](Node& leaf, Outcome& outcome) {
        const auto place = std::lower_bound(leaf.All.begin(), leaf.All.end(), deleted, IsBefore);
        if (place == leaf.All.end() || IsBefore(deleted, *place))
            throw Fault(QStringLiteral("the index that begins on page %1 lacks an entry").arg(Index_.Root));
        const bool isLast = std::next(place) == leaf.All.end();
        leaf.All.erase(place);
        if (isLast && !leaf.All.empty())
            outcome.Last = leaf.All.back();
    });
}

void IndexEdit::Change(const Entry& entry, const ChangeLeaf& change)
{
    ChangeBelow(Index_.Root, 0, entry, change);
}

IndexEdit::Outcome IndexEdit::ChangeBelow(quint32 number, int depth, const Entry& entry, const ChangeLeaf& change)
{
    if (depth == IndexLayout::DeepestTree)
        throw Fault(QStringLiteral("the index that begins on page %1 does not end").arg(Index_.Root));
    Node node = Load(number);
    Outcome outcome;
    if (node.IsLeaf) {
        change(node, outcome);
        node.IsChanged = true;
    } else {
        const auto place = std::lower_bound(node.All.begin(), node.All.end() - 1, entry, IsBefore);
        const Outcome below = ChangeBelow(place->Child, depth + 1, entry, change);
        TakeOver(node, static_cast<std::size_t>(place - node.All.begin()), below, outcome);
    }
    if (node.IsChanged)
        Store(node, outcome);
    return outcome;
}

void IndexEdit::TakeOver(Node& branch, std::size_t place, const Outcome& below, Outcome& outcome)
{
    const bool isTail = place + 1 == branch.All.size();
    const auto at = branch.All.begin() + static_cast<std::ptrdiff_t>(place);
    if (below.IsGone) {
        branch.All.erase(at);
        branch.IsChanged = true;
        if (isTail && !branch.All.empty())
            outcome.Last = branch.All.back();
        LinkChildren(branch);
        return;
    }
    if (below.Last && isTail) {
        outcome.Last = below.Last;
    } else if (below.Last) {
        at->Key = below.Last->Key;
        at->Row = below.Last->Row;
        branch.IsChanged = true;
    }
    if (!below.Before.empty()) {
        branch.All.insert(at, below.Before.begin(), below.Before.end());
        branch.IsChanged = true;
        LinkChildren(branch);
    }
    if (below.IsLonely)
        JoinLonely(branch, place + below.Before.size());
}

/// A branch of one child goes together with the one beside it.
void IndexEdit::JoinLonely(Node& branch, std::size_t place)
{
    if (branch.All.size() < 2)
        return;
    const std::size_t left = place > 0 ? place - 1 : place;
    Node first = Load(branch.All[left].Child);
    Node joined = Load(branch.All[left + 1].Child);
    first.All.back().Key = branch.All[left].Key;
    first.All.back().Row = branch.All[left].Row;
    joined.All.insert(joined.All.begin(), first.All.begin(), first.All.end());
    Free(first.Number);
    const Entries before = SplitOff(joined);
    const auto at = branch.All.erase(branch.All.begin() + static_cast<std::ptrdiff_t>(left));
    branch.All.insert(at, before.begin(), before.end());
    branch.IsChanged = true;
    LinkChildren(branch);
}

void IndexEdit::Store(Node& node, Outcome& outcome)
{
    if (node.Number == Index_.Root) {
        StoreRoot(node);
    } else if (node.All.empty()) {
        if (node.IsLeaf)
            Unlink(node);
        Free(node.Number);
        outcome.IsGone = true;
    } else {
        outcome.IsLonely = !node.IsLeaf && node.All.size() == 1;
        outcome.Before = SplitOff(node);
    }
}

/// A root of one child is that child; without children it is an empty leaf.
IndexEdit::Node IndexEdit::WithoutFewChildren(Node root)
{
    while (!root.IsLeaf && root.All.size() == 1) {
        Node child = Load(root.All.front().Child);
        Free(child.Number);
        child.Number = root.Number;
        child.Head.Previous = 0;
        child.Head.Next = 0;
        root = std::move(child);
    }
    if (root.All.empty()) {
        root.IsLeaf = true;
        root.Head.Level = 0;
    }
    return root;
}

void IndexEdit::StoreRoot(Node& node)
{
    Node root = WithoutFewChildren(std::move(node));
    if (root.All.empty() || Fits(root, 0, root.All.size())) {
        Write(root);
        return;
    }
    Node moved = root;
    moved.Number = Allocate();
    root.All = SplitOff(moved);
    root.All.push_back({{}, {}, moved.Number});
    root.IsLeaf = false;
    ++root.Head.Level;
    Write(root);
    LinkChildren(root);
}

/// Writes the page. What does not fit goes, from the front, to new pages: those, each with its last entry.
IndexEdit::Entries IndexEdit::SplitOff(Node& node)
{
    std::vector<std::size_t> ends;
    const std::size_t count = node.All.size();
    // Where entries come in order, pages that are left behind are to be full.
    if (node.IsLeaf && node.Head.Next == 0 && count > 1 && !Fits(node, 0, count) && Fits(node, 0, count - 1))
        ends = {count - 1};
    else
        Cut(node, 0, count, ends);
    Entries before;
    std::size_t from = 0;
    for (const std::size_t end : ends) {
        Node part{.Number = Allocate(), .IsLeaf = node.IsLeaf, .Head = node.Head};
        part.All.assign(node.All.begin() + static_cast<std::ptrdiff_t>(from),
                        node.All.begin() + static_cast<std::ptrdiff_t>(end));
        if (node.IsLeaf) {
            part.Head.Next = node.Number;
            if (part.Head.Previous != 0)
                SetLinks(part.Head.Previous, std::nullopt, part.Number);
            node.Head.Previous = part.Number;
        }
        Write(part);
        LinkChildren(part);
        before.push_back({part.All.back().Key, part.All.back().Row, part.Number});
        from = end;
    }
    node.All.erase(node.All.begin(), node.All.begin() + static_cast<std::ptrdiff_t>(from));
    Write(node);
    if (!ends.empty())
        LinkChildren(node);
    return before;
}

void IndexEdit::Unlink(const Node& leaf)
{
    if (leaf.Head.Previous != 0)
        SetLinks(leaf.Head.Previous, std::nullopt, leaf.Head.Next);
    if (leaf.Head.Next != 0)
        SetLinks(leaf.Head.Next, leaf.Head.Previous, std::nullopt);
}

void IndexEdit::SetLinks(quint32 number, std::optional<quint32> previous, std::optional<quint32> next)
{
    const IndexPage page(File_, number);
    if (page.Previous() == previous.value_or(page.Previous()) && page.Next() == next.value_or(page.Next()))
        return;
    QByteArray octets = File_.Page(number);
    Put(octets, IndexLayout::PreviousAt, previous.value_or(page.Previous()));
    Put(octets, IndexLayout::NextAt, next.value_or(page.Next()));
    File_.Change(number, octets);
}

/// Branches are linked with those below the same branch alone, leaves with all.
void IndexEdit::LinkChildren(const Node& branch)
{
    if (branch.IsLeaf || branch.All.empty() || IndexPage(File_, branch.All.front().Child).IsLeaf())
        return;
    for (std::size_t i = 0; i < branch.All.size(); ++i)
        SetLinks(branch.All[i].Child, i == 0 ? 0 : branch.All[i - 1].Child,
                 i + 1 == branch.All.size() ? 0 : branch.All[i + 1].Child);
}

} // namespace dao::jet
