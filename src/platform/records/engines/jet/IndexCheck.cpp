// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/IndexCheck.h"

#include "platform/records/engines/jet/PageLayout.h"

#include <QHash>

#include <algorithm>

namespace dao::jet
{

namespace
{
} // namespace

void IndexCheck::Run(std::vector<ExpectedEntry>& expected)
{
    Expected_ = &expected;
    try {
        Walk(Index_.Root, 0, std::nullopt, std::nullopt);
        if (NextOfLastLeaf_ != 0)
            Find(QStringLiteral("goes on behind its last leaf, page %1").arg(LastLeaf_));
    } catch (const Fault& fault) {
        Find(QStringLiteral("cannot be read: ") + fault.Words());
        return; // That rows are missing in what could not be read is no second fault.
    }
    const bool mayMissNulls = (Index_.Flags & IgnoresNulls) != 0;
    const auto missing = std::count_if(expected.begin(), expected.end(), [&](const ExpectedEntry& entry) {
        return !entry.IsFound && !(mayMissNulls && entry.IsNull);
    });
    if (missing > 0)
        Find(QStringLiteral("lacks %1 of the rows").arg(missing));
}

void IndexCheck::Walk(quint32 number, int depth, std::optional<quint32> previous, std::optional<quint32> next)
{
    if (depth == IndexLayout::DeepestTree || !Owners_.Owns(Owner_, number) || !Visited_.insert(number).second)
        throw Fault(QStringLiteral("page %1 is named in it, and is none of its own or named twice").arg(number));
    const IndexPage page(File_, number);
    if (page.Owner() != Table_.Page())
        Find(QStringLiteral("has page %1, which says it is of another table").arg(number));
    if (page.FreeOctets() != IndexRoom - page.OctetsOfEntries())
        Find(QStringLiteral("has a wrong count of free octets on page %1").arg(number));
    if (page.IsLeaf()) {
        WalkLeaf(page, depth);
        return;
    }
    if ((previous && page.Previous() != *previous) || (next && page.Next() != *next))
        Find(QStringLiteral("has branches that are not linked as they follow each other, at page %1").arg(number));
    WalkBranch(page, depth);
}

void IndexCheck::WalkBranch(const IndexPage& page, int depth)
{
    std::vector<quint32> children;
    children.reserve(static_cast<std::size_t>(page.Count()) + 1);
    for (int i = 0; i < page.Count(); ++i)
        children.push_back(page.At(i).Child);
    if (page.TailChild() == 0)
        Find(QStringLiteral("has no last child on page %1").arg(page.Number()));
    else
        children.push_back(page.TailChild());
    for (std::size_t i = 0; i < children.size(); ++i) {
        Walk(children[i], depth + 1, i == 0 ? 0 : children[i - 1], i + 1 == children.size() ? 0 : children[i + 1]);
        if (i >= static_cast<std::size_t>(page.Count()))
            continue;
        const IndexPage::Entry entry = page.At(static_cast<int>(i));
        if (!Last_ || Last_->Key != entry.Key || !(Last_->Row == entry.Row))
            Find(QStringLiteral("says on page %1 that page %2 ends otherwise than it does")
                     .arg(page.Number())
                     .arg(children[i]));
    }
}

void IndexCheck::WalkLeaf(const IndexPage& page, int depth)
{
    if (LeafDepth_ >= 0 && depth != LeafDepth_)
        Find(QStringLiteral("is not of the same height everywhere"));
    LeafDepth_ = depth;
    if (page.Previous() != LastLeaf_ || (LastLeaf_ != 0 && NextOfLastLeaf_ != page.Number()))
        Find(QStringLiteral("has leaves that are not linked as they follow each other, at page %1").arg(page.Number()));
    LastLeaf_ = page.Number();
    NextOfLastLeaf_ = page.Next();
    for (int i = 0; i < page.Count(); ++i)
        NoteEntry(page.At(i));
}

void IndexCheck::NoteEntry(const IndexPage::Entry& entry)
{
    const auto found =
        std::lower_bound(Expected_->begin(), Expected_->end(), entry.Row.Pointer(),
                         [](const ExpectedEntry& each, quint32 pointer) { return each.Pointer < pointer; });
    const bool isThere = found != Expected_->end() && found->Pointer == entry.Row.Pointer();
    const QString where = QStringLiteral("row %1 of page %2").arg(entry.Row.Row).arg(entry.Row.Page);
    if (Last_) {
        const int order = Last_->Key.compare(entry.Key);
        if (order > 0 || (order == 0 && Last_->Row >= entry.Row))
            Find(QStringLiteral("is not in its order at ") + where);
        if (order == 0 && (Index_.Flags & UniqueIndex) != 0 && isThere && !found->IsNull)
            Find(QStringLiteral("has the key of %1 twice, and may not").arg(where));
    }
    Last_ = entry;
    if (!isThere) {
        Find(QStringLiteral("has an entry for %1, which is not there").arg(where));
        return;
    }
    if (found->IsFound)
        Find(QStringLiteral("has two entries for ") + where);
    found->IsFound = true;
    if (found->IsKeyKnown && found->KeyHash != qHash(entry.Key, 0))
        Find(QStringLiteral("has another key for %1 than the row").arg(where));
}

} // namespace dao::jet
