// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/IndexFiller.h"
#include "platform/records/engines/jet/PageWriter.h"
#include "platform/records/engines/jet/TableDefinition.h"

namespace dao::jet
{

/// Gathers the entries of an index and makes its tree of them.
class IndexBuilder
{
public:
    /// owner: the page that defines the table. index: its flags count.
    IndexBuilder(PageWriter& pages, quint32 owner, const IndexDefinition& index)
        : Pages_(pages), Owner_(owner), Flags_(index.Flags)
    {
    }

    /// key: whole. isNull: every column of the key is.
    void Add(const QByteArray& key, RowPlace row, bool isNull);
    /// Writes the tree and says in the definition where it is. False when an index that may not repeats a key.
    bool Finish(IndexDefinition& index);

private:
    struct Entry
    {
        IndexPage::Entry Stored;
        bool IsNull = false;
    };
    /// A page that is made, and what is written on it.
    struct Node
    {
        quint32 Number = 0;
        IndexFiller Content;
        IndexHead Head;
        IndexPage::Entry Last; ///< The last entry below it, as it stands on the branch above.
    };

    std::vector<Node> MakeLeaves();
    std::vector<Node> MakeBranches(std::vector<Node>& children);
    static void Link(std::vector<Node>& nodes, std::size_t from, std::size_t to);
    quint32 CountDistinct(bool& repeats) const;
    void Write(const std::vector<Node>& nodes);

    PageWriter& Pages_;
    quint32 Owner_;
    quint8 Flags_;
    std::vector<Entry> Entries_;
    std::vector<quint32> Owned_;
};

} // namespace dao::jet
