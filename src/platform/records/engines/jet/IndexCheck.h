// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/Findings.h"
#include "platform/records/engines/jet/IndexPage.h"
#include "platform/records/engines/jet/PageOwners.h"
#include "platform/records/engines/jet/TableDefinition.h"

#include <optional>
#include <set>

namespace dao::jet
{

/// What a row asks of an index.
struct ExpectedEntry
{
    quint32 Pointer = 0;
    bool IsKeyKnown = false; ///< False for texts whose order is not known: any key will do then.
    bool IsNull = false;     ///< All columns of the key are.
    std::size_t KeyHash = 0;
    bool IsFound = false;
};

/// Compares an index with the rows of its table: its pages and their links, the order of its entries, and that each row
/// has the one entry that it should. Owns nothing; the arguments must live longer.
class IndexCheck
{
public:
    /// expected: in order of the pointers. name: for findings, as it stands at the beginning of a sentence. owner: of
    /// the index's pages, which are claimed already.
    IndexCheck(PageFile& file, const TableDefinition& table, const IndexDefinition& index, const QString& name,
               const PageOwners& owners, int owner, Findings& findings)
        : File_(file), Table_(table), Index_(index), Name_(name), Owners_(owners), Owner_(owner), Findings_(findings)
    {
    }

    void Run(std::vector<ExpectedEntry>& expected);

private:
    void Walk(quint32 number, int depth, std::optional<quint32> previous, std::optional<quint32> next);
    void WalkBranch(const IndexPage& page, int depth);
    void WalkLeaf(const IndexPage& page, int depth);
    void NoteEntry(const IndexPage::Entry& entry);
    void Find(const QString& words) { Findings_.AddRepairable(Name_ + u' ' + words); }

    PageFile& File_;
    const TableDefinition& Table_;
    const IndexDefinition& Index_;
    QString Name_;
    const PageOwners& Owners_;
    int Owner_;
    Findings& Findings_;
    std::vector<ExpectedEntry>* Expected_ = nullptr;
    std::set<quint32> Visited_;
    std::optional<IndexPage::Entry> Last_;
    quint32 LastLeaf_ = 0;
    quint32 NextOfLastLeaf_ = 0;
    int LeafDepth_ = -1;
};

} // namespace dao::jet
