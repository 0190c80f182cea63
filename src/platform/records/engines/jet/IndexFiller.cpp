// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/IndexFiller.h"

#include "platform/records/engines/jet/PageLayout.h"
#include "platform/records/engines/jet/PageWriter.h"

#include <algorithm>
#include <cstring>

namespace dao::jet
{

namespace
{

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

IndexFiller::IndexFiller(Kind kind)
    : Kind_(kind),
      TrailerSize_(kind == Kind::Leaf ? IndexLayout::RowSize : IndexLayout::RowSize + IndexLayout::ChildSize)
{
}

bool IndexFiller::Add(const IndexPage::Entry& entry)
{
    const qsizetype shared =
        Entries_.empty() ? entry.Key.size() : SharedSize(Entries_.front()->Key, entry.Key, Shared_);
    const qsizetype octets = Octets_ + entry.Key.size() + TrailerSize_;
    if (octets - shared * static_cast<qsizetype>(Entries_.size()) > IndexRoom)
        return false;
    Shared_ = shared;
    Octets_ = octets;
    Entries_.push_back(&entry);
    return true;
}

void IndexFiller::DropLast()
{
    Octets_ -= Entries_.back()->Key.size() + TrailerSize_;
    Entries_.pop_back();
}

QByteArray IndexFiller::Page(const IndexHead& head) const
{
    // One entry alone shares nothing.
    const qsizetype shared = Entries_.size() < 2 ? 0 : Shared_;
    QByteArray page(PageSize, '\0');
    Put(page, 0, static_cast<quint8>(Kind_ == Kind::Leaf ? PageType::IndexLeaf : PageType::IndexNode));
    Put(page, 1, quint8(1));
    Put(page, IndexLayout::OwnerAt, head.Owner);
    Put(page, IndexLayout::PreviousAt, head.Previous);
    Put(page, IndexLayout::NextAt, head.Next);
    Put(page, IndexLayout::TailChildAt, head.TailChild);
    Put(page, IndexLayout::PrefixSizeAt, static_cast<quint16>(shared));
    Put(page, IndexLayout::LevelAt, head.Level);
    QByteArray octets;
    for (const IndexPage::Entry* entry : Entries_) {
        octets += octets.isEmpty() ? entry->Key : entry->Key.mid(shared);
        AppendBigEndian(octets, entry->Row.Pointer());
        if (Kind_ == Kind::Branch)
            AppendBigEndian(octets, entry->Child);
        char& bits = page.data()[IndexBitmapAt + octets.size() / 8];
        bits = static_cast<char>(bits | 1 << (octets.size() % 8));
    }
    std::memcpy(page.data() + IndexEntriesAt, octets.constData(), static_cast<std::size_t>(octets.size()));
    Put(page, IndexLayout::FreeOctetsAt, static_cast<quint16>(IndexRoom - octets.size()));
    return page;
}

} // namespace dao::jet
