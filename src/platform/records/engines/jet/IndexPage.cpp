// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/IndexPage.h"

#include "platform/records/engines/jet/PageLayout.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace dao::jet
{

namespace
{

quint32 BigEndian(const OctetView& octets, qsizetype at)
{
    return qFromBigEndian(octets.U32(at));
}

int Compare(const char* left, qsizetype leftSize, const char* right, qsizetype rightSize)
{
    const int order = std::memcmp(left, right, static_cast<std::size_t>(std::min(leftSize, rightSize)));
    if (order != 0)
        return order;
    return leftSize < rightSize ? -1 : 0;
}

} // namespace

IndexPage::IndexPage(quint32 number, QByteArray octets) : Octets_(std::move(octets)), Number_(number)
{
    const auto type = static_cast<PageType>(Octets_.at(0));
    if (number == 0 || (type != PageType::IndexLeaf && type != PageType::IndexNode))
        throw Fault(QStringLiteral("page %1 is no page of an index").arg(number));
    IsLeaf_ = type == PageType::IndexLeaf;
    PrefixSize_ = OctetView(Octets_).U16(IndexLayout::PrefixSizeAt);
    for (int i = 0; i < IndexEntriesAt - IndexBitmapAt; ++i) {
        const auto octet = static_cast<quint8>(Octets_.at(IndexBitmapAt + i));
        for (int bit = 0; octet >> bit != 0; ++bit) {
            if ((octet >> bit & 1) != 0)
                Ends_.push_back(static_cast<quint16>(8 * i + bit));
        }
    }
    int start = 0;
    for (std::size_t i = 0; i < Ends_.size(); ++i) {
        const int needed = TrailerSize() + (i == 0 ? PrefixSize_ : 0);
        if (Ends_[i] - start < needed || Ends_[i] > IndexRoom)
            throw Fault(QStringLiteral("the entries of the index on page %1 do not fit together").arg(number));
        start = Ends_[i];
    }
}

OctetView IndexPage::Stored(int entry) const
{
    const auto place = static_cast<std::size_t>(entry);
    const int start = entry == 0 ? 0 : Ends_[place - 1];
    return OctetView(Octets_).Part(IndexEntriesAt + start, Ends_[place] - start);
}

OctetView IndexPage::StoredKey(int entry) const
{
    const OctetView stored = Stored(entry);
    return stored.Part(0, stored.Size() - TrailerSize());
}

RowPlace IndexPage::RowAt(int entry) const
{
    const OctetView stored = Stored(entry);
    return RowPlace::FromPointer(BigEndian(stored, stored.Size() - TrailerSize()));
}

IndexPage::Entry IndexPage::At(int entry) const
{
    const OctetView stored = Stored(entry);
    const qsizetype keySize = stored.Size() - TrailerSize();
    Entry found;
    if (entry > 0)
        found.Key = Octets_.mid(IndexEntriesAt, PrefixSize_);
    found.Key.append(stored.Data(), keySize);
    found.Row = RowPlace::FromPointer(BigEndian(stored, keySize));
    if (!IsLeaf_)
        found.Child = BigEndian(stored, keySize + IndexLayout::RowSize);
    return found;
}

int IndexPage::CompareStart(int entry, const QByteArray& key) const
{
    const OctetView stored = StoredKey(entry);
    if (entry == 0 || PrefixSize_ == 0)
        return Compare(stored.Data(), stored.Size(), key.constData(), key.size());
    const qsizetype shared = std::min<qsizetype>(PrefixSize_, key.size());
    const int order =
        std::memcmp(Octets_.constData() + IndexEntriesAt, key.constData(), static_cast<std::size_t>(shared));
    if (order != 0 || shared == key.size())
        return order;
    return Compare(stored.Data(), stored.Size(), key.constData() + shared, key.size() - shared);
}

int IndexPage::CompareToNext(int entry) const
{
    // The first one stands there whole; the others lack what all of them share.
    if (entry == 0)
        return At(0).Key.compare(At(1).Key);
    const OctetView stored = StoredKey(entry);
    const OctetView next = StoredKey(entry + 1);
    return std::string_view(stored.Data(), static_cast<std::size_t>(stored.Size()))
        .compare({next.Data(), static_cast<std::size_t>(next.Size())});
}

} // namespace dao::jet
