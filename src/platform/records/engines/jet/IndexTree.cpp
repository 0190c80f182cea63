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

void IndexTree::RequireRise(const IndexPage& left, int leftEntry, const IndexPage& right, int rightEntry) const
{
    const IndexPage::Entry before = left.At(leftEntry);
    const IndexPage::Entry behind = right.At(rightEntry);
    const int order = before.Key.compare(behind.Key);
    if (order > 0 || (order == 0 && before.Row >= behind.Row))
        throw Fault(QStringLiteral("the index that begins on page %1 is not in its order at page %2")
                        .arg(Root_)
                        .arg(right.Number()));
}

std::optional<IndexPlace> IndexTree::FirstOnOrBehind(IndexPage leaf, int entry)
{
    // Leaves without entries stand beside each other in no sound file, so that few are passed before it is a ring.
    for (quint32 passed = 0; entry >= leaf.Count(); ++passed) {
        const quint32 next = leaf.Next();
        if (next == 0)
            return std::nullopt;
        IndexPage following(File_, next);
        if (!following.IsLeaf() || passed > File_.PageCount())
            throw Fault(QStringLiteral("the leaves of the index that begins on page %1 do not end").arg(Root_));
        if (leaf.Count() > 0 && following.Count() > 0)
            RequireRise(leaf, leaf.Count() - 1, following, 0);
        leaf = std::move(following);
        entry = 0;
    }
    return PlaceAt(leaf, entry);
}

std::optional<IndexPlace> IndexTree::LastOnOrBefore(IndexPage leaf, int entry)
{
    for (quint32 passed = 0; entry < 0; ++passed) {
        const quint32 previous = leaf.Previous();
        if (previous == 0)
            return std::nullopt;
        IndexPage preceding(File_, previous);
        if (!preceding.IsLeaf() || passed > File_.PageCount())
            throw Fault(QStringLiteral("the leaves of the index that begins on page %1 do not end").arg(Root_));
        if (leaf.Count() > 0 && preceding.Count() > 0)
            RequireRise(preceding, preceding.Count() - 1, leaf, 0);
        leaf = std::move(preceding);
        entry = leaf.Count() - 1;
    }
    return PlaceAt(leaf, entry);
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
    const IndexPage leaf(File_, place.Leaf);
    if (place.Entry + 1 < leaf.Count())
        RequireRise(leaf, place.Entry, leaf, place.Entry + 1);
    return FirstOnOrBehind(leaf, place.Entry + 1);
}

std::optional<IndexPlace> IndexTree::Previous(const IndexPlace& place)
{
    const IndexPage leaf(File_, place.Leaf);
    if (place.Entry > 0)
        RequireRise(leaf, place.Entry - 1, leaf, place.Entry);
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
    return IndexPage(File_, place.Leaf).CompareStart(place.Entry, key) == 0;
}

} // namespace dao::jet
