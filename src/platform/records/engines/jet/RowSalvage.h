// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/RepairReport.h"
#include "platform/records/engines/jet/DataPage.h"
#include "platform/records/engines/jet/RowCells.h"
#include "platform/records/engines/jet/RowForm.h"
#include "platform/records/engines/jet/RowSeal.h"

#include <functional>
#include <set>
#include <span>

namespace dao::jet
{

/// What rows are read from, all pages of a damaged file counted by whose they say they are.
struct SalvagedFile
{
    PageFile& File;
    std::set<quint32> Pieces; ///< Of long values that were read for rows without a seal.
    /// How much may still be read of long values that turn out to be nobody's.
    qint64 OctetsLeft = 0;
};

/// Reads all rows of one table that are on some pages, whatever maps and indexes say. A row is taken as it was stored
/// or not at all: its seal tells; of a row without one whatever can be told is looked at.
class RowSalvage
{
public:
    /// A row in the order of the definition's columns, with its key in each index.
    using TakeRow = std::function<void(std::span<const NewCell>, std::span<const std::optional<QByteArray>>)>;

    /// table: as it was found, or as it is thought to be. needsSeals: it is not the table's own, or the pages may be
    /// another's, so that a row without a seal says nothing.
    RowSalvage(SalvagedFile& salvaged, const TableDefinition& table, bool needsSeals, RepairedTable& result)
        : Salvaged_(salvaged), Table_(table), NeedsSeals_(needsSeals), Result_(result), Keys_(table.Indexes.size())
    {
    }

    /// The rows that a page shows, one after the other. isStray: what the page says of itself is not to be trusted.
    void TakePage(quint32 number, bool isStray, const TakeRow& take);
    /// Rows that have moved, and that nothing leads to any more.
    void TakeHidden(const TakeRow& take);
    /// Whether a row of this table is on the page, as its seal proves.
    bool OwnsRowOf(quint32 number) const;
    /// Pages of the table that cannot be read.
    int BrokenPages() const { return BrokenPages_; }

private:
    void TakeSlot(const DataPage& page, int row, bool isStray, const TakeRow& take);
    void TakeOctets(const OctetView& octets, bool isStray, const TakeRow& take);
    bool IsWellFormed(const OctetView& octets) const;
    std::optional<std::vector<NewCell>> CellsOf(const RowCells& row, const FoundSeal& seal);
    QByteArray LongOf(const OctetView& stored, quint32 sum);
    bool IsIndexed(quint16 column) const;
    /// Nothing when an index cannot have the row.
    std::optional<std::vector<std::optional<QByteArray>>> KeysOf(const std::vector<NewCell>& cells);
    void CountLost(const OctetView& octets);

    SalvagedFile& Salvaged_;
    const TableDefinition& Table_;
    bool NeedsSeals_;
    RepairedTable& Result_;
    std::set<std::pair<quint32, quint32>> Seals_; ///< Of rows that were taken.
    std::vector<std::set<QByteArray>> Keys_;      ///< Of the indexes that let none come twice.
    std::set<RowPlace> Led_;                      ///< Moved rows that something leads to.
    std::set<RowPlace> Hidden_;                   ///< All of them.
    int BrokenPages_ = 0;
};

} // namespace dao::jet
