// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/IndexTree.h"

#include "platform/records/engines/jet/PageLayout.h"

namespace dao::jet
{

namespace
{

IndexPlace PlaceAt(const IndexPage& leaf, int entry)
{
    return {leaf.Number(), entry, leaf.RowAt(entry)};
}

/// The first entry of a page that is not before the wanted one; Count() when all are.
template <typename IsBefore>
int FirstNotBefore(const IndexPage& page, const IsBefore& isBefore)
{
    int from = 0;
    int count = page.Count();
    while (count > 0) {
        const int half = count / 2;
        if (isBefore(page, from + half)) {
            from += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return from;
}

quint32 ChildAt(const IndexPage& page, int entry)
{
    if (entry < page.Count())
        return page.At(entry).Child;
    if (page.TailChild() != 0)
        return page.TailChild();
    return page.Count() > 0 ? page.At(page.Count() - 1).Child : 0;
}

} // namespace

IndexPage IndexTree::Descend(const ChooseChild& choose)
{
    quint32 number = Root_;
    for (int depth = 0; depth < IndexLayout::DeepestTree; ++depth) {
        IndexPage page(File_, number);
        if (page.IsLeaf())
            return page;
        number = choose(page);
    }
    throw Fault(QStringLiteral("the index that begins on page %1 does not end").arg(Root_));
}

const IndexPage& IndexTree::LeafAt(quint32 number)
{
    // Octets that are shared stay as they are: whoever changes a page makes others.
    QByteArray octets = File_.Page(number);
    if (!Leaf_ || Leaf_->Number() != number || !Leaf_->Shares(octets))
        Leaf_.emplace(number, std::move(octets));
    return *Leaf_;
}

void IndexTree::RaiseDisorder(quint32 number) const
{
    throw Fault(
        QStringLiteral("the index that begins on page %1 is not in its order at page %2").arg(Root_).arg(number));
}

/// Of an entry and the one behind it on the same page.
void IndexTree::RequireRise(const IndexPage& leaf, int entry) const
{
    const int order = leaf.CompareToNext(entry);
    if (order > 0 || (order == 0 && leaf.RowAt(entry) >= leaf.RowAt(entry + 1)))
        RaiseDisorder(leaf.Number());
}

/// Of the last entry of a page and the first of another.
void IndexTree::RequireRise(const IndexPage& left, const IndexPage& right) const
{
    if (left.Count() == 0 || right.Count() == 0)
        return;
    const IndexPage::Entry before = left.At(left.Count() - 1);
    const IndexPage::Entry behind = right.At(0);
    const int order = before.Key.compare(behind.Key);
    if (order > 0 || (order == 0 && before.Row >= behind.Row))
        RaiseDisorder(right.Number());
}

std::optional<IndexPlace> IndexTree::FirstOnOrBehind(const IndexPage& start, int entry)
{
    if (entry < start.Count())
        return PlaceAt(start, entry);
    // Leaves without entries stand beside each other in no sound file, so that few are passed before it is a ring.
    IndexPage leaf = start;
    for (quint32 passed = 0; leaf.Next() != 0; ++passed) {
        IndexPage following(File_, leaf.Next());
        if (!following.IsLeaf() || passed > File_.PageCount())
            throw Fault(QStringLiteral("the leaves of the index that begins on page %1 do not end").arg(Root_));
        RequireRise(leaf, following);
        leaf = std::move(following);
        if (leaf.Count() > 0)
            return PlaceAt(leaf, 0);
    }
    return std::nullopt;
}

std::optional<IndexPlace> IndexTree::LastOnOrBefore(const IndexPage& start, int entry)
{
    if (entry >= 0)
        return PlaceAt(start, entry);
    IndexPage leaf = start;
    for (quint32 passed = 0; leaf.Previous() != 0; ++passed) {
        IndexPage preceding(File_, leaf.Previous());
        if (!preceding.IsLeaf() || passed > File_.PageCount())
            throw Fault(QStringLiteral("the leaves of the index that begins on page %1 do not end").arg(Root_));
        RequireRise(preceding, leaf);
        leaf = std::move(preceding);
        if (leaf.Count() > 0)
            return PlaceAt(leaf, leaf.Count() - 1);
    }
    return std::nullopt;
}

std::optional<IndexPlace> IndexTree::First()
{
    return FirstOnOrBehind(Descend([](const IndexPage& page) { return ChildAt(page, 0); }), 0);
}

std::optional<IndexPlace> IndexTree::Last()
{
    const IndexPage leaf = Descend([](const IndexPage& page) { return ChildAt(page, page.Count()); });
    return LastOnOrBefore(leaf, leaf.Count() - 1);
}

std::optional<IndexPlace> IndexTree::FirstFrom(const QByteArray& key, bool isBehind, std::optional<RowPlace> row)
{
    const auto isBefore = [&](const IndexPage& page, int entry) {
        const int order = page.CompareStart(entry, key);
        if (order != 0)
            return order < 0;
        return row ? page.RowAt(entry) < *row || (isBehind && page.RowAt(entry) == *row) : isBehind;
    };
    const IndexPage leaf =
        Descend([&](const IndexPage& page) { return ChildAt(page, FirstNotBefore(page, isBefore)); });
    return FirstOnOrBehind(leaf, FirstNotBefore(leaf, isBefore));
}

std::optional<IndexPlace> IndexTree::Next(const IndexPlace& place)
{
    const IndexPage& leaf = LeafAt(place.Leaf);
    if (place.Entry + 1 < leaf.Count())
        RequireRise(leaf, place.Entry);
    return FirstOnOrBehind(leaf, place.Entry + 1);
}

std::optional<IndexPlace> IndexTree::Previous(const IndexPlace& place)
{
    const IndexPage& leaf = LeafAt(place.Leaf);
    if (place.Entry > 0)
        RequireRise(leaf, place.Entry - 1);
    return LastOnOrBefore(leaf, place.Entry - 1);
}

std::optional<IndexPlace> IndexTree::EntryOf(RowPlace row)
{
    std::optional<IndexPlace> place = First();
    while (place && !(place->Row == row))
        place = Next(*place);
    return place;
}

bool IndexTree::BeginsWith(const IndexPlace& place, const QByteArray& key)
{
    return LeafAt(place.Leaf).CompareStart(place.Entry, key) == 0;
}

} // namespace dao::jet
