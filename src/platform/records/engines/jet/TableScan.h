// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/jet/DataPage.h"
#include "platform/records/engines/jet/TableDefinition.h"

#include <functional>
#include <optional>

namespace dao::jet
{

/// A row that is said to have moved oftener than this is not there.
inline constexpr int LongestPath = 16;

/// A row where it stands now, which is not where it is known to stand if it has moved.
struct FoundRow
{
    DataPage Page;
    DataPage::Slot Slot;
    RowPlace Stands;

    OctetView Octets() const { return Page.RowAt(Slot); }
};

/// Nothing when no row of the table is known by that place. Fault when the place leads astray.
std::optional<FoundRow> FindRow(PageFile& file, const TableDefinition& table, RowPlace place);

/// The places of a table's rows, in order. The pages are those of the table's map as they were at the beginning.
class TableScan
{
public:
    /// The definition must live longer.
    TableScan(PageFile& file, const TableDefinition& table);

    const std::vector<quint32>& Pages() const { return Pages_; }
    /// The first place behind (before) one at which a row stands; nothing when there is none.
    std::optional<RowPlace> Next(std::optional<RowPlace> place);
    std::optional<RowPlace> Previous(std::optional<RowPlace> place);
    qint64 Count();
    /// Each row with the place that it is known by, until visit answers false. Each page is looked up once.
    using Visitor = std::function<bool(RowPlace known, const FoundRow& row)>;
    void ForEach(const Visitor& visit);

private:
    /// Of a page of the map; nothing when it is another table's.
    std::optional<DataPage> PageOf(quint32 number);

    PageFile& File_;
    const TableDefinition& Table_;
    std::vector<quint32> Pages_;
};

} // namespace dao::jet
