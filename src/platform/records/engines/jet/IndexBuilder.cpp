// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/IndexBuilder.h"

#include "platform/records/Error.h"

#include <algorithm>
#include <cstring>

namespace dao::jet
{

namespace
{

constexpr int PreviousAt = 12;
constexpr int NextAt = 16;
constexpr int TailChildAt = 20;
constexpr int PrefixAt = 24;
constexpr int LevelAt = 26;
/// A page holds two entries at least, or a tree could not grow.
constexpr qsizetype LargestKey = IndexRoom / 2 - 8;
constexpr qsizetype RowSize = 4;
constexpr qsizetype ChildSize = 4;

qsizetype SharedSize(const QByteArray& left, const QByteArray& right, qsizetype most)
{
    const auto end = left.begin() + std::min({left.size(), right.size(), most});
    return std::mismatch(left.begin(), end, right.begin()).first - left.begin();
}

void AppendBigEndian(QByteArray& octets, quint32 number)
{
    Append(octets, qToBigEndian(number));
}

} // namespace

/// Fills one page with entries that rise, as many as fit; what their keys begin with alike is stored once.
class IndexBuilder::Filler
{
public:
    explicit Filler(qsizetype trailerSize) : TrailerSize_(trailerSize) {}

    /// False when it does not fit any more.
    bool Add(const Entry& entry, quint32 child)
    {
        const qsizetype shared =
            Entries_.empty() ? entry.Key.size() : SharedSize(Entries_.front().first->Key, entry.Key, Shared_);
        const qsizetype octets = Octets_ + entry.Key.size() + TrailerSize_;
        if (octets - shared * static_cast<qsizetype>(Entries_.size()) > IndexRoom)
            return false;
        Shared_ = shared;
        Octets_ = octets;
        Entries_.emplace_back(&entry, child);
        return true;
    }
    void DropLast()
    {
        Octets_ -= Entries_.back().first->Key.size() + TrailerSize_;
        Entries_.pop_back();
    }

    QByteArray Page(quint32 owner, quint32 tailChild) const
    {
        const bool isLeaf = TrailerSize_ == RowSize;
        // One entry alone shares nothing.
        const qsizetype shared = Entries_.size() < 2 ? 0 : Shared_;
        QByteArray page(PageSize, '\0');
        Put(page, 0, static_cast<quint8>(isLeaf ? PageType::IndexLeaf : PageType::IndexNode));
        Put(page, 1, quint8(1));
        Put(page, 4, owner);
        Put(page, TailChildAt, tailChild);
        Put(page, PrefixAt, static_cast<quint16>(shared));
        QByteArray octets;
        for (const auto& [entry, child] : Entries_) {
            octets += octets.isEmpty() ? entry->Key : entry->Key.mid(shared);
            AppendBigEndian(octets, entry->Row.Pointer());
            if (!isLeaf)
                AppendBigEndian(octets, child);
            char& bits = page.data()[IndexBitmapAt + octets.size() / 8];
            bits = static_cast<char>(bits | 1 << (octets.size() % 8));
        }
        std::memcpy(page.data() + IndexEntriesAt, octets.constData(), static_cast<std::size_t>(octets.size()));
        Put(page, 2, static_cast<quint16>(IndexRoom - octets.size()));
        return page;
    }

private:
    qsizetype TrailerSize_;
    std::vector<std::pair<const Entry*, quint32>> Entries_;
    qsizetype Shared_ = 0;
    qsizetype Octets_ = 0; ///< As if nothing was shared.
};

void IndexBuilder::Add(const QByteArray& key, RowPlace row, bool isNull)
{
    if (key.size() > LargestKey)
        throw Error(errNotSupported, QStringLiteral("The values of an index of a Jet file are too long together."));
    if (!isNull || (Flags_ & IgnoresNulls) == 0)
        Entries_.push_back({key, row, isNull});
}

quint32 IndexBuilder::CountDistinct(bool& repeats) const
{
    quint32 distinct = 0;
    for (std::size_t i = 0; i < Entries_.size(); ++i) {
        const bool isSame = i > 0 && Entries_[i].Key == Entries_[i - 1].Key;
        repeats = repeats || (isSame && !Entries_[i].IsNull);
        distinct += static_cast<quint32>(!isSame);
    }
    return distinct;
}

std::vector<IndexBuilder::Node> IndexBuilder::MakeLeaves()
{
    std::vector<Node> leaves;
    for (std::size_t at = 0; leaves.empty() || at < Entries_.size();) {
        Filler filler(RowSize);
        while (at < Entries_.size() && filler.Add(Entries_[at], 0))
            ++at;
        Owned_.push_back(Pages_.Allocate());
        leaves.push_back({Owned_.back(), filler.Page(Owner_, 0), at == 0 ? nullptr : &Entries_[at - 1]});
    }
    Link(leaves, 0, leaves.size());
    return leaves;
}

std::vector<IndexBuilder::Node> IndexBuilder::MakeBranches(std::vector<Node>& children)
{
    const bool areLeaves = children.front().Page.at(0) == static_cast<char>(PageType::IndexLeaf);
    std::vector<Node> branches;
    for (std::size_t from = 0; from < children.size();) {
        Filler filler(RowSize + ChildSize);
        std::size_t tail = from;
        // The last child of a branch has no entry.
        while (tail + 1 < children.size() && filler.Add(*children[tail].Last, children[tail].Number))
            ++tail;
        // A last branch of one child would have no entry at all: it gets a second one.
        if (tail + 2 == children.size() && tail > from + 1) {
            filler.DropLast();
            --tail;
        }
        if (!areLeaves)
            Link(children, from, tail + 1);
        Owned_.push_back(Pages_.Allocate());
        branches.push_back({Owned_.back(), filler.Page(Owner_, children[tail].Number), children[tail].Last});
        Put(branches.back().Page, LevelAt, static_cast<quint8>(children.front().Page.at(LevelAt) + 1));
        from = tail + 1;
    }
    return branches;
}

void IndexBuilder::Link(std::vector<Node>& nodes, std::size_t from, std::size_t to) const
{
    for (std::size_t i = from; i < to; ++i) {
        Put(nodes[i].Page, PreviousAt, i == from ? 0 : nodes[i - 1].Number);
        Put(nodes[i].Page, NextAt, i + 1 == to ? 0 : nodes[i + 1].Number);
    }
}

void IndexBuilder::Write(const std::vector<Node>& nodes)
{
    for (const Node& node : nodes)
        Pages_.Write(node.Number, node.Page);
}

bool IndexBuilder::Finish(IndexDefinition& index)
{
    std::sort(Entries_.begin(), Entries_.end(), [](const Entry& left, const Entry& right) {
        const int order = left.Key.compare(right.Key);
        return order != 0 ? order < 0 : left.Row < right.Row;
    });
    bool repeats = false;
    index.DistinctKeys = CountDistinct(repeats);
    if (repeats && (Flags_ & UniqueIndex) != 0)
        return false;
    std::vector<Node> level = MakeLeaves();
    while (level.size() > 1) {
        std::vector<Node> above = MakeBranches(level);
        Write(level);
        level = std::move(above);
    }
    Write(level);
    index.Root = level.front().Number;
    index.Map = Pages_.AddMap();
    for (const quint32 page : Owned_)
        Pages_.AddToMap(index.Map, page);
    return true;
}

} // namespace dao::jet
