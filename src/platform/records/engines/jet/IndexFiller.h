// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/IndexPage.h"

namespace dao::jet
{

/// A page holds two entries at least, or a tree could not grow.
inline constexpr qsizetype LargestKey = IndexRoom / 2 - 8;

/// What stands in an index page's head.
struct IndexHead
{
    quint32 Owner = 0; ///< The page that defines the table.
    quint32 Previous = 0;
    quint32 Next = 0;
    quint32 TailChild = 0; ///< Of a branch.
    quint8 Level = 0;
};

/// Fills one page with entries that rise, as many as fit; what their keys begin with alike is stored once. The entries
/// must live as long as this.
class IndexFiller
{
public:
    enum class Kind
    {
        Leaf,
        Branch
    };
    explicit IndexFiller(Kind kind);

    /// False when it does not fit any more.
    bool Add(const IndexPage::Entry& entry);
    void DropLast();
    QByteArray Page(const IndexHead& head) const;

private:
    Kind Kind_;
    qsizetype TrailerSize_;
    std::vector<const IndexPage::Entry*> Entries_;
    qsizetype Shared_ = 0;
    qsizetype Octets_ = 0; ///< As if nothing was shared.
};

} // namespace dao::jet
