// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/PageFile.h"

#include <vector>

namespace dao::jet
{

/// A page of an index. Shares the page's octets.
class IndexPage
{
public:
    struct Entry
    {
        QByteArray Key; ///< Whole, what the entries share in front included.
        RowPlace Row;   ///< On a branch: of the last entry below.
        quint32 Child = 0;
    };

    /// Fault when there is no such page, it is none of an index, or its entries do not fit together.
    IndexPage(PageFile& file, quint32 number) : IndexPage(number, file.Page(number)) {}
    /// The same of a page that was read.
    IndexPage(quint32 number, QByteArray octets);

    quint32 Number() const { return Number_; }
    bool IsLeaf() const { return IsLeaf_; }
    quint32 Owner() const { return OctetView(Octets_).U32(4); }
    int FreeOctets() const { return OctetView(Octets_).U16(2); }
    quint32 Previous() const { return OctetView(Octets_).U32(12); }
    quint32 Next() const { return OctetView(Octets_).U32(16); }
    /// Of a branch: the child behind all entries; 0 for none.
    quint32 TailChild() const { return OctetView(Octets_).U32(20); }
    int PrefixSize() const { return PrefixSize_; }
    int OctetsOfEntries() const { return Ends_.empty() ? 0 : Ends_.back(); }

    /// Whether these are the octets that it shares, so that it says what a page made of them would.
    bool Shares(const QByteArray& octets) const { return Octets_.constData() == octets.constData(); }

    int Count() const { return static_cast<int>(Ends_.size()); }
    Entry At(int entry) const;
    RowPlace RowAt(int entry) const;
    /// How the entry's key stands to a key, as far as that reaches: 0 when it begins with it.
    int CompareStart(int entry, const QByteArray& key) const;
    /// How the key of an entry stands to that of the one behind it.
    int CompareToNext(int entry) const;

private:
    OctetView Stored(int entry) const;
    /// What of the key stands in the entry itself.
    OctetView StoredKey(int entry) const;
    int TrailerSize() const { return IsLeaf_ ? 4 : 8; }

    QByteArray Octets_;
    quint32 Number_;
    bool IsLeaf_;
    int PrefixSize_ = 0;
    std::vector<quint16> Ends_; ///< From the first entry's beginning on.
};

} // namespace dao::jet
